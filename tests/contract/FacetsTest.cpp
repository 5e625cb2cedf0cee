#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

class FacetsTest : public ModelTest {
  protected:
    ~FacetsTest() noexcept override = default;

    SharedPtr<IContainer> node = open(kNode, u"n");
    SharedPtr<IContainer> group = open(kGroup, u"g");
    SharedPtr<IContainer> link = open(kLink, u"l");

  private:
    SharedPtr<IContainer> open(std::uint32_t kind, const char16_t* name) {
        top->makeContainer(kind, name, nullptr);
        return top->find(name);
    }
};

TEST_F(FacetsTest, EachKindHasItsOwnFacetOnly) {
    EXPECT_NE(INode::to(node.get()), nullptr);
    EXPECT_EQ(INode::to(group.get()), nullptr);
    EXPECT_EQ(INode::to(link.get()), nullptr);

    EXPECT_EQ(IGroup::to(node.get()), nullptr);
    EXPECT_NE(IGroup::to(group.get()), nullptr);
    EXPECT_EQ(IGroup::to(link.get()), nullptr);

    EXPECT_EQ(ILink::to(node.get()), nullptr);
    EXPECT_EQ(ILink::to(group.get()), nullptr);
    EXPECT_NE(ILink::to(link.get()), nullptr);
}

TEST_F(FacetsTest, NullHasNoFacet) {
    EXPECT_EQ(INode::to(nullptr), nullptr);
    EXPECT_EQ(IGroup::to(nullptr), nullptr);
    EXPECT_EQ(ILink::to(nullptr), nullptr);
}

TEST_F(FacetsTest, FacetLeadsBackToItsHandle) {
    EXPECT_EQ(INode::to(node.get())->container(), node.get());
    EXPECT_EQ(IGroup::to(group.get())->container(), group.get());
    EXPECT_EQ(ILink::to(link.get())->container(), link.get());
}

TEST_F(FacetsTest, MadeNodeHasNoFacetWhileAFoundOneHas) {
    const auto made = top->makeContainer(kNode, u"made", nullptr);

    EXPECT_EQ(made->kind(), kNode);
    EXPECT_EQ(INode::to(made.get()), nullptr);
    EXPECT_NE(INode::to(top->find(u"made").get()), nullptr);
}

TEST_F(FacetsTest, MadeGroupsAndLinksHaveTheirFacets) {
    EXPECT_NE(IGroup::to(top->makeContainer(kGroup, u"g2", nullptr).get()), nullptr);
    EXPECT_NE(ILink::to(top->makeContainer(kLink, u"l2", nullptr).get()), nullptr);
}

TEST_F(FacetsTest, KindOfAHandleIsThatOfItsOpeningNotOfTheRecordNow) {
    overwrite(store, recordAt(store, u"top/g"), 18, kLink, 1);

    EXPECT_NE(IGroup::to(group.get()), nullptr);
    EXPECT_EQ(ILink::to(group.get()), nullptr);
}

TEST_F(FacetsTest, AllKindsMayHoldChildren) {
    for (IContainer* each : {node.get(), group.get(), link.get()}) {
        EXPECT_TRUE(each->makeContainer(kNode, u"c", nullptr));
        EXPECT_TRUE(each->makePrimitive(u"p", kDouble));
        EXPECT_TRUE(each->find(u"c"));
    }
}

class LinkTest : public ModelTest {
  protected:
    ~LinkTest() noexcept override = default;

    ILink& target(const WideString& path) {
        ILink::to(link.get())->setTarget(path);
        return *ILink::to(link.get());
    }

    SharedPtr<IContainer> link = top->makeContainer(kLink, u"l", nullptr);
};

TEST_F(LinkTest, NewLinkHasNoTarget) {
    EXPECT_TRUE(ILink::to(link.get())->target().isEmpty());
    EXPECT_FALSE(ILink::to(link.get())->resolve(nullptr));
}

TEST_F(LinkTest, TargetIsStoredAsGiven) {
    EXPECT_EQ(target(u"top.nowhere").target(), u"top.nowhere");

    EXPECT_EQ(ILink::to(top->find(u"l").get())->target(), u"top.nowhere");
}

TEST_F(LinkTest, TargetStandsBehindNameAndClassTextInTheRecord) {
    target(u"ab");

    const RawRecord raw = record(store, u"top/l");
    EXPECT_EQ(raw.at(27), 6u);
    EXPECT_EQ(raw.size(), 31u + 4u + 6u);
    EXPECT_EQ(raw.textAt(35, 6), u"ab");
}

TEST_F(LinkTest, ResolvesFromTheRootOfItsOwnStore) {
    makeGroup(*makeGroup(*top, u"a"), u"b");

    const auto found = target(u"top.a.b").resolve(nullptr);

    ASSERT_TRUE(found);
    EXPECT_EQ(found->path(), u"top.a.b");
}

TEST_F(LinkTest, TargetIsNoPathFromTheLinkItself) {
    makeGroup(*top, u"a");
    makeGroup(*link, u"c");

    EXPECT_FALSE(target(u"a").resolve(nullptr));
    EXPECT_FALSE(target(u"c").resolve(nullptr));
}

TEST_F(LinkTest, GivenStoreIsTheOnlyOneSearched) {
    ModelStore other;
    const auto there = IContainerFrontEnd::toplevel(&other, u"far");
    makeGroup(*top, u"near");

    EXPECT_EQ(target(u"far").resolve(&other)->store(), &other);
    EXPECT_FALSE(target(u"far").resolve(nullptr));
    EXPECT_FALSE(target(u"top.near").resolve(&other));
    EXPECT_TRUE(target(u"top.near").resolve(&store));
}

TEST_F(LinkTest, EmptyStoreResolvesNothing) {
    ModelStore empty;

    EXPECT_FALSE(target(u"top").resolve(&empty));
    EXPECT_EQ(empty.size(), 0u);
}

TEST_F(LinkTest, TargetThatIsAPropertyResolvesToNull) {
    top->makePrimitive(u"p", kDouble);
    top->makeTable(u"t", nullptr);

    EXPECT_FALSE(target(u"top.p").resolve(nullptr));
    EXPECT_FALSE(target(u"top.t").resolve(nullptr));
}

TEST_F(LinkTest, TargetThatIsALinkIsGivenAsThatLink) {
    const auto second = top->makeContainer(kLink, u"second", nullptr);
    ILink::to(second.get())->setTarget(u"top");

    const auto found = target(u"top.second").resolve(nullptr);

    ASSERT_TRUE(found);
    EXPECT_EQ(found->name(), u"second");
    EXPECT_EQ(found->kind(), kLink);
}

TEST_F(LinkTest, LinkToItselfResolvesToItself) { EXPECT_EQ(target(u"top.l").resolve(nullptr)->name(), u"l"); }

TEST_F(LinkTest, ResolvedHandleHasNoFacet) {
    makeGroup(*top, u"a");

    const auto found = target(u"top.a").resolve(nullptr);

    EXPECT_EQ(found->kind(), kGroup);
    EXPECT_EQ(IGroup::to(found.get()), nullptr);
}

TEST_F(LinkTest, EmptyTargetIsNoTarget) {
    target(u"top.x");

    EXPECT_TRUE(target(u"").target().isEmpty());
    EXPECT_FALSE(ILink::to(link.get())->resolve(nullptr));
    EXPECT_EQ(record(store, u"top/l").at(27), 2u);
}

TEST_F(LinkTest, WithoutTextTheTargetLeavesTheRecord) {
    target(u"top.x");

    EXPECT_TRUE(target(WideString()).target().isEmpty());
    EXPECT_EQ(record(store, u"top/l").at(27), 0u);
    EXPECT_EQ(record(store, u"top/l").size(), 35u);
}

TEST_F(LinkTest, RemovedOrRenamedTargetLeavesTheLinkAsItIs) {
    auto a = makeGroup(*top, u"a");
    target(u"top.a");
    a->rename(u"b");
    a.reset();

    EXPECT_FALSE(ILink::to(link.get())->resolve(nullptr));
    EXPECT_EQ(ILink::to(link.get())->target(), u"top.a");

    makeGroup(*top->find(WideString()), u"a");
    EXPECT_TRUE(ILink::to(link.get())->resolve(nullptr));
}

TEST_F(LinkTest, SecondHandleKeepsTheTargetItRead) {
    makeGroup(*top, u"a");
    target(u"top.a");
    const auto second = top->find(u"l");

    target(u"top.nowhere");

    EXPECT_EQ(ILink::to(second.get())->target(), u"top.a");
    EXPECT_TRUE(ILink::to(second.get())->resolve(nullptr));
    EXPECT_FALSE(ILink::to(link.get())->resolve(nullptr));
}

TEST_F(LinkTest, PathsThroughALinkDoNotFollowIt) {
    makeGroup(*makeGroup(*top, u"a"), u"b");
    makeGroup(*link, u"own");
    target(u"top.a");

    EXPECT_FALSE(top->find(u"l.b"));
    EXPECT_TRUE(top->find(u"l.own"));
    EXPECT_FALSE(IContainerFrontEnd::find(&store, u"top.l.b"));
}

}  // namespace
}  // namespace norvane::platform::test
