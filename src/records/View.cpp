#include "records/View.h"

namespace norvane::platform::data::Record {

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

Section View::section(U32 sizeField) const { return sectionAt(sectionPosition(sizeField), load(sizeField)); }

// A primitive's is the only one that another section stands before.
Section View::nameSection() const {
    const std::uint8_t kind = this->kind();
    if (!isEntity(kind)) return {};
    std::uint64_t position = formatOf(static_cast<Kind>(kind)).fixedSize;
    if (kind == static_cast<std::uint8_t>(Kind::primitive)) position += load(field::localeTagSize);
    return sectionAt(position, load(nameSizeField(static_cast<Kind>(kind))));
}

namespace {

// Whether one of four code units is NUL.
bool hasNul(const std::byte* units) {
    std::uint64_t word;
    std::memcpy(&word, units, sizeof word);
    return ((word - 0x0001000100010001u) & ~word & 0x8000800080008000u) != 0;
}

}  // namespace

std::size_t View::unitsOf(Section section) {
    const std::size_t units = section.size / 2;
    std::size_t length = 0;
    while (length + 4 <= units && !hasNul(section.begin + length * 2)) length += 4;
    for (char16_t unit; length < units; ++length) {
        std::memcpy(&unit, section.begin + length * 2, sizeof unit);
        if (unit == 0) break;
    }
    return length;
}

std::u16string View::textOf(Section section) {
    std::u16string text(unitsOf(section), u'\0');
    if (!text.empty()) std::memcpy(text.data(), section.begin, text.size() * 2);
    return text;
}

std::u16string View::name() const { return textOf(nameSection()); }

bool View::hasName(std::u16string_view other) const {
    const Section name = nameSection();
    const std::size_t units = name.size / 2;
    if (units < other.size() || other.find(u'\0') != other.npos) return false;
    if (!other.empty() && std::memcmp(name.begin, other.data(), other.size() * 2) != 0) return false;
    if (units == other.size()) return true;
    char16_t next = 0;
    std::memcpy(&next, name.begin + other.size() * 2, sizeof next);
    return next == 0;
}

}  // namespace norvane::platform::data::Record
