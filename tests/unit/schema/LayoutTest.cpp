#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>
#include <map>
#include <new>
#include <string>
#include <utility>

#include "schema/Layout.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using namespace data::metadata;
using testing::ElementsAre;
using testing::IsEmpty;

// Types directly below the root of one store, and one locator on it.
class LayoutTest : public testing::Test {
  public:
    ~LayoutTest() noexcept override = default;

  protected:
    IStructLayout& layout(const char16_t* name) {
        schema_ = locator_->locate(name);
        return *schema_->layout();
    }

    MemoryDataStore store_;
    Builder build_{store_};
    SharedPtr<ISchemaLocator> locator_ = ISchemaLocator::make(&store_);
    SharedPtr<ISchema> schema_;
};

TEST_F(LayoutTest, TableWithoutChildrenHasNothing) {
    build_.table(0, u"T");

    IStructLayout& shape = layout(u"T");

    EXPECT_EQ(shape.fieldCount(), 0u);
    EXPECT_EQ(shape.byteSize(), 0u);
    EXPECT_EQ(shape.valueCount(), 0u);
    EXPECT_EQ(shape.field(0), nullptr);
}

TEST_F(LayoutTest, FieldsArePackedInTheOrderOfTheList) {
    const Offset table = build_.table(0, u"T");
    build_.primitive(table, kUint8, u"flag");
    build_.primitive(table, kDouble, u"length", 2);
    build_.primitive(table, kString, u"text", 3);
    build_.primitive(table, kVector3, u"at", 3);

    IStructLayout& shape = layout(u"T");

    EXPECT_THAT(fieldsOf(shape),
                ElementsAre(FieldRow{u"flag", kUint8, 1, 0, 1}, FieldRow{u"length", kDouble, 2, 1, 16},
                            FieldRow{u"text", kString, 3, 17, 6}, FieldRow{u"at", kVector3, 3, 23, 24}));
    EXPECT_EQ(shape.byteSize(), 47u);
    EXPECT_EQ(shape.valueCount(), 9u);
}

TEST_F(LayoutTest, MemberWithoutValueGivesAnEmptyFieldAtTheNextOnesOffset) {
    const Offset table = build_.table(0, u"T");
    build_.primitive(table, kInt32, u"a");
    build_.primitive(table, kDouble, u"none", 0);
    build_.primitive(table, kInt32, u"b");

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"a", kInt32, 1, 0, 4}, FieldRow{u"none", kDouble, 0, 4, 0},
                            FieldRow{u"b", kInt32, 1, 4, 4}));
}

TEST_F(LayoutTest, UriMemberCountsNoElementsButTakesItsRoom) {
    const Offset table = build_.table(0, u"T");
    const Offset external = build_.primitive(table, kDouble, u"external");
    Design::Primitive(&store_, external).setUri(u"a:b/c");
    build_.primitive(table, kInt32, u"n");

    IStructLayout& shape = layout(u"T");

    EXPECT_THAT(fieldsOf(shape),
                ElementsAre(FieldRow{u"external", kDouble, 0, 0, 12}, FieldRow{u"n", kInt32, 1, 12, 4}));
    EXPECT_EQ(shape.byteSize(), 16u);
    EXPECT_EQ(shape.valueCount(), 1u);
}

TEST_F(LayoutTest, NestedTableGivesItsMembersUnderADottedName) {
    const Offset table = build_.table(0, u"T");
    build_.primitive(table, kInt32, u"a");
    const Offset nested = build_.table(table, u"nested");
    build_.primitive(nested, kInt32, u"b");
    build_.primitive(build_.table(nested, u"deep"), kInt32, u"c");
    build_.primitive(nested, kInt32, u"d");
    build_.table(table, u"empty");
    build_.primitive(table, kInt32, u"e");

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"a", kInt32, 1, 0, 4}, FieldRow{u"nested.b", kInt32, 1, 4, 4},
                            FieldRow{u"nested.deep.c", kInt32, 1, 8, 4},
                            FieldRow{u"nested.d", kInt32, 1, 12, 4}, FieldRow{u"e", kInt32, 1, 16, 4}));
}

TEST_F(LayoutTest, ArrayOfStructsIsUnrolledWithIndices) {
    const Offset inner = build_.table(0, u"S");
    build_.primitive(inner, kUint32, u"x");
    build_.primitive(inner, kDouble, u"y");
    build_.structOf(build_.table(0, u"T"), u"p", u"S", 24);

    IStructLayout& shape = layout(u"T");

    EXPECT_THAT(fieldsOf(shape),
                ElementsAre(FieldRow{u"p[0].x", kUint32, 1, 0, 4}, FieldRow{u"p[0].y", kDouble, 1, 4, 8},
                            FieldRow{u"p[1].x", kUint32, 1, 12, 4}, FieldRow{u"p[1].y", kDouble, 1, 16, 8}));
    EXPECT_EQ(shape.byteSize(), 24u);
    EXPECT_EQ(shape.valueCount(), 4u);
}

TEST_F(LayoutTest, IndicesAreDecimal) {
    build_.primitive(build_.table(0, u"S"), kUint8, u"x");
    build_.structOf(build_.table(0, u"T"), u"p", u"S", 12);

    IStructLayout& shape = layout(u"T");

    ASSERT_EQ(shape.fieldCount(), 12u);
    EXPECT_STREQ(reinterpret_cast<const char*>(shape.field(11)->name),
                 reinterpret_cast<const char*>(u"p[11].x"));
    EXPECT_NE(shape.field(u"p[10].x"), nullptr);
}

TEST_F(LayoutTest, SingleStructHasNoIndex) {
    build_.primitive(build_.table(0, u"S"), kUint32, u"x");
    const Offset table = build_.table(0, u"T");
    build_.structOf(table, u"p", u"S", 4);
    build_.structOf(build_.table(table, u"nested"), u"q", u"S", 4);

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"p.x", kUint32, 1, 0, 4}, FieldRow{u"nested.q.x", kUint32, 1, 4, 4}));
}

TEST_F(LayoutTest, StructsOfStructsCarryAllNames) {
    build_.primitive(build_.table(0, u"S"), kUint16, u"x");
    build_.structOf(build_.table(0, u"M"), u"s", u"S", 4);
    build_.structOf(build_.table(0, u"T"), u"m", u"M", 8);

    EXPECT_THAT(
        fieldsOf(layout(u"T")),
        ElementsAre(FieldRow{u"m[0].s[0].x", kUint16, 1, 0, 2}, FieldRow{u"m[0].s[1].x", kUint16, 1, 2, 2},
                    FieldRow{u"m[1].s[0].x", kUint16, 1, 4, 2}, FieldRow{u"m[1].s[1].x", kUint16, 1, 6, 2}));
}

TEST_F(LayoutTest, StructMemberTooSmallForItsTypeGivesNoField) {
    build_.primitive(build_.table(0, u"S"), kUint64, u"x");
    const Offset table = build_.table(0, u"T");
    build_.structOf(table, u"none", u"S", 0);
    build_.structOf(table, u"small", u"S", 7);
    build_.primitive(table, kInt32, u"n");

    EXPECT_THAT(fieldsOf(layout(u"T")), ElementsAre(FieldRow{u"n", kInt32, 1, 0, 4}));
}

TEST_F(LayoutTest, RemainderOfAStructValueIsDropped) {
    build_.primitive(build_.table(0, u"S"), kUint32, u"x");
    const Offset table = build_.table(0, u"T");
    build_.structOf(table, u"p", u"S", 7);
    build_.structOf(table, u"q", u"S", 11);

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"p.x", kUint32, 1, 0, 4}, FieldRow{u"q[0].x", kUint32, 1, 4, 4},
                            FieldRow{u"q[1].x", kUint32, 1, 8, 4}));
}

TEST_F(LayoutTest, UnknownStructTypeVanishesAndLaterFieldsMoveUp) {
    const Offset table = build_.table(0, u"T");
    build_.structOf(table, u"p", u"Unknown", 8);
    build_.primitive(table, kInt32, u"n");

    IStructLayout& shape = layout(u"T");

    EXPECT_THAT(fieldsOf(shape), ElementsAre(FieldRow{u"n", kInt32, 1, 0, 4}));
    EXPECT_EQ(shape.byteSize(), 4u);
}

TEST_F(LayoutTest, StructTypeOfTwoNamesIsPassedOver) {
    build_.primitive(build_.table(0, u"A"), kInt32, u"x");
    build_.primitive(build_.table(0, u"B"), kInt32, u"y");
    const Offset table = build_.table(0, u"T");
    build_.structOf(table, u"both", u"A;B", 8);
    build_.structOf(table, u"twice", u"A;A", 8);

    EXPECT_EQ(layout(u"T").fieldCount(), 0u);
}

TEST_F(LayoutTest, StructTypeOfTwoNamesWithOneKnownIsThatOne) {
    build_.primitive(build_.table(0, u"A"), kInt32, u"x");
    build_.structOf(build_.table(0, u"T"), u"p", u"Unknown;A", 4);

    EXPECT_THAT(fieldsOf(layout(u"T")), ElementsAre(FieldRow{u"p.x", kInt32, 1, 0, 4}));
}

TEST_F(LayoutTest, StructWithoutATypeTextGivesNoFieldEvenIfATableHasTheEmptyName) {
    build_.primitive(build_.table(0, u""), kInt32, u"x");
    const Offset table = build_.table(0, u"T");
    build_.primitive(table, kStruct, u"p", 4);

    EXPECT_EQ(layout(u"T").fieldCount(), 0u);
    EXPECT_EQ(layout(u"").fieldCount(), 1u);
}

TEST_F(LayoutTest, StructTypeWithoutRoomGivesNoField) {
    build_.primitive(build_.table(0, u"S"), kInt32, u"x", 0);
    build_.structOf(build_.table(0, u"T"), u"p", u"S", 8);

    EXPECT_EQ(layout(u"S").fieldCount(), 1u);
    EXPECT_EQ(layout(u"T").fieldCount(), 0u);
}

TEST_F(LayoutTest, UriOfAStructMemberMeasuresItsStructs) {
    build_.primitive(build_.table(0, u"S"), kUint32, u"x");
    const Offset member = build_.structOf(build_.table(0, u"T"), u"p", u"S", 4);
    Design::Primitive(&store_, member).setUri(u"a:b");

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"p[0].x", kUint32, 1, 0, 4}, FieldRow{u"p[1].x", kUint32, 1, 4, 4}));
}

TEST_F(LayoutTest, MemberWithoutAnElementSizeGivesNoFieldUnlessItHasAUri) {
    const Offset table = build_.table(0, u"T");
    for (const std::uint32_t noType : {0u, 25u, 0xFFFFFFFFu}) {
        const std::string name = "t" + std::to_string(noType);
        build_.primitive(table, noType, std::u16string(name.begin(), name.end()), 0);
    }
    const Offset external = build_.primitive(table, 99, u"external", 0);
    Design::Primitive(&store_, external).setUri(u"u");

    EXPECT_THAT(fieldsOf(layout(u"T")), ElementsAre(FieldRow{u"external", 99, 0, 0, 4}));
}

TEST_F(LayoutTest, OtherKindsOfChildrenAreSkipped) {
    const Offset table = build_.table(0, u"T");
    build_.primitive(build_.container(table, u"group"), kInt32, u"hidden");
    build_.primitive(table, kInt32, u"n");
    build_.listAnyway(table, Record::Offsets(&store_).offset());

    EXPECT_THAT(fieldsOf(layout(u"T")), ElementsAre(FieldRow{u"n", kInt32, 1, 0, 4}));
}

// Members are counted by name and then taken from the list by index.
TEST_F(LayoutTest, SiblingsOfOneNameCostTheLastOnesTheirFields) {
    const Offset table = build_.table(0, u"T");
    for (const Offset set : {build_.table(table, u"nested"), table}) {
        build_.primitive(set, kInt32, u"n");
        build_.listAnyway(set, Design::Primitive(&store_, kInt16, u"n").offset());
        build_.primitive(set, kInt8, u"last");
    }

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"nested.n", kInt32, 1, 0, 4}, FieldRow{u"nested.n", kInt16, 0, 4, 0},
                            FieldRow{u"n", kInt32, 1, 4, 4}, FieldRow{u"n", kInt16, 0, 8, 0}));
}

TEST_F(LayoutTest, FieldByNameTakesTheFlattenedName) {
    build_.primitive(build_.table(0, u"S"), kUint32, u"x");
    const Offset table = build_.table(0, u"T");
    build_.primitive(build_.table(table, u"nested"), kInt8, u"a");
    build_.structOf(table, u"p", u"S", 4);

    IStructLayout& shape = layout(u"T");

    EXPECT_EQ(shape.field(u"nested.a"), shape.field(0));
    EXPECT_EQ(shape.field(u"p.x"), shape.field(1));
    for (const char16_t* unknown : {u"p", u"nested", u"x", u"P.x", u""})
        EXPECT_EQ(shape.field(unknown), nullptr);
    EXPECT_EQ(shape.field(WideString()), nullptr);
}

TEST_F(LayoutTest, OfEqualNamesTheFirstFieldIsFoundAndBothAreThere) {
    const Offset table = build_.table(0, u"T");
    build_.primitive(table, kInt32, u"a.b");
    build_.primitive(build_.table(table, u"a"), kInt8, u"b");

    IStructLayout& shape = layout(u"T");

    EXPECT_THAT(fieldsOf(shape),
                ElementsAre(FieldRow{u"a.b", kInt32, 1, 0, 4}, FieldRow{u"a.b", kInt8, 1, 4, 1}));
    EXPECT_EQ(shape.field(u"a.b"), shape.field(0));
}

TEST_F(LayoutTest, FieldWithAReservedNameIsThereButNotFound) {
    const Offset table = build_.table(0, u"T");
    build_.primitive(table, kInt32, u"$$$$$_____empty_key");
    build_.primitive(table, kInt32, u"$$$$$_____deleted_key");
    build_.primitive(table, kInt32, u"n");

    IStructLayout& shape = layout(u"T");

    EXPECT_EQ(shape.fieldCount(), 3u);
    EXPECT_EQ(shape.field(u"$$$$$_____empty_key"), nullptr);
    EXPECT_EQ(shape.field(u"$$$$$_____deleted_key"), nullptr);
    EXPECT_EQ(shape.field(u"n"), shape.field(2));
}

TEST_F(LayoutTest, FieldPastTheEndIsNull) {
    build_.primitive(build_.table(0, u"T"), kInt32, u"n");

    IStructLayout& shape = layout(u"T");

    EXPECT_NE(shape.field(0), nullptr);
    EXPECT_EQ(shape.field(1), nullptr);
    EXPECT_EQ(shape.field(0xFFFFFFFFu), nullptr);
}

TEST_F(LayoutTest, ChangesOfTheTableDoNotShow) {
    const Offset table = build_.table(0, u"T");
    const Offset number = build_.primitive(table, kInt32, u"n");
    IStructLayout& shape = layout(u"T");

    Design::Primitive(&store_, number).resize(5);
    build_.primitive(table, kInt32, u"m");

    EXPECT_THAT(fieldsOf(shape), ElementsAre(FieldRow{u"n", kInt32, 1, 0, 4}));
}

TEST_F(LayoutTest, LayoutIsCachedForInnerTypesToo) {
    const Offset inner = build_.table(0, u"S");
    build_.primitive(inner, kUint32, u"x");
    build_.structOf(build_.table(0, u"T"), u"p", u"S", 4);

    layout(u"T");

    EXPECT_EQ(openCount(store_, inner), 1u);
    locator_->clearStores();
    EXPECT_NE(locator_->locate(u"S"), nullptr);
}

TEST_F(LayoutTest, TypeThatHoldsItselfHasNoFieldForThat) {
    const Offset table = build_.table(0, u"T");
    build_.primitive(table, kInt32, u"a");
    build_.structOf(table, u"self", u"T", 64);
    build_.primitive(table, kInt32, u"b");

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"a", kInt32, 1, 0, 4}, FieldRow{u"b", kInt32, 1, 4, 4}));
}

TEST_F(LayoutTest, RingOfTypesIsCutWhereItClosesAndCachedSo) {
    const Offset first = build_.table(0, u"A");
    const Offset second = build_.table(0, u"B");
    build_.primitive(first, kInt8, u"a");
    build_.structOf(first, u"toB", u"B", 1);
    build_.primitive(second, kInt8, u"b");
    build_.structOf(second, u"toA", u"A", 1);

    EXPECT_THAT(fieldsOf(layout(u"A")),
                ElementsAre(FieldRow{u"a", kInt8, 1, 0, 1}, FieldRow{u"toB.b", kInt8, 1, 1, 1}));
    EXPECT_THAT(fieldsOf(layout(u"B")), ElementsAre(FieldRow{u"b", kInt8, 1, 0, 1}));
}

TEST_F(LayoutTest, HoldingOneselfBesideAKnownTypeLeavesTheKnownOne) {
    build_.primitive(build_.table(0, u"S"), kInt8, u"x");
    build_.structOf(build_.table(0, u"T"), u"p", u"T;S", 2);

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"p[0].x", kInt8, 1, 0, 1}, FieldRow{u"p[1].x", kInt8, 1, 1, 1}));
}

TEST_F(LayoutTest, TypeIsFoundAgainOnceItIsFinished) {
    build_.primitive(build_.table(0, u"S"), kInt8, u"x");
    const Offset table = build_.table(0, u"T");
    build_.structOf(table, u"p", u"S", 1);
    build_.structOf(table, u"q", u"S", 1);

    EXPECT_THAT(fieldsOf(layout(u"T")),
                ElementsAre(FieldRow{u"p.x", kInt8, 1, 0, 1}, FieldRow{u"q.x", kInt8, 1, 1, 1}));
}

TEST_F(LayoutTest, InnerTypesComeFromAnyStoreOfTheLocator) {
    MemoryDataStore library;
    Builder(library).primitive(Builder(library).table(0, u"S"), kInt8, u"x");
    build_.structOf(build_.table(0, u"T"), u"p", u"S", 1);
    const auto locator = ISchemaLocator::make(&store_);
    locator->addStore(&library);

    EXPECT_THAT(fieldsOf(*locator->locate(u"T")->layout()), ElementsAre(FieldRow{u"p.x", kInt8, 1, 0, 1}));
}

// Shows one byte range as the value of some records, so that structs of gigabytes cost nothing.
class HugeValueStore : public MemoryDataStore {
  public:
    void show(Offset offset, const char* bytes, std::uint32_t size) { shown_[offset] = {bytes, size}; }

    const void* view(Offset offset, std::uint32_t& size) override {
        const auto found = shown_.find(offset);
        if (found == shown_.end()) return MemoryDataStore::view(offset, size);
        size = found->second.second;
        return found->second.first;
    }

  private:
    std::map<Offset, std::pair<const char*, std::uint32_t>> shown_;
};

// The record of a primitive with a value of gigabytes, in memory that is never touched behind the header.
class HugePrimitive {
  public:
    HugePrimitive(HugeValueStore& store, Offset offset, std::uint32_t valueSize) {
        const std::string header = recordBytes(store, offset);
        size_ = static_cast<std::uint32_t>(header.size()) + valueSize;
        bytes_ = static_cast<char*>(
            mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
        if (bytes_ == MAP_FAILED) throw std::bad_alloc();
        std::memcpy(bytes_, header.data(), header.size());
        std::memcpy(bytes_ + field::valueSize.position, &valueSize, sizeof valueSize);
        store.show(offset, bytes_, size_);
    }
    HugePrimitive(const HugePrimitive&) = delete;
    HugePrimitive& operator=(const HugePrimitive&) = delete;
    ~HugePrimitive() { munmap(bytes_, size_); }

  private:
    char* bytes_;
    std::uint32_t size_;
};

constexpr std::uint32_t kGiB = 1u << 30;

TEST(Layout, FieldThatWouldOverflowTheStructEndsIt) {
    HugeValueStore store;
    Builder build(store);
    const Offset table = build.table(0, u"T");
    const HugePrimitive first(store, build.primitive(table, kDouble, u"first", 0), 3 * kGiB);
    const HugePrimitive second(store, build.primitive(table, kDouble, u"second", 0), 3 * kGiB);
    build.primitive(table, kInt8, u"small");

    const auto locator = ISchemaLocator::make(&store);
    IStructLayout& shape = *locator->locate(u"T")->layout();

    EXPECT_THAT(fieldsOf(shape), ElementsAre(FieldRow{u"first", kDouble, 3 * kGiB / 8, 0, 3 * kGiB}));
    EXPECT_EQ(shape.byteSize(), 3 * kGiB);
    EXPECT_EQ(shape.valueCount(), 3 * kGiB / 8);
}

TEST(Layout, StructsThatWouldOverflowEndAmongTheirFields) {
    HugeValueStore store;
    Builder build(store);
    const Offset inner = build.table(0, u"S");
    build.primitive(inner, kInt8, u"x");
    const HugePrimitive rest(store, build.primitive(inner, kDouble, u"rest", 0), kGiB);
    const Offset table = build.table(0, u"T");
    const HugePrimitive p(store, build.structOf(table, u"p", u"S", 0), 3 * kGiB);
    const HugePrimitive q(store, build.structOf(table, u"q", u"S", 0), 3 * kGiB);
    build.primitive(table, kInt8, u"small");

    const auto locator = ISchemaLocator::make(&store);
    IStructLayout& shape = *locator->locate(u"T")->layout();

    EXPECT_THAT(fieldsOf(shape), ElementsAre(FieldRow{u"p[0].x", kInt8, 1, 0, 1},
                                             FieldRow{u"p[0].rest", kDouble, kGiB / 8, 1, kGiB},
                                             FieldRow{u"p[1].x", kInt8, 1, kGiB + 1, 1},
                                             FieldRow{u"p[1].rest", kDouble, kGiB / 8, kGiB + 2, kGiB},
                                             FieldRow{u"q[0].x", kInt8, 1, 2 * kGiB + 2, 1},
                                             FieldRow{u"q[0].rest", kDouble, kGiB / 8, 2 * kGiB + 3, kGiB},
                                             FieldRow{u"q[1].x", kInt8, 1, 3 * kGiB + 3, 1}));
    EXPECT_EQ(shape.byteSize(), 3 * kGiB + 4);
}

// What a document can ask for with one attribute.
TEST(Layout, TooManyFieldsEndTheStruct) {
    MemoryDataStore store;
    Builder build(store);
    build.primitive(build.table(0, u"S"), kInt8, u"x");
    build.structOf(build.table(0, u"T"), u"p", u"S", 300'000);

    const auto locator = ISchemaLocator::make(&store);
    IStructLayout& shape = *locator->locate(u"T")->layout();

    EXPECT_EQ(shape.fieldCount(), Schema::Layout::kMostFields);
    EXPECT_EQ(shape.byteSize(), Schema::Layout::kMostFields);
}

}  // namespace
}  // namespace norvane::platform::test
