// An index from names to record offsets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "records/NameMap.h"
#include "records/PoolAllocator.h"

namespace norvane::platform::data::Metadata {

// Maps names to offsets, the first of equal names winning. It keeps copies of the names, all in one run of
// memory, since most sets of a document are small and are opened in great numbers. Reserved names are counted
// and never found, and so are never equal.
//
// Of a wide set, all that a lookup needs but the name lies in one place: each further one is likely to be in
// memory that no cache holds.
class ChildIndex {
  public:
    // The offset that stands under the name, or null. Valid until the index changes.
    const std::uint32_t* find(std::u16string_view name) const;
    // The same where the records have the names still that they had here: `hasName(offset)` looks there.
    template <class HasName>
    const std::uint32_t* findByRecord(std::u16string_view name, HasName hasName) const {
        if (isEmpty() || isReserved(name)) return nullptr;
        const std::size_t place =
            position(hashOf(name), [&](const Place& each) { return hasName(each.offset); });
        return place == kNowhere ? nullptr : &places_[place].offset;
    }

    // False, with nothing changed, when the name is there already.
    bool insert(std::u16string_view name, std::uint32_t offset);
    // One that is not there: somebody has asked.
    void insertNew(std::u16string_view name, std::uint32_t offset);
    // False when there is no such name.
    bool erase(std::u16string_view name);
    void clear() { *this = ChildIndex(); }

    std::uint32_t size() const { return live_ + reserved_; }

    // For those who know a child by its offset: what the hash of its name is, and the way back from there.
    template <class Visit>
    void forEachHash(Visit visit) const {
        for (const Place& place : places_)
            if (place.hash > kErased) visit(place.offset, place.hash);
    }
    static std::uint32_t hashOf(std::u16string_view name);
    bool eraseOffset(std::uint32_t offset, std::uint32_t hash);

  private:
    struct Place {
        std::uint32_t offset;
        std::uint32_t hash;  // or one of the marks below, which no hash is
        std::uint32_t begin;
        std::uint32_t length;
    };
    static constexpr std::uint32_t kFree = 0;
    static constexpr std::uint32_t kErased = 1;
    static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
    // Up to so many names stand in their order, and are looked through one by one.
    static constexpr std::size_t kFew = 8;

    bool isEmpty() const { return used_ == 0; }
    bool isHashed() const { return places_.size() > kFew; }
    std::u16string_view nameOf(const Place& place) const {
        return {names_.data() + place.begin, place.length};
    }
    // The first one of that hash that `isWanted` takes. Of the places for hashes one is always free.
    template <class IsWanted>
    std::size_t position(std::uint32_t hash, IsWanted isWanted) const {
        if (!isHashed()) {
            for (std::size_t place = 0; place < places_.size(); ++place)
                if (places_[place].hash == hash && isWanted(places_[place])) return place;
            return kNowhere;
        }
        const std::size_t mask = places_.size() - 1;
        for (std::size_t place = hash & mask; places_[place].hash != kFree; place = (place + 1) & mask)
            if (places_[place].hash == hash && isWanted(places_[place])) return place;
        return kNowhere;
    }
    std::size_t position(std::u16string_view name, std::uint32_t hash) const;
    bool eraseAt(std::size_t place);
    void makeRoom();
    void rebuild();
    void put(const Place& place);
    Place withName(const Place& place, std::u16string_view name);

    PoolVector<Place> places_;  // few, or a power of two of them by hash
    PoolVector<char16_t> names_;
    std::uint32_t used_ = 0;  // places that are not free
    std::uint32_t live_ = 0;
    std::uint32_t reserved_ = 0;
};

}  // namespace norvane::platform::data::Metadata
