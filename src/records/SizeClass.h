// The capacities that record buffers are taken in.
#pragma once

#include <array>
#include <cstdint>

namespace norvane::platform::data::Record {

inline constexpr std::array<std::uint32_t, 13> kSizeClasses{8,   16,  32,   48,   64,   96,   128,
                                                            256, 512, 1024, 2048, 4096, 16384};

// The first class not below `size`; 0 for 0, and `size` itself above the largest class.
constexpr std::uint32_t sizeClass(std::uint32_t size) {
    if (size == 0) return 0;
    for (std::uint32_t each : kSizeClasses)
        if (each >= size) return each;
    return size;
}

}  // namespace norvane::platform::data::Record
