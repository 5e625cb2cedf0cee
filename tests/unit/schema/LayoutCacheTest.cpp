// The layouts of a locator, by name. What they are does not matter here: only their addresses are kept.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "schema/LayoutCache.h"

namespace norvane::platform::data::Schema {
namespace {

std::u16string nameOf(std::size_t number) {
    std::u16string name = u"library.types.Part_000000";
    for (std::size_t at = name.size() - 1; number != 0; number /= 10, --at)
        name[at] = static_cast<char16_t>(u'0' + number % 10);
    return name;
}

class LayoutCacheTest : public testing::Test {
  protected:
    Layout* layout(std::size_t number) { return reinterpret_cast<Layout*>(&places_[number]); }

    std::vector<std::max_align_t> places_{1001};
    LayoutCache cache_;
};

TEST_F(LayoutCacheTest, KnowsNothingAtFirst) { EXPECT_EQ(cache_.find(u"library.Part"), nullptr); }

TEST_F(LayoutCacheTest, FindsEachOfManyAndNoOther) {
    for (std::size_t number = 0; number < 1000; ++number) cache_.put(nameOf(number), layout(number));

    for (std::size_t number = 0; number < 1000; ++number)
        ASSERT_EQ(cache_.find(nameOf(number)), layout(number)) << number;
    EXPECT_EQ(cache_.find(nameOf(1000)), nullptr);
    EXPECT_EQ(cache_.find(u""), nullptr);
}

TEST_F(LayoutCacheTest, TheLaterOneTakesThePlaceOfTheEarlier) {
    cache_.put(u"library.Part", layout(1));

    cache_.put(u"library.Part", layout(2));

    EXPECT_EQ(cache_.find(u"library.Part"), layout(2));
}

TEST_F(LayoutCacheTest, WhatWasRemovedIsNotFoundUntilItIsPutAgain) {
    for (std::size_t number = 0; number < 100; ++number) cache_.put(nameOf(number), layout(number));

    cache_.remove(nameOf(7));
    cache_.remove(u"library.Part");

    EXPECT_EQ(cache_.find(nameOf(7)), nullptr);
    EXPECT_EQ(cache_.find(nameOf(8)), layout(8));
    cache_.put(nameOf(7), layout(1000));
    EXPECT_EQ(cache_.find(nameOf(7)), layout(1000));
}

}  // namespace
}  // namespace norvane::platform::data::Schema
