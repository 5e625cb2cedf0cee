// Containers whose memory is the pool's.
#pragma once

#include <cstddef>
#include <vector>

#include "norvane/platform/core/memory/PooledHeap.h"

namespace norvane::platform::data {

// For containers that are made and go in great numbers, or that become large.
template <class T>
struct PoolAllocator {
    using value_type = T;

    PoolAllocator() = default;
    template <class U>
    PoolAllocator(const PoolAllocator<U>&) {}

    T* allocate(std::size_t count) {
        return static_cast<T*>(core::memory::PooledHeap::malloc(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) { core::memory::PooledHeap::free(block, count * sizeof(T)); }

    template <class U>
    bool operator==(const PoolAllocator<U>&) const {
        return true;
    }
};

template <class T>
using PoolVector = std::vector<T, PoolAllocator<T>>;

}  // namespace norvane::platform::data
