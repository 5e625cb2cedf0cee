// Lists of offsets and records of localised strings.
#include <gtest/gtest.h>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "records/Records.h"
#include "support/LoggingStore.h"
#include "support/RecordBytes.h"
#include "support/ThrowingStore.h"

namespace norvane::platform::test {
namespace {

using core::storage::datastore::MemoryDataStore;
namespace Record = data::Record;

class ListRecordTest : public testing::Test {
  public:
    ~ListRecordTest() noexcept override = default;

  protected:
    // A list that stands in the store, with an empty log behind it.
    std::uint32_t stored(const RecordBytes& list) {
        const std::uint32_t offset = appendTo(store_, list);
        store_.takeCalls();
        return offset;
    }

    LoggingStore store_;
};

TEST_F(ListRecordTest, NewListIsItsKindAlone) {
    const Record::Offsets list(&store_);

    EXPECT_EQ(recordAt(store_, list.offset()), listOf({}));
    EXPECT_EQ(list.capacity(), 8u);
}

TEST_F(ListRecordTest, FirstValueNeedsNoNewBufferAndTheSecondDoes) {
    Record::Offsets list(&store_);
    const std::byte* buffer = list.bytes();

    list.setAt(0, 0xA1B2C3D4u);
    EXPECT_EQ(list.bytes(), buffer);
    EXPECT_EQ(list.capacity(), 8u);
    list.setAt(1, 2);

    EXPECT_EQ(list.capacity(), 16u);
    EXPECT_EQ(recordAt(store_, list.offset()), listOf({0xA1B2C3D4u, 2}));
}

TEST_F(ListRecordTest, SlotsThatAreSkippedReadAsZero) {
    Record::Offsets list(&store_);

    list.setAt(5, 77);

    EXPECT_EQ(list.size(), 25u);
    EXPECT_EQ(recordAt(store_, list.offset()), listOf({0, 0, 0, 0, 0, 77}));
}

TEST_F(ListRecordTest, ValueInsideIsReplaced) {
    const std::uint32_t offset = stored(listOf({1, 2, 3}));

    Record::Offsets(&store_, offset).setAt(1, 9);

    EXPECT_EQ(recordAt(store_, offset), listOf({1, 9, 3}));
}

TEST_F(ListRecordTest, SlotsBehindARemovedValueReadAsZeroAgain) {
    const std::uint32_t offset = stored(listOf({1, 2}));
    Record::Offsets list(&store_, offset);

    list.removeValue(1);
    list.setAt(2, 5);

    EXPECT_EQ(recordAt(store_, offset), listOf({2, 0, 5}));
}

TEST_F(ListRecordTest, RemovingFromAnEmptyListWritesNothing) {
    const std::uint32_t offset = stored(listOf({}));

    EXPECT_FALSE(Record::Offsets(&store_, offset).removeValue(0));

    EXPECT_EQ(store_.changes().size(), 0u);
}

TEST_F(ListRecordTest, RemovingAnAbsentValueWritesNothing) {
    const std::uint32_t offset = stored(listOf({1, 2}));

    EXPECT_FALSE(Record::Offsets(&store_, offset).removeValue(3));

    EXPECT_EQ(store_.changes().size(), 0u);
}

TEST_F(ListRecordTest, RemoveValueTakesOnlyTheFirstOfTwo) {
    const std::uint32_t offset = stored(listOf({1, 2, 1, 3}));

    EXPECT_TRUE(Record::Offsets(&store_, offset).removeValue(1));

    EXPECT_EQ(recordAt(store_, offset), listOf({2, 1, 3}));
    EXPECT_EQ(store_.changes().size(), 1u);
    EXPECT_TRUE(store_.changes()[0].flag);
}

TEST_F(ListRecordTest, LastValueCanBeRemovedAndTheListStays) {
    const std::uint32_t offset = stored(listOf({4}));

    EXPECT_TRUE(Record::Offsets(&store_, offset).removeValue(4));

    EXPECT_EQ(recordAt(store_, offset), listOf({}));
}

TEST_F(ListRecordTest, RemovingKeepsTheCapacityAndZeroesTheLastSlot) {
    const std::uint32_t offset = stored(listOf({1, 2}));
    Record::Offsets list(&store_, offset);

    list.removeValue(2);

    EXPECT_EQ(list.capacity(), 16u);
    EXPECT_EQ(list.size(), 5u);
    EXPECT_EQ(std::to_integer<int>(list.bytes()[5]), 0);
}

TEST_F(ListRecordTest, BytesThatMakeNoWholeValueAreNoValueAndAreKept) {
    const std::uint32_t offset = stored(listOf({1, 2}).raw("xy"));
    Record::Offsets list(&store_, offset);

    EXPECT_EQ(list.count(), 2u);
    list.removeValue(1);

    EXPECT_EQ(recordAt(store_, offset), listOf({2}).raw("xy"));
}

// The same with every kind of store, and as the plain form has it.
class RemoveListedTest : public testing::TestWithParam<Extensions> {
  public:
    ~RemoveListedTest() noexcept override = default;

  protected:
    LoggingStore store_{GetParam()};
};

TEST_P(RemoveListedTest, TakesTheFirstSlotOfTheValueWhereverItStands) {
    for (const std::uint32_t count : {1u, 2u, 31u, 32u, 33u, 64u, 100u}) {
        for (std::uint32_t value = 0; value <= count; ++value) {
            std::vector<std::uint32_t> values(count);
            for (std::uint32_t i = 0; i < count; ++i) values[i] = i == count / 2 ? 0 : i;
            const std::uint32_t offset = appendTo(store_, listOf(values).raw("xy"));
            const std::uint32_t plain = appendTo(store_, listOf(values).raw("xy"));

            const bool isRemoved = Record::removeListed(&store_, offset, value);

            ASSERT_EQ(isRemoved, Record::Offsets(&store_, plain).removeValue(value));
            ASSERT_EQ(recordAt(store_, offset), recordAt(store_, plain)) << value << " of " << count;
        }
    }
}

TEST_P(RemoveListedTest, AnAbsentValueAndWhatIsNoListAreLeftAlone) {
    const std::uint32_t list = appendTo(store_, listOf({1, 2}));
    const std::uint32_t other = appendTo(store_, RecordBytes().raw("no list"));
    store_.takeCalls();

    EXPECT_FALSE(Record::removeListed(&store_, list, 3));
    EXPECT_FALSE(Record::removeListed(&store_, other, 3));
    EXPECT_FALSE(Record::removeListed(&store_, other + 1, 3));
    EXPECT_FALSE(Record::removeListed(&store_, IDataStore::BADOFF, 3));

    EXPECT_EQ(store_.changes().size(), 0u);
}

TEST_P(RemoveListedTest, AStoreThatFailsOnceKeepsTheWholeList) {
    MemoryDataStore memory;
    ThrowingStore store(memory, GetParam());
    const RecordBytes whole = listOf({1, 2, 3, 4}).raw("xy");
    const std::uint32_t offset = appendTo(store, whole);
    std::uint64_t call = 1;
    for (;; ++call) {
        store.throwAt(call);
        try {
            Record::removeListed(&store, offset, 2);
            break;
        } catch (const StoreFailure&) {
        }
        ASSERT_EQ(recordAt(memory, offset), whole) << "call " << call;
    }
    EXPECT_GT(call, 2u);
    EXPECT_EQ(recordAt(memory, offset), listOf({1, 3, 4}).raw("xy"));
}

INSTANTIATE_TEST_SUITE_P(Stores, RemoveListedTest, testing::Values(Extensions::off, Extensions::on));

TEST_F(ListRecordTest, ManyValuesAreAddedInOneWrite) {
    const std::uint32_t offset = stored(listOf({1}));
    const std::uint32_t values[] = {2, 3, 4};

    Record::Offsets(&store_, offset).append(values, 3);

    EXPECT_EQ(recordAt(store_, offset), listOf({1, 2, 3, 4}));
    EXPECT_EQ(store_.count("write"), 1u);
}

TEST_F(ListRecordTest, AddingNoValuesWritesNothing) {
    const std::uint32_t offset = stored(listOf({1}));

    Record::Offsets(&store_, offset).append(nullptr, 0);

    EXPECT_EQ(store_.changes().size(), 0u);
}

TEST_F(ListRecordTest, ListThatIsNotThereTakesNoValue) {
    const std::uint32_t value = 1;
    Record::Offsets list(&store_, IDataStore::BADOFF);

    list.setAt(3, 1);
    list.append(&value, 1);

    EXPECT_FALSE(list.removeValue(1));
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(store_.changes().size(), 0u);
}

TEST_F(ListRecordTest, ListThatWouldNotFitIsRefused) {
    Record::Offsets list(&store_);

    EXPECT_THROW(list.setAt(0x3FFFFFFFu, 1), data::TooLarge);

    EXPECT_EQ(recordAt(store_, list.offset()), listOf({}));
}

TEST_F(ListRecordTest, ThreePairsTake25Bytes) {
    Record::Offsets list(&store_);

    for (std::uint32_t i = 0; i < 6; ++i) list.setAt(i, i);

    EXPECT_EQ(list.size(), 25u);
}

TEST(LocaleRecordTest, NewRecordHasNoPayload) {
    MemoryDataStore store;

    const Record::Locale locale(&store);

    EXPECT_EQ(recordAt(store, locale.offset()), RecordBytes().u8(5).u32(0));
    EXPECT_EQ(locale.capacity(), 8u);
}

TEST(LocaleRecordTest, PayloadIsReplacedWhole) {
    MemoryDataStore store;
    Record::Locale locale(&store);
    const RecordBytes pairs = RecordBytes().text(u"de").text(u"Haus");

    locale.setPayload(pairs.data(), pairs.size());
    EXPECT_EQ(recordAt(store, locale.offset()), RecordBytes().u8(5).u32(16).raw(pairs.bytes()));
    locale.setPayload("ab", 2);

    EXPECT_EQ(recordAt(store, locale.offset()), RecordBytes().u8(5).u32(2).raw("ab"));
}

TEST(LocaleRecordTest, EmptyPayloadLeavesFiveBytes) {
    MemoryDataStore store;
    Record::Locale locale(&store);
    locale.setPayload("ab", 2);

    locale.setPayload(nullptr, 0);

    EXPECT_EQ(recordAt(store, locale.offset()), RecordBytes().u8(5).u32(0));
}

TEST(LocaleRecordTest, RecordThatIsGoneStaysSo) {
    MemoryDataStore store;
    const std::uint32_t offset = Record::Locale(&store).offset();
    store.remove(offset);

    Record::Locale(&store, offset).setPayload("ab", 2);

    EXPECT_EQ(store.recordSize(offset), 0u);
}

TEST(LocaleRecordTest, PayloadOfFourGigabytesIsRefused) {
    MemoryDataStore store;
    Record::Locale locale(&store);

    EXPECT_THROW(locale.setPayload("", 0xFFFFFFFFu), data::TooLarge);

    EXPECT_EQ(recordAt(store, locale.offset()).size(), 5u);
}

}  // namespace
}  // namespace norvane::platform::test
