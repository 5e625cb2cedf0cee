#include <gtest/gtest.h>

#include <string>

#include "norvane/platform/core/Compare.h"

namespace norvane::platform::core {
namespace {

TEST(CompareTest, VirtualComparisonIsByAddressAndTheOtherByText) {
    const std::u16string first = u"same";
    const std::u16string second = u"same";
    const tWCharCompareEqual equal;

    EXPECT_FALSE(equal.compare(first.c_str(), second.c_str()));
    EXPECT_TRUE(equal.compare(first.c_str(), first.c_str()));
    EXPECT_TRUE(equal(first.c_str(), second.c_str()));
}

TEST(CompareTest, VirtualComparisonIsTheBasesOwn) {
    const std::string first = "same";
    const std::string second = "same";
    const tCharCompareEqual equal;
    const tCompareEqual<const char*>& base = equal;

    EXPECT_FALSE(base.compare(first.c_str(), second.c_str()));
    EXPECT_TRUE(equal(first.c_str(), second.c_str()));
}

TEST(CompareTest, WideTextsAreEqualUpToAndIncludingTheNul) {
    const tWCharCompareEqual equal;

    EXPECT_TRUE(equal(u"", u""));
    EXPECT_FALSE(equal(u"", u"a"));
    EXPECT_FALSE(equal(u"abc", u"ab"));
    EXPECT_FALSE(equal(u"ab", u"abc"));
    EXPECT_FALSE(equal(u"abc", u"abd"));
    EXPECT_TRUE(equal(u"ab\0x", u"ab\0y"));
}

TEST(CompareTest, NarrowTextsAreEqualUpToAndIncludingTheNul) {
    const tCharCompareEqual equal;

    EXPECT_TRUE(equal("ab\0x", "ab\0y"));
    EXPECT_FALSE(equal("ab", "abc"));
    EXPECT_FALSE(equal("Ab", "ab"));
}

TEST(CompareTest, LessCountsBytesAsUnsigned) {
    const tCharCompareLess less;

    EXPECT_TRUE(less("a", "b"));
    EXPECT_FALSE(less("b", "a"));
    EXPECT_FALSE(less("a", "a"));
    EXPECT_TRUE(less("a", "ab"));
    EXPECT_TRUE(less("z", "\xC3"));
    EXPECT_FALSE(less("\xC3", "z"));
}

TEST(CompareTest, ValuesThatAreNoPointersCompareByValue) {
    EXPECT_TRUE(tCompareEqual<int>().compare(4, 4));
    EXPECT_TRUE(tCompareLess<int>().compare(-4, 4));
    EXPECT_FALSE(tCompareLess<int>().compare(4, 4));
}

}  // namespace
}  // namespace norvane::platform::core
