// New roots and containers, byte by byte, and the change of a container's texts.
#include <gtest/gtest.h>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "records/Records.h"
#include "support/LoggingStore.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test {
namespace {

using core::storage::datastore::MemoryDataStore;
namespace Record = data::Record;
namespace field = data::Record::field;

// A group "ab" with flags, locale, children, the class text "C;D" and the target "t".
RecordBytes fullContainer() {
    RecordBytes record;
    record.u8(4).u32(7).u32(1).u32(11).u8(13).u32(12);
    record.u8(2).u32(6).u32(8).u32(4);
    return record.text(u"ab").text(u"C;D").text(u"t");
}

// A container record that is changed and looked at.
class ContainerRecordTest : public testing::Test {
  public:
    ~ContainerRecordTest() noexcept override = default;

  protected:
    RecordBytes afterSetting(Record::U32 sizeField, std::u16string_view text) {
        Record::Entity(&store_, offset_)
            .setField(sizeField, std::u16string(text).c_str(), Record::storedSize(text));
        return recordAt(store_, offset_);
    }

    MemoryDataStore store_;
    std::uint32_t offset_ = appendTo(store_, fullContainer());
};

TEST(RootRecordTest, NewRootIsTheFirstRecordAndHasNothingButItsName) {
    MemoryDataStore store;

    EXPECT_EQ(appendNamed(store, Record::Kind::root, u"all"), 0u);

    RecordBytes expected;
    expected.u8(0).noRecord().u32(0).noRecord().u8(0).noRecord().u32(8).text(u"all");
    EXPECT_EQ(recordAt(store, 0), expected);
}

TEST(RootRecordTest, EmptyNameHasTheSizeOfItsNul) {
    MemoryDataStore store;

    const RecordBytes root = recordAt(store, appendNamed(store, Record::Kind::root, u""));

    EXPECT_EQ(root.u32At(18), 2u);
    EXPECT_EQ(root.size(), 24u);
}

TEST(NewContainerRecordTest, NewContainerIsANodeOutsideOfEverything) {
    MemoryDataStore store;

    const std::uint32_t container = appendNamed(store, Record::Kind::container, u"x");

    RecordBytes expected;
    expected.u8(4).noRecord().u32(0).noRecord().u8(0).noRecord();
    expected.u8(0).u32(4).u32(0).u32(0).text(u"x");
    EXPECT_EQ(recordAt(store, container), expected);
    EXPECT_EQ(expected.size(), 35u);
}

TEST(NewContainerRecordTest, NewEntityIsAppendedOnceAndNotWritten) {
    LoggingStore store;

    appendNamed(store, Record::Kind::container, u"x");

    ASSERT_EQ(store.changes().size(), 1u);
    EXPECT_EQ(store.changes()[0].name, "append");
    EXPECT_EQ(store.changes()[0].size, 35u);
}

TEST_F(ContainerRecordTest, NameIsReplacedAndTheOtherTextsMove) {
    const RecordBytes changed = afterSetting(field::containerNameSize, u"longer");

    RecordBytes expected;
    expected.u8(4).u32(7).u32(1).u32(11).u8(13).u32(12).u8(2).u32(14).u32(8).u32(4);
    EXPECT_EQ(changed, expected.text(u"longer").text(u"C;D").text(u"t"));
}

TEST_F(ContainerRecordTest, ClassTextIsReplacedBetweenTheOthers) {
    const RecordBytes changed = afterSetting(field::classTextSize, u"");

    RecordBytes expected;
    expected.u8(4).u32(7).u32(1).u32(11).u8(13).u32(12).u8(2).u32(6).u32(2).u32(4);
    EXPECT_EQ(changed, expected.text(u"ab").text(u"").text(u"t"));
}

TEST_F(ContainerRecordTest, RemovedClassTextLeavesNameAndTarget) {
    Record::Entity(&store_, offset_).setField(field::classTextSize, nullptr, 0);

    RecordBytes expected;
    expected.u8(4).u32(7).u32(1).u32(11).u8(13).u32(12).u8(2).u32(6).u32(0).u32(4);
    EXPECT_EQ(recordAt(store_, offset_), expected.text(u"ab").text(u"t"));
}

TEST_F(ContainerRecordTest, TargetStaysBehindTheClassText) {
    const RecordBytes changed = afterSetting(field::linkTargetSize, u"a.b");

    RecordBytes expected;
    expected.u8(4).u32(7).u32(1).u32(11).u8(13).u32(12).u8(2).u32(6).u32(8).u32(8);
    EXPECT_EQ(changed, expected.text(u"ab").text(u"C;D").text(u"a.b"));
}

TEST_F(ContainerRecordTest, ZerosFollowTheTextThatIsSet) {
    Record::Entity(&store_, offset_).setField(field::containerNameSize, u"z", 2, 14);

    const RecordBytes changed = recordAt(store_, offset_);
    EXPECT_EQ(changed.u32At(19), 16u);
    EXPECT_EQ(changed.part(31, 16), RecordBytes().units(u"z").zeros(14).bytes());
    EXPECT_EQ(changed.part(47, 12), RecordBytes().text(u"C;D").text(u"t").bytes());
}

TEST_F(ContainerRecordTest, BytesBehindTheLastSectionAreKept) {
    putAt(store_, offset_, fullContainer().raw("left over"));

    const RecordBytes changed = afterSetting(field::containerNameSize, u"z");

    EXPECT_EQ(changed.part(31, 100),
              RecordBytes().text(u"z").text(u"C;D").text(u"t").raw("left over").bytes());
}

TEST_F(ContainerRecordTest, SectionThatTheRecordCutsShortGetsItsRealSize) {
    RecordBytes damaged = fullContainer();
    putAt(store_, offset_,
          RecordBytes(damaged.part(0, damaged.size() - 6)));  // half of the class text is left

    const RecordBytes changed = afterSetting(field::containerNameSize, u"z");

    EXPECT_EQ(changed.u32At(23), 6u);
    EXPECT_EQ(changed.u32At(27), 0u);
    EXPECT_EQ(changed.part(31, 100), RecordBytes().text(u"z").units(u"C;D").bytes());
}

TEST_F(ContainerRecordTest, RecordWithoutItsFixedPartIsLeftAlone) {
    const RecordBytes damaged(fullContainer().part(0, 30));
    putAt(store_, offset_, damaged);

    EXPECT_EQ(afterSetting(field::containerNameSize, u"z"), damaged);
}

TEST_F(ContainerRecordTest, SizeFieldOfAnotherKindChangesNothing) {
    EXPECT_EQ(afterSetting(field::valueSize, u"z"), fullContainer());
}

TEST_F(ContainerRecordTest, SectionOfFourGigabytesIsRefused) {
    Record::Entity record(&store_, offset_);

    EXPECT_THROW(record.setField(field::classTextSize, nullptr, 0, 0xFFFFFFFFu), data::TooLarge);

    EXPECT_EQ(recordAt(store_, offset_), fullContainer());
}

TEST_F(ContainerRecordTest, StoreSaysHowLargeASectionMayBe) {
    const Record::Entity record(&store_, offset_);
    const std::uint64_t others = fullContainer().size() - 8;

    EXPECT_TRUE(record.takes(field::classTextSize, store_.recordLimit() - others));
    EXPECT_FALSE(record.takes(field::classTextSize, store_.recordLimit() - others + 1));
}

TEST_F(ContainerRecordTest, RecordThatIsGoneStaysSo) {
    store_.remove(offset_);

    Record::Entity(&store_, offset_).setField(field::containerNameSize, u"z", 4);

    EXPECT_EQ(store_.recordSize(offset_), 0u);
}

}  // namespace
}  // namespace norvane::platform::test
