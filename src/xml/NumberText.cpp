#include "xml/NumberText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <limits>
#include <locale>
#include <streambuf>
#include <string>
#include <type_traits>
#include <utility>

#include "xml/SevenDigits.h"
#include "xml/Tokenizer.h"

namespace norvane::platform::data {
namespace {

constexpr int kFloatPrecision = 7;

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

// A stream on characters that it does not own.
class ViewBuffer : public std::streambuf {
  public:
    ViewBuffer(const char* begin, const char* end) {
        setg(const_cast<char*>(begin), const_cast<char*>(begin), const_cast<char*>(end));
    }
};

// What a number may look like is what formatted extraction takes: this is the rule, and the fast way below is
// for the tokens on which both agree. Extraction stores something even when it fails, hence the value of its
// own.
template <typename T>
bool extract(const char* token, const char* end, void* target) {
    ViewBuffer buffer(token, end);
    std::istream stream(&buffer);
    stream.imbue(std::locale::classic());
    T value;
    if (!(stream >> value)) return false;
    std::memcpy(target, &value, sizeof value);
    return true;
}

// Blanks, "+", inf, nan and, for unsigned types, "-" mean something else to extraction.
template <typename T>
bool beginsPlainly(const char* token, const char* end) {
    if (std::is_signed_v<T> && token != end && *token == '-') ++token;
    if (std::is_floating_point_v<T> && token != end && *token == '.') ++token;
    return token != end && isDigit(*token);
}

// Extraction takes an "e" for the beginning of an exponent and fails without one; from_chars stops there.
template <typename T>
bool endsPlainly(const char* stop, const char* end) {
    return std::is_integral_v<T> || stop == end || (*stop != 'e' && *stop != 'E');
}

// Up to which power of ten a type is exact, and up to which integer.
template <typename T>
constexpr int kMostExactPower = sizeof(T) == sizeof(double) ? 22 : 10;
template <typename T>
constexpr std::uint64_t kMostExactInteger = std::uint64_t{1} << std::numeric_limits<T>::digits;

template <typename T>
constexpr auto exactPowers() {
    std::array<T, kMostExactPower<T> + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}

// Eight characters that are looked at together, the first one in the lowest byte.
using tOctet = std::uint64_t;

constexpr tOctet octetOf(std::uint8_t each) { return tOctet{0x0101010101010101} * each; }

// How many digits there are ahead of the first other character.
int leadingDigits(tOctet octet) {
    const tOctet others = ((octet + octetOf(0x80 - '9' - 1)) | (octet - octetOf('0'))) & octetOf(0x80);
    return others == 0 ? 8 : std::countr_zero(others) / 8;
}

// The number that the first `count` digits make; there is one at least.
std::uint64_t leadingNumber(tOctet octet, int count) {
    octet = (octet - octetOf('0')) << (64 - 8 * count);  // and zeros ahead of them
    octet = octet * 10 + (octet >> 8);
    constexpr tOctet kPairs = 0x000000FF000000FF;
    return ((octet & kPairs) * 0x000F424000000064 + (octet >> 16 & kPairs) * 0x0000271000000001) >> 32;
}

// Reads on over digits and gives how many there were; `number` means nothing after more than 19 in all.
// Lengths vary too much for a branch at each digit to be foreseen.
std::ptrdiff_t takeDigits(const char*& at, const char* end, std::uint64_t& number) {
    static constexpr std::array<std::uint64_t, 9> kTens{1,      10,      100,      1000,     10000,
                                                        100000, 1000000, 10000000, 100000000};
    const char* next = at;
    int count = 8;
    while (count == 8 && end - next >= 8) {
        tOctet octet;
        std::memcpy(&octet, next, sizeof octet);
        count = leadingDigits(octet);
        if (count == 0) break;
        number = number * kTens[static_cast<std::size_t>(count)] + leadingNumber(octet, count);
        next += count;
    }
    if (count == 8)
        for (; next != end && isDigit(*next); ++next)
            number = number * 10 + static_cast<std::uint64_t>(*next - '0');
    return next - std::exchange(at, next);
}

constexpr std::ptrdiff_t kMostDigits = 19;

// Digits, with a point among them or not. Only numbers that are an exact integer over an exact power of ten:
// of those one division gives the nearest value, as from_chars does.
template <typename T>
bool takeDecimal(const char*& at, const char* end, T& value) {
    static constexpr auto kPowers = exactPowers<T>();
    std::uint64_t number = 0;
    std::ptrdiff_t digits = takeDigits(at, end, number);
    std::ptrdiff_t power = 0;
    if (at != end && *at == '.') power = takeDigits(++at, end, number);
    digits += power;
    if (digits == 0 || digits > kMostDigits) return false;
    if (number > kMostExactInteger<T> || power > kMostExactPower<T>) return false;
    value = static_cast<T>(number) / kPowers[static_cast<std::size_t>(power)];
    return true;
}

template <typename T>
bool takeInteger(const char*& at, const char* end, T& value) {
    std::uint64_t number = 0;
    const std::ptrdiff_t digits = takeDigits(at, end, number);
    if (digits == 0 || digits >= kMostDigits || number > std::numeric_limits<T>::max()) return false;
    value = static_cast<T>(number);
    return true;
}

// Reads digits as most numbers are written and moves `at` behind them, for the caller to see whether that was
// all. False for whatever takes a closer look, with `at` somewhere in it.
template <typename T>
bool takePlain(const char*& at, const char* end, T& value) {
    const bool isNegative = std::is_signed_v<T> && at != end && *at == '-';
    if (isNegative) ++at;
    bool isTaken = false;
    if constexpr (std::is_floating_point_v<T>)
        isTaken = takeDecimal(at, end, value);
    else
        isTaken = takeInteger(at, end, value);
    if (isNegative && isTaken) value = static_cast<T>(-value);
    return isTaken;
}

template <typename T>
bool parse(const char* token, const char* end, void* target) {
    if (token == end) return false;
    T value;
    const char* at = token;
    if (takePlain(at, end, value) && at == end) {
        std::memcpy(target, &value, sizeof value);
        return true;
    }
    if (beginsPlainly<T>(token, end)) {
        const auto [stop, error] = std::from_chars(token, end, value);
        if (error == std::errc() && endsPlainly<T>(stop, end)) {
            std::memcpy(target, &value, sizeof value);
            return true;
        }
    }
    return extract<T>(token, end, target);
}

// Read as one type, and stored with the low bytes of it that an element has.
template <typename T, typename Stored = T>
std::size_t parsePlain(const char*& at, const char* end, std::byte* elements, std::size_t room) {
    std::size_t count = 0;
    for (; count < room; ++count, elements += sizeof(Stored)) {
        while (at != end && Tokenizer::isSpace(*at)) ++at;
        const char* stop = at;
        T value;
        if (!takePlain(stop, end, value) || (stop != end && !Tokenizer::isSpace(*stop))) break;
        at = stop;
        const auto stored = static_cast<Stored>(value);
        std::memcpy(elements, &stored, sizeof stored);
    }
    return count;
}

template <typename T>
T load(const void* value) {
    T loaded;
    std::memcpy(&loaded, value, sizeof loaded);
    return loaded;
}

template <typename T>
std::size_t print(const void* value, char* text) {
    char* const end = text + kNumberTextSize;
    if constexpr (std::is_floating_point_v<T>) {
        if (const char* stop = printSevenDigits(load<T>(value), text))
            return static_cast<std::size_t>(stop - text);
        return static_cast<std::size_t>(
            std::to_chars(text, end, load<T>(value), std::chars_format::general, kFloatPrecision).ptr - text);
    } else {
        return static_cast<std::size_t>(std::to_chars(text, end, +load<T>(value)).ptr - text);
    }
}

}  // namespace

bool parseNumber(const char* token, void* target, int index) {
    return parseNumber(token, token + std::strlen(token), target, index);
}

bool parseNumber(const char* token, const char* end, void* target, int index) {
    switch (index) {
        case 0:
        case 1:
        case 3:
        case 5:
            return parse<std::int32_t>(token, end, target);
        case 2:
        case 4:
        case 6:
            return parse<std::uint32_t>(token, end, target);
        case 7:
            return parse<std::int64_t>(token, end, target);
        case 8:
            return parse<std::uint64_t>(token, end, target);
        case 9:
            return parse<float>(token, end, target);
        default:
            return parse<double>(token, end, target);
    }
}

std::size_t parsePlainNumbers(const char*& at, const char* end, std::byte* elements, std::size_t room,
                              int index) {
    switch (index) {
        case 0:
        case 1:
            return parsePlain<std::int32_t, std::int8_t>(at, end, elements, room);
        case 2:
            return parsePlain<std::uint32_t, std::uint8_t>(at, end, elements, room);
        case 3:
            return parsePlain<std::int32_t, std::int16_t>(at, end, elements, room);
        case 4:
            return parsePlain<std::uint32_t, std::uint16_t>(at, end, elements, room);
        case 5:
            return parsePlain<std::int32_t>(at, end, elements, room);
        case 6:
            return parsePlain<std::uint32_t>(at, end, elements, room);
        case 7:
            return parsePlain<std::int64_t>(at, end, elements, room);
        case 8:
            return parsePlain<std::uint64_t>(at, end, elements, room);
        case 9:
            return parsePlain<float>(at, end, elements, room);
        default:
            return parsePlain<double>(at, end, elements, room);
    }
}

bool formatNumber(const void* value, core::tWChar* text, int index) {
    char narrow[kNumberTextSize];
    const std::size_t length = formatNumber(value, narrow, index);
    *std::copy(narrow, narrow + length, text) = 0;
    return true;
}

std::size_t formatNumber(const void* value, char* text, int index) {
    switch (index) {
        case 0:
        case 2:
            return print<std::uint8_t>(value, text);
        case 1:
            return print<std::int8_t>(value, text);
        case 3:
            return print<std::int16_t>(value, text);
        case 4:
            return print<std::uint16_t>(value, text);
        case 5:
            return print<std::int32_t>(value, text);
        case 6:
            return print<std::uint32_t>(value, text);
        case 7:
            return print<std::int64_t>(value, text);
        case 8:
            return print<std::uint64_t>(value, text);
        case 9:
            return print<float>(value, text);
        default:
            return print<double>(value, text);
    }
}

}  // namespace norvane::platform::data
