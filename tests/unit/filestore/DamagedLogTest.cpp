#include <gtest/gtest.h>

#include <random>
#include <string>

#include "support/Torture.h"
#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

constexpr std::size_t kHead = 32;
constexpr std::size_t kFrame = 24 + 4096;

// A file whose last commits are in its log alone, as a killed writer leaves it.
class DamagedLogTest : public testing::Test {
  protected:
    DamagedLogTest() {
        const auto writer = openWriter(folder_ / "open.qvt");
        for (std::uint32_t count = 0; count < 10; ++count) {
            revisions_.push_back(revisions_.back());
            commit(*writer, revisions_.back(), {{count, std::to_string(count)}, {0, std::to_string(count)}});
        }
        file_ = contentOf(folder_ / "open.qvt");
        log_ = contentOf(folder_ / "open.qvt-wal");
    }

    void setLog(const std::string& log) {
        std::filesystem::remove(path_ + "-shm");
        setContent(path_, file_);
        setContent(path_ + "-wal", log);
    }

    const Folder folder_;
    const std::string path_ = folder_ / "model.qvt";
    std::vector<Revision> revisions_{Revision()};
    std::string file_;
    std::string log_;
};

TEST_F(DamagedLogTest, AWholeLogIsReadWhole) {
    setLog(log_);

    EXPECT_EQ(revisionOf(*openReader(path_)), revisions_.back());
    EXPECT_TRUE(StoreFile::check(path_).empty());
}

TEST_F(DamagedLogTest, CommitsBehindADamagedPlaceAreNotPassedOver) {
    std::string log = log_;
    log[kHead + 4 * kFrame + 2000] ^= 1;
    setLog(log);

    EXPECT_EQ(codeOfFailure([&] { openReader(path_); }), Code::damaged);
    EXPECT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::damaged);
    const auto problems = StoreFile::check(path_);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems.front().code, "structure");
    EXPECT_EQ(contentOf(path_ + "-wal"), log);
}

TEST_F(DamagedLogTest, AHeadThatIsDamagedIsNotTakenForTheEndOfTheLog) {
    for (std::size_t at = 0; at < kHead; ++at) {
        SCOPED_TRACE(at);
        std::string log = log_;
        log[at] ^= 0x10;
        setLog(log);
        EXPECT_EQ(codeOfFailure([&] { openReader(path_); }), Code::damaged);
        EXPECT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::damaged);
    }
}

// As when the log was about to begin anew: everything in it is in the file.
TEST_F(DamagedLogTest, AHeadThatIsTornOverALogWrittenBackIsNoDamage) {
    setLog(log_);
    openWriter(path_)->close();
    std::string log = log_;
    log[20] ^= 1;
    setContent(path_ + "-wal", log);

    EXPECT_EQ(revisionOf(*openReader(path_)), revisions_.back());
    EXPECT_EQ(revisionOf(*openWriter(path_)), revisions_.back());
}

TEST_F(DamagedLogTest, ALastCommitThatIsNotWholeIsWhatACrashLeaves) {
    std::string log = log_;
    log.resize(log.size() - 100);
    setLog(log);

    EXPECT_EQ(revisionOf(*openReader(path_)), revisions_[9]);
    auto writer = openWriter(path_);
    Revision revision = revisions_[9];
    commit(*writer, revision, {{3, "and on"}});
    EXPECT_EQ(revisionOf(*writer), revision);
}

TEST_F(DamagedLogTest, AnOlderCopyOfTheFileDoesNotGoWithALaterLog) {
    const std::string older = file_;
    setLog(log_);
    openWriter(path_)->close();
    Revision revision = revisions_.back();
    const auto writer = openWriter(path_);
    commit(*writer, revision, {{1, "in the log alone"}});
    log_ = contentOf(path_ + "-wal");
    const std::string copy = folder_ / "copy.qvt";
    setContent(copy, older);
    setContent(copy + "-wal", log_);

    EXPECT_EQ(codeOfFailure([&] { openReader(copy); }), Code::damaged);
    EXPECT_EQ(codeOfFailure([&] { openWriter(copy); }), Code::damaged);
    const auto problems = StoreFile::check(copy);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems.front().text, "the log beside it belongs to another file");
    EXPECT_EQ(
        codeOfFailure([&] { StoreFile::visit(copy, StoreFile::Search::byOrder, [](auto, auto, auto) {}); }),
        Code::damaged);
    EXPECT_EQ(contentOf(copy), older);
    EXPECT_EQ(contentOf(copy + "-wal"), log_);
}

TEST_F(DamagedLogTest, ALogDoesNotGoWithAnotherStoreOfTheSameRevision) {
    const std::string other = folder_ / "other.qvt";
    Revision revision;
    commit(*openWriter(other), revision, {{0, "something else"}});
    setContent(other + "-wal", log_);

    EXPECT_EQ(codeOfFailure([&] { openReader(other); }), Code::damaged);
}

// As when a crash comes in the midst of writing it back.
TEST_F(DamagedLogTest, ALogGoesWithAFileThatHasSomeOfItsCommits) {
    setLog(log_);
    openWriter(path_)->close();
    const std::string whole = contentOf(path_);
    for (std::size_t pages = 0; pages <= whole.size() / 4096; ++pages) {
        SCOPED_TRACE(pages);
        setLog(log_);
        const std::size_t done = std::min(pages * 4096, whole.size());
        setContent(path_, whole.substr(0, done) + (done < file_.size() ? file_.substr(done) : ""));
        EXPECT_EQ(revisionOf(*openReader(path_)), revisions_.back());
    }
}

TEST_F(DamagedLogTest, ALogThatACompactionBeganGoesWithItsFile) {
    const std::string name = folder_ / "compacted.qvt";
    Revision revision;
    FileDataStore::Options options;
    options.walLimit = 1;
    const auto writer = openWriter(name, options);
    for (std::uint32_t count = 0; count < 50; ++count)
        commit(*writer, revision, {{count, std::string(3000, 'c')}});
    commit(*writer, revision, {{7, std::nullopt}});
    ASSERT_EQ(writer->logStatus().bytes, 0u);
    const auto reader = openReader(name);  // keeps the log from being emptied
    writer->compact();
    ASSERT_NE(writer->logStatus().bytes, 0u);
    commit(*writer, revision, {{8, "after"}});

    setLog(contentOf(name + "-wal"));
    setContent(path_, contentOf(name));

    EXPECT_EQ(revisionOf(*openReader(path_)), revision);
}

TEST_F(DamagedLogTest, AnyDamageGivesAWholeRevisionOrIsTold) {
    std::mt19937 random(test::seed());
    int toldCount = 0;
    for (int round = test::rounds(150, 3000); round != 0; --round) {
        SCOPED_TRACE(round);
        std::string log = log_;
        const std::size_t size = 1 + random() % (std::size_t{1} << random() % 14);
        const std::size_t begin = random() % log.size();
        for (std::size_t at = begin; at < std::min(begin + size, log.size()); ++at)
            log[at] = static_cast<char>(random());
        setLog(log);

        try {
            const Revision found = revisionOf(*openReader(path_));
            EXPECT_EQ(found, revisions_.at(found.meta.revision));
            // Damage that ends in the last commit looks like a crash, and it touches three at most.
            EXPECT_GE(found.meta.revision, 7u);
        } catch (const StoreError& error) {
            EXPECT_EQ(error.code(), Code::damaged) << error.what();
            ++toldCount;
        }
        if (HasFailure()) break;
    }
    EXPECT_GT(toldCount, 50);
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
