// Memory that nobody may touch for now. AddressSanitizer stops a program that does; without it nothing
// happens.
#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QVT_HAS_FENCES 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define QVT_HAS_FENCES 1
#endif

#if defined(QVT_HAS_FENCES)
#include <sanitizer/asan_interface.h>
#endif

namespace norvane::platform::core::storage::datastore {

#if defined(QVT_HAS_FENCES)
inline void closeMemory(const void* bytes, std::size_t size) { __asan_poison_memory_region(bytes, size); }
inline void openMemory(const void* bytes, std::size_t size) { __asan_unpoison_memory_region(bytes, size); }
#else
inline void closeMemory(const void*, std::size_t) {}
inline void openMemory(const void*, std::size_t) {}
#endif

}  // namespace norvane::platform::core::storage::datastore
