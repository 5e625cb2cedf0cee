// A store in a file keeps the promises of all stores, also when it is closed and opened anew all the time.
#include <optional>

#include "contract/StoreContract.h"
#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "norvane/platform/data/integrity/Integrity.h"
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "support/Folder.h"

namespace norvane::platform::test {
namespace {

using core::storage::datastore::FileDataStore;
using core::storage::datastore::StoreError;
using Code = StoreError::Code;

struct FileHarness {
    IDataStore& store() { return store_; }
    Folder folder_;
    FileDataStore store_{folder_ / "store.qvt"};
};

FileDataStore::Options crampedOptions() {
    FileDataStore::Options options;
    options.memoryLimit = 3000;
    options.partSize = 4096;
    options.walLimit = 100000;
    options.commitPolicy = FileDataStore::CommitPolicy::atRelease;
    return options;
}

struct CrampedHarness {
    IDataStore& store() { return store_; }
    Folder folder_;
    FileDataStore store_{folder_ / "store.qvt", crampedOptions()};
};

class FileStoreTest : public testing::Test {
  protected:
    ~FileStoreTest() noexcept override {}

    FileDataStore& store() { return *store_; }
    void reopen(const FileDataStore::Options& options = {}) {
        store_.reset();
        store_.emplace(path, options);
    }
    std::uint32_t append(std::string_view bytes) { return store_->append(bytes.data(), sizeOf(bytes)); }
    std::string bytes(std::uint32_t offset) { return bytesOf(*store_, offset); }

    template <class Step>
    static Code codeOf(Step step) {
        try {
            step();
        } catch (const StoreError& error) {
            return error.code();
        }
        ADD_FAILURE() << "nothing was thrown";
        return Code::wrongState;
    }

    Folder folder;
    const std::string path = folder / "store.qvt";
    std::optional<FileDataStore> store_{std::in_place, path};
};

TEST_F(FileStoreTest, WhatWasCommittedIsThereAfterwards) {
    append("zero");
    const std::uint32_t removed = append("one");
    append(std::string(std::size_t{20} << 20, 'x'));
    store().remove(removed);
    store().setVersion(3);
    store().close();

    reopen();

    EXPECT_EQ(bytes(0), "zero");
    EXPECT_EQ(store().recordSize(removed), 0u);
    EXPECT_EQ(bytes(2), std::string(std::size_t{20} << 20, 'x'));
    EXPECT_EQ(store().version(), 3u);
    EXPECT_EQ(store().size(), 3u);
    EXPECT_EQ(store().recordCount(), 2u);
    EXPECT_EQ(append("three"), 3u);
}

TEST_F(FileStoreTest, DestructorDropsWhatIsUncommitted) {
    append("committed");
    store().commit();
    append("not committed");

    reopen();

    EXPECT_EQ(store().size(), 1u);
}

TEST_F(FileStoreTest, OpenCountsAreZeroAfterOpening) {
    append(
        std::string_view("\x04"
                         "....\x07\0\0\0....",
                         13));
    store().commit();

    reopen();

    EXPECT_EQ(bytes(0), std::string("\x04"
                                    "....\0\0\0\0....",
                                    13));
}

TEST_F(FileStoreTest, TransactionHoldsUntilItIsCommitted) {
    {
        FileDataStore::Transaction transaction(store());
        append("in a transaction");
        store().flush();
        EXPECT_EQ(store().revision(), 0u);
        EXPECT_EQ(codeOf([&] { FileDataStore::Transaction second(store()); }), Code::wrongState);
        transaction.commit();
        transaction.commit();
    }
    EXPECT_FALSE(store().hasChanges());
    EXPECT_EQ(bytes(0), "in a transaction");
    reopen();
    EXPECT_EQ(bytes(0), "in a transaction");
}

TEST_F(FileStoreTest, TransactionThatIsNotCommittedIsRolledBack) {
    append("before");
    store().commit();
    {
        const FileDataStore::Transaction transaction(store());
        append("within");
    }
    EXPECT_EQ(store().size(), 1u);
    EXPECT_FALSE(store().hasChanges());
    const FileDataStore::Transaction another(store());
}

TEST_F(FileStoreTest, TransactionIsNotTornByACompaction) {
    FileDataStore::Transaction transaction(store());
    append("within");

    EXPECT_EQ(codeOf([&] { store().compact(); }), Code::wrongState);
    EXPECT_EQ(store().revision(), 0u);
}

// Handles that a rollback has outdated are dropped only when others stand in their place.
TEST_F(FileStoreTest, HandlesFromBeforeARollbackDoNoHarm) {
    using data::structure::IContainerFrontEnd;
    auto old = IContainerFrontEnd::toplevel(&store(), u"old");
    old->setLocalised(u"en", u"old name");
    std::vector<core::memory::SharedPtr<data::metadata::IPrimitive>> primitives;
    for (const char16_t* name : {u"a", u"b", u"c", u"d"})
        primitives.push_back(old->makePrimitive(name, data::metadata::kDouble));
    store().rollback();
    auto fresh = IContainerFrontEnd::toplevel(&store(), u"fresh");
    for (const char16_t* name : {u"t", u"u", u"v"})
        fresh->makeTable(name, nullptr)->makeTable(u"inner", nullptr);

    primitives.clear();
    old.reset();
    fresh.reset();
    store().close();

    reopen();
    EXPECT_TRUE(data::integrity::check(store()).isSound());
    fresh = IContainerFrontEnd::find(&store(), u"fresh");
    ASSERT_TRUE(fresh);
    EXPECT_EQ(fresh->localisedCount(), 0u);
    for (const char16_t* inner : {u"t.inner", u"u.inner", u"v.inner"}) EXPECT_TRUE(fresh->contains(inner));
}

TEST_F(FileStoreTest, ReadersSeeWholeRevisionsWhileAWriterCommits) {
    append("first");
    store().commit();
    FileDataStore::Options reading;
    reading.access = FileDataStore::Access::readOnly;
    FileDataStore reader(path, reading);
    store().write(0, "second", 6, true);
    store().commit();

    EXPECT_EQ(bytesOf(reader, 0), "first");
    EXPECT_TRUE(reader.refresh());
    EXPECT_EQ(bytesOf(reader, 0), "second");
    EXPECT_FALSE(reader.refresh());
    EXPECT_EQ(reader.revision(), store().revision());
    EXPECT_EQ(codeOf([&] { reader.append("x", 1); }), Code::readOnly);
    EXPECT_EQ(codeOf([&] { store().refresh(); }), Code::wrongState);
}

TEST_F(FileStoreTest, SecondWriterIsRefusedUntilTheFirstIsClosed) {
    EXPECT_EQ(codeOf([&] { FileDataStore second(path); }), Code::inUse);
    append("still here");
    store().close();
    EXPECT_EQ(codeOf([&] { append("x"); }), Code::closed);

    FileDataStore second(path);
    EXPECT_EQ(bytesOf(second, 0), "still here");
}

TEST_F(FileStoreTest, CompactGivesRoomBackAndKeepsEverything) {
    for (int index = 0; index < 2000; ++index) append(std::string(1000, 'x'));
    append("kept");
    store().commit();
    for (std::uint32_t offset = 0; offset < 2000; ++offset) store().remove(offset);
    store().close();
    const auto before = std::filesystem::file_size(path);
    reopen();

    store().compact();
    EXPECT_EQ(bytes(2000), "kept");
    store().close();

    EXPECT_LT(std::filesystem::file_size(path), before / 10);
    reopen();
    EXPECT_EQ(bytes(2000), "kept");
    EXPECT_EQ(append("new"), 2001u);
}

// Each thread holds its own store and asks for the other's.
TEST_F(FileStoreTest, LockThatWouldCloseARingIsRefused) {
    FileDataStore other(folder / "other.qvt");
    FileDataStore* const stores[] = {&store(), &other};
    std::atomic<int> holding{0};
    std::atomic<int> refused{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 2; ++index)
        threads.emplace_back([&, index] {
            IDataStore::Guard* own = stores[index]->lock();
            ++holding;
            while (holding < 2) std::this_thread::yield();
            try {
                delete stores[1 - index]->lock();
            } catch (const std::system_error&) {
                ++refused;
            }
            delete own;
        });
    for (auto& each : threads) each.join();

    EXPECT_EQ(refused, 1);
    append("and nothing else has happened");
    store().commit();
}

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(File, StoreContract, FileHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(CrampedFile, StoreContract, CrampedHarness);

}  // namespace norvane::platform::test
