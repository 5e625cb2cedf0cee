// Children by the hashes of their names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "model/ChildIndex.h"
#include "records/PoolAllocator.h"

namespace norvane::platform::data::Metadata {

// An index of children that keeps no names, for as long as those in the records will do. Children are added
// only.
class ChildHashes {
  public:
    // The first child of that hash that `isWanted(offset)` takes, or null.
    template <class IsWanted>
    const std::uint32_t* find(std::uint32_t hash, IsWanted isWanted) const {
        if (places_.empty()) return nullptr;
        for (std::size_t at = hash & mask(); places_[at].hash != kFree; at = (at + 1) & mask())
            if (places_[at].hash == hash && isWanted(places_[at].offset)) return &places_[at].offset;
        return nullptr;
    }

    // A hash as the index of names has them.
    void insert(std::uint32_t hash, std::uint32_t offset) {
        if ((std::size_t{used_} + 1) * 2 > places_.size()) grow();
        put({hash, offset});
        ++used_;
    }

  private:
    struct Place {
        std::uint32_t hash;
        std::uint32_t offset;
    };
    static constexpr std::uint32_t kFree = 0;
    static constexpr std::size_t kFirstPlaces = 64;

    std::size_t mask() const { return places_.size() - 1; }
    void grow() {
        PoolVector<Place> before(places_.empty() ? kFirstPlaces : places_.size() * 2);
        before.swap(places_);
        for (const Place& place : before)
            if (place.hash != kFree) put(place);
    }
    void put(const Place& place) {
        std::size_t at = place.hash & mask();
        while (places_[at].hash != kFree) at = (at + 1) & mask();
        places_[at] = place;
    }

    PoolVector<Place> places_;  // a power of two, of which half at least are free
    std::uint32_t used_ = 0;
};

}  // namespace norvane::platform::data::Metadata
