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
    OffsetSet() = default;
    OffsetSet(const OffsetSet&) = delete;
    OffsetSet& operator=(const OffsetSet&) = delete;

    // False when the offset is there already.
    bool insert(std::uint32_t offset) {
        std::uint64_t& word = pageOf(offset / kPageBits)[offset % kPageBits / kWordBits];
        const std::uint64_t bit = std::uint64_t{1} << (offset % kWordBits);
        const bool isNew = (word & bit) == 0;
        word |= bit;
        return isNew;
    }

  private:
    static constexpr std::uint32_t kWordBits = 64;
    static constexpr std::uint32_t kPageBits = 1024;

    using Page = std::array<std::uint64_t, kPageBits / kWordBits>;

    // Most walks go on where they are.
    Page& pageOf(std::uint32_t number) {
        if (!last_ || number != lastNumber_) {
            last_ = &pages_[number];
            lastNumber_ = number;
        }
        return *last_;
    }

    std::unordered_map<std::uint32_t, Page> pages_;
    Page* last_ = nullptr;
    std::uint32_t lastNumber_ = 0;
};

}  // namespace norvane::platform::data::Record
