#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvt/qvt.hpp"

namespace {

using testing::ElementsAre;

std::string nameAt(const qvt::Walk::Place& at) {
    return std::to_string(at.depth) + (at.container ? at.container.name() : at.property.name());
}

std::vector<std::string> places(qvt::Container top, const std::string& leaveOut = {}) {
    std::vector<std::string> result;
    qvt::Walk walk(std::move(top));
    for (const auto& at : walk) {
        result.push_back(nameAt(at));
        if (nameAt(at) == leaveOut) walk.skip();
    }
    return result;
}

class HostWalk : public testing::Test {
  protected:
    HostWalk() {
        const qvt::Container a = top.makeGroup("a");
        a.makeNode("b").make("x", 1);
        const qvt::Table table = a.makeTable("t");
        table.make("m", 1);
        table.makeTable("n").make("o", 1);
        top.make("p", 1);
        top.makeNode("c");
    }
    ~HostWalk() noexcept override {}

    qvt::MemoryStore store;
    qvt::Container top = qvt::top(store, "top");
};

TEST_F(HostWalk, GoesDepthFirstPropertiesAheadOfContainers) {
    EXPECT_THAT(places(top), ElementsAre("0top", "1p", "1a", "2t", "3m", "3n", "4o", "2b", "3x", "1c"));
}

TEST_F(HostWalk, LeavesOutWhatIsSkipped) {
    EXPECT_THAT(places(top, "1a"), ElementsAre("0top", "1p", "1a", "1c"));
    EXPECT_THAT(places(top, "2t"), ElementsAre("0top", "1p", "1a", "2t", "2b", "3x", "1c"));
    EXPECT_THAT(places(top, "0top"), ElementsAre("0top"));
}

TEST_F(HostWalk, OfAnEmptyHandleIsEmpty) { EXPECT_THAT(places({}), ElementsAre()); }

TEST_F(HostWalk, CanBeLeftInTheMiddle) {
    for (const auto& at : qvt::walk(top))
        if (at.property.name() == "o") break;
    EXPECT_TRUE(qvt::find(store, "top").remove("a")) << "everything is closed";
}

TEST_F(HostWalk, WhatItHasPassedIsClosed) {
    for (const auto& at : qvt::walk(top.fresh()))
        if (at.container.name() == "c") {
            EXPECT_TRUE(top.remove("a"));
        }
    EXPECT_FALSE(top.fresh().contains("a"));
}

TEST_F(HostWalk, DepthCostsNoStack) {
    constexpr std::size_t kDepth = 20000;
    {
        qvt::Container at = top;
        for (std::size_t i = 0; i < kDepth; ++i) at = at.makeNode("n");
    }
    std::size_t deepest = 0;
    for (const auto& at : qvt::walk(top)) deepest = std::max(deepest, at.depth);
    EXPECT_EQ(deepest, kDepth);
}

}  // namespace
