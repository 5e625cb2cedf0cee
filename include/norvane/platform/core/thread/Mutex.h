#pragma once

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/thread/RecursiveMutex.h"

namespace norvane::platform::core::thread {

/// Lets one thread at a time pass, once.
class QVT_CORE_API Mutex {
  public:
    /// Holds a mutex from construction, which waits for it, to destruction.
    class QVT_CORE_API ScopedLock {
      public:
        /// Throws `std::system_error` with `resource_deadlock_would_occur` where the wait would never end:
        /// the calling thread holds the mutex already, or its holder waits for something that this thread
        /// holds.
        explicit ScopedLock(Mutex& mutex);
        ScopedLock(const ScopedLock&) = delete;
        ScopedLock& operator=(const ScopedLock&) = delete;
        ~ScopedLock() noexcept { mutex_.unlock(); }

      private:
        RecursiveMutex& mutex_;
    };

    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

  private:
    RecursiveMutex mutex_;
};

}  // namespace norvane::platform::core::thread
