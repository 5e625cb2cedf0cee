// Copying and deleting whole subtrees: the order of calls, and what damaged stores do to a walk.
#include "model/Subtree.h"
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

using Metadata::cloneSubtree;
using Metadata::isSubtreeClosed;

class SubtreeTest : public ModelTest {
  protected:
    // Lists an offset without asking the model.
    void listRaw(Offset set, Offset child) { store_.extend(listRecordOf(store_, set), &child, 4); }
    std::vector<std::string> callsOf(const char* name) const {
        std::vector<std::string> words;
        for (const StoreCall& call : store_.changes())
            if (call.name == name) words.push_back(wordsOf(call));
        return words;
    }

    const Offset top_ = build_.container(root_, u"top");
};

TEST_F(SubtreeTest, CopyAppendsEntityStringsListChildrenAndDefaultsInThisOrder) {
    const Offset table = build_.table(top_, u"table");
    build_.localise(table, u"de", u"Tabelle");
    build_.defaults(table, 0x2001, 17);
    const Offset first = build_.values<std::int32_t>(table, u"a", 12, {1, 2});
    build_.localise(first, u"de", u"eins");
    build_.primitive(table, u"bc");
    forgetCalls();

    cloneSubtree(&store_, top_, &store_);

    EXPECT_THAT(callsOf("append"), ElementsAre("append 39",               // the container "top",
                                               "append 1",                // its list,
                                               "append 46",               // the table,
                                               "append 27",               // its display names,
                                               "append 1",                // its list,
                                               "append 54", "append 21",  // a primitive with display names,
                                               "append 48",               // one without,
                                               "append 9"));              // the table's defaults
}

TEST_F(SubtreeTest, CopyLeadsNowhereUntilItsPartsAreThere) {
    build_.localise(top_, u"de", u"oben");
    build_.primitive(top_, u"p");
    forgetCalls();

    const Offset copy = cloneSubtree(&store_, top_, &store_);

    const RecordBytes first(store_.changes().at(0).bytes);
    EXPECT_EQ(first.u32At(9), noRecord());
    EXPECT_EQ(first.u32At(14), noRecord());
    EXPECT_NE(listRecordOf(store_, copy), noRecord());
}

TEST_F(SubtreeTest, CopyInAnotherStoreRefersToThatStoreOnly) {
    const Offset table = build_.table(top_, u"t");
    build_.defaults(table, 0x2001, 17);
    build_.localise(table, u"de", u"T");
    build_.primitive(table, u"p");
    MemoryDataStore other;
    for (int i = 0; i < 100; ++i) appendTo(other, RecordBytes().u8(77));

    const Offset copy = cloneSubtree(&store_, top_, &other);

    EXPECT_EQ(copy, 100u);
    const Offset copiedTable = childrenOf(other, copy).at(0);
    EXPECT_EQ(parentOf(other, copiedTable), copy);
    EXPECT_EQ(Metadata::resolvePath(&other, copy, u"t.p"), childrenOf(other, copiedTable).at(0));
    EXPECT_EQ(Design::Table(&other, copiedTable).localised(u"de"), u"T");
    EXPECT_EQ(Design::Table(&other, copiedTable).defaultType(0x2000), 17u);
}

TEST_F(SubtreeTest, ValuesThatLeadToNoChildAreCopiedAsTheyAre) {
    build_.primitive(top_, u"p");
    listRaw(top_, root_);
    listRaw(top_, 0xABCDEFu);
    listRaw(top_, listRecordOf(store_, root_));

    const Offset copy = cloneSubtree(&store_, top_, &store_);

    const std::vector<Offset> values = childrenOf(store_, copy);
    EXPECT_THAT(std::vector<Offset>(values.begin() + 1, values.end()),
                ElementsAre(root_, 0xABCDEFu, listRecordOf(store_, root_)));
}

TEST_F(SubtreeTest, SourceIsNotChangedByACopy) {
    build_.primitive(build_.table(top_, u"t"), u"p");
    const std::vector<std::string> before = contents();

    cloneSubtree(&store_, top_, &store_);

    std::vector<std::string> after = contents();
    after.resize(before.size());
    EXPECT_EQ(after, before);
}

TEST_F(SubtreeTest, OpenCountsAreNotCopied) {
    const Offset p = build_.primitive(top_, u"p");
    const Design::Primitive open(&store_, p);
    const Container openTop(&store_, top_);

    const Offset copy = cloneSubtree(&store_, top_, &store_);

    EXPECT_EQ(openCount(copy), 0u);
    EXPECT_EQ(openCount(childrenOf(store_, copy).at(0)), 0u);
}

TEST_F(SubtreeTest, WhatIsNoEntityIsNotCopied) {
    const Offset list = listRecordOf(store_, root_);
    const Offset cut = appendTo(store_, RecordBytes(record(top_).part(0, 30)));
    forgetCalls();

    for (const Offset each : {root_, list, noRecord(), Offset{54321}, cut})
        EXPECT_EQ(cloneSubtree(&store_, each, &store_), noRecord());

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(SubtreeTest, ChangesAreMadeWhileCopying) {
    const Offset p = build_.primitive(top_, u"p");
    build_.flag(p, Record::kOptional);

    const Offset copy = cloneSubtree(&store_, top_, &store_, {true, 77, 6});

    EXPECT_EQ(parentOf(store_, copy), 77u);
    EXPECT_EQ(flagsOf(store_, copy), 6);
    EXPECT_EQ(flagsOf(store_, childrenOf(store_, copy).at(0)), 7);
}

TEST_F(SubtreeTest, CopyIntoItselfEnds) {
    build_.primitive(top_, u"p");

    Container(&store_, top_).addChild(cloneSubtree(&store_, top_, &store_));
    const Offset copy = cloneSubtree(&store_, top_, &store_);

    EXPECT_EQ(childrenOf(store_, copy).size(), 2u);
    EXPECT_EQ(childrenOf(store_, childrenOf(store_, copy).at(1)).size(), 1u);
}

TEST_F(SubtreeTest, DeletingRemovesStringsChildrenListDefaultsAndThenTheEntity) {
    const Offset table = build_.table(top_, u"t");
    build_.localise(table, u"de", u"Tabelle");
    build_.defaults(table, 0x2001, 17);
    const Offset p = build_.primitive(table, u"p");
    build_.localise(p, u"de", u"eins");
    const std::vector<Offset> order = {localeOf(store_, table),
                                       localeOf(store_, p),
                                       p,
                                       listRecordOf(store_, table),
                                       record(table).u32At(22),
                                       table,
                                       listRecordOf(store_, top_),
                                       top_};
    forgetCalls();

    EXPECT_TRUE(Root(&store_, root_).removeChild(u"top"));

    std::vector<Offset> removed;
    for (const StoreCall& call : store_.changes())
        if (call.name == "remove") removed.push_back(call.offset);
    EXPECT_EQ(removed, order);
}

TEST_F(SubtreeTest, ClosedMeansThatNothingBelowIsOpen) {
    const Offset p = build_.primitive(build_.table(top_, u"t"), u"p");
    EXPECT_TRUE(isSubtreeClosed(&store_, top_));
    EXPECT_TRUE(isSubtreeClosed(&store_, noRecord()));
    EXPECT_TRUE(isSubtreeClosed(&store_, root_));  // a root stands below nothing

    const Design::Primitive open(&store_, p);

    EXPECT_FALSE(isSubtreeClosed(&store_, top_));
}

// In a damaged store, sets can list each other.
class RingTest : public SubtreeTest {
  protected:
    const Offset inner_ = build_.container(top_, u"inner");
    const Offset leaf_ = build_.primitive(inner_, u"leaf");
    void makeRing() { listRaw(inner_, top_); }
};

TEST_F(RingTest, CopyLeavesOutWhatLeadsBack) {
    makeRing();

    const Offset copy = cloneSubtree(&store_, top_, &store_);

    const Offset copiedInner = childrenOf(store_, copy).at(0);
    EXPECT_EQ(childrenOf(store_, copiedInner).size(), 1u);
    EXPECT_NE(childrenOf(store_, copiedInner).at(0), leaf_);
}

TEST_F(RingTest, DeletingEndsAndTakesEachOnce) {
    makeRing();
    forgetCalls();

    EXPECT_TRUE(Root(&store_, root_).removeChild(u"top"));

    EXPECT_THAT(callsOf("remove"),
                ElementsAre("remove " + std::to_string(leaf_), testing::_, "remove " + std::to_string(inner_),
                            testing::_, "remove " + std::to_string(top_)));
}

TEST_F(RingTest, AskingEnds) {
    makeRing();

    EXPECT_TRUE(isSubtreeClosed(&store_, top_));
    const Design::Primitive open(&store_, leaf_);
    EXPECT_FALSE(isSubtreeClosed(&store_, top_));
}

TEST_F(RingTest, SetThatStandsBelowItselfIsNotItsOwnChildToDelete) {
    makeRing();
    Container open(&store_, top_);

    open.eraseChildren();

    EXPECT_NE(store_.recordSize(top_), 0u);
    EXPECT_EQ(store_.recordSize(inner_), 0u);
    EXPECT_EQ(store_.recordSize(leaf_), 0u);
}

TEST_F(RingTest, SetInItsOwnListIsPassedOver) {
    listRaw(top_, top_);

    const Offset copy = cloneSubtree(&store_, top_, &store_);
    EXPECT_EQ(childrenOf(store_, copy).size(), 1u);
    EXPECT_TRUE(Root(&store_, root_).removeChild(u"top"));

    EXPECT_EQ(store_.recordSize(top_), 0u);
}

TEST_F(RingTest, ChildInTwoListsIsDeletedOnce) {
    listRaw(top_, leaf_);
    forgetCalls();

    EXPECT_TRUE(Root(&store_, root_).removeChild(u"top"));

    const std::vector<std::string> removed = callsOf("remove");
    EXPECT_EQ(std::count(removed.begin(), removed.end(), "remove " + std::to_string(leaf_)), 1);
}

TEST_F(RingTest, ChildInTwoListsIsCopiedForTheFirstAlone) {
    listRaw(top_, leaf_);

    const Offset copy = cloneSubtree(&store_, top_, &store_);

    EXPECT_EQ(childrenOf(store_, copy).size(), 1u);
    EXPECT_EQ(childrenOf(store_, childrenOf(store_, copy).at(0)).size(), 1u);
}

// Forty sets, each of which lists the next one twice, are two to the fortieth ways down.
TEST_F(RingTest, SharedChildrenDoNotMultiplyTheWork) {
    Offset current = top_;
    for (int i = 0; i < 40; ++i) {
        const Offset next = build_.container(current, u"next");
        listRaw(current, next);
        current = next;
    }

    EXPECT_TRUE(isSubtreeClosed(&store_, top_));
    EXPECT_NE(cloneSubtree(&store_, top_, &store_), noRecord());
    EXPECT_TRUE(Root(&store_, root_).removeChild(u"top"));

    EXPECT_EQ(store_.recordSize(current), 0u);
}

}  // namespace
}  // namespace norvane::platform::test
