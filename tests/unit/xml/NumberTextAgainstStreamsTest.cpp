#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

#include "support/reference/NumberTextReference.h"
#include "xml/NumberText.h"

namespace norvane::platform::data {
namespace {

constexpr int kIndexCount = 17;
constexpr int kTokensPerIndex = 20000;
constexpr int kValuesPerIndex = 20000;

struct tOutcome {
    bool parsed;
    std::uint64_t bits;  // with the bytes that were not written
};

bool operator==(const tOutcome& left, const tOutcome& right) {
    return left.parsed == right.parsed && left.bits == right.bits;
}

std::ostream& operator<<(std::ostream& out, const tOutcome& outcome) {
    return out << (outcome.parsed ? "parsed " : "refused ") << std::hex << outcome.bits;
}

constexpr std::uint64_t kUntouched = 0xA5A5A5A5A5A5A5A5U;

tOutcome parsed(const std::string& token, int index) {
    tOutcome outcome{false, kUntouched};
    outcome.parsed = parseNumber(token.c_str(), &outcome.bits, index);
    return outcome;
}

tOutcome parsedWithEnd(const std::string& token, int index) {
    const std::string longer = token + "7";
    tOutcome outcome{false, kUntouched};
    outcome.parsed = parseNumber(longer.data(), longer.data() + token.size(), &outcome.bits, index);
    return outcome;
}

tOutcome expected(const std::string& token, int index) {
    tOutcome outcome{false, kUntouched};
    outcome.parsed = reference::parseNumber(token, &outcome.bits, index);
    return outcome;
}

std::string formatted(const void* value, int index) {
    core::tWChar text[kNumberTextSize];
    formatNumber(value, text, index);
    std::string narrow;
    for (const core::tWChar* unit = text; *unit; ++unit) narrow += static_cast<char>(*unit);
    return narrow;
}

// A floating point value in the type that an index stands for.
std::uint64_t bitsOf(double value, int index) {
    std::uint64_t bits = 0;
    const auto narrow = static_cast<float>(value);
    if (index == 9)
        std::memcpy(&bits, &narrow, sizeof narrow);
    else
        std::memcpy(&bits, &value, sizeof value);
    return bits;
}

// Tokens of every sort: soups of the characters that mean something, numbers put together from their parts,
// printed random values, and any of these with one character changed.
class Tokens {
  public:
    explicit Tokens(unsigned seed) : random_(seed) {}

    std::string next() {
        std::string token = fresh();
        if (oneOf(4) == 0 && !token.empty()) token[oneOf(token.size())] = letter();
        return token;
    }

  private:
    std::string fresh() {
        switch (oneOf(4)) {
            case 0:
                return soup();
            case 1:
                return printed();
            default:
                return built();
        }
    }

    std::string soup() {
        std::string token;
        for (std::size_t left = oneOf(9); left > 0; --left) token += letter();
        return token;
    }

    std::string built() {
        static constexpr const char* kSigns[] = {"",   "",   "",  "",    "-",  "-",  "+",
                                                 "--", "-+", " ", "\t-", "\v", "\f+"};
        static constexpr const char* kTails[] = {"",   "",   "",  "",   "",   "x",  "e",
                                                 "E-", ",5", ".", " 7", "p3", "inf"};
        std::string token = pick(kSigns) + zeros() + digits();
        if (oneOf(2) == 0) token += "." + zeros() + digits();
        if (oneOf(3) == 0) token += exponent();
        return token + pick(kTails);
    }

    std::string exponent() {
        static constexpr const char* kMarks[] = {"e", "E", "e+", "e-", "E-", "e--"};
        return pick(kMarks) + std::to_string(oneOf(oneOf(4) == 0 ? 400 : 40));
    }

    std::string printed() {
        const std::uint64_t bits = random_();
        char text[kNumberTextSize];
        return std::string(text, formatNumber(&bits, text, static_cast<int>(oneOf(kIndexCount))));
    }

    std::string zeros() { return std::string(oneOf(8) == 0 ? oneOf(30) : 0, '0'); }

    std::string digits() {
        std::string token;
        for (std::size_t left = oneOf(oneOf(6) == 0 ? 60 : 12); left > 0; --left)
            token += static_cast<char>('0' + oneOf(10));
        return token;
    }

    char letter() {
        static constexpr std::string_view kLetters =
            "0123456789012345678901234567890123456789++--..eeEEpPxXfFnNaAiIlLuU,'_ \t\v\f\n\r\x80\xFF";
        return kLetters[oneOf(kLetters.size())];
    }

    template <std::size_t N>
    std::string pick(const char* const (&texts)[N]) {
        return texts[oneOf(N)];
    }

    std::size_t oneOf(std::size_t count) { return random_() % count; }

    std::mt19937_64 random_;
};

class AgainstStreams : public testing::TestWithParam<int> {};

TEST_P(AgainstStreams, HardTokensAreReadAlike) {
    const std::string tokens[] = {"",
                                  " ",
                                  "-",
                                  "+",
                                  ".",
                                  "-.",
                                  "+.",
                                  "e",
                                  "e5",
                                  ".e5",
                                  "-e5",
                                  "5",
                                  "+5",
                                  "-5",
                                  "--5",
                                  "+-5",
                                  "-+5",
                                  "- 5",
                                  " 5",
                                  "\t5",
                                  "\n5",
                                  "\r5",
                                  "\v5",
                                  "\f5",
                                  "\v\f-5",
                                  ".5",
                                  "-.5",
                                  "+.5",
                                  "5.",
                                  "-5.",
                                  "5.e",
                                  "5.e1",
                                  ".5e1",
                                  "5..5",
                                  "5.5.5",
                                  "1e5",
                                  "1E5",
                                  "1e",
                                  "1E",
                                  "12e",
                                  "12em",
                                  "1e+",
                                  "1e-",
                                  "1e+5",
                                  "1e-5",
                                  "1e5e",
                                  "1e5e5",
                                  "1e5.5",
                                  "1e++5",
                                  "1e 5",
                                  "1e05",
                                  "1e0000000000000000005",
                                  "1ee5",
                                  "0x1F",
                                  "0X1F",
                                  "0x",
                                  "0x1p3",
                                  "-0x1p3",
                                  "0x1.8p1",
                                  "inf",
                                  "-inf",
                                  "INF",
                                  "infinity",
                                  "nan",
                                  "-nan",
                                  "nan(1)",
                                  "NaN",
                                  "1,5",
                                  "1,500",
                                  "1'000",
                                  "1_000",
                                  "0",
                                  "-0",
                                  "+0",
                                  "00",
                                  "-00",
                                  "000000000000000000000000000012",
                                  "0.0",
                                  "-0.0",
                                  "08",
                                  "09",
                                  "0b11",
                                  "1f",
                                  "1F",
                                  "1d",
                                  "1l",
                                  "1u",
                                  "127",
                                  "128",
                                  "255",
                                  "256",
                                  "-128",
                                  "-129",
                                  "32767",
                                  "32768",
                                  "65535",
                                  "65536",
                                  "2147483647",
                                  "2147483648",
                                  "-2147483648",
                                  "-2147483649",
                                  "4294967295",
                                  "4294967296",
                                  "-1",
                                  "-2",
                                  "-4294967295",
                                  "-4294967296",
                                  "9223372036854775807",
                                  "9223372036854775808",
                                  "-9223372036854775808",
                                  "-9223372036854775809",
                                  "18446744073709551615",
                                  "18446744073709551616",
                                  "-18446744073709551615",
                                  "-18446744073709551616",
                                  "99999999999999999999999999",
                                  "-99999999999999999999999999",
                                  "3.4028235e38",
                                  "3.4028236e38",
                                  "3.5e38",
                                  "1e39",
                                  "-1e39",
                                  "1.1754944e-38",
                                  "1.4e-45",
                                  "0.7e-45",
                                  "0.8e-45",
                                  "1e-46",
                                  "1e-60",
                                  "1.7976931348623157e308",
                                  "1.7976931348623159e308",
                                  "1e309",
                                  "-1e309",
                                  "1e400",
                                  "1e99999",
                                  "1e99999999999999999999",
                                  "2.2250738585072014e-308",
                                  "2.2250738585072011e-308",
                                  "4.9e-324",
                                  "2.4e-324",
                                  "2.5e-324",
                                  "1e-324",
                                  "-1e-400",
                                  "1e-99999",
                                  "1e-99999999999999999999",
                                  "0e99999",
                                  "0e-99999",
                                  "0.1",
                                  "0.30000000000000004",
                                  "9007199254740993",
                                  "9007199254740992.99999999999999999999",
                                  "16777217",
                                  "1.00000005960464477539062500001",
                                  "true",
                                  "false",
                                  "x",
                                  "1x",
                                  "1 2",
                                  "\xC2\xA0"
                                  "1",
                                  "1\xC2\xA0",
                                  "\xEF\xBC\x91",
                                  std::string(400, '9'),
                                  "0." + std::string(400, '0') + "1",
                                  std::string(400, '0') + "7",
                                  "1." + std::string(400, '3') + "e5",
                                  "1e" + std::string(400, '0') + "5",
                                  std::string(5000, '1')};

    for (const std::string& token : tokens) {
        EXPECT_EQ(parsed(token, GetParam()), expected(token, GetParam())) << token;
        EXPECT_EQ(parsedWithEnd(token, GetParam()), expected(token, GetParam())) << token;
    }
}

TEST_P(AgainstStreams, RandomTokensAreReadAlike) {
    Tokens tokens(static_cast<unsigned>(GetParam()));

    for (int round = 0; round < kTokensPerIndex; ++round) {
        const std::string token = tokens.next();
        ASSERT_EQ(parsed(token, GetParam()), expected(token, GetParam())) << testing::PrintToString(token);
    }
}

TEST_P(AgainstStreams, RandomTokensWithoutANulAreReadAlike) {
    Tokens tokens(1000 + static_cast<unsigned>(GetParam()));

    for (int round = 0; round < kTokensPerIndex / 4; ++round) {
        const std::string token = tokens.next();
        ASSERT_EQ(parsedWithEnd(token, GetParam()), expected(token, GetParam()))
            << testing::PrintToString(token);
    }
}

TEST_P(AgainstStreams, RandomBitsAreWrittenAlike) {
    std::mt19937_64 random(static_cast<unsigned>(GetParam()));

    for (int round = 0; round < kValuesPerIndex; ++round) {
        const std::uint64_t bits = random();
        ASSERT_EQ(formatted(&bits, GetParam()), reference::formatNumber(&bits, GetParam()))
            << std::hex << bits;
    }
}

// Random bits are nearly all far from what people write.
TEST_P(AgainstStreams, EverydayValuesAreWrittenAlike) {
    std::mt19937_64 random(static_cast<unsigned>(GetParam()));
    std::uniform_int_distribution<std::int64_t> digits(-99999999999, 99999999999);

    for (int round = 0; round < kValuesPerIndex; ++round) {
        const auto whole = static_cast<double>(digits(random) % (round % 3 == 0 ? 100000 : 100000000000));
        const double decimals =
            whole / static_cast<double>(1 << (round % 20)) / (round % 2 == 0 ? 1.0 : 100.0);
        const std::uint64_t bits = bitsOf(decimals, GetParam());
        ASSERT_EQ(formatted(&bits, GetParam()), reference::formatNumber(&bits, GetParam())) << decimals;
    }
}

// Where the text gets another digit, another exponent or another form, and where the last digit is rounded up
// or down.
TEST_P(AgainstStreams, ValuesAroundTheEdgesOfTextsAreWrittenAlike) {
    for (int exponent = -45; exponent <= 45; ++exponent) {
        for (const char* digits :
             {"1", "9.999999", "9.9999995", "9.9999994999", "1.0000005", "1.2345675", "1.2345665", "4.5",
              "2.000001", "1.999999", "8.88888850000001", "8.88888849999999"}) {
            double value = std::stod(digits + ("e" + std::to_string(exponent)));
            for (int step = 0; step < 3; ++step, value = std::nextafter(value, 0.0)) {
                const std::uint64_t bits = bitsOf(-value, GetParam());
                ASSERT_EQ(formatted(&bits, GetParam()), reference::formatNumber(&bits, GetParam())) << value;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(NumberText, AgainstStreams, testing::Range(0, kIndexCount));

}  // namespace
}  // namespace norvane::platform::data
