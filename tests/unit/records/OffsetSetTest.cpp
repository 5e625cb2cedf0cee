#include <gtest/gtest.h>

#include <random>
#include <set>

#include "records/OffsetSet.h"

namespace norvane::platform::test {
namespace {

using data::Record::OffsetSet;

TEST(OffsetSetTest, TellsWhetherAnOffsetIsNew) {
    OffsetSet set;

    EXPECT_TRUE(set.insert(5));
    EXPECT_TRUE(set.insert(6));
    EXPECT_FALSE(set.insert(5));
}

TEST(OffsetSetTest, TakesEveryOffset) {
    OffsetSet set;
    for (const std::uint32_t offset : {0u, 63u, 64u, 1023u, 1024u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_TRUE(set.insert(offset)) << offset;
        EXPECT_FALSE(set.insert(offset)) << offset;
    }
}

TEST(OffsetSetTest, RandomOffsetsAgreeWithAPlainSet) {
    std::mt19937 random(3);
    OffsetSet set;
    std::set<std::uint32_t> model;
    for (int step = 0; step < 20000; ++step) {
        const auto offset = static_cast<std::uint32_t>(random() % 3000 * (step % 2 == 0 ? 1 : 99991));
        ASSERT_EQ(set.insert(offset), model.insert(offset).second) << offset;
    }
}

}  // namespace
}  // namespace norvane::platform::test
