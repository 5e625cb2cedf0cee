#include "records/NewEntity.h"

namespace norvane::platform::data::Record {

NewEntity::NewEntity(Kind kind) : size_(formatOf(kind).fixedSize) {
    std::memset(block_.bytes(), 0, size_);
    set(field::kind, static_cast<std::uint8_t>(kind));
    set(field::parent, std::uint32_t{IDataStore::BADOFF});
    set(field::locale, std::uint32_t{IDataStore::BADOFF});
    if (kind != Kind::primitive) set(field::children, std::uint32_t{IDataStore::BADOFF});
    if (kind == Kind::table) set(field::defaults, std::uint32_t{IDataStore::BADOFF});
}

std::byte* NewEntity::addSection(U32 sizeField, std::uint64_t size) {
    const std::uint32_t begin = size_;
    const std::uint32_t end = checkedSize(begin + size);
    block_.reserve(end, begin);
    size_ = end;
    set(sizeField, static_cast<std::uint32_t>(size));
    return block_.bytes() + begin;
}

void NewEntity::addText(U32 sizeField, std::u16string_view text) {
    std::byte* to = addSection(sizeField, storedSize(text));
    if (!text.empty()) std::memcpy(to, text.data(), text.size() * 2);
    std::memset(to + text.size() * 2, 0, 2);
}

}  // namespace norvane::platform::data::Record
