#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace norvane::platform::core::storage::datastore {
namespace {

std::uint32_t append(IDataStore& store, const std::string& bytes) {
    return store.append(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

std::string bytesOf(MemoryDataStore& store, std::uint32_t offset) {
    std::uint32_t size = 0;
    const void* bytes = store.view(offset, size);
    return {static_cast<const char*>(bytes), size};
}

TEST(MemoryDataStoreTest, TakesAGigabyteByDefault) {
    MemoryDataStore store;

    EXPECT_EQ(store.recordLimit(), 1u << 30);
    EXPECT_THROW(store.append("", (1u << 30) + 1), std::length_error);
    EXPECT_EQ(store.size(), 0u);
}

TEST(MemoryDataStoreTest, RefusesARecordAboveItsLimitAndChangesNothing) {
    MemoryDataStore store({.recordLimit = 8});
    const std::string most = "12345678";
    const std::string tooMuch = "123456789";
    const std::uint32_t offset = append(store, most);
    const std::uint64_t stamp = store.changeStamp();

    EXPECT_THROW(append(store, tooMuch), std::length_error);
    EXPECT_THROW(store.write(offset, tooMuch.data(), 9, true), std::length_error);
    EXPECT_THROW(store.extend(offset, "9", 1), std::length_error);
    EXPECT_THROW(store.extend(offset, "9", 0xFFFFFFFFu), std::length_error);

    EXPECT_EQ(bytesOf(store, offset), most);
    EXPECT_EQ(store.size(), 1u);
    EXPECT_EQ(store.changeStamp(), stamp);
    EXPECT_EQ(store.recordCount(), 1u);
    EXPECT_EQ(store.byteCount(), 8u);
}

TEST(MemoryDataStoreTest, ExtendsUpToItsLimit) {
    MemoryDataStore store({.recordLimit = 1000});
    const std::uint32_t offset = append(store, "");

    for (int round = 0; round < 1000; ++round) store.extend(offset, "x", 1);

    EXPECT_EQ(bytesOf(store, offset), std::string(1000, 'x'));
    EXPECT_THROW(store.extend(offset, "x", 1), std::length_error);
}

TEST(MemoryDataStoreTest, WhereThereIsNoRecordItThrowsOutOfRange) {
    MemoryDataStore store;
    char byte = 0;

    EXPECT_THROW(store.read(0, &byte, kWholeRecord), std::out_of_range);
    EXPECT_THROW(store.read(IDataStore::BADOFF, &byte, kWholeRecord), std::out_of_range);
    EXPECT_THROW(store.write(0, "x", 1, false), std::out_of_range);
    EXPECT_THROW(store.extend(0, "x", 1), std::out_of_range);
    EXPECT_THROW(store.patch(0, 0, "x", 1, true), std::out_of_range);
}

TEST(MemoryDataStoreTest, ReadOfAnotherSizeCopiesNoMoreThanTheRecordHas) {
    MemoryDataStore store;
    const std::uint32_t offset = append(store, "12345");
    char buffer[9] = "--------";

    store.read(offset, buffer, 3);
    EXPECT_EQ(std::string(buffer), "123-----");
    store.read(offset, buffer, 7);
    EXPECT_EQ(std::string(buffer), "12345---");
}

TEST(MemoryDataStoreTest, CountsRecordsAndBytes) {
    MemoryDataStore store;
    const std::uint32_t first = append(store, "12345");
    const std::uint32_t second = append(store, "123");
    append(store, "");
    EXPECT_EQ(store.recordCount(), 3u);
    EXPECT_EQ(store.byteCount(), 8u);

    store.extend(first, "67", 2);
    store.write(second, "1", 1, false);
    store.patch(first, 0, "xx", 2, true);
    EXPECT_EQ(store.byteCount(), 8u);

    store.remove(first);
    store.remove(first);
    EXPECT_EQ(store.recordCount(), 2u);
    EXPECT_EQ(store.byteCount(), 1u);
    EXPECT_EQ(store.size(), 3u);
}

TEST(MemoryDataStoreTest, OffersEveryExtension) {
    MemoryDataStore store;
    const std::uint32_t offset = append(store, "12345");
    std::uint32_t size = 0;

    EXPECT_NE(store.view(offset, size), nullptr);
    EXPECT_TRUE(store.patch(offset, 4, "x", 1, true));
    EXPECT_NE(store.changeStamp(), 0u);
    EXPECT_EQ(bytesOf(store, offset), "1234x");
}

TEST(MemoryDataStoreTest, ViewOfAnEmptyRecordIsNotNull) {
    MemoryDataStore store;
    const std::uint32_t offset = append(store, "");
    std::uint32_t size = 99;

    EXPECT_NE(store.view(offset, size), nullptr);

    EXPECT_EQ(size, 0u);
}

TEST(MemoryDataStoreTest, OtherRecordsDoNotMoveWhenOneGrows) {
    MemoryDataStore store;
    const std::uint32_t still = append(store, "still");
    const std::uint32_t growing = append(store, "growing");
    std::uint32_t size = 0;
    const void* before = store.view(still, size);

    for (int round = 0; round < 1000; ++round) store.extend(growing, "more", 4);

    EXPECT_EQ(store.view(still, size), before);
}

TEST(MemoryDataStoreTest, VersionDoesNotMoveTheChangeStamp) {
    MemoryDataStore store;
    append(store, "root");
    const std::uint64_t stamp = store.changeStamp();

    store.setVersion(3);

    EXPECT_EQ(store.changeStamp(), stamp);
}

// Remembers what it is told, as "offset@position".
class Listener : public IDataStore::Companion {
  public:
    void changed(std::uint32_t offset, std::uint32_t position) noexcept override {
        told += std::to_string(offset) + "@" + std::to_string(position) + " ";
    }
    void changedAll() noexcept override { told += "all "; }

    std::string told;
};

std::unique_ptr<IDataStore::Companion> makeListener() { return std::make_unique<Listener>(); }

TEST(MemoryDataStoreTest, KeepsTheCompanionThatWasMadeFirst) {
    MemoryDataStore store;
    IDataStore::Companion* first = store.companion(makeListener);

    EXPECT_NE(first, nullptr);
    EXPECT_EQ(store.companion(makeListener), first);
}

TEST(MemoryDataStoreTest, CompanionHearsOfEveryChangeThatIsNoBookkeeping) {
    MemoryDataStore store;
    append(store, "first");
    auto& listener = static_cast<Listener&>(*store.companion(makeListener));

    append(store, "second");
    store.extend(1, "more", 4);
    store.write(0, "FIRST", 5, true);
    store.write(0, "longer than before", 18, true);
    store.patch(0, 3, "x", 1, true);
    store.write(0, "same size as befor", 18, false);
    store.write(0, "another size", 12, false);
    store.patch(0, 3, "x", 1, false);
    store.remove(1);
    store.remove(1);
    store.setVersion(2);

    EXPECT_EQ(listener.told, "1@0 1@6 0@0 0@0 0@3 1@0 ");
}

TEST(MemoryDataStoreTest, RefusedChangesAreNotTold) {
    MemoryDataStore store({.recordLimit = 8});
    append(store, "12345678");
    auto& listener = static_cast<Listener&>(*store.companion(makeListener));

    EXPECT_THROW(store.extend(0, "9", 1), std::length_error);
    EXPECT_THROW(store.patch(0, 8, "9", 1, true), std::out_of_range);
    EXPECT_THROW(store.write(7, "1", 1, true), std::out_of_range);

    EXPECT_EQ(listener.told, "");
}

TEST(MemoryDataStoreTest, HoldsManyRecords) {
    MemoryDataStore store;
    for (std::uint32_t index = 0; index < 300000; ++index)
        ASSERT_EQ(store.append(&index, sizeof index), index);

    for (std::uint32_t index = 0; index < 300000; index += 997) {
        std::uint32_t value = 0;
        store.read(index, &value, kWholeRecord);
        ASSERT_EQ(value, index);
    }
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
