#pragma once

#include <mutex>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::thread {

/// Lets one thread at a time pass. Not re-entrant: a thread that holds it and asks again waits for ever.
class QVT_CORE_API Mutex {
  public:
    /// Holds a mutex from construction, which waits for it, to destruction.
    class QVT_CORE_API ScopedLock {
      public:
        explicit ScopedLock(Mutex& mutex) : lock_(mutex.mutex_) {}
        ScopedLock(const ScopedLock&) = delete;
        ScopedLock& operator=(const ScopedLock&) = delete;

      private:
        std::lock_guard<std::mutex> lock_;
    };

    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

  private:
    std::mutex mutex_;
};

}  // namespace norvane::platform::core::thread
