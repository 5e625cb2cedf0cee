#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "qvt/qvt.hpp"

namespace {

using testing::ElementsAre;

static_assert(std::input_iterator<qvt::Walk::iterator>);
static_assert(std::sentinel_for<std::default_sentinel_t, qvt::Walk::iterator>);
static_assert(!noexcept(std::declval<qvt::Container*>()->~Container()), "what closing throws can come out");

std::vector<std::string> names(const auto& range) {
    std::vector<std::string> result;
    for (const auto& item : range) result.push_back(item.name());
    return result;
}

class HostModel : public testing::Test {
  protected:
    ~HostModel() noexcept override {}

    qvt::MemoryStore store;
    qvt::Container group = qvt::top(store, "group");
};

TEST_F(HostModel, RangesBeginWithTheFirst) {
    group.makeNode("a");
    group.make("p", 1);
    group.makeGroup("b");
    group.make("q", 2);
    EXPECT_THAT(names(group.containers()), ElementsAre("a", "b"));
    EXPECT_THAT(names(group.properties()), ElementsAre("p", "q"));
}

TEST_F(HostModel, RangeOfNothingIsEmpty) {
    EXPECT_THAT(names(group.containers()), ElementsAre());
    EXPECT_THAT(names(group.properties()), ElementsAre());
    EXPECT_THAT(names(qvt::Container().containers()), ElementsAre());
    EXPECT_THAT(names(qvt::Table().members()), ElementsAre());
}

TEST_F(HostModel, RangeCanBeGoneThroughAgain) {
    group.make("p", 1);
    group.make("q", 2);
    const auto properties = group.properties();
    EXPECT_THAT(names(properties), ElementsAre("p", "q"));
    EXPECT_THAT(names(properties), ElementsAre("p", "q"));
}

TEST_F(HostModel, RangePassesOverWhatWasRemoved) {
    for (const char* name : {"a", "b", "c"}) group.makeNode(name);
    const auto containers = group.containers();
    EXPECT_TRUE(group.remove("a"));
    EXPECT_TRUE(group.remove("b"));
    EXPECT_THAT(names(containers), ElementsAre("c"));
}

TEST_F(HostModel, RangeOutlivesTheHandlesThatItCameFrom) {
    group.makeGroup("hall").make("p", 1);
    group = {};
    EXPECT_THAT(names(qvt::find(store, "group").find("hall").properties()), ElementsAre("p"));
}

TEST_F(HostModel, OpenObjectCannotBeRemoved) {
    group.makeNode("a");
    const qvt::Container open = group.find("a");
    EXPECT_FALSE(group.remove("a"));
}

TEST_F(HostModel, MembersOfTablesAreReachedByPath) {
    const qvt::Table table = group.makeTable("sizes");
    table.makeTable("inner").make("width", 2);
    EXPECT_EQ(group["sizes.inner.width"].value<int>(), 2);
    EXPECT_EQ(table["inner.width"].value<int>(), 2);
    EXPECT_THAT(names(group["sizes"].table().members()), ElementsAre("inner"));
    EXPECT_FALSE(group["sizes.inner.width"].table());
    EXPECT_EQ(table.path(), "group.sizes");
}

TEST_F(HostModel, LinkLeadsToItsTargetThroughEveryHandle) {
    group.makeNode("pump");
    group.makeLink("spare", "group.pump");
    for (const auto& handle : {qvt::find(store, "group.spare"), group.find("spare")}) {
        EXPECT_TRUE(handle.isLink());
        EXPECT_EQ(handle.target(), "group.pump");
        EXPECT_EQ(handle.resolve().name(), "pump");
    }
    EXPECT_FALSE(group.find("pump").resolve());
    EXPECT_FALSE(group.find("pump").setTarget("x"));
    EXPECT_EQ(group.find("pump").target(), "");
}

TEST_F(HostModel, HandleSeesALinkAsItIsNow) {
    const qvt::Container link = group.makeLink("spare", "group.pump");
    group.find("spare").setTarget("group.other");
    EXPECT_EQ(link.target(), "group.other");
}

TEST_F(HostModel, DisplayNamesAreThereWhenTheHandleHasGone) {
    group.makeNode("pump").setDisplayName("de-de", "Pumpe");
    group.make("power", 1).setDisplayName("de-de", "Leistung");
    EXPECT_EQ(group.find("pump").displayName("de-de"), "Pumpe");
    EXPECT_EQ(group["power"].displayName("de-de"), "Leistung");
    EXPECT_EQ(group["power"].displayName("en"), "");
}

TEST_F(HostModel, KindsParentsAndPaths) {
    const qvt::Container node = group.makeGroup("hall").makeNode("pump");
    EXPECT_TRUE(node.isNode());
    EXPECT_FALSE(node.isGroup());
    EXPECT_EQ(node.path(), "group.hall.pump");
    EXPECT_EQ(node.parent().name(), "hall");
    EXPECT_FALSE(group.parent());
    EXPECT_FALSE(group.makeNode("hall"));
}

TEST_F(HostModel, CopiesFromAnotherStore) {
    qvt::MemoryStore other;
    const qvt::Container from = qvt::top(other, "from");
    from.make("power", 7.5, "Kilowatt");
    EXPECT_TRUE(group.add(from));
    EXPECT_TRUE(group.add(from["power"]));
    EXPECT_EQ(qvt::find(store, "group.from")["power"].unit().name(), "Kilowatt");
    EXPECT_EQ(group["power"].value<double>(), 7.5);
    EXPECT_FALSE(group.add(qvt::Property()));
    EXPECT_FALSE(group.add(qvt::Container()));
}

TEST_F(HostModel, FreshHandleSeesWhatAnotherHasMade) {
    const qvt::Container old = qvt::find(store, "group");
    group.makeNode("late");
    EXPECT_FALSE(old.find("late"));
    EXPECT_TRUE(old.fresh().find("late"));
}

TEST_F(HostModel, EmptyContainerRefusesEverything) {
    const qvt::Container none = qvt::find(store, "nowhere");
    EXPECT_FALSE(none);
    EXPECT_FALSE(none.makeNode("x"));
    EXPECT_FALSE(none.makeLink("x", "y"));
    EXPECT_FALSE(none.make("x", 1));
    EXPECT_FALSE(none.make("x", 1, "Meter"));
    EXPECT_FALSE(none.makeTable("x").make("y", 1));
    EXPECT_FALSE(none.fresh().parent().resolve());
    EXPECT_FALSE(none.remove("x"));
    EXPECT_FALSE(none.rename("x"));
    EXPECT_EQ(none.path(), "");
    none.setDisplayName("en", "x");
    EXPECT_FALSE(group.makeNode("x", qvt::Class()));
    EXPECT_FALSE(group.contains("x"));
}

TEST_F(HostModel, HeldStoreIsHeldAsOftenAsWanted) {
    const auto once = qvt::hold(store);
    const auto again = qvt::hold(store);
    EXPECT_TRUE(group.makeNode("x"));
}

}  // namespace
