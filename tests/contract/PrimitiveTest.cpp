#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

using Ints = std::vector<std::int32_t>;

class PrimitiveTest : public ModelTest {
  protected:
    ~PrimitiveTest() noexcept override = default;

    SharedPtr<IPrimitive> make(std::uint32_t type) { return top->makePrimitive(u"p", type); }
    // Another name each time.
    SharedPtr<IPrimitive> makeNamed(std::uint32_t type) {
        return top->makePrimitive((name += u'x').c_str(), type);
    }
    SharedPtr<IProperty> openAnew() { return top->findProperty(u"p"); }
    RawRecord raw() { return record(store, u"top/p"); }

    std::u16string name;
};

TEST_F(PrimitiveTest, NewPrimitiveIsEmpty) {
    const auto p = make(kInt32);
    std::int32_t target = 7;

    EXPECT_EQ(p->count(), 0u);
    EXPECT_EQ(p->elementSize(), 4u);
    EXPECT_EQ(p->valueBytes(), 0u);
    EXPECT_EQ(p->dataType(), kInt32);
    EXPECT_EQ(p->units(), 0u);
    EXPECT_FALSE(p->readValues(&target, 0, 1));
    EXPECT_EQ(target, 7);
}

TEST_F(PrimitiveTest, NewPrimitiveHasNoTexts) {
    const auto p = make(kStruct);

    EXPECT_EQ(p->structType().value(), nullptr);
    EXPECT_EQ(p->uri().value(), nullptr);
    EXPECT_EQ(p->locale().value(), nullptr);
}

TEST_F(PrimitiveTest, NewPrimitiveRecordHasExactlyTheseBytes) {
    make(kDouble);

    const auto parent = static_cast<unsigned char>(recordAt(store, u"top"));
    EXPECT_EQ(raw().bytes(), bytesWith({1, parent, 0, 0, 0,  0, 0, 0, 0,   kNone, 0, 0, 0, 0, 0,     //
                                        0, 0,      0, 0, 17, 0, 0, 0, 0,   0,     0, 0, 4, 0, 0, 0,  //
                                        0, 0,      0, 0, 0,  0, 0, 0, 'p', 0,     0, 0}));
}

TEST_F(PrimitiveTest, ElementSizesFollowTheTypes) {
    const std::uint32_t sizes[] = {0, 1, 2, 2, 2, 2, 2, 1, 1, 1, 2, 2, 4,
                                   4, 8, 8, 4, 8, 8, 8, 8, 8, 8, 8, 1, 0};
    for (std::uint32_t type = 0; type < 26; ++type) {
        const auto p = makeNamed(type);
        EXPECT_EQ(p->elementSize(), sizes[type]) << type;
        EXPECT_EQ(p->dataType(), type);
        EXPECT_TRUE(p->resize(3)) << type;
        EXPECT_EQ(p->count(), sizes[type] == 0 ? 0u : 3u) << type;
        EXPECT_EQ(p->valueBytes(), 3 * sizes[type]) << type;
    }
}

TEST_F(PrimitiveTest, NoTypeHoldsNoValue) {
    for (std::uint32_t type : {0u, 25u, 0x80000000u, 0xFFFFFFFFu}) {
        const auto p = makeNamed(type);
        std::int32_t value = 5;
        EXPECT_FALSE(p->writeValues(&value, 0, 1));
        EXPECT_FALSE(p->readValues(&value, 0, 1));
        EXPECT_TRUE(p->resize(0xFFFFFFFFu));
        EXPECT_EQ(p->count(), 0u);
        EXPECT_EQ(p->dataType(), type);
    }
}

TEST_F(PrimitiveTest, FirstWriteMakesTheValue) {
    const auto p = make(kInt32);

    EXPECT_TRUE(write<std::int32_t>(*p, {1, 2, 3}));

    EXPECT_EQ(p->count(), 3u);
    EXPECT_EQ(p->valueBytes(), 12u);
    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{1, 2, 3}));
    EXPECT_EQ(raw().at(38), 12u);
    EXPECT_EQ(raw().size(), 46u + 12u);
    EXPECT_EQ(raw().at(46), 1u);
    EXPECT_EQ(raw().at(54), 3u);
}

TEST_F(PrimitiveTest, AVectorIsThreeElements) {
    const auto p = make(19);

    write<double>(*p, {1, 2, 3});

    EXPECT_EQ(p->count(), 3u);
    EXPECT_EQ(p->elementSize(), 8u);
    EXPECT_EQ(p->valueBytes(), 24u);
}

// On an empty value the source is the base of the whole array.
TEST_F(PrimitiveTest, WriteBehindTheStartOfAnEmptyValueTakesTheSameElementsOfTheSource) {
    const auto p = make(kInt32);
    const std::int32_t source[] = {10, 11, 12};

    EXPECT_TRUE(p->writeValues(source, 1, 2));

    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{0, 11, 12}));
}

TEST_F(PrimitiveTest, WriteInsideAValueTakesTheSourceFromItsBeginning) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});

    EXPECT_TRUE(write<std::int32_t>(*p, {8, 9}, 1));

    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{1, 8, 9}));
}

TEST_F(PrimitiveTest, WritePastTheEndLengthens) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});

    EXPECT_TRUE(write<std::int32_t>(*p, {8, 9}, 2));

    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{1, 2, 8, 9}));
    EXPECT_EQ(p->valueBytes(), 16u);
}

TEST_F(PrimitiveTest, GapReadsAsZero) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1});

    EXPECT_TRUE(write<std::int32_t>(*p, {9}, 3));

    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{1, 0, 0, 9}));
}

TEST_F(PrimitiveTest, ShorterWriteLeavesTheTail) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});

    write<std::int32_t>(*p, {9});

    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{9, 2, 3}));
}

TEST_F(PrimitiveTest, WriteOfNothingIsRefused) {
    const auto p = make(kInt32);
    const std::int32_t value = 1;
    const auto before = contentsOf(store);

    EXPECT_FALSE(p->writeValues(&value, 0, 0));
    EXPECT_FALSE(p->writeValues(nullptr, 0, 1));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(PrimitiveTest, RangesThatWouldWrapAreRefused) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});
    const auto before = contentsOf(store);
    std::int32_t values[2] = {5, 6};

    EXPECT_FALSE(p->writeValues(values, 0xFFFFFFFFu, 2));
    EXPECT_FALSE(p->readValues(values, 0xFFFFFFFFu, 2));
    EXPECT_FALSE(p->readValues(values, 2, 0xFFFFFFFFu));
    EXPECT_FALSE(p->resize(0xFFFFFFFFu));

    EXPECT_EQ(contentsOf(store), before);
    EXPECT_EQ(values[0], 5);
    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{1, 2, 3}));
}

TEST_F(PrimitiveTest, ReadIsAllOrNothing) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});
    Ints target{7, 7};

    EXPECT_FALSE(p->readValues(target.data(), 2, 2));
    EXPECT_EQ(target, (Ints{7, 7}));
    EXPECT_TRUE(p->readValues(target.data(), 1, 2));
    EXPECT_EQ(target, (Ints{2, 3}));
}

TEST_F(PrimitiveTest, ReadOfNothingIsFalse) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1});
    std::int32_t target = 7;

    EXPECT_FALSE(p->readValues(&target, 0, 0));
    EXPECT_FALSE(p->readValues(nullptr, 0, 1));
    EXPECT_EQ(target, 7);
}

TEST_F(PrimitiveTest, ResizeKeepsNothing) {
    const auto p = make(kDouble);
    write<double>(*p, {1, 2, 3});

    EXPECT_TRUE(p->resize(4));

    EXPECT_EQ(valuesOf<double>(*p), (std::vector<double>{0, 0, 0, 0}));
}

TEST_F(PrimitiveTest, ResizeToNothingRemovesTheValue) {
    const auto p = make(kDouble);
    write<double>(*p, {1});

    EXPECT_TRUE(p->resize(0));

    EXPECT_EQ(p->valueBytes(), 0u);
    EXPECT_EQ(raw().size(), 46u);
}

TEST_F(PrimitiveTest, UriTakesTheValuesPlace) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});
    std::int32_t value = 7;

    EXPECT_TRUE(p->setUri(u"file:x"));

    EXPECT_EQ(p->uri(), u"file:x");
    EXPECT_EQ(p->count(), 0u);
    EXPECT_EQ(p->valueBytes(), 14u);
    EXPECT_FALSE(p->readValues(&value, 0, 1));
    EXPECT_FALSE(p->writeValues(&value, 0, 1));
    EXPECT_FALSE(p->resize(1));
    EXPECT_EQ(p->property()->flags(), 8);
    EXPECT_EQ(raw().textAt(46, 14), u"file:x");
}

TEST_F(PrimitiveTest, LeavingTheUriLeavesAnEmptyValue) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});
    p->setUri(u"file:x");

    EXPECT_TRUE(p->setUri(WideString()));

    EXPECT_EQ(p->uri().value(), nullptr);
    EXPECT_EQ(p->count(), 0u);
    EXPECT_EQ(p->valueBytes(), 0u);
    EXPECT_EQ(p->property()->flags(), 0);
    EXPECT_TRUE(p->resize(1));
}

TEST_F(PrimitiveTest, EmptyUriIsAUri) {
    const auto p = make(kInt32);

    p->setUri(u"");

    EXPECT_EQ(p->valueBytes(), 2u);
    EXPECT_NE(p->uri().value(), nullptr);
    EXPECT_EQ(p->property()->flags(), 8);
    EXPECT_FALSE(p->resize(1));
}

TEST_F(PrimitiveTest, LocaleIsKeptBesideTheValue) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2, 3});

    p->setLocale(u"de");

    EXPECT_EQ(p->locale(), u"de");
    EXPECT_EQ(raw().at(26), 6u);
    EXPECT_EQ(raw().textAt(42, 6), u"de");
    EXPECT_EQ(raw().textAt(48, 4), u"p");
    EXPECT_EQ(valuesOf<std::int32_t>(*p), (Ints{1, 2, 3}));
    EXPECT_EQ(openAnew()->name(), u"p");
}

TEST_F(PrimitiveTest, LocaleWithoutTextIsRemoved) {
    const auto p = make(kInt32);
    write<std::int32_t>(*p, {1, 2});
    const auto before = raw().bytes();
    p->setLocale(u"de");

    p->setLocale(WideString());

    EXPECT_EQ(p->locale().value(), nullptr);
    EXPECT_EQ(raw().bytes(), before);
}

TEST_F(PrimitiveTest, StructTypeIsForStructsOnly) {
    const auto p = make(kDouble);
    const auto before = contentsOf(store);

    EXPECT_FALSE(p->setStructType(u"T"));

    EXPECT_EQ(contentsOf(store), before);
    EXPECT_EQ(p->structType().value(), nullptr);
}

TEST_F(PrimitiveTest, StructTypeIsKeptBesideTheValue) {
    const auto p = make(kStruct);
    write<unsigned char>(*p, {1, 2, 3});

    EXPECT_TRUE(p->setStructType(u"a.T"));

    EXPECT_EQ(p->structType(), u"a.T");
    EXPECT_EQ(raw().at(34), 8u);
    EXPECT_EQ(raw().textAt(46, 8), u"a.T");
    EXPECT_EQ(valuesOf<unsigned char>(*p), (std::vector<unsigned char>{1, 2, 3}));
}

TEST_F(PrimitiveTest, StructTypeWithoutTextIsRefused) {
    const auto p = make(kStruct);
    p->setStructType(u"T");
    const auto before = contentsOf(store);

    EXPECT_FALSE(p->setStructType(WideString()));

    EXPECT_EQ(contentsOf(store), before);
    EXPECT_EQ(p->structType(), u"T");
}

// Removing the locale drops the struct type's bytes while its size stays: zeros end the record.
TEST_F(PrimitiveTest, RemovingTheLocaleOfAStructMisplacesTheValue) {
    const auto p = make(kStruct);
    p->setStructType(u"T");
    p->setLocale(u"de");
    write<unsigned char>(*p, {1, 2, 3, 4, 5, 6});

    p->setLocale(WideString());

    EXPECT_EQ(raw().at(26), 0u);
    EXPECT_EQ(raw().at(34), 4u);
    EXPECT_EQ(raw().size(), 46u + 4u + 6u);
    EXPECT_EQ(valuesOf<unsigned char>(*p), (std::vector<unsigned char>{5, 6, 0, 0, 0, 0}));
}

TEST_F(PrimitiveTest, UnitIsReadFromTheStore) {
    const auto t = top->makeTable(u"t", nullptr);
    const auto m = t->makePrimitive(u"m", kDouble, kMeter);

    EXPECT_EQ(m->units(), kMeter);
    overwrite(store, recordAt(store, u"top/t/m"), 18, 0x2009, 4);
    EXPECT_EQ(m->units(), 0x2009u);
}

TEST_F(PrimitiveTest, WriteClearsTheInheritedBitUpToTheFirstThatLacksIt) {
    const auto outer = makeGroup(*top, u"outer");
    const auto inner = makeGroup(*outer, u"inner");
    const auto t = inner->makeTable(u"t", nullptr);
    const auto m = t->makePrimitive(u"m", kInt32, 0);
    for (const char16_t* path : {u"", u"top", u"top/outer", u"top/outer/inner/t", u"top/outer/inner/t/m"})
        overwrite(store, recordAt(store, path), 13, 6, 1);

    write<std::int32_t>(*m, {1});

    EXPECT_EQ(record(store, u"top/outer/inner/t/m").flags(), 2);
    EXPECT_EQ(record(store, u"top/outer/inner/t").flags(), 2);
    EXPECT_EQ(record(store, u"top/outer/inner").flags(), 0);
    EXPECT_EQ(record(store, u"top/outer").flags(), 6);
    EXPECT_EQ(record(store, u"top").flags(), 6);
}

TEST_F(PrimitiveTest, WriteNeverChangesTheRoot) {
    const auto p = make(kInt32);
    for (const char16_t* path : {u"", u"top", u"top/p"}) overwrite(store, recordAt(store, path), 13, 4, 1);

    write<std::int32_t>(*p, {1});

    EXPECT_EQ(raw().flags(), 0);
    EXPECT_EQ(record(store, u"top").flags(), 0);
    EXPECT_EQ(record(store, u"").flags(), 4);
}

// Only the start of the walk may lack the bit.
TEST_F(PrimitiveTest, WriteToAPropertyWithoutTheBitClearsItOnItsParent) {
    const auto p = make(kInt32);
    overwrite(store, recordAt(store, u"top"), 13, 4, 1);

    write<std::int32_t>(*p, {1});

    EXPECT_EQ(record(store, u"top").flags(), 0);
}

TEST_F(PrimitiveTest, OnlyWritesClearTheInheritedBit) {
    const auto p = make(kStruct);
    p->property()->setFlags(4);
    const unsigned char byte = 1;

    p->resize(3);
    p->setLocale(u"de");
    p->setStructType(u"T");
    p->setUri(u"u");
    EXPECT_FALSE(p->writeValues(&byte, 0, 1));
    p->setUri(WideString());
    EXPECT_FALSE(p->writeValues(&byte, 0, 0));

    EXPECT_EQ(p->property()->flags(), 4);
}

TEST_F(PrimitiveTest, ValueOfAMillionElementsGoesInAndOut) {
    const auto p = make(kDouble);
    std::vector<double> values(1000000);
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<double>(i) / 3;

    EXPECT_TRUE(write(*p, values));

    EXPECT_EQ(valuesOf<double>(*IPrimitive::to(openAnew().get())), values);
}

TEST_F(PrimitiveTest, ValueAboveTheStoresLimitIsRefused) {
    ModelStore small(1000);
    const auto p = IContainerFrontEnd::toplevel(&small, u"top")->makePrimitive(u"p", kDouble);
    const std::vector<double> values(200, 1.5);

    EXPECT_FALSE(p->resize(200));
    EXPECT_FALSE(write(*p, values));
    EXPECT_EQ(p->count(), 0u);
    EXPECT_TRUE(p->resize(100));
    EXPECT_EQ(p->count(), 100u);
}

}  // namespace
}  // namespace norvane::platform::test
