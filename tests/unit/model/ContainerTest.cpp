// Containers: kind, class text, target, copies.
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

using data::structure::kGroup;
using data::structure::kLink;

class ContainerTest : public ModelTest {
  protected:
    Offset withClassText(const char16_t* text) {
        const Offset offset = build_.container(root_, u"c");
        Record::Entity(&store_, offset)
            .setField(Record::field::classTextSize, text, Record::storedSize(text));
        return offset;
    }
};

TEST_F(ContainerTest, NewLinkHasItsKindAndNoTexts) {
    forgetCalls();
    const Container link(&store_, kLink, u"x");

    const std::string offset = std::to_string(link.offset());
    EXPECT_THAT(changes(), ElementsAre("append 35", "count " + offset));
    RecordBytes expected;
    expected.u8(4).noRecord().u32(1).noRecord().u8(0).noRecord().u8(2).u32(4).u32(0).u32(0);
    EXPECT_EQ(record(link.offset()), expected.text(u"x"));
    EXPECT_EQ(link.kind(), 2u);
    EXPECT_EQ(link.name(), u"x");
    EXPECT_EQ(link.classText(), u"");
    EXPECT_EQ(link.linkTarget(), u"");
}

TEST_F(ContainerTest, NewChildIsMadeWholeAndListedWithoutBeingCounted) {
    Container parent(&store_, 0, u"p");
    Container(parent, 0, u"first", 0, nullptr);
    forgetCalls();

    const Container link(parent, kLink, u"x", Record::kOptional, u"a.b");

    EXPECT_THAT(changes(),
                ElementsAre("append 43", "extend " + std::to_string(listRecordOf(store_, parent.offset()))));
    RecordBytes expected;
    expected.u8(4).u32(parent.offset()).u32(0).noRecord().u8(1).noRecord().u8(2).u32(4).u32(0).u32(8);
    EXPECT_EQ(record(link.offset()), expected.text(u"x").text(u"a.b"));
    EXPECT_EQ(link.linkTarget(), u"a.b");
    EXPECT_EQ(parent.find(u"x"), link.offset());
}

TEST_F(ContainerTest, TransientObjectCountsOnceItIsToldTo) {
    Container parent(&store_, 0, u"p");
    {
        Container child(parent, 0, u"c", 0, nullptr);
        forgetCalls();

        child.beSeen();
        child.beSeen();

        EXPECT_THAT(changes(), ElementsAre("count " + std::to_string(child.offset())));
    }
    EXPECT_EQ(Record::Snapshot(&store_, parent.find(u"c"))->load(Record::field::openCount), 0u);
}

// The parent is one that was made in the same operation, and that nobody else has met.
TEST_F(ContainerTest, ManyChildrenOfAnUnseenContainerAreFoundAndHaveNoDoubles) {
    Container parent(&store_, 0, u"p");
    Container unseen(parent, 0, u"u", 0, nullptr);
    const auto nameOf = [](int i) { return u"child" + std::u16string(static_cast<std::size_t>(i), u'x'); };

    for (int i = 0; i < 40; ++i) Container(unseen, 0, nameOf(i), 0, nullptr);

    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(unseen.find(nameOf(i)), unseen.childAt(static_cast<std::uint32_t>(i)));
        EXPECT_FALSE(unseen.hasRoomFor(nameOf(i)));
    }
    EXPECT_EQ(unseen.find(u"child40"), IDataStore::BADOFF);
    EXPECT_EQ(unseen.childCount(), 40u);
}

TEST_F(ContainerTest, ChildrenAreRememberedFromTheMomentOnInWhichOthersMayLook) {
    Container parent(&store_, 0, u"p");
    Container unseen(parent, 0, u"u", 0, nullptr);
    const Offset child = Container(unseen, 0, u"before", 0, nullptr).offset();

    unseen.beSeen();
    Container(&store_, unseen.offset()).renameChild(u"before", u"after");

    EXPECT_EQ(unseen.find(u"before"), child);
    EXPECT_EQ(unseen.find(u"after"), IDataStore::BADOFF);
    Container(unseen, 0, u"own", 0, nullptr);
    EXPECT_NE(unseen.find(u"own"), IDataStore::BADOFF);
    EXPECT_EQ(unseen.childCount(), 2u);
}

TEST_F(ContainerTest, UnseenContainerKeepsItsChildrenApartWhenTheyAreRenamedAndRemoved) {
    Container parent(&store_, 0, u"p");
    Container unseen(parent, 0, u"u", 0, nullptr);
    for (char16_t name = u'A'; name <= u'Z'; ++name)
        Container(unseen, 0, std::u16string(1, name), 0, nullptr);

    EXPECT_TRUE(unseen.renameChild(u"B", u"b"));
    EXPECT_TRUE(unseen.removeChild(u"C"));

    EXPECT_EQ(unseen.find(u"B"), IDataStore::BADOFF);
    EXPECT_EQ(unseen.find(u"C"), IDataStore::BADOFF);
    EXPECT_EQ(unseen.find(u"b"), unseen.childAt(1));
    EXPECT_EQ(unseen.find(u"Z"), unseen.childAt(24));
    EXPECT_EQ(unseen.childCount(), 25u);
}

TEST_F(ContainerTest, ThereIsNoRoomForANameThatIsTakenNorInASetThatIsGone) {
    Container parent(&store_, 0, u"p");
    Container(parent, 0, u"c", 0, nullptr);

    EXPECT_TRUE(parent.hasRoomFor(u"d"));
    EXPECT_FALSE(parent.hasRoomFor(u"c"));
    store_.remove(parent.offset());
    EXPECT_FALSE(parent.hasRoomFor(u"d"));
}

TEST_F(ContainerTest, RecordKeepsTheLowByteOfTheKind) {
    const Container strange(&store_, 0x1FE, u"x");

    EXPECT_EQ(strange.kind(), 0x1FEu);
    EXPECT_EQ(Container(&store_, strange.offset()).kind(), 0xFEu);
}

TEST_F(ContainerTest, OpenedContainerHasWhatItsRecordSays) {
    RecordBytes bytes;
    bytes.u8(4).u32(root_).u32(0).noRecord().u8(0).noRecord().u8(1).u32(4).u32(8).u32(6);
    const Container open(&store_, appendTo(store_, bytes.text(u"n").text(u"A;B").text(u"a.").raw("x")));

    EXPECT_EQ(open.name(), u"n");
    EXPECT_EQ(open.kind(), kGroup);
    EXPECT_EQ(open.classText(), u"A;B");
    EXPECT_EQ(open.linkTarget(), u"a.");
    EXPECT_EQ(open.parent(), root_);
}

TEST_F(ContainerTest, ClassTextOfNothingButItsNulIsEmpty) {
    EXPECT_EQ(Container(&store_, withClassText(u"")).classText(), u"");
    EXPECT_EQ(Container(&store_, build_.container(root_, u"none")).classText(), u"");
}

TEST_F(ContainerTest, TargetStandsBehindTheClassText) {
    const Offset link = withClassText(u"C");
    Container open(&store_, link);
    forgetCalls();

    open.setLinkTarget(u"a.b");

    EXPECT_EQ(record(link).u32At(27), 8u);
    EXPECT_EQ(record(link).part(31, 100), RecordBytes().text(u"c").text(u"C").text(u"a.b").bytes());
    EXPECT_EQ(open.linkTarget(), u"a.b");
    EXPECT_EQ(changes().size(), 1u);
    EXPECT_TRUE(store_.changes()[0].flag);
}

TEST_F(ContainerTest, ClearedTargetLeavesTheRecord) {
    const Offset link = withClassText(u"C");
    Container open(&store_, link);
    open.setLinkTarget(u"a.b");

    open.setLinkTarget(nullptr);

    EXPECT_EQ(record(link).u32At(27), 0u);
    EXPECT_EQ(record(link).part(31, 100), RecordBytes().text(u"c").text(u"C").bytes());
    EXPECT_EQ(open.linkTarget(), u"");
}

TEST_F(ContainerTest, ClearingATargetThatIsNotThereWritesTheSameAgain) {
    const Offset link = build_.container(root_, u"x", kLink);
    const RecordBytes before = record(link);
    Container open(&store_, link);
    forgetCalls();

    open.setLinkTarget(nullptr);

    EXPECT_THAT(changes(), ElementsAre("write " + std::to_string(link) + " size 35"));
    EXPECT_EQ(RecordBytes(store_.changes()[0].bytes).part(9, 100), before.part(9, 100));
}

TEST_F(ContainerTest, EmptyTargetIsATarget) {
    Container open(&store_, build_.container(root_, u"x", kLink));

    open.setLinkTarget(u"");

    EXPECT_EQ(record(open.offset()).u32At(27), 2u);
}

TEST_F(ContainerTest, CopyHasEverythingButParentCountAndSatellitesOfItsOwn) {
    const Offset original = withClassText(u"A;B");
    build_.flag(original, 5);
    build_.localise(original, u"de", u"eins");
    const Offset child = build_.primitive(original, u"p");
    Container open(&store_, original);
    open.setLinkTarget(u"t");

    const Offset copy = open.clone(&store_);

    RecordBytes expected;
    expected.u8(4).u32(root_).u32(0).u32(localeOf(store_, copy)).u8(5).u32(listRecordOf(store_, copy));
    expected.u8(1).u32(4).u32(8).u32(4).text(u"c").text(u"A;B").text(u"t");
    EXPECT_EQ(record(copy), expected);
    EXPECT_NE(listRecordOf(store_, copy), listRecordOf(store_, original));
    EXPECT_EQ(childrenOf(store_, copy).size(), 1u);
    EXPECT_NE(childrenOf(store_, copy).at(0), child);
    EXPECT_EQ(parentOf(store_, childrenOf(store_, copy).at(0)), copy);
    EXPECT_EQ(openCount(original), 1u);
}

TEST_F(ContainerTest, CopyOfASetWithoutAListHasNone) {
    const Offset original = build_.container(root_, u"x");

    const Offset copy = Container(&store_, original).clone(&store_);

    EXPECT_EQ(listRecordOf(store_, copy), noRecord());
    EXPECT_EQ(localeOf(store_, copy), noRecord());
}

TEST_F(ContainerTest, CopyOfAnEmptyListIsAnEmptyListOfItsOwn) {
    const Offset original = build_.container(root_, u"x");
    build_.primitive(original, u"p");
    Container(&store_, original).removeChild(u"p");

    const Offset copy = Container(&store_, original).clone(&store_);

    EXPECT_EQ(record(listRecordOf(store_, copy)), listOf({}));
    EXPECT_NE(listRecordOf(store_, copy), listRecordOf(store_, original));
}

TEST_F(ContainerTest, ErasedContainerKeepsItsTextsAndLosesWhatItRefersTo) {
    const Offset offset = withClassText(u"C");
    build_.localise(offset, u"de", u"eins");
    build_.primitive(offset, u"p");
    Container open(&store_, offset);
    open.setLinkTarget(u"t");

    open.erase();

    RecordBytes expected;
    expected.u8(4).u32(root_).u32(1).noRecord().u8(0).noRecord().u8(1).u32(4).u32(4).u32(4);
    EXPECT_EQ(record(offset), expected.text(u"c").text(u"C").text(u"t"));
}

}  // namespace
}  // namespace norvane::platform::test
