#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

class FrontEndTest : public StoreTest {};

// The root's list, rewritten by hand: the public model lists nothing but containers there.
void listInRoot(IDataStore& store, std::vector<Offset> children) {
    std::vector<unsigned char> bytes{3};
    for (Offset child : children)
        for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<unsigned char>(child >> 8 * i));
    store.write(RawRecord(store, 0).children(), bytes.data(), static_cast<std::uint32_t>(bytes.size()), true);
    for (Offset child : children) overwrite(store, child, 1, 0, 4);
}

TEST_F(FrontEndTest, VersionIsOne) { EXPECT_EQ(IContainerFrontEnd::version(), 1u); }

TEST_F(FrontEndTest, ToplevelOfAnEmptyStoreMakesRootVersionAndDefaultGroup) {
    const auto made = IContainerFrontEnd::toplevel(&store, WideString());

    EXPECT_EQ(made->name(), u"default");
    EXPECT_EQ(made->kind(), kGroup);
    EXPECT_EQ(store.version(), 1u);
    EXPECT_EQ(RawRecord(store, 0).kind(), 0);
    EXPECT_EQ(RawRecord(store, 0).name(), u"root");
    EXPECT_EQ(namesIn(store, u""), Names{u"default"});
}

TEST_F(FrontEndTest, RootRecordHasExactlyTheseBytes) {
    IContainerFrontEnd::toplevel(&store, WideString());

    const RawRecord root(store, 0);
    const auto list = static_cast<unsigned char>(root.children());
    EXPECT_EQ(root.bytes(), bytesWith({0,   kNone, 0,   0, 0,   0, kNone, 0, list, 0, 0, 0, 10, 0, 0, 0,  //
                                       'r', 0,     'o', 0, 'o', 0, 't',   0, 0,    0}));
}

TEST_F(FrontEndTest, SecondToplevelOpensTheSameRecord) {
    IContainerFrontEnd::toplevel(&store, WideString());

    const auto again = IContainerFrontEnd::toplevel(&store, WideString());

    EXPECT_EQ(namesIn(store, u""), Names{u"default"});
    EXPECT_EQ(record(store, u"default").openCount(), 1u);
}

TEST_F(FrontEndTest, ToplevelSetsTheVersionOnlyOfAnEmptyStore) {
    IContainerFrontEnd::toplevel(&store, u"a");
    store.setVersion(7);

    IContainerFrontEnd::toplevel(&store, u"b");

    EXPECT_EQ(store.version(), 7u);
}

TEST_F(FrontEndTest, ToplevelMakesAMissingNameBesideTheOthers) {
    IContainerFrontEnd::toplevel(&store, WideString());

    const auto made = IContainerFrontEnd::toplevel(&store, u"x");

    EXPECT_EQ(made->name(), u"x");
    EXPECT_EQ(made->kind(), kGroup);
    EXPECT_EQ(namesIn(store, u""), (Names{u"default", u"x"}));
}

TEST_F(FrontEndTest, ToplevelTakesTheWholeNameForOneName) {
    const auto made = IContainerFrontEnd::toplevel(&store, u"a.b");

    EXPECT_EQ(made->name(), u"a.b");
    EXPECT_EQ(namesIn(store, u""), Names{u"a.b"});
    EXPECT_EQ(IContainerFrontEnd::toplevel(&store, u"a.b")->name(), u"a.b");
    EXPECT_EQ(namesIn(store, u"").size(), 1u);
}

TEST_F(FrontEndTest, ToplevelDoesNotFollowAPath) {
    IContainerFrontEnd::toplevel(&store, u"a")->makeContainer(kGroup, u"b", nullptr);

    const auto made = IContainerFrontEnd::toplevel(&store, u"a.b");

    EXPECT_EQ(made->name(), u"a.b");
    EXPECT_EQ(namesIn(store, u""), (Names{u"a", u"a.b"}));
}

TEST_F(FrontEndTest, ToplevelWithTheEmptyNameMakesAContainerOfThatName) {
    IContainerFrontEnd::toplevel(&store, WideString());

    const auto made = IContainerFrontEnd::toplevel(&store, u"");

    EXPECT_EQ(made->name(), u"");
    EXPECT_EQ(namesIn(store, u""), (Names{u"default", u""}));
}

TEST_F(FrontEndTest, ToplevelWithTheNameOfAPropertyIsNullAndMakesNothing) {
    const auto holder = IContainerFrontEnd::toplevel(&store, u"holder");
    holder->makePrimitive(u"p", kDouble);
    holder->makeTable(u"t", nullptr);
    listInRoot(store,
               {recordAt(store, u"holder/p"), recordAt(store, u"holder/t"), recordAt(store, u"holder")});
    const std::uint64_t before = store.size();

    EXPECT_FALSE(IContainerFrontEnd::toplevel(&store, u"p"));
    EXPECT_FALSE(IContainerFrontEnd::toplevel(&store, u"t"));
    EXPECT_EQ(store.size(), before);
}

TEST_F(FrontEndTest, DefaultIsTheFirstContainerWhateverItsName) {
    IContainerFrontEnd::toplevel(&store, u"first");
    IContainerFrontEnd::toplevel(&store, u"default");

    EXPECT_EQ(IContainerFrontEnd::toplevel(&store, WideString())->name(), u"first");
}

TEST_F(FrontEndTest, DefaultPassesOverPropertiesOfTheRoot) {
    const auto holder = IContainerFrontEnd::toplevel(&store, u"holder");
    holder->makePrimitive(u"p", kDouble);
    listInRoot(store, {recordAt(store, u"holder/p"), recordAt(store, u"holder")});

    EXPECT_EQ(IContainerFrontEnd::toplevel(&store, WideString())->name(), u"holder");
    EXPECT_EQ(namesIn(store, u""), (Names{u"p", u"holder"}));
}

TEST_F(FrontEndTest, DefaultIsMadeAndStaysUnlinkedWhereATableHasItsName) {
    auto holder = IContainerFrontEnd::toplevel(&store, u"holder");
    holder->makeTable(u"default", nullptr);
    holder.reset();
    listInRoot(store, {recordAt(store, u"holder/default")});

    const auto made = IContainerFrontEnd::toplevel(&store, WideString());

    ASSERT_TRUE(made);
    EXPECT_EQ(made->name(), u"default");
    EXPECT_EQ(made->kind(), kGroup);
    EXPECT_EQ(namesIn(store, u""), Names{u"default"});
    EXPECT_EQ(record(store, u"default").kind(), 2);
    const RawRecord orphan(store, static_cast<Offset>(store.size() - 1));
    EXPECT_EQ(orphan.kind(), 4);
    EXPECT_EQ(orphan.parent(), noRecord());
    EXPECT_FALSE(made->parent());
}

// Only as many entries of the list are asked as the root has different names.
TEST_F(FrontEndTest, DefaultIsNotFoundBehindSiblingsThatShareAName) {
    const auto holder = IContainerFrontEnd::toplevel(&store, u"holder");
    holder->makePrimitive(u"p", kDouble);
    const Offset p = recordAt(store, u"holder/p");
    listInRoot(store, {p, p, recordAt(store, u"holder")});

    EXPECT_EQ(IContainerFrontEnd::toplevel(&store, WideString())->name(), u"default");
}

TEST_F(FrontEndTest, ToplevelGivesAHandleWithoutFacet) {
    const auto group = IContainerFrontEnd::toplevel(&store, u"g");

    EXPECT_EQ(IGroup::to(group.get()), nullptr);
    EXPECT_NE(IGroup::to(group->find(WideString()).get()), nullptr);
}

TEST_F(FrontEndTest, FindOnAnEmptyStoreIsNullAndLeavesItEmpty) {
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"default"));

    EXPECT_EQ(store.size(), 0u);
    EXPECT_EQ(store.version(), 0u);
}

TEST_F(FrontEndTest, FindWalksADottedPath) {
    const auto top = IContainerFrontEnd::toplevel(&store, u"top");
    top->makeContainer(kNode, u"a", nullptr)->makeContainer(kLink, u"b", nullptr);

    const auto found = IContainerFrontEnd::find(&store, u"top.a.b");

    ASSERT_TRUE(found);
    EXPECT_EQ(found->path(), u"top.a.b");
    EXPECT_EQ(found->kind(), kLink);
    EXPECT_EQ(ILink::to(found.get()), nullptr);
}

TEST_F(FrontEndTest, FindMakesNothing) {
    IContainerFrontEnd::toplevel(&store, u"top");
    const std::uint64_t before = store.size();

    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"other"));
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"top.other"));
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u""));
    EXPECT_EQ(store.size(), before);
}

TEST_F(FrontEndTest, FindOfAPropertyIsNull) {
    const auto top = IContainerFrontEnd::toplevel(&store, u"top");
    top->makePrimitive(u"p", kDouble);
    top->makeTable(u"t", nullptr);

    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"top.p"));
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"top.t"));
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"top.p.x"));
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"top.p.x.y"));
}

TEST_F(FrontEndTest, FindReachesAContainerInsideATable) {
    const auto top = IContainerFrontEnd::toplevel(&store, u"top");
    top->makeTable(u"a", nullptr);
    ASSERT_TRUE(top->makeContainer(kGroup, u"b", nullptr)->copyTo(&store, u"top.a.b"));

    const auto found = IContainerFrontEnd::find(&store, u"top.a.b");

    ASSERT_TRUE(found);
    EXPECT_EQ(found->name(), u"b");
    EXPECT_FALSE(found->parent());
}

TEST_F(FrontEndTest, FindWithoutTextIsNull) {
    IContainerFrontEnd::toplevel(&store, u"top");

    EXPECT_FALSE(IContainerFrontEnd::find(&store, WideString()));
}

TEST_F(FrontEndTest, NoStoreNoContainer) {
    EXPECT_FALSE(IContainerFrontEnd::toplevel(nullptr, u"x"));
    EXPECT_FALSE(IContainerFrontEnd::find(nullptr, u"x"));
}

TEST_F(FrontEndTest, HandlesOutliveEachOther) {
    auto first = IContainerFrontEnd::toplevel(&store, u"top");
    const auto second = IContainerFrontEnd::find(&store, u"top");

    first.reset();

    EXPECT_EQ(second->name(), u"top");
    EXPECT_EQ(record(store, u"top").openCount(), 1u);
}

// What a document that begins with a group leaves in an empty store.
TEST_F(FrontEndTest, RecordZeroThatIsAContainerServesAsTheRoot) {
    {
        ModelStore other;
        auto top = IContainerFrontEnd::toplevel(&other, u"top");
        top.reset();
        const RawRecord group = record(other, u"top");
        store.append(group.bytes().data(), static_cast<std::uint32_t>(group.size()));
        overwrite(store, 0, 1, noRecord(), 4);
    }

    const auto made = IContainerFrontEnd::toplevel(&store, u"inner");

    ASSERT_TRUE(made);
    EXPECT_EQ(made->name(), u"inner");
    EXPECT_EQ(namesIn(store, u""), Names{u"inner"});
    EXPECT_TRUE(IContainerFrontEnd::find(&store, u"inner"));
    EXPECT_EQ(store.version(), 0u);
}

TEST_F(FrontEndTest, RecordZeroThatIsAPrimitiveGivesNull) {
    {
        ModelStore other;
        auto top = IContainerFrontEnd::toplevel(&other, u"top");
        top->makePrimitive(u"p", kDouble);
        const RawRecord primitive = record(other, u"top/p");
        store.append(primitive.bytes().data(), static_cast<std::uint32_t>(primitive.size()));
    }

    EXPECT_FALSE(IContainerFrontEnd::toplevel(&store, WideString()));
    EXPECT_FALSE(IContainerFrontEnd::toplevel(&store, u"x"));
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"x"));
    EXPECT_EQ(store.size(), 1u);
}

}  // namespace
}  // namespace norvane::platform::test
