#include "norvane/platform/core/thread/RecursiveMutex.h"

#include <mutex>
#include <system_error>
#include <unordered_map>

#include "norvane/platform/core/thread/Mutex.h"

namespace norvane::platform::core::thread {
namespace {

// Set beside the owner's number while others may wait.
constexpr std::uint64_t kAwaited = 1;

// Even, so that there is room for the mark. Numbers are never used again, so that a thread that has ended is
// not taken for another one.
std::uint64_t newNumber() noexcept {
    static std::atomic<std::uint64_t> last{0};
    return last += 2;
}

// Of a library, thread-local data is otherwise looked up by a call. Only little of it may be of this kind.
[[gnu::tls_model("initial-exec")]] thread_local std::uint64_t threadNumber = 0;

std::uint64_t thisThread() noexcept {
    if (threadNumber == 0) threadNumber = newNumber();
    return threadNumber;
}

// Lets the other thread of a core, if there is one, go on.
void relax() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

[[noreturn]] void wouldDeadlock() {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur), "would deadlock");
}

}  // namespace

// Which thread waits for which lock. Only threads that have to wait come here.
class WaitGraph {
  public:
    static WaitGraph& instance() {
        // Never destroyed: threads may wait until the very end of the process.
        static auto* const graph = new WaitGraph;
        return *graph;
    }

    void wait(RecursiveMutex& wanted) {
        begin(wanted);
        wanted.wait(thisThread());
        end();
    }

  private:
    // The last thread of a ring to come here sees all the others: they hold what they hold since before they
    // began to wait.
    void begin(const RecursiveMutex& wanted) {
        const std::lock_guard lock(mutex_);
        if (leadsHere(wanted)) wouldDeadlock();
        wanted_[thisThread()] = &wanted;
    }

    void end() noexcept {
        const std::lock_guard lock(mutex_);
        wanted_.erase(thisThread());
    }

    // A thread that has got its lock may stand here a little longer, then as its owner: that is a ring of its
    // own, and no way leads on from it.
    bool leadsHere(const RecursiveMutex& wanted) const {
        const RecursiveMutex* current = &wanted;
        for (std::size_t step = 0; step <= wanted_.size(); ++step) {
            const std::uint64_t owner = current->owner();
            if (owner == thisThread()) return true;
            const auto next = wanted_.find(owner);
            if (next == wanted_.end()) return false;
            current = next->second;
        }
        return false;
    }

    std::mutex mutex_;
    std::unordered_map<std::uint64_t, const RecursiveMutex*> wanted_;
};

void RecursiveMutex::lock() {
    const std::uint64_t self = thisThread();
    if (owner() == self) {
        ++depth_;
        return;
    }
    std::uint64_t nobody = 0;
    if (!owner_.compare_exchange_strong(nobody, self, std::memory_order_acquire, std::memory_order_relaxed) &&
        !takeSoon(self))
        WaitGraph::instance().wait(*this);
    depth_ = 1;
}

// Most hold it for a fraction of a microsecond; to go to sleep and be woken takes several, on both sides. Who
// looks too often, though, takes it away between any two operations of the other one, and all that they look
// at goes to and fro between their processors.
bool RecursiveMutex::takeSoon(std::uint64_t taken) noexcept {
    constexpr int kFirst = 64;
    constexpr int kLast = 1024;
    for (int rounds = kFirst; rounds <= kLast; rounds *= 2) {
        std::uint64_t seen = 0;
        if (owner_.load(std::memory_order_relaxed) == 0 &&
            owner_.compare_exchange_strong(seen, taken, std::memory_order_acquire, std::memory_order_relaxed))
            return true;
        for (int round = 0; round < rounds; ++round) relax();
    }
    return false;
}

// Whoever takes it next may end it at once: nothing of it is looked at behind the exchange, only its address
// is told to those who wait.
void RecursiveMutex::unlock() noexcept {
    if (--depth_ != 0) return;
    if ((owner_.exchange(0) & kAwaited) != 0) owner_.notify_one();
}

std::uint64_t RecursiveMutex::owner() const noexcept {
    return owner_.load(std::memory_order_relaxed) & ~kAwaited;
}

std::uint32_t RecursiveMutex::depth() const noexcept { return owner() == thisThread() ? depth_ : 0; }

// Whoever has waited goes on with the mark, since there may be others: the last of them wakes nobody, once.
void RecursiveMutex::wait(std::uint64_t self) noexcept {
    while (!takeSoon(self | kAwaited)) {
        std::uint64_t seen = owner_.load(std::memory_order_relaxed);
        const std::uint64_t awaited = seen | kAwaited;
        if (seen == awaited ||
            (seen != 0 && owner_.compare_exchange_weak(seen, awaited, std::memory_order_relaxed)))
            owner_.wait(awaited);
    }
}

Mutex::ScopedLock::ScopedLock(Mutex& mutex) : mutex_(mutex.mutex_) {
    if (mutex_.depth() != 0) wouldDeadlock();
    mutex_.lock();
}

}  // namespace norvane::platform::core::thread
