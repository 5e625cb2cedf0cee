// Trees of unlimited depth on a small stack, and the cost of an operation in a container with many children.
#include <pthread.h>

#include <functional>

#include "contract/Model.h"
#include "support/LoggingStore.h"

namespace norvane::platform::test {
namespace {

constexpr std::size_t kStack = 256 * 1024;
constexpr int kLevels = 100000;

void* call(void* work) {
    (*static_cast<std::function<void()>*>(work))();
    return nullptr;
}

void onASmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStack);
    ASSERT_EQ(pthread_create(&thread, &attributes, call, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

class DeepTest : public ModelTest {
  protected:
    ~DeepTest() noexcept override = default;

    SharedPtr<IContainer> digDown(IContainer& from) {
        auto current = from.makeContainer(kGroup, u"d", nullptr);
        for (int i = 1; i < kLevels; ++i) {
            auto next = current->makeContainer(kGroup, u"d", nullptr);
            current = next;
        }
        return current;
    }
};

TEST_F(DeepTest, PathNamesEveryLevel) {
    onASmallStack([this] {
        const auto deepest = digDown(*top);
        EXPECT_EQ(deepest->path().length(), 3u + 2u * kLevels);
    });
}

TEST_F(DeepTest, DeepestIsFoundByItsPath) {
    onASmallStack([this] {
        const WideString path = digDown(*top)->path();
        EXPECT_TRUE(IContainerFrontEnd::find(&store, path));
        EXPECT_TRUE(top->contains(path.substr(4, -1)));
    });
}

TEST_F(DeepTest, RemovalTakesAllLevels) {
    const std::uint64_t before = store.recordCount();
    onASmallStack([this] {
        digDown(*top);
        EXPECT_TRUE(top->remove(u"d"));
    });
    EXPECT_EQ(store.recordCount(), before + 1);
}

TEST_F(DeepTest, OpenHandleAtTheBottomPreventsRemoval) {
    onASmallStack([this] {
        auto deepest = digDown(*top);
        EXPECT_FALSE(top->remove(u"d"));
        deepest.reset();
        EXPECT_TRUE(top->remove(u"d"));
    });
}

TEST_F(DeepTest, CopyTakesAllLevels) {
    const std::uint64_t before = store.recordCount();
    onASmallStack([this] {
        digDown(*top);
        EXPECT_TRUE(top->copy(u"d", u"copy", false));
    });
    EXPECT_EQ(store.recordCount(), before + 1 + 2 * (2 * kLevels - 1));
}

TEST_F(DeepTest, CopyIntoAnotherStoreTakesAllLevels) {
    MemoryDataStore other;
    IContainerFrontEnd::toplevel(&other, u"there");
    const std::uint64_t before = other.recordCount();
    onASmallStack([&] {
        digDown(*top);
        EXPECT_TRUE(top->find(u"d")->copyTo(&other, u"there.d"));
        EXPECT_TRUE(IContainerFrontEnd::find(&other, u"there")->merge(top));
    });
    EXPECT_EQ(other.recordCount(), before + 1 + (2 * kLevels - 1));
}

TEST_F(DeepTest, WriteAtTheBottomIsNotedAllTheWayUp) {
    onASmallStack([this] {
        const auto p = digDown(*top)->makePrimitive(u"p", kInt32);
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

TEST_F(WideTest, AHundredThousandChildrenAreMadeFoundCopiedAndRemoved) {
    constexpr int kChildren = 100000;
    MemoryDataStore store;
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
