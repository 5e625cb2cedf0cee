// What is said of how records hang together.
#include "unit/integrity/Store.h"

namespace norvane::platform::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using TreeFindings = SmallStore;

TEST_F(TreeFindings, NameAMissingRoot) {
    store.remove(kRoot);
    EXPECT_THAT(errorsOf(store), ElementsAre("error root-missing 0"));
}

TEST_F(TreeFindings, NameARootThatIsNoEntity) {
    put(kRoot, listOf({kG}));
    EXPECT_THAT(errorsOf(store), ElementsAre("error root-missing 0"));
}

TEST_F(TreeFindings, WarnOfARootOfAnotherKind) {
    put(kRoot, groupRecord(none(), kTop, u"m"));
    EXPECT_THAT(checked(store), ElementsAre("warning root-kind 0"));
}

TEST_F(TreeFindings, NameARootWithAParent) {
    set(kRoot, 1, u32(kG));
    EXPECT_THAT(checked(store), ElementsAre("error parent 0"));
}

TEST_F(TreeFindings, NameAParentThatPointsElsewhere) {
    set(kP, 1, u32(kT));
    EXPECT_THAT(checked(store), ElementsAre("error parent 4 g.p"));
}

TEST_F(TreeFindings, NameAListedEntityWithoutParent) {
    set(kP, 1, RecordBytes().noRecord());
    EXPECT_THAT(checked(store), ElementsAre("error parent 4 g.p"));
}

TEST_F(TreeFindings, NameAListThatIsNotThere) {
    store.remove(kOfG);
    EXPECT_THAT(checked(store),
                ElementsAre("error children 2 g", "note unreachable 4", "note unreachable 5"));
}

TEST_F(TreeFindings, NameAListOfAnotherKind) {
    set(kT, 14, u32(kNames));
    EXPECT_THAT(checked(store), ElementsAre("error children 5 g.t"));
}

TEST_F(TreeFindings, NameAnEntityThatIsItsOwnList) {
    set(kT, 14, u32(kT));
    EXPECT_THAT(checked(store), ElementsAre("error children 5 g.t"));
}

TEST_F(TreeFindings, NameAListOfTwoEntities) {
    set(kT, 14, u32(kOfG));
    EXPECT_THAT(checked(store), ElementsAre("error shared 5 g.t"));
}

TEST_F(TreeFindings, GiveASharedListToTheParentOfThoseListed) {
    const std::uint32_t later = add(groupRecord(kRoot, kOfG, u"later"));
    put(kTop, listOf({later, kG}));
    EXPECT_THAT(checked(store), ElementsAre("error shared 8 later"));
}

TEST_F(TreeFindings, NameDisplayNamesThatAreNotThere) {
    store.remove(kNames);
    EXPECT_THAT(checked(store), ElementsAre("error locale 2 g"));
}

TEST_F(TreeFindings, NameDisplayNamesOfAnotherKind) {
    set(kP, 9, u32(kTop));
    EXPECT_THAT(checked(store), ElementsAre("error locale 4 g.p"));
}

TEST_F(TreeFindings, NameDisplayNamesOfTwoEntities) {
    set(kP, 9, u32(kNames));
    EXPECT_THAT(checked(store), ElementsAre("error shared 4 g.p"));
}

TEST_F(TreeFindings, NameDefaultsThatAreNotThere) {
    store.remove(kDefaults);
    EXPECT_THAT(checked(store), ElementsAre("error defaults 5 g.t"));
}

TEST_F(TreeFindings, NameDefaultsThatListChildren) {
    set(kT, 22, u32(kOfG));
    EXPECT_THAT(checked(store), ElementsAre("error shared 5 g.t", "note unreachable 6"));
}

TEST_F(TreeFindings, NameAListedOffsetThatLeadsNowhere) {
    addTo(kOfG, 99);
    EXPECT_THAT(checked(store), ElementsAre("error child-dangling 2 g"));
}

TEST_F(TreeFindings, NameAListedOffsetOfNoRecord) {
    addTo(kOfG, none());
    EXPECT_THAT(checked(store), ElementsAre("error child-dangling 2 g"));
}

TEST_F(TreeFindings, NameAListedRecordThatIsNoChild) {
    addTo(kOfG, kNames);
    addTo(kOfG, kRoot);
    EXPECT_THAT(checked(store), ElementsAre("error child-kind 2 g", "error child-kind 2 g"));
}

TEST_F(TreeFindings, NameAChildThatIsListedTwiceInOneList) {
    addTo(kOfG, kP);
    EXPECT_THAT(checked(store), ElementsAre("error listed-twice 4 g.p"));
}

TEST_F(TreeFindings, NameAChildInTwoLists) {
    addTo(kTop, kP);
    EXPECT_THAT(checked(store), ElementsAre("error listed-twice 4 g.p"));
}

TEST_F(TreeFindings, GiveAChildInTwoListsToItsParentWhicheverComesFirst) {
    put(kTop, listOf({kP, kG}));
    EXPECT_THAT(checked(store), ElementsAre("error listed-twice 4 g.p"));
}

TEST_F(TreeFindings, GiveAChildToWhoeverListsItWhereItsParentIsBelowIt) {
    const std::uint32_t ofT = add(listOf({kG}));
    set(kT, 14, u32(ofT));
    set(kG, 1, u32(kT));
    EXPECT_THAT(checked(store), ElementsAre("error parent 2 g", "error cycle 2 g"));
}

TEST_F(TreeFindings, NameARing) {
    const std::uint32_t ofT = add(listOf({kG}));
    set(kT, 14, u32(ofT));
    EXPECT_THAT(checked(store), ElementsAre("error cycle 2 g"));
}

TEST_F(TreeFindings, NameAnEntityThatListsItself) {
    addTo(kOfG, kG);
    EXPECT_THAT(checked(store), ElementsAre("error cycle 2 g"));
}

TEST_F(TreeFindings, NameARootThatIsListed) {
    put(kRoot, groupRecord(none(), kTop, u"m"));
    addTo(kOfG, kRoot);
    EXPECT_THAT(errorsOf(store), ElementsAre("error cycle 0"));
}

TEST_F(TreeFindings, WarnOfSiblingsOfOneName) {
    put(kT, tableRecord(kG, none(), kDefaults, u"p"));
    EXPECT_THAT(checked(store), ElementsAre("warning name-twice 5 g.p"));
}

TEST_F(TreeFindings, LetCousinsHaveOneName) {
    addTo(kTop, add(primitiveRecord(kRoot, 12, u"p")));
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(TreeFindings, NoteWhatNothingLeadsTo) {
    const std::uint32_t list = add(listOf({10}));
    const std::uint32_t group = add(groupRecord(none(), list, u"lost"));
    add(primitiveRecord(group, 12, u"below"));
    add(listOf({}));

    const Report report = data::integrity::check(store);

    EXPECT_THAT(wordsOf(report.findings), ElementsAre("note unreachable 9", "note unreachable 11"));
    EXPECT_THAT(report.findings[0].text, HasSubstr("container, with 1 below it"));
    EXPECT_TRUE(report.isSound());
}

TEST_F(TreeFindings, NoteARingThatNothingLeadsTo) {
    const std::uint32_t list = add(listOf({9}));
    add(groupRecord(9, list, u"ring"));
    EXPECT_THAT(checked(store), ElementsAre("note cycle 9", "note unreachable 9"));
}

TEST_F(TreeFindings, NoteASecondRootWithWhatIsBelowIt) {
    const std::uint32_t list = add(listOf({10}));
    const std::uint32_t root = add(rootRecord(list));
    add(groupRecord(root, none(), u"x"));
    EXPECT_THAT(checked(store), ElementsAre("note unreachable 9"));
}

TEST_F(TreeFindings, NoteReferencesOfWhatNothingLeadsTo) {
    add(with(groupRecord(kRoot, kOfG, u"copy"), 9, u32(kNames)));
    EXPECT_THAT(checked(store), ElementsAre("note shared 8", "note shared 8", "note unreachable 8"));
}

TEST_F(TreeFindings, GoOnWhereSeveralThingsAreWrong) {
    set(kT, 1, u32(kRoot));
    set(kP, 9, u32(500));
    addTo(kTop, 600);
    EXPECT_THAT(checked(store),
                ElementsAre("error child-dangling 0", "error locale 4 g.p", "error parent 5 g.t"));
}

}  // namespace
}  // namespace norvane::platform::test
