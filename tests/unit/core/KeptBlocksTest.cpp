#include <gtest/gtest.h>

#include <new>

#include "core/memory/KeptBlocks.h"

namespace norvane::platform::core::memory {
namespace {

void* newBlock(std::size_t sizeClass) { return ::operator new(KeptBlocks::sizeOf(sizeClass)); }

TEST(KeptBlocksTest, EachSizeHasTheSmallestClassThatHoldsIt) {
    for (std::size_t size = 1; size <= KeptBlocks::kLargest; ++size) {
        const std::size_t room = KeptBlocks::sizeOf(KeptBlocks::classOf(size));
        EXPECT_GE(room, size);
        EXPECT_LT(room - size, KeptBlocks::kUnit);
    }
    EXPECT_EQ(KeptBlocks::classOf(0), KeptBlocks::classOf(1));
}

TEST(KeptBlocksTest, GivesWhatWasKeptLastAndOnlyInItsSize) {
    KeptBlocks kept;
    void* first = newBlock(3);
    void* second = newBlock(3);
    ASSERT_TRUE(kept.put(first, 3));
    ASSERT_TRUE(kept.put(second, 3));

    EXPECT_EQ(kept.take(2), nullptr);
    EXPECT_EQ(kept.take(3), second);
    EXPECT_EQ(kept.take(3), first);
    EXPECT_EQ(kept.take(3), nullptr);

    ::operator delete(first, KeptBlocks::sizeOf(3));
    ::operator delete(second, KeptBlocks::sizeOf(3));
}

// What is still kept at the end is freed, in its own size: the sanitizers would tell.
TEST(KeptBlocksTest, KeepsOnlySoManyOfASizeUntilItsEnd) {
    KeptBlocks kept;
    for (const std::size_t sizeClass : {std::size_t{0}, KeptBlocks::classOf(KeptBlocks::kLargest)}) {
        for (std::uint32_t i = 0; i < KeptBlocks::kMost; ++i)
            ASSERT_TRUE(kept.put(newBlock(sizeClass), sizeClass));
        void* tooMany = newBlock(sizeClass);

        EXPECT_FALSE(kept.put(tooMany, sizeClass));

        ::operator delete(tooMany, KeptBlocks::sizeOf(sizeClass));
    }
}

}  // namespace
}  // namespace norvane::platform::core::memory
