// What is said of single records.
#include "unit/integrity/Store.h"

namespace norvane::platform::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using RecordFindings = SmallStore;

TEST_F(RecordFindings, SayNothingOfASoundStore) {
    const Report report = data::integrity::check(store);

    EXPECT_THAT(wordsOf(report.findings), IsEmpty());
    EXPECT_EQ(report.recordCount, 8u);
    EXPECT_TRUE(report.isSound());
}

TEST_F(RecordFindings, SayNothingOfAnEmptyStore) {
    MemoryDataStore empty;

    const Report report = data::integrity::check(empty);

    EXPECT_THAT(wordsOf(report.findings), IsEmpty());
    EXPECT_EQ(report.recordCount, 0u);
}

TEST_F(RecordFindings, NameAKindThatIsNone) {
    set(kP, 0, u8(6));
    EXPECT_THAT(checked(store), ElementsAre("error child-kind 2 g", "error kind 4"));
}

TEST_F(RecordFindings, NameARecordShorterThanItsFixedPart) {
    put(kP, RecordBytes(recordAt(store, kP).part(0, 41)));
    EXPECT_THAT(checked(store), ElementsAre("error child-kind 2 g", "error too-short 4"));
}

TEST_F(RecordFindings, TakeARecordOfItsFixedPartAloneForWhole) {
    put(kNames, RecordBytes().u8(5).u32(0));
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(RecordFindings, NameSizesBeyondTheRecord) {
    set(kP, 38, u32(9));
    EXPECT_THAT(checked(store), ElementsAre("error size 4 g.p"));
}

TEST_F(RecordFindings, NameSizesWhoseSumWrapsAround) {
    set(kG, 23, u32(0xFFFFFFFF));
    EXPECT_THAT(checked(store), ElementsAre("error size 2 g"));
}

TEST_F(RecordFindings, NameBytesThatBelongToNoSection) {
    put(kP, RecordBytes(recordAt(store, kP)).u8(0));
    EXPECT_THAT(checked(store), ElementsAre("error slack 4 g.p"));
}

TEST_F(RecordFindings, NameAListOfBrokenValues) {
    put(kOfG, RecordBytes(recordAt(store, kOfG)).u8(0).u8(0).u8(0));
    EXPECT_THAT(checked(store), ElementsAre("error list-size 3 g"));
}

TEST_F(RecordFindings, NameATextWithoutItsEnd) {
    set(kG, 33, RecordBytes().units(u"x"));
    EXPECT_THAT(checked(store), ElementsAre("error text 2 gx"));
}

TEST_F(RecordFindings, NameATextOfHalfACodeUnit) {
    put(kG, with(RecordBytes(recordAt(store, kG)).u8(0), 19, u32(5)));
    EXPECT_THAT(checked(store), ElementsAre("error text 2 g"));
}

TEST_F(RecordFindings, LetANameHaveRoomBehindItsEnd) {
    put(kG, with(RecordBytes(recordAt(store, kG)).zeros(12), 19, u32(16)));
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(RecordFindings, NameAMissingName) {
    put(kG, RecordBytes(with(recordAt(store, kG), 19, u32(0)).part(0, 31)));
    EXPECT_THAT(checked(store), ElementsAre("error no-name 2", "warning name-empty 2"));
}

TEST_F(RecordFindings, NameAnOpenCountAtRest) {
    set(kT, 5, u32(1));
    EXPECT_THAT(checked(store), ElementsAre("error open-count 5 g.t"));
}

TEST_F(RecordFindings, NameALocaleWithoutText) {
    put(kNames, localeRecord(RecordBytes().text(u"de").text(u"Ding").text(u"fr")));
    EXPECT_THAT(checked(store), ElementsAre("error locale-pairs 7 g"));
}

TEST_F(RecordFindings, NameADisplayNameWithoutItsEnd) {
    put(kNames, localeRecord(RecordBytes().text(u"de").units(u"Ding")));
    EXPECT_THAT(checked(store), ElementsAre("error locale-pairs 7 g"));
}

TEST_F(RecordFindings, WarnOfUnknownFlags) {
    set(kP, 13, u8(16));
    EXPECT_THAT(checked(store), ElementsAre("warning flags 4 g.p"));
}

TEST_F(RecordFindings, WarnOfAUriWhereThereIsNoValue) {
    set(kG, 13, u8(8));
    EXPECT_THAT(checked(store), ElementsAre("warning flags 2 g"));
}

TEST_F(RecordFindings, LetAllKnownFlagsBe) {
    put(kP, with(primitiveRecord(kG, 12, u"p", RecordBytes().text(u"x:y")), 13, u8(15)));
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(RecordFindings, WarnOfAContainerKindThatIsNone) {
    set(kG, 18, u8(3));
    EXPECT_THAT(checked(store), ElementsAre("warning container-kind 2 g"));
}

TEST_F(RecordFindings, WarnOfTypesBesideTheirRange) {
    set(kP, 22, u32(0));
    EXPECT_THAT(checked(store), ElementsAre("warning data-type 4 g.p"));
    set(kP, 22, u32(25));
    EXPECT_THAT(checked(store), ElementsAre("warning data-type 4 g.p"));
}

TEST_F(RecordFindings, WarnOfAUnitWithoutDimension) {
    set(kP, 18, u32(0xFFF));
    EXPECT_THAT(checked(store), ElementsAre("warning unit 4 g.p"));
    set(kP, 18, u32(0x1000));
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(RecordFindings, WarnOfFieldsThatAreUsedForNothing) {
    set(kP, 14, u32(kTop));
    set(kT, 18, u32(0x2001));
    EXPECT_THAT(checked(store), ElementsAre("warning unused-field 4 g.p", "warning unused-field 5 g.t"));
}

TEST_F(RecordFindings, WarnOfAUriWithoutItsEnd) {
    put(kP, with(primitiveRecord(kG, 12, u"p", RecordBytes().units(u"x:y")), 13, u8(8)));
    EXPECT_THAT(checked(store), ElementsAre("warning uri 4 g.p"));
}

TEST_F(RecordFindings, WarnOfAValueThatEndsWithinAnElement) {
    put(kP, primitiveRecord(kG, 12, u"p", RecordBytes().u32(7).u8(8)));
    EXPECT_THAT(checked(store), ElementsAre("warning value-size 4 g.p"));
}

TEST_F(RecordFindings, WarnOfAStringWithoutItsEnd) {
    put(kP, primitiveRecord(kG, 3, u"p", RecordBytes().text(u"a").units(u"b")));
    EXPECT_THAT(checked(store), ElementsAre("warning value-text 4 g.p"));
}

TEST_F(RecordFindings, WarnOfAStructTypeWithoutStruct) {
    const RecordBytes plain = primitiveRecord(kG, 12, u"p");
    put(kP, with(RecordBytes(plain).text(u"T"), 34, u32(4)));
    EXPECT_THAT(checked(store), ElementsAre("warning struct-type 4 g.p"));
    set(kP, 22, u32(24));
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(RecordFindings, WarnOfDefaultsThatCannotBeRead) {
    put(kDefaults, listOf({0x2001, 17, 0x2002, 16, 0x0FFF, 16, 0x3001, 25, 0x4001}));
    EXPECT_THAT(checked(store), ElementsAre("warning defaults-pair 5 g.t", "warning defaults-pair 5 g.t",
                                            "warning defaults-pair 5 g.t", "warning defaults-pair 5 g.t"));
}

TEST_F(RecordFindings, WarnOfNamesThatNoPathReaches) {
    put(kP, primitiveRecord(kG, 12, u"a.b"));
    put(kT, tableRecord(kG, none(), kDefaults, u"$$$$$_____empty_key"));
    put(kG, with(groupRecord(kRoot, kOfG, u""), 9, u32(kNames)));
    EXPECT_THAT(checked(store), ElementsAre("warning name-empty 2", "warning name-dot 4 .a.b",
                                            "warning name-reserved 5 .$$$$$_____empty_key"));
}

TEST_F(RecordFindings, NoteAStoreWithoutVersion) {
    store.setVersion(0);
    EXPECT_THAT(checked(store), ElementsAre("note version"));
}

}  // namespace
}  // namespace norvane::platform::test
