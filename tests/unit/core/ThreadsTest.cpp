// What several threads may do at once; run under ThreadSanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "norvane/platform/core/memory/PooledHeap.h"
#include "norvane/platform/core/memory/SharedPtr.h"
#include "norvane/platform/core/string/WideString.h"
#include "norvane/platform/core/thread/Mutex.h"
#include "norvane/platform/core/thread/RecursiveMutex.h"

namespace norvane::platform::core {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 2000;

void onThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; ++index) threads.emplace_back(work, index);
    for (auto& thread : threads) thread.join();
}

struct Pointee {
    explicit Pointee(std::atomic<int>& deletions) : deletions_(deletions) {}
    Pointee(const Pointee&) = delete;
    Pointee& operator=(const Pointee&) = delete;
    virtual ~Pointee() { ++deletions_; }
    int number = 7;

  private:
    std::atomic<int>& deletions_;
};

using Handle = memory::SharedPtr<Pointee>;

TEST(ThreadsTest, HandlesAreCopiedAndDroppedAtOnce) {
    std::atomic<int> deletions{0};
    {
        const Handle shared(new Pointee(deletions));
        onThreads([&](int) {
            for (int round = 0; round < kRounds; ++round) {
                const Handle copy(shared);
                const Handle another(copy);
                EXPECT_EQ(another->number, 7);
            }
        });
        EXPECT_EQ(deletions, 0);
    }
    EXPECT_EQ(deletions, 1);
}

TEST(ThreadsTest, LastHandleOfSeveralThreadsDeletesOnce) {
    for (int round = 0; round < kRounds / 4; ++round) {
        std::atomic<int> deletions{0};
        std::vector<Handle> handles(1, Handle(new Pointee(deletions)));
        handles.resize(kThreads, handles[0]);
        onThreads([&](int index) { handles[static_cast<std::size_t>(index)].reset(); });
        ASSERT_EQ(deletions, 1);
    }
}

// A weak holder tries to revive the pointee while the last strong reference goes. Whoever wins, it is deleted
// once, and not while it is held.
TEST(ThreadsTest, PointeeIsRevivedOrGoneNeverBoth) {
    for (int round = 0; round < kRounds; ++round) {
        std::atomic<int> deletions{0};
        memory::IPointerCounter* counter =
            new memory::_Private::_Counter::_CounterImp<Pointee>(new Pointee(deletions));
        counter->addWeak();
        counter->addStrong();
        counter->addWeak();
        std::thread dropping([&] { counter->releaseStrong(); });
        if (counter->addStrong()) {
            EXPECT_EQ(deletions, 0);
            counter->releaseStrong();
        }
        dropping.join();
        ASSERT_EQ(deletions, 1);
        EXPECT_EQ(counter->strongCount(), 0);
        counter->releaseWeak();
    }
}

// Lets both of two threads go on when the second of them is there.
void meet(std::atomic<int>& arrived) {
    ++arrived;
    for (int looks = 0; arrived != 2; ++looks)
        if (looks > 1000) std::this_thread::yield();
}

// Two threads drop the last two strong references; one of them holds a weak one, and looks again at once. A
// pointee that was counted out may not come back, since the other thread is about to delete it.
TEST(ThreadsTest, PointeeThatNobodyHoldsIsNeverRevived) {
    std::atomic<int> deletions{0};
    std::atomic<int> cameBack{0};
    struct Round {
        memory::IPointerCounter* counter;
        std::atomic<int> arrived{0};
    };
    std::vector<Round> rounds(kRounds * 10);
    for (Round& round : rounds) {
        round.counter = new memory::_Private::_Counter::_CounterImp<Pointee>(new Pointee(deletions));
        for (int times = 0; times < 2; ++times) {
            round.counter->addWeak();
            round.counter->addStrong();
        }
    }

    std::thread dropping([&] {
        for (Round& round : rounds) {
            meet(round.arrived);
            round.counter->releaseStrong();
        }
    });
    for (Round& round : rounds) {
        meet(round.arrived);
        round.counter->releaseStrong();
        const bool wasGone = round.counter->strongCount() == 0;
        if (round.counter->addStrong()) {
            if (wasGone) ++cameBack;
            round.counter->releaseStrong();
        }
        round.counter->releaseWeak();
    }
    dropping.join();

    EXPECT_EQ(cameBack, 0);
    EXPECT_EQ(deletions, static_cast<int>(rounds.size()));
}

TEST(ThreadsTest, CopiesOfOneTextGoToSeveralThreads) {
    const string::WideString shared(u"shared text");
    onThreads([&](int) {
        for (int round = 0; round < kRounds; ++round) {
            string::WideString copy(shared);
            copy.detach();
            EXPECT_TRUE(copy == u"shared text");
        }
    });
}

TEST(ThreadsTest, PoolServesAllThreads) {
    onThreads([](int index) {
        for (int round = 0; round < kRounds; ++round) {
            const std::size_t size = static_cast<std::size_t>(round % 100);
            void* block = memory::PooledHeap::malloc(size);
            if (size != 0) *static_cast<char*>(block) = static_cast<char>(index);
            memory::PooledHeap::free(block, size);
        }
    });
}

TEST(ThreadsTest, MutexLetsOneThreadPassAtATime) {
    thread::Mutex mutex;
    int count = 0;
    onThreads([&](int) {
        for (int round = 0; round < kRounds; ++round) {
            const thread::Mutex::ScopedLock lock(mutex);
            ++count;
        }
    });
    EXPECT_EQ(count, kThreads * kRounds);
}

TEST(ThreadsTest, RecursiveMutexCountsWhatOneThreadTakes) {
    thread::RecursiveMutex mutex;

    mutex.lock();
    mutex.lock();
    EXPECT_EQ(mutex.depth(), 2u);
    std::thread([&] { EXPECT_EQ(mutex.depth(), 0u); }).join();
    mutex.unlock();
    EXPECT_EQ(mutex.depth(), 1u);
    mutex.unlock();

    EXPECT_EQ(mutex.depth(), 0u);
    std::thread([&] {
        mutex.lock();
        EXPECT_EQ(mutex.depth(), 1u);
        mutex.unlock();
    }).join();
}

TEST(ThreadsTest, RecursiveMutexLetsOneThreadPassAtATime) {
    thread::RecursiveMutex mutex;
    int count = 0;
    onThreads([&](int) {
        for (int round = 0; round < kRounds; ++round) {
            const std::lock_guard outer(mutex);
            const std::lock_guard inner(mutex);
            ++count;
        }
    });
    EXPECT_EQ(count, kThreads * kRounds);
}

// Each of the threads takes its own mutex, and when all have done so the next one's: a ring.
TEST(ThreadsTest, OneThreadOfARingIsRefusedAndTheOthersPass) {
    constexpr int kRing = 3;
    thread::RecursiveMutex mutexes[kRing];
    std::atomic<int> holding{0};
    std::atomic<int> refused{0};
    std::atomic<int> passed{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < kRing; ++index)
        threads.emplace_back([&, index] {
            const std::lock_guard own(mutexes[index]);
            ++holding;
            while (holding < kRing) std::this_thread::yield();
            try {
                const std::lock_guard next(mutexes[(index + 1) % kRing]);
                ++passed;
            } catch (const std::system_error& error) {
                EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
                ++refused;
            }
        });
    for (auto& each : threads) each.join();

    EXPECT_EQ(refused, 1);
    EXPECT_EQ(passed, kRing - 1);
}

TEST(ThreadsTest, MutexRefusesTheThreadThatHoldsIt) {
    thread::Mutex mutex;
    const thread::Mutex::ScopedLock lock(mutex);

    EXPECT_THROW(thread::Mutex::ScopedLock again(mutex), std::system_error);
}

}  // namespace
}  // namespace norvane::platform::core
