#include "Text.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace qvt {

namespace {

std::size_t sizeByFirst(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

bool isControl(std::uint32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

bool isDirectionMark(std::uint32_t code) {
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

std::string numbered(const char* form, unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, form, value);
    return text;
}

std::string escaped(const Character& character, char first) {
    switch (character.code) {
        case '\n':
            return "\\n";
        case '\t':
            return "\\t";
        case '\r':
            return "\\r";
        case kNotUtf8:
            return numbered("\\x%02x", static_cast<unsigned char>(first));
        default:
            return numbered(character.code < 0x100 ? "\\x%02x" : "\\u%04x", character.code);
    }
}

bool mustEscape(std::uint32_t code) { return code == kNotUtf8 || isControl(code) || isDirectionMark(code); }

std::string start(std::string_view text, std::size_t limit, std::string_view alsoEscape, bool& isCut) {
    std::string result;
    while (!text.empty() && limit > 0) {
        const Character character = firstCharacter(text);
        if (mustEscape(character.code))
            result += escaped(character, text.front());
        else if (character.size == 1 && alsoEscape.find(text.front()) != std::string_view::npos)
            result += std::string("\\") + text.front();
        else
            result += text.substr(0, character.size);
        text.remove_prefix(character.size);
        --limit;
    }
    isCut = !text.empty();
    return result;
}

}  // namespace

Character firstCharacter(std::string_view text) {
    const auto byteAt = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t size = sizeByFirst(byteAt(0));
    if (size == 1) return {byteAt(0), 1};
    if (size == 0 || size > text.size()) return {kNotUtf8, 1};
    std::uint32_t code = byteAt(0) & (0xFFu >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) return {kNotUtf8, 1};
        code = code << 6 | (byteAt(i) & 0x3F);
    }
    return {code, size};
}

std::string printable(std::string_view text) {
    bool isCut = false;
    return start(text, text.size(), "", isCut);
}

std::string inQuotes(std::string_view text) { return inQuotesCut(text, text.size()); }

std::string shown(std::string_view word) {
    const bool isSeen = !word.empty() && word.front() != ' ' && word.back() != ' ';
    return isSeen ? std::string(word) : inQuotes(word);
}

std::string inQuotesCut(std::string_view text, std::size_t limit) {
    bool isCut = false;
    const std::string beginning = start(text, limit, "\"\\", isCut);
    return '"' + beginning + (isCut ? ellipsis() : "") + '"';
}

const char* ellipsis() { return isUtf8Locale() ? "…" : "..."; }

std::string Palette::wrap(const char* code, std::string_view text) const {
    std::string result(text);
    return isOn_ && !text.empty() ? std::string("\x1b[") + code + "m" + result + "\x1b[0m" : result;
}

bool isDumbTerminal() {
    const char* terminal = std::getenv("TERM");
    return !terminal || *terminal == '\0' || std::string_view(terminal) == "dumb";
}

bool isUtf8Locale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* locale = std::getenv(name);
        if (!locale || *locale == '\0') continue;
        const std::string_view text(locale);
        for (const char* encoding : {"UTF-8", "utf-8", "UTF8", "utf8"})
            if (text.find(encoding) != std::string_view::npos) return true;
        return false;
    }
    return true;
}

bool wantsColor(Color color, bool isTerminal) {
    if (color != Color::automatic) return color == Color::always;
    const char* off = std::getenv("NO_COLOR");
    return isTerminal && !isDumbTerminal() && (!off || *off == '\0');
}

}  // namespace qvt
