#include <gtest/gtest.h>

#include <string>

#include "norvane/platform/core/string/StringAlgorithm.h"

namespace norvane::platform::core::string {
namespace {

std::string encoded(std::string_view bytes) {
    std::string text(StringAlgorithm::EncodeBase64(bytes.data(), bytes.size(), nullptr, 0), '?');
    EXPECT_EQ(StringAlgorithm::EncodeBase64(bytes.data(), bytes.size(), text.data(), text.size()),
              text.size());
    return text;
}

std::string decoded(std::string_view text) {
    std::string bytes(StringAlgorithm::DecodeBase64(text.data(), text.size(), nullptr, 0), '?');
    EXPECT_EQ(StringAlgorithm::DecodeBase64(text.data(), text.size(), bytes.data(), bytes.size()),
              bytes.size());
    return bytes;
}

TEST(Base64Test, EncodesWithPadding) {
    EXPECT_EQ(encoded(""), "");
    EXPECT_EQ(encoded("f"), "Zg==");
    EXPECT_EQ(encoded("fo"), "Zm8=");
    EXPECT_EQ(encoded("foo"), "Zm9v");
    EXPECT_EQ(encoded("foob"), "Zm9vYg==");
}

TEST(Base64Test, UsesTheStandardAlphabet) {
    EXPECT_EQ(encoded("\xFB\xEF\xBE\xFF\xFF\xFF"), "++++////");
    EXPECT_EQ(decoded("++++////"), "\xFB\xEF\xBE\xFF\xFF\xFF");
}

TEST(Base64Test, WritesNoLineBreaks) {
    const std::string text = encoded(std::string(1000, '\0'));

    EXPECT_EQ(text.size(), 1336u);
    EXPECT_EQ(text.find_first_not_of("A="), std::string::npos);
}

TEST(Base64Test, EncodingIntoASmallerBufferStopsAtAWholeGroup) {
    char out[8] = "-------";

    EXPECT_EQ(StringAlgorithm::EncodeBase64("foobar", 6, out, 7), 4u);

    EXPECT_EQ(std::string(out), "Zm9v---");
}

TEST(Base64Test, DecodesWhatItEncodes) {
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        bytes += static_cast<char>(value);
        ASSERT_EQ(decoded(encoded(bytes)), bytes);
    }
}

TEST(Base64Test, DecodingPassesOverWhiteSpace) { EXPECT_EQ(decoded(" Zm9\r\n\tv Ym \n"), "foob"); }

TEST(Base64Test, DecodingStopsAtPadding) { EXPECT_EQ(decoded("Zg==Zm9v"), "f"); }

TEST(Base64Test, DecodingStopsAtAnyOtherCharacter) {
    EXPECT_EQ(decoded("Zm9v*Zm9v"), "foo");
    EXPECT_EQ(decoded("Zm9v\xC3Zm9v"), "foo");
    EXPECT_EQ(decoded("Zm9v-Zm9v"), "foo");
    EXPECT_EQ(decoded("*"), "");
}

TEST(Base64Test, DecodingNeedsNoPadding) {
    EXPECT_EQ(decoded("Zg"), "f");
    EXPECT_EQ(decoded("Zm8"), "fo");
    EXPECT_EQ(decoded("Z"), "");
    EXPECT_EQ(decoded("Zm9vZ"), "foo");
}

TEST(Base64Test, DecodingIntoASmallerBufferFillsIt) {
    char out[4] = "---";

    EXPECT_EQ(StringAlgorithm::DecodeBase64("Zm9vYmFy", 8, out, 2), 2u);

    EXPECT_EQ(std::string(out), "fo-");
}

TEST(Base64Test, NothingGivesNothing) {
    EXPECT_EQ(StringAlgorithm::EncodeBase64(nullptr, 0, nullptr, 0), 0u);
    EXPECT_EQ(StringAlgorithm::DecodeBase64(nullptr, 0, nullptr, 0), 0u);
}

}  // namespace
}  // namespace norvane::platform::core::string
