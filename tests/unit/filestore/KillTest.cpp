#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <random>
#include <string>

#include "support/Torture.h"
#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

FileDataStore::Options options() {
    FileDataStore::Options chosen;
    chosen.walLimit = 200000;
    chosen.partSize = 8192;
    return chosen;
}

// What is committed as the next revision is told by the one before alone, so that the parent knows what the
// child has written.
Batch batchAfter(const Revision& revision) {
    Batch batch;
    std::mt19937 random(static_cast<unsigned>(revision.meta.revision));
    for (auto count = 1 + random() % 20; count != 0; --count) {
        const auto offset = static_cast<std::uint32_t>(random() % 200);
        if (random() % 6 == 0 && offset < revision.meta.next)
            batch[offset].reset();
        else
            batch[offset] = std::to_string(revision.meta.revision) + std::string(random() % 900, 'k');
    }
    if (random() % 10 == 0) batch[201] = std::string(30000 + random() % 10000, 'l');
    return batch;
}

// Commits until it is killed, and tells of every revision once it is committed.
[[noreturn]] void commitForEver(const std::string& path, Revision revision, int pipe) {
    try {
        const auto writer = openWriter(path, options());
        for (;;) {
            commit(*writer, revision, batchAfter(revision));
            const std::uint64_t number = revision.meta.revision;
            if (::write(pipe, &number, sizeof number) != sizeof number) ::_exit(2);
        }
    } catch (const std::exception& error) {
        const std::string words = std::string(error.what()) + "\n";
        if (::write(STDERR_FILENO, words.data(), words.size()) < 0) ::_exit(3);
        ::_exit(1);
    }
}

std::uint64_t lastOf(int pipe, std::uint64_t otherwise) {
    std::uint64_t number = 0;
    while (::read(pipe, &number, sizeof number) == sizeof number) otherwise = number;
    return otherwise;
}

TEST(KillTest, NothingAcknowledgedIsLostAndEveryRevisionIsWhole) {
    const Folder folder;
    const std::string path = folder / "model.qvt";
    openWriter(path)->close();
    std::mt19937 random(test::seed());
    Revision revision;
    const int kills = test::rounds(10, 200);
    int killed = 0;

    for (int round = 0; round < kills; ++round) {
        std::array<int, 2> pipe{};
        ASSERT_EQ(::pipe(pipe.data()), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::close(pipe[0]);
            commitForEver(path, revision, pipe[1]);
        }
        ::close(pipe[1]);
        ::usleep(static_cast<unsigned>(2000 + random() % 60000));
        ::kill(child, SIGKILL);
        const std::uint64_t acknowledged = lastOf(pipe[0], revision.meta.revision);
        ::close(pipe[0]);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the child has ended by itself";
        ++killed;

        const auto writer = openWriter(path, options());
        const std::uint64_t found = writer->meta().revision;
        ASSERT_GE(found, acknowledged);
        ASSERT_LE(found, acknowledged + 1);
        while (revision.meta.revision < found) revision = revision.with(batchAfter(revision));
        ASSERT_EQ(revisionOf(*writer), revision);
        writer->close();
        ASSERT_TRUE(StoreFile::check(path).empty());
    }
    EXPECT_EQ(killed, kills);
    EXPECT_GT(revision.meta.revision, static_cast<std::uint64_t>(kills));
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
