#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/Tokenizer.h"

namespace norvane::platform::data {
namespace {

using testing::ElementsAre;

std::vector<std::string> tokensOf(std::string_view text) {
    std::vector<std::string> result;
    for (Tokenizer tokens(text); tokens.next();) result.emplace_back(tokens.begin(), tokens.end());
    return result;
}

TEST(Tokenizer, CutsAtBlanksTabsAndLineEnds) {
    EXPECT_THAT(tokensOf("1 2\t3\n4\r5"), ElementsAre("1", "2", "3", "4", "5"));
}

TEST(Tokenizer, RunsOfWhiteSpaceAreOneCut) { EXPECT_THAT(tokensOf("1 \t\r\n 2"), ElementsAre("1", "2")); }

TEST(Tokenizer, LeadingWhiteSpaceIsNoToken) { EXPECT_THAT(tokensOf(" \n 1"), ElementsAre("1")); }

TEST(Tokenizer, TrailingWhiteSpaceGivesOneEmptyToken) {
    EXPECT_THAT(tokensOf("1 2 "), ElementsAre("1", "2", ""));
    EXPECT_THAT(tokensOf("1 2 \n\t "), ElementsAre("1", "2", ""));
}

TEST(Tokenizer, EmptyTextIsOneEmptyToken) { EXPECT_THAT(tokensOf(""), ElementsAre("")); }

TEST(Tokenizer, NothingButWhiteSpaceIsOneEmptyToken) { EXPECT_THAT(tokensOf(" \n"), ElementsAre("")); }

TEST(Tokenizer, OtherControlCharactersStayInTheToken) {
    EXPECT_THAT(tokensOf("1\v2 \f3"), ElementsAre("1\v2", "\f3"));
}

TEST(Tokenizer, NoBreakSpaceIsPartOfAToken) {
    EXPECT_THAT(tokensOf("1\xC2\xA0 2"), ElementsAre("1\xC2\xA0", "2"));
}

TEST(Tokenizer, GivesNothingMoreAfterTheEnd) {
    Tokenizer tokens("1");
    EXPECT_TRUE(tokens.next());
    EXPECT_FALSE(tokens.next());
    EXPECT_FALSE(tokens.next());
}

TEST(Tokenizer, CountsAsItCuts) {
    EXPECT_EQ(Tokenizer::count(""), 1U);
    EXPECT_EQ(Tokenizer::count("1 2"), 2U);
    EXPECT_EQ(Tokenizer::count("1 2\n"), 3U);
}

TEST(Tokenizer, LongTextsAreCutLikeShortOnes) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += std::to_string(i) + (i % 2 == 0 ? " " : "\n");
    const std::vector<std::string> tokens = tokensOf(text);
    ASSERT_EQ(tokens.size(), 5001U);
    EXPECT_EQ(tokens[4999], "4999");
    EXPECT_EQ(tokens[5000], "");
}

}  // namespace
}  // namespace norvane::platform::data
