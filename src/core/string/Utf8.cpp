#include <cstdint>
#include <cstring>
#include <memory>

#include "norvane/platform/core/string/StringAlgorithm.h"

namespace norvane::platform::core::string {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

using Byte = unsigned char;

// What may follow a lead byte: how many bytes, and the range of the first of them. The ranges shut out
// overlong forms, surrogates and what lies above U+10FFFF.
struct Lead {
    int following;
    Byte low;
    Byte high;
};

Lead leadOf(Byte byte) {
    if (byte < 0xC2 || byte > 0xF4) return {0, 0, 0};
    if (byte < 0xE0) return {1, 0x80, 0xBF};
    if (byte < 0xF0)
        return {2, static_cast<Byte>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<Byte>(byte == 0xED ? 0x9F : 0xBF)};
    return {3, static_cast<Byte>(byte == 0xF0 ? 0x90 : 0x80), static_cast<Byte>(byte == 0xF4 ? 0x8F : 0xBF)};
}

char16_t* putCharacter(char16_t* to, std::uint32_t character) {
    if (character < 0x10000) {
        *to++ = static_cast<char16_t>(character);
        return to;
    }
    *to++ = static_cast<char16_t>(0xD7C0 + (character >> 10));
    *to++ = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    return to;
}

// Decodes what begins with the byte at `from`, which is not ASCII, and moves `from` behind it.
char16_t* decodeSequence(const Byte*& from, const Byte* end, char16_t* to) {
    const Byte first = *from++;
    Lead lead = leadOf(first);
    if (lead.following == 0) return putCharacter(to, kReplacement);
    std::uint32_t character = first & (0x3Fu >> lead.following);
    for (; lead.following != 0; --lead.following) {
        if (from == end || *from < lead.low || *from > lead.high) return putCharacter(to, kReplacement);
        character = character << 6 | (*from++ & 0x3Fu);
        lead.low = 0x80;
        lead.high = 0xBF;
    }
    return putCharacter(to, character);
}

// Copies whole words of eight ASCII bytes.
char16_t* widenWords(const Byte*& from, const Byte* end, char16_t* to) {
    while (end - from >= 8) {
        std::uint64_t word;
        std::memcpy(&word, from, sizeof word);
        if ((word & 0x8080808080808080u) != 0) break;
        for (int index = 0; index < 8; ++index) to[index] = from[index];
        from += 8;
        to += 8;
    }
    return to;
}

// `to` has room for as many code units as there are bytes, which is always enough. Answers the end of what
// was written.
char16_t* decode(std::string_view text, char16_t* to) {
    const auto* from = reinterpret_cast<const Byte*>(text.data());
    const Byte* end = from + text.size();
    while (from != end) {
        to = widenWords(from, end, to);
        if (from == end) break;
        if (*from < 0x80)
            *to++ = *from++;
        else
            to = decodeSequence(from, end, to);
    }
    return to;
}

bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// The character that begins at `from`, which moves behind it.
std::uint32_t takeCharacter(const char16_t*& from, const char16_t* end) {
    const char16_t unit = *from++;
    if (!isHighSurrogate(unit)) return isLowSurrogate(unit) ? kReplacement : unit;
    if (from == end || !isLowSurrogate(*from)) return kReplacement;
    return 0x10000u + ((unit & 0x3FFu) << 10) + (*from++ & 0x3FFu);
}

char continuation(std::uint32_t character, int shift) {
    return static_cast<char>(0x80u | ((character >> shift) & 0x3Fu));
}

void appendCharacter(std::uint32_t character, std::string& result) {
    if (character < 0x80) {
        result += static_cast<char>(character);
    } else if (character < 0x800) {
        result += static_cast<char>(0xC0u | character >> 6);
        result += continuation(character, 0);
    } else if (character < 0x10000) {
        result += static_cast<char>(0xE0u | character >> 12);
        result += continuation(character, 6);
        result += continuation(character, 0);
    } else {
        result += static_cast<char>(0xF0u | character >> 18);
        result += continuation(character, 12);
        result += continuation(character, 6);
        result += continuation(character, 0);
    }
}

}  // namespace

WideString StringAlgorithm::UTF8Decode(const char* text) {
    return UTF8Decode(text, text ? std::strlen(text) : 0);
}

WideString StringAlgorithm::UTF8Decode(const char* text, std::size_t length) {
    if (!text) return {};
    constexpr std::size_t kShort = 256;
    char16_t shortText[kShort];
    std::unique_ptr<char16_t[]> longText;
    if (length > kShort) longText.reset(new char16_t[length]);
    char16_t* units = longText ? longText.get() : shortText;
    const char16_t* end = decode({text, length}, units);
    return {units, static_cast<std::size_t>(end - units)};
}

void StringAlgorithm::UTF8Decode(std::string_view text, std::u16string& result) {
    const std::size_t before = result.size();
    result.resize(before + text.size());
    const char16_t* end = decode(text, result.data() + before);
    result.resize(static_cast<std::size_t>(end - result.data()));
}

std::string StringAlgorithm::UTF8Encode(const tWChar* text) {
    return UTF8Encode(text, text ? std::char_traits<tWChar>::length(text) : 0);
}

std::string StringAlgorithm::UTF8Encode(const tWChar* text, std::size_t length) {
    std::string result;
    if (text) UTF8Encode({text, length}, result);
    return result;
}

void StringAlgorithm::UTF8Encode(std::u16string_view text, std::string& result) {
    const char16_t* from = text.data();
    const char16_t* end = from + text.size();
    result.reserve(result.size() + text.size());
    while (from != end) appendCharacter(takeCharacter(from, end), result);
}

}  // namespace norvane::platform::core::string
