#pragma once

#include <cstddef>
#include <cstdint>

namespace norvane::platform::core::string {

/// Hashes `length` bytes. The state is 64 bits wide, while the blocks that enter it are mixed in 32 bits; no
/// bytes hash to 0. The value is the same on every platform.
inline std::uint64_t wideKeyHash(const void* bytes, std::size_t length) {
    constexpr std::uint32_t kFactor = 0x5BD1E995u;
    const auto* at = static_cast<const unsigned char*>(bytes);
    const auto byteAt = [&at](std::size_t index) { return static_cast<std::uint32_t>(at[index]); };
    std::uint64_t hash = length;
    for (std::size_t blocks = length / 4; blocks != 0; --blocks, at += 4) {
        std::uint32_t block = byteAt(0) | byteAt(1) << 8 | byteAt(2) << 16 | byteAt(3) << 24;
        block *= kFactor;
        block ^= block >> 24;
        block *= kFactor;
        hash = hash * kFactor ^ block;
    }
    const std::size_t rest = length % 4;
    if (rest == 3) hash ^= byteAt(2) << 16;
    if (rest >= 2) hash ^= byteAt(1) << 8;
    if (rest >= 1) hash = (hash ^ byteAt(0)) * kFactor;
    hash ^= hash >> 13;
    hash *= kFactor;
    return hash ^ (hash >> 15);
}

}  // namespace norvane::platform::core::string
