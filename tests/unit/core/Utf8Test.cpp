#include <gtest/gtest.h>

#include <random>
#include <string>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "support/WideText.h"

namespace norvane::platform::core::string {
namespace {

std::u16string decoded(std::string_view text) {
    std::u16string result;
    StringAlgorithm::UTF8Decode(text, result);
    return result;
}

std::string encoded(std::u16string_view text) {
    std::string result;
    StringAlgorithm::UTF8Encode(text, result);
    return result;
}

TEST(Utf8Test, DecodesEachLengthOfSequence) {
    EXPECT_EQ(StringAlgorithm::UTF8Decode("A"), u"A");
    EXPECT_EQ(StringAlgorithm::UTF8Decode("\xC3\x9F"), u"\u00df");
    EXPECT_EQ(StringAlgorithm::UTF8Decode("\xE2\x82\xAC"), u"\u20ac");
    EXPECT_EQ(StringAlgorithm::UTF8Decode("\xF0\x9D\x84\x9E"), u"\xD834\xDD1E");
}

TEST(Utf8Test, DecodesTheEndsOfEachRange) {
    EXPECT_EQ(decoded("\x7F"), u"\x7F");
    EXPECT_EQ(decoded("\xC2\x80"), u"\u0080");
    EXPECT_EQ(decoded("\xDF\xBF"), u"\u07ff");
    EXPECT_EQ(decoded("\xE0\xA0\x80"), u"\u0800");
    EXPECT_EQ(decoded("\xED\x9F\xBF"), u"\ud7ff");
    EXPECT_EQ(decoded("\xEE\x80\x80"), u"\ue000");
    EXPECT_EQ(decoded("\xEF\xBF\xBF"), u"\uffff");
    EXPECT_EQ(decoded("\xF0\x90\x80\x80"), u"\xD800\xDC00");
    EXPECT_EQ(decoded("\xF4\x8F\xBF\xBF"), u"\xDBFF\xDFFF");
}

TEST(Utf8Test, NullStaysNullAndEmptyStaysEmpty) {
    EXPECT_EQ(StringAlgorithm::UTF8Decode(nullptr).value(), nullptr);
    EXPECT_EQ(StringAlgorithm::UTF8Decode(nullptr, 3).value(), nullptr);
    ASSERT_NE(StringAlgorithm::UTF8Decode("").value(), nullptr);
    EXPECT_EQ(StringAlgorithm::UTF8Decode(""), u"");
    EXPECT_EQ(StringAlgorithm::UTF8Encode(nullptr), "");
    EXPECT_EQ(StringAlgorithm::UTF8Encode(u""), "");
}

TEST(Utf8Test, BytesThatBeginNothingBecomeOneReplacementEach) {
    EXPECT_EQ(decoded("a\x80z"), u"a\ufffdz");
    EXPECT_EQ(decoded("\x80\xBF"), u"\ufffd\ufffd");
    EXPECT_EQ(decoded("\xC0\x80"), u"\ufffd\ufffd");
    EXPECT_EQ(decoded("\xC1\xBF"), u"\ufffd\ufffd");
    EXPECT_EQ(decoded("\xF5\x80\x80\x80"), u"\ufffd\ufffd\ufffd\ufffd");
    EXPECT_EQ(decoded("\xFE\xFF"), u"\ufffd\ufffd");
}

TEST(Utf8Test, OverlongSurrogateAndTooLargeFormsAreRefusedAtTheirSecondByte) {
    EXPECT_EQ(decoded("\xE0\x9F\xBF"), u"\ufffd\ufffd\ufffd");
    EXPECT_EQ(decoded("\xED\xA0\x80"), u"\ufffd\ufffd\ufffd");
    EXPECT_EQ(decoded("\xF0\x8F\xBF\xBF"), u"\ufffd\ufffd\ufffd\ufffd");
    EXPECT_EQ(decoded("\xF4\x90\x80\x80"), u"\ufffd\ufffd\ufffd\ufffd");
}

TEST(Utf8Test, UnfinishedSequenceIsOneReplacementAndEatsNothing) {
    EXPECT_EQ(decoded("\xE2\x82"
                      "A"),
              u"\ufffdA");
    EXPECT_EQ(decoded("\xF0\x9D\x84"
                      "A"),
              u"\ufffdA");
    EXPECT_EQ(decoded("\xE2\x82\xC3\x9F"), u"\ufffd\u00df");
    EXPECT_EQ(decoded("\xC3"), u"\ufffd");
    EXPECT_EQ(decoded("ab\xF0\x9D\x84"), u"ab\ufffd");
}

// Example text of the Unicode Standard for this rule.
TEST(Utf8Test, LongestBeginningsAreReplaced) {
    EXPECT_EQ(decoded("\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64"),
              u"a\ufffd\ufffd\ufffdb\ufffdc\ufffd\ufffdd");
}

TEST(Utf8Test, LongTextsOfMixedWidthAreDecodedAtEveryAlignment) {
    for (std::size_t ascii = 0; ascii < 40; ++ascii) {
        std::string text(ascii, 'x');
        std::u16string expected(ascii, u'x');
        text += "\xC3\x9F" + std::string(300, 'y') + "\xE2\x82\xAC";
        expected += u"\u00df" + std::u16string(300, u'y') + u"\u20ac";

        EXPECT_EQ(decoded(text), expected);
        EXPECT_EQ(StringAlgorithm::UTF8Decode(text.c_str()).view(), expected);
    }
}

TEST(Utf8Test, DecodingAddsToTheEnd) {
    std::u16string result = u"before ";

    StringAlgorithm::UTF8Decode("\xC3\x9F", result);

    EXPECT_EQ(result, u"before \u00df");
}

TEST(Utf8Test, EncodesEachLengthOfSequence) {
    EXPECT_EQ(StringAlgorithm::UTF8Encode(u"A\x7F\u0080\u07ff\u0800\uffff"),
              "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(StringAlgorithm::UTF8Encode(u"\xD800\xDC00\xDBFF\xDFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(Utf8Test, LoneSurrogatesAreReplaced) {
    EXPECT_EQ(encoded(u"a\xD834"), "a\xEF\xBF\xBD");
    EXPECT_EQ(encoded(u"\xDD1E"
                      u"a"),
              "\xEF\xBF\xBD"
              "a");
    EXPECT_EQ(encoded(u"\xD834\xD834\xDD1E"), "\xEF\xBF\xBD\xF0\x9D\x84\x9E");
}

TEST(Utf8Test, TextOfGivenLengthMayHoldNul) {
    EXPECT_EQ(StringAlgorithm::UTF8Encode(u"a\0b", 3), std::string("a\0b", 3));
    EXPECT_EQ(StringAlgorithm::UTF8Decode("a\0b", 3).view(), std::u16string_view(u"a\0b", 3));
}

TEST(Utf8Test, EveryCharacterComesBack) {
    for (std::uint32_t character = 1; character <= 0x10FFFF; character += character < 0x3000 ? 1 : 97) {
        if (character >= 0xD800 && character < 0xE000) continue;
        std::u16string text;
        if (character < 0x10000) {
            text = static_cast<char16_t>(character);
        } else {
            text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
        ASSERT_EQ(decoded(encoded(text)), text) << character;
    }
}

TEST(Utf8Test, AnyBytesDecodeToSoundText) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes;
        for (std::size_t count = random() % 40; count != 0; --count) bytes += static_cast<char>(random());
        const std::u16string text = decoded(bytes);
        ASSERT_EQ(decoded(encoded(text)), text);
    }
}

}  // namespace
}  // namespace norvane::platform::core::string
