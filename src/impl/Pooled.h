// Where handles come from.
#pragma once

#include <cstddef>

#include "norvane/platform/core/memory/PooledHeap.h"

namespace norvane::platform::data {

// Base of all that is handed to hosts in great numbers and for a short time: its objects are drawn from the
// pool.
class Pooled {
  public:
    static void* operator new(std::size_t size) { return core::memory::PooledHeap::malloc(size); }
    static void operator delete(void* object, std::size_t size) {
        core::memory::PooledHeap::free(object, size);
    }
};

}  // namespace norvane::platform::data
