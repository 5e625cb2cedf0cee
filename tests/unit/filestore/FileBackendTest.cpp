#include <gtest/gtest.h>

#include <string>

#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;
using Creation = FileDataStore::Creation;

TEST(FileBackendTest, ANewFileIsEmptyAndWhole) {
    const Folder folder;

    openWriter(folder / "model.qvt");

    EXPECT_EQ(revisionOf(*openReader(folder / "model.qvt")), Revision());
    EXPECT_FALSE(std::filesystem::exists(folder / "model.qvt-wal"));
    EXPECT_FALSE(std::filesystem::exists(folder / "model.qvt-shm"));
}

TEST(FileBackendTest, KeepsWhatWasCommitted) {
    const Folder folder;
    Revision revision;
    {
        const auto writer = openWriter(folder / "model.qvt");
        commit(*writer, revision, {{0, "root"}, {1, ""}, {2, std::string("\0\xFF", 2)}, {4097, "far"}});
        EXPECT_EQ(revisionOf(*writer), revision);
        commit(*writer, revision, {{0, std::nullopt}, {1, "grown"}, {2, "\x01"}});
        EXPECT_EQ(revisionOf(*writer), revision);
    }

    EXPECT_EQ(revisionOf(*openReader(folder / "model.qvt")), revision);
    EXPECT_EQ(revision.meta, (StoreMeta{0, 4098, 3, 2}));
}

TEST(FileBackendTest, KeepsTheVersionOfTheModel) {
    const Folder folder;
    Revision revision;
    revision.meta.version = 7;
    commit(*openWriter(folder / "model.qvt"), revision, {});

    EXPECT_EQ(openReader(folder / "model.qvt")->meta(), (StoreMeta{7, 0, 0, 1}));
}

TEST(FileBackendTest, LargeRecordsGoThroughParts) {
    const Folder folder;
    FileDataStore::Options options;
    options.partSize = 4096;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt", options);
    std::string large;
    for (int count = 0; large.size() < 100000; ++count) large += std::to_string(count);

    commit(*writer, revision, {{0, large}, {1, large.substr(1, 4096)}, {2, large.substr(0, 4097)}, {3, "x"}});
    EXPECT_EQ(revisionOf(*writer), revision);
    commit(*writer, revision, {{0, large.substr(7)}, {2, "small now"}, {3, large}});
    EXPECT_EQ(revisionOf(*writer), revision);
    commit(*writer, revision, {{0, std::nullopt}});
    EXPECT_EQ(revisionOf(*writer), revision);
    writer->close();

    EXPECT_EQ(revisionOf(*openReader(folder / "model.qvt")), revision);
}

// Many go into the file with one statement, and others come between.
TEST(FileBackendTest, KeepsManyNewRecordsAmongChangedOnes) {
    const Folder folder;
    FileDataStore::Options options;
    options.partSize = 4096;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt", options);
    Batch first, second;
    for (std::uint32_t offset = 0; offset < 1000; offset += 3) first[offset] = std::to_string(offset);
    for (std::uint32_t offset = 0; offset < 1500; ++offset) {
        second[offset] = std::string(offset % 100 == 50 ? 5000 : offset % 70, static_cast<char>(offset));
        if (offset % 9 == 0 && offset < 1000) second[offset] = std::nullopt;
    }

    commit(*writer, revision, first);
    EXPECT_EQ(revisionOf(*writer), revision);
    commit(*writer, revision, second);
    EXPECT_EQ(revisionOf(*writer), revision);
    writer->close();

    EXPECT_EQ(revisionOf(*openReader(folder / "model.qvt")), revision);
}

// Only 4096 parts have a place.
TEST(FileBackendTest, PartsGrowWhereThereWouldBeTooMany) {
    const Folder folder;
    FileDataStore::Options options;
    options.partSize = 4096;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt", options);

    commit(*writer, revision, {{5, std::string(4096u * 4096u + 1, 'x')}, {6, "next"}});

    EXPECT_EQ(recordsOf(*writer), revision.records);
}

TEST(FileBackendTest, EachReasonNotToOpenHasItsCode) {
    const Folder folder;
    setContent(folder / "empty", "");
    setContent(folder / "text", std::string(5000, 'x'));
    std::filesystem::create_directory(folder / "folder");
    openWriter(folder / "other")->close();
    std::string bytes = contentOf(folder / "other");
    bytes[71] ^= 1;
    setContent(folder / "other", bytes);
    bytes[71] ^= 1;
    bytes[63] = 2;
    setContent(folder / "newer", bytes);
    bytes[63] = 0;
    setContent(folder / "older", bytes);
    FileDataStore::Options always;
    always.creation = Creation::always;
    FileDataStore::Options never;
    never.creation = Creation::never;

    for (const char* name : {"empty", "text", "folder", "other"}) {
        EXPECT_EQ(codeOfFailure([&] { openWriter(folder / name); }), Code::notAStore) << name;
        EXPECT_EQ(codeOfFailure([&] { openReader(folder / name); }), Code::notAStore) << name;
    }
    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "newer"); }), Code::newerVersion);
    EXPECT_EQ(codeOfFailure([&] { openReader(folder / "newer"); }), Code::newerVersion);
    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "older"); }), Code::damaged);
    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "newer", always); }), Code::exists);
    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "missing", never); }), Code::notFound);
    EXPECT_EQ(codeOfFailure([&] { openReader(folder / "missing"); }), Code::notFound);
    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "missing/model"); }), Code::notWritable);
    EXPECT_EQ(contentOf(folder / "empty"), "");
    EXPECT_EQ(contentOf(folder / "text"), std::string(5000, 'x'));
}

TEST(FileBackendTest, ASecondWriterIsRefusedAtOnceAndGetsInAfterwards) {
    const Folder folder;
    auto first = openWriter(folder / "model.qvt");
    std::filesystem::create_symlink(folder / "model.qvt", folder / "again.qvt");
    std::filesystem::create_hard_link(folder / "model.qvt", folder / "linked.qvt");
    const auto before = std::chrono::steady_clock::now();

    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "model.qvt"); }), Code::inUse);
    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "again.qvt"); }), Code::inUse);
    EXPECT_EQ(codeOfFailure([&] { openWriter(folder / "linked.qvt"); }), Code::inUse);

    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
    first.reset();
    std::filesystem::remove(folder / "linked.qvt");
    EXPECT_NO_THROW(openWriter(folder / "again.qvt"));
}

TEST(FileBackendTest, AReaderStaysOnItsRevisionUntilItRefreshes) {
    const Folder folder;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt");
    commit(*writer, revision, {{0, "first"}, {1, "kept"}});
    const Revision first = revision;
    const auto reader = openReader(folder / "model.qvt");

    commit(*writer, revision, {{0, "second"}, {2, "new"}, {1, std::nullopt}});

    EXPECT_EQ(revisionOf(*reader), first);
    EXPECT_TRUE(reader->refresh());
    EXPECT_EQ(revisionOf(*reader), revision);
    EXPECT_FALSE(reader->refresh());
}

TEST(FileBackendTest, AReaderRefusesToWrite) {
    const Folder folder;
    openWriter(folder / "model.qvt");
    const auto reader = openReader(folder / "model.qvt");
    Revision revision;

    EXPECT_EQ(codeOfFailure([&] { commit(*reader, revision, {{0, "x"}}); }), Code::readOnly);
    EXPECT_EQ(codeOfFailure([&] { reader->compact(); }), Code::readOnly);
}

TEST(FileBackendTest, WhatIsClosedSaysSo) {
    const Folder folder;
    const auto writer = openWriter(folder / "model.qvt");
    const auto reader = openReader(folder / "model.qvt");
    Revision revision;
    writer->close();
    writer->close();
    reader->close();

    EXPECT_EQ(codeOfFailure([&] { loaded(*writer, 0); }), Code::closed);
    EXPECT_EQ(codeOfFailure([&] { loaded(*reader, 0); }), Code::closed);
    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision, {{0, "x"}}); }), Code::closed);
    EXPECT_EQ(codeOfFailure([&] { writer->compact(); }), Code::closed);
    EXPECT_EQ(codeOfFailure([&] { reader->refresh(); }), Code::closed);
    EXPECT_EQ(codeOfFailure([&] { reader->logStatus(); }), Code::closed);
}

TEST(FileBackendTest, TheLogIsEmptiedAboveItsLimit) {
    const Folder folder;
    FileDataStore::Options options;
    options.walLimit = 100000;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt", options);

    commit(*writer, revision, {{0, std::string(50000, 'x')}});
    EXPECT_GT(writer->logStatus().bytes, 50000u);
    commit(*writer, revision, {{1, std::string(50000, 'x')}});

    EXPECT_EQ(writer->logStatus().bytes, 0u);
    EXPECT_EQ(revisionOf(*writer), revision);
}

TEST(FileBackendTest, CompactingGivesRoomBackAndChangesNothing) {
    const Folder folder;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt");
    Batch batch;
    for (std::uint32_t offset = 0; offset < 1000; ++offset) batch[offset] = std::string(1000, 'x');
    commit(*writer, revision, batch);
    for (auto& [offset, bytes] : batch)
        if (offset % 10 != 0) bytes.reset();
    commit(*writer, revision, batch);
    EXPECT_GT(writer->logStatus().bytes, 1000u);

    writer->compact();

    EXPECT_LT(std::filesystem::file_size(folder / "model.qvt"), 200000u);
    EXPECT_EQ(writer->logStatus().bytes, 0u);
    EXPECT_EQ(revisionOf(*writer), revision);
    commit(*writer, revision, {{0, "after"}});
    writer->close();
    EXPECT_EQ(revisionOf(*openReader(folder / "model.qvt")), revision);
}

TEST(FileBackendTest, ReadingLeavesTheFileAsItIs) {
    const Folder folder;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt");
    commit(*writer, revision, {{0, "in the log"}});
    // As after a crash: with a log that nobody has written back.
    std::filesystem::copy(folder / "model.qvt", folder / "copy.qvt");
    std::filesystem::copy(folder / "model.qvt-wal", folder / "copy.qvt-wal");
    const std::string file = contentOf(folder / "copy.qvt");
    const std::string log = contentOf(folder / "copy.qvt-wal");

    EXPECT_EQ(revisionOf(*openReader(folder / "copy.qvt")), revision);

    EXPECT_EQ(contentOf(folder / "copy.qvt"), file);
    EXPECT_EQ(contentOf(folder / "copy.qvt-wal"), log);
    EXPECT_EQ(revisionOf(*openWriter(folder / "copy.qvt")), revision);
    EXPECT_FALSE(std::filesystem::exists(folder / "copy.qvt-wal"));
}

TEST(FileBackendTest, AFileThatWasRemovedOrReplacedIsNotWritten) {
    const Folder folder;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt");
    commit(*writer, revision, {{0, "x"}});
    std::filesystem::rename(folder / "model.qvt", folder / "moved.qvt");
    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision, {{1, "y"}}); }), Code::notWritable);
    std::filesystem::copy(folder / "moved.qvt", folder / "model.qvt");
    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision, {{1, "y"}}); }), Code::notWritable);
    std::filesystem::rename(folder / "moved.qvt", folder / "model.qvt");
    EXPECT_EQ(revisionOf(*writer), revision);

    commit(*writer, revision, {{1, "y"}});

    EXPECT_EQ(revisionOf(*writer), revision);
}

TEST(FileBackendTest, ALogThatWasRemovedIsNotWritten) {
    const Folder folder;
    Revision revision;
    const auto writer = openWriter(folder / "model.qvt");
    commit(*writer, revision, {{0, "x"}});
    std::filesystem::remove(folder / "model.qvt-wal");

    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision, {{1, "y"}}); }), Code::notWritable);
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
