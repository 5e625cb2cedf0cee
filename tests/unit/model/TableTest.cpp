// Tables: class text and the directory of defaults.
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

namespace field = Record::field;
using Design::Table;

class TableTest : public ModelTest {
  protected:
    Offset directoryOf(Offset table) { return record(table).u32At(22); }
    RecordBytes pairs(Offset table) { return record(directoryOf(table)); }
    void putDirectory(const RecordBytes& directory) {
        Record::storeField(&store_, table_, field::defaults, appendTo(store_, directory));
    }

    const Offset table_ = build_.table(root_, u"t");
};

TEST_F(TableTest, NewTableIsOpenAndHasNeitherChildrenNorDefaults) {
    const Table open(&store_, u"x");

    RecordBytes expected;
    expected.u8(2).noRecord().u32(1).noRecord().u8(0).noRecord();
    EXPECT_EQ(record(open.offset()), expected.u32(0).noRecord().u32(4).u32(0).text(u"x"));
    EXPECT_EQ(open.name(), u"x");
    EXPECT_THAT(open.defaultKeys(), IsEmpty());
}

TEST_F(TableTest, ClassTextIsReadFromTheRecord) {
    EXPECT_EQ(Table(&store_, table_).classText(), u"");

    Record::Entity(&store_, table_).setField(field::tableClassSize, u"A;B", 8);

    EXPECT_EQ(Table(&store_, table_).classText(), u"A;B");
}

TEST_F(TableTest, SameMeansNameAndClassText) {
    const Offset other = build_.table(kUnlisted, u"t");
    EXPECT_TRUE(Table(&store_, table_).sameAs(Table(&store_, other)));

    Record::Entity(&store_, other).setField(field::tableClassSize, u"A", 4);

    EXPECT_FALSE(Table(&store_, table_).sameAs(Table(&store_, other)));
    EXPECT_FALSE(Table(&store_, table_).sameAs(Table(&store_, u"u")));
}

TEST_F(TableTest, MissingDefaultCostsNoLookAtTheStore) {
    const Table open(&store_, table_);
    forgetCalls();

    EXPECT_EQ(open.defaultType(0x2000), 0u);
    EXPECT_EQ(open.defaultUnit(0x2000), 0u);
    EXPECT_EQ(open.defaultType(0), 0u);

    EXPECT_TRUE(store_.calls().empty());
    EXPECT_EQ(directoryOf(table_), noRecord());
}

TEST_F(TableTest, DefaultOfNothingIsRefused) {
    Table open(&store_, table_);
    forgetCalls();

    EXPECT_FALSE(open.addDefault(0, 17));
    EXPECT_FALSE(open.addDefault(0x2001, 0));

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(TableTest, FirstDefaultMakesTheDirectory) {
    Table open(&store_, table_);
    forgetCalls();

    EXPECT_TRUE(open.addDefault(0x2001, 17));

    EXPECT_THAT(changes().at(0), "append 1");
    EXPECT_EQ(changes().at(1), "write " + std::to_string(table_) + " size 38");
    EXPECT_EQ(pairs(table_), listOf({0x2001, 17}));
    EXPECT_EQ(open.defaultType(0x2000), 17u);
    EXPECT_EQ(open.defaultUnit(0x2000), 0x2001u);
}

TEST_F(TableTest, DefaultIsFoundByItsKeyAlone) {
    Table open(&store_, table_);
    open.addDefault(0x2001, 17);

    EXPECT_EQ(open.defaultType(0x2001), 0u);
    EXPECT_EQ(open.defaultUnit(0x2001), 0u);
    EXPECT_EQ(open.defaultType(0x3000), 0u);
}

TEST_F(TableTest, SecondDefaultOfADimensionTakesThePlaceOfTheFirst) {
    Table open(&store_, table_);
    open.addDefault(0x2001, 17);

    EXPECT_TRUE(open.addDefault(0x200E, 16));

    EXPECT_EQ(pairs(table_), listOf({0x200E, 16}));
    EXPECT_THAT(open.defaultKeys(), ElementsAre(0x2000));
    EXPECT_EQ(open.defaultUnit(0x2000), 0x200Eu);
    EXPECT_EQ(open.defaultType(0x2000), 16u);
}

TEST_F(TableTest, PairsStandInTheOrderOfDeclarationAndKeysAscend) {
    Table open(&store_, table_);
    open.addDefault(0x5019, 16);
    open.addDefault(0x2001, 17);
    open.addDefault(0x80000001u, 12);

    EXPECT_EQ(pairs(table_), listOf({0x5019, 16, 0x2001, 17, 0x80000001u, 12}));
    EXPECT_EQ(pairs(table_).size(), 25u);
    EXPECT_THAT(open.defaultKeys(), ElementsAre(std::numeric_limits<std::int32_t>::min(), 0x2000, 0x5000));
    EXPECT_EQ(open.defaultType(std::numeric_limits<std::int32_t>::min()), 12u);
}

TEST_F(TableTest, KeyIsTheUnitWithoutItsNumberInTheDimension) {
    EXPECT_EQ(Design::dimensionKey(0x2003), 0x2000);
    EXPECT_EQ(Design::dimensionKey(0xFFF), 0);
    EXPECT_EQ(Design::dimensionKey(0xFFFFFFFFu), -0x1000);
}

TEST_F(TableTest, DefaultOfKeyZeroIsStoredButNotFound) {
    Table open(&store_, table_);

    EXPECT_TRUE(open.addDefault(0xFFF, 17));

    EXPECT_EQ(pairs(table_), listOf({0xFFF, 17}));
    EXPECT_EQ(open.defaultType(0), 0u);
    EXPECT_THAT(open.defaultKeys(), ElementsAre(0));
}

TEST_F(TableTest, ReopenedTableKnowsItsDefaults) {
    build_.defaults(table_, 0x5019, 16);
    build_.defaults(table_, 0x2001, 17);
    const Table open(&store_, table_);

    EXPECT_THAT(open.defaultKeys(), ElementsAre(0x2000, 0x5000));
    EXPECT_EQ(open.defaultType(0x5000), 16u);
    EXPECT_EQ(open.defaultUnit(0x2000), 0x2001u);
}

TEST_F(TableTest, FirstPairOfAKeyCounts) {
    putDirectory(listOf({0x2001, 17, 0x2002, 16}));

    EXPECT_EQ(Table(&store_, table_).defaultUnit(0x2000), 0x2001u);
}

TEST_F(TableTest, HalfAPairHasNoType) {
    putDirectory(listOf({0x2001, 17, 0x5019}));
    const Table open(&store_, table_);

    EXPECT_THAT(open.defaultKeys(), ElementsAre(0x2000, 0x5000));
    EXPECT_EQ(open.defaultUnit(0x5000), 0x5019u);
    EXPECT_EQ(open.defaultType(0x5000), 0u);
}

TEST_F(TableTest, PairsThatAreGoneReadAsNone) {
    putDirectory(listOf({0x2001, 17, 0x5019, 16}));
    const Table open(&store_, table_);

    putAt(store_, directoryOf(table_), listOf({0x2001}));
    EXPECT_EQ(open.defaultType(0x2000), 0u);
    EXPECT_EQ(open.defaultUnit(0x5000), 0u);
    Record::storeField(&store_, table_, field::defaults, root_);

    EXPECT_EQ(open.defaultUnit(0x2000), 0u);
}

TEST_F(TableTest, ValuesAreReadAtEachCall) {
    build_.defaults(table_, 0x2001, 17);
    const Table open(&store_, table_);

    build_.defaults(table_, 0x2002, 12);

    EXPECT_EQ(open.defaultUnit(0x2000), 0x2002u);
    EXPECT_EQ(open.defaultType(0x2000), 12u);
}

TEST_F(TableTest, ObjectDoesNotSeeTheKeysThatAnotherAdded) {
    build_.defaults(table_, 0x2001, 17);
    Table first(&store_, table_);
    build_.defaults(table_, 0x5019, 16);

    EXPECT_EQ(first.defaultType(0x5000), 0u);
    EXPECT_TRUE(first.addDefault(0x6001, 12));

    EXPECT_EQ(pairs(table_), listOf({0x2001, 17, 0x6001, 12}));  // by its own count
}

TEST_F(TableTest, ObjectAdoptsTheDirectoryThatAnotherHasMade) {
    Table first(&store_, table_);
    build_.defaults(table_, 0x2001, 17);
    const Offset directory = directoryOf(table_);

    EXPECT_TRUE(first.addDefault(0x5019, 16));

    EXPECT_EQ(directoryOf(table_), directory);
    EXPECT_EQ(pairs(table_), listOf({0x2001, 17, 0x5019, 16}));
    EXPECT_EQ(first.defaultType(0x2000), 17u);
}

TEST_F(TableTest, DefaultsBeforeWhatIsNoDirectoryAreKeptInANewOne) {
    Record::storeField(&store_, table_, field::defaults, root_);
    const RecordBytes root = record(root_);

    EXPECT_TRUE(Table(&store_, table_).addDefault(0x2001, 17));

    EXPECT_EQ(record(root_), root);
    EXPECT_EQ(pairs(table_), listOf({0x2001, 17}));
}

TEST_F(TableTest, CopyHasADirectoryOfItsOwn) {
    build_.defaults(table_, 0x2001, 17);
    build_.primitive(table_, u"p");
    MemoryDataStore other;

    const Offset copy = Table(&store_, table_).clone(&other);

    EXPECT_EQ(recordAt(other, recordAt(other, copy).u32At(22)), listOf({0x2001, 17}));
    EXPECT_EQ(childrenOf(other, copy).size(), 1u);
    EXPECT_EQ(Table(&other, copy).defaultType(0x2000), 17u);
}

TEST_F(TableTest, CopyWithoutDefaultsHasNoDirectory) {
    const Offset copy = Table(&store_, table_).clone(&store_);

    EXPECT_EQ(record(copy).u32At(22), noRecord());
}

TEST_F(TableTest, ErasedTableLosesChildrenDefaultsAndDisplayNames) {
    build_.defaults(table_, 0x2001, 17);
    build_.localise(table_, u"de", u"eins");
    const Offset p = build_.primitive(table_, u"p");
    const Offset directory = directoryOf(table_);
    const Offset list = listRecordOf(store_, table_);
    const Offset locale = localeOf(store_, table_);
    Table open(&store_, table_);
    forgetCalls();

    open.erase();

    EXPECT_THAT(changes(),
                ElementsAre("remove " + std::to_string(locale), "remove " + std::to_string(p),
                            "remove " + std::to_string(list), "remove " + std::to_string(directory),
                            "write " + std::to_string(table_) + " size 38"));
    RecordBytes expected;
    expected.u8(2).u32(root_).u32(1).noRecord().u8(0).noRecord();
    EXPECT_EQ(record(table_), expected.u32(0).noRecord().u32(4).u32(0).text(u"t"));
    EXPECT_THAT(open.defaultKeys(), IsEmpty());
}

TEST_F(TableTest, ErasingRemovesNothingButADirectory) {
    const Offset other = build_.container(root_, u"other");
    Record::storeField(&store_, table_, field::defaults, other);

    Table(&store_, table_).erase();

    EXPECT_NE(store_.recordSize(other), 0u);
}

TEST_F(TableTest, TableIsRemovableUnlessAChildIsOpen) {
    const Offset p = build_.primitive(build_.table(table_, u"inner"), u"p");
    Table open(&store_, table_);
    EXPECT_TRUE(open.isRemovable());

    const Design::Primitive child(&store_, p);

    EXPECT_FALSE(open.isRemovable());
}

}  // namespace
}  // namespace norvane::platform::test
