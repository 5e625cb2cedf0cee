#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

class ContainerTest : public ModelTest {};

TEST_F(ContainerTest, NameAndPathLeaveOutTheRoot) {
    const auto b = makeGroup(*makeGroup(*top, u"a"), u"b");

    EXPECT_EQ(top->path(), u"top");
    EXPECT_EQ(b->name(), u"b");
    EXPECT_EQ(b->path(), u"top.a.b");
}

TEST_F(ContainerTest, StoreIsTheOneItWasMadeIn) { EXPECT_EQ(top->store(), &store); }

TEST_F(ContainerTest, ToplevelHasNoParent) { EXPECT_FALSE(top->parent()); }

TEST_F(ContainerTest, ParentIsANewHandleWithFacet) {
    const auto a = makeGroup(*top, u"a");

    const auto parent = a->parent();

    ASSERT_TRUE(parent);
    EXPECT_EQ(parent->name(), u"top");
    EXPECT_NE(parent.get(), top.get());
    EXPECT_NE(IGroup::to(parent.get()), nullptr);
    EXPECT_EQ(record(store, u"top").openCount(), 2u);
}

TEST_F(ContainerTest, ClassNameIsEmptyWithoutASchema) {
    EXPECT_TRUE(top->className().isEmpty());
    EXPECT_EQ(top->className().value(), nullptr);
}

TEST_F(ContainerTest, IsEmptyUntilSomethingIsMade) {
    EXPECT_TRUE(top->isEmpty());

    top->makePrimitive(u"p", kDouble);

    EXPECT_FALSE(top->isEmpty());
}

TEST_F(ContainerTest, KindIsThatOfTheRecord) {
    EXPECT_EQ(top->makeContainer(kNode, u"n", nullptr)->kind(), kNode);
    EXPECT_EQ(top->makeContainer(kGroup, u"g", nullptr)->kind(), kGroup);
    EXPECT_EQ(top->makeContainer(kLink, u"l", nullptr)->kind(), kLink);
}

TEST_F(ContainerTest, RemoveDeletesTheWholeSubtree) {
    const std::uint64_t before = store.recordCount();
    makeGroup(*makeGroup(*top, u"a"), u"b")->makeTable(u"t", nullptr)->makePrimitive(u"p", kDouble, kMeter);
    const std::uint64_t list = 1;

    EXPECT_TRUE(top->remove(u"a"));

    EXPECT_EQ(store.recordCount(), before + list);
    EXPECT_TRUE(top->isEmpty());
    EXPECT_EQ(RawRecord(store, record(store, u"top").children()).size(), 1u);
}

TEST_F(ContainerTest, RemoveOfWhatIsNotThereIsFalse) { EXPECT_FALSE(top->remove(u"a")); }

TEST_F(ContainerTest, RemoveTakesNoPath) {
    const auto a = makeGroup(*top, u"a");
    makeGroup(*a, u"b");

    EXPECT_FALSE(top->remove(u"a.b"));

    EXPECT_EQ(namesIn(store, u"top/a"), Names{u"b"});
}

TEST_F(ContainerTest, RemoveTakesANameWithADot) {
    makeGroup(*top, u"x.y");

    EXPECT_TRUE(top->remove(u"x.y"));

    EXPECT_EQ(namesIn(store, u"top"), Names{});
}

TEST_F(ContainerTest, RemoveIsRefusedWhileAHandleOnTheChildLives) {
    auto a = makeGroup(*top, u"a");

    EXPECT_FALSE(top->remove(u"a"));
    EXPECT_EQ(namesIn(store, u"top"), Names{u"a"});

    a.reset();
    EXPECT_TRUE(top->remove(u"a"));
}

TEST_F(ContainerTest, RemoveIsRefusedWhileAHandleDeepBelowLives) {
    auto p = makeGroup(*makeGroup(*top, u"a"), u"b")->makePrimitive(u"p", kDouble);

    EXPECT_FALSE(top->remove(u"a"));

    p.reset();
    EXPECT_TRUE(top->remove(u"a"));
}

TEST_F(ContainerTest, RemoveIsRefusedForAFixedChild) {
    top->makePrimitive(u"p", kDouble)->property()->setFlags(2);

    EXPECT_FALSE(top->remove(u"p"));

    top->findProperty(u"p")->clearFlags(2);
    EXPECT_TRUE(top->remove(u"p"));
}

TEST_F(ContainerTest, RenameOfAToplevelContainerIsRefused) {
    const auto before = contentsOf(store);

    EXPECT_FALSE(top->rename(u"other"));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ContainerTest, RenameKeepsTheHandlesName) {
    const auto a = makeGroup(*top, u"a");

    EXPECT_TRUE(a->rename(u"new"));

    EXPECT_EQ(a->name(), u"a");
    EXPECT_EQ(a->path(), u"top.a");
    EXPECT_EQ(namesIn(store, u"top"), Names{u"new"});
    EXPECT_EQ(top->find(WideString())->find(u"new")->name(), u"new");
}

TEST_F(ContainerTest, SecondRenameThroughTheSameHandleIsRefused) {
    const auto a = makeGroup(*top, u"a");
    a->rename(u"b");

    EXPECT_FALSE(a->rename(u"c"));

    EXPECT_EQ(namesIn(store, u"top"), Names{u"b"});
}

TEST_F(ContainerTest, RenameToATakenNameIsRefused) {
    const auto a = makeGroup(*top, u"a");
    top->makePrimitive(u"p", kDouble);

    EXPECT_FALSE(a->rename(u"p"));
    EXPECT_FALSE(a->rename(u"a"));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"a", u"p"}));
}

TEST_F(ContainerTest, RenameMakesTheNameFieldFourTimesAsLong) {
    const auto a = makeGroup(*top, u"a");

    a->rename(u"xy");

    const RawRecord renamed = record(store, u"top/xy");
    EXPECT_EQ(renamed.at(19), 24u);
    EXPECT_EQ(renamed.size(), 31u + 24u);
    for (std::size_t i = 31 + 4; i < renamed.size(); ++i) EXPECT_EQ(renamed.byteAt(i), 0) << i;
}

TEST_F(ContainerTest, RenameKeepsClassTextAndTarget) {
    const auto link = top->makeContainer(kLink, u"l", nullptr);
    ILink::to(link.get())->setTarget(u"top.x");

    link->rename(u"renamed");

    EXPECT_EQ(ILink::to(top->find(WideString())->find(u"renamed").get())->target(), u"top.x");
}

TEST_F(ContainerTest, ContainsFindsAnythingAlongAPath) {
    const auto a = makeGroup(*top, u"a");
    a->makeTable(u"t", nullptr)->makePrimitive(u"p", kDouble, 0);

    EXPECT_TRUE(top->contains(u"a"));
    EXPECT_TRUE(top->contains(u"a.t"));
    EXPECT_TRUE(top->contains(u"a.t.p"));
    EXPECT_FALSE(top->contains(u"a.t.q"));
    EXPECT_FALSE(top->contains(u""));
    EXPECT_FALSE(top->contains(WideString()));
}

// A walk that runs into a primitive with one part left ends on it; with more left it fails.
TEST_F(ContainerTest, PathOnePartPastAPrimitiveLeadsToThePrimitive) {
    top->makePrimitive(u"p", kDouble);

    EXPECT_TRUE(top->contains(u"p.x"));
    EXPECT_TRUE(top->contains(u"p."));
    EXPECT_FALSE(top->contains(u"p.x.y"));
    EXPECT_EQ(top->findProperty(u"p.x")->name(), u"p");
    EXPECT_FALSE(top->find(u"p.x"));
}

TEST_F(ContainerTest, NameWithADotIsNeverFoundThroughAPath) {
    makeGroup(*top, u"x.y");

    EXPECT_FALSE(top->contains(u"x.y"));
    EXPECT_FALSE(top->find(u"x.y"));
}

TEST_F(ContainerTest, EmptyPartsOfAPathAreNames) {
    makeGroup(*makeGroup(*top, u""), u"a");

    EXPECT_TRUE(top->contains(u""));
    EXPECT_TRUE(top->contains(u".a"));
    EXPECT_FALSE(top->contains(u"..a"));
}

TEST_F(ContainerTest, FindWithoutTextOpensTheSameRecordAnew) {
    const auto again = top->find(WideString());

    ASSERT_TRUE(again);
    EXPECT_EQ(again->name(), u"top");
    EXPECT_NE(again.get(), top.get());
    EXPECT_EQ(record(store, u"top").openCount(), 2u);
}

TEST_F(ContainerTest, FindGivesTheFacetOfTheKind) {
    top->makeContainer(kNode, u"n", nullptr);
    top->makeContainer(kGroup, u"g", nullptr);
    top->makeContainer(kLink, u"l", nullptr);

    EXPECT_NE(INode::to(top->find(u"n").get()), nullptr);
    EXPECT_NE(IGroup::to(top->find(u"g").get()), nullptr);
    EXPECT_NE(ILink::to(top->find(u"l").get()), nullptr);
}

TEST_F(ContainerTest, FindOfAPropertyIsNull) {
    top->makePrimitive(u"p", kDouble);
    top->makeTable(u"t", nullptr);

    EXPECT_FALSE(top->find(u"p"));
    EXPECT_FALSE(top->find(u"t"));
    EXPECT_FALSE(top->find(u"missing"));
}

// Nobody closes what was opened to see the kind: the record stays in use, and cannot be removed.
TEST_F(ContainerTest, ContainerOfAnUnknownKindIsNullAndStaysInUse) {
    makeGroup(*top, u"odd");
    const Offset odd = recordAt(store, u"top/odd");
    overwrite(store, odd, 18, 9, 1);

    EXPECT_FALSE(top->find(u"odd"));

    EXPECT_EQ(RawRecord(store, odd).openCount(), 1u);
    EXPECT_FALSE(top->remove(u"odd"));
}

TEST_F(ContainerTest, ParentOfAnUnknownKindIsNullAndStaysInUse) {
    auto odd = makeGroup(*top, u"odd");
    const auto inner = makeGroup(*odd, u"inner");
    odd.reset();
    overwrite(store, recordAt(store, u"top/odd"), 18, 9, 1);

    EXPECT_FALSE(inner->parent());

    EXPECT_EQ(record(store, u"top/odd").openCount(), 1u);
}

TEST_F(ContainerTest, FindWithoutTextOnAnUnknownKindLooksForTheEmptyName) {
    makeGroup(*top, u"");
    top.reset();
    overwrite(store, recordAt(store, u"top"), 18, 9, 1);
    top = IContainerFrontEnd::toplevel(&store, u"top");

    EXPECT_EQ(top->find(WideString())->name(), u"");

    EXPECT_EQ(record(store, u"top").openCount(), 2u);
}

TEST_F(ContainerTest, FindPropertyReachesIntoTables) {
    const auto t = makeGroup(*top, u"a")->makeTable(u"t", nullptr);
    t->makePrimitive(u"p", kDouble, 0);

    EXPECT_EQ(top->findProperty(u"a.t.p")->kind(), 0u);
    EXPECT_EQ(top->findProperty(u"a.t")->kind(), 1u);
    EXPECT_FALSE(top->findProperty(u"a"));
    EXPECT_FALSE(top->findProperty(u"a.t.q"));
}

TEST_F(ContainerTest, EveryHandleCountsAsOpenWhileItLives) {
    {
        const auto a = makeGroup(*top, u"a");
        const auto again = top->find(u"a");
        const auto p = a->makePrimitive(u"p", kDouble);

        EXPECT_EQ(record(store, u"top/a").openCount(), 2u);
        EXPECT_EQ(record(store, u"top/a/p").openCount(), 1u);
    }
    top.reset();
    EXPECT_EQ(openCountsOf(store), 0u);
}

TEST_F(ContainerTest, NewContainerRecordHasExactlyTheseBytes) {
    auto link = top->makeContainer(kLink, u"l", nullptr);
    link.reset();

    const auto parent = static_cast<unsigned char>(recordAt(store, u"top"));
    EXPECT_EQ(record(store, u"top/l").bytes(),
              bytesWith({4, parent, 0, 0, 0, 0, 0, 0, 0, kNone, 0, kNone,  //
                         2, 4,      0, 0, 0, 0, 0, 0, 0, 0,     0, 0,     0, 'l', 0, 0, 0}));
}

}  // namespace
}  // namespace norvane::platform::test
