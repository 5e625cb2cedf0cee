// Several threads on one store, each with handles of its own.
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "contract/Model.h"
#include "support/ForwardingStore.h"

namespace norvane::platform::test {
namespace {

constexpr int kThreads = 4;

template <class Work>
void onThreads(Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& each : threads) each.join();
}

std::u16string numbered(char16_t letter, int number) {
    std::u16string name(1, letter);
    for (const char digit : std::to_string(number)) name += static_cast<char16_t>(digit);
    return name;
}

class ThreadsTest : public StoreTest {
  protected:
    ~ThreadsTest() noexcept override = default;
};

TEST_F(ThreadsTest, OnlyOneOfThemMakesTheRootAndTheDefault) {
    onThreads([this](int) {
        for (int i = 0; i < 50; ++i) EXPECT_TRUE(IContainerFrontEnd::toplevel(&store, WideString()));
    });

    EXPECT_EQ(namesIn(store, u""), Names{u"default"});
    EXPECT_EQ(store.recordCount(), 3u);
    EXPECT_EQ(openCountsOf(store), 0u);
}

TEST_F(ThreadsTest, EachFillsAGroupOfItsOwn) {
    onThreads([this](int thread) {
        const auto mine = IContainerFrontEnd::toplevel(&store, numbered(u't', thread).c_str());
        for (int i = 0; i < 50; ++i) {
            const auto p = mine->makePrimitive(numbered(u'p', i).c_str(), kInt32);
            write<std::int32_t>(*p, {thread, i});
            p->property()->setLocalised(u"en", u"text");
        }
        for (int i = 0; i < 50; i += 2) EXPECT_TRUE(mine->remove(numbered(u'p', i).c_str()));
    });

    for (int thread = 0; thread < kThreads; ++thread) {
        const auto filled = IContainerFrontEnd::find(&store, numbered(u't', thread).c_str());
        ASSERT_EQ(namesOf(*filled->properties()).size(), 25u);
        const auto p = filled->findProperty(u"p7");
        EXPECT_EQ(valuesOf<std::int32_t>(*IPrimitive::to(p.get())), (std::vector<std::int32_t>{thread, 7}));
        EXPECT_EQ(p->localised(u"en"), u"text");
    }
}

TEST_F(ThreadsTest, AllAddToOneGroupAndNothingIsLost) {
    IContainerFrontEnd::toplevel(&store, u"shared");

    onThreads([this](int thread) {
        const auto mine = IContainerFrontEnd::toplevel(&store, u"shared");
        for (int i = 0; i < 50; ++i)
            EXPECT_TRUE(mine->makeContainer(kGroup, numbered(static_cast<char16_t>(u'a' + thread), i).c_str(),
                                            nullptr));
    });

    EXPECT_EQ(namesIn(store, u"shared").size(), 50u * kThreads);
    EXPECT_EQ(openCountsOf(store), 0u);
}

TEST_F(ThreadsTest, HandlesAreSharedAndDroppedAnywhere) {
    auto top = IContainerFrontEnd::toplevel(&store, u"top");
    top->makePrimitive(u"p", kInt32);

    onThreads([&top](int) {
        for (int i = 0; i < 100; ++i) {
            const auto copy = top;
            EXPECT_EQ(copy->find(u"missing"), nullptr);
            EXPECT_TRUE(copy->findProperty(u"p"));
        }
    });

    top.reset();
    EXPECT_EQ(openCountsOf(store), 0u);
}

// Stops whoever asks for its guard until it is told to go on.
class StoppingStore : public ForwardingStore {
  public:
    explicit StoppingStore(IDataStore& store) : ForwardingStore(store, Extensions::off) {}

    void waitUntilAsked() { asked_.get_future().wait(); }
    void goOn() { goOn_.set_value(); }

  protected:
    void before(const char* call) override {
        if (std::string_view(call) != "lock" || isStopped_) return;
        isStopped_ = true;
        asked_.set_value();
        goOn_.get_future().wait();
    }

  private:
    std::promise<void> asked_;
    std::promise<void> goOn_;
    bool isStopped_ = false;
};

TEST_F(ThreadsTest, ToplevelAndFindRunOneAtATimeWhateverTheStoreHandlesDoNot) {
    const auto handle = IContainerFrontEnd::toplevel(&store, u"top");
    ModelStore memory;
    StoppingStore stopping(memory);
    std::thread first([&stopping] { IContainerFrontEnd::toplevel(&stopping, u"x"); });
    stopping.waitUntilAsked();
    std::atomic<bool> isDone = false;
    std::thread second([this, &isDone] {
        IContainerFrontEnd::find(&store, u"top");
        isDone = true;
    });

    EXPECT_EQ(handle->name(), u"top");
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(isDone);

    stopping.goOn();
    first.join();
    second.join();
    EXPECT_TRUE(isDone);
}

TEST_F(ThreadsTest, StoresAreIndependentOfEachOther) {
    ModelStore stores[kThreads];

    onThreads([&stores](int thread) {
        const auto top = IContainerFrontEnd::toplevel(&stores[thread], u"top");
        for (int i = 0; i < 100; ++i) top->makePrimitive(numbered(u'p', i).c_str(), kInt32);
    });

    for (ModelStore& each : stores) EXPECT_EQ(namesIn(each, u"top").size(), 100u);
}

}  // namespace
}  // namespace norvane::platform::test
