#pragma once

#include <cstddef>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::memory {

/// Blocks for record buffers and for small short-lived objects. Safe from all threads, which do not wait for
/// each other here: each keeps some of the small blocks that it gives back, for its own next ones.
class QVT_CORE_API PooledHeap {
  public:
    /// A block of `size` bytes, aligned for any type; never null. Size 0 gives a block of its own, too.
    /// Throws `std::bad_alloc`.
    static void* malloc(std::size_t size);

    /// Gives a block back. `size` is exactly what was given to `malloc`. A null pointer is ignored.
    static void free(void* pointer, std::size_t size);
};

}  // namespace norvane::platform::core::memory
