#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <string>

#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

// Remembers how much room was asked for.
class MeasuringTarget : public LoadTarget {
  public:
    std::byte* take(std::uint32_t size) override {
        largest = std::max(largest, size);
        bytes_.resize(size);
        return reinterpret_cast<std::byte*>(bytes_.data());
    }

    std::uint32_t largest = 0;

  private:
    std::string bytes_;
};

// What somebody with a tool for databases can do to a file.
class TamperedFileTest : public testing::Test {
  protected:
    TamperedFileTest() {
        FileDataStore::Options options;
        options.partSize = 4096;
        const auto writer = openWriter(path_, options);
        commit(*writer, revision_,
               {{0, "root"},
                {1, "one"},
                {2, "two"},
                {3, std::string(4096, 'p') + std::string(6000, 'q')},
                {5000, "far"}});
        commit(*writer, revision_, {{2, std::nullopt}});
        writer->close();
    }

    void run(const std::string& sql) {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &db), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
    }

    // Only this record is refused, and `check` says why.
    void expectDamagedAt(std::uint32_t offset, const std::string& code) {
        const auto reader = openReader(path_);
        try {
            loaded(*reader, offset);
            ADD_FAILURE() << "it was loaded";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.code(), Code::damaged);
            EXPECT_EQ(error.offset(), offset);
        }
        EXPECT_EQ(loaded(*reader, offset == 0 ? 1 : 0), offset == 0 ? "one" : "root");
        const auto problems = StoreFile::check(path_);
        EXPECT_TRUE(std::any_of(problems.begin(), problems.end(), [&](const auto& problem) {
            return problem.code == code && problem.offset == offset;
        }));
    }

    void expectNotOpened(const std::string& code) {
        EXPECT_EQ(codeOfFailure([&] { openReader(path_); }), Code::damaged);
        EXPECT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::damaged);
        const auto problems = StoreFile::check(path_);
        ASSERT_FALSE(problems.empty());
        EXPECT_EQ(problems.front().code, code);
    }

    const Folder folder_;
    const std::string path_ = folder_ / "model.qvt";
    Revision revision_;
};

TEST_F(TamperedFileTest, OtherBytesHaveAWrongChecksum) {
    run("UPDATE record SET data = x'414243' WHERE id = 1");
    expectDamagedAt(1, "record");
}

TEST_F(TamperedFileTest, TextIsNoBytes) {
    run("UPDATE record SET data = 'one' WHERE id = 1");
    expectDamagedAt(1, "record");
}

TEST_F(TamperedFileTest, AChecksumIsANumber) {
    run("UPDATE record SET crc = 'one' WHERE id = 1");
    expectDamagedAt(1, "record");
}

TEST_F(TamperedFileTest, TheBytesOfAnotherRecordHaveAWrongChecksum) {
    run("UPDATE record SET (crc, data) = (SELECT crc, data FROM record WHERE id = 0) WHERE id = 1");
    expectDamagedAt(1, "record");
}

TEST_F(TamperedFileTest, ARowThatIsGoneIsNotARemovedRecord) {
    run("DELETE FROM record WHERE id = 1");
    expectDamagedAt(1, "record");
}

TEST_F(TamperedFileTest, ARowForARemovedRecordIsNotBelieved) {
    run("INSERT INTO record SELECT 2, crc, data FROM record WHERE id = 1");
    expectDamagedAt(2, "record");
}

TEST_F(TamperedFileTest, AMissingPartIsNoticed) {
    run("DELETE FROM part WHERE id = 3 * 4096 + 1");
    expectDamagedAt(3, "record");
}

TEST_F(TamperedFileTest, PartsInAnotherOrderAreNoticed) {
    run("UPDATE part SET id = 3 * 4096 + 9 WHERE id = 3 * 4096");
    expectDamagedAt(3, "record");
}

TEST_F(TamperedFileTest, ADamagedSizeAsksForNoMoreThanTheFileHas) {
    for (const char* size : {"4000000000", "9000000000000000000", "-1", "0"}) {
        run(std::string("UPDATE record SET data = ") + size + " WHERE id = 3");
        MeasuringTarget target;
        EXPECT_EQ(codeOfFailure([&] { openReader(path_)->load(3, target); }), Code::damaged);
        EXPECT_LT(target.largest, 1000000u);
    }
}

TEST_F(TamperedFileTest, WithoutItsPieceOfTheDirectoryARecordIsRefused) {
    run("DELETE FROM live WHERE block = 1");
    EXPECT_EQ(codeOfFailure([&] { loaded(*openReader(path_), 5000); }), Code::damaged);
    EXPECT_EQ(codeOfFailure([&] { loaded(*openReader(path_), 4999); }), Code::damaged);
    EXPECT_EQ(loaded(*openReader(path_), 1), "one");
    const auto problems = StoreFile::check(path_);
    ASSERT_FALSE(problems.empty());
    EXPECT_EQ(problems.front().code, "directory");
}

TEST_F(TamperedFileTest, BitsThatWereChangedHaveAWrongChecksum) {
    run("UPDATE live SET bits = zeroblob(512) WHERE block = 1");
    EXPECT_EQ(codeOfFailure([&] { loaded(*openReader(path_), 5000); }), Code::damaged);
}

TEST_F(TamperedFileTest, WhatIsReadAheadOfTheDirectoryIsToldWhenItIsAskedFor) {
    commit(*openWriter(path_), revision_, {{9000, "further"}, {13000, "last"}});
    run("UPDATE live SET bits = zeroblob(512) WHERE block = 2");
    const auto reader = openReader(path_);

    EXPECT_EQ(loaded(*reader, 0), "root");
    EXPECT_EQ(loaded(*reader, 5000), "far");
    EXPECT_EQ(codeOfFailure([&] { loaded(*reader, 9000); }), Code::damaged);
    EXPECT_EQ(loaded(*reader, 13000), "last");
}

TEST_F(TamperedFileTest, WhatTheFileSaysOfItselfHasAChecksum) {
    run("UPDATE meta SET records = records + 1");
    expectNotOpened("meta");
}

TEST_F(TamperedFileTest, WithoutARowAboutItselfItIsNotOpened) {
    run("DELETE FROM meta");
    expectNotOpened("meta");
}

TEST_F(TamperedFileTest, OtherTablesAreRefused) {
    run("CREATE TABLE more(id)");
    expectNotOpened("structure");
}

TEST_F(TamperedFileTest, TriggersAreRefused) {
    run("CREATE TRIGGER sly AFTER INSERT ON record BEGIN DELETE FROM record; END");
    expectNotOpened("structure");
}

TEST_F(TamperedFileTest, AViewInPlaceOfATableIsRefused) {
    run("ALTER TABLE part RENAME TO other; CREATE VIEW part AS SELECT * FROM other");
    expectNotOpened("structure");
}

TEST_F(TamperedFileTest, RowsBehindTheEndAndPartsOfNothingAreTold) {
    run("INSERT INTO record VALUES(100000, 1, x'')");
    run("INSERT INTO part VALUES(4096, x'00')");
    run("INSERT INTO live VALUES(77, 1, x'')");
    run("INSERT INTO meta(id) VALUES(2)");

    EXPECT_EQ(revisionOf(*openReader(path_)), revision_);
    EXPECT_EQ(StoreFile::check(path_).size(), 4u);
}

TEST_F(TamperedFileTest, AChangeOfAHiddenRecordIsRefused) {
    run("DELETE FROM record WHERE id = 1");
    const auto writer = openWriter(path_);

    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, {{1, "new"}}); }), Code::damaged);
    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, {{1, std::nullopt}}); }), Code::damaged);

    EXPECT_EQ(loaded(*writer, 0), "root");
    commit(*writer, revision_, {{0, "changed"}});
    EXPECT_EQ(loaded(*writer, 0), "changed");
}

TEST_F(TamperedFileTest, NewRecordsDoNotTakeThePlaceOfARowThatShouldNotBeThere) {
    run("INSERT INTO record VALUES(5070, 1, x'00')");
    const auto writer = openWriter(path_);
    Batch batch;
    for (std::uint32_t offset = 5001; offset < 5200; ++offset) batch[offset] = "new";

    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, batch); }), Code::damaged);

    EXPECT_EQ(loaded(*writer, 5001), std::nullopt);
    batch.erase(batch.begin(), batch.find(5071));
    commit(*writer, revision_, batch);
    EXPECT_EQ(loaded(*writer, 5199), "new");
}

TEST_F(TamperedFileTest, ASizeOfPagesOfItsOwnIsRefused) {
    run("PRAGMA journal_mode=DELETE; PRAGMA page_size=8192; VACUUM; PRAGMA journal_mode=WAL");
    expectNotOpened("identity");
}

TEST_F(TamperedFileTest, AFileWithoutALogIsRefused) {
    run("PRAGMA journal_mode=DELETE");
    expectNotOpened("identity");
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
