#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include "stores/file/Connection.h"
#include "stores/file/Log.h"
#include "unit/filestore/Backends.h"
#include "unit/filestore/Peer.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

class SharingTest : public testing::Test {
  protected:
    bool isPinnedBy(const FileBackend& backend, pid_t process) const {
        const auto pins = backend.logStatus().pinnedBy;
        return std::find(pins.begin(), pins.end(), process) != pins.end();
    }

    // Runs a step in a process that has a copy of all there is here; its result is what the step answers.
    template <class Step>
    static int inForked(Step&& step) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(step());
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    const Folder folder_;
    const std::string path_ = folder_ / "model.qvt";
    Revision revision_;
};

TEST_F(SharingTest, ASecondWriterInAnotherProcessIsRefusedAtOnce) {
    Peer peer(path_);
    auto writer = openWriter(path_);
    const auto before = std::chrono::steady_clock::now();

    EXPECT_FALSE(peer.write());

    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
    writer->close();
    EXPECT_TRUE(peer.write());
    EXPECT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::inUse);
}

TEST_F(SharingTest, AKilledWriterKeepsNobodyOut) {
    openWriter(path_)->close();
    Peer peer(path_);
    ASSERT_TRUE(peer.write());
    ASSERT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::inUse);

    peer.kill();

    EXPECT_NO_THROW(openWriter(path_));
}

// A process that is forked has a copy of every store, and destroys it when it exits.
TEST_F(SharingTest, AForkedProcessThatDropsItsCopyOfAWriterTakesNothingFromIt) {
    Peer peer(path_);
    auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "x"}});
    const std::string log = contentOf(path_ + "-wal");

    const int dropped = inForked([&] {
        writer.reset();
        return 0;
    });

    EXPECT_EQ(dropped, 0);
    EXPECT_FALSE(peer.write());
    EXPECT_EQ(contentOf(path_ + "-wal"), log);
    commit(*writer, revision_, {{1, "y"}});
    EXPECT_EQ(revisionOf(*writer), revision_);
    writer->close();
    EXPECT_TRUE(peer.write());
}

TEST_F(SharingTest, NothingCanBeDoneWithAStoreThatAnotherProcessHasOpened) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "x"}});
    const auto reader = openReader(path_);
    const auto isRefused = [](auto&& step) { return codeOfFailure(step) == Code::wrongState; };

    const int answers = inForked([&] {
        int count = 0;
        for (FileBackend* backend : {writer.get(), reader.get()}) {
            count += isRefused([&] { loaded(*backend, 0); });
            count += isRefused([&] { backend->refresh(); });
            count += isRefused([&] { backend->commit({}, revision_.meta); });
            count += isRefused([&] { backend->compact(); });
            count += isRefused([&] { backend->logStatus(); });
            count += isRefused([&] { backend->close(); });
        }
        return count;
    });

    EXPECT_EQ(answers, 12);
    EXPECT_EQ(loaded(*writer, 0), "x");
}

// SQLite would take the locks of the other process for its own.
TEST_F(SharingTest, AForkedProcessDoesNotOpenWhatIsOpenAlready) {
    const auto writer = openWriter(path_);

    EXPECT_EQ(inForked([&] { return codeOfFailure([&] { openWriter(path_); }) == Code::inUse; }), 1);
    EXPECT_EQ(inForked([&] { return codeOfFailure([&] { openReader(path_); }) == Code::notReadable; }), 1);
}

// To close a descriptor of a file drops the locks of all others in the process.
TEST_F(SharingTest, ReadersThatComeAndGoInTheSameProcessDropNoLock) {
    Peer peer(path_);
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "x"}});
    const auto lockCount = [&] {
        struct stat status {};
        ::stat(path_.c_str(), &status);
        const std::string inode = ":" + std::to_string(status.st_ino) + " ";
        std::istringstream locks(contentOf("/proc/locks"));
        int count = 0;
        for (std::string line; std::getline(locks, line);) count += line.find(inode) != std::string::npos;
        return count;
    };
    EXPECT_EQ(loaded(*writer, 0), "x");
    const int before = lockCount();

    for (int count = 0; count < 3; ++count) EXPECT_EQ(revisionOf(*openReader(path_)), revision_);
    EXPECT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::inUse);
    StoreFile::check(path_);
    StoreFile::visit(path_, StoreFile::Search::byPage, [](auto, auto, auto) {});

    EXPECT_GE(before, 2);
    EXPECT_EQ(lockCount(), before);
    EXPECT_FALSE(peer.write());
}

TEST_F(SharingTest, ReadersInOtherProcessesSeeWholeRevisions) {
    const auto fill = [&](Backend& backend) {
        Batch batch;
        for (std::uint32_t offset = 0; offset < 300; ++offset)
            batch[offset] = std::string(100, static_cast<char>('a' + revision_.meta.revision % 26));
        commit(backend, revision_, batch);
    };
    fill(*openWriter(path_));
    Peer peer(path_);
    ASSERT_TRUE(peer.read());
    bool isEven = true;
    int lookCount = 0;
    bool isDone = false;
    std::thread looking([&] {
        for (; !isDone && isEven; ++lookCount) isEven = peer.isEven();
    });

    FileDataStore::Options options;
    options.walLimit = 200000;
    {
        const auto writer = openWriter(path_, options);
        for (int count = 0; count < 60; ++count) fill(*writer);
    }
    isDone = true;
    looking.join();

    EXPECT_TRUE(isEven);
    EXPECT_GT(lookCount, 3);
}

TEST_F(SharingTest, AReaderThatKeepsTheLogFromBeingEmptiedIsNamed) {
    openWriter(path_)->close();
    Peer peer(path_);
    FileDataStore::Options options;
    options.walLimit = 100000;
    const auto writer = openWriter(path_, options);
    commit(*writer, revision_, {{0, "x"}});
    ASSERT_TRUE(peer.read());

    for (std::uint32_t offset = 1; offset < 10; ++offset)
        commit(*writer, revision_, {{offset, std::string(50000, 'x')}});

    EXPECT_GT(writer->logStatus().bytes, 400000u);
    EXPECT_EQ(writer->logStatus().pinnedBy, std::vector<pid_t>{peer.process()});
    ASSERT_TRUE(peer.close());
    EXPECT_TRUE(writer->logStatus().pinnedBy.empty());
    for (std::uint32_t offset = 1; offset < 4; ++offset)
        commit(*writer, revision_, {{offset, std::string(50000, 'y')}});
    EXPECT_LE(writer->logStatus().bytes, 100000u);
    EXPECT_EQ(revisionOf(*writer), revision_);
}

TEST_F(SharingTest, AReaderInTheSameProcessIsNamedToo) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "x"}});
    EXPECT_EQ(loaded(*writer, 0), "x");
    EXPECT_FALSE(isPinnedBy(*writer, ::getpid()));

    const auto reader = openReader(path_);

    EXPECT_TRUE(isPinnedBy(*writer, ::getpid()));
}

TEST_F(SharingTest, ARevisionByAnotherHandFencesTheWriter) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "x"}});
    {
        Connection other(path_, Database::Mode::write);
        other.beginWriting();
        MetaRow row = other.meta();
        ++row.meta.revision;
        ++row.token;
        other.putMeta(row);
        other.commit();
        other.database().keepLog();
    }

    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, {{1, "y"}}); }), Code::fenced);
    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, {{1, "y"}}); }), Code::fenced);
    EXPECT_EQ(codeOfFailure([&] { loaded(*writer, 0); }), Code::fenced);
    EXPECT_EQ(codeOfFailure([&] { writer->compact(); }), Code::fenced);
}

TEST_F(SharingTest, WhatWasCommittedSinceIsNotCutFromTheLog) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "x"}});
    const auto commitAnother = [](Connection& connection) {
        connection.beginWriting();
        MetaRow row = connection.meta();
        ++row.meta.revision;
        connection.putMeta(row);
        connection.commit();
    };
    Connection other(path_, Database::Mode::write);
    const LogEnd before = LogEnd::of(other.database());
    commitAnother(other);

    EXPECT_TRUE(before.cutBack(other.database()));

    EXPECT_EQ(other.meta().meta.revision, 2u);
    ASSERT_EQ(emptyLog(other.database()), SQLITE_OK);
    commitAnother(other);
    EXPECT_TRUE(before.cutBack(other.database()));
    EXPECT_EQ(other.meta().meta.revision, 3u);
    other.database().keepLog();
}

TEST_F(SharingTest, ALockOfAnotherHandIsWaitedForAShortTimeOnly) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "x"}});
    {
        Connection other(path_, Database::Mode::write);
        other.beginWriting();
        EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, {{1, "y"}}); }), Code::inUse);
        other.rollBack();
        other.database().keepLog();
    }

    commit(*writer, revision_, {{1, "y"}});

    EXPECT_EQ(revisionOf(*writer), revision_);
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
