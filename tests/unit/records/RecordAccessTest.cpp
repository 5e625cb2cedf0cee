// What reading and rewriting records asks of a store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "records/Records.h"
#include "support/LoggingStore.h"
#include "support/RecordBytes.h"
#include "support/ThrowingStore.h"

namespace norvane::platform::test {
namespace {

using core::storage::datastore::MemoryDataStore;
using testing::ElementsAre;
namespace Record = data::Record;
namespace field = data::Record::field;

RecordBytes table() {
    RecordBytes record;
    record.u8(2).noRecord().u32(3).noRecord().u8(0).noRecord();
    return record.u32(0).noRecord().u32(4).u32(0).text(u"t");
}

std::vector<std::string> namesOf(const std::vector<StoreCall>& calls) {
    std::vector<std::string> names;
    for (const StoreCall& call : calls) names.push_back(call.name);
    return names;
}

// Stores with and without views and patches must see the same bytes.
class RecordAccessTest : public testing::TestWithParam<Extensions> {
  public:
    ~RecordAccessTest() noexcept override = default;

  protected:
    LoggingStore store_{GetParam()};
    const std::uint32_t offset_ = appendTo(store_, table());
};

INSTANTIATE_TEST_SUITE_P(Stores, RecordAccessTest, testing::Values(Extensions::off, Extensions::on),
                         [](const auto& each) {
                             return each.param == Extensions::on ? "WithViews" : "WithoutViews";
                         });

TEST_P(RecordAccessTest, KindIsTheFirstByte) {
    EXPECT_EQ(Record::kindOf(&store_, offset_), 2);
    EXPECT_EQ(Record::kindOf(&store_, appendTo(store_, listOf({}))), 3);
    EXPECT_EQ(Record::kindOf(&store_, appendTo(store_, RecordBytes().u8(255))), 255);
}

TEST_P(RecordAccessTest, OnlyARecordOfARootsSizeIsTakenForARoot) {
    const std::uint32_t whole = appendTo(store_, RecordBytes().zeros(22));
    const std::uint32_t cut = appendTo(store_, RecordBytes().zeros(21));
    const std::uint32_t gone = appendTo(store_, RecordBytes().zeros(22));
    store_.remove(gone);

    EXPECT_EQ(Record::kindOf(&store_, whole), 0);
    EXPECT_EQ(Record::kindOf(&store_, cut), Record::kNoKind);
    EXPECT_EQ(Record::kindOf(&store_, gone), Record::kNoKind);
    EXPECT_EQ(Record::kindOf(&store_, IDataStore::BADOFF), Record::kNoKind);
}

TEST_P(RecordAccessTest, SnapshotShowsTheRecordAsItIs) {
    const Record::Snapshot snapshot(&store_, offset_);

    EXPECT_EQ(RecordBytes(std::string(reinterpret_cast<const char*>(snapshot->bytes()), snapshot->size())),
              table());
}

TEST_P(RecordAccessTest, SnapshotAndRecordOfNoRecordAreEmpty) {
    store_.remove(offset_);

    EXPECT_EQ(Record::Snapshot(&store_, offset_)->size(), 0u);
    EXPECT_EQ(Record::Snapshot(&store_, IDataStore::BADOFF)->size(), 0u);
    EXPECT_EQ(Record::Base(&store_, offset_).size(), 0u);
    EXPECT_EQ(Record::Base(&store_, IDataStore::BADOFF).capacity(), 0u);
}

TEST_P(RecordAccessTest, NoRecordIsNeverReadWhole) {
    store_.remove(offset_);
    store_.takeCalls();

    { const Record::Base record(&store_, offset_); }
    { const Record::Snapshot record(&store_, IDataStore::BADOFF); }

    EXPECT_EQ(store_.count("read"), 0u);
}

TEST_P(RecordAccessTest, RecordThatIsGoneIsNeitherWrittenNorMade) {
    store_.remove(offset_);
    store_.takeCalls();

    Record::Base record(&store_, offset_);
    record.set(field::flags, std::uint8_t{1});
    record.commit();
    record.writeBookkeeping();
    Record::storeField(&store_, offset_, field::flags, std::uint8_t{1});
    Record::storeField(&store_, IDataStore::BADOFF, field::flags, std::uint8_t{1});
    Record::addToOpenCount(&store_, offset_, 1);
    Record::addToOpenCount(&store_, IDataStore::BADOFF, 1);

    EXPECT_THAT(store_.changes(), ElementsAre());
}

TEST_P(RecordAccessTest, ChangedFieldLeavesTheOthers) {
    Record::storeField(&store_, offset_, field::defaults, 0x01020304u);

    RecordBytes expected;
    expected.u8(2).noRecord().u32(3).noRecord().u8(0).noRecord();
    EXPECT_EQ(recordAt(store_, offset_), expected.u32(0).u32(0x01020304u).u32(4).u32(0).text(u"t"));
}

TEST_P(RecordAccessTest, ChangesAreFlaggedAndOpenCountsAreNot) {
    store_.takeCalls();

    Record::storeField(&store_, offset_, field::flags, std::uint8_t{1});
    Record::addToOpenCount(&store_, offset_, 1);

    ASSERT_EQ(store_.changes().size(), 2u);
    EXPECT_TRUE(store_.changes()[0].flag);
    EXPECT_FALSE(store_.changes()[1].flag);
    EXPECT_EQ(recordAt(store_, offset_).u32At(5), 4u);
}

TEST_P(RecordAccessTest, OpenCountsWrapAround) {
    Record::storeField(&store_, offset_, field::openCount, 0u);

    Record::addToOpenCount(&store_, offset_, 0xFFFFFFFFu);

    EXPECT_EQ(recordAt(store_, offset_).u32At(5), 0xFFFFFFFFu);
}

TEST_P(RecordAccessTest, FieldBehindTheEndIsNotStored) {
    const RecordBytes cut(table().part(0, 24));
    putAt(store_, offset_, cut);
    store_.takeCalls();

    Record::storeField(&store_, offset_, field::defaults, 1u);

    EXPECT_THAT(store_.changes(), ElementsAre());
    EXPECT_EQ(recordAt(store_, offset_), cut);
}

TEST(RecordCallsTest, RecordIsReadWholeOrByItsKindAlone) {
    LoggingStore store;
    const std::uint32_t offset = appendTo(store, table());
    store.takeCalls();

    Record::kindOf(&store, offset);
    { const Record::Base record(&store, offset); }

    EXPECT_THAT(store.calls(), ElementsAre(StoreCall{"read", offset, 1, false, {}},
                                           StoreCall{"recordSize", offset, 0, false, {}},
                                           StoreCall{"read", offset, 0xFFFFFFFFu, false, {}}));
}

TEST(RecordCallsTest, RecordIsWrittenWithItsSizeAndNotItsCapacity) {
    LoggingStore store;
    const std::uint32_t offset = appendTo(store, table());

    Record::Base record(&store, offset);
    record.commit();

    EXPECT_EQ(record.capacity(), 48u);
    EXPECT_EQ(store.changes().back(), (StoreCall{"write", offset, 38, true, table().bytes()}));
}

TEST(RecordCallsTest, OpenCountCostsOneReadAndOneWriteWithoutViews) {
    LoggingStore store;
    const std::uint32_t offset = appendTo(store, table());
    store.takeCalls();

    Record::addToOpenCount(&store, offset, 1);

    EXPECT_THAT(namesOf(store.calls()), ElementsAre("recordSize", "read", "write"));
}

TEST(RecordCallsTest, OpenCountIsPatchedWhereTheStoreOffersIt) {
    LoggingStore store(Extensions::on);
    const std::uint32_t offset = appendTo(store, table());
    store.takeCalls();

    Record::addToOpenCount(&store, offset, 1);

    EXPECT_EQ(store.count("patch"), 1u);
    EXPECT_EQ(store.count("read") + store.count("write"), 0u);
}

TEST(RecordCallsTest, NewRecordIsAppendedByTheFirstCommitOnly) {
    LoggingStore store;

    Record::Base record(&store);
    record.commit();  // there is nothing yet
    record.allocate(3);
    record.commit();
    record.commit();

    EXPECT_THAT(namesOf(store.changes()), ElementsAre("append", "write"));
    EXPECT_EQ(recordAt(store, record.offset()), RecordBytes().zeros(3));
}

TEST(BaseTest, FieldsOutsideOfTheRecordAreNotSet) {
    MemoryDataStore store;
    Record::Base record(&store);
    record.allocate(4);

    record.set(field::parent, 0x11223344u);
    record.set(field::kind, std::uint8_t{9});

    EXPECT_EQ(record.view().load(field::kind), 9);
    EXPECT_EQ(std::to_integer<int>(record.bytes()[1]), 0);
}

TEST(BaseTest, AllocatingAgainTakesZeroBytes) {
    MemoryDataStore store;
    Record::Base record(&store);
    record.allocate(8);
    record.set(field::parent, 0xFFFFFFFFu);

    record.allocate(20);

    EXPECT_EQ(record.size(), 20u);
    EXPECT_EQ(record.capacity(), 32u);
    for (std::uint32_t i = 0; i < 20; ++i) EXPECT_EQ(std::to_integer<int>(record.bytes()[i]), 0);
    record.allocate(0);
    EXPECT_EQ(record.bytes(), nullptr);
    EXPECT_EQ(record.capacity(), 0u);
}

TEST(BaseTest, WhatARecordGrowsByReadsAsZero) {
    MemoryDataStore store;
    const std::uint32_t offset = appendTo(store, table());
    Record::Entity record(&store, offset);
    record.replaceSection(field::tableNameSize, u"a long name", 24);  // leaves a buffer that is not all zero

    record.grow(6);
    record.grow(60);

    EXPECT_EQ(record.size(), 34u + 24u + 66u);
    for (std::uint32_t i = 58; i < record.size(); ++i) EXPECT_EQ(std::to_integer<int>(record.bytes()[i]), 0);
}

TEST(BaseTest, RecordDoesNotGrowBeyondFourGigabytes) {
    MemoryDataStore store;
    Record::Base record(&store);
    record.allocate(4);

    EXPECT_THROW(record.grow(0xFFFFFFFFu), data::TooLarge);

    EXPECT_EQ(record.size(), 4u);
}

TEST(BaseTest, NameThatIsTooLargeForARecordIsRefused) {
    EXPECT_THROW(Record::checkedSize(std::uint64_t{1} << 32), data::TooLarge);
    EXPECT_EQ(Record::checkedSize(0xFFFFFFFFu), 0xFFFFFFFFu);
    EXPECT_EQ(Record::storedSize(u""), 2u);
    EXPECT_EQ(Record::storedSize(u"abc"), 8u);
}

TEST(BaseTest, TooLargeIsRunningOutOfMemory) {
    static_assert(std::is_base_of_v<std::bad_alloc, data::TooLarge>);
    EXPECT_STREQ(data::TooLarge().what(), "value too large for a record");
}

// Nothing is leaked when a store fails, whichever call it is; what the store did by then stays.
TEST(FailingStoreTest, EveryFailureReachesTheCaller) {
    struct Fixture {
        explicit Fixture(IDataStore& given) : store(&given), offset(appendTo(given, table())) {}
        IDataStore* store;
        std::uint32_t offset;
    };
    for (const Extensions extensions : {Extensions::off, Extensions::on}) {
        const std::uint64_t failures = failAtEveryCall<Fixture>(
            [](Fixture& fixture) {
                appendNamed(*fixture.store, Record::Kind::root, u"r");
                appendNamed(*fixture.store, Record::Kind::container, u"c");
                Record::Entity primitive(fixture.store,
                                         appendNamed(*fixture.store, Record::Kind::primitive, u"p"));
                primitive.setField(field::valueSize, "12345678", 8);
                Record::Offsets list(fixture.store);
                list.setAt(9, 1);
                list.removeValue(0);
                Record::Locale(fixture.store).setPayload("ab", 2);
                Record::Entity(fixture.store, fixture.offset).setField(field::tableClassSize, u"a", 4);
                Record::storeField(fixture.store, fixture.offset, field::unit, 1u);
                Record::addToOpenCount(fixture.store, fixture.offset, 1);
                const Record::Snapshot look(fixture.store, fixture.offset);
                Record::kindOf(fixture.store, fixture.offset);
            },
            extensions);
        EXPECT_GT(failures, 15u);
    }
}

TEST(FailingStoreTest, FailedAppendLeavesNoRecord) {
    MemoryDataStore memory;
    ThrowingStore store(memory);
    store.throwAt(1);

    EXPECT_THROW(appendNamed(store, Record::Kind::table, u"t"), StoreFailure);

    EXPECT_EQ(memory.recordCount(), 0u);
}

}  // namespace
}  // namespace norvane::platform::test
