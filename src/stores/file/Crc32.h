// The checksum of zlib, for runs of bytes that are short: records mostly are, and zlib takes its time to
// begin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace norvane::platform::core::storage::datastore {

// Goes on from the checksum of what comes before, 0 where that is nothing.
std::uint32_t crc32With(std::uint32_t crc, std::span<const std::byte> bytes) noexcept;

}  // namespace norvane::platform::core::storage::datastore
