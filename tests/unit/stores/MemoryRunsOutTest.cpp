// In a program of its own, since it takes the place of the global allocator.
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <new>
#include <string>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace {
constexpr long kForEver = std::numeric_limits<long>::max();
long allocationsLeft = kForEver;

void* allocate(std::size_t size) {
    if (allocationsLeft == 0) throw std::bad_alloc();
    if (allocationsLeft != kForEver) --allocationsLeft;
    void* block = std::malloc(size == 0 ? 1 : size);
    if (!block) throw std::bad_alloc();
    return block;
}
}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace norvane::platform::core::storage::datastore {
namespace {

// How often an operation fails, given one more allocation each time, until it gets through. After each
// failure the record at offset 0 is as before.
template <class Operation>
int failuresOf(MemoryDataStore& store, Operation operation) {
    std::uint32_t size = 0;
    const std::string before(static_cast<const char*>(store.view(0, size)), store.recordSize(0));
    const std::uint64_t count = store.size();
    const std::uint64_t stamp = store.changeStamp();
    for (int failures = 0;; ++failures) {
        allocationsLeft = failures;
        try {
            operation();
            allocationsLeft = kForEver;
            return failures;
        } catch (const std::bad_alloc&) {
            allocationsLeft = kForEver;
        }
        EXPECT_EQ(std::string(static_cast<const char*>(store.view(0, size)), store.recordSize(0)), before);
        EXPECT_EQ(store.size(), count);
        EXPECT_EQ(store.changeStamp(), stamp);
        EXPECT_EQ(store.byteCount(), before.size());
    }
}

TEST(MemoryRunsOutTest, AppendThatFailsChangesNothing) {
    MemoryDataStore store;
    store.append("record", 6);
    const std::string large(100000, 'x');

    EXPECT_GE(failuresOf(store, [&] { store.append(large.data(), 100000); }), 1);

    EXPECT_EQ(store.recordCount(), 2u);
}

TEST(MemoryRunsOutTest, WriteThatFailsChangesNothing) {
    MemoryDataStore store;
    store.append("record", 6);
    const std::string large(100000, 'x');

    EXPECT_GE(failuresOf(store, [&] { store.write(0, large.data(), 100000, true); }), 1);

    EXPECT_EQ(store.recordSize(0), 100000u);
}

TEST(MemoryRunsOutTest, ExtendThatFailsChangesNothing) {
    MemoryDataStore store;
    store.append("record", 6);
    const std::string large(100000, 'x');

    EXPECT_GE(failuresOf(store, [&] { store.extend(0, large.data(), 100000); }), 1);

    EXPECT_EQ(store.recordSize(0), 100006u);
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
