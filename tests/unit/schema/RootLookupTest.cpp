#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "schema/RootLookup.h"
#include "support/LoggingStore.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using data::metadata::kInt32;

// Counts looks at records, which is what a lookup costs.
class CountingStore : public MemoryDataStore {
  public:
    const void* view(Offset offset, std::uint32_t& size) override {
        ++looks;
        return MemoryDataStore::view(offset, size);
    }

    std::uint64_t looks = 0;
};

// The kinds of store that a lookup meets: with views and a change stamp, and with neither.
class RootLookupOn : public testing::TestWithParam<Extensions> {
  public:
    ~RootLookupOn() noexcept override = default;

  protected:
    Offset find(std::u16string_view name) { return lookup_.find(&store_, name); }

    MemoryDataStore memory_;
    ForwardingStore store_{memory_, GetParam()};
    Builder build_{store_};
    Schema::RootLookup lookup_;
};

INSTANTIATE_TEST_SUITE_P(Stores, RootLookupOn, testing::Values(Extensions::off, Extensions::on));

TEST_P(RootLookupOn, FindsTheFirstChildOfThatName) {
    const Offset first = build_.table(0, u"T");
    build_.listAnyway(0, build_.container(first, u"T"));

    EXPECT_EQ(find(u"T"), first);
    EXPECT_EQ(find(u"T"), first);
    EXPECT_EQ(find(u"missing"), IDataStore::BADOFF);
}

TEST_P(RootLookupOn, FindsNothingBelowARootWithoutChildren) {
    EXPECT_EQ(find(u"T"), IDataStore::BADOFF);
    const Offset added = build_.table(0, u"T");
    EXPECT_EQ(find(u"T"), added);
}

TEST_P(RootLookupOn, FindsWhatCameAfterAMiss) {
    build_.container(0, u"a");
    EXPECT_EQ(find(u"T"), IDataStore::BADOFF);
    build_.container(0, u"b");
    EXPECT_EQ(find(u"T"), IDataStore::BADOFF);

    const Offset added = build_.table(0, u"T");

    EXPECT_EQ(find(u"T"), added);
}

TEST_P(RootLookupOn, NamesDoNotDisturbEachOther) {
    EXPECT_EQ(find(u"a"), IDataStore::BADOFF);
    const Offset a = build_.container(0, u"a");
    EXPECT_EQ(find(u"b"), IDataStore::BADOFF);
    const Offset b = build_.container(0, u"b");
    EXPECT_EQ(find(u""), IDataStore::BADOFF);
    const Offset empty = build_.container(0, u"");

    EXPECT_EQ(find(u"a"), a);
    EXPECT_EQ(find(u"b"), b);
    EXPECT_EQ(find(u""), empty);
}

TEST_P(RootLookupOn, ReservedNamesAreNeverFound) {
    build_.table(0, u"$$$$$_____empty_key");
    EXPECT_EQ(find(u"$$$$$_____empty_key"), IDataStore::BADOFF);
}

TEST_P(RootLookupOn, StoresAreKeptApart) {
    MemoryDataStore other;
    const Offset there = Builder(other).table(0, u"T");
    EXPECT_EQ(find(u"T"), IDataStore::BADOFF);
    EXPECT_EQ(lookup_.find(&other, u"T"), there);
    EXPECT_EQ(find(u"T"), IDataStore::BADOFF);
}

TEST_P(RootLookupOn, ChildrenOfAnotherKindOfRecord0MayComeAndGo) {
    MemoryDataStore memory;
    Structural::Container(&memory, 1, u"top");
    ForwardingStore store(memory, GetParam());
    Builder build(store);
    const Offset first = build.table(0, u"a");
    EXPECT_EQ(lookup_.find(&store, u"a"), first);
    EXPECT_EQ(lookup_.find(&store, u"b"), IDataStore::BADOFF);

    Structural::Container(&store, 0).renameChild(u"a", u"b");

    EXPECT_EQ(lookup_.find(&store, u"a"), IDataStore::BADOFF);
    EXPECT_EQ(lookup_.find(&store, u"b"), first);
}

// Not by this library, but a store can be given another content by its host.
TEST_P(RootLookupOn, AListThatIsAnotherOneIsReadAnew) {
    const Offset table = build_.table(0, u"T");
    build_.container(0, u"a");
    EXPECT_EQ(find(u"T"), table);
    EXPECT_EQ(find(u"b"), IDataStore::BADOFF);
    const Offset list = Record::Snapshot(&memory_, 0)->load(field::children);

    Record::Offsets(&memory_, list).removeValue(table);
    EXPECT_EQ(find(u"b"), IDataStore::BADOFF);

    Offset other = Structural::Container(&memory_, 1, u"b").offset();
    Record::Offsets(&memory_, list).setAt(0, other);
    EXPECT_EQ(find(u"b"), other);

    other = Structural::Container(&memory_, 1, u"c").offset();
    Record::Offsets replaced(&memory_);
    replaced.append(&other, 1);
    Record::storeField(&memory_, 0, field::children, replaced.offset());
    EXPECT_EQ(find(u"c"), other);
    EXPECT_EQ(find(u"b"), IDataStore::BADOFF);
}

TEST_P(RootLookupOn, AnotherListWithTheSameLastChildIsReadAnew) {
    build_.container(0, u"a");
    const Offset last = build_.container(0, u"last");
    EXPECT_EQ(find(u"b"), IDataStore::BADOFF);

    const Offset b = Structural::Container(&memory_, 1, u"b").offset();
    Record::Offsets other(&memory_);
    const Offset children[] = {b, last};
    other.append(children, 2);
    Record::storeField(&memory_, 0, field::children, other.offset());

    EXPECT_EQ(find(u"b"), b);
}

TEST_P(RootLookupOn, AChildOfAnotherNameNowIsNotFound) {
    const Offset table = build_.table(0, u"T");
    EXPECT_EQ(find(u"T"), table);

    Metadata::Root(&memory_, 0).renameChild(u"T", u"S");

    EXPECT_EQ(find(u"T"), IDataStore::BADOFF);
}

TEST_P(RootLookupOn, RootWhoseListIsNoneHasNoChildren) {
    build_.table(0, u"T");
    EXPECT_EQ(find(u"a"), IDataStore::BADOFF);
    for (const Offset list : {Offset{0}, Offset{1}, Offset{0x7FFFFFFF}, Offset{IDataStore::BADOFF}}) {
        Record::storeField(&memory_, 0, field::children, list);
        EXPECT_EQ(find(u"T"), IDataStore::BADOFF);
    }
}

TEST_P(RootLookupOn, AForgottenStoreIsReadAnew) {
    EXPECT_EQ(find(u"T"), IDataStore::BADOFF);
    lookup_.forget(&store_);
    lookup_.forget(&memory_);
    lookup_.forgetAll();
    const Offset added = build_.table(0, u"T");
    EXPECT_EQ(find(u"T"), added);
}

TEST_P(RootLookupOn, ManyAndLongNamesAreFoundAfterTheyWereMissed) {
    std::vector<std::u16string> names;
    for (int i = 0; i < 600; ++i) {
        const std::string digits = std::to_string(i);
        names.emplace_back(digits.begin(), digits.end());
    }
    names.emplace_back(10000, u'x');
    for (const std::u16string& name : names) EXPECT_EQ(find(name), IDataStore::BADOFF);
    Metadata::Root root(&memory_, 0);
    for (const std::u16string& name : names) root.addChild(Design::Table(&memory_, name).offset());

    for (const std::u16string& name : names) ASSERT_EQ(find(name), root.find(name));
}

TEST(RootLookup, AnUnchangedStoreIsNotLookedAt) {
    CountingStore store;
    Builder(store).table(0, u"T");
    Schema::RootLookup lookup;
    lookup.find(&store, u"");
    lookup.find(&store, u"T");
    store.looks = 0;

    lookup.find(&store, u"");
    lookup.find(&store, u"T");

    EXPECT_EQ(store.looks, 0u);
}

TEST(RootLookup, OpenCountsAreNoChange) {
    CountingStore store;
    const Offset table = Builder(store).table(0, u"T");
    Schema::RootLookup lookup;
    lookup.find(&store, u"");
    const Design::Table open(&store, table);
    store.looks = 0;

    lookup.find(&store, u"");

    EXPECT_EQ(store.looks, 0u);
}

// A document of which every object names a class that is not there, while the store that it is read into is
// one of those searched.
void missForEachChild(const char16_t* name, std::uint32_t objects) {
    CountingStore store;
    Metadata::Root root(&store, u"root");
    const auto locator = ISchemaLocator::make(&store);
    store.looks = 0;
    std::uint64_t looks = 0;
    for (std::uint32_t i = 0; i < objects; ++i) {
        const std::string digits = std::to_string(i);
        const Structural::Container object(&store, 1, std::u16string(digits.begin(), digits.end()));
        root.addChild(object.offset());
        const std::uint64_t before = store.looks;
        ASSERT_EQ(locator->locate(name), nullptr);
        looks += store.looks - before;
    }
    EXPECT_LE(looks, 4u * objects);
}

TEST(RootLookup, EmptyClassOfEachOf100000ObjectsCostsTheNewObjectOnly) { missForEachChild(u"", 100'000); }

TEST(RootLookup, UnknownClassOfEachObjectCostsTheNewObjectOnly) { missForEachChild(u"Unknown", 5'000); }

TEST(RootLookup, UnknownLibraryOfEachObjectCostsTheNewObjectOnly) {
    missForEachChild(u"library.Wall", 5'000);
}

}  // namespace
}  // namespace norvane::platform::test
