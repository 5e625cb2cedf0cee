#include <gtest/gtest.h>

#include "model/ChildHashes.h"

namespace norvane::platform::test {
namespace {

using data::Metadata::ChildHashes;

constexpr auto anyone = [](std::uint32_t) { return true; };

TEST(ChildHashesTest, NothingIsFoundWhereNothingIs) {
    const ChildHashes hashes;

    EXPECT_EQ(hashes.find(7, anyone), nullptr);
}

TEST(ChildHashesTest, RecordsDecideBetweenChildrenOfOneHash) {
    ChildHashes hashes;
    hashes.insert(7, 100);
    hashes.insert(7, 200);

    EXPECT_EQ(*hashes.find(7, anyone), 100u);
    EXPECT_EQ(*hashes.find(7, [](std::uint32_t child) { return child == 200; }), 200u);
    EXPECT_EQ(hashes.find(7, [](std::uint32_t child) { return child == 300; }), nullptr);
}

TEST(ChildHashesTest, AllAreFoundAfterItHasGrown) {
    ChildHashes hashes;
    for (std::uint32_t i = 1; i <= 10000; ++i) hashes.insert(i * 64, i);

    for (std::uint32_t i = 1; i <= 10000; ++i) {
        const std::uint32_t* found = hashes.find(i * 64, anyone);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(*found, i);
    }
    EXPECT_EQ(hashes.find(65, anyone), nullptr);
}

}  // namespace
}  // namespace norvane::platform::test
