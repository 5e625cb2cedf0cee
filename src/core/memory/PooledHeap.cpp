#include "norvane/platform/core/memory/PooledHeap.h"

#include <new>

namespace norvane::platform::core::memory {

void* PooledHeap::malloc(std::size_t size) { return ::operator new(size); }

void PooledHeap::free(void* pointer, std::size_t size) { ::operator delete(pointer, size); }

}  // namespace norvane::platform::core::memory
