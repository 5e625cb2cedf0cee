// Looking at records, sound ones and damaged ones.
#include <gtest/gtest.h>

#include <memory>

#include "records/View.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test {
namespace {

namespace Record = data::Record;
namespace field = data::Record::field;
using Record::Kind;
using Record::View;

RecordBytes container(std::uint32_t nameSize, std::uint32_t classSize, std::uint32_t targetSize) {
    RecordBytes record;
    record.u8(4).zeros(17);
    return record.u8(1).u32(nameSize).u32(classSize).u32(targetSize);
}

RecordBytes group() { return container(6, 8, 4).text(u"ab").text(u"C;D").text(u"t"); }

RecordBytes primitive(std::uint32_t tag, std::uint32_t name, std::uint32_t type, std::uint32_t value) {
    RecordBytes record;
    record.u8(1).zeros(25);
    return record.u32(tag).u32(name).u32(type).u32(value);
}

RecordBytes table(std::uint32_t name, std::uint32_t classText) {
    RecordBytes record;
    record.u8(2).zeros(25);
    return record.u32(name).u32(classText);
}

RecordBytes root(std::uint32_t name) { return RecordBytes().u8(0).zeros(17).u32(name); }

TEST(ViewTest, SectionsAreFoundByTheSizesBeforeThem) {
    const RecordBytes record = group();

    EXPECT_EQ(record.view().text(field::containerNameSize), u"ab");
    EXPECT_EQ(record.view().text(field::classTextSize), u"C;D");
    EXPECT_EQ(record.view().text(field::linkTargetSize), u"t");
    EXPECT_EQ(record.view().sectionPosition(field::linkTargetSize), 31u + 6u + 8u);
}

TEST(ViewTest, NameOfAPrimitiveStandsBehindItsLocaleTag) {
    const RecordBytes tagged = primitive(6, 4, 0, 0).text(u"de").text(u"x");

    EXPECT_EQ(tagged.view().name(), u"x");
    EXPECT_EQ(tagged.view().text(field::localeTagSize), u"de");
}

TEST(ViewTest, EveryEntityHasAName) {
    EXPECT_EQ(root(4).text(u"r").view().name(), u"r");
    EXPECT_EQ(primitive(0, 4, 0, 0).text(u"p").view().name(), u"p");
    EXPECT_EQ(table(4, 0).text(u"t").view().name(), u"t");
    EXPECT_EQ(group().view().name(), u"ab");
}

TEST(ViewTest, OtherRecordsHaveNoName) {
    EXPECT_EQ(listOf({1, 2}).view().name(), u"");
    EXPECT_EQ(RecordBytes().u8(5).u32(8).text(u"abc").view().name(), u"");
    EXPECT_EQ(RecordBytes().u8(200).zeros(60).view().name(), u"");
    EXPECT_EQ(View().name(), u"");
}

TEST(ViewTest, TextEndsAtItsFirstNulAndTheFieldAtItsSize) {
    const RecordBytes renamed = container(24, 4, 0).text(u"zz").zeros(18).text(u"C");

    EXPECT_EQ(renamed.view().name(), u"zz");
    EXPECT_EQ(renamed.view().text(field::classTextSize), u"C");
}

TEST(ViewTest, TextWithoutANulEndsWithItsSection) {
    EXPECT_EQ(container(4, 4, 0).units(u"ab").text(u"C").view().name(), u"ab");
}

TEST(ViewTest, TextOfHalfACodeUnitMoreIsCutToWholeOnes) {
    EXPECT_EQ(container(5, 0, 0).units(u"ab").raw("x").view().name(), u"ab");
}

TEST(ViewTest, SectionsAreCutAtTheEndOfTheRecord) {
    const RecordBytes cut = container(6, 0xFFFFFFFFu, 4).text(u"ab").units(u"CD");

    EXPECT_EQ(cut.view().section(field::classTextSize).size, 4u);
    EXPECT_EQ(cut.view().text(field::classTextSize), u"CD");
    EXPECT_EQ(cut.view().section(field::linkTargetSize).size, 0u);
}

TEST(ViewTest, SizesThatAddUpBeyond32BitsLeadNowhere) {
    const RecordBytes damaged = container(0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu).text(u"ab");

    EXPECT_EQ(damaged.view().sectionPosition(field::linkTargetSize), 31u + 2 * std::uint64_t{0xFFFFFFFFu});
    EXPECT_EQ(damaged.view().section(field::linkTargetSize).begin, nullptr);
    EXPECT_EQ(damaged.view().text(field::linkTargetSize), u"");
    EXPECT_EQ(damaged.view().name(), u"ab");
}

TEST(ViewTest, FieldsThatAreNotThereReadAsZero) {
    const RecordBytes cut(group().part(0, 20));

    EXPECT_EQ(cut.view().load(field::containerNameSize), 0u);
    EXPECT_EQ(cut.view().load(field::containerKind), 1u);
    EXPECT_EQ(View().load(field::parent), 0u);
    EXPECT_EQ(View().kind(), Record::kNoKind);
}

TEST(ViewTest, SectionOfAnotherKindIsEmpty) {
    EXPECT_EQ(group().view().section(field::valueSize).size, 0u);
    EXPECT_EQ(listOf({1, 2}).view().section(field::payloadSize).size, 0u);
    EXPECT_EQ(RecordBytes().u8(77).zeros(60).view().section(field::containerNameSize).size, 0u);
}

TEST(ViewTest, RecordIsWholeFromTheEndOfItsFixedPartOn) {
    const struct {
        Kind kind;
        std::uint32_t size;
    } cases[] = {{Kind::root, 22},   {Kind::primitive, 42}, {Kind::table, 34},
                 {Kind::offsets, 1}, {Kind::container, 31}, {Kind::locale, 5}};
    for (const auto& each : cases) {
        const RecordBytes whole = RecordBytes().u8(static_cast<unsigned>(each.kind)).zeros(each.size - 1);
        const RecordBytes cut(whole.part(0, each.size - 1));

        EXPECT_TRUE(whole.view().isWhole(each.kind)) << each.size;
        EXPECT_FALSE(cut.view().isWhole(each.kind)) << each.size;
        EXPECT_FALSE(whole.view().isWhole(each.kind == Kind::table ? Kind::root : Kind::table));
    }
}

TEST(ViewTest, OnlyEntitiesAreWholeEntitiesAndOnlyListedKindsWholeChildren) {
    EXPECT_TRUE(root(0).view().isWholeEntity());
    EXPECT_FALSE(root(0).view().isWholeChild());
    EXPECT_TRUE(table(0, 0).view().isWholeChild());
    EXPECT_FALSE(RecordBytes(table(0, 0).part(0, 33)).view().isWholeChild());
    EXPECT_FALSE(listOf({1, 2, 3, 4, 5, 6, 7, 8, 9}).view().isWholeEntity());
    EXPECT_FALSE(View().isWholeEntity());
}

TEST(ViewTest, NamesAreComparedAsTheyWouldBeRead) {
    const RecordBytes records[] = {
        group(),
        container(24, 0, 0).text(u"ab").zeros(18),
        container(4, 0, 0).units(u"ab"),
        container(2, 0, 0).text(u""),
        container(0, 0, 0),
        container(100, 0, 0).units(u"ab"),
        root(8).text(u"abc"),
        primitive(6, 6, 0, 0).text(u"ab").text(u"ab"),
        table(3, 0).raw(std::string_view("a\0b", 3)),
        listOf({1}),
        RecordBytes(group().part(0, 25)),
    };
    const std::u16string names[] = {
        u"", u"a", u"ab", u"abc", std::u16string(u"ab\0", 3), std::u16string(1, u'\0')};
    for (const RecordBytes& record : records)
        for (const std::u16string& name : names)
            EXPECT_EQ(record.view().hasName(name), record.view().name() == name)
                << testing::PrintToString(record) << name.size();
}

TEST(ViewTest, CodeUnitsAreLittleEndianAndOfAnyValue) {
    const RecordBytes record = root(8).raw(std::string_view("\x34\x12\xFF\xFF\x00\xD8", 6)).zeros(2);

    EXPECT_EQ(record.view().name(), std::u16string({0x1234, 0xFFFF, 0xD800}));
}

TEST(ViewTest, ListHoldsAsManyValuesAsFit) {
    EXPECT_EQ(listOf({}).view().valueCount(), 0u);
    EXPECT_EQ(listOf({7}).raw("abc").view().valueCount(), 1u);
    EXPECT_EQ(listOf({7, 8}).view().value(1), 8u);
    EXPECT_EQ(View().valueCount(), 0u);
}

// Every record, cut at every length, in memory of just that length: nothing behind it is looked at.
TEST(ViewTest, NothingOutsideOfTheRecordIsRead) {
    const RecordBytes records[] = {root(8).text(u"abc"),
                                   primitive(6, 4, 8, 5).text(u"de").text(u"p").text(u"S.T").raw("12345"),
                                   table(4, 8).text(u"t").text(u"A;B"),
                                   listOf({1, 2, 3}),
                                   group(),
                                   RecordBytes().u8(5).u32(8).text(u"abc")};
    for (const RecordBytes& record : records) {
        for (std::uint32_t size = 0; size <= record.size(); ++size) {
            const auto copy = std::make_unique<char[]>(size);
            std::memcpy(copy.get(), record.data(), size);
            const View view(copy.get(), size);

            std::size_t read = view.name().size() + view.valueCount() + Record::dump(view).size();
            for (const Record::Format& format : Record::kFormats)
                for (const Record::SectionRow& row : format.sections)
                    read += view.text(Record::U32{row.sizePosition}).size();
            EXPECT_LE(view.hasName(u"ab") ? 1u : 0u, read);
        }
    }
}

}  // namespace
}  // namespace norvane::platform::test
