// The bytes of a page, and numbers in them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "stores/file/Layout.h"

namespace norvane::platform::core::storage::datastore {

using Page = std::array<std::byte, kPageSize>;

// SQLite's numbers have their highest byte first.
inline std::uint32_t bigEndian(std::span<const std::byte> bytes) {
    std::uint32_t number = 0;
    for (const std::byte byte : bytes) number = number << 8 | std::to_integer<std::uint32_t>(byte);
    return number;
}

}  // namespace norvane::platform::core::storage::datastore
