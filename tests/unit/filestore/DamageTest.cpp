#include <gtest/gtest.h>

#include <random>
#include <string>

#include "support/Torture.h"
#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr std::size_t kPage = 4096;

class DamageTest : public testing::Test {
  protected:
    // A few thousand records with some history: pages were split, emptied and used again.
    DamageTest() {
        FileDataStore::Options options;
        options.partSize = 16384;
        const auto writer = openWriter(folder_ / "sound.qvt", options);
        for (int round = 0; round < 6; ++round) commit(*writer, truth_, batch());
        commit(*writer, truth_, {{100, std::string(40000, 'p')}, {101, std::string(9000, 'o')}});
        writer->close();
        sound_ = contentOf(folder_ / "sound.qvt");
    }

    Batch batch() {
        Batch changes;
        for (int count = 0; count < 600; ++count) {
            const auto offset = static_cast<std::uint32_t>(random_() % 2500);
            if (random_() % 4 == 0)
                changes[offset].reset();
            else
                changes[offset] = std::to_string(random_()) + std::string(random_() % 120, 'd');
        }
        return changes;
    }

    std::size_t below(std::size_t end) { return random_() % end; }

    std::string damaged() {
        std::string bytes = sound_;
        switch (below(7)) {
            case 0:
                flipBits(bytes, 0, bytes.size());
                break;
            case 1:
                flipBits(bytes, 0, 100);
                break;
            case 2:
                flipBits(bytes, below(bytes.size() / kPage) * kPage, 16);
                break;
            case 3:
                fillRun(bytes, false);
                break;
            case 4:
                fillRun(bytes, true);
                break;
            case 5:
                bytes.resize(below(bytes.size()));
                break;
            default:
                swapPages(bytes);
                break;
        }
        return bytes;
    }
    void flipBits(std::string& bytes, std::size_t begin, std::size_t size) {
        for (std::size_t count = 1 + below(8); count != 0; --count)
            bytes[begin + below(size)] ^= static_cast<char>(1 << below(8));
    }
    void fillRun(std::string& bytes, bool isRandom) {
        const std::size_t size = 1 + below(std::size_t{1} << below(15));
        const std::size_t begin = below(bytes.size());
        for (std::size_t at = begin; at < std::min(begin + size, bytes.size()); ++at)
            bytes[at] = isRandom ? static_cast<char>(random_()) : '\0';
    }
    void swapPages(std::string& bytes) {
        const std::size_t first = below(bytes.size() / kPage) * kPage;
        const std::size_t second = below(bytes.size() / kPage) * kPage;
        const std::string kept = bytes.substr(first, kPage);
        bytes.replace(first, kPage, bytes, second, kPage);
        bytes.replace(second, kPage, kept);
    }

    // True if all of the truth is there; false if something is refused. Anything else is a silent change.
    bool readsWhole(Backend& backend) {
        EXPECT_EQ(backend.meta(), truth_.meta);
        bool isWhole = true;
        for (std::uint32_t offset = 0; offset < truth_.meta.next; ++offset) {
            try {
                const auto found = truth_.records.find(offset);
                const auto bytes = loaded(backend, offset);
                EXPECT_EQ(bytes.has_value(), found != truth_.records.end()) << offset;
                if (bytes && found != truth_.records.end()) {
                    EXPECT_EQ(*bytes, found->second) << offset;
                }
            } catch (const StoreError& error) {
                EXPECT_EQ(error.code(), StoreError::Code::damaged) << error.what();
                EXPECT_EQ(error.offset(), offset) << error.what();
                isWhole = false;
            }
        }
        return isWhole;
    }

    bool opensAndReadsWhole(const std::string& path) {
        try {
            return readsWhole(*openReader(path));
        } catch (const StoreError&) {
            return false;
        }
    }

    std::size_t visitsOnlyTheTruth(const std::string& path, StoreFile::Search search) {
        std::size_t count = 0;
        try {
            StoreFile::visit(path, search, [&](std::uint32_t offset, const void* bytes, std::uint32_t size) {
                const auto found = truth_.records.find(offset);
                ASSERT_NE(found, truth_.records.end()) << offset;
                EXPECT_EQ(std::string(static_cast<const char*>(bytes), size), found->second) << offset;
                ++count;
            });
        } catch (const StoreError& error) {
            EXPECT_EQ(error.code(), StoreError::Code::damaged) << error.what();
        }
        return count;
    }

    const Folder folder_;
    std::mt19937 random_{test::seed()};
    Revision truth_;
    std::string sound_;
};

TEST_F(DamageTest, ADamagedFileSaysTheTruthOrThatItIsDamaged) {
    const std::string path = folder_ / "damaged.qvt";
    int wholeCount = 0;
    const int count = test::rounds(150, 2000);
    for (int round = 0; round < count; ++round) {
        SCOPED_TRACE(round);
        const std::string bytes = damaged();
        setContent(path, bytes);

        const bool isWhole = opensAndReadsWhole(path);
        const bool isSound = StoreFile::check(path).empty();

        if (isSound) {
            EXPECT_TRUE(isWhole);
        }
        const std::size_t byOrder = visitsOnlyTheTruth(path, StoreFile::Search::byOrder);
        const std::size_t byPage = visitsOnlyTheTruth(path, StoreFile::Search::byPage);
        EXPECT_GE(byPage, byOrder);
        if (isWhole) {
            EXPECT_EQ(byOrder, truth_.records.size());
        }
        EXPECT_EQ(contentOf(path), bytes);
        wholeCount += isWhole;
        if (HasFailure()) break;
    }
    EXPECT_LT(wholeCount, count / 2);
}

TEST_F(DamageTest, CommitsToADamagedFileAreRefusedOrKept) {
    const std::string path = folder_ / "damaged.qvt";
    const Revision sound = truth_;
    for (int round = test::rounds(100, 1000); round != 0; --round) {
        SCOPED_TRACE(round);
        setContent(path, damaged());
        truth_ = sound;
        bool isCommitted = false;
        try {
            const auto writer = openWriter(path);
            commit(*writer, truth_, batch());
            isCommitted = true;
        } catch (const StoreError&) {
        }

        if (isCommitted) opensAndReadsWhole(path);
        std::filesystem::remove(path + "-wal");
        std::filesystem::remove(path + "-shm");
        if (HasFailure()) break;
    }
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
