#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

class TableTest : public ModelTest {
  protected:
    ~TableTest() noexcept override = default;

    SharedPtr<ITable> openAnew() {
        const auto property = top->findProperty(u"t");
        return {property, ITable::to(property.get())};
    }

    SharedPtr<ITable> t = top->makeTable(u"t", nullptr);
};

TEST_F(TableTest, NewTableIsEmpty) {
    EXPECT_EQ(t->count(), 0u);
    EXPECT_EQ(t->defaultCount(), 0u);
    EXPECT_EQ(t->className().value(), nullptr);
    EXPECT_FALSE(t->at(0));
    EXPECT_EQ(t->property()->name(), u"t");
}

TEST_F(TableTest, NewTableRecordHasExactlyTheseBytes) {
    t.reset();

    const auto parent = static_cast<unsigned char>(recordAt(store, u"top"));
    EXPECT_EQ(record(store, u"top/t").bytes(),
              bytesWith({2, parent, 0, 0, 0, 0, 0, 0, 0,   kNone, 0, kNone, 0, 0, 0, 0, kNone,  //
                         4, 0,      0, 0, 0, 0, 0, 0, 't', 0,     0, 0}));
}

TEST_F(TableTest, FindWalksPathsAndRemoveTakesNames) {
    t->makeTable(u"a", nullptr)->makePrimitive(u"b", kDouble, 0);

    EXPECT_EQ(t->find(u"a.b")->path(), u"top.t.a.b");
    EXPECT_FALSE(t->remove(u"a.b"));
    EXPECT_TRUE(t->find(u"a.b"));
    EXPECT_FALSE(t->find(u"b"));
    EXPECT_FALSE(t->find(u""));
}

TEST_F(TableTest, FindOnePartPastAPrimitiveGivesThePrimitive) {
    t->makePrimitive(u"p", kDouble, 0);

    EXPECT_EQ(t->find(u"p.x")->name(), u"p");
    EXPECT_EQ(t->find(u"p.")->name(), u"p");
    EXPECT_FALSE(t->find(u"p.x.y"));
    EXPECT_FALSE(t->makePrimitive(u"p.x", kDouble, 0));
    EXPECT_EQ(t->count(), 1u);
}

TEST_F(TableTest, SameNameTwiceIsRefusedAndTheFirstStays) {
    write<double>(*t->makePrimitive(u"p", kDouble, kMeter), {1.5});
    const auto before = contentsOf(store);

    EXPECT_FALSE(t->makePrimitive(u"p", kInt32, 0));
    EXPECT_FALSE(t->makeTable(u"p", nullptr));

    EXPECT_EQ(contentsOf(store), before);
    EXPECT_EQ(t->count(), 1u);
}

TEST_F(TableTest, NameThatLeadsSomewhereAsAPathIsRefused) {
    t->makeTable(u"inner", nullptr)->makePrimitive(u"m", kDouble, 0);
    const auto before = contentsOf(store);

    EXPECT_FALSE(t->makePrimitive(u"inner.m", kDouble, 0));
    EXPECT_FALSE(t->makeTable(u"inner.m", nullptr));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(TableTest, NameWithADotIsMadeAndReachedByPositionOnly) {
    EXPECT_TRUE(t->makePrimitive(u"x.y", kDouble, 0));

    EXPECT_FALSE(t->find(u"x.y"));
    EXPECT_EQ(t->at(0)->name(), u"x.y");
    EXPECT_EQ(namesOf(*t->properties()), Names{u"x.y"});
}

// The test for a taken name walks the path and misses; the child's literal twin is refused when it is listed.
TEST_F(TableTest, SecondNameWithADotGivesAHandleThatIsInNoTable) {
    t->makePrimitive(u"x.y", kDouble, 0);

    const auto orphan = t->makePrimitive(u"x.y", kInt32, 0);

    ASSERT_TRUE(orphan);
    EXPECT_EQ(orphan->property()->name(), u"x.y");
    EXPECT_FALSE(orphan->property()->parent());
    EXPECT_EQ(t->count(), 1u);
    EXPECT_EQ(IPrimitive::to(t->at(0).get())->dataType(), kDouble);
}

TEST_F(TableTest, MadePrimitiveHasTypeAndUnit) {
    const auto p = t->makePrimitive(u"p", kDouble, kMeter);

    EXPECT_EQ(p->dataType(), kDouble);
    EXPECT_EQ(p->units(), kMeter);
    EXPECT_EQ(p->property()->parent()->property()->name(), u"t");
    EXPECT_EQ(record(store, u"top/t/p").openCount(), 1u);
}

TEST_F(TableTest, CountAndAtFollowTheOrderOfAddition) {
    t->makePrimitive(u"z", kDouble, 0);
    t->makeTable(u"a", nullptr);

    EXPECT_EQ(t->count(), 2u);
    EXPECT_EQ(t->at(0)->name(), u"z");
    EXPECT_EQ(t->at(1)->name(), u"a");
    EXPECT_EQ(t->at(1)->kind(), 1u);
    EXPECT_FALSE(t->at(2));
    EXPECT_FALSE(t->at(0xFFFFFFFFu));
}

TEST_F(TableTest, RemoveDeletesAMember) {
    t->makePrimitive(u"p", kDouble, 0);
    t->makePrimitive(u"q", kDouble, 0);

    EXPECT_TRUE(t->remove(u"p"));

    EXPECT_EQ(t->count(), 1u);
    EXPECT_EQ(t->at(0)->name(), u"q");
    EXPECT_FALSE(t->remove(u"p"));
}

TEST_F(TableTest, RemoveIsRefusedForOpenAndForFixedMembers) {
    auto p = t->makePrimitive(u"p", kDouble, 0);
    EXPECT_FALSE(t->remove(u"p"));

    p->property()->setFlags(2);
    p.reset();
    EXPECT_FALSE(t->remove(u"p"));

    t->find(u"p")->clearFlags(2);
    EXPECT_TRUE(t->remove(u"p"));
}

TEST_F(TableTest, MemberMadeUnderAnInheritedTableLeavesItInherited) {
    t->property()->setFlags(6);

    auto p = t->makePrimitive(u"p", kInt32, 0);
    EXPECT_EQ(record(store, u"top/t").flags(), 6);

    write<std::int32_t>(*p, {1});
    EXPECT_EQ(record(store, u"top/t").flags(), 2);
}

TEST_F(TableTest, ContainerInATableIsCountedButIsNoMember) {
    t->makePrimitive(u"p", kDouble, 0);
    makeGroup(*top, u"g")->copyTo(&store, u"top.t.g");
    const auto table = openAnew();

    EXPECT_EQ(table->count(), 2u);
    EXPECT_FALSE(table->at(1));
    EXPECT_FALSE(table->find(u"g"));
    EXPECT_EQ(namesOf(*table->properties()), Names{u"p"});
}

class TableFilterTest : public TableTest {
  protected:
    TableFilterTest() {
        t->makePrimitive(u"p", kDouble, 0);
        makeGroup(*top, u"g")->copyTo(&store, u"top.t.g");
        t = openAnew();
        t->makeTable(u"q", nullptr);
    }
    ~TableFilterTest() noexcept override = default;
};

TEST_F(TableFilterTest, StepsBothWaysOverWhatIsNoProperty) {
    const auto filter = t->properties();

    EXPECT_EQ(filter->value()->name(), u"p");
    EXPECT_FALSE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"p");
    EXPECT_TRUE(filter->next());
    EXPECT_EQ(filter->value()->name(), u"q");
    EXPECT_FALSE(filter->next());
    EXPECT_FALSE(filter->value());
    EXPECT_FALSE(filter->next());
    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"q");
    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"p");
}

TEST_F(TableFilterTest, PreviousStaysOnTheFirstPropertyBehindOthers) {
    t->remove(u"p");
    const auto filter = openAnew()->properties();

    EXPECT_EQ(filter->value()->name(), u"q");
    EXPECT_FALSE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"q");
}

TEST_F(TableFilterTest, EmptyTableHasNothingToStepOver) {
    const auto filter = top->makeTable(u"empty", nullptr)->properties();

    EXPECT_FALSE(filter->value());
    EXPECT_FALSE(filter->next());
    EXPECT_FALSE(filter->previous());
}

TEST_F(TableFilterTest, FilterKeepsItsTableOpen) {
    auto filter = t->properties();
    t.reset();

    EXPECT_EQ(record(store, u"top/t").openCount(), 1u);
    EXPECT_FALSE(top->remove(u"t"));
    EXPECT_EQ(filter->value()->name(), u"p");

    filter.reset();
    EXPECT_EQ(record(store, u"top/t").openCount(), 0u);
    EXPECT_TRUE(top->remove(u"t"));
}

TEST_F(TableFilterTest, MembersAddedLaterAreNotReached) {
    const auto filter = t->properties();

    t->makePrimitive(u"late", kDouble, 0);

    EXPECT_EQ(namesOf(*filter), (Names{u"p", u"q"}));
}

TEST_F(TableFilterTest, EndIsThatOfTheBeginning) {
    const auto filter = t->properties();
    t->makePrimitive(u"late", kDouble, 0);
    EXPECT_TRUE(filter->next());

    EXPECT_FALSE(filter->next());

    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"q");
}

// The end is fixed while positions follow the store.
TEST_F(TableFilterTest, PositionsFollowTheListInTheStore) {
    const auto filter = t->properties();

    t->remove(u"p");
    t->makePrimitive(u"late", kDouble, 0);

    EXPECT_FALSE(filter->value());
    EXPECT_TRUE(filter->next());
    EXPECT_EQ(filter->value()->name(), u"q");
    EXPECT_TRUE(filter->next());
    EXPECT_EQ(filter->value()->name(), u"late");
    EXPECT_FALSE(filter->next());
}

TEST_F(TableFilterTest, MembersRemovedLaterLeavePlacesWithoutValue) {
    const auto filter = t->properties();

    t->remove(u"q");

    EXPECT_FALSE(filter->next());
    EXPECT_FALSE(filter->value());
    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"p");
}

class DefaultsTest : public TableTest {
  protected:
    ~DefaultsTest() noexcept override = default;

    static constexpr std::uint32_t kLength = 0x2000;
    SharedPtr<ITable> inner = t->makeTable(u"inner", nullptr);
    SharedPtr<ITable> innermost = inner->makeTable(u"innermost", nullptr);
};

TEST_F(DefaultsTest, NothingIsDeclaredAtFirst) {
    EXPECT_EQ(t->defaultType(kLength), 0u);
    EXPECT_EQ(t->defaultUnit(kLength), 0u);
    EXPECT_EQ(t->defaultDimension(0), 0u);
    EXPECT_FALSE(t->makeByDimension(u"p", kLength));
    EXPECT_EQ(t->count(), 1u);
}

TEST_F(DefaultsTest, UnitZeroAndTypeZeroAreRefused) {
    const auto before = contentsOf(store);

    EXPECT_FALSE(t->addDefault(0, 17));
    EXPECT_FALSE(t->addDefault(kMeter, 0));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(DefaultsTest, DefaultIsKeptByDimension) {
    EXPECT_TRUE(t->addDefault(0x200e, 17));

    EXPECT_EQ(t->defaultCount(), 1u);
    EXPECT_EQ(t->defaultDimension(0), kLength);
    EXPECT_EQ(t->defaultType(kLength), 17u);
    EXPECT_EQ(t->defaultUnit(kLength), 0x200eu);
}

TEST_F(DefaultsTest, UnitIdIsNoDimension) {
    t->addDefault(kMeter, 17);

    EXPECT_EQ(t->defaultType(kMeter), 0u);
    EXPECT_EQ(t->defaultUnit(kMeter), 0u);
    EXPECT_FALSE(t->makeByDimension(u"p", kMeter));
}

TEST_F(DefaultsTest, SecondDefaultOfADimensionReplacesUnitAndType) {
    t->addDefault(kMeter, 17);
    t->addDefault(0x200e, 16);

    EXPECT_EQ(t->defaultCount(), 1u);
    EXPECT_EQ(t->defaultType(kLength), 16u);
    EXPECT_EQ(t->defaultUnit(kLength), 0x200eu);
    EXPECT_EQ(RawRecord(store, record(store, u"top/t").at(22)).values(), (std::vector<Offset>{0x200e, 16}));
}

TEST_F(DefaultsTest, DirectoryKeepsTheOrderOfDeclarationDimensionsAscend) {
    t->addDefault(0x5019, 16);
    t->addDefault(kMeter, 17);

    EXPECT_EQ(RawRecord(store, record(store, u"top/t").at(22)).values(),
              (std::vector<Offset>{0x5019, 16, kMeter, 17}));
    EXPECT_EQ(t->defaultDimension(0), kLength);
    EXPECT_EQ(t->defaultDimension(1), 0x5000u);
    EXPECT_EQ(t->defaultDimension(2), 0u);
}

TEST_F(DefaultsTest, DimensionsAscendAsSignedNumbers) {
    t->addDefault(0x1001, 17);
    t->addDefault(0xFFFFF001u, 17);

    EXPECT_EQ(t->defaultDimension(0), 0xFFFFF000u);
    EXPECT_EQ(t->defaultDimension(1), 0x1000u);
    EXPECT_EQ(t->defaultType(0xFFFFF000u), 17u);
}

TEST_F(DefaultsTest, DimensionZeroIsStoredButNeverRead) {
    EXPECT_TRUE(t->addDefault(0x12, 17));

    EXPECT_EQ(t->defaultCount(), 1u);
    EXPECT_EQ(t->defaultType(0), 0u);
    EXPECT_EQ(t->defaultUnit(0), 0u);
}

TEST_F(DefaultsTest, MakeByDimensionTakesTypeAndUnit) {
    t->addDefault(0x200e, 17);

    const auto p = t->makeByDimension(u"p", kLength);

    ASSERT_TRUE(p);
    EXPECT_EQ(p->dataType(), 17u);
    EXPECT_EQ(p->units(), 0x200eu);
    EXPECT_FALSE(t->makeByDimension(u"p", kLength));
    EXPECT_FALSE(t->makeByDimension(u"q", 0x5000));
}

TEST_F(DefaultsTest, DefaultsOfTheParentServeOneLevelDown) {
    t->addDefault(0x200e, 17);

    EXPECT_EQ(inner->defaultType(kLength), 17u);
    EXPECT_EQ(inner->defaultUnit(kLength), 0x200eu);
    EXPECT_TRUE(inner->makeByDimension(u"p", kLength));
    EXPECT_EQ(innermost->defaultType(kLength), 0u);
    EXPECT_FALSE(innermost->makeByDimension(u"p", kLength));
}

TEST_F(DefaultsTest, OwnDefaultComesBeforeTheParents) {
    t->addDefault(kMeter, 16);
    inner->addDefault(0x200e, 17);

    EXPECT_EQ(inner->defaultType(kLength), 17u);
    EXPECT_EQ(inner->defaultUnit(kLength), 0x200eu);
    EXPECT_EQ(t->defaultType(kLength), 16u);
}

TEST_F(DefaultsTest, CountAndDimensionsAreOfOwnDefaultsOnly) {
    t->addDefault(kMeter, 17);

    EXPECT_EQ(inner->defaultCount(), 0u);
    EXPECT_EQ(inner->defaultDimension(0), 0u);
}

TEST_F(DefaultsTest, DefaultsGoWithTheirTable) {
    t->makePrimitive(u"x", kDouble, 0);
    inner->addDefault(kMeter, 17);
    const std::uint64_t before = store.recordCount();
    innermost.reset();
    inner.reset();

    EXPECT_TRUE(t->remove(u"inner"));

    EXPECT_EQ(store.recordCount(), before - 4);
}

TEST_F(DefaultsTest, PairThatTheDirectoryLacksReadsAsZero) {
    t->addDefault(kMeter, 17);
    const unsigned char cut[] = {3, 1, 0x20, 0, 0};
    store.write(record(store, u"top/t").at(22), cut, sizeof cut, true);

    EXPECT_EQ(t->defaultType(kLength), 0u);
    EXPECT_EQ(t->defaultUnit(kLength), kMeter);
}

}  // namespace
}  // namespace norvane::platform::test
