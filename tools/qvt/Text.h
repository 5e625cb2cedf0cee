// Text for people: names and values of unknown origin, made harmless for a terminal, and colours.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Options.h"

namespace qvt {

// The first character of a text in UTF-8, which is not empty. A byte that is none is `kNotUtf8`, by itself.
struct Character {
    std::uint32_t code;
    std::size_t size;
};
inline constexpr std::uint32_t kNotUtf8 = 0xFFFFFFFF;
Character firstCharacter(std::string_view text);

// The text with everything escaped that could move a cursor, colour a line or turn the direction of writing:
// control characters become \n, \t, \r or \xHH, marks of direction \uHHHH, bytes that are not UTF-8 \xHH.
std::string printable(std::string_view text);

// The same in double quotes, with " and \ escaped.
std::string inQuotes(std::string_view text);
// A word of the command line within a message: in quotes where it would not be seen otherwise.
std::string shown(std::string_view word);

// Says that something was cut off: an ellipsis, or three dots.
const char* ellipsis();

// As `inQuotes`, cut behind `limit` characters, which an ellipsis shows.
std::string inQuotesCut(std::string_view text, std::size_t limit);

// Escape sequences for a terminal, or nothing.
class Palette {
  public:
    explicit Palette(bool isOn) : isOn_(isOn) {}

    std::string name(std::string_view text) const { return wrap("1", text); }
    std::string type(std::string_view text) const { return wrap("36", text); }
    std::string classText(std::string_view text) const { return wrap("33", text); }
    std::string unit(std::string_view text) const { return wrap("32", text); }
    std::string added(std::string_view text) const { return wrap("32", text); }
    std::string removed(std::string_view text) const { return wrap("31", text); }
    std::string changed(std::string_view text) const { return wrap("33", text); }
    std::string faint(std::string_view text) const { return wrap("2", text); }

  private:
    std::string wrap(const char* code, std::string_view text) const;

    bool isOn_;
};

// Whether the terminal, by what the environment calls it, knows no escape sequences.
bool isDumbTerminal();

// Whether people see characters other than ASCII: not where the environment names a locale of another
// encoding. Where it names none, nothing is known, and UTF-8 is likely.
bool isUtf8Locale();

// What --color and the environment ask for, given whether the output is a terminal.
bool wantsColor(Color color, bool isTerminal);

}  // namespace qvt
