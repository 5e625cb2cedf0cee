// What a handle sees of changes that another handle makes: a handle answers lookups among its direct children
// from what it read when it was opened, and paths beyond them, positions and cursors from the store.
#include <string>

#include "contract/Model.h"
#include "support/ForwardingStore.h"

namespace norvane::platform::test {
namespace {

// Two handles on one container with a group "old" and a primitive "p"; `stale` was opened before any change.
class StaleContainerTest : public ModelTest {
  protected:
    StaleContainerTest() {
        makeGroup(*top, u"old");
        top->makePrimitive(u"p", kInt32);
        stale = top->find(WideString());
    }
    ~StaleContainerTest() noexcept override = default;

    SharedPtr<IContainer> stale;
};

TEST_F(StaleContainerTest, AddedChildIsNotFound) {
    makeGroup(*top, u"new");

    EXPECT_FALSE(stale->find(u"new"));
    EXPECT_FALSE(stale->contains(u"new"));
    EXPECT_FALSE(stale->remove(u"new"));
    EXPECT_TRUE(stale->find(WideString())->find(u"new"));
}

TEST_F(StaleContainerTest, AddedChildIsSeenByFilters) {
    makeGroup(*top, u"new");
    top->makePrimitive(u"q", kInt32);

    EXPECT_EQ(namesOf(*stale->containers()), (Names{u"old", u"new"}));
    EXPECT_EQ(namesOf(*stale->properties()), (Names{u"p", u"q"}));
}

TEST_F(StaleContainerTest, AddedChildOfAChildIsFoundThroughThePath) {
    makeGroup(*top->find(u"old"), u"inner");

    EXPECT_TRUE(stale->contains(u"old.inner"));
    EXPECT_TRUE(stale->find(u"old.inner"));
}

TEST_F(StaleContainerTest, HandleOfAnEmptyContainerStaysEmpty) {
    const auto empty = stale->find(u"old");

    makeGroup(*top->find(u"old"), u"inner");

    EXPECT_TRUE(empty->isEmpty());
    EXPECT_FALSE(empty->find(WideString())->isEmpty());
}

// The list that another handle made meanwhile is taken over: nothing it holds is lost.
TEST_F(StaleContainerTest, SecondHandleAddsToTheListThatTheFirstMade) {
    const auto first = top->find(u"old");
    const auto second = top->find(u"old");

    makeGroup(*first, u"a");
    makeGroup(*second, u"b");

    EXPECT_EQ(namesIn(store, u"top/old"), (Names{u"a", u"b"}));
    EXPECT_FALSE(first->contains(u"b"));
    EXPECT_FALSE(second->contains(u"a"));
}

TEST_F(StaleContainerTest, SecondChildOfOneNameCanBeMade) {
    makeGroup(*top, u"twin");

    EXPECT_TRUE(stale->makePrimitive(u"twin", kInt32));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"old", u"p", u"twin", u"twin"}));
    EXPECT_TRUE(top->find(WideString())->find(u"twin"));
    EXPECT_EQ(stale->findProperty(u"twin")->kind(), 0u);
}

TEST_F(StaleContainerTest, FirstOfTwoTwinsIsTheOneRemoved) {
    makeGroup(*top, u"twin");
    stale->makePrimitive(u"twin", kInt32);
    const auto fresh = top->find(WideString());

    EXPECT_TRUE(fresh->remove(u"twin"));
    EXPECT_FALSE(fresh->contains(u"twin"));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"old", u"p", u"twin"}));
    EXPECT_EQ(record(store, u"top/twin").kind(), 1);
}

TEST_F(StaleContainerTest, RemovalOfTheParentTakesBothTwins) {
    auto parent = makeGroup(*top, u"parent");
    auto second = top->find(u"parent");
    const std::uint64_t before = store.recordCount();
    makeGroup(*parent, u"twin");
    makeGroup(*second, u"twin");
    EXPECT_EQ(store.recordCount(), before + 3);
    parent.reset();
    second.reset();

    EXPECT_TRUE(top->remove(u"parent"));

    EXPECT_EQ(store.recordCount(), before - 1);
}

TEST_F(StaleContainerTest, RemovedChildIsStillContainedButCannotBeOpened) {
    top->remove(u"old");
    top->remove(u"p");

    EXPECT_TRUE(stale->contains(u"old"));
    EXPECT_FALSE(stale->find(u"old"));
    EXPECT_FALSE(stale->findProperty(u"p"));
    EXPECT_FALSE(stale->isEmpty());
    EXPECT_FALSE(stale->containers()->value());
}

TEST_F(StaleContainerTest, RemovedChildStillHoldsItsName) {
    top->remove(u"old");

    EXPECT_FALSE(makeGroup(*stale, u"old"));
    EXPECT_TRUE(makeGroup(*stale->find(WideString()), u"old"));
}

TEST_F(StaleContainerTest, RemovalOfWhatIsGoneSucceedsAndLeavesTheListAlone) {
    top->remove(u"old");
    const Offset list = record(store, u"top").children();
    const auto before = RawRecord(store, list).bytes();

    EXPECT_TRUE(stale->remove(u"old"));

    EXPECT_EQ(RawRecord(store, list).bytes(), before);
    EXPECT_FALSE(stale->contains(u"old"));
}

// A removed record's offset is not given to another one.
TEST_F(StaleContainerTest, StaleOffsetNeverHitsAStranger) {
    top->remove(u"p");
    for (int i = 0; i < 20; ++i) top->makePrimitive(std::u16string(1, char16_t(u'A' + i)).c_str(), kInt32);

    EXPECT_FALSE(stale->findProperty(u"p"));
    EXPECT_TRUE(stale->remove(u"p"));
    EXPECT_EQ(childrenOf(store, recordAt(store, u"top")).size(), 21u);
}

TEST_F(StaleContainerTest, RenamedChildIsFoundUnderItsOldName) {
    top->find(u"old")->rename(u"new");

    EXPECT_FALSE(stale->find(u"new"));
    EXPECT_EQ(stale->find(u"old")->name(), u"new");
    EXPECT_EQ(namesOf(*stale->containers()), Names{u"new"});
}

TEST_F(StaleContainerTest, ParentKnowsARenamedChildByItsOldNameToo) {
    top->find(u"old")->rename(u"new");

    EXPECT_TRUE(top->contains(u"old"));
    EXPECT_FALSE(top->contains(u"new"));
    EXPECT_TRUE(top->remove(u"old"));
    EXPECT_EQ(namesIn(store, u"top"), Names{u"p"});
}

TEST_F(StaleContainerTest, RenamedAncestorShowsInThePath) {
    const auto inner = makeGroup(*top->find(u"old"), u"inner");

    top->find(u"old")->rename(u"new");

    EXPECT_EQ(inner->path(), u"top.new.inner");
}

TEST_F(StaleContainerTest, ClassTextIsThatOfTheOpening) {
    ModelStore types;
    auto type = IContainerFrontEnd::toplevel(&types, u"lib")->makeTable(u"T", nullptr);
    type->makePrimitive(u"m", kInt32, 0);
    const auto locator = ISchemaLocator::make(&types);
    type.reset();

    const auto made = top->makeContainer(kGroup, u"g", locator->locate(u"lib.T").get());

    EXPECT_EQ(made->className(), u"lib.T");
    overwrite(store, recordAt(store, u"top/g"), 23, 0, 4);
    EXPECT_EQ(made->className(), u"lib.T");
    EXPECT_TRUE(top->find(u"g")->className().isEmpty());
}

TEST_F(StaleContainerTest, CopyWithoutADotReloadsTheHandle) {
    makeGroup(*top, u"new");
    top->remove(u"p");

    EXPECT_TRUE(stale->copy(u"old", u"copy", false));

    EXPECT_TRUE(stale->contains(u"new"));
    EXPECT_TRUE(stale->contains(u"copy"));
    EXPECT_FALSE(stale->contains(u"p"));
}

TEST_F(StaleContainerTest, AddAndMergeTestNamesAgainstTheOldIndex) {
    const auto from = IContainerFrontEnd::toplevel(&store, u"from");
    makeGroup(*from, u"new");
    makeGroup(*top, u"new");

    EXPECT_TRUE(stale->add(from->find(u"new")));
    EXPECT_FALSE(stale->add(from->find(u"new")));
    EXPECT_TRUE(stale->find(WideString())->merge(from));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"old", u"p", u"new", u"new"}));
}

// The copy follows what the item's handle knows of its entity, not its record.
TEST_F(StaleContainerTest, AddedItemComesWithWhatItsHandleKnows) {
    const auto item = stale->find(u"old");
    auto other = top->find(u"old");
    makeGroup(*other, u"inner");
    other->setLocalised(u"en", u"text");
    other.reset();
    const auto to = IContainerFrontEnd::toplevel(&store, u"to");

    EXPECT_TRUE(to->add(item));

    EXPECT_EQ(record(store, u"to/old").children(), noRecord());
    EXPECT_EQ(record(store, u"to/old").locale(), noRecord());
}

// The same of wide containers, in a store that shares an index of their children among handles, and in one
// that does not: nobody may tell which it is.
class WideStalenessTest : public testing::TestWithParam<Extensions> {
  public:
    ~WideStalenessTest() noexcept override = default;

  protected:
    static constexpr int kWidth = 100;

    WideStalenessTest() {
        for (int i = 0; i < kWidth; ++i) makeGroup(*top, nameOf(i).c_str());
        for (int i = 0; i < 3; ++i) EXPECT_TRUE(IContainerFrontEnd::find(store, u"top.child7"));
        stale = top->find(WideString());
    }

    static bool makeGroup(IContainer& container, const char16_t* name) {
        return bool(container.makeContainer(kGroup, name, nullptr));
    }
    static std::u16string nameOf(int i) {
        std::u16string name = u"child";
        for (const char each : std::to_string(i)) name.push_back(static_cast<char16_t>(each));
        return name;
    }
    std::size_t listed() const { return namesOf(*stale->containers()).size(); }
    SharedPtr<IContainer> fresh() const { return stale->find(WideString()); }
    bool leads(const char16_t* path) { return bool(IContainerFrontEnd::find(store, path)); }

    ModelStore memory;
    ForwardingStore plain{memory, Extensions::off};
    IDataStore* store = GetParam() == Extensions::on ? static_cast<IDataStore*>(&memory) : &plain;
    SharedPtr<IContainer> top = IContainerFrontEnd::toplevel(store, u"top");
    SharedPtr<IContainer> stale;
};

INSTANTIATE_TEST_SUITE_P(WithAndWithoutSharedIndex, WideStalenessTest,
                         testing::Values(Extensions::on, Extensions::off),
                         [](const auto& test) { return test.param == Extensions::on ? "On" : "Off"; });

TEST_P(WideStalenessTest, AddedChildIsKnownToThePathAndToNewHandlesOnly) {
    makeGroup(*top, u"new");

    EXPECT_FALSE(stale->contains(u"new"));
    EXPECT_FALSE(stale->remove(u"new"));
    EXPECT_TRUE(top->contains(u"new"));
    EXPECT_TRUE(fresh()->contains(u"new"));
    EXPECT_TRUE(leads(u"top.new"));
    EXPECT_EQ(listed(), kWidth + 1u);
}

TEST_P(WideStalenessTest, RemovedChildIsStillContainedInTheOldHandle) {
    EXPECT_TRUE(top->remove(u"child7"));

    EXPECT_TRUE(stale->contains(u"child7"));
    EXPECT_FALSE(stale->find(u"child7"));
    EXPECT_FALSE(makeGroup(*stale, u"child7"));
    EXPECT_FALSE(top->contains(u"child7"));
    EXPECT_FALSE(fresh()->contains(u"child7"));
    EXPECT_FALSE(leads(u"top.child7"));
    EXPECT_EQ(listed(), kWidth - 1u);
}

TEST_P(WideStalenessTest, RenamedChildIsFoundUnderItsOldNameInTheOldHandle) {
    EXPECT_TRUE(top->find(u"child7")->rename(u"new"));

    EXPECT_EQ(stale->find(u"child7")->name(), u"new");
    EXPECT_FALSE(stale->contains(u"new"));
    EXPECT_TRUE(top->contains(u"child7"));
    EXPECT_TRUE(fresh()->contains(u"new"));
    EXPECT_FALSE(fresh()->contains(u"child7"));
    EXPECT_TRUE(leads(u"top.new"));
    EXPECT_FALSE(leads(u"top.child7"));
}

TEST_P(WideStalenessTest, NameThatBecameFreeCanBeTakenThroughANewHandle) {
    EXPECT_TRUE(top->find(u"child7")->rename(u"new"));

    EXPECT_TRUE(makeGroup(*fresh(), u"child7"));

    EXPECT_EQ(stale->find(u"child7")->name(), u"new");
    EXPECT_EQ(fresh()->find(u"child7")->name(), u"child7");
    EXPECT_EQ(listed(), kWidth + 1u);
}

TEST_P(WideStalenessTest, CopyWithoutADotReloadsTheHandle) {
    makeGroup(*top, u"new");
    EXPECT_TRUE(top->remove(u"child7"));

    EXPECT_TRUE(stale->copy(u"child8", u"copy", false));

    EXPECT_TRUE(stale->contains(u"new"));
    EXPECT_TRUE(stale->contains(u"copy"));
    EXPECT_FALSE(stale->contains(u"child7"));
    EXPECT_FALSE(top->contains(u"copy"));
}

TEST_P(WideStalenessTest, FirstOfTwinsIsTheOneFound) {
    makeGroup(*top, u"twin");
    EXPECT_TRUE(stale->makePrimitive(u"twin", kInt32));

    EXPECT_TRUE(leads(u"top.twin"));
    EXPECT_TRUE(fresh()->find(u"twin"));
    EXPECT_TRUE(stale->findProperty(u"twin"));
    EXPECT_TRUE(fresh()->remove(u"twin"));

    EXPECT_FALSE(fresh()->find(u"twin"));
    EXPECT_TRUE(fresh()->findProperty(u"twin"));
}

TEST_P(WideStalenessTest, HandleThatLostAllItsChildrenIsEmptyAndTheOldOneIsNot) {
    for (int i = 0; i < kWidth; ++i) EXPECT_TRUE(top->remove(nameOf(i).c_str()));

    EXPECT_TRUE(top->isEmpty());
    EXPECT_TRUE(fresh()->isEmpty());
    EXPECT_FALSE(stale->isEmpty());
    EXPECT_TRUE(stale->contains(u"child99"));
    EXPECT_EQ(listed(), 0u);
}

TEST_P(WideStalenessTest, TableCountsAsItDidWhenItWasOpened) {
    const auto made = top->makeTable(u"t", nullptr);
    for (int i = 0; i < kWidth; ++i) made->makePrimitive(nameOf(i).c_str(), kInt32, 0);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(top->findProperty(u"t.child7"));
    const auto first = top->findProperty(u"t");
    const auto second = top->findProperty(u"t");
    ITable* old = ITable::to(second.get());

    made->remove(u"child7");
    made->makePrimitive(u"new", kInt32, 0);
    made->makePrimitive(u"newer", kInt32, 0);

    EXPECT_EQ(old->count(), kWidth + 0u);
    EXPECT_FALSE(old->find(u"new"));
    EXPECT_FALSE(old->find(u"child7"));
    EXPECT_EQ(old->at(kWidth)->name(), u"newer");
    EXPECT_EQ(ITable::to(top->findProperty(u"t").get())->count(), kWidth + 1u);
}

// Two handles on one table with members "m" and "n".
class StaleTableTest : public ModelTest {
  protected:
    StaleTableTest() {
        t->makePrimitive(u"m", kInt32, 0);
        t->makePrimitive(u"n", kInt32, 0);
        const auto property = top->findProperty(u"t");
        stale = SharedPtr<ITable>(property, ITable::to(property.get()));
    }
    ~StaleTableTest() noexcept override = default;

    SharedPtr<ITable> t = top->makeTable(u"t", nullptr);
    SharedPtr<ITable> stale;
};

TEST_F(StaleTableTest, AddedMemberIsNotFoundNorCountedButStandsAtItsPosition) {
    t->makePrimitive(u"new", kInt32, 0);

    EXPECT_FALSE(stale->find(u"new"));
    EXPECT_EQ(stale->count(), 2u);
    EXPECT_EQ(stale->at(2)->name(), u"new");
    EXPECT_EQ(namesOf(*stale->properties()), (Names{u"m", u"n", u"new"}));
}

TEST_F(StaleTableTest, RemovedMemberIsCountedButPositionsHaveClosedUp) {
    t->remove(u"m");

    EXPECT_EQ(stale->count(), 2u);
    EXPECT_FALSE(stale->find(u"m"));
    EXPECT_EQ(stale->at(0)->name(), u"n");
    EXPECT_FALSE(stale->at(1));
    EXPECT_FALSE(stale->makePrimitive(u"m", kInt32, 0));
}

TEST_F(StaleTableTest, RenamedMemberIsFoundUnderItsOldName) {
    t->find(u"m")->rename(u"new");

    EXPECT_EQ(stale->find(u"m")->name(), u"new");
    EXPECT_FALSE(stale->find(u"new"));
    EXPECT_EQ(stale->at(0)->name(), u"new");
}

TEST_F(StaleTableTest, TwinsCountOnce) {
    t->makePrimitive(u"twin", kInt32, 0);
    stale->makePrimitive(u"twin", kDouble, 0);
    const auto property = top->findProperty(u"t");
    ITable* fresh = ITable::to(property.get());

    EXPECT_EQ(fresh->count(), 3u);
    EXPECT_EQ(IPrimitive::to(fresh->find(u"twin").get())->dataType(), kInt32);
    EXPECT_EQ(IPrimitive::to(fresh->at(3).get())->dataType(), kDouble);
    EXPECT_EQ(namesOf(*fresh->properties()), (Names{u"m", u"n", u"twin"}));
}

TEST_F(StaleTableTest, DefaultOfAnotherHandleIsNotKnown) {
    t->addDefault(kMeter, kDouble);

    EXPECT_EQ(stale->defaultType(0x2000), 0u);
    EXPECT_EQ(stale->defaultCount(), 0u);
}

TEST_F(StaleTableTest, DirectoryThatAnotherHandleMadeIsTakenOver) {
    t->addDefault(kMeter, kDouble);

    EXPECT_TRUE(stale->addDefault(0x5019, 16));

    EXPECT_EQ(RawRecord(store, record(store, u"top/t").at(22)).values(),
              (std::vector<Offset>{kMeter, kDouble, 0x5019, 16}));
    EXPECT_EQ(stale->defaultCount(), 2u);
    EXPECT_EQ(t->defaultCount(), 1u);
}

// With a directory known at opening, the next place comes from the handle's own count.
TEST_F(StaleTableTest, HandleThatKnewTheDirectoryCountsOnItsOwn) {
    t->addDefault(kMeter, kDouble);
    const auto property = top->findProperty(u"t");
    ITable* second = ITable::to(property.get());
    t->addDefault(0x3001, 12);

    EXPECT_TRUE(second->addDefault(0x5019, 16));

    EXPECT_EQ(RawRecord(store, record(store, u"top/t").at(22)).values(),
              (std::vector<Offset>{kMeter, kDouble, 0x5019, 16}));
    EXPECT_EQ(t->defaultType(0x3000), 16u);
}

TEST_F(StaleTableTest, ValuesOfAKnownPairComeFromTheStore) {
    t->addDefault(kMeter, kDouble);
    const auto property = top->findProperty(u"t");
    t->addDefault(0x200e, 16);

    EXPECT_EQ(ITable::to(property.get())->defaultType(0x2000), 16u);
    EXPECT_EQ(ITable::to(property.get())->defaultUnit(0x2000), 0x200eu);
}

// Two handles on one primitive of three elements.
class StalePrimitiveTest : public ModelTest {
  protected:
    StalePrimitiveTest() {
        write<std::int32_t>(*p, {1, 2, 3});
        const auto property = top->findProperty(u"p");
        stale = SharedPtr<IPrimitive>(property, IPrimitive::to(property.get()));
    }
    ~StalePrimitiveTest() noexcept override = default;

    SharedPtr<IPrimitive> p = top->makePrimitive(u"p", kInt32);
    SharedPtr<IPrimitive> stale;
};

TEST_F(StalePrimitiveTest, BytesComeFromTheStore) {
    write<std::int32_t>(*p, {7, 8, 9});

    EXPECT_EQ(valuesOf<std::int32_t>(*stale), (std::vector<std::int32_t>{7, 8, 9}));
}

TEST_F(StalePrimitiveTest, CountIsThatOfTheOpening) {
    p->resize(5);

    EXPECT_EQ(stale->count(), 3u);
    EXPECT_EQ(stale->valueBytes(), 12u);
    std::int32_t target[5];
    EXPECT_FALSE(stale->readValues(target, 0, 5));
    EXPECT_TRUE(stale->readValues(target, 0, 3));
}

TEST_F(StalePrimitiveTest, ReadBehindTheEndOfAShortenedValueIsFalse) {
    p->resize(1);
    std::int32_t target[3] = {5, 5, 5};

    EXPECT_FALSE(stale->readValues(target, 0, 3));
    EXPECT_FALSE(stale->readValues(target, 2, 1));
    EXPECT_EQ(target[0], 5);
    EXPECT_TRUE(stale->readValues(target, 0, 1));
}

TEST_F(StalePrimitiveTest, WriteBehindTheEndOfAShortenedValueLengthensIt) {
    p->resize(1);

    EXPECT_TRUE(write<std::int32_t>(*stale, {9}, 2));

    EXPECT_EQ(stale->count(), 3u);
    EXPECT_EQ(valuesOf<std::int32_t>(*stale), (std::vector<std::int32_t>{0, 0, 9}));
    EXPECT_EQ(record(store, u"top/p").at(38), 12u);
}

// A host that does not know that the value is empty gives the elements that it means to write, and no more.
TEST_F(StalePrimitiveTest, WriteInsideAValueThatIsEmptyByNowTakesTheSourceFromItsBeginning) {
    p->resize(0);

    EXPECT_TRUE(write<std::int32_t>(*stale, {9}, 2));

    EXPECT_EQ(valuesOf<std::int32_t>(*stale), (std::vector<std::int32_t>{0, 0, 9}));
}

TEST_F(StalePrimitiveTest, WriteThatGrowsKeepsAtMostWhatTheHandleKnows) {
    write<std::int32_t>(*p, {1, 2, 3, 4, 5, 6});

    EXPECT_TRUE(write<std::int32_t>(*stale, {9}, 4));

    EXPECT_EQ(valuesOf<std::int32_t>(*stale), (std::vector<std::int32_t>{1, 2, 3, 0, 9}));
}

TEST_F(StalePrimitiveTest, UriSetThroughAnotherHandleIsNotSeen) {
    p->setUri(u"file:x");

    EXPECT_EQ(stale->uri().value(), nullptr);
    EXPECT_EQ(stale->count(), 3u);
    EXPECT_TRUE(IPrimitive::to(top->findProperty(u"p").get())->uri() == u"file:x");
}

TEST_F(StalePrimitiveTest, NameAndTextsAreThoseOfTheOpening) {
    p->setLocale(u"de");
    p->property()->rename(u"q");

    EXPECT_EQ(stale->locale().value(), nullptr);
    EXPECT_EQ(stale->property()->name(), u"p");
    EXPECT_EQ(valuesOf<std::int32_t>(*stale), (std::vector<std::int32_t>{1, 2, 3}));
}

}  // namespace
}  // namespace norvane::platform::test
