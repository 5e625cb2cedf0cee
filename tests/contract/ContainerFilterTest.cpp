#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

// Children p, c, q: two properties with a container between them.
class ContainerFilterTest : public ModelTest {
  protected:
    ContainerFilterTest() {
        top->makePrimitive(u"p", kDouble);
        makeGroup(*top, u"c");
        top->makeTable(u"q", nullptr);
    }
    ~ContainerFilterTest() noexcept override = default;
};

TEST_F(ContainerFilterTest, PropertyFilterStepsOverContainersBothWays) {
    const auto filter = top->properties();

    EXPECT_EQ(filter->value()->name(), u"p");
    EXPECT_TRUE(filter->next());
    EXPECT_EQ(filter->value()->name(), u"q");
    EXPECT_FALSE(filter->next());
    EXPECT_FALSE(filter->value());
    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"q");
    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"p");
    EXPECT_FALSE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"p");
}

TEST_F(ContainerFilterTest, NextPastTheEndStaysFalse) {
    const auto filter = top->containers();

    EXPECT_FALSE(filter->next());
    EXPECT_FALSE(filter->next());
    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"c");
}

TEST_F(ContainerFilterTest, PreviousFromTheFirstStaysThoughOthersStandBefore) {
    const auto filter = top->containers();

    EXPECT_EQ(filter->value()->name(), u"c");
    EXPECT_FALSE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"c");
}

TEST_F(ContainerFilterTest, ValueDoesNotMoveAndGivesANewHandleEachTime) {
    const auto filter = top->properties();

    const auto first = filter->value();
    const auto second = filter->value();

    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(second->name(), u"p");
    EXPECT_EQ(record(store, u"top/p").openCount(), 2u);
}

TEST_F(ContainerFilterTest, ValuesAreOfTheirKind) {
    const auto filter = top->properties();

    EXPECT_NE(IPrimitive::to(filter->value().get()), nullptr);
    filter->next();
    EXPECT_NE(ITable::to(filter->value().get()), nullptr);
    EXPECT_NE(IGroup::to(top->containers()->value().get()), nullptr);
}

TEST_F(ContainerFilterTest, WithoutAnyChildThereIsNothingToStepOver) {
    const auto empty = top->find(u"c");

    const auto properties = empty->properties();
    const auto containers = empty->containers();

    EXPECT_FALSE(properties->value());
    EXPECT_FALSE(properties->next());
    EXPECT_FALSE(properties->previous());
    EXPECT_FALSE(containers->value());
    EXPECT_FALSE(containers->next());
    EXPECT_FALSE(containers->previous());
}

TEST_F(ContainerFilterTest, WithChildrenOfTheOtherSortOnlyThereIsNothingToStepOver) {
    const auto c = top->find(u"c");
    makeGroup(*c, u"x");
    makeGroup(*c, u"y");

    const auto filter = c->properties();

    EXPECT_FALSE(filter->value());
    EXPECT_FALSE(filter->next());
    EXPECT_FALSE(filter->previous());
}

TEST_F(ContainerFilterTest, AfterRemovalOfTheLastChildTheListIsEmpty) {
    const auto c = top->find(u"c");
    makeGroup(*c, u"x");
    c->remove(u"x");

    EXPECT_FALSE(c->containers()->value());
    EXPECT_FALSE(c->containers()->next());
}

TEST_F(ContainerFilterTest, OrderIsThatOfAddition) {
    const auto c = top->find(u"c");
    for (const char16_t* name : {u"z", u"a", u"m", u"b"}) c->makePrimitive(name, kDouble);
    c->remove(u"a");
    c->makePrimitive(u"a", kDouble);

    EXPECT_EQ(namesOf(*c->properties()), (Names{u"z", u"m", u"b", u"a"}));
}

TEST_F(ContainerFilterTest, StaleHandleStillMakesAFilterOfTheStoredList) {
    const auto stale = top->find(u"c");
    top->find(u"c")->makePrimitive(u"late", kDouble);

    EXPECT_TRUE(stale->isEmpty());
    EXPECT_EQ(namesOf(*stale->properties()), Names{u"late"});
}

TEST_F(ContainerFilterTest, ChildrenAddedLaterAreNotSeen) {
    const auto filter = top->properties();

    top->makePrimitive(u"late", kDouble);

    EXPECT_EQ(namesOf(*filter), (Names{u"p", u"q"}));
}

TEST_F(ContainerFilterTest, ChildrenRemovedLaterArePassedOver) {
    const auto filter = top->properties();

    top->remove(u"q");

    EXPECT_FALSE(filter->next());
    EXPECT_FALSE(filter->value());
    EXPECT_TRUE(filter->previous());
    EXPECT_EQ(filter->value()->name(), u"p");
}

TEST_F(ContainerFilterTest, RemovedChildUnderTheCursorIsNull) {
    const auto filter = top->properties();

    top->remove(u"p");

    EXPECT_FALSE(filter->value());
    EXPECT_TRUE(filter->next());
    EXPECT_EQ(filter->value()->name(), u"q");
}

// Offsets are never used again, so that what is added after a removal cannot be taken for what was there.
TEST_F(ContainerFilterTest, ChildMadeAfterARemovalIsNotTakenForTheRemovedOne) {
    const auto filter = top->properties();

    top->remove(u"p");
    top->makePrimitive(u"stranger", kDouble);

    EXPECT_FALSE(filter->value());
}

TEST_F(ContainerFilterTest, FilterOutlivesTheHandleThatMadeIt) {
    const auto filter = top->properties();

    top.reset();

    EXPECT_EQ(namesOf(*filter), (Names{u"p", u"q"}));
}

TEST_F(ContainerFilterTest, FilterKeepsNothingOpen) {
    auto c = top->find(u"c");
    makeGroup(*c, u"x");
    const auto properties = c->properties();
    const auto containers = c->containers();
    c.reset();

    EXPECT_EQ(record(store, u"top/c").openCount(), 0u);
    EXPECT_TRUE(top->remove(u"c"));
    EXPECT_FALSE(containers->value());
}

TEST_F(ContainerFilterTest, ContainerOfAnUnknownKindIsAMemberWithoutValue) {
    const Offset c = recordAt(store, u"top/c");
    overwrite(store, c, 18, 77, 1);
    const auto filter = top->containers();

    EXPECT_FALSE(filter->value());

    EXPECT_EQ(RawRecord(store, c).openCount(), 1u);
    EXPECT_FALSE(filter->next());
    EXPECT_TRUE(filter->previous());
}

TEST_F(ContainerFilterTest, ListedRecordsThatAreNoEntitiesArePassedOver) {
    const Offset list = record(store, u"top").children();
    const Offset parts[] = {list, recordAt(store, u"top/p"), 0, noRecord(), 9999, recordAt(store, u"top/q")};
    std::vector<unsigned char> bytes{3};
    for (Offset each : parts)
        for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<unsigned char>(each >> 8 * i));
    store.write(list, bytes.data(), static_cast<std::uint32_t>(bytes.size()), true);

    const auto filter = top->properties();

    EXPECT_EQ(filter->value()->name(), u"p");
    EXPECT_TRUE(filter->next());
    EXPECT_EQ(filter->value()->name(), u"q");
    EXPECT_FALSE(filter->next());
}

}  // namespace
}  // namespace norvane::platform::test
