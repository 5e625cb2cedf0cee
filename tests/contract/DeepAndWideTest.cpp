// Trees of unlimited depth on a small stack, and the cost of an operation in a container with many children.
#include <functional>

#include "contract/Model.h"
#include "support/LoggingStore.h"
#include "support/SmallStack.h"

namespace norvane::platform::test {
namespace {

constexpr int kLevels = 100000;

// A group "d" below the top with a "d" in it, and so on; written as records, since that takes no time.
class DeepTest : public ModelTest {
  protected:
    DeepTest() {
        makeGroup(*top, u"d");
        Offset parent = recordAt(store, u"top/d");
        std::vector<unsigned char> group = RawRecord(store, parent).bytes();
        for (int level = 1; level < kLevels; ++level) {
            putOffset(group, 1, parent);
            const Offset child = store.append(group.data(), static_cast<std::uint32_t>(group.size()));
            std::vector<unsigned char> list(5, 3);
            putOffset(list, 1, child);
            overwrite(store, parent, 14, store.append(list.data(), 5), 4);
            parent = child;
        }
        path = u"top";
        for (int level = 0; level < kLevels; ++level) path += u".d";
    }
    ~DeepTest() noexcept override = default;

    SharedPtr<IContainer> openDeepest() { return IContainerFrontEnd::find(&store, path.c_str()); }

    std::u16string path;

  private:
    static void putOffset(std::vector<unsigned char>& bytes, std::size_t position, Offset offset) {
        for (std::size_t i = 0; i < 4; ++i) bytes[position + i] = static_cast<unsigned char>(offset >> 8 * i);
    }
};

TEST_F(DeepTest, DeepestIsFoundAndNamesEveryLevel) {
    onSmallStack([this] {
        const auto deepest = openDeepest();
        ASSERT_TRUE(deepest);
        EXPECT_EQ(deepest->path(), path.c_str());
        EXPECT_TRUE(top->contains(path.c_str() + 4));
    });
}

TEST_F(DeepTest, RemovalTakesAllLevels) {
    onSmallStack([this] { EXPECT_TRUE(top->remove(u"d")); });

    EXPECT_EQ(store.recordCount(), 4u);
}

TEST_F(DeepTest, OpenHandleAtTheBottomPreventsRemoval) {
    onSmallStack([this] {
        const auto deepest = openDeepest();
        EXPECT_FALSE(top->remove(u"d"));
    });

    EXPECT_EQ(store.recordCount(), 4u + 2 * kLevels - 1);
}

TEST_F(DeepTest, CopyTakesAllLevels) {
    onSmallStack([this] { EXPECT_TRUE(top->copy(u"d", u"copy", false)); });

    EXPECT_EQ(store.recordCount(), 4u + 2 * (2 * kLevels - 1));
}

TEST_F(DeepTest, CopyIntoAnotherStoreTakesAllLevels) {
    ModelStore other;
    const auto there = IContainerFrontEnd::toplevel(&other, u"there");

    onSmallStack([&] {
        EXPECT_TRUE(there->merge(top));
        EXPECT_TRUE(top->find(u"d")->copyTo(&other, u"there.copy"));
    });

    EXPECT_EQ(other.recordCount(), 4u + 2 * (2 * kLevels - 1));
}

TEST_F(DeepTest, WriteAtTheBottomIsNotedAllTheWayUp) {
    onSmallStack([this] {
        const auto p = openDeepest()->makePrimitive(u"p", kInt32);
        for (Offset offset = 1; offset < store.size(); ++offset)
            if (RawRecord(store, offset).isEntity()) overwrite(store, offset, 13, 4, 1);
        write<std::int32_t>(*p, {1});
    });

    for (Offset offset = 1; offset < store.size(); ++offset)
        ASSERT_TRUE(!RawRecord(store, offset).isEntity() || RawRecord(store, offset).flags() == 0) << offset;
}

class WideTest : public ::testing::Test {
  protected:
    ~WideTest() noexcept override = default;

    // The calls and the bytes read by one operation in a container that has so many children.
    struct Cost {
        std::size_t calls = 0;
        std::uint64_t bytes = 0;
    };
    using Work = std::function<void(IContainer&)>;

    static Cost costOf(int children, const Work& work) {
        LoggingStore store;
        const auto top = IContainerFrontEnd::toplevel(&store, u"top");
        for (int i = 0; i < children; ++i)
            top->makePrimitive(
                (u"sameBeginning" + std::u16string(1, static_cast<char16_t>(0x4E00 + i))).c_str(), kInt32);
        top->makePrimitive(u"last", kInt32);
        store.takeCalls();
        work(*top);
        Cost cost;
        for (const StoreCall& each : store.calls()) {
            ++cost.calls;
            if (each.name == "read" && each.size != 1) cost.bytes += store.behind().recordSize(each.offset);
        }
        return cost;
    }

    static void expectSameCost(const Work& work) {
        const Cost narrow = costOf(10, work);
        const Cost wide = costOf(1000, work);
        EXPECT_EQ(wide.calls, narrow.calls);
        EXPECT_EQ(wide.bytes, narrow.bytes);
    }
};

TEST_F(WideTest, AddingAChildCostsTheSameAtAnyWidth) {
    expectSameCost([](IContainer& top) { top.makePrimitive(u"new", kInt32); });
    expectSameCost([](IContainer& top) { top.makeContainer(kGroup, u"new", nullptr); });
    expectSameCost([](IContainer& top) { top.makeTable(u"new", nullptr); });
}

TEST_F(WideTest, LookingUpADirectChildCostsTheSameAtAnyWidth) {
    expectSameCost([](IContainer& top) { top.contains(u"last"); });
    expectSameCost([](IContainer& top) { top.findProperty(u"last"); });
}

TEST_F(WideTest, StepOfAFilterCostsTheSameAtAnyWidth) {
    SharedPtr<IPropertyFilter> filter;
    const auto made = [&filter](IContainer& top) { filter = top.properties(); };
    EXPECT_EQ(costOf(1000, made).calls, costOf(10, made).calls);
}

TEST_F(WideTest, ManyChildrenAreMadeFoundCopiedAndRemoved) {
    constexpr int kChildren = 30000;
    ModelStore store;
    auto top = IContainerFrontEnd::toplevel(&store, u"top");
    auto wide = top->makeContainer(kGroup, u"wide", nullptr);
    const auto nameOf = [](int number) {
        std::u16string name = u"MaterialProperty_";
        for (int digit = 0; digit < 6; ++digit, number /= 10)
            name += static_cast<char16_t>(u'0' + number % 10);
        return name;
    };
    for (int i = 0; i < kChildren; ++i) ASSERT_TRUE(wide->makePrimitive(nameOf(i).c_str(), kInt32));
    for (int i = 0; i < kChildren; i += 7) ASSERT_TRUE(wide->findProperty(nameOf(i).c_str()));
    wide.reset();

    EXPECT_TRUE(top->find(u"wide")->contains(nameOf(kChildren - 1).c_str()));
    EXPECT_TRUE(top->copy(u"wide", u"copy", false));
    EXPECT_TRUE(top->makeContainer(kGroup, u"merged", nullptr)->merge(top->find(u"copy")));
    EXPECT_EQ(childrenOf(store, recordAt(store, u"top/merged")).size(), std::size_t{kChildren});
    EXPECT_TRUE(top->remove(u"wide"));
    EXPECT_TRUE(top->remove(u"copy"));
    EXPECT_TRUE(top->remove(u"merged"));
    EXPECT_EQ(store.recordCount(), 4u);
}

}  // namespace
}  // namespace norvane::platform::test
