#include "xml/SevenDigits.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace norvane::platform::data {
namespace {

constexpr int kDigits = 7;
constexpr std::uint32_t kLeast = 1'000'000;  // the least number of seven digits
constexpr int kMostExactPower = 22;          // larger powers of ten are no doubles
constexpr int kLeastFixed = -4;              // below, and from seven digits on, exponents are written

constexpr auto kPowers = [] {
    std::array<double, kMostExactPower + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}();

constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

void putPair(std::uint32_t number, char* to) { std::memcpy(to, &kPairs[std::size_t{number} * 2], 2); }

// The power of ten of the first digit, or one less: size lies between two powers of two.
int leastExponentOf(double size) {
    const int binary = static_cast<int>(std::bit_cast<std::uint64_t>(size) >> 52) - 1023;
    return static_cast<int>((std::int64_t{binary} * 78913) >> 18);  // of log10(2), in 2^-18
}

// `size` times ten to that power. It is off by half of the last bit at most, as both are exact.
double scaled(double size, int power) {
    return power >= 0 ? size * kPowers[static_cast<std::size_t>(power)]
                      : size / kPowers[static_cast<std::size_t>(-power)];
}

// A number of seven digits as eight characters, the last of them "0".
struct Decimal {
    Decimal(std::uint32_t number, int exponentOfFirst) : exponent(exponentOfFirst) {
        const std::uint32_t high = number / 1000;
        const std::uint32_t low = number % 1000 * 10;
        putPair(high / 100, digits);
        putPair(high % 100, digits + 2);
        putPair(low / 100, digits + 4);
        putPair(low % 100, digits + 6);
        std::uint64_t bytes;
        std::memcpy(&bytes, digits, sizeof bytes);
        count = 8 - std::countl_zero(bytes ^ 0x3030303030303030u) / 8;
    }

    char digits[8];
    int exponent;
    int count;  // without the zeros at the end
};

// All copies are of eight characters, wherever the text ends: the next ones are written over the rest.

char* putWhole(const Decimal& decimal, char* to) {
    std::memcpy(to, decimal.digits, 8);
    const int whole = decimal.exponent + 1;
    if (decimal.count <= whole) return to + whole;
    to[whole] = '.';
    std::memcpy(to + whole + 1, decimal.digits + whole, static_cast<std::size_t>(8 - whole));
    return to + decimal.count + 1;
}

char* putFraction(const Decimal& decimal, char* to) {
    static constexpr char kZeros[8] = {'0', '.', '0', '0', '0', '0', '0', '0'};
    std::memcpy(to, kZeros, sizeof kZeros);
    char* first = to + 1 - decimal.exponent;
    std::memcpy(first, decimal.digits, 8);
    return first + decimal.count;
}

char* putWithExponent(const Decimal& decimal, char* to) {
    *to = decimal.digits[0];
    if (decimal.count > 1) {
        to[1] = '.';
        std::memcpy(to + 2, decimal.digits + 1, 7);
    }
    to += decimal.count > 1 ? decimal.count + 1 : 1;
    *to++ = 'e';
    *to++ = decimal.exponent < 0 ? '-' : '+';
    putPair(static_cast<std::uint32_t>(std::abs(decimal.exponent)), to);
    return to + 2;
}

char* put(const Decimal& decimal, char* to) {
    if (decimal.exponent < kLeastFixed || decimal.exponent >= kDigits) return putWithExponent(decimal, to);
    return decimal.exponent < 0 ? putFraction(decimal, to) : putWhole(decimal, to);
}

}  // namespace

// What lies between two numbers of seven digits is off by less than 10^-8, so that unless it is that close to
// the middle it is rounded right. A wrong guess of the exponent is told by an eighth digit; a size so close
// to a power of ten that the guess hangs on what it is off by is rounded to that power either way.
char* printSevenDigits(double value, char* text) {
    const double size = std::fabs(value);
    if (std::signbit(value)) *text++ = '-';
    if (size == 0) {
        *text = '0';
        return text + 1;
    }
    int exponent = leastExponentOf(size);
    if (exponent < kDigits - 1 - kMostExactPower || exponent > kDigits - 2 + kMostExactPower) return nullptr;
    double shifted = scaled(size, kDigits - 1 - exponent);
    if (shifted >= kLeast * 10) shifted = scaled(size, kDigits - 1 - ++exponent);
    auto number = static_cast<std::uint32_t>(shifted);
    const double rest = shifted - number;
    constexpr double kUnsure = 1e-6;
    if (std::fabs(rest - 0.5) < kUnsure) return nullptr;
    if (rest > 0.5) ++number;
    if (number == kLeast * 10) return put(Decimal(kLeast, exponent + 1), text);
    return put(Decimal(number, exponent), text);
}

}  // namespace norvane::platform::data
