// What containers make, copy and merge.
#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

using Ints = std::vector<std::int32_t>;

class ContentTest : public ModelTest {
  protected:
    ~ContentTest() noexcept override = default;

    SharedPtr<IContainer> openAnew() { return top->find(WideString()); }

    // A subtree that has something of everything.
    SharedPtr<IContainer> makeRich(IContainer& parent, const char16_t* name) {
        auto rich = makeGroup(parent, name);
        rich->setLocalised(u"en", u"rich");
        write<std::int32_t>(*rich->makePrimitive(u"p", kInt32), {1, 2});
        const auto t = rich->makeTable(u"t", nullptr);
        t->addDefault(kMeter, kDouble);
        t->makePrimitive(u"m", kDouble, kMeter)->property()->setLocalised(u"de", u"Mass");
        ILink::to(rich->makeContainer(kLink, u"l", nullptr).get())->setTarget(u"top.x");
        return rich;
    }

    void expectRich(IContainer& rich) {
        EXPECT_EQ(rich.localised(u"en"), u"rich");
        EXPECT_EQ(valuesOf<std::int32_t>(*IPrimitive::to(rich.findProperty(u"p").get())), (Ints{1, 2}));
        EXPECT_EQ(ITable::to(rich.findProperty(u"t").get())->defaultType(0x2000), kDouble);
        EXPECT_EQ(rich.findProperty(u"t.m")->localised(u"de"), u"Mass");
        EXPECT_EQ(IPrimitive::to(rich.findProperty(u"t.m").get())->units(), kMeter);
        EXPECT_EQ(ILink::to(rich.find(u"l").get())->target(), u"top.x");
    }
};

TEST_F(ContentTest, TakenNamesAreRefusedWhateverTheSort) {
    makeGroup(*top, u"c");
    top->makePrimitive(u"p", kInt32);
    top->makeTable(u"t", nullptr);
    const auto before = contentsOf(store);

    for (const char16_t* name : {u"c", u"p", u"t"}) {
        EXPECT_FALSE(makeGroup(*top, name));
        EXPECT_FALSE(top->makePrimitive(name, kInt32));
        EXPECT_FALSE(top->makeTable(name, nullptr));
    }

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ContentTest, WholeNameIsComparedWithDirectChildren) {
    makeGroup(*makeGroup(*top, u"x"), u"y");

    EXPECT_TRUE(makeGroup(*top, u"x.y"));
    EXPECT_TRUE(top->makePrimitive(u"x.z", kInt32));
    EXPECT_TRUE(top->makeTable(u"x.t", nullptr));
    EXPECT_FALSE(makeGroup(*top, u"x.y"));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"x", u"x.y", u"x.z", u"x.t"}));
}

TEST_F(ContentTest, NameWithADotIsFreeThoughItsPathLeadsSomewhere) {
    const auto x = makeGroup(*top, u"x");
    for (const char16_t* name : {u"p", u"t"}) makeGroup(*x, name);

    EXPECT_TRUE(top->makePrimitive(u"x.p", kInt32));
    EXPECT_TRUE(top->makeTable(u"x.t", nullptr));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"x", u"x.p", u"x.t"}));
}

TEST_F(ContentTest, MissingNameIsTheEmptyOne) {
    EXPECT_EQ(top->makePrimitive(WideString(), kInt32)->property()->name(), u"");
    EXPECT_FALSE(top->makePrimitive(u"", kInt32));
}

TEST_F(ContentTest, MadeHandlesKnowTheirParent) {
    EXPECT_EQ(makeGroup(*top, u"c")->parent()->name(), u"top");
    EXPECT_EQ(top->makePrimitive(u"p", kInt32)->property()->path(), u"top.p");
    EXPECT_EQ(top->makeTable(u"t", nullptr)->property()->path(), u"top.t");
}

TEST_F(ContentTest, MakerKnowsItsNewChildAtOnce) {
    makeGroup(*top, u"c");

    EXPECT_TRUE(top->contains(u"c"));
    EXPECT_TRUE(top->find(u"c"));
    EXPECT_FALSE(top->isEmpty());
}

TEST_F(ContentTest, UnknownKindIsNullButTheChildExists) {
    EXPECT_FALSE(top->makeContainer(3, u"odd", nullptr));

    const RawRecord odd = record(store, u"top/odd");
    EXPECT_EQ(odd.kind(), 4);
    EXPECT_EQ(odd.byteAt(18), 3);
    EXPECT_EQ(odd.openCount(), 0u);
    EXPECT_TRUE(top->contains(u"odd"));
}

// The record has room for the low byte alone; the answer goes by the whole number.
TEST_F(ContentTest, KindAboveAByteIsNullThoughTheRecordSaysGroup) {
    EXPECT_FALSE(top->makeContainer(0x101, u"odd", nullptr));

    EXPECT_EQ(record(store, u"top/odd").byteAt(18), 1);
    EXPECT_EQ(record(store, u"top/odd").openCount(), 0u);
    EXPECT_NE(IGroup::to(top->find(u"odd").get()), nullptr);
}

// Such a name is a mark of the maps below: it can be held and walked over, but never found.
TEST_F(ContentTest, ReservedNamesAreMadeButNeverFound) {
    for (const char16_t* name : {u"$$$$$_____empty_key", u"$$$$$_____deleted_key"}) {
        EXPECT_TRUE(makeGroup(*top, name));
        EXPECT_TRUE(top->makePrimitive(name, kInt32));
        EXPECT_FALSE(top->contains(name));
        EXPECT_FALSE(top->remove(name));
    }
    for (int i = 0; i < 100; ++i)
        top->makePrimitive((u"p" + std::u16string(1, char16_t(u'A' + i))).c_str(), kInt32);

    EXPECT_EQ(childrenOf(store, recordAt(store, u"top")).size(), 104u);
    EXPECT_EQ(namesOf(*top->containers()), (Names{u"$$$$$_____empty_key", u"$$$$$_____deleted_key"}));
    const auto before = store.recordCount();
    top.reset();
    auto host = IContainerFrontEnd::toplevel(&store, u"host");
    EXPECT_TRUE(IContainerFrontEnd::find(&store, u"top")->copyTo(&store, u"host.copy"));
    EXPECT_EQ(store.recordCount(), before + 2 + 106);
}

TEST_F(ContentTest, AddCopiesUnderTheItemsName) {
    const auto rich = makeRich(*makeGroup(*top, u"from"), u"rich");
    top->find(u"from")->find(u"rich");
    const auto to = makeGroup(*top, u"to");

    EXPECT_TRUE(to->add(top->find(u"from.rich")));

    EXPECT_TRUE(top->find(u"from.rich"));
    EXPECT_EQ(to->find(u"rich")->path(), u"top.to.rich");
}

TEST_F(ContentTest, AddTakesAllThatIsBelow) {
    makeRich(*makeGroup(*top, u"from"), u"rich");
    const auto to = makeGroup(*top, u"to");

    to->add(top->find(u"from.rich"));

    expectRich(*to->find(u"rich"));
    for (const char16_t* path : {u"top/to/rich", u"top/to/rich/p", u"top/to/rich/t", u"top/to/rich/t/m"})
        EXPECT_EQ(record(store, path).openCount(), 0u);
}

TEST_F(ContentTest, AddFromAnotherStoreLeavesTheItemThere) {
    ModelStore other;
    auto there = IContainerFrontEnd::toplevel(&other, u"there");
    makeRich(*there, u"rich");
    auto item = there->find(u"rich");

    EXPECT_TRUE(top->add(item));

    expectRich(*top->find(u"rich"));
    expectRich(*there->find(u"rich"));
    EXPECT_EQ(top->find(u"rich")->store(), &store);
}

TEST_F(ContentTest, AddTakesPropertiesToo) {
    const auto from = makeGroup(*top, u"from");
    write<std::int32_t>(*from->makePrimitive(u"p", kInt32), {7});
    from->makeTable(u"t", nullptr)->makePrimitive(u"m", kDouble, 0);

    EXPECT_TRUE(top->add(from->findProperty(u"p")));
    EXPECT_TRUE(top->add(from->findProperty(u"t")));

    EXPECT_EQ(valuesOf<std::int32_t>(*IPrimitive::to(top->findProperty(u"p").get())), Ints{7});
    EXPECT_TRUE(top->findProperty(u"t.m"));
}

TEST_F(ContentTest, AddIsRefusedWhereTheNameLeadsSomewhere) {
    const auto from = makeGroup(*top, u"from");
    from->makePrimitive(u"p", kInt32);
    makeGroup(*from, u"c");
    makeGroup(*top, u"p");
    top->makePrimitive(u"c", kInt32);
    const auto before = contentsOf(store);

    EXPECT_FALSE(top->add(from->findProperty(u"p")));
    EXPECT_FALSE(top->add(from->find(u"c")));

    EXPECT_EQ(contentsOf(store), before);
}

// The name is read as a path and misses; the literal twin refuses the copy, which stays in no container.
TEST_F(ContentTest, AddOfANameWithADotThatIsThereLeavesAnOrphan) {
    const auto from = makeGroup(*top, u"from");
    const auto dotted = makeGroup(*from, u"x.y");
    makeGroup(*top, u"x.y");
    const std::uint64_t before = store.recordCount();

    EXPECT_TRUE(top->add(dotted));

    EXPECT_EQ(store.recordCount(), before + 1);
    EXPECT_EQ(namesIn(store, u"top"), (Names{u"from", u"x.y"}));
}

TEST_F(ContentTest, AddOfAContainerIntoItselfIsACopyOfWhatItWas) {
    const auto a = makeGroup(*top, u"a");
    makeGroup(*a, u"b");

    EXPECT_TRUE(a->add(top->find(u"a")));

    EXPECT_EQ(namesIn(store, u"top/a"), (Names{u"b", u"a"}));
    EXPECT_EQ(namesIn(store, u"top/a/a"), Names{u"b"});
}

TEST_F(ContentTest, AddReleasesItsArgument) {
    const auto from = makeGroup(*top, u"from");
    makeGroup(*from, u"c");

    EXPECT_TRUE(top->add(from->find(u"c")));
    EXPECT_FALSE(top->add(from->find(u"c")));

    EXPECT_EQ(record(store, u"top/from/c").openCount(), 0u);
}

TEST_F(ContentTest, MergeCopiesChildrenInOrder) {
    const auto from = makeGroup(*top, u"from");
    for (const char16_t* name : {u"z", u"a", u"m"}) makeRich(*from, name);
    const auto to = makeGroup(*top, u"to");

    EXPECT_TRUE(to->merge(from));

    EXPECT_EQ(namesIn(store, u"top/to"), (Names{u"z", u"a", u"m"}));
    expectRich(*to->find(u"m"));
    EXPECT_EQ(namesIn(store, u"top/from"), (Names{u"z", u"a", u"m"}));
}

TEST_F(ContentTest, MergeLeavesChildrenThatAreThereAsTheyAre) {
    const auto from = makeGroup(*top, u"from");
    write<std::int32_t>(*from->makePrimitive(u"x", kInt32), {1});
    from->makePrimitive(u"y", kInt32);
    const auto to = makeGroup(*top, u"to");
    makeGroup(*to, u"x");

    EXPECT_TRUE(to->merge(from));

    EXPECT_EQ(namesIn(store, u"top/to"), (Names{u"x", u"y"}));
    EXPECT_EQ(record(store, u"top/to/x").kind(), 4);
}

TEST_F(ContentTest, MergeLeavesOutAChildWhoseNameIsAPathThatLeadsSomewhere) {
    const auto from = makeGroup(*top, u"from");
    makeGroup(*from, u"x.y");
    const auto to = makeGroup(*top, u"to");
    makeGroup(*makeGroup(*to, u"x"), u"y");
    const auto before = contentsOf(store);

    EXPECT_TRUE(to->merge(from));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ContentTest, MergeOfNothingIsTrue) { EXPECT_TRUE(top->merge(makeGroup(*top, u"empty"))); }

TEST_F(ContentTest, MergeWithItselfChangesNothing) {
    makeRich(*top, u"rich");
    top = openAnew();
    const auto before = contentsOf(store);

    EXPECT_TRUE(top->merge(top));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ContentTest, MergeStopsAtAnUnknownRecordAndKeepsWhatItHas) {
    const auto from = makeGroup(*top, u"from");
    for (const char16_t* name : {u"a", u"b", u"c"}) from->makePrimitive(name, kInt32);
    overwrite(store, recordAt(store, u"top/from/b"), 0, 9, 1);
    const auto to = makeGroup(*top, u"to");

    EXPECT_FALSE(to->merge(from));

    EXPECT_EQ(namesIn(store, u"top/to"), Names{u"a"});
}

TEST_F(ContentTest, MergeOfAStaleHandlePassesOverWhatIsGone) {
    const auto from = makeGroup(*top, u"from");
    for (const char16_t* name : {u"a", u"b", u"c"}) from->makePrimitive(name, kInt32);
    const auto stale = top->find(u"from");
    from->remove(u"b");
    const auto to = makeGroup(*top, u"to");

    EXPECT_TRUE(to->merge(stale));

    EXPECT_EQ(namesIn(store, u"top/to"), (Names{u"a", u"c"}));
}

TEST_F(ContentTest, MergeTakesOnlyAsManyAsTheSourcesHandleKnows) {
    const auto from = makeGroup(*top, u"from");
    from->makePrimitive(u"a", kInt32);
    const auto stale = top->find(u"from");
    from->makePrimitive(u"b", kInt32);
    const auto to = makeGroup(*top, u"to");

    EXPECT_TRUE(to->merge(stale));

    EXPECT_EQ(namesIn(store, u"top/to"), Names{u"a"});
}

TEST_F(ContentTest, MergeOfAParentIntoItsChildEnds) {
    const auto a = makeGroup(*top, u"a");
    const auto b = makeGroup(*a, u"b");
    a->makePrimitive(u"p", kInt32);

    EXPECT_TRUE(b->merge(a));

    EXPECT_EQ(namesIn(store, u"top/a/b"), (Names{u"b", u"p"}));
    EXPECT_EQ(namesIn(store, u"top/a/b/b"), Names{});
}

TEST_F(ContentTest, CopyToNeedsAParentAndGivesTheNewName) {
    ModelStore other;
    const auto there = IContainerFrontEnd::toplevel(&other, u"there");
    makeGroup(*there, u"deep");
    const auto rich = makeRich(*top, u"rich");
    top->find(u"rich");

    EXPECT_TRUE(rich->copyTo(&other, u"there.deep.copy"));

    EXPECT_EQ(namesIn(other, u"there/deep"), Names{u"copy"});
    EXPECT_EQ(record(other, u"there/deep/copy").parent(), recordAt(other, u"there/deep"));
    EXPECT_EQ(record(other, u"there/deep/copy").at(19), 10u);
    EXPECT_EQ(record(other, u"there/deep/copy").openCount(), 0u);
}

TEST_F(ContentTest, CopyToTakesAllThatIsStored) {
    ModelStore other;
    IContainerFrontEnd::toplevel(&other, u"there");
    makeRich(*top, u"rich");

    EXPECT_TRUE(top->find(u"rich")->copyTo(&other, u"there.copy"));

    expectRich(*IContainerFrontEnd::find(&other, u"there.copy"));
}

TEST_F(ContentTest, CopyToWithoutADotLandsInsideTheToplevelOfThatName) {
    ModelStore other;
    IContainerFrontEnd::toplevel(&other, u"same");
    const auto a = makeGroup(*top, u"a");

    EXPECT_TRUE(a->copyTo(&other, u"same"));
    EXPECT_FALSE(a->copyTo(&other, u"missing"));

    EXPECT_EQ(namesIn(other, u""), Names{u"same"});
    EXPECT_EQ(namesIn(other, u"same"), Names{u"same"});
}

TEST_F(ContentTest, CopyToAMissingParentIsFalseAndCopiesNothing) {
    ModelStore other;
    IContainerFrontEnd::toplevel(&other, u"there")->makePrimitive(u"p", kInt32);
    const auto before = contentsOf(other);

    EXPECT_FALSE(top->copyTo(&other, u"nowhere.copy"));
    EXPECT_FALSE(top->copyTo(&other, u"there.p.copy"));
    EXPECT_FALSE(top->copyTo(&other, u"there.p.x.copy"));
    EXPECT_FALSE(top->copyTo(&other, WideString()));

    EXPECT_EQ(contentsOf(other), before);
}

TEST_F(ContentTest, CopyToAnEmptyStoreIsFalseAndLeavesItEmpty) {
    ModelStore empty;

    EXPECT_FALSE(top->copyTo(&empty, u"top.copy"));
    EXPECT_FALSE(top->copyTo(&empty, u"top"));

    EXPECT_EQ(empty.size(), 0u);
}

TEST_F(ContentTest, CopyToATakenNameIsTrueAndLeavesAnOrphan) {
    ModelStore other;
    makeGroup(*IContainerFrontEnd::toplevel(&other, u"there"), u"taken");
    const std::uint64_t before = other.recordCount();

    EXPECT_TRUE(makeGroup(*top, u"a")->copyTo(&other, u"there.taken"));

    EXPECT_EQ(namesIn(other, u"there"), Names{u"taken"});
    EXPECT_EQ(other.recordCount(), before + 1);
}

TEST_F(ContentTest, CopyToATable) {
    top->makeTable(u"t", nullptr);

    EXPECT_TRUE(makeGroup(*top, u"a")->copyTo(&store, u"top.t.copy"));

    EXPECT_EQ(namesIn(store, u"top/t"), Names{u"copy"});
    EXPECT_EQ(record(store, u"top/t").size(), 38u);
}

TEST_F(ContentTest, CopyToBelowItselfEnds) {
    makeGroup(*makeGroup(*top, u"a"), u"b");

    EXPECT_TRUE(top->find(u"a")->copyTo(&store, u"top.a.b.copy"));

    EXPECT_EQ(namesIn(store, u"top/a/b"), Names{u"copy"});
    EXPECT_EQ(namesIn(store, u"top/a/b/copy"), Names{u"b"});
    EXPECT_EQ(namesIn(store, u"top/a/b/copy/b"), Names{});
}

TEST_F(ContentTest, CopyToOfAStaleHandleCopiesWhatIsStored) {
    const auto a = makeGroup(*top, u"a");
    const auto stale = top->find(u"a");
    a->makePrimitive(u"late", kInt32);
    a->rename(u"renamed");

    EXPECT_TRUE(stale->copyTo(&store, u"top.copy"));

    EXPECT_EQ(namesIn(store, u"top/copy"), Names{u"late"});
}

TEST_F(ContentTest, CopyAddsADirectChildThatIsSeenAtOnce) {
    makeRich(*top, u"rich");

    EXPECT_TRUE(top->copy(u"rich", u"copy", false));

    expectRich(*top->find(u"copy"));
    EXPECT_EQ(namesIn(store, u"top"), (Names{u"rich", u"copy"}));
    EXPECT_EQ(record(store, u"top/copy").at(19), 10u);
}

TEST_F(ContentTest, CopyTakesPrimitivesAndTables) {
    makeRich(*top, u"rich");

    EXPECT_TRUE(top->copy(u"rich.p", u"p2", false));
    EXPECT_TRUE(top->copy(u"rich.t", u"t2", false));
    EXPECT_TRUE(top->copy(u"rich.t.m", u"m2", false));

    EXPECT_EQ(valuesOf<std::int32_t>(*IPrimitive::to(top->findProperty(u"p2").get())), (Ints{1, 2}));
    EXPECT_EQ(record(store, u"top/p2").at(30), 6u);
    EXPECT_EQ(record(store, u"top/t2").at(26), 6u);
    EXPECT_TRUE(top->findProperty(u"t2.m"));
}

TEST_F(ContentTest, CopyToADottedDestinationIsSeenByTheParentWhenReopened) {
    const auto parent = makeGroup(*top, u"parent");
    top->makePrimitive(u"p", kInt32);

    EXPECT_TRUE(top->copy(u"p", u"parent.q", false));

    EXPECT_TRUE(top->contains(u"parent.q"));
    EXPECT_FALSE(parent->contains(u"q"));
    EXPECT_TRUE(parent->find(WideString())->contains(u"q"));
}

TEST_F(ContentTest, CopyToADottedDestinationDoesNotReloadThisHandle) {
    makeGroup(*top, u"parent");
    top->makePrimitive(u"p", kInt32);
    makeGroup(*openAnew(), u"late");

    EXPECT_TRUE(top->copy(u"p", u"parent.q", false));
    EXPECT_FALSE(top->contains(u"late"));

    EXPECT_TRUE(top->copy(u"p", u"q", false));
    EXPECT_TRUE(top->contains(u"late"));
}

TEST_F(ContentTest, CopyFromTheRootAffectsTheSourceOnly) {
    makeRich(*IContainerFrontEnd::toplevel(&store, u"other"), u"rich");
    makeGroup(*top, u"parent");

    EXPECT_FALSE(top->copy(u"other.rich", u"copy", false));
    EXPECT_TRUE(top->copy(u"other.rich", u"parent.copy", true));
    EXPECT_FALSE(top->copy(u"parent.copy", u"again", true));
    EXPECT_TRUE(top->copy(u"top.parent.copy", u"again", true));

    expectRich(*top->find(u"again"));
}

TEST_F(ContentTest, CopyIsRefusedWithoutSourceOrParent) {
    top->makePrimitive(u"p", kInt32);
    top->makeTable(u"t", nullptr);
    const auto before = contentsOf(store);

    EXPECT_FALSE(top->copy(u"missing", u"q", false));
    EXPECT_FALSE(top->copy(u"p", u"missing.q", false));
    EXPECT_FALSE(top->copy(u"p", u"t.q", false));
    EXPECT_FALSE(top->copy(u"p", u"p.q", false));
    EXPECT_FALSE(top->copy(u"", u"q", false));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ContentTest, CopyIsRefusedForATakenName) {
    top->makePrimitive(u"p", kInt32);
    makeGroup(*top, u"parent")->makePrimitive(u"q", kInt32);
    makeGroup(*openAnew(), u"late");
    const auto before = contentsOf(store);

    EXPECT_FALSE(top->copy(u"p", u"p", false));
    EXPECT_FALSE(top->copy(u"p", u"parent.q", false));
    EXPECT_FALSE(top->copy(u"p", u"late", false));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ContentTest, CopyOfAPathOnePartPastAPrimitiveCopiesThePrimitive) {
    top->makePrimitive(u"p", kInt32);

    EXPECT_TRUE(top->copy(u"p.x", u"q", false));

    EXPECT_EQ(top->findProperty(u"q")->kind(), 0u);
}

TEST_F(ContentTest, CopyIntoItselfEnds) {
    const auto a = makeGroup(*top, u"a");
    makeGroup(*a, u"b");

    EXPECT_TRUE(top->copy(u"a", u"a.copy", false));

    EXPECT_EQ(namesIn(store, u"top/a"), (Names{u"b", u"copy"}));
    EXPECT_EQ(namesIn(store, u"top/a/copy"), Names{u"b"});
}

TEST_F(ContentTest, CopyKeepsFlagsAndAMoveIsCopyAndRemove) {
    top->makePrimitive(u"p", kInt32)->property()->setFlags(1);

    EXPECT_TRUE(top->copy(u"p", u"q", false));
    EXPECT_TRUE(top->remove(u"p"));

    EXPECT_EQ(namesIn(store, u"top"), Names{u"q"});
    EXPECT_EQ(top->findProperty(u"q")->flags(), 1);
}

TEST_F(ContentTest, CopyAppendsInTheOrderEntityLocaleListChildrenDefaults) {
    makeRich(*top, u"rich");
    const auto first = static_cast<Offset>(store.size());

    top->copy(u"rich", u"copy", false);

    std::string kinds;
    for (Offset offset = first; offset < store.size(); ++offset)
        kinds += static_cast<char>('0' + RawRecord(store, offset).kind());
    EXPECT_EQ(kinds,
              "45312"
              "3153"
              "4");
}

}  // namespace
}  // namespace norvane::platform::test
