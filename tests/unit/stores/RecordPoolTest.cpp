#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "stores/pool/RecordPool.h"

namespace norvane::platform::core::storage::datastore {
namespace {

TEST(RecordPoolTest, BlockHasItsSizeAndRoomForMore) {
    RecordPool pool;

    Block block = pool.take(5, 40);

    EXPECT_NE(block.bytes, nullptr);
    EXPECT_EQ(block.size, 5u);
    EXPECT_GE(block.capacity, 40u);
    pool.release(block);
    EXPECT_EQ(block.bytes, nullptr);
}

TEST(RecordPoolTest, BlockOfSizeZeroHasBytes) {
    RecordPool pool;

    Block block = pool.take(0);

    EXPECT_NE(block.bytes, nullptr);
    pool.release(block);
}

TEST(RecordPoolTest, ReleasedBlockComesBack) {
    RecordPool pool;
    Block block = pool.take(60);
    std::byte* bytes = block.bytes;

    pool.release(block);

    block = pool.take(58);
    EXPECT_EQ(block.bytes, bytes);
    pool.release(block);
}

TEST(RecordPoolTest, BlocksDoNotOverlap) {
    RecordPool pool;
    std::mt19937 random(1);
    std::vector<Block> blocks;
    std::vector<int> marks;
    for (int round = 0; round < 20000; ++round) {
        if (!blocks.empty() && random() % 3 == 0) {
            const std::size_t index = random() % blocks.size();
            for (std::uint32_t at = 0; at < blocks[index].size; ++at)
                ASSERT_EQ(blocks[index].bytes[at], static_cast<std::byte>(marks[index]));
            pool.release(blocks[index]);
            blocks[index] = blocks.back();
            marks[index] = marks.back();
            blocks.pop_back();
            marks.pop_back();
        } else {
            blocks.push_back(
                pool.take(static_cast<std::uint32_t>(random() % (round % 50 == 0 ? 5000 : 300))));
            marks.push_back(round % 256);
            std::memset(blocks.back().bytes, marks.back(), blocks.back().size);
        }
    }
    for (Block& block : blocks) pool.release(block);
}

#if defined(__SANITIZE_ADDRESS__)
TEST(RecordPoolDeathTest, BytesOutsideOfARecordMayNotBeTouched) {
    RecordPool pool;
    Block block = pool.take(5);
    const volatile std::byte* bytes = block.bytes;
    EXPECT_DEATH(static_cast<void>(bytes[5]), "use-after-poison");

    pool.release(block);

    EXPECT_DEATH(static_cast<void>(bytes[0]), "use-after-poison");
}
#else
// AddressSanitizer would fill half a gigabyte for this block.
TEST(RecordPoolTest, LargestSizeIsNotRoundedPastItsType) {
    RecordPool pool;
    Block block;
    try {
        block = pool.take(0xFFFFFFFFu);
    } catch (const std::bad_alloc&) {
        GTEST_SKIP() << "this machine does not have the memory";
    }

    EXPECT_EQ(block.size, 0xFFFFFFFFu);
    EXPECT_EQ(block.capacity, 0xFFFFFFFFu);
    pool.release(block);
}
#endif

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
