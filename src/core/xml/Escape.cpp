#include "core/xml/Escape.h"

#include <array>
#include <cstring>
#include <string_view>

namespace norvane::platform::core::xml {
namespace {

using Marks = std::array<std::uint8_t, 128>;

// Index into `kForms` of an ASCII character that cannot be written as it is, or 0.
constexpr std::array<std::string_view, 9> kForms{"",      "&amp;", "&lt;", "&gt;",        "&quot;",
                                                 "&#13;", "&#10;", "&#9;", "\xEF\xBF\xBD"};

constexpr Marks makeMarks(Context context) {
    Marks marks{};
    for (std::size_t control = 0; control < 0x20; ++control) marks[control] = 8;
    marks['\t'] = context == Context::attribute ? 7 : 0;
    marks['\n'] = context == Context::attribute ? 6 : 0;
    marks['\r'] = 5;
    marks['&'] = 1;
    marks['<'] = 2;
    marks['>'] = 3;
    marks['"'] = context == Context::attribute ? 4 : 0;
    return marks;
}
constexpr Marks kTextMarks = makeMarks(Context::text);
constexpr Marks kAttributeMarks = makeMarks(Context::attribute);

char* putForm(std::uint8_t form, char* to) {
    std::memcpy(to, kForms[form].data(), kForms[form].size());
    return to + kForms[form].size();
}

char byteOf(std::uint32_t lead, std::uint32_t character, int shift) {
    return static_cast<char>(lead | (lead == 0x80 ? (character >> shift) & 0x3F : character >> shift));
}

char* putTwoBytes(std::uint32_t character, char* to) {
    *to++ = byteOf(0xC0, character, 6);
    *to++ = byteOf(0x80, character, 0);
    return to;
}

char* putThreeBytes(std::uint32_t character, char* to) {
    *to++ = byteOf(0xE0, character, 12);
    *to++ = byteOf(0x80, character, 6);
    *to++ = byteOf(0x80, character, 0);
    return to;
}

bool isForbidden(tWChar unit) {
    return isHighSurrogate(unit) || isLowSurrogate(unit) || unit == 0xFFFE || unit == 0xFFFF;
}

// What begins with the code unit at `from`, which is not ASCII.
char* putWide(const tWChar*& from, const tWChar* end, char* to) {
    const tWChar unit = *from++;
    if (unit < 0x800) return putTwoBytes(unit, to);
    if (isHighSurrogate(unit) && from != end && isLowSurrogate(*from)) return putPair(unit, *from++, to);
    return isForbidden(unit) ? putReplacement(to) : putThreeBytes(unit, to);
}

}  // namespace

char* putPair(tWChar high, tWChar low, char* to) {
    const std::uint32_t character = 0x10000u + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
    *to++ = byteOf(0xF0, character, 18);
    *to++ = byteOf(0x80, character, 12);
    *to++ = byteOf(0x80, character, 6);
    *to++ = byteOf(0x80, character, 0);
    return to;
}

char* putReplacement(char* to) { return putThreeBytes(0xFFFD, to); }

char* escape(const tWChar*& from, const tWChar* stop, const tWChar* end, char* to, Context context) {
    const Marks& marks = context == Context::attribute ? kAttributeMarks : kTextMarks;
    while (from < stop) {
        const tWChar unit = *from;
        if (unit >= 0x80) {
            to = putWide(from, end, to);
        } else if (marks[unit] == 0) {
            *to++ = static_cast<char>(unit);
            ++from;
        } else {
            to = putForm(marks[unit], to);
            ++from;
        }
    }
    return to;
}

}  // namespace norvane::platform::core::xml
