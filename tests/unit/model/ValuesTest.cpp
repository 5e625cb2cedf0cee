// The value of a primitive and the sections beside it.
#include <limits>

#include "support/ThrowingStore.h"
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

namespace field = Record::field;
using namespace data::metadata;
using Design::Primitive;

// Fails at writes when it is told to.
class UnwritableStore : public ForwardingStore {
  public:
    explicit UnwritableStore(IDataStore& store) : ForwardingStore(store, Extensions::off) {}
    void failWrites(bool fails) { fails_ = fails; }

  protected:
    void before(const char* name) override {
        if (fails_ && std::string(name) == "write") throw StoreFailure();
    }

  private:
    bool fails_ = false;
};

class ValuesTest : public ModelTest {
  protected:
    std::string valueOf(Offset primitive) {
        const RecordBytes bytes = record(primitive);
        return bytes.part(bytes.view().sectionPosition(field::valueSize), bytes.size());
    }
    static std::string bytesOf(const std::vector<std::int32_t>& values) {
        RecordBytes bytes;
        for (const std::int32_t value : values) bytes.u32(static_cast<std::uint32_t>(value));
        return bytes.bytes();
    }
    Offset ints(const std::vector<std::int32_t>& values) {
        return build_.values<std::int32_t>(kUnlisted, u"p", kInt32, values);
    }
    // A struct primitive with a locale tag, a type name and a value.
    Offset fullStruct() {
        const Offset p = build_.primitive(kUnlisted, u"p", kStruct);
        Primitive open(&store_, p);
        open.setLocale(u"de");
        open.setStructType(u"S");
        open.writeValues("value", 0, 5);
        return p;
    }
};

TEST_F(ValuesTest, FirstWriteMakesTheValue) {
    const Offset p = ints({});
    Primitive open(&store_, p);
    const std::int32_t source[] = {1, 2, 3};
    std::int32_t target[3] = {};
    EXPECT_EQ(open.readValues(target, 0, 1), 0u);

    EXPECT_TRUE(open.writeValues(source, 0, 3));

    EXPECT_EQ(valueOf(p), bytesOf({1, 2, 3}));
    EXPECT_EQ(record(p).u32At(38), 12u);
    EXPECT_EQ(open.valueSize(), 12u);
    EXPECT_EQ(open.count(), 3u);
    EXPECT_EQ(open.readValues(target, 0, 3), 3u);
    EXPECT_THAT(target, ElementsAre(1, 2, 3));
}

TEST_F(ValuesTest, WriteBehindTheStartOfAnEmptyValueTakesTheSourceAsTheWholeArray) {
    const Offset p = ints({});
    const std::int32_t source[] = {9, 1, 2};

    EXPECT_TRUE(Primitive(&store_, p).writeValues(source, 1, 2));

    EXPECT_EQ(valueOf(p), bytesOf({0, 1, 2}));
}

TEST_F(ValuesTest, WriteInsideChangesTheBytesInPlace) {
    const Offset p = ints({1, 2, 3, 4});
    const std::int32_t source[] = {7, 8};
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_TRUE(open.writeValues(source, 1, 2));

    EXPECT_EQ(valueOf(p), bytesOf({1, 7, 8, 4}));
    EXPECT_THAT(changes(), ElementsAre("write " + std::to_string(p) + " size 62"));
}

TEST_F(ValuesTest, WriteAtTheStartDoesNotShortenTheValue) {
    const Offset p = ints({1, 2, 3});
    const std::int32_t source = 9;

    EXPECT_TRUE(Primitive(&store_, p).writeValues(&source, 0, 1));

    EXPECT_EQ(valueOf(p), bytesOf({9, 2, 3}));
}

TEST_F(ValuesTest, WriteOverTheEndGrowsTheValueToItsEnd) {
    const Offset p = ints({1, 2, 3});
    const std::int32_t source[] = {7, 8};
    Primitive open(&store_, p);

    EXPECT_TRUE(open.writeValues(source, 2, 2));

    EXPECT_EQ(valueOf(p), bytesOf({1, 2, 7, 8}));
    EXPECT_EQ(open.valueSize(), 16u);
}

TEST_F(ValuesTest, GapBehindTheOldEndIsZero) {
    const Offset p = ints({1});
    const std::int32_t source = 7;

    EXPECT_TRUE(Primitive(&store_, p).writeValues(&source, 3, 1));

    EXPECT_EQ(valueOf(p), bytesOf({1, 0, 0, 7}));
}

TEST_F(ValuesTest, BytesThatMakeNoWholeElementStayWhereTheValueGrows) {
    const Offset p = ints({});
    Record::Entity(&store_, p).setField(field::valueSize, "123456", 6);
    const std::int32_t source = 7;

    EXPECT_TRUE(Primitive(&store_, p).writeValues(&source, 2, 1));

    EXPECT_EQ(valueOf(p), std::string("123456\0\0\7\0\0\0", 12));
}

TEST_F(ValuesTest, NothingOrNoSourceIsNotWritten) {
    const Offset p = ints({1});
    const std::int32_t source = 7;
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_FALSE(open.writeValues(&source, 0, 0));
    EXPECT_FALSE(open.writeValues(nullptr, 0, 1));

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ValuesTest, RangeThatWrapsAroundIsRefused) {
    const Offset p = ints({1, 2});
    const std::int32_t source[] = {7, 8};
    std::int32_t target[2] = {5, 5};
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_FALSE(open.writeValues(source, 0xFFFFFFFFu, 2));
    EXPECT_FALSE(open.writeValues(source, 0x3FFFFFFFu, 2));
    EXPECT_FALSE(open.writeValues(source, 2, 0xFFFFFFFFu));
    EXPECT_EQ(open.readValues(target, 0xFFFFFFFFu, 2), 0u);
    EXPECT_EQ(open.readValues(target, 1, 0xFFFFFFFFu), 0u);

    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_THAT(target, ElementsAre(5, 5));
}

TEST_F(ValuesTest, ReadIsAllOrNothing) {
    const Offset p = ints({1, 2, 3});
    const Primitive open(&store_, p);
    std::int32_t target[2] = {5, 5};

    EXPECT_EQ(open.readValues(target, 2, 2), 0u);
    EXPECT_EQ(open.readValues(target, 3, 1), 0u);
    EXPECT_EQ(open.readValues(target, 0, 0), 0u);
    EXPECT_EQ(open.readValues(nullptr, 0, 1), 0u);
    EXPECT_THAT(target, ElementsAre(5, 5));

    EXPECT_EQ(open.readValues(target, 1, 2), 2u);
    EXPECT_THAT(target, ElementsAre(2, 3));
}

TEST_F(ValuesTest, ResizeKeepsNothing) {
    const Offset p = build_.values<double>(kUnlisted, u"p", kDouble, {1, 2, 3});
    Primitive open(&store_, p);

    EXPECT_TRUE(open.resize(4));

    EXPECT_EQ(valueOf(p), std::string(32, '\0'));
    EXPECT_EQ(open.valueSize(), 32u);
    EXPECT_TRUE(open.resize(0));
    EXPECT_EQ(record(p).size(), 46u);
    EXPECT_EQ(record(p).u32At(38), 0u);
    EXPECT_EQ(open.valueSize(), 0u);
}

TEST_F(ValuesTest, ResizeWritesOnce) {
    const Offset p = ints({1});
    Primitive open(&store_, p);
    forgetCalls();

    open.resize(2);

    EXPECT_THAT(changes(), ElementsAre("write " + std::to_string(p) + " size 54"));
}

TEST_F(ValuesTest, ResizeBeyondWhatARecordTakesIsRefused) {
    const Offset p = build_.values<double>(kUnlisted, u"p", kDouble, {1});
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_FALSE(open.resize(0xFFFFFFFFu));
    EXPECT_FALSE(open.resize(0x20000000u));
    EXPECT_THROW(open.resizeOrThrow(0xFFFFFFFFu), data::TooLarge);

    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(open.count(), 1u);
}

TEST_F(ValuesTest, TypesWithoutElementsHoldNothing) {
    for (const std::uint32_t type : {0u, 25u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        const Offset p = build_.primitive(kUnlisted, u"p", type);
        Record::Entity(&store_, p).setField(field::valueSize, "1234", 4);
        Primitive open(&store_, p);
        char bytes[4] = {};

        EXPECT_EQ(open.count(), 0u);
        EXPECT_FALSE(open.writeValues(bytes, 0, 1));
        EXPECT_EQ(open.readValues(bytes, 0, 1), 0u);
        EXPECT_FALSE(open.overlayValues(reinterpret_cast<std::byte*>(bytes), {1}));
        EXPECT_TRUE(open.resize(7));
        EXPECT_EQ(open.valueSize(), 0u);
    }
}

TEST_F(ValuesTest, UriTakesThePlaceOfTheValue) {
    const Offset p = ints({1, 2});
    Primitive open(&store_, p);
    open.setFlags(Record::kOptional);
    forgetCalls();

    EXPECT_TRUE(open.setUri(u"u:x"));

    EXPECT_THAT(changes(), ElementsAre("write " + std::to_string(p) + " size 54"));
    EXPECT_EQ(valueOf(p), RecordBytes().text(u"u:x").bytes());
    EXPECT_EQ(flagsOf(store_, p), Record::kOptional | Record::kHasUri);
    EXPECT_EQ(open.uri(), u"u:x");
    EXPECT_EQ(open.valueSize(), 8u);
    EXPECT_EQ(open.count(), 0u);
    EXPECT_TRUE(open.setUri(u""));
    EXPECT_EQ(record(p).u32At(38), 2u);
}

TEST_F(ValuesTest, UriThatIsTakenAwayLeavesAnEmptyValue) {
    const Offset p = ints({1, 2});
    Primitive open(&store_, p);
    open.setUri(u"u:x");

    EXPECT_TRUE(open.setUri(nullptr));

    EXPECT_EQ(record(p).u32At(38), 0u);
    EXPECT_EQ(flagsOf(store_, p), 0);
    EXPECT_EQ(open.uri(), u"");
    EXPECT_FALSE(open.hasUri());
    EXPECT_EQ(open.count(), 0u);
}

TEST_F(ValuesTest, ValueBehindAUriIsNeitherReadNorWritten) {
    const Offset p = ints({1});
    Primitive open(&store_, p);
    open.setUri(u"u:x");
    std::int32_t value = 7;
    forgetCalls();

    EXPECT_FALSE(open.writeValues(&value, 0, 1));
    EXPECT_FALSE(open.resize(1));
    EXPECT_FALSE(open.resize(0));
    EXPECT_EQ(open.readValues(&value, 0, 1), 0u);
    EXPECT_FALSE(open.overlayValues(reinterpret_cast<std::byte*>(&value), {1}));
    open.resizeOrThrow(0xFFFFFFFFu);

    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(value, 7);
}

TEST_F(ValuesTest, StructTypeIsForStructsOnly) {
    const Offset p = build_.primitive(kUnlisted, u"p", kDouble);
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_FALSE(open.setStructType(u"S"));

    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(open.structType(), u"");
}

TEST_F(ValuesTest, StructTypeIsWrittenTwice) {
    const Offset p = fullStruct();
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_TRUE(open.setStructType(u"Other.Type"));

    ASSERT_EQ(store_.changes().size(), 2u);
    EXPECT_EQ(store_.changes()[0], store_.changes()[1]);
    EXPECT_EQ(record(p).part(42, 100),
              RecordBytes().text(u"de").text(u"p").text(u"Other.Type").raw("value").bytes());
    EXPECT_EQ(open.structType(), u"Other.Type");
}

TEST_F(ValuesTest, StructTypeOfNullIsRefused) {
    const Offset p = fullStruct();
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_FALSE(open.setStructType(nullptr));

    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(open.structType(), u"S");
}

TEST_F(ValuesTest, UnitsAreStoredUncheckedAndReadAnew) {
    const Offset p = ints({1});
    Primitive first(&store_, p);
    const Primitive second(&store_, p);
    forgetCalls();

    first.setUnits(0xDEADBEEFu);

    EXPECT_EQ(second.units(), 0xDEADBEEFu);
    EXPECT_EQ(record(p).u32At(18), 0xDEADBEEFu);
    EXPECT_TRUE(store_.changes()[0].flag);
}

TEST_F(ValuesTest, LocaleTagIsReplacedAndRemovedBesideTheValue) {
    const Offset p = ints({1, 2});
    Primitive open(&store_, p);

    open.setLocale(u"de-at");
    EXPECT_EQ(record(p).part(42, 100), RecordBytes().text(u"de-at").text(u"p").u32(1).u32(2).bytes());
    EXPECT_EQ(open.localeTag(), u"de-at");
    open.setLocale(u"fr");
    EXPECT_EQ(record(p).part(42, 100), RecordBytes().text(u"fr").text(u"p").u32(1).u32(2).bytes());
    open.setLocale(nullptr);

    EXPECT_EQ(record(p).part(42, 100), RecordBytes().text(u"p").u32(1).u32(2).bytes());
    EXPECT_EQ(record(p).u32At(26), 0u);
    EXPECT_EQ(open.localeTag(), u"");
}

// The type's bytes go with the tag's, its size stays, and the value is found in another place from then on.
TEST_F(ValuesTest, StructThatLosesItsLocaleTagLosesItsTypeToo) {
    const Offset p = fullStruct();
    Primitive open(&store_, p);

    open.setLocale(nullptr);

    EXPECT_EQ(record(p).u32At(34), 4u);
    EXPECT_EQ(record(p).u32At(38), 5u);
    EXPECT_EQ(record(p).part(42, 100), RecordBytes().text(u"p").raw("value").zeros(4).bytes());
    EXPECT_EQ(open.structType(), u"S");
    char target[6] = {};
    EXPECT_EQ(open.readValues(target, 0, 5), 5u);
    EXPECT_EQ(std::string(target, 5), std::string("e\0\0\0\0", 5));
}

TEST_F(ValuesTest, ValueMayBeginAtAnOddByte) {
    const Offset p = fullStruct();
    Record::Entity(&store_, p).setField(field::structTypeSize, "odd", 3);
    char target[6] = {};

    EXPECT_EQ(Primitive(&store_, p).readValues(target, 0, 5), 5u);

    EXPECT_STREQ(target, "value");
}

TEST_F(ValuesTest, GivenElementsAreLaidOverTheValueInOneWrite) {
    const Offset p = ints({1, 2, 3});
    const std::int32_t elements[] = {7, 8, 9, 10, 11};
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_TRUE(open.overlayValues(reinterpret_cast<const std::byte*>(elements), {1, 0, 0, 1, 0}));

    EXPECT_EQ(valueOf(p), bytesOf({7, 2, 3, 10}));
    EXPECT_EQ(changes().size(), 1u);
    EXPECT_EQ(open.count(), 4u);
}

TEST_F(ValuesTest, NoGivenElementsWriteNothing) {
    const Offset p = ints({1});
    const std::int32_t elements[] = {7, 8};
    Primitive open(&store_, p);
    forgetCalls();

    EXPECT_FALSE(open.overlayValues(reinterpret_cast<const std::byte*>(elements), {0, 0}));
    EXPECT_FALSE(open.overlayValues(nullptr, {}));

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ValuesTest, ElementsLaidOverAnEmptyValueComeFromTheirOwnPlaces) {
    const Offset p = ints({});
    const std::int32_t elements[] = {7, 8, 9};

    EXPECT_TRUE(Primitive(&store_, p).overlayValues(reinterpret_cast<const std::byte*>(elements), {0, 0, 1}));

    EXPECT_EQ(valueOf(p), bytesOf({0, 0, 9}));
}

TEST_F(ValuesTest, LargerThanTheStoreTakesIsRefusedEverywhere) {
    MemoryDataStore small(MemoryDataStore::Options{.recordLimit = 100});
    ModelBuilder build(small);
    const Offset p = build.primitive(kUnlisted, u"p", kStruct);
    Primitive open(&small, p);
    const std::string source(200, 'x');
    const std::u16string text(50, u'x');

    EXPECT_FALSE(open.writeValues(source.data(), 0, 60));
    EXPECT_FALSE(open.resize(60));
    EXPECT_FALSE(open.setUri(text.c_str()));
    EXPECT_FALSE(open.setStructType(text.c_str()));
    EXPECT_THROW(open.overlayValues(reinterpret_cast<const std::byte*>(source.data()),
                                    std::vector<unsigned char>(60, 1)),
                 data::TooLarge);
    EXPECT_TRUE(open.writeValues(source.data(), 0, 54));

    EXPECT_EQ(small.recordSize(p), 100u);
}

TEST_F(ValuesTest, ObjectIsAheadOfItsRecordOnlyWhereAUriWasNotWritten) {
    MemoryDataStore memory;
    UnwritableStore store(memory);
    ModelBuilder build(store);
    const Offset p = build.values<std::int32_t>(kUnlisted, u"p", kInt32, {1});
    Primitive open(&store, p);
    const std::int32_t source[] = {1, 2};

    store.failWrites(true);
    EXPECT_THROW(open.resize(5), StoreFailure);
    EXPECT_THROW(open.writeValues(source, 0, 2), StoreFailure);
    EXPECT_EQ(open.valueSize(), 4u);
    EXPECT_THROW(open.setUri(u"u"), StoreFailure);
    EXPECT_EQ(open.valueSize(), 4u);
    EXPECT_FALSE(open.hasUri());
    EXPECT_THROW(open.setUri(u"uri"), StoreFailure);
    EXPECT_EQ(open.valueSize(), 8u);
    store.failWrites(false);
}

}  // namespace
}  // namespace norvane::platform::test
