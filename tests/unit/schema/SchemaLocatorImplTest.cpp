#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "schema/SchemaLocatorImpl.h"
#include "support/LoggingStore.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using data::metadata::kInt32;
using testing::ElementsAre;
using testing::IsEmpty;

const auto type = [](const SharedPtr<ISchemaLocator>& locator, const char16_t* names) {
    return locator->locate(names);
};

TEST(SchemaLocatorImpl, NullNamesGiveNull) {
    MemoryDataStore store;
    Builder(store).table(0, u"");
    const auto locator = ISchemaLocator::make(&store);

    const auto schema = locator->locate(WideString());

    EXPECT_EQ(schema, nullptr);
}

TEST(SchemaLocatorImpl, EmptyTextGivesNullWhenNoTableHasTheEmptyName) {
    MemoryDataStore store;
    Builder build(store);
    build.container(0, u"");
    build.table(0, u"T");
    const auto locator = ISchemaLocator::make(&store);

    EXPECT_EQ(type(locator, u""), nullptr);
}

TEST(SchemaLocatorImpl, EmptyTextFindsATableWithTheEmptyName) {
    MemoryDataStore store;
    Builder(store).table(0, u"");
    const auto locator = ISchemaLocator::make(&store);

    const auto schema = type(locator, u"");

    EXPECT_THAT(layoutNames(schema), ElementsAre(u""));
}

TEST(SchemaLocatorImpl, OfTwoNamesTheOneThatExistsMakesTheSchema) {
    MemoryDataStore store;
    Builder(store).table(0, u"Second");
    const auto locator = ISchemaLocator::make(&store);

    const auto schema = type(locator, u"First;Second");

    EXPECT_THAT(layoutNames(schema), ElementsAre(u"Second"));
    EXPECT_EQ(schema->name(), u"Second");
    EXPECT_EQ(schema->layout(), layoutsOf(schema).front());
}

TEST(SchemaLocatorImpl, LayoutsStandInTheOrderOfTheNames) {
    MemoryDataStore store;
    Builder build(store);
    build.table(0, u"A");
    build.table(0, u"B");
    const auto locator = ISchemaLocator::make(&store);

    EXPECT_THAT(layoutNames(type(locator, u"B;A;B")), ElementsAre(u"B", u"A", u"B"));
}

TEST(SchemaLocatorImpl, ANameGivenTwiceYieldsItsLayoutTwice) {
    MemoryDataStore store;
    Builder(store).table(0, u"A");
    const auto locator = ISchemaLocator::make(&store);

    const auto layouts = layoutsOf(type(locator, u"A;A"));

    ASSERT_EQ(layouts.size(), 2u);
    EXPECT_EQ(layouts[0], layouts[1]);
}

TEST(SchemaLocatorImpl, EmptyPiecesAreNamesLikeOthers) {
    MemoryDataStore store;
    Builder build(store);
    build.table(0, u"a");
    build.table(0, u"");
    build.table(0, u"b");
    const auto locator = ISchemaLocator::make(&store);

    EXPECT_THAT(layoutNames(type(locator, u"a;;b")), ElementsAre(u"a", u"", u"b"));
    EXPECT_THAT(layoutNames(type(locator, u"a;")), ElementsAre(u"a", u""));
    EXPECT_THAT(layoutNames(type(locator, u";")), ElementsAre(u"", u""));
}

TEST(SchemaLocatorImpl, PiecesAreNotTrimmed) {
    MemoryDataStore store;
    Builder(store).table(0, u"a");
    const auto locator = ISchemaLocator::make(&store);

    EXPECT_EQ(type(locator, u" a"), nullptr);
    EXPECT_EQ(type(locator, u"A"), nullptr);
}

TEST(SchemaLocatorImpl, PathToAPrimitiveOrContainerDoesNotMatch) {
    MemoryDataStore store;
    Builder build(store);
    build.container(0, u"group");
    build.primitive(0, kInt32, u"number");
    const auto locator = ISchemaLocator::make(&store);

    EXPECT_EQ(type(locator, u"group"), nullptr);
    EXPECT_EQ(type(locator, u"number"), nullptr);
    EXPECT_EQ(type(locator, u"number.x"), nullptr);
}

// In whatever order the stores are asked.
TEST(SchemaLocatorImpl, StoreWhereThePathIsNoTableDoesNotStopTheSearch) {
    MemoryDataStore group, number, table;
    Builder(group).container(0, u"T");
    Builder(number).primitive(0, kInt32, u"T");
    Builder(table).table(0, u"T");
    for (auto order : {std::array{&group, &number, &table}, std::array{&table, &group, &number},
                       std::array{&number, &table, &group}}) {
        const auto locator = ISchemaLocator::make(nullptr);
        for (MemoryDataStore* store : order) locator->addStore(store);

        const auto schema = type(locator, u"T");

        ASSERT_THAT(layoutNames(schema), ElementsAre(u"T"));
        EXPECT_EQ(layoutsOf(schema).front()->table().store(), &table);
    }
}

TEST(SchemaLocatorImpl, DottedNamesResolveThroughTablesAndContainers) {
    MemoryDataStore store;
    Builder build(store);
    const Offset library = build.container(0, u"library");
    const Offset walls = build.table(library, u"walls");
    const Offset thick = build.table(walls, u"thick");
    const auto locator = ISchemaLocator::make(&store);

    const auto schema = type(locator, u"library.walls.thick");

    ASSERT_THAT(layoutNames(schema), ElementsAre(u"library.walls.thick"));
    EXPECT_EQ(layoutsOf(schema).front()->table().offset(), thick);
    EXPECT_EQ(layoutsOf(schema).front()->table().name(), u"thick");
}

TEST(SchemaLocatorImpl, SecondLocateGivesTheSameLayoutInANewSchema) {
    MemoryDataStore store;
    Builder(store).table(0, u"T");
    const auto locator = ISchemaLocator::make(&store);
    const auto first = type(locator, u"T");

    const auto second = type(locator, u"T");

    EXPECT_NE(first, second);
    EXPECT_EQ(first->layout(), second->layout());
}

TEST(SchemaLocatorImpl, AfterRemoveStoreANameIsSearchedInTheOthers) {
    MemoryDataStore first, second;
    Builder(first).table(0, u"T");
    Builder(second).table(0, u"Other");
    const auto locator = ISchemaLocator::make(&first);
    type(locator, u"T");
    locator->addStore(&second);
    Builder(second).table(0, u"T");

    EXPECT_TRUE(locator->removeStore(&first));

    const auto schema = type(locator, u"T");
    ASSERT_NE(schema, nullptr);
    EXPECT_EQ(layoutsOf(schema).front()->table().store(), &second);
}

TEST(SchemaLocatorImpl, AfterRemoveStoreANameThatNoOtherHasIsNotFound) {
    MemoryDataStore first, second;
    Builder(first).table(0, u"T");
    Builder(second).table(0, u"Other");
    const auto locator = ISchemaLocator::make(&first);
    locator->addStore(&second);
    type(locator, u"T");

    locator->removeStore(&first);

    EXPECT_EQ(type(locator, u"T"), nullptr);
    EXPECT_NE(type(locator, u"Other"), nullptr);
}

TEST(SchemaLocatorImpl, RemoveStoreKeepsTheLayoutsOfOtherStores) {
    MemoryDataStore first, second;
    Builder(first).table(0, u"T");
    Builder(second).table(0, u"Other");
    const auto locator = ISchemaLocator::make(&first);
    locator->addStore(&second);
    IStructLayout* kept = type(locator, u"T;Other") ? type(locator, u"Other")->layout() : nullptr;

    locator->removeStore(&first);

    EXPECT_EQ(type(locator, u"Other")->layout(), kept);
}

TEST(SchemaLocatorImpl, RemoveStoreRefreshesATypeThatHasChanged) {
    MemoryDataStore store;
    Builder build(store);
    const Offset table = build.table(0, u"T");
    const auto locator = ISchemaLocator::make(&store);
    type(locator, u"T");
    build.primitive(table, kInt32, u"late");
    EXPECT_EQ(type(locator, u"T")->layout()->fieldCount(), 0u);

    locator->removeStore(&store);
    locator->addStore(&store);

    EXPECT_EQ(type(locator, u"T")->layout()->fieldCount(), 1u);
}

TEST(SchemaLocatorImpl, AfterClearStoresACachedNameIsFoundAndAnUncachedOneIsNot) {
    MemoryDataStore store;
    Builder build(store);
    build.table(0, u"Cached");
    build.table(0, u"Uncached");
    const auto locator = ISchemaLocator::make(&store);
    const auto before = type(locator, u"Cached");

    locator->clearStores();

    ASSERT_NE(type(locator, u"Cached"), nullptr);
    EXPECT_EQ(type(locator, u"Cached")->layout(), before->layout());
    EXPECT_EQ(type(locator, u"Uncached"), nullptr);
    EXPECT_FALSE(locator->removeStore(&store));
}

TEST(SchemaLocatorImpl, RemoveStoreOfAnUnknownStoreGivesFalseAndKeepsTheCache) {
    MemoryDataStore store, unknown;
    Builder(store).table(0, u"T");
    Builder(unknown).table(0, u"T");
    const auto locator = ISchemaLocator::make(&store);
    const auto before = type(locator, u"T");

    EXPECT_FALSE(locator->removeStore(&unknown));

    EXPECT_EQ(type(locator, u"T")->layout(), before->layout());
}

TEST(SchemaLocatorImpl, AStoreAddedTwiceIsThereOnce) {
    MemoryDataStore store;
    Builder(store).table(0, u"T");
    const auto locator = ISchemaLocator::make(&store);
    locator->addStore(&store);

    EXPECT_TRUE(locator->removeStore(&store));
    EXPECT_FALSE(locator->removeStore(&store));
    EXPECT_EQ(type(locator, u"T"), nullptr);
}

TEST(SchemaLocatorImpl, NullStoresAreIgnored) {
    const auto locator = ISchemaLocator::make(nullptr);

    locator->addStore(nullptr);

    EXPECT_FALSE(locator->removeStore(nullptr));
    EXPECT_EQ(type(locator, u"T"), nullptr);
}

TEST(SchemaLocatorImpl, EmptyStoreIsSkippedWithoutBeingOpened) {
    LoggingStore store(Extensions::on);
    const auto locator = ISchemaLocator::make(&store);
    store.takeCalls();

    const auto schema = type(locator, u"T");

    EXPECT_EQ(schema, nullptr);
    EXPECT_THAT(store.takeCalls(), ElementsAre(StoreCall{"size", 0, 0, false, {}}));
}

TEST(SchemaLocatorImpl, TableAddedAfterAFailedLocateIsFoundByTheNext) {
    MemoryDataStore store;
    Builder build(store);
    const auto locator = ISchemaLocator::make(&store);
    EXPECT_EQ(type(locator, u"T"), nullptr);
    const Offset group = build.container(0, u"g");
    EXPECT_EQ(type(locator, u"g.T"), nullptr);

    build.table(0, u"T");
    build.table(group, u"T");

    EXPECT_THAT(layoutNames(type(locator, u"T;g.T")), ElementsAre(u"T", u"g.T"));
}

TEST(SchemaLocatorImpl, OnceFoundANameKeepsItsLayoutWhateverOtherStoresHold) {
    MemoryDataStore first, second;
    Builder(first).table(0, u"T");
    const auto locator = ISchemaLocator::make(&first);
    const auto before = type(locator, u"T");
    Builder(second).table(0, u"T");
    locator->addStore(&second);

    EXPECT_EQ(type(locator, u"T")->layout(), before->layout());
    locator->removeStore(&second);
    EXPECT_EQ(type(locator, u"T")->layout(), before->layout());
}

// A document whose element stood alone makes record 0 something else than a root.
TEST(SchemaLocatorImpl, Record0MayBeAContainerOrATable) {
    for (const bool isTable : {false, true}) {
        MemoryDataStore store;
        if (isTable)
            Design::Table(&store, u"top");
        else
            Structural::Container(&store, 1, u"top");
        Builder(store).table(0, u"T");
        const auto locator = ISchemaLocator::make(&store);

        EXPECT_THAT(layoutNames(type(locator, u"T")), ElementsAre(u"T"));
        EXPECT_EQ(type(locator, u"top"), nullptr);
    }
}

TEST(SchemaLocatorImpl, OtherRecords0HoldNoTypes) {
    const std::string offsetsRecord(1, '\3');
    const std::string localeRecord("\5\0\0\0\0", 5);
    for (const std::string& bytes : {offsetsRecord, localeRecord}) {
        MemoryDataStore store;
        store.append(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        EXPECT_EQ(type(ISchemaLocator::make(&store), u"T"), nullptr);
        EXPECT_EQ(type(ISchemaLocator::make(&store), u""), nullptr);
    }
    MemoryDataStore store;
    Design::Primitive(&store, kInt32, u"T");
    EXPECT_EQ(type(ISchemaLocator::make(&store), u"T"), nullptr);
    EXPECT_EQ(type(ISchemaLocator::make(&store), u""), nullptr);
}

TEST(SchemaLocatorImpl, CachedLayoutKeepsItsTableOpenOnceUntilTheLocatorGoes) {
    MemoryDataStore store;
    Builder build(store);
    const Offset group = build.container(0, u"g");
    const Offset table = build.table(group, u"T");
    const Offset nested = build.table(table, u"nested");
    const Offset number = build.primitive(nested, kInt32, u"n");
    const auto before = allRecords(store);
    {
        const auto locator = ISchemaLocator::make(&store);
        type(locator, u"g.T");
        type(locator, u"g.T");

        EXPECT_EQ(openCount(store, table), 1u);
        for (const Offset closed : {Offset{0}, group, nested, number})
            EXPECT_EQ(openCount(store, closed), 0u);
    }
    EXPECT_EQ(allRecords(store), before);
}

TEST(SchemaLocatorImpl, TypeAndItsAncestorsCannotBeRemovedWhileCached) {
    MemoryDataStore store;
    Builder build(store);
    const Offset group = build.container(0, u"g");
    const Offset inner = build.container(group, u"inner");
    build.table(inner, u"T");
    auto locator = ISchemaLocator::make(&store);
    type(locator, u"g.inner.T");
    Structural::Container top(&store, group);
    Structural::Container below(&store, inner);

    EXPECT_FALSE(below.removeChild(u"T"));
    EXPECT_FALSE(top.removeChild(u"inner"));

    locator->removeStore(&store);
    EXPECT_TRUE(below.removeChild(u"T"));
}

TEST(SchemaLocatorImpl, RemoveStoreClosesTheTablesOfThatStoreOnly) {
    MemoryDataStore first, second;
    const Offset table = Builder(first).table(0, u"A");
    const Offset other = Builder(second).table(0, u"B");
    const auto locator = ISchemaLocator::make(&first);
    locator->addStore(&second);
    type(locator, u"A;B");

    locator->removeStore(&first);

    EXPECT_EQ(openCount(first, table), 0u);
    EXPECT_EQ(openCount(second, other), 1u);
}

TEST(SchemaLocatorImpl, StoreMayGoOnceItIsRemoved) {
    MemoryDataStore kept;
    Builder(kept).table(0, u"Kept");
    const auto locator = ISchemaLocator::make(&kept);
    {
        MemoryDataStore gone;
        Builder(gone).table(0, u"Gone");
        locator->addStore(&gone);
        type(locator, u"Gone;Kept;Unknown");
        locator->removeStore(&gone);
    }
    EXPECT_THAT(layoutNames(type(locator, u"Gone;Kept;Unknown")), ElementsAre(u"Kept"));
}

TEST(SchemaLocatorImpl, AnotherStoreMayComeToStandWhereARemovedOneStood) {
    std::optional<MemoryDataStore> store(std::in_place);
    Builder(*store).table(0, u"Other");
    const auto locator = ISchemaLocator::make(&*store);
    EXPECT_EQ(type(locator, u"T"), nullptr);

    locator->removeStore(&*store);
    store.emplace();
    Builder(*store).table(0, u"T");
    locator->addStore(&*store);

    EXPECT_THAT(layoutNames(type(locator, u"T")), ElementsAre(u"T"));
    locator->removeStore(&*store);
}

TEST(SchemaLocatorImpl, NoGuardIsTaken) {
    LoggingStore store;
    Builder build(store);
    const Offset table = build.table(0, u"T");
    build.structOf(table, u"s", u"U", 4);
    build.primitive(build.table(0, u"U"), kInt32, u"n");
    store.takeCalls();
    {
        const auto locator = ISchemaLocator::make(&store);
        type(locator, u"T;missing");
        locator->removeStore(&store);
    }
    EXPECT_GT(store.calls().size(), 0u);
    EXPECT_EQ(store.count("lock"), 0u);
}

TEST(SchemaLocatorImpl, AHitTouchesNoStore) {
    LoggingStore store;
    Builder(store).table(0, u"T");
    const auto locator = ISchemaLocator::make(&store);
    type(locator, u"T");
    store.takeCalls();

    const auto schema = type(locator, u"T;T");

    EXPECT_EQ(layoutNames(schema).size(), 2u);
    EXPECT_THAT(store.takeCalls(), IsEmpty());
}

TEST(SchemaLocatorImpl, OnlyOpenCountsAreWritten) {
    LoggingStore store;
    Builder build(store);
    const Offset table = build.table(0, u"T");
    build.primitive(build.table(table, u"nested"), kInt32, u"n");
    store.takeCalls();
    {
        const auto locator = ISchemaLocator::make(&store);
        type(locator, u"T");
    }
    for (const StoreCall& change : store.changes()) {
        EXPECT_EQ(change.name, "write");
        EXPECT_EQ(change.offset, table);
        EXPECT_FALSE(change.flag);
    }
    EXPECT_EQ(store.changes().size(), 2u);
}

// The maps hash their keys again when they grow: each key must be alive for as long as its entry.
TEST(SchemaLocatorImpl, ManyTypesComeAndGo) {
    constexpr int kTypes = 600;
    MemoryDataStore stores[2];
    for (MemoryDataStore& store : stores) {
        Metadata::Root root(&store, u"root");
        for (int i = 0; i < kTypes; ++i) {
            const std::string digits = std::to_string(i);
            const std::u16string name = u"aCommonBeginning" + std::u16string(digits.begin(), digits.end());
            root.addChild(Design::Table(&store, (&store == stores ? u"first" : u"second") + name).offset());
        }
    }
    const auto locator = ISchemaLocator::make(&stores[0]);
    for (int round = 0; round < 2; ++round) {
        locator->addStore(&stores[1]);
        for (int i = 0; i < kTypes; ++i) {
            const std::string digits = std::to_string(i);
            const std::u16string name = u"aCommonBeginning" + std::u16string(digits.begin(), digits.end());
            const std::u16string both = u"first" + name + u";second" + name;
            ASSERT_EQ(layoutNames(type(locator, both.c_str())).size(), 2u);
        }
        EXPECT_TRUE(locator->removeStore(&stores[1]));
    }
    EXPECT_EQ(type(locator, u"secondaCommonBeginning7"), nullptr);
    EXPECT_NE(type(locator, u"firstaCommonBeginning7"), nullptr);
}

// A store that asks its locator for a type in the middle of the search for it: what another thread could do.
class AskingStore : public ForwardingStore {
  public:
    explicit AskingStore(IDataStore& store) : ForwardingStore(store, Extensions::off) {}

    void askOnceOn(const char* call, std::function<void()> ask) {
        call_ = call;
        ask_ = std::move(ask);
    }

  protected:
    void before(const char* name) override {
        if (name == call_) std::exchange(ask_, [] {})();
    }

  private:
    std::string call_;
    std::function<void()> ask_ = [] {};
};

class TwoThatMissedAtOnce : public testing::Test {
  public:
    ~TwoThatMissedAtOnce() noexcept override = default;

  protected:
    void SetUp() override {
        Builder build(memory_);
        table_ = build.table(0, u"T");
        build.primitive(table_, kInt32, u"n");
        locator_ = ISchemaLocator::make(&store_);
        // The search has passed the cache and begun with the stores when the other one overtakes it.
        store_.askOnceOn("size", [this] { first_ = locator_->locate(u"T"); });
        second_ = locator_->locate(u"T");
    }

    MemoryDataStore memory_;
    AskingStore store_{memory_};
    Offset table_ = 0;
    SharedPtr<ISchemaLocator> locator_;
    SharedPtr<ISchema> first_;
    SharedPtr<ISchema> second_;
};

TEST_F(TwoThatMissedAtOnce, EachHasALayoutAndTheLaterOneIsCached) {
    ASSERT_NE(first_, nullptr);
    ASSERT_NE(second_, nullptr);
    EXPECT_NE(first_->layout(), second_->layout());
    EXPECT_EQ(first_->layout()->fieldCount(), 1u);
    EXPECT_EQ(locator_->locate(u"T")->layout(), second_->layout());
    EXPECT_EQ(openCount(memory_, table_), 2u);
}

TEST_F(TwoThatMissedAtOnce, BothTablesAreClosedWithTheLocator) {
    first_.reset();
    second_.reset();
    locator_.reset();

    EXPECT_EQ(openCount(memory_, table_), 0u);
}

TEST_F(TwoThatMissedAtOnce, BothTablesAreClosedWithTheStore) {
    locator_->removeStore(&store_);

    EXPECT_EQ(openCount(memory_, table_), 0u);
    EXPECT_EQ(locator_->locate(u"T"), nullptr);
}

TEST_F(TwoThatMissedAtOnce, TheStoreMayComeBack) {
    locator_->removeStore(&store_);
    locator_->addStore(&store_);

    EXPECT_THAT(layoutNames(locator_->locate(u"T")), ElementsAre(u"T"));
    EXPECT_EQ(openCount(memory_, table_), 1u);
}

// The one that was overtaken has looked in another store than the one that overtook it.
class TwoThatMissedAtOnceInTwoStores : public testing::Test {
  public:
    ~TwoThatMissedAtOnceInTwoStores() noexcept override = default;

  protected:
    void SetUp() override {
        earlierTable_ = Builder(earlier_).table(0, u"T");
        laterTable_ = Builder(memory_).table(0, u"T");
        locator_ = ISchemaLocator::make(&later_);
        later_.askOnceOn("size", [this] {
            locator_->removeStore(&later_);
            locator_->addStore(&earlier_);
            locator_->locate(u"T");
            locator_->addStore(&later_);
        });
        cached_ = locator_->locate(u"T")->layout();
    }

    MemoryDataStore earlier_, memory_;
    AskingStore later_{memory_};
    Offset earlierTable_ = 0, laterTable_ = 0;
    SharedPtr<ISchemaLocator> locator_;
    IStructLayout* cached_ = nullptr;
};

TEST_F(TwoThatMissedAtOnceInTwoStores, RemovalOfTheEarlierOnesStoreKeepsTheLaterOne) {
    EXPECT_TRUE(locator_->removeStore(&earlier_));

    EXPECT_EQ(openCount(earlier_, earlierTable_), 0u);
    EXPECT_EQ(openCount(memory_, laterTable_), 1u);
    EXPECT_EQ(locator_->locate(u"T")->layout(), cached_);
    // As the cache grows, it hashes all its keys again.
    Metadata::Root root(&later_, 0);
    for (char16_t name = u'\u1000'; name < u'\u1258'; ++name) {
        const std::u16string text(1, name);
        root.addChild(Design::Table(&later_, text).offset());
        ASSERT_NE(locator_->locate(text.c_str()), nullptr);
    }
    EXPECT_EQ(locator_->locate(u"T")->layout(), cached_);
}

TEST_F(TwoThatMissedAtOnceInTwoStores, RemovalOfTheLaterOnesStoreFreesTheName) {
    EXPECT_TRUE(locator_->removeStore(&later_));

    EXPECT_EQ(openCount(memory_, laterTable_), 0u);
    const auto schema = locator_->locate(u"T");
    ASSERT_EQ(layoutNames(schema).size(), 1u);
    EXPECT_EQ(layoutsOf(schema).front()->table().store(), &earlier_);

    EXPECT_TRUE(locator_->removeStore(&earlier_));
    EXPECT_EQ(openCount(earlier_, earlierTable_), 0u);
}

}  // namespace
}  // namespace norvane::platform::test
