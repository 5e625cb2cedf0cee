// What every open object offers: its counting, its path, flags, and the mark of what was inherited.
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

using data::Structural::Container;

class ItemTest : public ModelTest {
  protected:
    std::u16string pathOf(Offset entity) { return Metadata::openItem(&store_, entity)->path(); }
    void setParent(Offset entity, Offset parent) {
        Record::storeField(&store_, entity, Record::field::parent, parent);
    }
};

TEST_F(ItemTest, OpeningCountsInAndClosingCountsOut) {
    const Offset group = build_.container(root_, u"g");
    const RecordBytes before = record(group);
    forgetCalls();
    {
        const Container open(&store_, group);
        EXPECT_EQ(openCount(group), 1u);
        const Container again(&store_, group);
        EXPECT_EQ(openCount(group), 2u);
    }

    EXPECT_EQ(record(group), before);
    const std::string counted = "count " + std::to_string(group);
    EXPECT_THAT(changes(), ElementsAre(counted, counted, counted, counted));
}

TEST_F(ItemTest, TransientObjectsAreNotCounted) {
    const Offset group = build_.container(root_, u"g");
    forgetCalls();

    { const Container open(&store_, group, Opening::transient); }

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ItemTest, CountOfACrashedProgramStays) {
    const Offset group = build_.container(root_, u"g");
    Record::addToOpenCount(&store_, group, 3);

    { const Container open(&store_, group); }

    EXPECT_EQ(openCount(group), 3u);
}

TEST_F(ItemTest, NewEntityIsAppendedClosedAndThenCounted) {
    forgetCalls();

    const Design::Primitive primitive(&store_, 3, u"p");

    const std::string offset = std::to_string(primitive.offset());
    EXPECT_THAT(changes(), ElementsAre("append 46", "count " + offset));
    EXPECT_EQ(RecordBytes(store_.changes()[0].bytes).u32At(5), 0u);
    EXPECT_EQ(openCount(primitive.offset()), 1u);
}

TEST_F(ItemTest, AbandonedObjectWritesNothing) {
    const Offset group = build_.container(root_, u"g");
    {
        Container open(&store_, group);
        open.setLocalised(u"Gruppe", u"de");
        forgetCalls();
        open.abandon();
    }

    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(openCount(group), 1u);
}

TEST_F(ItemTest, ObjectsAnswerWhatTheyReadAtOpening) {
    const Offset group = build_.container(root_, u"g");
    const Offset inner = build_.container(group, u"h");
    const Container open(&store_, inner);

    EXPECT_EQ(open.name(), u"h");
    EXPECT_EQ(open.parent(), group);
    EXPECT_EQ(open.offset(), inner);
    EXPECT_EQ(open.store(), &store_);
    EXPECT_FALSE(open.isInert());
}

TEST_F(ItemTest, ObjectOnNoRecordOrAnotherKindIsInertAndWritesNothing) {
    const Offset table = build_.table(root_, u"t");
    const Offset cut = appendTo(store_, RecordBytes(record(table).part(0, 33)));
    forgetCalls();
    const Offset offsets[] = {noRecord(), 4711, build_.container(kUnlisted, u"c"), root_, cut};
    forgetCalls();
    for (const Offset offset : offsets) {
        Design::Table open(&store_, offset);

        EXPECT_TRUE(open.isInert());
        EXPECT_EQ(open.name(), u"");
        EXPECT_EQ(open.path(), u"");
        EXPECT_EQ(open.flags(), 0);
        EXPECT_EQ(open.childCount(), 0u);
        EXPECT_EQ(open.childAt(0), noRecord());
        EXPECT_EQ(open.find(u""), noRecord());
        EXPECT_EQ(open.clone(&store_), noRecord());
        EXPECT_FALSE(open.addChild(table));
        EXPECT_FALSE(open.addDefault(0x2001, 17));
        EXPECT_TRUE(open.isRemovable());
        open.setFlags(1);
        open.touch();
        open.setLocalised(u"a", u"b");
        open.importChild(&store_, table);
        open.erase();
    }

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ItemTest, PathLeavesOutTheRoot) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    const Offset t = build_.table(b, u"t");
    const Offset p = build_.primitive(t, u"p");

    EXPECT_EQ(pathOf(a), u"a");
    EXPECT_EQ(pathOf(b), u"a.b");
    EXPECT_EQ(pathOf(p), u"a.b.t.p");
    EXPECT_EQ(Root(&store_, root_).path(), u"all");
}

TEST_F(ItemTest, PathReadsTheParentsNamesAnewAndKeepsItsOwn) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    const Container open(&store_, b);

    Root(&store_, root_).renameChild(u"a", u"x");
    Container(&store_, a).renameChild(u"b", u"y");

    EXPECT_EQ(open.path(), u"x.b");
    EXPECT_EQ(pathOf(b), u"x.y");
}

TEST_F(ItemTest, PathOfWhatNoSetListsIsItsName) {
    EXPECT_EQ(pathOf(build_.container(kUnlisted, u"lonely")), u"lonely");
}

TEST_F(ItemTest, PathBeginsBehindWhatIsNoEntity) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    setParent(a, appendTo(store_, listOf({a})));

    EXPECT_EQ(pathOf(b), u"a.b");
}

TEST_F(ItemTest, PathInARingOfParentsShowsEachOnce) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    const Offset c = build_.container(b, u"c");
    setParent(a, b);

    EXPECT_EQ(pathOf(c), u"a.b.c");
    EXPECT_EQ(pathOf(b), u"a.b");
    setParent(a, a);
    EXPECT_EQ(pathOf(a), u"a");
}

TEST_F(ItemTest, FlagsAreSetAndClearedOneByOne) {
    const Offset group = build_.container(root_, u"g");
    Container open(&store_, group);
    open.setFlags(0x13);
    forgetCalls();

    open.setFlags(4);
    EXPECT_EQ(open.flags(), 0x17);
    open.clearFlags(3);

    EXPECT_EQ(open.flags(), 0x14);
    EXPECT_EQ(flagsOf(store_, group), 0x14);
    for (const StoreCall& call : store_.changes()) EXPECT_TRUE(call.flag);
}

TEST_F(ItemTest, FlagsAreReadAnewByEveryObject) {
    const Offset group = build_.container(root_, u"g");
    const Container first(&store_, group);

    Container(&store_, group).setFlags(Record::kOptional);

    EXPECT_EQ(first.flags(), Record::kOptional);
}

TEST_F(ItemTest, TouchClearsTheMarkFromTheEntityUpwards) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    const Offset p = build_.primitive(b, u"p");
    for (const Offset each : {a, b, p}) build_.flag(each, 7);

    Metadata::openItem(&store_, p)->touch();

    for (const Offset each : {a, b, p}) EXPECT_EQ(flagsOf(store_, each), 3) << each;
}

TEST_F(ItemTest, TouchGoesOnFromAnEntityThatLacksTheMark) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    build_.flag(a, Record::kInherited);

    Metadata::openItem(&store_, b)->touch();

    EXPECT_EQ(flagsOf(store_, a), 0);
}

TEST_F(ItemTest, TouchStopsAtAnAncestorThatLacksTheMark) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    const Offset c = build_.container(b, u"c");
    build_.flag(a, Record::kInherited);
    build_.flag(c, Record::kInherited);

    Metadata::openItem(&store_, c)->touch();

    EXPECT_EQ(flagsOf(store_, c), 0);
    EXPECT_EQ(flagsOf(store_, a), Record::kInherited);
}

TEST_F(ItemTest, TouchNeverChangesTheRootOrWhatHasNoParent) {
    Root root(&store_, root_);
    root.setFlags(Record::kInherited);
    const Offset lonely = build_.container(kUnlisted, u"l");
    build_.flag(lonely, Record::kInherited);

    root.touch();
    Metadata::openItem(&store_, lonely)->touch();
    Metadata::openItem(&store_, build_.container(root_, u"a"))->touch();

    EXPECT_EQ(root.flags(), Record::kInherited);
    EXPECT_EQ(flagsOf(store_, lonely), Record::kInherited);
}

TEST_F(ItemTest, TouchWritesOnlyWhereTheMarkWas) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    const Offset p = build_.primitive(b, u"p");
    build_.flag(b, Record::kInherited);
    Design::Primitive open(&store_, p);
    forgetCalls();

    open.touch();

    EXPECT_THAT(changes(), ElementsAre("write " + std::to_string(b) + " size 35"));
}

TEST_F(ItemTest, TouchInARingOfParentsEnds) {
    const Offset a = build_.container(root_, u"a");
    const Offset b = build_.container(a, u"b");
    setParent(a, b);
    for (const Offset each : {a, b}) build_.flag(each, 6);

    Metadata::openItem(&store_, b)->touch();

    EXPECT_EQ(flagsOf(store_, a), 2);
    EXPECT_EQ(flagsOf(store_, b), 2);
}

}  // namespace
}  // namespace norvane::platform::test
