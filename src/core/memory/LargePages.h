// Large pages, where the system has some to give.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace norvane::platform::core::memory {

inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

// Asks for large pages for as much of the memory as whole ones fit into. Filling it then takes one fault
// where it would take 512, and what lies far apart in it is found without walks through page tables. Where
// there are none to be had, all is as without.
inline void preferLargePages(void* begin, std::size_t size) noexcept {
#if defined(MADV_HUGEPAGE)
    const auto from = (reinterpret_cast<std::uintptr_t>(begin) + kLargePage - 1) / kLargePage * kLargePage;
    const auto to = (reinterpret_cast<std::uintptr_t>(begin) + size) / kLargePage * kLargePage;
    if (from < to) ::madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
#else
    static_cast<void>(begin);
    static_cast<void>(size);
#endif
}

}  // namespace norvane::platform::core::memory
