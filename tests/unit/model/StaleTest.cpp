// Objects whose records were changed, or removed, through others.
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

namespace field = Record::field;
using namespace data::metadata;
using Design::Primitive;
using Design::Table;

class StaleTest : public ModelTest {
  protected:
    Offset loose(const char16_t* name) { return build_.container(kUnlisted, name); }
    std::string valueOf(Offset primitive) {
        const RecordBytes bytes = record(primitive);
        return bytes.part(bytes.view().sectionPosition(field::valueSize), bytes.size());
    }
    static std::string bytesOf(const std::vector<std::int32_t>& values) {
        RecordBytes bytes;
        for (const std::int32_t value : values) bytes.u32(static_cast<std::uint32_t>(value));
        return bytes.bytes();
    }
};

TEST_F(StaleTest, ObjectKeepsItsIndexOfChildren) {
    const Offset x = build_.container(root_, u"x");
    Root first(&store_, root_);
    Root second(&store_, root_);

    second.removeChild(u"x");
    const Offset y = loose(u"y");
    second.addChild(y);

    EXPECT_EQ(first.find(u"x"), x);
    EXPECT_EQ(first.find(u"y"), noRecord());
    EXPECT_EQ(first.childCount(), 1u);
    EXPECT_EQ(first.childAt(0), y);  // the list is read anew
    EXPECT_EQ(second.find(u"y"), y);
}

TEST_F(StaleTest, RenamedChildIsFoundByTheNameOfTheTime) {
    const Offset x = build_.container(root_, u"x");
    Root first(&store_, root_);

    Root(&store_, root_).renameChild(u"x", u"y");

    EXPECT_EQ(first.find(u"x"), x);
    EXPECT_EQ(first.find(u"y"), noRecord());
}

TEST_F(StaleTest, ChildThatIsGoneIsRemovedFromTheIndexAlone) {
    build_.container(root_, u"x");
    const Offset y = build_.container(root_, u"y");
    Root first(&store_, root_);
    Root(&store_, root_).removeChild(u"x");
    const Offset list = listRecordOf(store_, root_);

    EXPECT_TRUE(first.removeChild(u"x"));
    EXPECT_FALSE(first.removeChild(u"x"));

    EXPECT_EQ(record(list), listOf({y}));
}

TEST_F(StaleTest, ChildThatIsGoneIsRenamedInTheIndexAlone) {
    const Offset x = build_.container(root_, u"x");
    Root first(&store_, root_);
    Root(&store_, root_).removeChild(u"x");

    EXPECT_TRUE(first.renameChild(u"x", u"z"));

    EXPECT_EQ(first.find(u"z"), x);
    EXPECT_EQ(store_.recordSize(x), 0u);
}

TEST_F(StaleTest, ObjectAdoptsTheListThatAnotherHasMade) {
    const Offset set = loose(u"set");
    Container first(&store_, set);
    Container second(&store_, set);
    const Offset x = loose(u"x"), y = loose(u"y");

    second.addChild(x);
    const Offset list = listRecordOf(store_, set);
    EXPECT_TRUE(first.addChild(y));

    EXPECT_EQ(listRecordOf(store_, set), list);
    EXPECT_EQ(record(list), listOf({x, y}));
    EXPECT_EQ(first.find(u"x"), noRecord());
    EXPECT_EQ(first.find(u"y"), y);
}

TEST_F(StaleTest, TwoObjectsMayAddTwoChildrenOfOneName) {
    const Offset set = loose(u"set");
    Container first(&store_, set);
    Container second(&store_, set);
    const Offset x = loose(u"x"), again = loose(u"x");

    EXPECT_TRUE(second.addChild(x));
    EXPECT_TRUE(first.addChild(again));

    EXPECT_EQ(childrenOf(store_, set).size(), 2u);
    EXPECT_EQ(Container(&store_, set).find(u"x"), x);
}

// A copy is made of what the object knows its entity to have.
TEST_F(StaleTest, CopyHasTheSatellitesThatTheObjectKnows) {
    const Offset table = build_.table(root_, u"t");
    Table first(&store_, table);
    build_.primitive(table, u"p");
    build_.defaults(table, 0x2001, 17);
    build_.localise(table, u"de", u"eins");

    const Offset copy = first.clone(&store_);

    EXPECT_EQ(listRecordOf(store_, copy), noRecord());
    EXPECT_EQ(localeOf(store_, copy), noRecord());
    EXPECT_EQ(record(copy).u32At(22), noRecord());
    const Offset fresh = Table(&store_, table).clone(&store_);
    EXPECT_EQ(childrenOf(store_, fresh).size(), 1u);
}

TEST_F(StaleTest, ObjectOnARemovedRecordRefusesAndWritesNothing) {
    const Offset table = build_.table(kUnlisted, u"t");
    const Offset p = build_.values<std::int32_t>(kUnlisted, u"p", kInt32, {1});
    const Offset s = build_.primitive(kUnlisted, u"s", kStruct);
    const Offset x = loose(u"x");
    {
        Table openTable(&store_, table);
        Primitive open(&store_, p);
        Primitive openStruct(&store_, s);
        openTable.setLocalised(u"eins", u"de");
        for (const Offset each : {table, p, s}) store_.remove(each);
        forgetCalls();
        const std::int32_t value = 7;
        std::int32_t target = 5;

        EXPECT_FALSE(openTable.addChild(x));
        EXPECT_FALSE(openTable.addDefault(0x2001, 17));
        openTable.importChild(&store_, x);
        EXPECT_EQ(openTable.clone(&store_), noRecord());
        EXPECT_EQ(openTable.flags(), 0);
        openTable.setFlags(1);
        openTable.touch();
        EXPECT_EQ(openTable.path(), u"t");
        EXPECT_FALSE(open.writeValues(&value, 0, 1));
        EXPECT_FALSE(open.writeValues(&value, 4, 1));
        EXPECT_FALSE(open.overlayValues(reinterpret_cast<const std::byte*>(&value), {1}));
        EXPECT_FALSE(open.resize(2));
        EXPECT_FALSE(open.setUri(u"u"));
        EXPECT_FALSE(openStruct.setStructType(u"S"));
        open.setUnits(3);
        open.setLocale(u"de");
        open.setLocale(nullptr);
        EXPECT_EQ(open.units(), 0u);
        EXPECT_EQ(open.readValues(&target, 0, 1), 0u);
        EXPECT_EQ(open.clone(&store_), noRecord());
        EXPECT_FALSE(open.isRemovable());
        EXPECT_EQ(target, 5);
    }

    EXPECT_THAT(changes(), IsEmpty());
}

// How large the value is, the object knows from its opening.
class StaleValueTest : public StaleTest {
  public:
    ~StaleValueTest() noexcept override = default;

  protected:
    const Offset p_ = build_.values<std::int32_t>(kUnlisted, u"p", kInt32, {1, 2, 3});
    Primitive open_{&store_, p_};
    std::int32_t source_[4] = {7, 8, 9, 10};
};

TEST_F(StaleValueTest, ReadOutsideOfTheRecordGivesNothing) {
    Primitive(&store_, p_).resize(1);
    std::int32_t target[3] = {5, 5, 5};

    EXPECT_EQ(open_.readValues(target, 0, 3), 0u);
    EXPECT_EQ(open_.readValues(target, 0, 1), 1u);

    EXPECT_THAT(target, ElementsAre(0, 5, 5));
}

TEST_F(StaleValueTest, ReadBehindTheKnownEndGivesNothing) {
    Primitive(&store_, p_).resize(9);
    std::int32_t target[4] = {};

    EXPECT_EQ(open_.readValues(target, 0, 4), 0u);
    EXPECT_EQ(open_.readValues(target, 0, 3), 3u);
}

TEST_F(StaleValueTest, WriteInsideOfTheRecordStaysInPlace) {
    Primitive(&store_, p_).resize(9);

    EXPECT_TRUE(open_.writeValues(source_, 1, 2));

    EXPECT_EQ(valueOf(p_), bytesOf({0, 7, 8, 0, 0, 0, 0, 0, 0}));
}

TEST_F(StaleValueTest, WriteOutsideOfTheRecordGrowsIt) {
    Primitive(&store_, p_).resize(1);

    EXPECT_TRUE(open_.writeValues(source_, 1, 2));

    EXPECT_EQ(valueOf(p_), bytesOf({0, 7, 8}));
    EXPECT_EQ(open_.count(), 3u);
}

// Nobody who sees three elements expects the source to be taken for the base of the array. These bytes have
// nothing behind them.
TEST_F(StaleValueTest, SourceIsNotTakenForTheWholeArrayBecauseAnotherEmptiedTheValue) {
    Primitive(&store_, p_).resize(0);
    const std::vector<std::int32_t> exact = {7, 8};

    EXPECT_TRUE(open_.writeValues(exact.data(), 1, 2));

    EXPECT_EQ(valueOf(p_), bytesOf({0, 7, 8}));
}

TEST_F(StaleValueTest, WriteOverTheKnownEndKeepsWhatIsKnown) {
    Primitive(&store_, p_).writeValues(source_, 3, 1);  // a fourth element

    EXPECT_TRUE(open_.writeValues(source_, 4, 1));

    EXPECT_EQ(valueOf(p_), bytesOf({1, 2, 3, 0, 7}));
}

TEST_F(StaleValueTest, WriteToAValueKnownAsEmptyReplacesIt) {
    const Offset p = build_.values<std::int32_t>(kUnlisted, u"q", kInt32, {});
    Primitive open(&store_, p);
    Primitive(&store_, p).writeValues(source_, 0, 3);

    EXPECT_TRUE(open.writeValues(source_, 0, 1));

    EXPECT_EQ(valueOf(p), bytesOf({7}));
}

TEST_F(StaleValueTest, UriThatAnotherSetIsNotOverrun) {
    Primitive(&store_, p_).setUri(u"u");

    EXPECT_TRUE(open_.writeValues(source_, 0, 3));

    EXPECT_EQ(record(p_).u32At(38), 12u);
    EXPECT_EQ(record(p_).size(), 58u);
}

TEST_F(StaleValueTest, OverlayInsideLeavesTheLengthThatAnotherMade) {
    Primitive(&store_, p_).resize(5);

    EXPECT_TRUE(open_.overlayValues(reinterpret_cast<const std::byte*>(source_), {0, 1}));

    EXPECT_EQ(valueOf(p_), bytesOf({0, 8, 0, 0, 0}));
    EXPECT_EQ(open_.count(), 3u);
}

TEST_F(StaleValueTest, OverlayInsideOfAShorterRecordDoesNotLengthenIt) {
    Primitive(&store_, p_).resize(2);

    EXPECT_TRUE(open_.overlayValues(reinterpret_cast<const std::byte*>(source_), {1}));

    EXPECT_EQ(valueOf(p_), bytesOf({7, 0}));
}

TEST_F(StaleValueTest, OverlayOutsideOfAShorterRecordGrowsIt) {
    Primitive(&store_, p_).resize(1);

    EXPECT_TRUE(open_.overlayValues(reinterpret_cast<const std::byte*>(source_), {0, 0, 1}));

    EXPECT_EQ(valueOf(p_), bytesOf({0, 0, 9}));
    EXPECT_EQ(open_.count(), 3u);
}

}  // namespace
}  // namespace norvane::platform::test
