// A set of record offsets.
#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>

namespace norvane::platform::data::Record {

// What a walk has met. A sound tree leads to each entity once, so that this costs nothing but its memory,
// which is little where offsets lie close together; in a damaged one an entity may stand in many lists, or
// below itself, and whoever entered it each time would not come to an end.
class OffsetSet {
  public:
    // False when the offset is there already.
    bool insert(std::uint32_t offset) {
        std::uint64_t& word = pages_[offset / kPageBits][offset % kPageBits / kWordBits];
        const std::uint64_t bit = std::uint64_t{1} << (offset % kWordBits);
        const bool isNew = (word & bit) == 0;
        word |= bit;
        return isNew;
    }

  private:
    static constexpr std::uint32_t kWordBits = 64;
    static constexpr std::uint32_t kPageBits = 1024;

    std::unordered_map<std::uint32_t, std::array<std::uint64_t, kPageBits / kWordBits>> pages_;
};

}  // namespace norvane::platform::data::Record
