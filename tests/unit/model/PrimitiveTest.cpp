// Primitives as entities: opening, comparing, copying, erasing, and what is told about a value.
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

namespace field = Record::field;
using namespace data::metadata;
using Design::Primitive;

class PrimitiveTest : public ModelTest {
  protected:
    Offset unlisted(const char16_t* name, std::uint32_t type) {
        return build_.primitive(kUnlisted, name, type);
    }
};

TEST_F(PrimitiveTest, NewPrimitiveIsOpenAndHasNoValue) {
    const Primitive open(&store_, kDouble, u"x");

    RecordBytes expected;
    expected.u8(1).noRecord().u32(1).noRecord().u8(0).u32(0);
    expected.u32(0).u32(17).u32(0).u32(4).u32(0).u32(0).text(u"x");
    EXPECT_EQ(record(open.offset()), expected);
    EXPECT_EQ(open.name(), u"x");
    EXPECT_EQ(open.dataType(), kDouble);
    EXPECT_EQ(open.valueSize(), 0u);
    EXPECT_EQ(open.count(), 0u);
    EXPECT_FALSE(open.hasUri());
}

TEST_F(PrimitiveTest, OpenedPrimitiveHasWhatItsRecordSays) {
    RecordBytes bytes;
    bytes.u8(1).u32(root_).u32(0).noRecord().u8(8).u32(0);
    bytes.u32(0x2001).u32(24).u32(6).u32(4).u32(8).u32(10);
    const Offset offset = appendTo(store_, bytes.text(u"de").text(u"p").text(u"S.T").text(u"file"));

    const Primitive open(&store_, offset);

    EXPECT_EQ(open.name(), u"p");
    EXPECT_EQ(open.parent(), root_);
    EXPECT_EQ(open.localeTag(), u"de");
    EXPECT_EQ(open.structType(), u"S.T");
    EXPECT_EQ(open.uri(), u"file");
    EXPECT_TRUE(open.hasUri());
    EXPECT_EQ(open.valueSize(), 10u);
    EXPECT_EQ(open.count(), 0u);
    EXPECT_EQ(open.units(), 0x2001u);
}

TEST_F(PrimitiveTest, ValueWithoutTheFlagIsNoUri) {
    const Primitive open(&store_, build_.values<char16_t>(root_, u"p", kString, {u'u', u':', 0}));

    EXPECT_EQ(open.uri(), u"");
    EXPECT_EQ(open.valueSize(), 6u);
    EXPECT_EQ(open.count(), 3u);
}

TEST_F(PrimitiveTest, UriWithoutANulEndsWithItsSection) {
    const Offset p = build_.values<char16_t>(root_, u"p", kString, {u'a', u'b'});
    build_.flag(p, Record::kHasUri);

    EXPECT_EQ(Primitive(&store_, p).uri(), u"ab");
}

TEST_F(PrimitiveTest, OpeningAndClosingLeavesTheBytesAsTheyWere) {
    const Offset p = build_.values<std::int32_t>(root_, u"p", kInt32, {1, 2, 3});
    const RecordBytes before = record(p);
    forgetCalls();

    { const Primitive open(&store_, p); }

    const std::string counted = "count " + std::to_string(p);
    EXPECT_THAT(changes(), ElementsAre(counted, counted));
    EXPECT_EQ(record(p), before);
}

TEST_F(PrimitiveTest, RemovableMeansOpenExactlyOnce) {
    const Offset p = build_.primitive(root_, u"p");
    Primitive open(&store_, p);
    EXPECT_TRUE(open.isRemovable());
    {
        const Primitive second(&store_, p);
        EXPECT_FALSE(open.isRemovable());
    }
    EXPECT_TRUE(open.isRemovable());

    Record::storeField(&store_, p, field::openCount, 0u);
    EXPECT_FALSE(open.isRemovable());
    Record::storeField(&store_, p, field::openCount, 1u);
}

TEST_F(PrimitiveTest, SameMeansNameAndType) {
    const Primitive a(&store_, unlisted(u"p", kInt32));
    const Primitive other(&store_, build_.values<std::int32_t>(kUnlisted, u"p", kInt32, {5}));

    EXPECT_TRUE(a.sameAs(other));
    EXPECT_FALSE(a.sameAs(Primitive(&store_, unlisted(u"p", kUint32))));
    EXPECT_FALSE(a.sameAs(Primitive(&store_, unlisted(u"pp", kInt32))));
    EXPECT_FALSE(a.sameAs(Primitive(&store_, unlisted(u"P", kInt32))));
}

TEST_F(PrimitiveTest, CopyHasEverythingButTheOpenCount) {
    const Offset p = build_.values<std::int32_t>(root_, u"p", kInt32, {1, 2});
    build_.flag(p, 7);
    build_.localise(p, u"de", u"eins");
    MemoryDataStore other;
    Primitive open(&store_, p);

    const Offset copy = open.clone(&other);

    RecordBytes expected;
    expected.u8(1).u32(root_).u32(0).u32(localeOf(other, copy)).u8(7).u32(0);
    expected.u32(0).u32(12).u32(0).u32(4).u32(0).u32(8).text(u"p").u32(1).u32(2);
    EXPECT_EQ(recordAt(other, copy), expected);
    EXPECT_EQ(recordAt(other, localeOf(other, copy)), record(localeOf(store_, p)));
    const Primitive openCopy(&other, copy);
    EXPECT_EQ(openCountOf(other, copy), 1u);
}

TEST_F(PrimitiveTest, CopyWithoutDisplayNamesHasNoRecordOfThem) {
    const Offset copy = Primitive(&store_, build_.primitive(root_, u"p")).clone(&store_);

    EXPECT_EQ(localeOf(store_, copy), noRecord());
}

TEST_F(PrimitiveTest, ErasedPrimitiveLosesItsDisplayNamesAndKeepsItsRecord) {
    const Offset p = build_.values<std::int32_t>(root_, u"p", kInt32, {1});
    build_.localise(p, u"de", u"eins");
    const Offset locale = localeOf(store_, p);
    Primitive open(&store_, p);
    forgetCalls();

    open.erase();

    EXPECT_THAT(changes(),
                ElementsAre("remove " + std::to_string(locale), "write " + std::to_string(p) + " size 50"));
    EXPECT_EQ(localeOf(store_, p), noRecord());
    EXPECT_EQ(open.count(), 1u);
}

// Byte 14 of a primitive is 0, the root's offset: it is no list of children.
TEST_F(PrimitiveTest, RootIsNotTakenForTheChildrenOfAPrimitive) {
    const Offset p = build_.primitive(root_, u"p");
    const Offset copy = Primitive(&store_, p).clone(&store_);
    EXPECT_EQ(record(copy).u32At(14), 0u);

    Root(&store_, root_).removeChild(u"p");

    EXPECT_NE(store_.recordSize(root_), 0u);
}

TEST_F(PrimitiveTest, ElementSizeFollowsFromTheType) {
    const std::uint32_t sizes[] = {0, 1, 2, 2, 2, 2, 2, 1, 1, 1, 2, 2, 4,
                                   4, 8, 8, 4, 8, 8, 8, 8, 8, 8, 8, 1, 0};
    for (std::uint32_t type = 0; type < std::size(sizes); ++type)
        EXPECT_EQ(Primitive(&store_, type, u"p").elementSize(), sizes[type]) << type;
    EXPECT_EQ(Primitive(&store_, 0xFFFFFFFFu, u"p").elementSize(), 0u);
}

TEST_F(PrimitiveTest, ElementIsOneComponentOfAVector) {
    Primitive open(&store_, unlisted(u"p", kVector3));
    const double values[] = {1, 2, 3, 4, 5, 6};

    open.writeValues(values, 0, 6);

    EXPECT_EQ(open.count(), 6u);
    EXPECT_EQ(open.valueSize(), 48u);
}

TEST_F(PrimitiveTest, BytesThatMakeNoWholeElementAreNotCounted) {
    const Offset p = unlisted(u"p", kInt32);
    Record::Entity(&store_, p).setField(field::valueSize, "1234567", 7);

    EXPECT_EQ(Primitive(&store_, p).count(), 1u);
    EXPECT_EQ(Primitive(&store_, p).valueSize(), 7u);
}

TEST_F(PrimitiveTest, ValueIsNeverToldLargerThanItsRecord) {
    const Offset p = build_.values<std::int32_t>(root_, u"p", kInt32, {1, 2});
    Record::storeField(&store_, p, field::valueSize, 0xFFFFFFFFu);

    const Primitive open(&store_, p);

    EXPECT_EQ(open.valueSize(), 8u);
    EXPECT_EQ(open.count(), 2u);
}

}  // namespace
}  // namespace norvane::platform::test
