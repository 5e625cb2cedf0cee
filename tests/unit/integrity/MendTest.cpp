// What is changed about a store that is not sound.
#include "integrity/Mend.h"
#include "unit/integrity/Store.h"

namespace norvane::platform::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Mend : public SmallStore {
  protected:
    ~Mend() noexcept override = default;

    // What was mended; the store has no error afterwards.
    std::vector<std::string> mended(const std::u16string& recovered = {}) {
        findings_ = data::integrity::mend(store, {false, recovered});
        EXPECT_THAT(errorsOf(store), IsEmpty());
        return wordsOf(findings_);
    }
    const std::string& firstText() const { return findings_.at(0).text; }

    std::vector<Finding> findings_;
};

TEST_F(Mend, ChangesNothingAboutASoundStore) {
    const std::uint64_t stamp = store.changeStamp();
    EXPECT_THAT(mended(u"recovered"), IsEmpty());
    EXPECT_EQ(store.changeStamp(), stamp);
}

TEST_F(Mend, LeavesWarningsAlone) {
    set(kP, 22, u32(99));
    put(kT, tableRecord(kG, none(), kDefaults, u"p"));
    const std::uint64_t stamp = store.changeStamp();
    EXPECT_THAT(mended(), IsEmpty());
    EXPECT_EQ(store.changeStamp(), stamp);
}

TEST_F(Mend, RemovesARecordThatIsNone) {
    put(kP, RecordBytes().u8(77).u32(1));
    EXPECT_THAT(mended(), ElementsAre("error child-dangling 2 g", "error kind 4"));
    EXPECT_EQ(store.recordSize(kP), 0u);
    EXPECT_EQ(recordAt(store, kOfG), listOf({kT}));
}

TEST_F(Mend, CutsSizesToTheRecord) {
    const RecordBytes whole = recordAt(store, kP);
    set(kP, 38, u32(0xFFFFFFF0));
    EXPECT_THAT(mended(), ElementsAre("error size 4 g.p"));
    EXPECT_EQ(recordAt(store, kP), whole);
    EXPECT_THAT(firstText(), HasSubstr("end where the record does"));
}

TEST_F(Mend, KeepsWhatReadersSeeOfANameThatIsTooLong) {
    set(kG, 19, u32(400));
    EXPECT_THAT(mended(), ElementsAre("error size 2 g"));
    EXPECT_EQ(recordAt(store, kG).u32At(19), 4u);
    EXPECT_EQ(recordAt(store, kG).size(), 35u);
}

TEST_F(Mend, EndsATextWhereReadersDo) {
    set(kG, 33, RecordBytes().units(u"x"));
    EXPECT_THAT(mended(), ElementsAre("error text 2 gx"));
    EXPECT_EQ(recordAt(store, kG).part(31, 99), RecordBytes().text(u"gx").bytes());
    EXPECT_EQ(recordAt(store, kG).u32At(19), 6u);
}

TEST_F(Mend, CutsBytesOfNoSection) {
    const RecordBytes whole = recordAt(store, kP);
    put(kP, RecordBytes(whole).u32(0));
    EXPECT_THAT(mended(), ElementsAre("error slack 4 g.p"));
    EXPECT_EQ(recordAt(store, kP), whole);
}

TEST_F(Mend, CutsHalfAValueOffAList) {
    put(kOfG, RecordBytes(listOf({kP, kT})).u8(1));
    EXPECT_THAT(mended(), ElementsAre("error list-size 3 g"));
    EXPECT_EQ(recordAt(store, kOfG), listOf({kP, kT}));
}

TEST_F(Mend, GivesTheEmptyNameWhereThereIsNone) {
    put(kG, RecordBytes(with(recordAt(store, kG), 19, u32(0)).part(0, 31)));
    EXPECT_THAT(mended(), ElementsAre("error no-name 2"));
    EXPECT_EQ(recordAt(store, kG).u32At(19), 2u);
}

TEST_F(Mend, KeepsWholePairsOfDisplayNames) {
    put(kNames, localeRecord(RecordBytes().text(u"de").text(u"Ding").text(u"fr").units(u"ch")));
    EXPECT_THAT(mended(), ElementsAre("error locale-pairs 7 g"));
    EXPECT_EQ(recordAt(store, kNames), localeRecord(RecordBytes().text(u"de").text(u"Ding")));
}

TEST_F(Mend, ClosesWhatCountsAsOpen) {
    set(kT, 5, u32(3));
    EXPECT_THAT(mended(), ElementsAre("error open-count 5 g.t"));
    EXPECT_EQ(recordAt(store, kT).u32At(5), 0u);
}

TEST_F(Mend, MakesARootOfWhatIsNone) {
    put(kRoot, RecordBytes().u8(9));
    EXPECT_THAT(mended(), ElementsAre("error root-missing 0", "note relisted 0"));
    EXPECT_EQ(recordAt(store, kRoot).u8At(0), 0u);
    EXPECT_EQ(recordAt(store, recordAt(store, kRoot).u32At(14)), listOf({kG}));
}

TEST_F(Mend, TakesAChildOutOfAListThatIsNotItsParents) {
    put(kTop, listOf({kP, kG}));
    EXPECT_THAT(mended(), ElementsAre("error listed-twice 4 g.p"));
    EXPECT_EQ(recordAt(store, kTop), listOf({kG}));
    EXPECT_EQ(recordAt(store, kOfG), listOf({kP, kT}));
}

TEST_F(Mend, KeepsTheFirstOfTwoPlacesInOneList) {
    put(kOfG, listOf({kP, kT, kP}));
    EXPECT_THAT(mended(), ElementsAre("error listed-twice 4 g.p"));
    EXPECT_EQ(recordAt(store, kOfG), listOf({kP, kT}));
}

TEST_F(Mend, CutsARingWhereItCloses) {
    const std::uint32_t ofT = add(listOf({kG}));
    set(kT, 14, u32(ofT));
    EXPECT_THAT(mended(), ElementsAre("error cycle 2 g"));
    EXPECT_EQ(recordAt(store, ofT), listOf({}));
    EXPECT_EQ(recordAt(store, kTop), listOf({kG}));
}

TEST_F(Mend, PointsParentsBack) {
    set(kP, 1, u32(kT));
    set(kRoot, 1, u32(kT));
    EXPECT_THAT(mended(), ElementsAre("error parent 0", "error parent 4 g.p"));
    EXPECT_EQ(recordAt(store, kP).u32At(1), kG);
    EXPECT_EQ(recordAt(store, kRoot).u32At(1), none());
}

TEST_F(Mend, DropsReferencesToWhatIsNotThere) {
    store.remove(kNames);
    store.remove(kDefaults);
    EXPECT_THAT(mended(), ElementsAre("error locale 2 g", "error defaults 5 g.t"));
    EXPECT_EQ(recordAt(store, kG).u32At(9), none());
    EXPECT_EQ(recordAt(store, kT).u32At(22), none());
}

TEST_F(Mend, DropsTheSecondReferenceToARecord) {
    set(kP, 9, u32(kNames));
    EXPECT_THAT(mended(), ElementsAre("error shared 4 g.p"));
    EXPECT_EQ(recordAt(store, kP).u32At(9), none());
    EXPECT_EQ(recordAt(store, kG).u32At(9), kNames);
}

TEST_F(Mend, MakesALostListAnew) {
    store.remove(kOfG);
    EXPECT_THAT(mended(), ElementsAre("error children 2 g", "note relisted 2 g"));
    EXPECT_EQ(recordAt(store, recordAt(store, kG).u32At(14)), listOf({kP, kT}));
}

TEST_F(Mend, MakesALostListAnewForASetThatWasGivenAnother) {
    const std::uint32_t later = add(groupRecord(kRoot, kOfG, u"later"));
    const std::uint32_t child = add(primitiveRecord(later, 12, u"own"));
    addTo(kTop, later);
    EXPECT_THAT(mended(), ElementsAre("error shared 8 later", "note relisted 8 later"));
    EXPECT_EQ(recordAt(store, recordAt(store, later).u32At(14)), listOf({child}));
}

TEST_F(Mend, TakesNoCopiesIntoALostList) {
    add(primitiveRecord(kG, 12, u"p"));
    store.remove(kOfG);
    EXPECT_THAT(mended(), ElementsAre("error children 2 g", "note relisted 2 g"));
    EXPECT_EQ(recordAt(store, recordAt(store, kG).u32At(14)), listOf({kP, kT}));
}

TEST_F(Mend, LeavesWhatNothingLeadsToAlone) {
    const std::uint32_t lost = add(with(groupRecord(none(), 700, u"lost"), 9, u32(kNames)));
    const RecordBytes before = recordAt(store, lost);
    EXPECT_THAT(mended(), IsEmpty());
    EXPECT_EQ(recordAt(store, lost), before);
}

TEST_F(Mend, PutsWhatNothingLeadsToBelowAGroup) {
    const std::uint32_t list = add(listOf({10}));
    const std::uint32_t lost = add(groupRecord(none(), list, u"lost"));
    add(primitiveRecord(lost, 12, u"below"));
    const std::uint32_t other = add(primitiveRecord(77, 12, u"other"));

    EXPECT_THAT(mended(u"found"),
                ElementsAre("note recovered 9 found.lost", "note recovered 11 found.other"));

    const std::uint32_t group = 12;
    EXPECT_EQ(recordAt(store, kTop), listOf({kG, group}));
    EXPECT_EQ(recordAt(store, group), with(groupRecord(kRoot, 13, u"found"), 0, u8(4)));
    EXPECT_EQ(recordAt(store, 13), listOf({lost, other}));
    EXPECT_EQ(recordAt(store, lost).u32At(1), group);
}

TEST_F(Mend, MendsWhatItPutsBelowTheGroup) {
    const std::uint32_t lost = add(with(groupRecord(none(), kOfG, u"lost"), 9, u32(kNames)));
    EXPECT_THAT(mended(u"found"),
                ElementsAre("error shared 8", "error shared 8", "note recovered 8 found.lost"));
    EXPECT_EQ(recordAt(store, lost).u32At(14), none());
    EXPECT_EQ(recordAt(store, lost).u32At(9), none());
}

TEST_F(Mend, OpensRingsThatNothingLeadsTo) {
    const std::uint32_t list = add(listOf({9}));
    add(groupRecord(9, list, u"ring"));
    EXPECT_THAT(mended(u"found"), ElementsAre("error cycle 9", "note recovered 9 found.ring"));
}

TEST_F(Mend, PutsTheChildrenOfASecondRootBelowTheGroup) {
    const std::uint32_t list = add(listOf({10}));
    const std::uint32_t root = add(rootRecord(list));
    add(groupRecord(root, none(), u"x"));
    EXPECT_THAT(mended(u"found"), ElementsAre("note recovered 10 found.x"));
}

TEST_F(Mend, FindsAFreeNameForTheGroup) {
    add(primitiveRecord(none(), 12, u"lost"));
    mended(u"g");
    EXPECT_EQ(recordAt(store, 9).view().name(), u"g-2");
}

TEST_F(Mend, GivesARootItsFirstListForTheGroup) {
    set(kRoot, 14, u32(none()));
    mended(u"found");
    EXPECT_EQ(recordAt(store, recordAt(store, kRoot).u32At(14)), listOf({8}));
    EXPECT_EQ(recordAt(store, kG).u32At(1), 8u);
}

}  // namespace
}  // namespace norvane::platform::test
