// Files in folders that cannot be written, on disks without room, and not where they were.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

// Gives up the rights to write anywhere. For processes that end afterwards.
void becomeNobody() {
    if (::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(9);
}

class ReadOnlyFolderTest : public testing::Test {
  protected:
    ReadOnlyFolderTest() {
        const auto writer = openWriter(path_);
        commit(*writer, revision_, {{0, "in the file"}});
        writer->close();
    }
    ~ReadOnlyFolderTest() override { ::chmod(folder_.path().c_str(), 0755); }

    void closeFolder() {
        ::chmod(path_.c_str(), 0644);
        ::chmod(folder_.path().c_str(), 0555);
    }

    // Runs a step in a process of its own that cannot write here; its result is how that ends. What is done
    // meanwhile begins when the step calls what it is given, which then waits for that to be done.
    template <class Step, class Meanwhile>
    int asNobody(Step&& step, Meanwhile&& meanwhile) {
        std::array<int, 2> ready{};
        std::array<int, 2> done{};
        EXPECT_EQ(::pipe(ready.data()) + ::pipe(done.data()), 0);
        const auto wait = [](int end) {
            char byte = 0;
            return ::read(end, &byte, 1) == 1;
        };
        const pid_t child = ::fork();
        if (child == 0) {
            becomeNobody();
            ::_exit(step([&] {
                if (::write(ready[1], "", 1) != 1 || !wait(done[0])) ::_exit(8);
            }));
        }
        ::close(ready[1]);
        if (wait(ready[0])) {
            meanwhile();
            EXPECT_EQ(::write(done[1], "", 1), 1);
        }
        for (const int end : {ready[0], done[0], done[1]}) ::close(end);
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    template <class Step>
    int asNobody(Step&& step) {
        return asNobody([&](auto&&) { return step(); }, [] {});
    }

    const Folder folder_;
    const std::string path_ = folder_ / "model.qvt";
    Revision revision_;
};

TEST_F(ReadOnlyFolderTest, AStoreCanBeReadAndNotWritten) {
    closeFolder();

    EXPECT_EQ(asNobody([&] { return revisionOf(*openReader(path_)) == revision_ ? 0 : 1; }), 0);
    EXPECT_EQ(asNobody([&] { return StoreFile::check(path_).empty() ? 0 : 1; }), 0);
    EXPECT_EQ(
        asNobody([&] { return codeOfFailure([&] { openWriter(path_); }) == Code::notWritable ? 0 : 1; }), 0);
    EXPECT_EQ(asNobody([&] {
                  return codeOfFailure([&] { openWriter(folder_ / "new"); }) == Code::notWritable ? 0 : 1;
              }),
              0);
    EXPECT_FALSE(std::filesystem::exists(path_ + "-shm"));
}

// What stood beside the file would be his, and keep out whoever owns the store.
TEST_F(ReadOnlyFolderTest, AReaderWhoMayNotWriteTheStoreLeavesNothingBesideIt) {
    ::chmod(path_.c_str(), 0644);
    ::chmod(folder_.path().c_str(), 0777);

    EXPECT_EQ(asNobody([&] { return revisionOf(*openReader(path_)) == revision_ ? 0 : 1; }), 0);

    EXPECT_FALSE(std::filesystem::exists(path_ + "-shm"));
    EXPECT_FALSE(std::filesystem::exists(path_ + "-wal"));
}

// It holds no lock there that would keep the log from being written back.
TEST_F(ReadOnlyFolderTest, ARevisionThatIsWrittenOverIsToldAndNotMixedWithTheNext) {
    Revision next = revision_.with({{0, "in the file now"}, {1, std::string(9000, 'n')}});
    closeFolder();
    const auto readAcross = [&](auto&& waitForWriter) {
        const auto reader = openReader(path_);
        if (revisionOf(*reader) != revision_) return 1;
        waitForWriter();
        if (codeOfFailure([&] { loaded(*reader, 0); }) != Code::notReadable) return 2;
        if (reader->meta() != revision_.meta) return 3;
        return reader->refresh() && revisionOf(*reader) == next ? 0 : 4;
    };
    const auto write = [&] {
        ::chmod(folder_.path().c_str(), 0755);
        openWriter(path_)->commit(
            changesOf({{0, "in the file now"}, {1, std::string(9000, 'n')}}, revision_.records), next.meta);
        ::chmod(folder_.path().c_str(), 0555);
    };

    EXPECT_EQ(asNobody(readAcross, write), 0);
}

TEST_F(ReadOnlyFolderTest, AWriterThatHasWrittenNothingIntoTheFileDisturbsNoReader) {
    closeFolder();
    std::unique_ptr<FileBackend> writer;
    const auto readAcross = [&](auto&& waitForWriter) {
        const auto reader = openReader(path_);
        waitForWriter();
        return revisionOf(*reader) == revision_ ? 0 : 1;
    };
    const auto write = [&] {
        ::chmod(folder_.path().c_str(), 0755);
        writer = openWriter(path_);
        Revision next = revision_;
        commit(*writer, next, {{0, "in the log"}});
    };

    EXPECT_EQ(asNobody(readAcross, write), 0);
}

TEST_F(ReadOnlyFolderTest, ALogThatCannotBeSeenIsNotPassedOver) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "in the log"}});
    std::filesystem::create_directory(folder_ / "copy");
    std::filesystem::copy(path_, folder_ / "copy/model.qvt");
    std::filesystem::copy(path_ + "-wal", folder_ / "copy/model.qvt-wal");
    ::chmod((folder_ / "copy").c_str(), 0555);
    closeFolder();

    EXPECT_EQ(asNobody([&] {
                  const auto code = codeOfFailure([&] {
                      if (revisionOf(*openReader(folder_ / "copy/model.qvt")) != revision_) ::_exit(1);
                  });
                  return !code || *code == Code::notReadable ? 0 : 2;
              }),
              0);
    ::chmod((folder_ / "copy").c_str(), 0755);
}

TEST_F(ReadOnlyFolderTest, AFileThatMayNotBeReadIsNamed) {
    closeFolder();
    ::chmod(path_.c_str(), 0);

    EXPECT_EQ(
        asNobody([&] { return codeOfFailure([&] { openReader(path_); }) == Code::notReadable ? 0 : 1; }), 0);
}

// The name of a new file lasts only when its folder has been synced, which must be opened for that.
TEST_F(ReadOnlyFolderTest, AFileWhoseNameMayNotLastIsNotMade) {
    const std::string closed = folder_ / "closed";
    std::filesystem::create_directory(closed);
    ::chmod(closed.c_str(), 0333);
    closeFolder();

    EXPECT_EQ(asNobody([&] {
                  return codeOfFailure([&] { openWriter(closed + "/new"); }) == Code::notWritable ? 0 : 1;
              }),
              0);

    ::chmod(closed.c_str(), 0755);
    EXPECT_TRUE(std::filesystem::is_empty(closed));
}

// A small disk of its own.
class FullDiskTest : public testing::Test {
  protected:
    void SetUp() override {
        if (::mount("none", folder_.path().c_str(), "tmpfs", 0, "size=1m") != 0)
            GTEST_SKIP() << "only for those who may mount";
        isMounted_ = true;
    }
    void TearDown() override {
        if (isMounted_) ::umount2(folder_.path().c_str(), MNT_DETACH);
    }

    const Folder folder_;
    const std::string path_ = folder_ / "model.qvt";
    bool isMounted_ = false;
    Revision revision_;
};

TEST_F(FullDiskTest, TheSameCommitSucceedsWhenThereIsRoom) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, "before"}});
    setContent(folder_ / "ballast", std::string(700000, 'x'));
    const Batch batch{{0, "after"}, {1, std::string(300000, 'y')}};
    const Revision before = revision_;

    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, batch); }), Code::diskFull);
    EXPECT_EQ(codeOfFailure([&] { commit(*writer, revision_, batch); }), Code::diskFull);

    EXPECT_EQ(revisionOf(*writer), before);
    EXPECT_EQ(revisionOf(*openReader(path_)), before);
    std::filesystem::remove(folder_ / "ballast");
    commit(*writer, revision_, batch);
    EXPECT_EQ(revisionOf(*writer), revision_);
}

TEST_F(FullDiskTest, ClosingWithoutRoomForWhatIsInTheLogLosesNothing) {
    const auto writer = openWriter(path_);
    commit(*writer, revision_, {{0, std::string(300000, 'y')}});
    setContent(folder_ / "ballast", std::string(1000000, 'x'));

    writer->close();

    EXPECT_EQ(revisionOf(*openReader(path_)), revision_);
    std::filesystem::remove(folder_ / "ballast");
    EXPECT_EQ(revisionOf(*openWriter(path_)), revision_);
}

TEST_F(FullDiskTest, AStoreCanBeReadWithoutAnyRoom) {
    {
        const auto writer = openWriter(path_);
        commit(*writer, revision_, {{0, "in the file"}});
        writer->close();
    }
    setContent(folder_ / "ballast", std::string(2000000, 'x'));

    EXPECT_EQ(revisionOf(*openReader(path_)), revision_);
}

TEST_F(FullDiskTest, AFileThatHasNoRoomIsNotMade) {
    setContent(folder_ / "ballast", std::string(2000000, 'x'));

    EXPECT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::diskFull);

    std::filesystem::remove(folder_ / "ballast");
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
