#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <string>

#include "norvane/platform/data/metadata/tDataType.h"
#include "xml/NumberText.h"

namespace norvane::platform::data {
namespace {

constexpr int indexOf(metadata::tDataType type) { return static_cast<int>(type) - 7; }

constexpr int kBool = indexOf(metadata::kBool);
constexpr int kInt8 = indexOf(metadata::kInt8);
constexpr int kUint8 = indexOf(metadata::kUint8);
constexpr int kInt16 = indexOf(metadata::kInt16);
constexpr int kUint16 = indexOf(metadata::kUint16);
constexpr int kInt32 = indexOf(metadata::kInt32);
constexpr int kUint32 = indexOf(metadata::kUint32);
constexpr int kInt64 = indexOf(metadata::kInt64);
constexpr int kUint64 = indexOf(metadata::kUint64);
constexpr int kScalar = indexOf(metadata::kScalar);
constexpr int kDouble = indexOf(metadata::kDouble);
constexpr int kMatrix4x4 = indexOf(metadata::kMatrix4x4);

// The text of a value, or of the value with these low bytes.
template <typename T>
std::string textOf(T value, int index) {
    core::tWChar text[kNumberTextSize];
    EXPECT_TRUE(formatNumber(&value, text, index));
    std::string narrow;
    for (const core::tWChar* unit = text; *unit; ++unit) narrow += static_cast<char>(*unit);
    return narrow;
}

// The number in a token, or `untouched` when it is refused.
template <typename T>
T numberOf(const char* token, int index, T untouched = T(77)) {
    T value = untouched;
    const bool parsed = parseNumber(token, &value, index);
    EXPECT_TRUE(parsed || value == untouched) << token;
    return value;
}

template <typename T>
bool refuses(const char* token, int index) {
    T value = T(77);
    return !parseNumber(token, &value, index) && value == T(77);
}

TEST(NumberText, DoubleIsWrittenWithSevenDigitsAndReadsBackAsWritten) {
    const std::string text = textOf(0.1234567891, kDouble);

    EXPECT_EQ(text, "0.1234568");
    EXPECT_EQ(numberOf<double>(text.c_str(), kDouble), 0.1234568);
}

TEST(NumberText, DoubleWithMoreThanSevenIntegerDigitsKeepsTheFirstSeven) {
    EXPECT_EQ(textOf(123456789.0, kDouble), "1.234568e+08");
    EXPECT_EQ(textOf(1234567.0, kDouble), "1234567");
}

TEST(NumberText, FloatsAreWrittenWithoutTrailingZeros) {
    EXPECT_EQ(textOf(1.5, kDouble), "1.5");
    EXPECT_EQ(textOf(2.0, kDouble), "2");
    EXPECT_EQ(textOf(1.5F, kScalar), "1.5");
    EXPECT_EQ(textOf(2.0F, kScalar), "2");
    EXPECT_EQ(textOf(-0.25, kMatrix4x4), "-0.25");
}

TEST(NumberText, SmallExponentsAreWrittenInFullAndOthersWithTwoDigits) {
    EXPECT_EQ(textOf(0.0001, kDouble), "0.0001");
    EXPECT_EQ(textOf(0.00001, kDouble), "1e-05");
    EXPECT_EQ(textOf(1e100, kDouble), "1e+100");
}

TEST(NumberText, IntegersAreWrittenInDecimal) {
    EXPECT_EQ(textOf(std::int8_t{-1}, kInt8), "-1");
    EXPECT_EQ(textOf(std::uint8_t{255}, kUint8), "255");
    EXPECT_EQ(textOf(std::uint8_t{1}, kBool), "1");
    EXPECT_EQ(textOf(std::int16_t{-32768}, kInt16), "-32768");
    EXPECT_EQ(textOf(std::uint16_t{65535}, kUint16), "65535");
    EXPECT_EQ(textOf(std::numeric_limits<std::int32_t>::min(), kInt32), "-2147483648");
    EXPECT_EQ(textOf(std::numeric_limits<std::uint32_t>::max(), kUint32), "4294967295");
    EXPECT_EQ(textOf(std::numeric_limits<std::int64_t>::min(), kInt64), "-9223372036854775808");
}

TEST(NumberText, LargestUint64IsWrittenInFull) {
    EXPECT_EQ(textOf(std::numeric_limits<std::uint64_t>::max(), kUint64), "18446744073709551615");
}

TEST(NumberText, NumbersThatAreNoneAreWrittenAsWordsAndDoNotReadBack) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();

    EXPECT_EQ(textOf(infinity, kDouble), "inf");
    EXPECT_EQ(textOf(-infinity, kDouble), "-inf");
    EXPECT_EQ(textOf(nan, kDouble), "nan");
    EXPECT_EQ(textOf(-nan, kDouble), "-nan");
    for (const char* word : {"inf", "-inf", "nan", "-nan", "infinity"})
        EXPECT_TRUE(refuses<double>(word, kDouble)) << word;
}

TEST(NumberText, BoolHasNoWordsAndKeepsTheByteItGets) {
    EXPECT_TRUE(refuses<std::int32_t>("true", kBool));
    EXPECT_EQ(numberOf<std::int32_t>("2", kBool), 2);
    EXPECT_EQ(textOf(std::uint8_t{2}, kBool), "2");
}

TEST(NumberText, NarrowIntegersAreNotCheckedAgainstTheirOwnRange) {
    const auto int8 = numberOf<std::int32_t>("200", kInt8);
    const auto uint8 = numberOf<std::int32_t>("300", kUint8);
    const auto int16 = numberOf<std::int32_t>("70000", kInt16);

    EXPECT_EQ(int8, 200);
    EXPECT_EQ(textOf(int8, kInt8), "-56");
    EXPECT_EQ(static_cast<std::uint8_t>(uint8), 44);
    EXPECT_EQ(static_cast<std::int16_t>(int16), 4464);
}

TEST(NumberText, NarrowIntegersStoreFourBytesAndNoMore) {
    unsigned char bytes[8];
    std::memset(bytes, 0xAA, sizeof bytes);

    ASSERT_TRUE(parseNumber("-2", bytes, kInt8));

    const unsigned char expected[8] = {0xFE, 0xFF, 0xFF, 0xFF, 0xAA, 0xAA, 0xAA, 0xAA};
    EXPECT_EQ(std::memcmp(bytes, expected, sizeof expected), 0);
}

TEST(NumberText, TargetNeedsNoAlignment) {
    unsigned char bytes[9] = {};

    ASSERT_TRUE(parseNumber("1", bytes + 1, kInt64));

    const unsigned char expected[9] = {0, 1, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(std::memcmp(bytes, expected, sizeof expected), 0);
}

TEST(NumberText, MinusOneWrapsAroundInUnsignedTypes) {
    EXPECT_EQ(numberOf<std::uint32_t>("-1", kUint32), 4294967295U);
    EXPECT_EQ(numberOf<std::uint64_t>("-1", kUint64), 18446744073709551615U);
}

TEST(NumberText, NumberEndsWhereItCannotContinue) {
    EXPECT_EQ(numberOf<double>("1,5", kDouble), 1.0);
    EXPECT_EQ(numberOf<std::int32_t>("12em", kInt32), 12);
    EXPECT_EQ(numberOf<std::int32_t>("0x1F", kInt32), 0);
    EXPECT_EQ(numberOf<double>("0x1p3", kDouble), 0.0);
    EXPECT_EQ(numberOf<double>("12m", kDouble), 12.0);
    EXPECT_EQ(numberOf<std::int32_t>("1.9", kInt32), 1);
}

TEST(NumberText, LeadingZerosAreDecimal) { EXPECT_EQ(numberOf<std::int32_t>("0012", kInt32), 12); }

TEST(NumberText, ExponentWithoutDigitsIsRefusedByFloatsOnly) {
    for (const char* token : {"12e", "12em", "1e+", "1E"}) {
        EXPECT_TRUE(refuses<double>(token, kDouble)) << token;
        EXPECT_FALSE(refuses<std::int32_t>(token, kInt32)) << token;
    }
}

TEST(NumberText, WhatDoesNotBeginWithANumberIsRefused) {
    for (const char* token : {"", "-", "+", ".", "x1", "--1", "e5", "1.e", ",5",
                              "\xC2\xA0"
                              "1"}) {
        EXPECT_TRUE(refuses<double>(token, kDouble)) << token;
    }
    for (const char* token : {"", "-", "+", ".5", "x1", "--1", "+-1"})
        EXPECT_TRUE(refuses<std::int32_t>(token, kInt32)) << token;
}

TEST(NumberText, BlanksAndPlusInFrontArePassedOver) {
    EXPECT_EQ(numberOf<std::int32_t>("\v\f 5", kInt32), 5);
    EXPECT_EQ(numberOf<std::int32_t>("+5", kInt32), 5);
    EXPECT_EQ(numberOf<double>("+.5", kDouble), 0.5);
}

TEST(NumberText, NumberOutOfRangeIsRefused) {
    EXPECT_TRUE(refuses<std::int32_t>("2147483648", kInt32));
    EXPECT_TRUE(refuses<std::int32_t>("99999999999", kInt8));
    EXPECT_TRUE(refuses<std::uint32_t>("4294967296", kUint32));
    EXPECT_TRUE(refuses<std::uint64_t>("18446744073709551616", kUint64));
    EXPECT_TRUE(refuses<float>("1e39", kScalar));
    EXPECT_TRUE(refuses<double>("-1e309", kDouble));
}

TEST(NumberText, FloatTooSmallIsZero) {
    EXPECT_EQ(numberOf<double>("1e-400", kDouble), 0.0);
    EXPECT_EQ(numberOf<float>("1e-60", kScalar), 0.0F);
}

TEST(NumberText, TokenEndsAtItsEndWithoutANul) {
    const char text[] = "1234";
    std::int32_t value = 0;

    ASSERT_TRUE(parseNumber(text, text + 2, &value, kInt32));

    EXPECT_EQ(value, 12);
}

TEST(NumberText, NarrowTextHasNoNulAndTellsItsLength) {
    char text[kNumberTextSize];
    std::memset(text, '#', sizeof text);
    const std::int32_t value = -12;

    const std::size_t length = formatNumber(&value, text, kInt32);

    EXPECT_EQ(std::string(text, 5), "-12##");
    EXPECT_EQ(length, 3U);
}

struct tComma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class WithCommaLocale : public testing::Test {
  public:
    WithCommaLocale() : former_(std::locale::global(std::locale(std::locale::classic(), new tComma))) {}
    ~WithCommaLocale() override { std::locale::global(former_); }

  private:
    std::locale former_;
};

TEST_F(WithCommaLocale, NumbersKeepTheirPoint) {
    EXPECT_EQ(textOf(1234.5, kDouble), "1234.5");
    EXPECT_EQ(textOf(std::int32_t{1234567}, kInt32), "1234567");
    EXPECT_EQ(numberOf<double>("1.5", kDouble), 1.5);
    EXPECT_EQ(numberOf<double>("+1.5", kDouble), 1.5);
    EXPECT_EQ(numberOf<double>("+1,5", kDouble), 1.0);
}

}  // namespace
}  // namespace norvane::platform::data
