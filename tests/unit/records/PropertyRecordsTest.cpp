// New primitives and tables, byte by byte, and the change of their sections.
#include <gtest/gtest.h>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "records/NewEntity.h"
#include "records/Records.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test {
namespace {

using core::storage::datastore::MemoryDataStore;
namespace Record = data::Record;
namespace field = data::Record::field;

// A primitive "p" with a locale tag, a struct type and five bytes of value.
RecordBytes fullPrimitive() {
    RecordBytes record;
    record.u8(1).u32(7).u32(2).u32(9).u8(4).u32(0);
    record.u32(0x2001).u32(24).u32(6).u32(4).u32(8).u32(5);
    return record.text(u"de").text(u"p").text(u"S.T").raw("12345");
}

RecordBytes fullTable() {
    RecordBytes record;
    record.u8(2).u32(7).u32(1).u32(9).u8(2).u32(8);
    return record.u32(0).u32(5).u32(4).u32(8).text(u"t").text(u"A;B");
}

class PropertyRecordTest : public testing::Test {
  public:
    ~PropertyRecordTest() noexcept override = default;

  protected:
    std::uint32_t newPrimitive(std::uint32_t type, std::u16string_view name) {
        Record::NewEntity primitive(Record::Kind::primitive);
        primitive.set(field::dataType, type);
        primitive.addText(field::primitiveNameSize, name);
        return primitive.appendTo(&store_);
    }

    MemoryDataStore store_;
};

TEST_F(PropertyRecordTest, NewPrimitiveHasItsNameBehindItsFixedPart) {
    const std::uint32_t primitive = newPrimitive(17, u"x");

    RecordBytes expected;
    expected.u8(1).noRecord().u32(0).noRecord().u8(0).u32(0);  // it has no children: not even no record
    expected.u32(0).u32(17).u32(0).u32(4).u32(0).u32(0).text(u"x");
    EXPECT_EQ(recordAt(store_, primitive), expected);
    EXPECT_EQ(expected.size(), 46u);
}

TEST_F(PropertyRecordTest, TypeOfANewPrimitiveIsStoredWhole) {
    const std::uint32_t primitive = newPrimitive(0xFFFFFFFFu, u"x");

    EXPECT_EQ(recordAt(store_, primitive).u32At(22), 0xFFFFFFFFu);
}

TEST_F(PropertyRecordTest, NewTableHasNeitherChildrenNorDefaults) {
    const std::uint32_t table = appendNamed(store_, Record::Kind::table, u"x");

    RecordBytes expected;
    expected.u8(2).noRecord().u32(0).noRecord().u8(0).noRecord();
    expected.u32(0).noRecord().u32(4).u32(0).text(u"x");
    EXPECT_EQ(recordAt(store_, table), expected);
    EXPECT_EQ(expected.size(), 38u);
}

TEST_F(PropertyRecordTest, LocaleTagMovesTheNameOfAPrimitive) {
    Record::Entity primitive(&store_, newPrimitive(3, u"x"));

    primitive.setField(field::localeTagSize, u"de", 6);

    const RecordBytes changed = recordAt(store_, primitive.offset());
    EXPECT_EQ(changed.u32At(26), 6u);
    EXPECT_EQ(changed.part(42, 6), RecordBytes().text(u"de").bytes());
    EXPECT_EQ(changed.part(48, 4), RecordBytes().text(u"x").bytes());
    EXPECT_EQ(changed.view().name(), u"x");
}

TEST_F(PropertyRecordTest, PrimitiveWithoutValueEndsBehindItsName) {
    const Record::Entity primitive(&store_, newPrimitive(3, u"name"));

    EXPECT_EQ(primitive.size(), 42u + 10u);
    EXPECT_EQ(primitive.view().section(field::valueSize).size, 0u);
}

TEST_F(PropertyRecordTest, ValueIsTheLastSectionAndKeepsTheOthers) {
    const std::uint32_t offset = appendTo(store_, fullPrimitive());

    Record::Entity(&store_, offset).setField(field::valueSize, "abc", 3);

    RecordBytes expected;
    expected.u8(1).u32(7).u32(2).u32(9).u8(4).u32(0);
    expected.u32(0x2001).u32(24).u32(6).u32(4).u32(8).u32(3);
    EXPECT_EQ(recordAt(store_, offset), expected.text(u"de").text(u"p").text(u"S.T").raw("abc"));
}

TEST_F(PropertyRecordTest, EachSectionOfAPrimitiveIsReplacedInItsPlace) {
    const struct {
        Record::U32 sizeField;
        RecordBytes tail;
    } cases[] = {
        {field::localeTagSize, RecordBytes().text(u"new").text(u"p").text(u"S.T").raw("12345")},
        {field::primitiveNameSize, RecordBytes().text(u"de").text(u"new").text(u"S.T").raw("12345")},
        {field::structTypeSize, RecordBytes().text(u"de").text(u"p").text(u"new").raw("12345")},
        {field::valueSize, RecordBytes().text(u"de").text(u"p").text(u"S.T").text(u"new")},
    };
    for (const auto& each : cases) {
        const std::uint32_t offset = appendTo(store_, fullPrimitive());

        Record::Entity(&store_, offset).setField(each.sizeField, u"new", 8);

        EXPECT_EQ(recordAt(store_, offset).part(42, 100), each.tail.bytes()) << each.sizeField.position;
        EXPECT_EQ(recordAt(store_, offset).u32At(each.sizeField.position), 8u);
        EXPECT_EQ(recordAt(store_, offset).part(0, 26), fullPrimitive().part(0, 26));
    }
}

TEST_F(PropertyRecordTest, EachSectionOfATableIsReplacedInItsPlace) {
    const std::uint32_t offset = appendTo(store_, fullTable());

    Record::Entity(&store_, offset).setField(field::tableNameSize, u"name", 10);
    Record::Entity(&store_, offset).setField(field::tableClassSize, u"", 2);

    RecordBytes expected;
    expected.u8(2).u32(7).u32(1).u32(9).u8(2).u32(8).u32(0).u32(5).u32(10).u32(2);
    EXPECT_EQ(recordAt(store_, offset), expected.text(u"name").text(u""));
}

TEST_F(PropertyRecordTest, SectionMayBeMadeOfBytesOfItsOwnRecord) {
    const std::uint32_t offset = appendTo(store_, fullPrimitive());
    Record::Entity record(&store_, offset);
    const Record::Section value = record.view().section(field::valueSize);

    record.setField(field::valueSize, value.begin, 2, 3);

    EXPECT_EQ(recordAt(store_, offset).part(60, 100), std::string("12\0\0\0", 5));
}

}  // namespace
}  // namespace norvane::platform::test
