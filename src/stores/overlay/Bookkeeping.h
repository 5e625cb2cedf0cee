// The one thing that a store knows of what records mean: where the open count of an entity stands. All else
// of a record is bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "stores/pool/RecordPool.h"

namespace norvane::platform::core::storage::datastore {

inline constexpr std::uint32_t kCountBegin = 5;
inline constexpr std::uint32_t kCountEnd = 9;

// Where an entity names the records that belong to it: display names, children, and of a table defaults.
inline constexpr std::uint32_t kSatellitePositions[] = {9, 14, 22};
inline constexpr std::uint8_t kTableKind = 2;

// Whether a record of these bytes has an open count.
inline bool hasOpenCount(const std::byte* bytes, std::uint32_t size) noexcept {
    if (size < kCountEnd) return false;
    const auto kind = std::to_integer<std::uint8_t>(bytes[0]);
    return kind == 0 || kind == 1 || kind == 2 || kind == 4;
}
inline bool hasOpenCount(const Block& block) noexcept { return hasOpenCount(block.bytes, block.size); }

inline std::uint32_t wordAt(const Block& block, std::uint32_t position) noexcept {
    std::uint32_t word = 0;
    std::memcpy(&word, block.bytes + position, sizeof word);
    return word;
}

inline std::uint32_t openCountOf(const Block& block) noexcept {
    return hasOpenCount(block) ? wordAt(block, kCountBegin) : 0;
}

inline bool isOpen(const Block& block) noexcept { return openCountOf(block) != 0; }

inline void setOpenCount(const Block& block, std::uint32_t count) noexcept {
    if (hasOpenCount(block)) std::memcpy(block.bytes + kCountBegin, &count, sizeof count);
}

// Calls `visit` with the offset of each record that belongs to an entity; some may lead nowhere.
template <class Visit>
void forEachSatellite(const Block& block, Visit visit) {
    if (!hasOpenCount(block)) return;
    const bool isTable = std::to_integer<std::uint8_t>(block.bytes[0]) == kTableKind;
    for (const std::uint32_t position : kSatellitePositions)
        if (position + 4 <= block.size && (position != kSatellitePositions[2] || isTable))
            visit(wordAt(block, position));
}

// Whether the bytes differ from the record in nothing but its open count.
inline bool changesOnlyOpenCount(const Block& block, const std::byte* bytes, std::uint32_t size) noexcept {
    return size == block.size && hasOpenCount(block) && std::memcmp(block.bytes, bytes, kCountBegin) == 0 &&
           std::memcmp(block.bytes + kCountEnd, bytes + kCountEnd, size - kCountEnd) == 0;
}

}  // namespace norvane::platform::core::storage::datastore
