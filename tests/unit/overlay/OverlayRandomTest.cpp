// Random programs of changes, guards that fail, commits, rollbacks and new openings, against plain maps.
#include <optional>

#include "Common.h"

namespace norvane::platform::test {
namespace {

using Records = std::map<std::uint32_t, std::string>;

// What the overlay should hold: open counts are in the bytes, and nowhere else.
struct Expected {
    Records records;
    std::uint32_t version = 0;
};

bool isEntity(const std::string& bytes) {
    return bytes.size() >= 9 && (bytes[0] == 0 || bytes[0] == 1 || bytes[0] == 2 || bytes[0] == 4);
}

std::string closed(std::string bytes) {
    if (isEntity(bytes)) std::fill(bytes.begin() + 5, bytes.begin() + 9, '\0');
    return bytes;
}

class Program {
  public:
    Program(unsigned seed, std::uint64_t memoryLimit) : random_(seed) {
        options_.memoryLimit = memoryLimit;
        store_.emplace(backend_, options_);
    }

    void run(int steps) {
        for (int step = 0; step < steps && !testing::Test::HasFatalFailure(); ++step) {
            switch (below(40)) {
                case 0:
                    commit();
                    break;
                case 1:
                    rollBack();
                    break;
                case 2:
                    reopen();
                    break;
                case 3:
                case 4:
                case 5:
                    failingOperation();
                    break;
                default:
                    change(now_);
            }
        }
        compare();
    }

  private:
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

    std::string randomBytes() {
        static constexpr std::uint32_t kLimits[] = {3, 30, 300, 3000};
        std::string bytes(below(kLimits[below(4)]), '\0');
        for (char& each : bytes) each = static_cast<char>(random_());
        if (!bytes.empty()) bytes[0] = static_cast<char>(below(8));
        return closed(bytes);
    }

    bool choose(std::uint32_t& offset) {
        if (now_.records.empty()) return false;
        const auto at = now_.records.lower_bound(below(now_.records.rbegin()->first + 1));
        offset = at->first;
        return true;
    }

    void change(Expected& expected) {
        std::uint32_t offset = 0;
        const std::uint32_t what = below(12);
        if (what < 4 || !choose(offset)) {
            const std::string bytes = randomBytes();
            expected.records[store_->append(bytes.data(), sizeOf(bytes))] = bytes;
            return;
        }
        std::string& record = expected.records[offset];
        const std::string bytes = randomBytes();
        if (what < 6) {
            store_->extend(offset, bytes.data(), sizeOf(bytes));
            record += bytes;
        } else if (what < 7) {
            store_->write(offset, bytes.data(), sizeOf(bytes), below(2) == 0);
            record = bytes;
        } else if (what < 9) {
            const std::uint32_t position = below(sizeOf(record) + 1);
            const std::string part = bytes.substr(0, record.size() - position);
            store_->patch(offset, position, part.data(), sizeOf(part), true);
            record.replace(position, part.size(), part);
        } else if (what < 10) {
            store_->remove(offset);
            expected.records.erase(offset);
        } else if (what < 11) {
            store_->setVersion(expected.version = below(5));
        } else if (isEntity(record)) {
            open(offset, record);
        }
        compareOne(offset);
    }

    // Opens and closes, as objects do.
    void open(std::uint32_t offset, const std::string& record) {
        std::string opened = record;
        opened[5] = static_cast<char>(opened[5] + 1);
        store_->write(offset, opened.data(), sizeOf(opened), false);
        store_->patch(offset, 5, record.data() + 5, 4, false);
    }

    void failingOperation() {
        const Expected before = now_;
        failUnderGuard(*store_, [&] {
            for (std::uint32_t step = below(8); step > 0; --step) change(now_);
        });
        now_ = before;
        // An operation may change bytes that are an open count by chance; what they are now is what stays.
        for (auto& [offset, bytes] : now_.records) {
            const std::string found = bytesOf(*store_, offset);
            ASSERT_EQ(closed(found), closed(bytes)) << offset;
            bytes = found;
        }
    }

    void commit() {
        store_->overlay.commit();
        committed_ = now_;
        for (auto& [offset, bytes] : committed_.records) bytes = closed(bytes);
        ASSERT_EQ(backend_.records(), committed_.records);
    }

    void rollBack() {
        store_->overlay.rollback();
        const Records open = now_.records;
        now_ = committed_;
        for (auto& [offset, bytes] : now_.records) {
            const std::string found = bytesOf(*store_, offset);
            ASSERT_EQ(closed(found), bytes);
            bytes = found;
        }
    }

    void reopen() {
        compare();
        store_.emplace(backend_, options_);
        now_ = committed_;
        compare();
    }

    void compareOne(std::uint32_t offset) {
        const auto found = now_.records.find(offset);
        ASSERT_EQ(bytesOf(*store_, offset), found == now_.records.end() ? std::string() : found->second)
            << offset;
    }

    void compare() {
        for (std::uint32_t offset = 0; offset < store_->size(); ++offset) {
            const auto found = now_.records.find(offset);
            // What was taken back while its count was not 0 waits to be closed.
            if (found == now_.records.end() && isEntity(bytesOf(*store_, offset))) continue;
            compareOne(offset);
        }
        ASSERT_EQ(store_->overlay.recordCount(), now_.records.size());
        ASSERT_EQ(store_->version(), now_.version);
    }

    std::mt19937 random_;
    OverlayOptions options_;
    MemoryBackend backend_;
    std::optional<OverlayStore> store_;
    Expected now_;
    Expected committed_;
};

TEST(OverlayRandomTest, AgreesWithMapsWhenAllFitsInMemory) {
    for (unsigned seed = 0; seed < 20 && !testing::Test::HasFatalFailure(); ++seed)
        Program(seed, std::uint64_t{1} << 30).run(1500);
}

TEST(OverlayRandomTest, AgreesWithMapsWhenHardlyAnythingFits) {
    for (unsigned seed = 0; seed < 20 && !testing::Test::HasFatalFailure(); ++seed)
        Program(seed, 2000).run(1500);
}

}  // namespace
}  // namespace norvane::platform::test
