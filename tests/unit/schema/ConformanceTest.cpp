#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string_view>

#include "schema/Conformance.h"
#include "support/LoggingStore.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using namespace data::metadata;

class MatchesClass : public testing::Test {
  public:
    ~MatchesClass() noexcept override = default;

  protected:
    MatchesClass() {
        Builder build(store_);
        for (const char16_t* name : {u"a", u"b", u"c", u""}) build.table(0, name);
    }

    bool matches(const char16_t* types, std::u16string_view classText) {
        return Schema::matchesClass(locator_->locate(types).get(), classText);
    }

    MemoryDataStore store_;
    SharedPtr<ISchemaLocator> locator_ = ISchemaLocator::make(&store_);
};

TEST_F(MatchesClass, EveryLayoutMustBeNamedInWhateverOrder) {
    EXPECT_TRUE(matches(u"b;a", u"a;b"));
    EXPECT_TRUE(matches(u"a", u"a"));
    EXPECT_FALSE(matches(u"a;c", u"a;b"));
    EXPECT_FALSE(matches(u"a", u"b"));
}

TEST_F(MatchesClass, ClassTextMayNameMore) { EXPECT_TRUE(matches(u"b", u"a;b;c;d")); }

TEST_F(MatchesClass, NamesAreComparedExactly) {
    EXPECT_FALSE(matches(u"a", u"A"));
    EXPECT_FALSE(matches(u"a", u" a"));
    EXPECT_FALSE(matches(u"a", u"aa;ba"));
}

TEST_F(MatchesClass, EmptyPiecesCount) {
    EXPECT_TRUE(matches(u"", u"a;"));
    EXPECT_TRUE(matches(u"", u""));
    EXPECT_TRUE(matches(u"", u"a;;b"));
    EXPECT_FALSE(matches(u"", u"a;b"));
    EXPECT_FALSE(matches(u"a", u""));
}

TEST_F(MatchesClass, SchemaWithoutLayoutsIsNamedByAll) {
    Schema::SchemaImpl none;
    EXPECT_TRUE(Schema::matchesClass(&none, u"a"));
    EXPECT_TRUE(Schema::matchesClass(&none, u""));
}

TEST_F(MatchesClass, NullAndForeignSchemasAreNot) {
    ForeignSchema foreign;
    EXPECT_FALSE(Schema::matchesClass(nullptr, u"a"));
    EXPECT_FALSE(Schema::matchesClass(&foreign, u"foreign"));
}

// Types and items in one store; `type` and `item` make a set of double primitives with these names.
class MatchesStructure : public testing::Test {
  public:
    ~MatchesStructure() noexcept override = default;

  protected:
    using Names = std::initializer_list<std::u16string_view>;

    Offset fill(Offset set, Names names) {
        for (std::u16string_view name : names) build_.primitive(set, kDouble, name);
        return set;
    }
    Offset type(std::u16string_view name, Names members) { return fill(build_.table(0, name), members); }
    Offset group(Names children) { return fill(build_.container(0, u"group"), children); }
    Offset table(Names children) { return fill(build_.table(0, u"table"), children); }

    bool matches(Offset item, const char16_t* types) {
        return Schema::matchesStructure(locator_->locate(types).get(), *Metadata::openItem(&store_, item));
    }

    MemoryDataStore store_;
    Builder build_{store_};
    SharedPtr<ISchemaLocator> locator_ = ISchemaLocator::make(&store_);
};

TEST_F(MatchesStructure, MembersMustStandInOrder) {
    type(u"T", {u"x", u"y"});
    EXPECT_TRUE(matches(group({u"x", u"y"}), u"T"));
}

TEST_F(MatchesStructure, AMemberOutOfOrderIsNotFound) {
    type(u"T", {u"x", u"y"});
    EXPECT_FALSE(matches(group({u"y", u"x"}), u"T"));
}

TEST_F(MatchesStructure, OthersMayStandAnywhereBetween) {
    type(u"T", {u"x", u"y"});
    EXPECT_TRUE(matches(group({u"w", u"x", u"z", u"y", u"v"}), u"T"));
}

TEST_F(MatchesStructure, AMissingMemberIsNotFound) {
    type(u"T", {u"x", u"y"});
    EXPECT_FALSE(matches(group({u"x"}), u"T"));
    EXPECT_FALSE(matches(table({}), u"T"));
}

TEST_F(MatchesStructure, SchemaOfEmptyTypesMatchesNothing) {
    type(u"A", {});
    type(u"B", {});
    EXPECT_FALSE(matches(group({u"x"}), u"A"));
    EXPECT_FALSE(matches(group({}), u"A;B"));
    Schema::SchemaImpl none;
    EXPECT_FALSE(Schema::matchesStructure(&none, Structural::Container(&store_, build_.container(0, u"g"))));
}

TEST_F(MatchesStructure, EmptyTypeBesideAnotherAsksNothing) {
    type(u"A", {});
    type(u"B", {u"x"});
    EXPECT_TRUE(matches(group({u"x"}), u"A;B"));
    EXPECT_FALSE(matches(table({u"y"}), u"A;B"));
}

// What counts are the members, not the fields that they make.
TEST_F(MatchesStructure, TypeOfAnEmptyTableIsNotEmpty) {
    build_.table(build_.table(0, u"T"), u"part");
    const Offset item = group({u"x"});
    EXPECT_FALSE(matches(item, u"T"));

    build_.table(item, u"part");
    EXPECT_TRUE(matches(item, u"T"));
}

TEST_F(MatchesStructure, EveryTypeIsLookedForFromTheBeginning) {
    type(u"A", {u"y"});
    type(u"B", {u"x"});
    EXPECT_TRUE(matches(group({u"x", u"y"}), u"A;B"));
}

TEST_F(MatchesStructure, AllTypesMustMatch) {
    type(u"A", {u"x"});
    type(u"B", {u"z"});
    EXPECT_FALSE(matches(group({u"x", u"y"}), u"A;B"));
}

TEST_F(MatchesStructure, PrimitiveOfAnotherTypeIsPassedOver) {
    type(u"T", {u"x"});
    const Offset item = build_.container(0, u"g");
    build_.primitive(item, kScalar, u"x");
    EXPECT_FALSE(matches(item, u"T"));
}

TEST_F(MatchesStructure, UnitsSizesAndValuesDoNotMatter) {
    type(u"T", {u"x"});
    const Offset item = build_.container(0, u"g");
    const Offset number = build_.primitive(item, kDouble, u"x", 5);
    Design::Primitive(&store_, number).setUnits(0x2001);
    EXPECT_TRUE(matches(item, u"T"));
}

TEST_F(MatchesStructure, NamesAreComparedExactly) {
    type(u"T", {u"x"});
    EXPECT_FALSE(matches(group({u"X", u"xx", u""}), u"T"));
}

TEST_F(MatchesStructure, NestedTableMatchesByNameAndMembers) {
    const Offset outer = type(u"T", {u"x"});
    fill(build_.table(outer, u"nested"), {u"y"});
    const Offset item = group({u"x"});
    fill(build_.table(item, u"other"), {u"y"});
    EXPECT_FALSE(matches(item, u"T"));

    fill(build_.table(item, u"nested"), {u"w", u"y"});
    EXPECT_TRUE(matches(item, u"T"));
}

TEST_F(MatchesStructure, WrongContentOfANestedTableFailsAtOnce) {
    const Offset outer = build_.table(0, u"T");
    fill(build_.table(outer, u"nested"), {u"y"});
    const Offset item = build_.container(0, u"g");
    fill(build_.table(item, u"nested"), {u"z"});
    // Another one of that name further on is not looked at.
    const Offset twin = Design::Table(&store_, u"nested").offset();
    fill(twin, {u"y"});
    build_.listAnyway(item, twin);
    build_.primitive(item, kInt8, u"padding");

    EXPECT_FALSE(matches(item, u"T"));
}

TEST_F(MatchesStructure, TableAndPrimitiveOfOneNameAreNotTheSame) {
    const Offset outer = build_.table(0, u"T");
    build_.table(outer, u"x");
    EXPECT_FALSE(matches(group({u"x"}), u"T"));

    const Offset item = build_.container(0, u"h");
    build_.container(item, u"x");
    EXPECT_FALSE(matches(item, u"T"));
}

TEST_F(MatchesStructure, MatchedChildOfATableStaysAvailableAndOfAContainerDoesNot) {
    const Offset outer = type(u"T", {u"x"});
    build_.listAnyway(outer, Design::Primitive(&store_, kDouble, u"x").offset());
    build_.primitive(outer, kInt8, u"counted");  // so that the twin is among those counted

    EXPECT_FALSE(matches(group({u"x", u"v"}), u"T"));
    EXPECT_TRUE(matches(table({u"x", u"v"}), u"T"));
}

TEST_F(MatchesStructure, ContainerInATypeMatchesNothing) {
    const Offset outer = type(u"T", {u"x"});
    build_.container(outer, u"c");
    const Offset item = group({u"x"});
    build_.container(item, u"c");
    EXPECT_FALSE(matches(item, u"T"));
}

TEST_F(MatchesStructure, RecordOfNoKindInATypeMatchesNothing) {
    const Offset outer = type(u"T", {u"x"});
    const Offset list = Record::Offsets(&store_).offset();
    build_.primitive(outer, kDouble, u"y");
    const Offset item = group({u"x", u"y"});
    EXPECT_TRUE(matches(item, u"T"));

    // In the place of the first member.
    const Offset members = Record::Snapshot(&store_, outer)->load(field::children);
    Record::Offsets(&store_, members).setAt(0, list);
    EXPECT_FALSE(matches(item, u"T"));
}

TEST_F(MatchesStructure, RecordOfNoKindAmongTheChildrenIsPassedOver) {
    type(u"T", {u"x"});
    const Offset item = group({u"a", u"x"});
    const Offset children = Record::Snapshot(&store_, item)->load(field::children);
    build_.primitive(item, kInt8, u"b");
    Record::Offsets(&store_, children).setAt(0, Record::Offsets(&store_).offset());
    EXPECT_TRUE(matches(item, u"T"));

    Record::Offsets(&store_, children).setAt(0, IDataStore::BADOFF);
    EXPECT_TRUE(matches(item, u"T"));
}

TEST_F(MatchesStructure, PrimitiveMatchesNoTypeWithMembers) {
    type(u"T", {u"x"});
    EXPECT_FALSE(matches(build_.primitive(0, kDouble, u"p"), u"T"));
}

TEST_F(MatchesStructure, LooksAtTheRecordsAndNotAtWhatTheItemRemembers) {
    type(u"T", {u"x"});
    Structural::Container stale(&store_, build_.container(0, u"g"));
    EXPECT_FALSE(Schema::matchesStructure(locator_->locate(u"T").get(), stale));

    build_.primitive(stale.offset(), kDouble, u"x");

    EXPECT_EQ(stale.find(u"x"), IDataStore::BADOFF);
    EXPECT_TRUE(Schema::matchesStructure(locator_->locate(u"T").get(), stale));
}

TEST_F(MatchesStructure, LooksAtTheTypesMembersOfNow) {
    const Offset outer = type(u"T", {u"x"});
    const Offset item = group({u"x"});
    EXPECT_TRUE(matches(item, u"T"));

    build_.primitive(outer, kDouble, u"late");

    EXPECT_FALSE(matches(item, u"T"));
}

TEST_F(MatchesStructure, NullAndForeignSchemasMatchNothing) {
    ForeignSchema foreign;
    const Structural::Container item(&store_, group({u"x"}));
    EXPECT_FALSE(Schema::matchesStructure(nullptr, item));
    EXPECT_FALSE(Schema::matchesStructure(&foreign, item));
}

TEST(MatchesStructureOfStores, ChangesNothingAndTakesNoGuard) {
    LoggingStore types, items;
    Builder buildType(types), buildItem(items);
    const Offset type = buildType.table(0, u"T");
    buildType.primitive(buildType.table(type, u"nested"), kDouble, u"x");
    const Offset item = buildItem.container(0, u"g");
    buildItem.primitive(buildItem.table(item, u"nested"), kDouble, u"x");
    const auto locator = ISchemaLocator::make(&types);
    const auto schema = locator->locate(u"T");
    const Structural::Container open(&items, item);
    types.takeCalls();
    items.takeCalls();

    EXPECT_TRUE(Schema::matchesStructure(schema.get(), open));

    for (const LoggingStore* store : {&types, &items}) {
        EXPECT_TRUE(store->changes().empty());
        EXPECT_EQ(store->count("lock"), 0u);
    }
}

// Each list is read once, and each member once; a child is read to be counted and to be compared.
TEST(MatchesStructureOfStores, TakesTimeInProportionToTheChildren) {
    constexpr std::uint32_t kChildren = 1000;
    LoggingStore store;
    Builder build(store);
    const Offset type = build.table(0, u"T");
    const Offset item = build.container(0, u"g");
    for (const Offset parent : {type, item}) {
        const auto set = Metadata::openSet(&store, parent);
        for (std::uint32_t i = 0; i < kChildren; ++i) {
            const std::string digits = std::to_string(i);
            const Design::Primitive child(&store, kDouble, std::u16string(digits.begin(), digits.end()));
            set->addChild(child.offset());
        }
    }
    const auto locator = ISchemaLocator::make(&store);
    const auto schema = locator->locate(u"T");
    const Structural::Container open(&store, item);
    store.takeCalls();

    EXPECT_TRUE(Schema::matchesStructure(schema.get(), open));

    EXPECT_LT(store.count("read"), 6 * kChildren);
}

}  // namespace
}  // namespace norvane::platform::test
