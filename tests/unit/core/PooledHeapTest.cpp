#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>

#include "norvane/platform/core/memory/PooledHeap.h"

namespace norvane::platform::core::memory {
namespace {

TEST(PooledHeapTest, BlockHasItsSize) {
    for (const std::size_t size : {1u, 7u, 8u, 4096u, 16385u}) {
        void* block = PooledHeap::malloc(size);
        std::memset(block, 0xAB, size);
        PooledHeap::free(block, size);
    }
}

TEST(PooledHeapTest, BlockIsAlignedForAnyType) {
    void* block = PooledHeap::malloc(5);

    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);

    PooledHeap::free(block, 5);
}

TEST(PooledHeapTest, SizeZeroGivesABlockOfItsOwn) {
    void* first = PooledHeap::malloc(0);
    void* second = PooledHeap::malloc(0);

    EXPECT_NE(first, nullptr);
    EXPECT_NE(first, second);

    PooledHeap::free(first, 0);
    PooledHeap::free(second, 0);
}

TEST(PooledHeapTest, FreeingNullDoesNothing) { PooledHeap::free(nullptr, 8); }

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(PooledHeapTest, ThrowsWhenThereIsNoMemory) {
    volatile std::size_t size = static_cast<std::size_t>(PTRDIFF_MAX);

    EXPECT_THROW(PooledHeap::malloc(size), std::bad_alloc);
}
#endif

}  // namespace
}  // namespace norvane::platform::core::memory
