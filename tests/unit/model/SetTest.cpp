// Sets: finding, adding, removing, renaming and importing children.
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

class SetTest : public ModelTest {
  protected:
    Offset group(const char16_t* name) { return build_.container(root_, name); }
    Offset loose(const char16_t* name) { return build_.container(kUnlisted, name); }
    std::vector<Offset> listed(Offset set) { return childrenOf(store_, set); }
};

TEST_F(SetTest, NewSetHasNoList) {
    const Offset a = loose(u"a");

    EXPECT_EQ(listRecordOf(store_, a), noRecord());
    EXPECT_EQ(Container(&store_, a).childCount(), 0u);
    EXPECT_EQ(Container(&store_, a).childAt(0), noRecord());
}

TEST_F(SetTest, FirstChildMakesTheListAndTheSecondExtendsIt) {
    const Offset a = loose(u"a");
    const Offset x = loose(u"x");
    const Offset y = loose(u"y");
    Container set(&store_, a);
    forgetCalls();

    EXPECT_TRUE(set.addChild(x));
    const Offset list = listRecordOf(store_, a);
    EXPECT_THAT(changes(), ElementsAre("write " + std::to_string(x) + " size 35", "append 5",
                                       "write " + std::to_string(a) + " size 35"));
    forgetCalls();
    EXPECT_TRUE(set.addChild(y));

    EXPECT_THAT(changes(),
                ElementsAre("write " + std::to_string(y) + " size 35", "extend " + std::to_string(list)));
    for (const StoreCall& call : store_.changes()) EXPECT_TRUE(call.name == "extend" || call.flag);
    EXPECT_EQ(record(list), listOf({x, y}));
    EXPECT_EQ(parentOf(store_, x), a);
    EXPECT_EQ(parentOf(store_, y), a);
}

TEST_F(SetTest, AddingAChildDoesNotReadTheList) {
    const Offset x = group(u"x");
    const Offset list = listRecordOf(store_, root_);
    const Offset y = loose(u"y");
    Root root(&store_, root_);
    forgetCalls();

    root.addChild(y);

    EXPECT_NE(x, y);
    for (const StoreCall& call : store_.calls())
        EXPECT_FALSE(call.name == "read" && call.offset == list && call.size != 1);
}

TEST_F(SetTest, SecondChildOfANameIsRefusedAndLeftAlone) {
    group(u"x");
    const Offset other = build_.table(kUnlisted, u"x");
    const RecordBytes before = record(other);
    Root root(&store_, root_);
    forgetCalls();

    EXPECT_FALSE(root.addChild(other));

    EXPECT_EQ(record(other), before);
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(SetTest, OnlyPrimitivesTablesAndContainersCanBeChildren) {
    const Offset rootLike = appendTo(store_, record(root_));
    const Offset list = appendTo(store_, listOf({}));
    const Offset strange = appendTo(store_, RecordBytes().u8(9).zeros(60));
    const Offset cut = appendTo(store_, RecordBytes(record(loose(u"c")).part(0, 30)));
    Root root(&store_, root_);
    forgetCalls();

    for (const Offset each : {rootLike, list, strange, cut, noRecord(), Offset{99999}})
        EXPECT_FALSE(root.addChild(each)) << each;

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(SetTest, AddingLeavesFlagsAlone) {
    const Offset x = loose(u"x");
    build_.flag(x, 7);
    Container set(&store_, loose(u"a"));
    set.setFlags(Record::kInherited);

    set.addChild(x);

    EXPECT_EQ(flagsOf(store_, x), 7);
    EXPECT_EQ(set.flags(), Record::kInherited);
}

TEST_F(SetTest, ChildrenAreFoundByTheirWholeNames) {
    const Offset x = group(u"x");
    const Offset dotted = group(u"a.b");
    const Offset empty = group(u"");
    Root root(&store_, root_);

    EXPECT_EQ(root.find(u"x"), x);
    EXPECT_EQ(root.find(u"X"), noRecord());
    EXPECT_EQ(root.find(u"a.b"), dotted);
    EXPECT_EQ(root.find(u"a"), noRecord());
    EXPECT_EQ(root.find(u""), empty);
    EXPECT_EQ(root.childCount(), 3u);
}

TEST_F(SetTest, ChildOfEachKindIsIndexedByItsOwnName) {
    const Offset table = build_.table(root_, u"t");
    const Offset primitive = build_.primitive(root_, u"p");
    Design::Primitive(&store_, primitive).setLocale(u"de");

    Root root(&store_, root_);

    EXPECT_EQ(root.find(u"t"), table);
    EXPECT_EQ(root.find(u"p"), primitive);
    EXPECT_EQ(root.find(u"de"), noRecord());
}

TEST_F(SetTest, NamesThatDifferInTheirSecondHalfAreToldApart) {
    const Offset first = group(u"abcd");
    const Offset second = group(u"abXY");

    EXPECT_EQ(Root(&store_, root_).find(u"abcd"), first);
    EXPECT_EQ(Root(&store_, root_).find(u"abXY"), second);
}

TEST_F(SetTest, ChildrenKeepTheOrderInWhichTheyWereAdded) {
    const std::vector<Offset> added = {group(u"z"), build_.table(root_, u"a"), build_.primitive(root_, u"m")};
    Root root(&store_, root_);

    EXPECT_EQ(root.children(), added);
    for (std::uint32_t i = 0; i < added.size(); ++i) EXPECT_EQ(root.childAt(i), added[i]);
    EXPECT_EQ(root.childAt(3), noRecord());
    EXPECT_EQ(root.childAt(0xFFFFFFFFu), noRecord());
}

TEST_F(SetTest, FirstOfTwoChildrenOfOneNameIsFound) {
    const Offset first = group(u"x");
    const Offset second = loose(u"x");
    store_.extend(listRecordOf(store_, root_), &second, 4);
    Root root(&store_, root_);

    EXPECT_EQ(root.find(u"x"), first);
    EXPECT_EQ(root.childCount(), 1u);
    EXPECT_EQ(root.childAt(1), second);
    EXPECT_THAT(root.countedChildren(), ElementsAre(first));
    EXPECT_EQ(Metadata::findChild(&store_, root_, u"x"), first);
}

TEST_F(SetTest, WhatIsNoChildInTheListIsPassedOver) {
    const Offset x = group(u"x");
    const Offset list = listRecordOf(store_, root_);
    for (const Offset each : {list, root_, Offset{77777}, noRecord()}) store_.extend(list, &each, 4);
    const Offset y = group(u"y");
    Root root(&store_, root_);

    EXPECT_EQ(root.find(u"y"), y);
    EXPECT_EQ(root.childCount(), 2u);
    EXPECT_EQ(root.children().size(), 6u);
    EXPECT_THAT(root.countedChildren(), ElementsAre(x, list));
}

TEST_F(SetTest, ReservedNamesAreListedAndCountedButNotFound) {
    const char16_t* const reserved = u"$$$$$_____empty_key";
    const Offset first = loose(reserved);
    const Offset second = loose(reserved);
    const Offset deleted = loose(u"$$$$$_____deleted_key");
    Root root(&store_, root_);

    for (const Offset each : {first, second, deleted}) EXPECT_TRUE(root.addChild(each));

    EXPECT_EQ(root.find(reserved), noRecord());
    EXPECT_EQ(root.resolve(reserved), noRecord());
    EXPECT_EQ(Metadata::findChild(&store_, root_, reserved), noRecord());
    EXPECT_EQ(root.childCount(), 3u);
    EXPECT_EQ(root.children().size(), 3u);
    EXPECT_FALSE(root.removeChild(reserved));
    EXPECT_EQ(Root(&store_, root_).childCount(), 3u);
    EXPECT_EQ(parentOf(store_, second), root_);
}

TEST_F(SetTest, ChildrenOfReservedNamesAreAskedCopiedAndErasedWithTheirParent) {
    const Offset parent = group(u"parent");
    const Offset child = build_.container(parent, u"$$$$$_____deleted_key");
    const Offset copy = Container(&store_, parent).clone(&store_);
    EXPECT_EQ(childrenOf(store_, copy).size(), 1u);
    {
        const Container open(&store_, child);
        EXPECT_FALSE(Root(&store_, root_).removeChild(u"parent"));
    }

    EXPECT_TRUE(Root(&store_, root_).removeChild(u"parent"));

    EXPECT_EQ(store_.recordSize(child), 0u);
}

TEST_F(SetTest, ChildMayBeRenamedToAReservedNameAndIsThenNotFound) {
    const Offset x = group(u"x");
    Root root(&store_, root_);

    EXPECT_TRUE(root.renameChild(u"x", u"$$$$$_____empty_key"));

    EXPECT_EQ(root.find(u"$$$$$_____empty_key"), noRecord());
    EXPECT_EQ(root.find(u"x"), noRecord());
    EXPECT_EQ(root.childCount(), 1u);
    EXPECT_EQ(nameOf(store_, x), u"$$$$$_____empty_key");
}

TEST_F(SetTest, RemovedChildTakesItsSatellitesAlong) {
    const Offset x = group(u"x");
    build_.localise(x, u"de", u"eins");
    const Offset locale = localeOf(store_, x);
    const Offset list = listRecordOf(store_, root_);
    Root root(&store_, root_);
    forgetCalls();

    EXPECT_TRUE(root.removeChild(u"x"));

    EXPECT_THAT(changes(), ElementsAre("remove " + std::to_string(locale), "remove " + std::to_string(x),
                                       "write " + std::to_string(list) + " size 1"));
    EXPECT_EQ(root.find(u"x"), noRecord());
    EXPECT_EQ(root.childCount(), 0u);
}

TEST_F(SetTest, ListStaysWhenItsOnlyChildIsRemoved) {
    group(u"x");
    Root root(&store_, root_);

    root.removeChild(u"x");

    EXPECT_EQ(record(listRecordOf(store_, root_)), listOf({}));
    EXPECT_TRUE(root.addChild(loose(u"x")));
    EXPECT_EQ(root.childCount(), 1u);
}

TEST_F(SetTest, RemovingKeepsTheOrderOfTheOthers) {
    const Offset a = group(u"a");
    group(u"b");
    const Offset c = group(u"c");

    Root(&store_, root_).removeChild(u"b");

    EXPECT_THAT(listed(root_), ElementsAre(a, c));
}

TEST_F(SetTest, MissingChildIsNotRemoved) {
    group(u"x");
    Root root(&store_, root_);
    forgetCalls();

    EXPECT_FALSE(root.removeChild(u"y"));
    EXPECT_FALSE(root.removeChild(u""));

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(SetTest, FixedChildIsNeitherRemovedNorRenamed) {
    const Offset x = group(u"x");
    build_.flag(x, Record::kFixed);
    Root root(&store_, root_);
    forgetCalls();

    EXPECT_FALSE(root.removeChild(u"x"));
    EXPECT_FALSE(root.renameChild(u"x", u"y"));

    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(root.find(u"x"), x);
}

TEST_F(SetTest, InheritedChildThatIsNotFixedIsRenamedAndRemoved) {
    const Offset x = group(u"x");
    build_.flag(x, Record::kInherited | Record::kOptional);
    Root root(&store_, root_);

    EXPECT_TRUE(root.renameChild(u"x", u"y"));
    EXPECT_TRUE(root.removeChild(u"y"));
}

TEST_F(SetTest, ChildThatIsOpenElsewhereIsNotRemoved) {
    const Offset x = group(u"x");
    const Offset deep = build_.primitive(build_.table(x, u"t"), u"p");
    Root root(&store_, root_);
    {
        const Container open(&store_, x);
        EXPECT_FALSE(root.removeChild(u"x"));
    }
    {
        const Design::Primitive open(&store_, deep);
        EXPECT_FALSE(root.removeChild(u"x"));
    }

    EXPECT_TRUE(root.removeChild(u"x"));
}

TEST_F(SetTest, SetIsRemovableWhenNothingElseIsOpenOnItOrBelow) {
    const Offset x = group(u"x");
    const Offset p = build_.primitive(x, u"p");
    Container open(&store_, x);
    EXPECT_TRUE(open.isRemovable());
    {
        const Container second(&store_, x);
        EXPECT_FALSE(open.isRemovable());
    }
    {
        const Design::Primitive below(&store_, p);
        EXPECT_FALSE(open.isRemovable());
        EXPECT_FALSE(Root(&store_, root_).isRemovable());
    }
    EXPECT_TRUE(open.isRemovable());
}

TEST_F(SetTest, CountThatWrappedAroundKeepsAPrimitiveButNoSet) {
    const Offset x = group(u"x");
    const Offset p = build_.primitive(root_, u"p");
    for (const Offset each : {x, p}) Record::addToOpenCount(&store_, each, 0xFFFFFFFFu);
    Root root(&store_, root_);

    EXPECT_FALSE(root.removeChild(u"p"));
    EXPECT_TRUE(root.removeChild(u"x"));
}

TEST_F(SetTest, TransientObjectAnswersAsIfItWereCounted) {
    const Offset x = group(u"x");
    Container transient(&store_, x, Opening::transient);
    EXPECT_TRUE(transient.isRemovable());

    const Container open(&store_, x);

    EXPECT_FALSE(transient.isRemovable());
}

TEST_F(SetTest, RenamedFieldIsFourTimesAsLongAsItsTextAndZeroBehindIt) {
    const Offset x = group(u"x");
    Root root(&store_, root_);

    EXPECT_TRUE(root.renameChild(u"x", u"ab"));

    RecordBytes expected;
    expected.u8(4).u32(root_).u32(0).noRecord().u8(0).noRecord().u8(1).u32(24).u32(0).u32(0);
    EXPECT_EQ(record(x), expected.text(u"ab").zeros(18));
    EXPECT_EQ(root.find(u"ab"), x);
    EXPECT_EQ(root.find(u"x"), noRecord());
    EXPECT_EQ(Root(&store_, root_).find(u"ab"), x);
}

TEST_F(SetTest, EachKindIsRenamedInItsOwnField) {
    const Offset table = build_.table(root_, u"t");
    const Offset primitive = build_.values<std::int32_t>(root_, u"p", 12, {7});
    Design::Primitive(&store_, primitive).setLocale(u"de");
    Root root(&store_, root_);

    EXPECT_TRUE(root.renameChild(u"t", u""));
    EXPECT_TRUE(root.renameChild(u"p", u"q"));

    EXPECT_EQ(record(table).u32At(26), 8u);
    EXPECT_EQ(record(table).part(34, 100), std::string(8, '\0'));
    EXPECT_EQ(record(primitive).u32At(30), 16u);
    EXPECT_EQ(record(primitive).part(42, 100), RecordBytes().text(u"de").text(u"q").zeros(12).u32(7).bytes());
}

TEST_F(SetTest, NameThatIsTakenOrMissingIsNotRenamed) {
    group(u"x");
    group(u"y");
    Root root(&store_, root_);
    forgetCalls();

    EXPECT_FALSE(root.renameChild(u"x", u"y"));
    EXPECT_FALSE(root.renameChild(u"x", u"x"));
    EXPECT_FALSE(root.renameChild(u"z", u"new"));

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(SetTest, OpenObjectsKeepTheNameTheyWereOpenedWith) {
    const Offset x = group(u"x");
    const Container open(&store_, x);

    Root(&store_, root_).renameChild(u"x", u"y");

    EXPECT_EQ(open.name(), u"x");
    EXPECT_EQ(Container(&store_, x).name(), u"y");
}

TEST_F(SetTest, NameThatTheStoreDoesNotTakeIsRefused) {
    MemoryDataStore small(MemoryDataStore::Options{.recordLimit = 200});
    ModelBuilder build(small);
    const Offset root = build.root();
    const Offset x = build.container(root, u"x");
    Root open(&small, root);

    EXPECT_FALSE(open.renameChild(u"x", std::u16string(30, u'n')));

    EXPECT_EQ(nameOf(small, x), u"x");
    EXPECT_EQ(open.find(u"x"), x);
}

TEST_F(SetTest, ReloadedSetSeesWhatOthersAdded) {
    Root root(&store_, root_);
    const Offset x = group(u"x");
    EXPECT_EQ(root.find(u"x"), noRecord());

    root.reloadChildren();

    EXPECT_EQ(root.find(u"x"), x);
    EXPECT_EQ(root.childCount(), 1u);
}

TEST_F(SetTest, ErasedSetLosesItsSatellitesAndKeepsItsRecord) {
    const Offset x = group(u"x");
    { Root(&store_, root_).setLocalised(u"alles", u"de"); }
    const Offset locale = localeOf(store_, root_);
    const Offset list = listRecordOf(store_, root_);
    Root root(&store_, root_);

    root.erase();

    for (const Offset gone : {x, locale, list}) EXPECT_EQ(store_.recordSize(gone), 0u);
    EXPECT_EQ(listRecordOf(store_, root_), noRecord());
    EXPECT_EQ(localeOf(store_, root_), noRecord());
    EXPECT_EQ(root.childCount(), 0u);
    EXPECT_TRUE(root.addChild(loose(u"new")));
}

TEST_F(SetTest, ErasingAsksNobody) {
    const Offset x = group(u"x");
    build_.flag(x, Record::kFixed);
    Record::addToOpenCount(&store_, x, 1);

    Root(&store_, root_).eraseChildren();

    EXPECT_EQ(store_.recordSize(x), 0u);
}

TEST_F(SetTest, ErasingLeavesNoShadowedChildBehind) {
    const Offset parent = group(u"parent");
    const Offset first = build_.container(parent, u"x");
    const Offset second = loose(u"x");
    const Offset list = listRecordOf(store_, parent);
    store_.extend(list, &second, 4);
    forgetCalls();

    Root(&store_, root_).removeChild(u"parent");

    const std::vector<std::string> calls = changes();
    std::vector<std::string> removed;
    for (const std::string& call : calls)
        if (call.rfind("remove", 0) == 0) removed.push_back(call);
    EXPECT_THAT(removed, ElementsAre("remove " + std::to_string(first), "remove " + std::to_string(second),
                                     "remove " + std::to_string(list), "remove " + std::to_string(parent)));
}

TEST_F(SetTest, RootIsNeverCopied) {
    MemoryDataStore other;

    EXPECT_EQ(Root(&store_, root_).clone(&other), noRecord());

    EXPECT_EQ(other.size(), 0u);
}

TEST_F(SetTest, RootHasNoParentWhateverItsRecordSays) {
    Record::storeField(&store_, root_, Record::field::parent, 5u);

    EXPECT_EQ(Root(&store_, root_).parent(), noRecord());
}

TEST_F(SetTest, NewRootIsOpenAndHasNoChildren) {
    MemoryDataStore store;
    Root root(&store, u"new");

    EXPECT_EQ(root.offset(), 0u);
    EXPECT_EQ(root.name(), u"new");
    EXPECT_EQ(openCountOf(store, 0), 1u);
    EXPECT_EQ(root.childCount(), 0u);
}

TEST_F(SetTest, ImportedChildIsACopyMarkedAsInheritedAllTheWayDown) {
    MemoryDataStore types;
    ModelBuilder buildTypes(types);
    const Offset type = buildTypes.table(buildTypes.root(), u"T");
    const Offset member = buildTypes.table(type, u"m");
    const Offset inner = buildTypes.primitive(member, u"p");
    buildTypes.flag(inner, Record::kOptional);
    Container set(&store_, loose(u"a"));

    set.importChild(&types, member);

    const Offset copy = set.find(u"m");
    ASSERT_NE(copy, noRecord());
    EXPECT_EQ(parentOf(store_, copy), set.offset());
    EXPECT_EQ(flagsOf(store_, copy), 6);
    EXPECT_EQ(flagsOf(store_, childrenOf(store_, copy).at(0)), 7);
    EXPECT_THAT(listed(set.offset()), ElementsAre(copy));
    EXPECT_EQ(flagsOf(types, member), 0);
}

TEST_F(SetTest, ChildThatIsThereWinsOverAnImportedOne) {
    const Offset a = group(u"a");
    build_.primitive(a, u"m", 3);
    const Offset other = build_.primitive(kUnlisted, u"m", 17);
    Container set(&store_, a);
    forgetCalls();

    set.importChild(&store_, other);

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(SetTest, WhatIsNoEntityIsNotImported) {
    Container set(&store_, group(u"a"));
    const Offset list = listRecordOf(store_, root_);
    forgetCalls();

    for (const Offset each : {list, root_, noRecord(), Offset{5555}}) set.importChild(&store_, each);

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(SetTest, TransientSetAnswersAsAHandleDoes) {
    const Offset a = group(u"a");
    const Offset x = build_.container(a, u"x");
    const Offset p = build_.primitive(x, u"p");
    Container set(&store_, a, Opening::transient);

    EXPECT_EQ(set.find(u"x"), x);
    EXPECT_EQ(set.resolve(u"x.p"), p);
    EXPECT_EQ(set.find(u"p"), noRecord());
    EXPECT_TRUE(set.addChild(loose(u"y")));
    EXPECT_FALSE(set.addChild(loose(u"y")));
    EXPECT_TRUE(set.renameChild(u"y", u"z"));
    EXPECT_TRUE(set.removeChild(u"x"));
    EXPECT_EQ(set.childCount(), 1u);
}

TEST_F(SetTest, OpeningASetReadsEachChildOnce) {
    const Offset x = group(u"x");
    const Offset y = group(u"y");
    forgetCalls();

    { const Root root(&store_, root_); }

    for (const Offset child : {x, y})
        EXPECT_EQ(std::count(store_.calls().begin(), store_.calls().end(),
                             StoreCall{"read", child, 0xFFFFFFFFu, false, {}}),
                  1);
}

}  // namespace
}  // namespace norvane::platform::test
