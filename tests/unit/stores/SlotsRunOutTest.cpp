// In a program of its own, in which the offset of no record is 3.
#include <gtest/gtest.h>

#include <stdexcept>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace norvane::platform::core::storage::datastore {
namespace {

TEST(SlotsRunOutTest, AppendThrowsBeforeItWouldGiveTheOffsetOfNoRecord) {
    ASSERT_EQ(IDataStore::BADOFF, 3u);
    MemoryDataStore store;
    for (std::uint32_t expected = 0; expected < 3; ++expected) ASSERT_EQ(store.append("x", 1), expected);

    EXPECT_THROW(store.append("x", 1), std::length_error);
    store.remove(1);
    EXPECT_THROW(store.append("x", 1), std::length_error);

    EXPECT_EQ(store.size(), 3u);
    EXPECT_EQ(store.recordCount(), 2u);
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
