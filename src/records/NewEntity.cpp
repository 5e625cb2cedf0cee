#include "records/NewEntity.h"

#include <algorithm>
#include <utility>

namespace norvane::platform::data::Record {

NewEntity::NewEntity(Kind kind) : bytes_(few_), size_(formatOf(kind).fixedSize) {
    std::memset(bytes_, 0, size_);
    set(field::kind, static_cast<std::uint8_t>(kind));
    set(field::parent, std::uint32_t{IDataStore::BADOFF});
    set(field::locale, std::uint32_t{IDataStore::BADOFF});
    if (kind != Kind::primitive) set(field::children, std::uint32_t{IDataStore::BADOFF});
    if (kind == Kind::table) set(field::defaults, std::uint32_t{IDataStore::BADOFF});
}

std::byte* NewEntity::addSection(U32 sizeField, std::uint64_t size) {
    const std::uint32_t begin = size_;
    const std::uint32_t end = checkedSize(begin + size);
    if (end > std::max(kFew, large_.capacity())) {
        Block larger(end);
        std::memcpy(larger.bytes(), bytes_, begin);
        large_ = std::move(larger);
        bytes_ = large_.bytes();
    }
    size_ = end;
    set(sizeField, static_cast<std::uint32_t>(size));
    return bytes_ + begin;
}

void NewEntity::addText(U32 sizeField, std::u16string_view text) {
    std::byte* to = addSection(sizeField, storedSize(text));
    if (!text.empty()) std::memcpy(to, text.data(), text.size() * 2);
    std::memset(to + text.size() * 2, 0, 2);
}

}  // namespace norvane::platform::data::Record
