// Which blocks record buffers take of the pool. This program has a pool of its own in the place of the core
// library's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <new>
#include <vector>

#include "norvane/platform/core/memory/PooledHeap.h"
#include "records/Records.h"
#include "support/RecordBytes.h"

namespace {

struct PoolLog {
    std::map<void*, std::size_t> taken;
    std::vector<std::size_t> sizes;
    int wrongFrees = 0;
    bool isEmpty = false;
};

PoolLog& poolLog() {
    static PoolLog log;
    return log;
}

}  // namespace

namespace norvane::platform::core::memory {

void* PooledHeap::malloc(std::size_t size) {
    if (poolLog().isEmpty) throw std::bad_alloc();
    void* block = std::malloc(size);
    std::memset(block, 0xA5, size);  // what is not zeroed shows
    poolLog().taken[block] = size;
    poolLog().sizes.push_back(size);
    return block;
}

void PooledHeap::free(void* pointer, std::size_t size) {
    const auto block = poolLog().taken.find(pointer);
    if (block == poolLog().taken.end() || block->second != size) ++poolLog().wrongFrees;
    poolLog().taken.erase(pointer);
    std::free(pointer);
}

}  // namespace norvane::platform::core::memory

namespace norvane::platform::test {
namespace {

namespace Record = data::Record;
namespace field = data::Record::field;
using testing::ElementsAre;

// A store that takes nothing of the pool.
class PlainStore : public IDataStore {
  public:
    ~PlainStore() noexcept override = default;

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override {
        const std::string& record = records_.at(offset);
        std::memcpy(buffer, record.data(), std::min<std::size_t>(size, record.size()));
    }
    Guard* lock() override { return nullptr; }
    void flush() override {}
    std::uint32_t version() override { return 0; }
    void setVersion(std::uint32_t) override {}
    std::uint64_t size() override { return records_.size(); }
    std::uint32_t append(const void* buffer, std::uint32_t size) override {
        records_.emplace_back(static_cast<const char*>(buffer), size);
        return static_cast<std::uint32_t>(records_.size() - 1);
    }
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override {
        records_.at(offset).append(static_cast<const char*>(buffer), size);
    }
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool) override {
        records_.at(offset).assign(static_cast<const char*>(buffer), size);
    }
    std::uint32_t recordSize(std::uint32_t offset) override {
        return static_cast<std::uint32_t>(records_.at(offset).size());
    }
    void remove(std::uint32_t offset) override { records_.at(offset).clear(); }

  private:
    std::vector<std::string> records_;
};

// Looks at what the pool gave out while a test ran; at its end everything must be back, by its right size.
class BufferTest : public testing::Test {
  public:
    BufferTest() { poolLog() = PoolLog(); }
    ~BufferTest() noexcept override {
        poolLog().isEmpty = false;
        EXPECT_TRUE(poolLog().taken.empty());
        EXPECT_EQ(poolLog().wrongFrees, 0);
    }

  protected:
    std::vector<std::size_t> takenSizes() const { return poolLog().sizes; }

    PlainStore store_;
};

TEST_F(BufferTest, BufferIsTakenInTheClassOfItsRecord) {
    const std::uint32_t offset = store_.append(std::string(17, 'x').data(), 17);

    const Record::Base record(&store_, offset);

    EXPECT_THAT(takenSizes(), ElementsAre(32));
}

TEST_F(BufferTest, RecordsAboveTheLargestClassTakeWhatTheyNeed) {
    const std::uint32_t largest = store_.append(std::string(16384, 'x').data(), 16384);
    const std::uint32_t larger = store_.append(std::string(16385, 'x').data(), 16385);

    EXPECT_EQ(Record::Base(&store_, largest).capacity(), 16384u);
    EXPECT_EQ(Record::Base(&store_, larger).capacity(), 16385u);

    EXPECT_THAT(takenSizes(), ElementsAre(16384, 16385));
}

TEST_F(BufferTest, EmptyRecordTakesNoBuffer) {
    const std::uint32_t offset = store_.append("", 0);

    const Record::Base record(&store_, offset);

    EXPECT_THAT(takenSizes(), ElementsAre());
}

TEST_F(BufferTest, ListTakesAnotherBufferOnlyWhereItsCapacityEnds) {
    Record::Offsets list(&store_);

    for (std::uint32_t i = 0; i < 8; ++i) list.setAt(i, i);

    EXPECT_THAT(takenSizes(), ElementsAre(8, 16, 32, 48));
    EXPECT_EQ(list.size(), 33u);
}

TEST_F(BufferTest, ReplacedSectionTakesABufferOfTheNewClass) {
    Record::Entity table(&store_, appendNamed(store_, Record::Kind::table, u"t"));

    table.setField(field::tableClassSize, u"a longer text", 28);

    EXPECT_THAT(takenSizes(), ElementsAre(48, 96));
    EXPECT_EQ(table.size(), 66u);
}

TEST_F(BufferTest, ListThatWasReadGrowsByZeros) {
    const std::uint32_t offset = appendTo(store_, listOf({1}));
    Record::Offsets list(&store_, offset);

    list.setAt(3, 9);

    EXPECT_EQ(recordAt(store_, offset), listOf({1, 0, 0, 9}));
}

TEST_F(BufferTest, PoolWithoutMemoryLeavesEverythingAsItWas) {
    Record::Entity table(&store_, appendNamed(store_, Record::Kind::table, u"t"));
    const RecordBytes before = recordAt(store_, table.offset());
    poolLog().isEmpty = true;

    EXPECT_THROW(table.setField(field::tableClassSize, u"a longer text", 28), std::bad_alloc);
    EXPECT_THROW(table.grow(100), std::bad_alloc);
    EXPECT_THROW(appendNamed(store_, Record::Kind::table, std::u16string(300, u'u')), std::bad_alloc);

    EXPECT_EQ(table.size(), 38u);
    table.commit();
    EXPECT_EQ(recordAt(store_, table.offset()), before);
    EXPECT_EQ(store_.size(), 1u);
}

}  // namespace
}  // namespace norvane::platform::test
