// What every store promises, as one suite of tests. A store takes part by a harness, a default-constructible
// class with
//
//     IDataStore& store();    an empty store, the same one at each call
//
// and `INSTANTIATE_TYPED_TEST_SUITE_P(Name, StoreContract, Harness);` in a test program.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <exception>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::test {

using core::storage::datastore::IDataStore;
using core::storage::datastore::kWholeRecord;

// The bytes of a record, as a caller reads them.
inline std::string bytesOf(IDataStore& store, std::uint32_t offset) {
    std::string bytes(store.recordSize(offset), '?');
    if (!bytes.empty()) store.read(offset, bytes.data(), kWholeRecord);
    return bytes;
}

inline std::uint32_t sizeOf(std::string_view bytes) { return static_cast<std::uint32_t>(bytes.size()); }

// That many bytes, each unlike those near it.
inline std::string numbered(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t index = 0; index < size; ++index)
        bytes[index] = static_cast<char>(index * 7 + index / 256);
    return bytes;
}

// What goes from one place of a record to another; most parts overlap with the place that they go to.
struct tOwnPart {
    std::uint32_t from;
    std::uint32_t to;
    std::uint32_t size;
};
inline constexpr tOwnPart kOwnParts[] = {
    {0, 0, 600},  {3, 0, 4},  {0, 3, 4},  {20, 21, 1},  {9, 30, 13},  {30, 26, 20},
    {26, 30, 20}, {8, 5, 40}, {5, 8, 40}, {11, 3, 500}, {3, 11, 500}, {200, 0, 400},
};

// Does to a map what is done to a store, and compares the two.
class StoreModel {
  public:
    StoreModel(IDataStore& store, unsigned seed) : store_(store), random_(seed) {}

    void step() {
        switch (below(12)) {
            case 0:
            case 1:
            case 2:
                return append();
            case 3:
            case 4:
                return extend();
            case 5:
            case 6:
                return write(true);
            case 7:
                return write(false);
            case 8:
                return patch();
            case 9:
                return remove();
            default:
                return look(below(next_ + 2));
        }
    }

    void compareAll() {
        for (std::uint32_t offset = 0; offset < next_ + 2; ++offset) look(offset);
    }

    std::uint32_t appended() const { return next_; }

  private:
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

    std::string randomBytes() {
        static constexpr std::uint32_t kLimits[] = {2, 20, 20, 200, 200, 2000, 20000};
        std::string bytes(below(kLimits[below(7)]), '\0');
        for (char& each : bytes) each = static_cast<char>(random_());
        return bytes;
    }

    // An offset that has a record, if there is any.
    bool choose(std::uint32_t& offset) {
        if (records_.empty()) return false;
        auto at = records_.lower_bound(below(next_));
        offset = at == records_.end() ? records_.begin()->first : at->first;
        return true;
    }

    void append() {
        const std::string bytes = randomBytes();
        const std::uint32_t offset = store_.append(bytes.data(), sizeOf(bytes));
        ASSERT_EQ(offset, next_);
        records_[next_++] = bytes;
        look(offset);
    }

    void extend() {
        std::uint32_t offset = 0;
        if (!choose(offset)) return;
        const std::string bytes = randomBytes();
        store_.extend(offset, bytes.data(), sizeOf(bytes));
        records_[offset] += bytes;
        look(offset);
    }

    void write(bool flag) {
        std::uint32_t offset = 0;
        if (!choose(offset)) return;
        const std::string bytes = randomBytes();
        store_.write(offset, bytes.data(), sizeOf(bytes), flag);
        records_[offset] = bytes;
        look(offset);
    }

    void patch() {
        std::uint32_t offset = 0;
        if (!choose(offset)) return;
        std::string& record = records_[offset];
        const std::uint32_t position = below(sizeOf(record) + 1);
        std::string bytes = randomBytes();
        bytes.resize(std::min<std::size_t>(bytes.size(), record.size() - position));
        if (store_.patch(offset, position, bytes.data(), sizeOf(bytes), below(2) == 0))
            record.replace(position, bytes.size(), bytes);
        look(offset);
    }

    void remove() {
        std::uint32_t offset = 0;
        if (!choose(offset)) return;
        store_.remove(offset);
        records_.erase(offset);
        look(offset);
    }

    void look(std::uint32_t offset) {
        const auto found = records_.find(offset);
        const std::string expected = found == records_.end() ? std::string() : found->second;
        ASSERT_EQ(store_.recordSize(offset), expected.size());
        ASSERT_EQ(bytesOf(store_, offset), expected);
        char kind = '\0';
        store_.read(offset, &kind, 1);
        ASSERT_EQ(kind, expected.empty() ? '\0' : expected[0]);
        std::uint32_t size = 0;
        if (const void* bytes = store_.view(offset, size))
            ASSERT_EQ(std::string(static_cast<const char*>(bytes), size), expected);
        else
            ASSERT_EQ(size, 0u);
    }

    IDataStore& store_;
    std::mt19937 random_;
    std::map<std::uint32_t, std::string> records_;
    std::uint32_t next_ = 0;
};

template <class Harness>
class StoreContract : public testing::Test {
  protected:
    ~StoreContract() noexcept override {}

    IDataStore& store() { return harness_.store(); }
    std::uint32_t append(std::string_view bytes) { return store().append(bytes.data(), sizeOf(bytes)); }
    void write(std::uint32_t offset, std::string_view bytes, bool flag = true) {
        store().write(offset, bytes.data(), sizeOf(bytes), flag);
    }
    void extend(std::uint32_t offset, std::string_view bytes) {
        store().extend(offset, bytes.data(), sizeOf(bytes));
    }
    std::string bytes(std::uint32_t offset) { return bytesOf(store(), offset); }

    // Every way to name no record: never given out, far away, `BADOFF`, removed.
    std::vector<std::uint32_t> absent() {
        const std::uint32_t removed = append("removed");
        store().remove(removed);
        return {removed + 1, 0x7FFFFFFFu, IDataStore::BADOFF, removed};
    }

  private:
    Harness harness_;
};

TYPED_TEST_SUITE_P(StoreContract);

TYPED_TEST_P(StoreContract, StartsEmptyWithVersionZero) {
    EXPECT_EQ(this->store().size(), 0u);
    EXPECT_EQ(this->store().version(), 0u);
}

TYPED_TEST_P(StoreContract, FirstRecordHasOffsetZeroAndTheStoreIsNotEmpty) {
    EXPECT_EQ(this->append("root"), 0u);

    EXPECT_NE(this->store().size(), 0u);
    EXPECT_EQ(this->bytes(0), "root");
}

TYPED_TEST_P(StoreContract, KeepsTheVersion) {
    this->store().setVersion(7);
    EXPECT_EQ(this->store().version(), 7u);

    this->store().setVersion(0xFFFFFFFFu);
    EXPECT_EQ(this->store().version(), 0xFFFFFFFFu);
    EXPECT_EQ(this->store().size(), 0u);
}

TYPED_TEST_P(StoreContract, OffsetIsNeverGivenAgain) {
    const std::uint32_t first = this->append("first");
    const std::uint32_t second = this->append("second");
    this->store().remove(second);
    this->store().remove(first);

    const std::uint32_t third = this->append("third");

    EXPECT_EQ(third, second + 1);
    EXPECT_EQ(this->store().recordSize(first), 0u);
    EXPECT_NE(this->store().size(), 0u);
}

TYPED_TEST_P(StoreContract, AppendCopiesTheBytes) {
    std::string source("a\0b", 3);
    const std::uint32_t offset = this->append(source);

    source[0] = 'X';

    EXPECT_EQ(this->bytes(offset), std::string("a\0b", 3));
}

TYPED_TEST_P(StoreContract, RecordMayBeEmpty) {
    const std::uint32_t offset = this->store().append(nullptr, 0);
    EXPECT_EQ(this->store().recordSize(offset), 0u);

    this->extend(offset, "filled");

    EXPECT_EQ(this->bytes(offset), "filled");
}

TYPED_TEST_P(StoreContract, WholeReadOfAnEmptyRecordDoesNotThrow) {
    const std::uint32_t offset = this->append("");
    char byte = 'x';

    this->store().read(offset, &byte, kWholeRecord);
    this->store().read(offset, &byte, 1);

    EXPECT_EQ(byte, 'x');
}

TYPED_TEST_P(StoreContract, ReadOfOneByteGivesTheFirst) {
    const std::uint32_t offset = this->append("\x04rest");
    char byte = 0;

    this->store().read(offset, &byte, 1);

    EXPECT_EQ(byte, '\x04');
}

TYPED_TEST_P(StoreContract, ReadOfOneByteLeavesAZeroThatIsThere) {
    const std::uint32_t offset = this->append(std::string_view("\0rest", 5));
    char byte = 0;

    this->store().read(offset, &byte, 1);

    EXPECT_EQ(byte, 0);
}

TYPED_TEST_P(StoreContract, ReadOfOneByteLeavesTheByteWhereThereIsNoRecord) {
    for (const std::uint32_t offset : this->absent()) {
        char byte = 'x';
        EXPECT_NO_THROW(this->store().read(offset, &byte, 1)) << offset;
        EXPECT_EQ(byte, 'x') << offset;
    }
}

TYPED_TEST_P(StoreContract, NoRecordHasSizeZeroAndCanBeRemoved) {
    for (const std::uint32_t offset : this->absent()) {
        EXPECT_EQ(this->store().recordSize(offset), 0u) << offset;
        EXPECT_NO_THROW(this->store().remove(offset)) << offset;
    }
}

TYPED_TEST_P(StoreContract, EverythingElseThrowsWhereThereIsNoRecord) {
    for (const std::uint32_t offset : this->absent()) {
        char byte = 'x';
        EXPECT_THROW(this->store().read(offset, &byte, kWholeRecord), std::exception) << offset;
        EXPECT_THROW(this->write(offset, "bytes"), std::exception) << offset;
        EXPECT_THROW(this->write(offset, "bytes", false), std::exception) << offset;
        EXPECT_THROW(this->extend(offset, "more"), std::exception) << offset;
        EXPECT_EQ(this->store().recordSize(offset), 0u) << offset;
    }
}

TYPED_TEST_P(StoreContract, WriteOfMoreBytesKeepsTheOffset) {
    const std::uint32_t offset = this->append("short");
    const std::uint32_t next = this->append("next");
    const std::string longer(5000, 'l');

    this->write(offset, longer);

    EXPECT_EQ(this->bytes(offset), longer);
    EXPECT_EQ(this->bytes(next), "next");
}

TYPED_TEST_P(StoreContract, WriteOfFewerBytesLeavesNothingOfTheOld) {
    const std::uint32_t offset = this->append(std::string(5000, 'o'));

    this->write(offset, "new");
    EXPECT_EQ(this->bytes(offset), "new");
    this->extend(offset, "er");
    EXPECT_EQ(this->bytes(offset), "newer");
    this->write(offset, "");
    EXPECT_EQ(this->store().recordSize(offset), 0u);
}

TYPED_TEST_P(StoreContract, WriteWithoutTheFlagIsReadBack) {
    const std::uint32_t offset = this->append("before");

    this->write(offset, "behind", false);
    EXPECT_EQ(this->bytes(offset), "behind");
    this->write(offset, "of another size", false);
    EXPECT_EQ(this->bytes(offset), "of another size");
}

TYPED_TEST_P(StoreContract, WriteCanTakeItsOwnView) {
    for (const tOwnPart& part : kOwnParts) {
        const std::string before = numbered(600);
        const std::uint32_t offset = this->append(before);
        std::uint32_t size = 0;
        const char* view = static_cast<const char*>(this->store().view(offset, size));
        if (!view) GTEST_SKIP() << "this store has no views";

        this->store().write(offset, view + part.from, part.size, true);

        EXPECT_EQ(this->bytes(offset), before.substr(part.from, part.size)) << part.size;
    }
}

TYPED_TEST_P(StoreContract, ExtendCanTakeItsOwnView) {
    const std::uint32_t offset = this->append("34567");
    std::uint32_t size = 0;
    if (!this->store().view(offset, size)) GTEST_SKIP() << "this store has no views";

    for (int round = 0; round < 10; ++round)
        this->store().extend(offset, this->store().view(offset, size), this->store().recordSize(offset));

    EXPECT_EQ(this->store().recordSize(offset), 5u << 10);
    EXPECT_EQ(this->bytes(offset).substr(5113), "6734567");
}

TYPED_TEST_P(StoreContract, ExtendOfOneByteByFourGivesFive) {
    const std::uint32_t offset = this->append("\x03");

    this->extend(offset, std::string_view("\1\0\0\0", 4));

    EXPECT_EQ(this->store().recordSize(offset), 5u);
    EXPECT_EQ(this->bytes(offset), std::string("\3\1\0\0\0", 5));
}

TYPED_TEST_P(StoreContract, ManySmallExtensionsCostWhatTheyAdd) {
    const std::uint32_t offset = this->append("\x03");
    const auto begin = std::chrono::steady_clock::now();

    for (int round = 0; round < 200000; ++round) this->extend(offset, "1234");

    EXPECT_EQ(this->store().recordSize(offset), 800001u);
    EXPECT_EQ(this->bytes(offset).substr(799997), "1234");
    // Copying the record each time would be 80 gigabytes.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TYPED_TEST_P(StoreContract, LargeRecordsAreKept) {
    std::string large(std::size_t{9} << 20, '\0');
    for (std::size_t index = 0; index < large.size(); index += 4099)
        large[index] = static_cast<char>(index / 4099);

    const std::uint32_t offset = this->append(large);
    this->extend(offset, "end");

    EXPECT_TRUE(this->bytes(offset) == large + "end");
}

TYPED_TEST_P(StoreContract, ViewShowsTheRecordOrNothing) {
    const std::uint32_t offset = this->append("bytes");
    std::uint32_t size = 99;

    const void* view = this->store().view(offset, size);

    if (view)
        EXPECT_EQ(std::string_view(static_cast<const char*>(view), size), "bytes");
    else
        EXPECT_EQ(size, 0u);
}

TYPED_TEST_P(StoreContract, ViewOfNoRecordIsNullOfSizeZero) {
    for (const std::uint32_t offset : this->absent()) {
        std::uint32_t size = 99;
        EXPECT_EQ(this->store().view(offset, size), nullptr) << offset;
        EXPECT_EQ(size, 0u) << offset;
    }
}

TYPED_TEST_P(StoreContract, PatchChangesTheBytesInPlaceOrNothing) {
    const std::uint32_t offset = this->append("0123456789");

    const bool done = this->store().patch(offset, 3, "abc", 3, true);

    EXPECT_EQ(this->bytes(offset), done ? "012abc6789" : "0123456789");
}

TYPED_TEST_P(StoreContract, PatchReachesTheLastByteAndNotBeyond) {
    const std::uint32_t offset = this->append("0123456789");
    if (!this->store().patch(offset, 9, "x", 1, true)) GTEST_SKIP() << "this store has no patches";
    EXPECT_EQ(this->bytes(offset), "012345678x");

    EXPECT_THROW(this->store().patch(offset, 9, "ab", 2, true), std::exception);
    EXPECT_THROW(this->store().patch(offset, 11, "", 0, true), std::exception);
    EXPECT_THROW(this->store().patch(offset, 0xFFFFFFFFu, "abc", 3, true), std::exception);
    EXPECT_THROW(this->store().patch(IDataStore::BADOFF, 0, "a", 1, true), std::exception);

    EXPECT_EQ(this->bytes(offset), "012345678x");
}

TYPED_TEST_P(StoreContract, PatchCanTakeItsOwnView) {
    for (const bool flag : {true, false})
        for (const tOwnPart& part : kOwnParts) {
            const std::string before = numbered(600);
            const std::uint32_t offset = this->append(before);
            std::uint32_t size = 0;
            const char* view = static_cast<const char*>(this->store().view(offset, size));
            if (!view || !this->store().patch(offset, part.to, view + part.from, part.size, flag))
                GTEST_SKIP() << "this store has no views or no patches";

            std::string expected = before;
            expected.replace(part.to, part.size, before.substr(part.from, part.size));
            EXPECT_EQ(this->bytes(offset), expected) << part.from << " to " << part.to << ", " << part.size;
        }
}

TYPED_TEST_P(StoreContract, ChangeStampMovesWithEveryChangeButBookkeeping) {
    IDataStore& store = this->store();
    const std::uint32_t offset = this->append("record");
    if (store.changeStamp() == 0) GTEST_SKIP() << "this store has no change stamp";
    std::uint64_t last = store.changeStamp();
    // True if the stamp has moved since the last time.
    const auto changes = [&](auto change) {
        change();
        const std::uint64_t before = std::exchange(last, store.changeStamp());
        return before != last;
    };

    EXPECT_FALSE(changes([] {}));
    EXPECT_TRUE(changes([&] { this->append("another"); }));
    EXPECT_TRUE(changes([&] { this->extend(offset, "more"); }));
    EXPECT_TRUE(changes([&] { this->write(offset, "written"); }));
    EXPECT_FALSE(changes([&] { this->write(offset, "Written", false); }));
    EXPECT_FALSE(changes([&] { this->write(offset, "of another size", false); }));
    if (store.patch(offset, 0, "w", 1, true)) {
        EXPECT_TRUE(changes([] {}));
        EXPECT_FALSE(changes([&] { store.patch(offset, 0, "W", 1, false); }));
    }
    EXPECT_FALSE(changes([&] { this->bytes(offset); }));
    EXPECT_TRUE(changes([&] { store.remove(offset); }));
    EXPECT_FALSE(changes([&] { store.remove(offset); }));
}

TYPED_TEST_P(StoreContract, FlushKeepsEverything) {
    const std::uint32_t offset = this->append("record");

    this->store().flush();

    EXPECT_EQ(this->bytes(offset), "record");
}

TYPED_TEST_P(StoreContract, GuardIsReentrantWithinAThread) {
    IDataStore::Guard* outer = this->store().lock();
    IDataStore::Guard* inner = this->store().lock();

    const std::uint32_t offset = this->append("record");
    delete outer;
    this->extend(offset, "s");
    delete inner;

    EXPECT_EQ(this->bytes(offset), "records");
}

TYPED_TEST_P(StoreContract, GuardKeepsOtherThreadsOutUntilTheLastIsGone) {
    IDataStore::Guard* outer = this->store().lock();
    IDataStore::Guard* inner = this->store().lock();
    if (!outer) GTEST_SKIP() << "this store needs no guard";
    std::atomic<bool> entered{false};
    std::thread other([&] {
        IDataStore::Guard* guard = this->store().lock();
        entered = true;
        this->append("from the other thread");
        delete guard;
    });

    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    delete inner;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    this->append("from this thread");
    delete outer;
    other.join();

    EXPECT_TRUE(entered);
    EXPECT_EQ(this->bytes(1), "from the other thread");
}

TYPED_TEST_P(StoreContract, ThreadsThatTakeTheGuardLoseNothing) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 250;
    const std::uint32_t list = this->append("");
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; ++index)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                IDataStore::Guard* guard = this->store().lock();
                const std::uint32_t offset = this->append("record");
                this->store().extend(list, &offset, sizeof offset);
                delete guard;
            }
        });
    for (auto& thread : threads) thread.join();

    const std::string offsets = this->bytes(list);
    ASSERT_EQ(offsets.size(), kThreads * kRounds * 4u);
    for (std::uint32_t index = 0; index < kThreads * kRounds; ++index) {
        std::uint32_t offset = 0;
        std::memcpy(&offset, offsets.data() + index * 4, 4);
        ASSERT_EQ(offset, index + 1);
    }
}

TYPED_TEST_P(StoreContract, RandomOperationsAgreeWithAMap) {
    StoreModel model(this->store(), 20240501);

    for (int step = 0; step < 6000 && !this->HasFatalFailure(); ++step) model.step();

    model.compareAll();
    EXPECT_GT(model.appended(), 1000u);
}

REGISTER_TYPED_TEST_SUITE_P(
    StoreContract, StartsEmptyWithVersionZero, FirstRecordHasOffsetZeroAndTheStoreIsNotEmpty, KeepsTheVersion,
    OffsetIsNeverGivenAgain, AppendCopiesTheBytes, RecordMayBeEmpty, WholeReadOfAnEmptyRecordDoesNotThrow,
    ReadOfOneByteGivesTheFirst, ReadOfOneByteLeavesAZeroThatIsThere,
    ReadOfOneByteLeavesTheByteWhereThereIsNoRecord, NoRecordHasSizeZeroAndCanBeRemoved,
    EverythingElseThrowsWhereThereIsNoRecord, WriteOfMoreBytesKeepsTheOffset,
    WriteOfFewerBytesLeavesNothingOfTheOld, WriteWithoutTheFlagIsReadBack, WriteCanTakeItsOwnView,
    ExtendCanTakeItsOwnView, ExtendOfOneByteByFourGivesFive, ManySmallExtensionsCostWhatTheyAdd,
    LargeRecordsAreKept, ViewShowsTheRecordOrNothing, ViewOfNoRecordIsNullOfSizeZero,
    PatchChangesTheBytesInPlaceOrNothing, PatchReachesTheLastByteAndNotBeyond, PatchCanTakeItsOwnView,
    ChangeStampMovesWithEveryChangeButBookkeeping, FlushKeepsEverything, GuardIsReentrantWithinAThread,
    GuardKeepsOtherThreadsOutUntilTheLastIsGone, ThreadsThatTakeTheGuardLoseNothing,
    RandomOperationsAgreeWithAMap);

}  // namespace norvane::platform::test
