#include "norvane/platform/core/string/WideString.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "norvane/platform/core/memory/PooledHeap.h"

namespace norvane::platform::core::string {
namespace {

using memory::PooledHeap;

// Stands right before the code units that copies of a string share.
struct Header {
    std::atomic<std::size_t> references;
    std::size_t length;
};

Header* headerOf(const tWChar* text) { return reinterpret_cast<Header*>(const_cast<tWChar*>(text)) - 1; }

std::size_t blockSize(std::size_t length) {
    constexpr std::size_t kMost =
        (std::numeric_limits<std::size_t>::max() - sizeof(Header)) / sizeof(tWChar) - 1;
    if (length > kMost) throw std::bad_alloc();
    return sizeof(Header) + (length + 1) * sizeof(tWChar);
}

const tWChar* makeText(const tWChar* text, std::size_t length) {
    auto* header = new (PooledHeap::malloc(blockSize(length))) Header{1, length};
    auto* units = reinterpret_cast<tWChar*>(header + 1);
    if (length != 0) std::memcpy(units, text, length * sizeof(tWChar));
    units[length] = 0;
    return units;
}

void share(const tWChar* text) {
    if (text) headerOf(text)->references.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

WideString::WideString(const tWChar* text)
    : WideString(text, text ? std::char_traits<tWChar>::length(text) : 0) {}

WideString::WideString(const tWChar* text, std::size_t length) {
    if (text) text_ = makeText(text, length);
}

WideString::WideString(const WideString& other) noexcept : IString(other) { share(text_); }

WideString::WideString(WideString&& other) noexcept { text_ = std::exchange(other.text_, nullptr); }

WideString& WideString::operator=(const WideString& other) noexcept {
    WideString(other).swap(*this);
    return *this;
}

WideString& WideString::operator=(WideString&& other) noexcept {
    WideString(std::move(other)).swap(*this);
    return *this;
}

WideString::~WideString() { release(); }

void WideString::release() noexcept {
    if (!text_) return;
    Header* header = headerOf(text_);
    if (header->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        PooledHeap::free(header, blockSize(header->length));
}

void WideString::set(const IString& other) {
    if (const auto* wide = dynamic_cast<const WideString*>(&other))
        *this = *wide;
    else
        *this = WideString(other.value(), other.length());
}

std::size_t WideString::bytes() const { return length() * sizeof(tWChar); }

std::size_t WideString::length() const { return text_ ? headerOf(text_)->length : 0; }

bool WideString::isEmpty() const { return length() == 0; }

void WideString::detach() {
    if (text_ && headerOf(text_)->references.load(std::memory_order_acquire) > 1)
        *this = WideString(text_, length());
}

WideString WideString::substr(std::size_t start, long count) const {
    const std::u16string_view all = view();
    const std::size_t first = std::min(start, all.size());
    const std::size_t most = all.size() - first;
    const std::size_t taken = count < 0 ? most : std::min(static_cast<std::size_t>(count), most);
    return {taken == 0 ? u"" : all.data() + first, taken};
}

long WideString::rfind(tWChar c) const {
    const std::size_t index = view().rfind(c);
    return index == std::u16string_view::npos ? -1 : static_cast<long>(index);
}

void WideString::swap(WideString& other) noexcept { std::swap(text_, other.text_); }

bool operator==(const WideString& left, const WideString& right) {
    if (!left.value() || !right.value()) return left.value() == right.value();
    return left.view() == right.view();
}

bool operator==(const WideString& left, const tWChar* right) {
    if (!left.value() || !right) return left.value() == right;
    return left.view() == right;
}

}  // namespace norvane::platform::core::string
