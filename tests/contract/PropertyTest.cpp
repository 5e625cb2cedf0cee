#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

class PropertyTest : public ModelTest {
  protected:
    PropertyTest() {
        const auto t = top->makeTable(u"t", nullptr);
        t->makePrimitive(u"m", kDouble, kMeter);
        t->makeTable(u"inner", nullptr);
        top->makePrimitive(u"p", kInt32);
    }
    ~PropertyTest() noexcept override = default;

    SharedPtr<IProperty> open(const char16_t* path) { return top->find(WideString())->findProperty(path); }
};

TEST_F(PropertyTest, NamePathAndStoreAreThoseOfTheRecord) {
    EXPECT_EQ(open(u"t.m")->name(), u"m");
    EXPECT_EQ(open(u"t.m")->path(), u"top.t.m");
    EXPECT_EQ(open(u"p")->path(), u"top.p");
    EXPECT_EQ(open(u"p")->store(), &store);
}

TEST_F(PropertyTest, KindTellsPrimitiveFromTable) {
    EXPECT_EQ(open(u"p")->kind(), 0u);
    EXPECT_EQ(open(u"t")->kind(), 1u);
}

TEST_F(PropertyTest, KindAsksTheStoreEachTime) {
    const auto p = open(u"p");

    overwrite(store, recordAt(store, u"top/p"), 0, 2, 1);

    EXPECT_EQ(p->kind(), 1u);
    EXPECT_EQ(IPrimitive::to(p.get()), nullptr);
    EXPECT_EQ(ITable::to(p.get()), nullptr);
}

TEST_F(PropertyTest, FacetsFollowTheKind) {
    const auto p = open(u"p");
    const auto t = open(u"t");

    EXPECT_EQ(IPrimitive::to(p.get())->property(), p.get());
    EXPECT_EQ(ITable::to(p.get()), nullptr);
    EXPECT_EQ(ITable::to(t.get())->property(), t.get());
    EXPECT_EQ(IPrimitive::to(t.get()), nullptr);
    EXPECT_EQ(IPrimitive::to(nullptr), nullptr);
    EXPECT_EQ(ITable::to(nullptr), nullptr);
}

TEST_F(PropertyTest, RenameInATable) {
    const auto m = open(u"t.m");

    EXPECT_TRUE(m->rename(u"length"));

    EXPECT_EQ(m->name(), u"m");
    EXPECT_EQ(m->path(), u"top.t.m");
    EXPECT_EQ(open(u"t.length")->name(), u"length");
    EXPECT_FALSE(open(u"t.m"));
}

TEST_F(PropertyTest, RenameInAContainer) {
    EXPECT_TRUE(open(u"p")->rename(u"q"));
    EXPECT_TRUE(open(u"t")->rename(u"u"));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"u", u"q"}));
    EXPECT_EQ(record(store, u"top/q").at(30), 16u);
    EXPECT_EQ(record(store, u"top/u").at(26), 16u);
}

TEST_F(PropertyTest, RenameKeepsTheValue) {
    write<std::int32_t>(*IPrimitive::to(open(u"p").get()), {1, 2, 3});

    open(u"p")->rename(u"renamed");

    EXPECT_EQ(valuesOf<std::int32_t>(*IPrimitive::to(open(u"renamed").get())),
              (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(PropertyTest, RenameOfAFixedPropertyIsRefused) {
    const auto m = open(u"t.m");
    m->setFlags(2);
    const auto before = contentsOf(store);

    EXPECT_FALSE(m->rename(u"x"));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(PropertyTest, RenameOfAnInheritedPropertyThatIsNotFixedGoesThrough) {
    const auto m = open(u"t.m");
    m->setFlags(4);

    EXPECT_TRUE(m->rename(u"x"));
}

TEST_F(PropertyTest, RenameToATakenOrTheSameNameIsRefused) {
    EXPECT_FALSE(open(u"p")->rename(u"t"));
    EXPECT_FALSE(open(u"p")->rename(u"p"));
    EXPECT_FALSE(open(u"t.m")->rename(u"inner"));
}

TEST_F(PropertyTest, SecondRenameThroughTheSameHandleIsRefused) {
    const auto p = open(u"p");
    p->rename(u"q");

    EXPECT_FALSE(p->rename(u"r"));

    EXPECT_EQ(namesIn(store, u"top"), (Names{u"t", u"q"}));
}

TEST_F(PropertyTest, PropertyInNoSetHasNoParentAndNoOtherName) {
    const auto p = open(u"p");
    overwrite(store, recordAt(store, u"top/p"), 1, noRecord(), 4);
    const auto orphan = open(u"p");

    EXPECT_FALSE(orphan->rename(u"q"));
    EXPECT_FALSE(orphan->parent());
    EXPECT_EQ(orphan->path(), u"p");
}

TEST_F(PropertyTest, ParentOfAMemberIsItsTable) {
    const auto parent = open(u"t.m")->parent();

    ASSERT_TRUE(parent);
    EXPECT_EQ(parent->property()->name(), u"t");
    EXPECT_EQ(record(store, u"top/t").openCount(), 1u);
    EXPECT_EQ(open(u"t.inner")->parent()->property()->name(), u"t");
}

TEST_F(PropertyTest, ParentOfAPropertyInAContainerIsNull) {
    EXPECT_FALSE(open(u"p")->parent());
    EXPECT_FALSE(open(u"t")->parent());
}

TEST_F(PropertyTest, FlagsAreSetAndClearedBitByBit) {
    const auto p = open(u"p");

    p->setFlags(1);
    p->setFlags(4);
    EXPECT_EQ(p->flags(), 5);
    p->clearFlags(1);
    EXPECT_EQ(p->flags(), 4);
    EXPECT_EQ(record(store, u"top/p").flags(), 4);
}

TEST_F(PropertyTest, FlagsAreThoseInTheStoreNow) {
    const auto p = open(u"p");

    open(u"p")->setFlags(1);

    EXPECT_EQ(p->flags(), 1);
}

TEST_F(PropertyTest, NoBitIsProtected) {
    const auto p = open(u"p");
    write<std::int32_t>(*IPrimitive::to(p.get()), {0x00410042});

    p->setFlags(0xFF);

    EXPECT_EQ(p->flags(), 0xFF);
    EXPECT_EQ(IPrimitive::to(p.get())->count(), 1u);
    EXPECT_EQ(IPrimitive::to(open(u"p").get())->count(), 0u);
    EXPECT_EQ(IPrimitive::to(open(u"p").get())->uri(), u"BA");
}

// The value has no NUL: the text ends with it.
TEST_F(PropertyTest, UriFlagOnAValueOfOddBytesGivesItsWholeUnits) {
    const auto bytes = top->makePrimitive(u"b", 1);
    write<unsigned char>(*bytes, {'x', 0, 'y'});
    bytes->property()->setFlags(8);

    EXPECT_EQ(IPrimitive::to(open(u"b").get())->uri(), u"x");
}

TEST_F(PropertyTest, HandleKeepsItsTableFromBeingRemoved) {
    auto m = open(u"t.m");

    EXPECT_FALSE(top->remove(u"t"));

    m.reset();
    EXPECT_TRUE(top->remove(u"t"));
}

TEST_F(PropertyTest, FacetSharesTheWholeHandle) {
    SharedPtr<ITable> table;
    {
        const auto t = open(u"t");
        table = SharedPtr<ITable>(t, ITable::to(t.get()));
    }

    EXPECT_EQ(table->property()->name(), u"t");
    EXPECT_EQ(record(store, u"top/t").openCount(), 1u);
    table.reset();
    EXPECT_EQ(record(store, u"top/t").openCount(), 0u);
}

}  // namespace
}  // namespace norvane::platform::test
