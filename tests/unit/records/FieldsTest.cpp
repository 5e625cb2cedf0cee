// The tables of positions, and the size classes of buffers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "records/Fields.h"
#include "records/SizeClass.h"

namespace norvane::platform::test {
namespace {

namespace Record = data::Record;
using Record::Kind;
using Record::sizeClass;
using testing::ElementsAre;

std::vector<std::string> sectionsOf(Kind kind) {
    std::vector<std::string> names;
    for (const Record::SectionRow& row : Record::formatOf(kind).sections) names.push_back(row.name);
    return names;
}

TEST(FieldsTest, FixedPartsHaveTheirSizes) {
    std::vector<std::uint32_t> sizes;
    for (const Record::Format& format : Record::kFormats) sizes.push_back(format.fixedSize);

    EXPECT_THAT(sizes, ElementsAre(22, 42, 34, 1, 31, 5));
}

TEST(FieldsTest, FormatsStandAtTheirKindByte) {
    for (std::size_t kind = 0; kind < Record::kFormats.size(); ++kind)
        EXPECT_EQ(static_cast<std::size_t>(Record::kFormats[kind].kind), kind);
    EXPECT_EQ(Record::formatOf(std::uint8_t{6}), nullptr);
    EXPECT_EQ(Record::formatOf(Record::kNoKind), nullptr);
}

TEST(FieldsTest, SectionsStandInTheOrderOfTheTail) {
    EXPECT_THAT(sectionsOf(Kind::root), ElementsAre("name"));
    EXPECT_THAT(sectionsOf(Kind::primitive), ElementsAre("locale tag", "name", "struct type", "value"));
    EXPECT_THAT(sectionsOf(Kind::table), ElementsAre("name", "class text"));
    EXPECT_THAT(sectionsOf(Kind::offsets), ElementsAre());
    EXPECT_THAT(sectionsOf(Kind::container), ElementsAre("name", "class text", "link target"));
    EXPECT_THAT(sectionsOf(Kind::locale), ElementsAre("payload"));
}

TEST(FieldsTest, EverySectionSizeIsAFieldOfItsRecord) {
    for (const Record::Format& format : Record::kFormats)
        for (const Record::SectionRow& section : format.sections)
            EXPECT_TRUE(std::any_of(format.fields.begin(), format.fields.end(),
                                    [&](const Record::FieldRow& field) {
                                        return field.position == section.sizePosition && field.width == 4 &&
                                               field.name == std::string(section.name) + " size";
                                    }))
                << format.name << " " << section.name;
}

TEST(FieldsTest, NameOfEachEntityHasASizeField) {
    EXPECT_EQ(Record::nameSizeField(Kind::root).position, 18u);
    EXPECT_EQ(Record::nameSizeField(Kind::primitive).position, 30u);
    EXPECT_EQ(Record::nameSizeField(Kind::table).position, 26u);
    EXPECT_EQ(Record::nameSizeField(Kind::container).position, 19u);
}

TEST(FieldsTest, EntitiesAreRootPrimitiveTableAndContainer) {
    std::vector<int> entities, children;
    for (int kind = 0; kind < 256; ++kind) {
        if (Record::isEntity(static_cast<std::uint8_t>(kind))) entities.push_back(kind);
        if (Record::isChildKind(static_cast<std::uint8_t>(kind))) children.push_back(kind);
    }

    EXPECT_THAT(entities, ElementsAre(0, 1, 2, 4));
    EXPECT_THAT(children, ElementsAre(1, 2, 4));
}

TEST(SizeClassTest, NothingNeedsNothing) { EXPECT_EQ(sizeClass(0), 0u); }

TEST(SizeClassTest, ClassIsTheFirstThatIsLargeEnough) {
    EXPECT_EQ(sizeClass(1), 8u);
    EXPECT_EQ(sizeClass(8), 8u);
    EXPECT_EQ(sizeClass(9), 16u);
    EXPECT_EQ(sizeClass(17), 32u);  // there is no class of 24
    EXPECT_EQ(sizeClass(129), 256u);
    EXPECT_EQ(sizeClass(4097), 16384u);  // nor one of 8192
    EXPECT_EQ(sizeClass(16384), 16384u);
}

TEST(SizeClassTest, SizesAboveTheLargestClassAreTakenAsTheyAre) {
    EXPECT_EQ(sizeClass(16385), 16385u);
    EXPECT_EQ(sizeClass(0xFFFFFFFFu), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace norvane::platform::test
