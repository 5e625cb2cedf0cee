#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/LoggingStore.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using namespace data::metadata;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t kImported = Record::kFixed | Record::kInherited;

std::vector<std::u16string> childNames(IDataStore& store, Offset set) {
    std::vector<std::u16string> names;
    for (const Offset child : Metadata::openSet(&store, set)->children())
        names.push_back(Record::Snapshot(&store, child)->name());
    return names;
}

std::uint8_t flagsOf(IDataStore& store, Offset offset) {
    return Record::Snapshot(&store, offset)->load(field::flags);
}

Offset childOf(IDataStore& store, Offset set, std::u16string_view path) {
    return Metadata::resolvePath(&store, set, path);
}

// Classes in one store, objects in another.
class ApplySchemaTest : public testing::Test {
  public:
    ~ApplySchemaTest() noexcept override = default;

  protected:
    SharedPtr<ISchema> type(const char16_t* names) { return locator_->locate(names); }

    MemoryDataStore classes_;
    Builder buildClass_{classes_};
    MemoryDataStore store_;
    Builder build_{store_};
    SharedPtr<ISchemaLocator> locator_ = ISchemaLocator::make(&classes_);
};

TEST_F(ApplySchemaTest, ContainerTakesNameAndMembersOfItsClass) {
    const Offset table = buildClass_.table(0, u"Wall");
    buildClass_.primitive(table, kDouble, u"width");
    buildClass_.primitive(buildClass_.table(table, u"fire"), kInt32, u"rating");
    const Offset object = build_.container(0, u"w");

    EXPECT_TRUE(Structural::Container(&store_, object).importClasses(type(u"Wall").get()));

    EXPECT_EQ(Structural::Container(&store_, object).classText(), u"Wall");
    EXPECT_THAT(childNames(store_, object), ElementsAre(u"width", u"fire"));
    EXPECT_EQ(flagsOf(store_, childOf(store_, object, u"width")), kImported);
    EXPECT_EQ(flagsOf(store_, childOf(store_, object, u"fire")), kImported);
    EXPECT_EQ(flagsOf(store_, childOf(store_, object, u"fire.rating")), kImported);
    EXPECT_EQ(flagsOf(store_, object), 0);
}

TEST_F(ApplySchemaTest, TableTakesNameAndMembersOfItsClass) {
    const Offset table = buildClass_.table(0, u"Wall");
    buildClass_.primitive(table, kDouble, u"width");
    const Offset object = build_.table(0, u"w");

    EXPECT_TRUE(Design::Table(&store_, object).applySchema(type(u"Wall").get()));

    EXPECT_EQ(Design::Table(&store_, object).classText(), u"Wall");
    EXPECT_THAT(childNames(store_, object), ElementsAre(u"width"));
    EXPECT_EQ(flagsOf(store_, childOf(store_, object, u"width")), kImported);
}

TEST_F(ApplySchemaTest, ObjectOpenedForItKnowsItsNewClassAndMembers) {
    const Offset table = buildClass_.table(0, u"Wall");
    buildClass_.primitive(table, kDouble, u"width");
    Structural::Container object(&store_, build_.container(0, u"w"));

    object.importClasses(type(u"Wall").get());

    EXPECT_EQ(object.classText(), u"Wall");
    EXPECT_NE(object.find(u"width"), IDataStore::BADOFF);
}

TEST_F(ApplySchemaTest, TwoClassesAreJoinedAndOfMembersOfOneNameTheFirstClassWins) {
    const Offset a = buildClass_.table(0, u"A");
    const Offset b = buildClass_.table(0, u"B");
    buildClass_.primitive(a, kInt8, u"shared");
    buildClass_.primitive(a, kInt8, u"onlyA");
    buildClass_.primitive(b, kDouble, u"onlyB");
    buildClass_.primitive(b, kDouble, u"shared");
    const Offset container = build_.container(0, u"c");
    const Offset table = build_.table(0, u"t");

    Structural::Container(&store_, container).importClasses(type(u"A;B").get());
    Design::Table(&store_, table).applySchema(type(u"A;B").get());

    EXPECT_EQ(Structural::Container(&store_, container).classText(), u"A;B");
    EXPECT_EQ(Design::Table(&store_, table).classText(), u"A;B");
    for (const Offset object : {container, table}) {
        EXPECT_THAT(childNames(store_, object), ElementsAre(u"shared", u"onlyA", u"onlyB"));
        EXPECT_EQ(Design::Primitive(&store_, childOf(store_, object, u"shared")).dataType(), kInt8);
    }
}

TEST_F(ApplySchemaTest, ApplyingTwoSchemasJoinsTheirNames) {
    buildClass_.primitive(buildClass_.table(0, u"A"), kInt8, u"n");
    buildClass_.primitive(buildClass_.table(0, u"B"), kDouble, u"n");
    const Offset object = build_.table(0, u"t");

    Design::Table(&store_, object).applySchema(type(u"A").get());
    Design::Table(&store_, object).applySchema(type(u"B").get());

    EXPECT_EQ(Design::Table(&store_, object).classText(), u"A;B");
    EXPECT_EQ(Design::Primitive(&store_, childOf(store_, object, u"n")).dataType(), kInt8);
}

TEST_F(ApplySchemaTest, ApplyingAgainAddsTheNameAgainAndNoMember) {
    buildClass_.primitive(buildClass_.table(0, u"A"), kInt8, u"n");
    const Offset container = build_.container(0, u"c");
    const Offset table = build_.table(0, u"t");
    for (int i = 0; i < 2; ++i) {
        Structural::Container(&store_, container).importClasses(type(u"A").get());
        Design::Table(&store_, table).applySchema(type(u"A").get());
    }
    EXPECT_EQ(Structural::Container(&store_, container).classText(), u"A;A");
    EXPECT_EQ(Design::Table(&store_, table).classText(), u"A;A");
    EXPECT_THAT(childNames(store_, container), ElementsAre(u"n"));
    EXPECT_THAT(childNames(store_, table), ElementsAre(u"n"));
}

TEST_F(ApplySchemaTest, ChildThatIsThereWins) {
    buildClass_.primitive(buildClass_.table(0, u"A"), kInt8, u"n");
    const Offset object = build_.container(0, u"c");
    const Offset own = build_.primitive(object, kDouble, u"n");

    Structural::Container(&store_, object).importClasses(type(u"A").get());

    EXPECT_THAT(childNames(store_, object), ElementsAre(u"n"));
    EXPECT_EQ(childOf(store_, object, u"n"), own);
    EXPECT_EQ(flagsOf(store_, own), 0);
}

TEST_F(ApplySchemaTest, ContainerRecordHasTheClassTextBetweenNameAndTarget) {
    buildClass_.table(0, u"A");
    buildClass_.table(0, u"B");
    const Offset object = build_.container(0, u"c", 2);
    Structural::Container(&store_, object).setLinkTarget(u"x");

    Structural::Container(&store_, object).importClasses(type(u"A;B").get());

    const std::string record = recordBytes(store_, object);
    EXPECT_EQ(record.substr(18), std::string("\2"
                                             "\4\0\0\0"
                                             "\10\0\0\0"
                                             "\4\0\0\0"
                                             "c\0\0\0"
                                             "A\0;\0B\0\0\0"
                                             "x\0\0\0",
                                             29));
}

TEST_F(ApplySchemaTest, TableRecordHasTheClassTextBehindTheName) {
    buildClass_.table(0, u"A");
    const Offset object = build_.table(0, u"t");

    Design::Table(&store_, object).applySchema(type(u"A").get());

    const std::string record = recordBytes(store_, object);
    EXPECT_EQ(record.substr(26), std::string("\4\0\0\0"
                                             "\4\0\0\0"
                                             "t\0\0\0"
                                             "A\0\0\0",
                                             16));
}

TEST_F(ApplySchemaTest, SchemaWithoutLayoutsStillWritesAClassTextOfOneNul) {
    Schema::SchemaImpl none;
    const Offset container = build_.container(0, u"c");
    const Offset table = build_.table(0, u"t");

    EXPECT_TRUE(Structural::Container(&store_, container).importClasses(&none));
    EXPECT_TRUE(Design::Table(&store_, table).applySchema(&none));

    EXPECT_EQ(recordBytes(store_, container).substr(23), std::string("\2\0\0\0"
                                                                     "\0\0\0\0"
                                                                     "c\0\0\0"
                                                                     "\0\0",
                                                                     14));
    EXPECT_EQ(recordBytes(store_, table).substr(30), std::string("\2\0\0\0"
                                                                 "t\0\0\0"
                                                                 "\0\0",
                                                                 10));
    EXPECT_EQ(Structural::Container(&store_, container).classText(), u"");
}

TEST_F(ApplySchemaTest, ClassWithoutMembersStillGivesItsName) {
    buildClass_.table(0, u"A");
    const Offset object = build_.container(0, u"c");

    Structural::Container(&store_, object).importClasses(type(u"A").get());

    EXPECT_EQ(Structural::Container(&store_, object).classText(), u"A");
    EXPECT_THAT(childNames(store_, object), IsEmpty());
}

TEST_F(ApplySchemaTest, NullAndForeignSchemasChangeNothing) {
    ForeignSchema foreign;
    const Offset container = build_.container(0, u"c");
    const Offset table = build_.table(0, u"t");
    const auto before = allRecords(store_);

    EXPECT_FALSE(Structural::Container(&store_, container).importClasses(nullptr));
    EXPECT_FALSE(Structural::Container(&store_, container).importClasses(&foreign));
    EXPECT_FALSE(Design::Table(&store_, table).applySchema(nullptr));
    EXPECT_FALSE(Design::Table(&store_, table).applySchema(&foreign));

    EXPECT_EQ(allRecords(store_), before);
}

TEST_F(ApplySchemaTest, ObjectOnNoRecordTakesNothing) {
    buildClass_.primitive(buildClass_.table(0, u"A"), kInt8, u"n");
    const auto schema = type(u"A");
    const Offset gone = build_.table(0, u"gone");
    store_.remove(gone);
    const auto before = allRecords(store_);

    EXPECT_FALSE(Structural::Container(&store_, gone).importClasses(schema.get()));
    EXPECT_FALSE(Design::Table(&store_, gone).applySchema(schema.get()));

    EXPECT_EQ(allRecords(store_), before);
}

// The cached layout's table has counted its members when it was opened, but the list is read as it is now.
TEST_F(ApplySchemaTest, MembersAreCountedAtOpeningAndReadFromTheListOfNow) {
    const Offset table = buildClass_.table(0, u"A");
    buildClass_.primitive(table, kInt8, u"first");
    buildClass_.primitive(table, kInt8, u"second");
    const auto schema = type(u"A");
    const Offset object = build_.container(0, u"c");

    Design::Table(&classes_, table).removeChild(u"first");
    buildClass_.primitive(table, kInt8, u"third");
    buildClass_.primitive(table, kInt8, u"fourth");
    Structural::Container(&store_, object).importClasses(schema.get());

    EXPECT_THAT(childNames(store_, object), ElementsAre(u"second", u"third"));
}

TEST_F(ApplySchemaTest, MembersThatHaveGoneMeanwhileAreMissing) {
    const Offset table = buildClass_.table(0, u"A");
    buildClass_.primitive(table, kInt8, u"first");
    buildClass_.primitive(table, kInt8, u"second");
    const auto schema = type(u"A");
    const Offset object = build_.table(0, u"t");

    Design::Table(&classes_, table).removeChild(u"first");
    Design::Table(&store_, object).applySchema(schema.get());

    EXPECT_THAT(childNames(store_, object), ElementsAre(u"second"));
}

TEST_F(ApplySchemaTest, MembersOfReservedNamesComeInEveryTime) {
    buildClass_.primitive(buildClass_.table(0, u"A"), kInt8, u"$$$$$_____empty_key");
    const Offset object = build_.table(0, u"t");

    Design::Table(&store_, object).applySchema(type(u"A;A").get());

    EXPECT_THAT(childNames(store_, object), ElementsAre(u"$$$$$_____empty_key", u"$$$$$_____empty_key"));
}

TEST_F(ApplySchemaTest, ClassTextOfAMemberIsCopiedAndNotAppliedAgain) {
    buildClass_.primitive(buildClass_.table(0, u"Inner"), kInt8, u"fromInner");
    const Offset outer = buildClass_.table(0, u"Outer");
    const Offset member = buildClass_.table(outer, u"part");
    Design::Table(&classes_, member).applySchema(type(u"Inner").get());
    Design::Table(&classes_, member).removeChild(u"fromInner");
    const Offset object = build_.container(0, u"c");

    Structural::Container(&store_, object).importClasses(type(u"Outer").get());

    const Offset copy = childOf(store_, object, u"part");
    EXPECT_EQ(Design::Table(&store_, copy).classText(), u"Inner");
    EXPECT_THAT(childNames(store_, copy), ElementsAre(u"fromInner"));
}

TEST_F(ApplySchemaTest, NothingStaysOpenButTheCachedTypes) {
    const Offset table = buildClass_.table(0, u"A");
    const Offset member = buildClass_.primitive(table, kInt8, u"n");
    const Offset object = build_.container(0, u"c");

    Structural::Container(&store_, object).importClasses(type(u"A").get());

    EXPECT_EQ(openCount(classes_, table), 1u);
    EXPECT_EQ(openCount(classes_, member), 0u);
    EXPECT_EQ(openCount(store_, object), 0u);
    EXPECT_EQ(openCount(store_, childOf(store_, object, u"n")), 0u);
}

// The members' copies are appended between the two.
TEST(ImportClasses, TakesTheGuardOfEachClassStoreWhileItsMembersAreCopied) {
    LoggingStore classes, others;
    MemoryDataStore store;
    Builder(classes).primitive(Builder(classes).table(0, u"A"), kInt8, u"n");
    Builder(others).primitive(Builder(others).table(0, u"B"), kInt8, u"m");
    const auto locator = ISchemaLocator::make(&classes);
    locator->addStore(&others);
    const auto schema = locator->locate(u"A;B;A");
    Structural::Container object(&store, Builder(store).container(0, u"c"));
    classes.takeCalls();
    others.takeCalls();

    object.importClasses(schema.get());

    EXPECT_EQ(classes.count("lock"), 2u);
    EXPECT_EQ(classes.count("unlock"), 2u);
    EXPECT_EQ(classes.calls().front().name, "lock");
    EXPECT_EQ(classes.calls().back().name, "unlock");
    EXPECT_EQ(others.count("lock"), 1u);
    EXPECT_EQ(others.calls().front().name, "lock");
    EXPECT_EQ(others.calls().back().name, "unlock");
    EXPECT_THAT(classes.changes(), IsEmpty());
}

TEST(ImportClasses, TakesTheGuardOfAClassWithoutMembersToo) {
    LoggingStore store;
    Builder build(store);
    build.table(0, u"A");
    const auto locator = ISchemaLocator::make(&store);
    const auto schema = locator->locate(u"A");
    Structural::Container object(&store, build.container(0, u"c"));
    store.takeCalls();

    object.importClasses(schema.get());

    EXPECT_EQ(store.count("lock"), 1u);
    EXPECT_EQ(store.guardsHeld(), 0);
}

TEST(ImportClasses, ClassStoreMayBeTheObjectsOwnAndHeldAlready) {
    MemoryDataStore store;
    Builder build(store);
    build.primitive(build.table(0, u"A"), kInt8, u"n");
    const auto locator = ISchemaLocator::make(&store);
    const Offset object = build.container(0, u"c");
    const std::unique_ptr<IDataStore::Guard> outer(store.lock());

    EXPECT_TRUE(Structural::Container(&store, object).importClasses(locator->locate(u"A").get()));

    EXPECT_THAT(childNames(store, object), ElementsAre(u"n"));
}

class UnguardedStore : public MemoryDataStore {
  public:
    Guard* lock() override { return nullptr; }
};

TEST(ImportClasses, StoreMayHaveNoGuards) {
    UnguardedStore store;
    Builder build(store);
    build.primitive(build.table(0, u"A"), kInt8, u"n");
    const auto locator = ISchemaLocator::make(&store);
    const Offset object = build.container(0, u"c");

    EXPECT_TRUE(Structural::Container(&store, object).importClasses(locator->locate(u"A").get()));
}

TEST(ApplySchemaOfTables, TakesNoGuard) {
    LoggingStore store;
    Builder build(store);
    build.primitive(build.table(0, u"A"), kInt8, u"n");
    const auto locator = ISchemaLocator::make(&store);
    const auto schema = locator->locate(u"A");
    Design::Table object(&store, build.table(0, u"t"));
    store.takeCalls();

    object.applySchema(schema.get());

    EXPECT_THAT(store.changes(), testing::Not(IsEmpty()));
    EXPECT_EQ(store.count("lock"), 0u);
}

// A class applied to its own table: its members are there already.
TEST(ApplySchemaOfTables, ClassCanBeAppliedToItself) {
    MemoryDataStore store;
    Builder build(store);
    const Offset table = build.table(0, u"A");
    build.primitive(table, kInt8, u"n");
    build.primitive(build.table(table, u"nested"), kInt8, u"m");
    const auto locator = ISchemaLocator::make(&store);
    const auto schema = locator->locate(u"A");

    Design::Table(&store, table).applySchema(schema.get());
    Design::Table(&store, childOf(store, table, u"nested")).applySchema(schema.get());

    EXPECT_THAT(childNames(store, table), ElementsAre(u"n", u"nested"));
    EXPECT_THAT(childNames(store, childOf(store, table, u"nested")), ElementsAre(u"m", u"n", u"nested"));
}

}  // namespace
}  // namespace norvane::platform::test
