#include <gtest/gtest.h>

#include <stdexcept>

#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::core::storage::datastore {
namespace {

// A host's store that knows the required operations only.
class PlainStore : public IDataStore {
  public:
    void read(std::uint32_t, void*, std::uint32_t) override {}
    Guard* lock() override { return nullptr; }
    void flush() override {}
    std::uint32_t version() override { return 0; }
    void setVersion(std::uint32_t) override {}
    std::uint64_t size() override { return 0; }
    std::uint32_t append(const void*, std::uint32_t) override { return 0; }
    void extend(std::uint32_t, const void*, std::uint32_t) override {}
    void write(std::uint32_t, const void*, std::uint32_t, bool) override {}
    std::uint32_t recordSize(std::uint32_t) override { return 0; }
    void remove(std::uint32_t) override {}
};

TEST(IDataStoreTest, BadoffIsTheLargestOffset) { EXPECT_EQ(IDataStore::BADOFF, 0xFFFFFFFFu); }

TEST(IDataStoreTest, PlainStoreOffersNoExtension) {
    PlainStore store;
    std::uint32_t size = 99;

    EXPECT_EQ(store.view(0, size), nullptr);
    EXPECT_EQ(size, 0u);
    EXPECT_FALSE(store.patch(0, 0, "x", 1, true));
    EXPECT_EQ(store.recordLimit(), 0xFFFFFFFFu);
    EXPECT_EQ(store.changeStamp(), 0u);
}

struct FailsToUnlock : IDataStore::Guard {
    ~FailsToUnlock() noexcept(false) override { throw std::runtime_error("cannot unlock"); }
};

TEST(IDataStoreTest, GuardMayThrowWhenItEnds) {
    IDataStore::Guard* guard = new FailsToUnlock;

    EXPECT_THROW(delete guard, std::runtime_error);
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
