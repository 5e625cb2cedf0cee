#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/FaultyVfs.h"
#include "support/Torture.h"
#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using test::DiskAfterCut;
using test::FaultyVfs;

class PowerCutTest : public testing::Test {
  protected:
    PowerCutTest() : vfs_(FaultyVfs::install()) {}

    // Commits of all kinds, with the log written back now and then, the file closed and opened, and
    // compacted.
    void work(int commitCount) {
        FileDataStore::Options options;
        options.walLimit = 60000;
        options.partSize = 8192;
        auto writer = openWriter(path_, options);
        for (int count = 0; count < commitCount; ++count) {
            commit(*writer, revision_, batch());
            revisions_.push_back(revision_);
            vfs_.mark(revision_.meta.revision);
            if (count % 17 == 16) {
                writer->close();
                writer = openWriter(path_, options);
            }
            if (count % 25 == 24) writer->compact();
        }
        writer->close();
    }

    Batch batch() {
        Batch changes;
        const std::uint64_t next = revision_.meta.next;
        for (unsigned count = 1 + random_() % 8; count != 0; --count) {
            const auto offset = static_cast<std::uint32_t>(random_() % (next + 4));
            if (random_() % 5 == 0 && offset < next)
                changes[offset].reset();
            else
                changes[offset] = std::string(random_() % 20 == 0 ? 20000 : random_() % 600,
                                              static_cast<char>('a' + random_() % 26));
        }
        return changes;
    }

    const Folder folder_;
    const std::string path_ = folder_ / "model.qvt";
    FaultyVfs& vfs_;
    std::mt19937 random_{test::seed()};
    Revision revision_;
    std::vector<Revision> revisions_;
};

TEST_F(PowerCutTest, TheFileHoldsTheLastAcknowledgedRevisionOrTheOneAfterIt) {
    openWriter(path_)->close();
    DiskAfterCut disk(std::map<std::string, std::string>{{path_, contentOf(path_)}});
    revisions_.push_back(revision_);
    vfs_.startTrace();
    work(test::rounds(50, 200));
    const std::vector<FaultyVfs::Event> events = vfs_.stopTrace();
    const Folder after;
    const std::string left = after / "model.qvt";
    const std::size_t cuts = static_cast<std::size_t>(test::rounds(150, 3000));
    const std::size_t each = (cuts + events.size() - 1) / events.size();
    const std::size_t distance = std::max<std::size_t>(1, events.size() / cuts);

    std::uint64_t acknowledged = 0;
    std::size_t done = 0;
    for (std::size_t at = 0; at < events.size(); ++at) {
        disk.apply(events[at]);
        if (events[at].kind == FaultyVfs::Event::Kind::mark) acknowledged = events[at].position;
        for (std::size_t count = 0; at % distance == 0 && count < each; ++count, ++done) {
            SCOPED_TRACE("event " + std::to_string(at) + ", cut " + std::to_string(count));
            std::filesystem::remove(left + "-wal");
            std::filesystem::remove(left + "-shm");
            for (const auto& [name, content] : disk.cut(random_))
                setContent(left + name.substr(path_.size()), content);

            const auto writer = openWriter(left);
            const std::uint64_t found = writer->meta().revision;
            ASSERT_GE(found, acknowledged);
            ASSERT_LE(found, acknowledged + 1);
            ASSERT_EQ(revisionOf(*writer), revisions_.at(found));
            if (done % 10 == 0) {
                ASSERT_TRUE(StoreFile::check(left).empty());
            }
        }
    }
    EXPECT_GE(done, cuts);
    RecordProperty("cuts", static_cast<int>(done));
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
