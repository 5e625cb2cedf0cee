#pragma once

// What libqvt_data shows to its hosts; everything else in the library is hidden.
#define QVT_DATA_API __attribute__((visibility("default")))

// Stands on the interfaces: host and library mean the same type, however either is built. It exports nothing
// by itself, because cmake/abi/data.map lists what leaves the library: an interface has inline destructors
// only, so that its type information is emitted wherever it is used, and copies of it compare equal by name.
#if defined(__clang__)
#define QVT_DATA_TYPE __attribute__((type_visibility("default")))
#else
#define QVT_DATA_TYPE __attribute__((visibility("default")))
#endif
