// What stays in memory and what goes.
#include "Common.h"

namespace norvane::platform::test {
namespace {

constexpr std::uint32_t kRecords = 1000;
constexpr std::uint32_t kRecordSize = 100;
constexpr std::uint64_t kLimit = kRecords * kRecordSize / 10;

std::string recordBytes(std::uint32_t offset) {
    std::string bytes(kRecordSize, static_cast<char>('a' + offset % 26));
    bytes[0] = '\x03';
    return bytes;
}

class OverlayMemoryTest : public testing::Test {
  protected:
    OverlayMemoryTest() {
        for (std::uint32_t offset = 0; offset < kRecords; ++offset) backend.put(offset, recordBytes(offset));
        backend.refresh();
        OverlayOptions options;
        options.memoryLimit = kLimit;
        store.reset(new OverlayStore(backend, options));
    }
    ~OverlayMemoryTest() noexcept override {}

    std::string bytes(std::uint32_t offset) { return bytesOf(*store, offset); }
    void readAll() { readAllBut(IDataStore::BADOFF); }
    void readAllBut(std::uint32_t absent) {
        for (std::uint32_t offset = 0; offset < kRecords; ++offset)
            ASSERT_EQ(bytes(offset), offset == absent ? "" : recordBytes(offset));
    }

    // Entities that nobody has open, and handles on all of them or on none.
    std::vector<std::uint32_t> appendClosed() {
        const std::string record = entity(0, std::string(kRecordSize, '\0'));
        std::vector<std::uint32_t> offsets(kRecords);
        for (std::uint32_t& offset : offsets) offset = store->append(record.data(), sizeOf(record));
        return offsets;
    }
    void setOpen(const std::vector<std::uint32_t>& offsets, char count) {
        std::string record = entity(0, std::string(kRecordSize, '\0'));
        record[5] = count;
        for (const std::uint32_t offset : offsets) store->write(offset, record.data(), sizeOf(record), false);
    }

    MemoryBackend backend;
    std::unique_ptr<OverlayStore> store;
};

TEST_F(OverlayMemoryTest, OpeningLoadsNothing) { EXPECT_EQ(backend.loads(), 0u); }

TEST_F(OverlayMemoryTest, RecordIsLoadedOnce) {
    for (int round = 0; round < 10; ++round) bytes(17);

    EXPECT_EQ(backend.loads(), 1u);
}

TEST_F(OverlayMemoryTest, AbsenceIsLoadedOnce) {
    store->overlay.remove(17);
    store->overlay.commit();
    OverlayStore again(backend);
    for (int round = 0; round < 10; ++round) again.recordSize(17);

    EXPECT_EQ(backend.loads(), 2u);
}

TEST_F(OverlayMemoryTest, CleanRecordsGoAtTheLimit) {
    for (int round = 0; round < 3; ++round) {
        readAll();
        EXPECT_LE(store->overlay.residentBytes(), kLimit + kRecordSize);
    }
    EXPECT_GT(backend.loads(), kRecords * 2);
}

TEST_F(OverlayMemoryTest, WhatIsUsedAllTheTimeStays) {
    for (std::uint32_t offset = 1; offset < kRecords; ++offset) {
        bytes(0);
        bytes(offset);
    }

    EXPECT_LE(backend.loads(), kRecords + 20);
}

TEST_F(OverlayMemoryTest, ChangedRecordsStayUntilTheyAreCommitted) {
    for (std::uint32_t offset = 0; offset < kRecords / 2; ++offset)
        store->patch(offset, 50, "changed", 7, true);
    EXPECT_GE(store->overlay.residentBytes(), std::uint64_t{kRecords} / 2 * kRecordSize);
    store->overlay.commit();
    bytes(kRecords - 1);

    EXPECT_LE(store->overlay.residentBytes(), kLimit + kRecordSize);
    EXPECT_EQ(bytes(3).substr(50, 7), "changed");
}

// The destruction of what is open must not meet a failing disk.
TEST_F(OverlayMemoryTest, OpenEntityStaysWithWhatBelongsToIt) {
    const std::string names("\x05names", 6);
    const std::string children("\x03\0\0\0\0", 5);
    const auto namesAt = store->append(names.data(), sizeOf(names));
    const auto childrenAt = store->append(children.data(), sizeOf(children));
    std::string open = entity(0, std::string(9, '\0'));
    std::memcpy(open.data() + 9, &namesAt, 4);
    std::memcpy(open.data() + 14, &childrenAt, 4);
    const auto openAt = store->append(open.data(), sizeOf(open));
    store->overlay.commit();
    open[5] = 1;
    store->write(openAt, open.data(), sizeOf(open), false);
    readAll();
    readAll();

    backend.failAll();

    EXPECT_EQ(bytes(openAt), open);
    EXPECT_EQ(bytes(namesAt), names);
    EXPECT_EQ(bytes(childrenAt), children);
    open[5] = 0;
    store->write(openAt, open.data(), sizeOf(open), false);
    backend.calm();
    readAll();
    readAll();
    backend.failAll();
    EXPECT_THROW(bytes(openAt), StoreError);
}

TEST_F(OverlayMemoryTest, ViewsStayWhileNothingChanges) {
    std::vector<const char*> views;
    std::uint32_t size = 0;
    for (std::uint32_t offset = 0; offset < kRecords / 20; ++offset)
        views.push_back(static_cast<const char*>(store->view(offset, size)));
    readAll();

    for (std::uint32_t offset = 0; offset < kRecords / 20; ++offset)
        ASSERT_EQ(std::string(views[offset], kRecordSize), recordBytes(offset));
}

TEST_F(OverlayMemoryTest, ViewsAreRefusedWhenMemoryIsFullOfThem) {
    std::uint32_t given = 0;
    for (std::uint32_t offset = 0; offset < kRecords; ++offset) {
        std::uint32_t size = 0;
        const void* view = store->view(offset, size);
        given += view ? 1 : 0;
        EXPECT_EQ(size, view ? kRecordSize : 0);
        EXPECT_EQ(bytes(offset), recordBytes(offset));
    }
    EXPECT_LT(given, kRecords / 4);
    EXPECT_GT(given, 10u);
    EXPECT_LE(store->overlay.residentBytes(), kLimit * 3 / 2);

    // The next change ends them all.
    store->patch(0, 50, "changed", 7, true);
    std::uint32_t size = 0;
    EXPECT_NE(store->view(kRecords - 1, size), nullptr);
}

TEST_F(OverlayMemoryTest, MuchThatCannotGoIsNotLookedAtForEachRecord) {
    for (std::uint32_t offset = 0; offset < kRecords * 9 / 10; ++offset)
        store->patch(offset, 50, "changed", 7, true);
    const auto begin = std::chrono::steady_clock::now();

    for (int round = 0; round < 2000; ++round) bytes(kRecords - 1 - static_cast<std::uint32_t>(round) % 100);

    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST_F(OverlayMemoryTest, SmallCommitsWhileMuchIsOpenLeaveInMemoryWhatIsThere) {
    const std::vector<std::uint32_t> offsets = appendClosed();
    store->overlay.commit();
    setOpen(offsets, 1);
    store->overlay.commit();
    bytes(17);
    const std::size_t loads = backend.loads();

    for (int round = 0; round < 20; ++round) {
        store->patch(offsets[0], 50, "changed", 7, true);
        store->overlay.commit();
        bytes(17);
    }

    EXPECT_EQ(backend.loads(), loads);
}

TEST_F(OverlayMemoryTest, WhatWasClosedGoesAtTheNextCommit) {
    const std::vector<std::uint32_t> offsets = appendClosed();
    setOpen(offsets, 1);
    store->overlay.commit();
    EXPECT_GT(store->overlay.residentBytes(), kRecords * kRecordSize);

    setOpen(offsets, 0);
    store->patch(offsets[0], 50, "changed", 7, true);
    store->overlay.commit();

    EXPECT_LE(store->overlay.residentBytes(), kLimit);
}

TEST_F(OverlayMemoryTest, FailedLoadLeavesTheRecordToBeLoaded) {
    backend.failAll();
    EXPECT_THROW(bytes(5), StoreError);
    backend.calm();
    store->overlay.rollback();

    EXPECT_EQ(bytes(5), recordBytes(5));
}

TEST_F(OverlayMemoryTest, RecordThatWasRemovedUnderAGuardComesBackAfterMuchWasRead) {
    failUnderGuard(*store, [&] {
        store->remove(store->append("new", 3));
        store->remove(7);
        readAllBut(7);
    });

    EXPECT_EQ(bytes(7), recordBytes(7));
}

}  // namespace
}  // namespace norvane::platform::test
