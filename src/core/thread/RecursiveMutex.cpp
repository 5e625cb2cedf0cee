#include "norvane/platform/core/thread/RecursiveMutex.h"

#include <system_error>
#include <unordered_map>

#include "norvane/platform/core/thread/Mutex.h"

namespace norvane::platform::core::thread {
namespace {

// Numbers are never used again, so that a thread that has ended is not taken for another one.
std::uint64_t thisThread() {
    static std::atomic<std::uint64_t> last{0};
    thread_local const std::uint64_t number = ++last;
    return number;
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
        wanted.mutex_.lock();
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
            const std::uint64_t owner = current->owner_.load();
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
    if (owner_.load(std::memory_order_relaxed) == self) {
        ++depth_;
        return;
    }
    if (!mutex_.try_lock()) WaitGraph::instance().wait(*this);
    owner_.store(self,
                 std::memory_order_relaxed);  // who waits later shows it to the others by the graph's mutex
    depth_ = 1;
}

void RecursiveMutex::unlock() noexcept {
    if (--depth_ != 0) return;
    owner_.store(0, std::memory_order_relaxed);
    mutex_.unlock();
}

std::uint32_t RecursiveMutex::depth() const noexcept {
    return owner_.load(std::memory_order_relaxed) == thisThread() ? depth_ : 0;
}

Mutex::ScopedLock::ScopedLock(Mutex& mutex) : mutex_(mutex.mutex_) {
    if (mutex_.depth() != 0) wouldDeadlock();
    mutex_.lock();
}

}  // namespace norvane::platform::core::thread
