#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

class ConformsTest : public ModelTest {
  protected:
    ~ConformsTest() noexcept override = default;

    // A type with primitives of these names, in order, all of type int32.
    SharedPtr<ITable> makeType(const char16_t* name, const Names& members) {
        auto type = library->makeTable(name, nullptr);
        for (const std::u16string& member : members) type->makePrimitive(member.c_str(), kInt32, 0);
        return type;
    }

    SharedPtr<IContainer> makeWith(const char16_t* name, const Names& members) {
        auto made = makeGroup(*top, name);
        for (const std::u16string& member : members) made->makePrimitive(member.c_str(), kInt32);
        return made;
    }

    SharedPtr<ITable> makeTableWith(const char16_t* name, const Names& members) {
        auto made = top->makeTable(name, nullptr);
        for (const std::u16string& member : members) made->makePrimitive(member.c_str(), kInt32, 0);
        return made;
    }

    SharedPtr<ISchema> locate(const char16_t* names) { return locator->locate(names); }

    ModelStore types;
    SharedPtr<IContainer> library = IContainerFrontEnd::toplevel(&types, u"lib");
    SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&types);
};

TEST_F(ConformsTest, MembersOfTheClassAreCopiedInAsFixedAndInherited) {
    makeType(u"Wall", {u"x", u"y"});

    const auto wall = top->makeContainer(kNode, u"wall", locate(u"lib.Wall").get());

    EXPECT_EQ(wall->className(), u"lib.Wall");
    EXPECT_EQ(namesOf(*wall->properties()), (Names{u"x", u"y"}));
    EXPECT_EQ(wall->findProperty(u"x")->flags(), 6);
    EXPECT_FALSE(wall->remove(u"x"));
    EXPECT_FALSE(wall->findProperty(u"x")->rename(u"z"));
    EXPECT_FALSE(wall->isEmpty());
}

TEST_F(ConformsTest, MadeTableOfAClassHasItsMembers) {
    makeType(u"Wall", {u"x"})->makeTable(u"inner", nullptr)->makePrimitive(u"y", kInt32, 0);

    const auto table = top->makeTable(u"t", locate(u"lib.Wall").get());

    EXPECT_EQ(table->className(), u"lib.Wall");
    EXPECT_EQ(table->find(u"inner")->flags(), 6);
    EXPECT_EQ(table->find(u"inner.y")->flags(), 6);
    EXPECT_FALSE(table->remove(u"x"));
    const auto nested = table->makeTable(u"own", locate(u"lib.Wall").get());
    EXPECT_EQ(nested->className(), u"lib.Wall");
    EXPECT_EQ(nested->count(), 2u);
}

TEST_F(ConformsTest, ClassOfAMadeContainerIsTakenIntoAnUnknownKindToo) {
    makeType(u"Wall", {u"x"});

    EXPECT_FALSE(top->makeContainer(9, u"odd", locate(u"lib.Wall").get()));

    EXPECT_EQ(namesIn(store, u"top/odd"), Names{u"x"});
    EXPECT_EQ(record(store, u"top/odd").openCount(), 0u);
}

TEST_F(ConformsTest, TwoClassesAreNamedInOrderAndTheFirstMemberWins) {
    makeType(u"A", {u"x"});
    const auto b = makeType(u"B", {u"y"});
    b->makePrimitive(u"x", kDouble, 0);

    const auto made = top->makeContainer(kGroup, u"g", locate(u"lib.A;lib.B").get());

    EXPECT_EQ(made->className(), u"lib.A;lib.B");
    EXPECT_EQ(namesOf(*made->properties()), (Names{u"x", u"y"}));
    EXPECT_EQ(IPrimitive::to(made->findProperty(u"x").get())->dataType(), kInt32);
}

TEST_F(ConformsTest, ClassTextNeedsToNameEveryLayoutInAnyOrder) {
    for (const char16_t* name : {u"A", u"B", u"C"}) makeType(name, {name});
    const auto made = top->makeContainer(kGroup, u"g", locate(u"lib.A;lib.B").get());

    EXPECT_TRUE(made->conforms(locate(u"lib.B;lib.A").get(), true));
    EXPECT_TRUE(made->conforms(locate(u"lib.B").get(), true));
    EXPECT_FALSE(made->conforms(locate(u"lib.A;lib.C").get(), true));
    EXPECT_TRUE(top->conforms(u"g", locate(u"lib.A").get(), true));
    EXPECT_FALSE(top->conforms(u"g", locate(u"lib.C").get(), true));
}

TEST_F(ConformsTest, ClassNamesAreComparedExactly) {
    makeType(u"A", {u"x"});
    makeType(u"a", {u"nothing"});
    const auto made = top->makeContainer(kGroup, u"g", locate(u"lib.A").get());

    EXPECT_FALSE(made->conforms(locate(u"lib.a").get(), true));
}

TEST_F(ConformsTest, FailedClassTestFallsThroughToTheMembers) {
    makeType(u"A", {u"x", u"y"});
    makeType(u"B", {u"y"});
    const auto made = top->makeContainer(kGroup, u"g", locate(u"lib.A").get());

    EXPECT_TRUE(made->conforms(locate(u"lib.B").get(), false));
    EXPECT_FALSE(made->conforms(locate(u"lib.B").get(), true));
}

// The class test did not fail, it did not run.
TEST_F(ConformsTest, WithoutClassTextTheMembersDecideEvenIfTheClassAloneShould) {
    makeType(u"A", {u"x"});

    EXPECT_TRUE(makeWith(u"g", {u"x"})->conforms(locate(u"lib.A").get(), true));
    EXPECT_TRUE(top->conforms(u"g", locate(u"lib.A").get(), true));
    EXPECT_FALSE(makeWith(u"h", {u"y"})->conforms(locate(u"lib.A").get(), true));
}

TEST_F(ConformsTest, MembersAreAnOrderedSubsequence) {
    makeType(u"A", {u"x", u"y"});
    const auto schema = locate(u"lib.A");

    EXPECT_FALSE(makeWith(u"yx", {u"y", u"x"})->conforms(schema.get(), false));
    EXPECT_TRUE(makeWith(u"wxzy", {u"w", u"x", u"z", u"y"})->conforms(schema.get(), false));
    EXPECT_FALSE(makeWith(u"x", {u"x"})->conforms(schema.get(), false));
}

TEST_F(ConformsTest, ContainersAmongTheChildrenArePassedOver) {
    makeType(u"A", {u"x", u"y"});
    const auto made = makeWith(u"g", {u"x"});
    makeGroup(*made, u"y");
    made->makePrimitive(u"z", kInt32);

    EXPECT_FALSE(made->conforms(locate(u"lib.A").get(), false));
    makeGroup(*makeWith(u"h", {}), u"c")->parent()->makePrimitive(u"x", kInt32);
    top->find(u"h")->makePrimitive(u"y", kInt32);
    EXPECT_TRUE(top->find(u"h")->conforms(locate(u"lib.A").get(), false));
}

TEST_F(ConformsTest, TypeOfAPrimitiveCountsUnitAndValueDoNot) {
    makeType(u"A", {})->makePrimitive(u"x", kDouble, kMeter);
    const auto schema = locate(u"lib.A");

    EXPECT_FALSE(makeWith(u"g", {u"x"})->conforms(schema.get(), false));
    const auto table = top->makeTable(u"t", nullptr);
    write<double>(*table->makePrimitive(u"x", kDouble, 0x2009), {1, 2});
    EXPECT_TRUE(table->conforms(schema.get()));
}

TEST_F(ConformsTest, SchemaWithoutMembersMatchesNothingByStructure) {
    makeType(u"Blank", {});
    const auto made = top->makeContainer(kGroup, u"g", locate(u"lib.Blank").get());

    EXPECT_FALSE(makeWith(u"h", {u"x"})->conforms(locate(u"lib.Blank").get(), false));
    EXPECT_TRUE(made->conforms(locate(u"lib.Blank").get(), true));
}

TEST_F(ConformsTest, NestedTableIsComparedInTurn) {
    makeType(u"A", {u"x"})->makeTable(u"t", nullptr)->makePrimitive(u"m", kInt32, 0);
    const auto schema = locate(u"lib.A");
    const auto good = makeWith(u"good", {u"x"});
    good->makeTable(u"t", nullptr)->makePrimitive(u"m", kInt32, 0);

    EXPECT_TRUE(good->conforms(schema.get(), false));
    EXPECT_FALSE(makeWith(u"bad", {u"x"})->conforms(schema.get(), false));
    const auto wrong = makeWith(u"wrong", {u"x"});
    wrong->makeTable(u"t", nullptr)->makePrimitive(u"other", kInt32, 0);
    EXPECT_FALSE(wrong->conforms(schema.get(), false));
}

// A container moves on behind a match; a table leaves the match available. Two handles that do not see each
// other's members make a type that asks twice for one.
TEST_F(ConformsTest, MatchedChildOfATableServesTheNextMemberToo) {
    const auto type = makeType(u"A", {});
    const auto stale = library->findProperty(u"A");
    type->makePrimitive(u"x", kInt32, 0);
    ITable::to(stale.get())->makePrimitive(u"x", kInt32, 0);
    type->makePrimitive(u"uncounted", kInt32, 0);

    EXPECT_TRUE(makeTableWith(u"t", {u"x"})->conforms(locate(u"lib.A").get()));
    EXPECT_FALSE(makeWith(u"g", {u"x"})->conforms(locate(u"lib.A").get(), false));
}

TEST_F(ConformsTest, TableAlwaysFallsThroughToItsMembers) {
    makeType(u"A", {u"x", u"y"});
    makeType(u"B", {u"y"});
    const auto table = top->makeTable(u"t", locate(u"lib.A").get());

    EXPECT_TRUE(table->conforms(locate(u"lib.A").get()));
    EXPECT_TRUE(table->conforms(locate(u"lib.B").get()));
    EXPECT_FALSE(top->conforms(u"t", locate(u"lib.B").get(), true));
    EXPECT_TRUE(top->conforms(u"t", locate(u"lib.B").get(), false));
}

TEST_F(ConformsTest, PathToNothingOrToAPrimitiveIsFalse) {
    makeType(u"A", {u"x"});
    top->makePrimitive(u"x", kInt32);

    EXPECT_FALSE(top->conforms(u"missing", locate(u"lib.A").get(), false));
    EXPECT_FALSE(top->conforms(u"x", locate(u"lib.A").get(), false));
}

TEST_F(ConformsTest, MembersAreLookedAtAsStored) {
    makeType(u"A", {u"x"});
    const auto stale = makeWith(u"g", {});
    top->find(u"g")->makePrimitive(u"x", kInt32);

    EXPECT_TRUE(stale->isEmpty());
    EXPECT_TRUE(stale->conforms(locate(u"lib.A").get(), false));
}

TEST_F(ConformsTest, ClassTextIsThatOfTheOpening) {
    makeType(u"A", {});
    const auto schema = locate(u"lib.A");
    const auto stale = top->makeContainer(kGroup, u"g", schema.get());

    overwrite(store, recordAt(store, u"top/g"), 23, 0, 4);

    EXPECT_TRUE(stale->conforms(schema.get(), true));
    EXPECT_FALSE(top->find(u"g")->conforms(schema.get(), true));
}

TEST_F(ConformsTest, NothingConformsToNoSchema) {
    const auto table = makeTableWith(u"t", {u"x"});

    EXPECT_FALSE(top->conforms(nullptr, false));
    EXPECT_FALSE(top->conforms(u"t", nullptr, false));
    EXPECT_FALSE(table->conforms(nullptr));
}

TEST_F(ConformsTest, TestsLeaveNoRecordChanged) {
    makeType(u"A", {u"x"})->makeTable(u"t", nullptr)->makePrimitive(u"m", kInt32, 0);
    const auto schema = locate(u"lib.A");
    const auto made = top->makeContainer(kGroup, u"g", schema.get());
    const auto before = contentsOf(store);
    const auto beforeTypes = contentsOf(types);

    made->conforms(schema.get(), false);
    top->conforms(u"g", schema.get(), false);

    EXPECT_EQ(contentsOf(store), before);
    EXPECT_EQ(contentsOf(types), beforeTypes);
}

}  // namespace
}  // namespace norvane::platform::test
