// Files in folders that cannot be written, on disks without room, and not where they were.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

    // Runs a step in a process of its own that cannot write here; its result is how that ends.
    template <class Step>
    int asNobody(Step&& step) {
        const pid_t child = ::fork();
        if (child == 0) {
            becomeNobody();
            ::_exit(step());
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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

TEST_F(FullDiskTest, AFileThatHasNoRoomIsNotMade) {
    setContent(folder_ / "ballast", std::string(2000000, 'x'));

    EXPECT_EQ(codeOfFailure([&] { openWriter(path_); }), Code::diskFull);

    std::filesystem::remove(folder_ / "ballast");
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
