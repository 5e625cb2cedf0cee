#pragma once

#include <atomic>
#include <cstdint>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::thread {

/// Lets one thread at a time pass, as often nested as it likes. It is what the guards of the stores are made
/// of, so that one that nobody else wants costs little.
///
/// Threads that wait for each other in a ring would wait for ever. The one that closes the ring gets an
/// exception instead. A ring is found if all its locks are of this class or `Mutex`.
class QVT_CORE_API RecursiveMutex {
  public:
    RecursiveMutex() = default;
    RecursiveMutex(const RecursiveMutex&) = delete;
    RecursiveMutex& operator=(const RecursiveMutex&) = delete;

    /// Waits until no other thread holds it. Throws `std::system_error` with `resource_deadlock_would_occur`
    /// where that would never be; it is not held then.
    void lock();

    /// Takes back one `lock` of the calling thread, which holds it.
    void unlock() noexcept;

    /// How often the calling thread holds it.
    std::uint32_t depth() const noexcept;

  private:
    friend class WaitGraph;

    std::uint64_t owner() const noexcept;
    bool takeSoon(std::uint64_t taken) noexcept;
    void wait(std::uint64_t self) noexcept;

    std::atomic<std::uint64_t> owner_{0};  // the number of a thread, 0 for none; odd while others may wait
    std::uint32_t depth_ = 0;
};

}  // namespace norvane::platform::core::thread
