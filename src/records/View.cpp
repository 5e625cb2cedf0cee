#include "records/View.h"

#include <algorithm>

namespace norvane::platform::data::Record {

bool View::isWhole(Kind kind) const {
    return this->kind() == static_cast<std::uint8_t>(kind) && size_ >= formatOf(kind).fixedSize;
}

std::uint64_t View::sectionPosition(U32 sizeField) const {
    const Format* format = formatOf(kind());
    if (!format) return size_;
    std::uint64_t position = format->fixedSize;
    for (const SectionRow& row : format->sections) {
        if (row.sizePosition == sizeField.position) return position;
        position += loadAt<std::uint32_t>(row.sizePosition);
    }
    return size_;
}

Section View::section(U32 sizeField) const {
    const std::uint64_t position = sectionPosition(sizeField);
    if (position >= size_) return {};
    const auto left = static_cast<std::uint32_t>(size_ - position);
    return {bytes_ + position, std::min(left, load(sizeField))};
}

std::u16string View::textOf(Section section) {
    std::u16string text(section.size / 2, u'\0');
    if (!text.empty()) std::memcpy(text.data(), section.begin, text.size() * 2);
    text.resize(std::min(text.find(u'\0'), text.size()));
    return text;
}

std::u16string View::name() const {
    const std::uint8_t kind = this->kind();
    return isEntity(kind) ? text(nameSizeField(static_cast<Kind>(kind))) : std::u16string();
}

bool View::hasName(std::u16string_view other) const {
    const std::uint8_t kind = this->kind();
    if (!isEntity(kind)) return other.empty();
    const Section name = section(nameSizeField(static_cast<Kind>(kind)));
    const std::size_t units = name.size / 2;
    if (units < other.size() || other.find(u'\0') != other.npos) return false;
    if (!other.empty() && std::memcmp(name.begin, other.data(), other.size() * 2) != 0) return false;
    if (units == other.size()) return true;
    char16_t next = 0;
    std::memcpy(&next, name.begin + other.size() * 2, sizeof next);
    return next == 0;
}

}  // namespace norvane::platform::data::Record
