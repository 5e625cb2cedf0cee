#include "model/ListedNames.h"

#include <algorithm>
#include <array>

#include "norvane/platform/core/memory/PooledHeap.h"
#include "records/NameMap.h"

namespace norvane::platform::data::Metadata {

using core::memory::PooledHeap;

void ListedNames::take(IDataStore* store, const Record::View& list) {
    clear();
    const std::uint32_t listed = list.valueCount();
    constexpr std::size_t kUsual = 32;  // bytes of a child
    if (listed != 0) makeRoom(listed * kUsual);
    for (std::uint32_t i = 0; i < listed; ++i) {
        const Record::Snapshot child(store, list.value(i));
        if (Record::isChildKind(child->kind())) add(list.value(i), child->nameSection());
    }
}

void ListedNames::clear() {
    if (bytes_) PooledHeap::free(bytes_, room_);
    bytes_ = nullptr;
    used_ = room_ = 0;
    count_ = 0;
}

void ListedNames::add(std::uint32_t offset, Record::Section name) {
    const auto length = static_cast<std::uint32_t>(Record::View::unitsOf(name));
    const std::size_t size = sizeOf(length);
    if (room_ - used_ < size) makeRoom(size);
    std::byte* to = bytes_ + used_;
    std::memcpy(to, &offset, sizeof offset);
    std::memcpy(to + 4, &length, sizeof length);
    if (length != 0) std::memcpy(to + kHeader, name.begin, std::size_t{length} * 2);
    used_ += size;
    ++count_;
}

void ListedNames::makeRoom(std::size_t size) {
    const std::size_t room = std::max(used_ + size, room_ * 2);
    auto* bytes = static_cast<std::byte*>(PooledHeap::malloc(room));
    if (used_ != 0) std::memcpy(bytes, bytes_, used_);
    if (bytes_) PooledHeap::free(bytes_, room_);
    bytes_ = bytes;
    room_ = room;
}

std::uint32_t ListedNames::find(std::u16string_view name) const {
    const std::byte* const end = bytes_ + used_;
    const auto isWanted = [name](const std::byte* at) {
        if (lengthAt(at) != name.size()) return false;
        return name.empty() || std::memcmp(unitsAt(at), name.data(), name.size() * 2) == 0;
    };
    for (const std::byte* at = bytes_; at != end; at = behind(at))
        if (isWanted(at)) return isReserved(name) ? std::uint32_t{IDataStore::BADOFF} : offsetAt(at);
    return IDataStore::BADOFF;
}

std::uint32_t ListedNames::countNames() const {
    std::array<std::u16string_view, kFew> names;
    std::uint32_t found = 0;
    forEach([&](std::u16string_view name, std::uint32_t) {
        const auto end = names.begin() + found;
        if (std::find(names.begin(), end, name) == end || isReserved(name)) names[found++] = name;
    });
    return found;
}

}  // namespace norvane::platform::data::Metadata
