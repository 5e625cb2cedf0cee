#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/StoreFile.h"
#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;
using Search = StoreFile::Search;

constexpr std::size_t kPage = 4096;

struct Found {
    StoreFile::Summary summary;
    Records records;
    std::vector<std::uint32_t> order;
};

Found visited(const std::string& path, Search search) {
    Found found;
    found.summary =
        StoreFile::visit(path, search, [&](std::uint32_t offset, const void* bytes, std::uint32_t size) {
            found.records[offset] = std::string(static_cast<const char*>(bytes), size);
            found.order.push_back(offset);
        });
    return found;
}

std::vector<std::string> codesOf(const std::vector<StoreFile::Problem>& problems) {
    std::vector<std::string> codes;
    for (const auto& problem : problems) codes.push_back(problem.code);
    return codes;
}

bool names(const std::vector<StoreFile::Problem>& problems, const std::string& code, std::uint32_t offset) {
    return std::any_of(problems.begin(), problems.end(), [&](const StoreFile::Problem& problem) {
        return problem.code == code && problem.offset == offset;
    });
}

// Records of all sizes, some in several pages, some in parts, some removed.
Revision fill(const std::string& path) {
    FileDataStore::Options options;
    options.partSize = 16384;
    Revision revision;
    revision.meta.version = 3;
    Batch batch;
    for (std::uint32_t offset = 0; offset < 3000; ++offset)
        batch[offset] = "record " + std::to_string(offset) + std::string(offset % 50, 'x');
    batch[10] = std::string(5000, 'a');
    batch[20] = std::string(20000, 'b');
    batch[21] = std::string(100000, 'c') + "end";
    batch[22] = "";
    const auto writer = openWriter(path, options);
    commit(*writer, revision, batch);
    commit(*writer, revision, {{5, std::nullopt}, {6, "changed"}, {2999, std::nullopt}, {9000, "far"}});
    writer->close();
    return revision;
}

TEST(StoreFileTest, ASoundFileHasNoProblems) {
    const Folder folder;
    openWriter(folder / "empty.qvt");
    fill(folder / "full.qvt");

    EXPECT_TRUE(StoreFile::check(folder / "empty.qvt").empty());
    EXPECT_TRUE(StoreFile::check(folder / "full.qvt").empty());
}

TEST(StoreFileTest, CheckingAndVisitingLeaveTheFileAsItIs) {
    const Folder folder;
    fill(folder / "model.qvt");
    const std::string before = contentOf(folder / "model.qvt");

    StoreFile::check(folder / "model.qvt");
    visited(folder / "model.qvt", Search::byOrder);
    visited(folder / "model.qvt", Search::byPage);

    EXPECT_EQ(contentOf(folder / "model.qvt"), before);
    EXPECT_FALSE(std::filesystem::exists(folder / "model.qvt-wal"));
}

TEST(StoreFileTest, BothSearchesFindEveryRecordOfASoundFile) {
    const Folder folder;
    const Revision revision = fill(folder / "model.qvt");

    for (const Search search : {Search::byOrder, Search::byPage}) {
        const Found found = visited(folder / "model.qvt", search);
        EXPECT_EQ(found.records, revision.records);
        EXPECT_EQ(found.order.size(), revision.records.size());
        EXPECT_TRUE(std::is_sorted(found.order.begin(), found.order.end()));
        EXPECT_EQ(found.summary.version, 3u);
        EXPECT_EQ(found.summary.end, 9001u);
        EXPECT_EQ(found.summary.recordCount, revision.records.size());
        EXPECT_EQ(found.summary.revision, 2u);
    }
}

TEST(StoreFileTest, WhatIsOnlyInTheLogIsFoundToo) {
    const Folder folder;
    Revision revision = fill(folder / "model.qvt");
    const auto writer = openWriter(folder / "model.qvt");
    commit(*writer, revision, {{0, "in the log"}, {9001, std::string(70000, 'l')}, {7, std::nullopt}});

    EXPECT_EQ(visited(folder / "model.qvt", Search::byOrder).records, revision.records);
    EXPECT_EQ(visited(folder / "model.qvt", Search::byPage).records, revision.records);
    EXPECT_TRUE(StoreFile::check(folder / "model.qvt").empty());
    commit(*writer, revision, {{0, "and again"}});
    EXPECT_EQ(visited(folder / "model.qvt", Search::byOrder).records, revision.records);
}

TEST(StoreFileTest, WhatIsNoStoreIsToldByCheckAndRefusedByVisit) {
    const Folder folder;
    setContent(folder / "empty", "");
    setContent(folder / "text", std::string(100000, 'x'));
    std::filesystem::create_directory(folder / "folder");

    for (const char* name : {"empty", "text", "folder"}) {
        EXPECT_EQ(codesOf(StoreFile::check(folder / name)), std::vector<std::string>{"identity"}) << name;
        EXPECT_EQ(codeOfFailure([&] { visited(folder / name, Search::byOrder); }), Code::damaged) << name;
        EXPECT_EQ(codeOfFailure([&] { visited(folder / name, Search::byPage); }), Code::damaged) << name;
    }
    EXPECT_EQ(codeOfFailure([&] { StoreFile::check(folder / "missing"); }), Code::notFound);
    EXPECT_EQ(codeOfFailure([&] { visited(folder / "missing", Search::byPage); }), Code::notFound);
}

TEST(StoreFileTest, AChangedByteOfARecordIsNamedAndTheOthersAreFound) {
    const Folder folder;
    Revision revision = fill(folder / "model.qvt");
    std::string bytes = contentOf(folder / "model.qvt");
    bytes[bytes.find("record 1234")] ^= 1;
    bytes[bytes.find("ccc")] ^= 1;
    setContent(folder / "model.qvt", bytes);
    revision.records.erase(1234);
    revision.records.erase(21);

    const auto problems = StoreFile::check(folder / "model.qvt");

    EXPECT_EQ(problems.size(), 2u);
    EXPECT_TRUE(names(problems, "record", 1234));
    EXPECT_TRUE(names(problems, "record", 21));
    EXPECT_EQ(visited(folder / "model.qvt", Search::byOrder).records, revision.records);
    EXPECT_EQ(visited(folder / "model.qvt", Search::byPage).records, revision.records);
}

// The rows of a page are found without its head.
TEST(StoreFileTest, RecordsAreFoundInAPageWithADamagedHead) {
    const Folder folder;
    const Revision revision = fill(folder / "model.qvt");
    std::string bytes = contentOf(folder / "model.qvt");
    const std::size_t page = bytes.find("record 1234") / kPage * kPage;
    bytes.replace(page, 12, 12, '\x55');
    setContent(folder / "model.qvt", bytes);

    EXPECT_FALSE(StoreFile::check(folder / "model.qvt").empty());
    EXPECT_EQ(visited(folder / "model.qvt", Search::byOrder).records, revision.records);
}

// Pages 2 to 5 are those that the tables begin with; page 3 leads to all records.
TEST(StoreFileTest, PagesThatNothingLeadsToAreFoundByPage) {
    const Folder folder;
    const Revision revision = fill(folder / "model.qvt");
    std::string bytes = contentOf(folder / "model.qvt");
    bytes.replace(2 * kPage, kPage, kPage, '\0');
    setContent(folder / "model.qvt", bytes);

    EXPECT_FALSE(StoreFile::check(folder / "model.qvt").empty());
    EXPECT_TRUE(visited(folder / "model.qvt", Search::byOrder).records.empty());
    Records found = visited(folder / "model.qvt", Search::byPage).records;
    EXPECT_EQ(found, revision.records);
}

TEST(StoreFileTest, AFileWithoutItsHeadOrItsTailGivesWhatIsLeft) {
    const Folder folder;
    const Revision revision = fill(folder / "model.qvt");
    const std::string bytes = contentOf(folder / "model.qvt");
    std::string headless = bytes;
    headless.replace(0, kPage, kPage, '\x01');
    setContent(folder / "headless.qvt", headless);
    setContent(folder / "cut.qvt", bytes.substr(0, bytes.size() * 3 / 4 + 100));

    EXPECT_EQ(codesOf(StoreFile::check(folder / "headless.qvt")), std::vector<std::string>{"identity"});
    EXPECT_EQ(visited(folder / "headless.qvt", Search::byOrder).records, revision.records);
    EXPECT_FALSE(StoreFile::check(folder / "cut.qvt").empty());
    const Records left = visited(folder / "cut.qvt", Search::byPage).records;
    EXPECT_GT(left.size(), 500u);
    for (const auto& [offset, record] : left) EXPECT_EQ(record, revision.records.at(offset));
}

// It claims to be larger than any disk.
TEST(StoreFileTest, AFileThatIsMostlyAHoleTakesNoTime) {
    const Folder folder;
    const Revision revision = fill(folder / "model.qvt");
    std::error_code failed;
    std::filesystem::resize_file(folder / "model.qvt", std::uintmax_t{10} << 40, failed);
    if (failed) GTEST_SKIP() << "this disk takes no such file";

    EXPECT_EQ(visited(folder / "model.qvt", Search::byOrder).records, revision.records);
    EXPECT_EQ(visited(folder / "model.qvt", Search::byPage).records, revision.records);
    EXPECT_EQ(loaded(*openReader(folder / "model.qvt"), 0), "record 0");
    StoreFile::check(folder / "model.qvt");
}

TEST(StoreFileTest, WithoutWhatItSaysOfItselfTheEndIsTheLastRecord) {
    const Folder folder;
    const Revision revision = fill(folder / "model.qvt");
    std::string bytes = contentOf(folder / "model.qvt");
    bytes.replace(kPage, kPage, kPage, '\0');
    setContent(folder / "model.qvt", bytes);

    const auto problems = StoreFile::check(folder / "model.qvt");
    const Found found = visited(folder / "model.qvt", Search::byOrder);

    EXPECT_TRUE(names(problems, "meta", IDataStore::BADOFF));
    EXPECT_EQ(found.records, revision.records);
    EXPECT_EQ(found.summary.end, 9001u);
    EXPECT_EQ(found.summary.recordCount, revision.records.size());
    EXPECT_EQ(found.summary.version, 0u);
}

TEST(StoreFileTest, WithoutTheDirectoryEveryRecordIsStillFound) {
    const Folder folder;
    const Revision revision = fill(folder / "model.qvt");
    std::string bytes = contentOf(folder / "model.qvt");
    bytes.replace(4 * kPage, kPage, kPage, '\0');
    setContent(folder / "model.qvt", bytes);

    EXPECT_FALSE(StoreFile::check(folder / "model.qvt").empty());
    EXPECT_EQ(visited(folder / "model.qvt", Search::byOrder).records, revision.records);
}

TEST(StoreFileWriterTest, MakesAStoreOfRecordsInAnyOrder) {
    const Folder folder;
    const std::string large(20u << 20, 'l');
    {
        StoreFileWriter writer(folder / "model.qvt");
        writer.put(5000, "far", 3);
        writer.put(0, "root", 4);
        writer.put(7, nullptr, 0);
        writer.put(8, large.data(), static_cast<std::uint32_t>(large.size()));
        writer.finish(4, 100);
    }

    EXPECT_TRUE(StoreFile::check(folder / "model.qvt").empty());
    const auto store = openWriter(folder / "model.qvt");
    EXPECT_EQ(store->meta(), (StoreMeta{4, 5001, 4, 1}));
    EXPECT_EQ(recordsOf(*store), (Records{{0, "root"}, {7, ""}, {8, large}, {5000, "far"}}));
}

TEST(StoreFileWriterTest, KeepsAnEndBehindTheLastRecord) {
    const Folder folder;
    StoreFileWriter writer(folder / "model.qvt");
    writer.put(0, "root", 4);
    writer.finish(1, 10000);

    EXPECT_TRUE(StoreFile::check(folder / "model.qvt").empty());
    EXPECT_EQ(openReader(folder / "model.qvt")->meta(), (StoreMeta{1, 10000, 1, 1}));
}

TEST(StoreFileWriterTest, LeavesNothingBehindUnlessItIsFinished) {
    const Folder folder;
    {
        StoreFileWriter writer(folder / "model.qvt");
        writer.put(0, "root", 4);
        EXPECT_FALSE(std::filesystem::exists(folder / "model.qvt"));
    }

    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(StoreFileWriterTest, AForkedProcessThatDropsItsCopyTakesNothingFromIt) {
    const Folder folder;
    std::optional<StoreFileWriter> writer(folder / "model.qvt");
    writer->put(0, "x", 1);

    const pid_t child = ::fork();
    if (child == 0) {
        const bool isRefused = codeOfFailure([&] { writer->put(1, "y", 1); }) == Code::wrongState;
        writer.reset();
        ::_exit(isRefused ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);

    EXPECT_EQ(status, 0);
    writer->finish(0, 1);
    EXPECT_EQ(recordsOf(*openReader(folder / "model.qvt")), (Records{{0, "x"}}));
}

TEST(StoreFileWriterTest, DoesNotWriteOverAnything) {
    const Folder folder;
    setContent(folder / "taken", "mine");

    EXPECT_EQ(codeOfFailure([&] { StoreFileWriter(folder / "taken"); }), Code::exists);
    StoreFileWriter writer(folder / "model.qvt");
    setContent(folder / "model.qvt", "mine");
    EXPECT_EQ(codeOfFailure([&] { writer.finish(1, 0); }), Code::exists);

    EXPECT_EQ(contentOf(folder / "taken"), "mine");
    EXPECT_EQ(contentOf(folder / "model.qvt"), "mine");
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
