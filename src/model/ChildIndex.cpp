#include "model/ChildIndex.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "records/Records.h"

namespace norvane::platform::data::Metadata {

namespace {

constexpr std::size_t kFirstHashed = 32;
// Of a deep document every level has an index open, so the first room is small.
constexpr std::size_t kFirstPlaces = 4;
constexpr std::size_t kFirstUnits = 32;

// Doubles what is too small: many small steps must not cost the square of their number.
template <class T>
void reserveFor(PoolVector<T>& items, std::size_t more, std::size_t first) {
    const std::size_t wanted = items.size() + more;
    if (wanted > items.capacity()) items.reserve(std::max({wanted, items.capacity() * 2, first}));
}

}  // namespace

// Never one of the marks.
std::uint32_t ChildIndex::hashOf(std::u16string_view name) {
    return static_cast<std::uint32_t>(nameHash(name)) | 1u << 31;
}

std::size_t ChildIndex::position(std::u16string_view name, std::uint32_t hash) const {
    return position(hash, [&](const Place& place) { return nameOf(place) == name; });
}

const std::uint32_t* ChildIndex::find(std::u16string_view name) const {
    if (isEmpty() || isReserved(name)) return nullptr;
    const std::size_t place = position(name, hashOf(name));
    return place == kNowhere ? nullptr : &places_[place].offset;
}

bool ChildIndex::insert(std::u16string_view name, std::uint32_t offset) {
    if (find(name)) return false;
    insertNew(name, offset);
    return true;
}

void ChildIndex::insertNew(std::u16string_view name, std::uint32_t offset) {
    if (isReserved(name)) {
        ++reserved_;
        return;
    }
    if (names_.size() + name.size() > std::numeric_limits<std::uint32_t>::max()) throw TooLarge();
    makeRoom();
    reserveFor(names_, name.size(), kFirstUnits);
    put(withName({offset, hashOf(name), 0, static_cast<std::uint32_t>(name.size())}, name));
    ++live_;
}

bool ChildIndex::erase(std::u16string_view name) {
    return !isReserved(name) && eraseAt(position(name, hashOf(name)));
}

bool ChildIndex::eraseOffset(std::uint32_t offset, std::uint32_t hash) {
    return eraseAt(position(hash, [&](const Place& place) { return place.offset == offset; }));
}

bool ChildIndex::eraseAt(std::size_t place) {
    if (place == kNowhere) return false;
    places_[place].hash = kErased;
    --live_;
    return true;
}

// All that can fail on the way to one name more. Half of the places by hash stay free, and what was
// erased goes once it is in the way.
void ChildIndex::makeRoom() {
    if (!isHashed() && used_ < kFew)
        reserveFor(places_, 1, kFirstPlaces);
    else if (!isHashed() || (std::size_t{used_} + 1) * 2 > places_.size())
        rebuild();
}

void ChildIndex::put(const Place& place) {
    ++used_;
    if (!isHashed()) {
        places_.push_back(place);
        return;
    }
    const std::size_t mask = places_.size() - 1;
    std::size_t at = place.hash & mask;
    while (places_[at].hash != kFree) at = (at + 1) & mask;
    places_[at] = place;
}

void ChildIndex::rebuild() {
    ChildIndex fresh;
    std::size_t size = kFirstHashed;
    while (size < (std::size_t{live_} + 1) * 3) size *= 2;
    fresh.places_.resize(size);
    const bool isWhole = used_ == live_;  // else the names of those that were erased go
    if (!isWhole) fresh.names_.reserve(names_.size());
    for (const Place& place : places_) {
        if (place.hash <= kErased) continue;
        fresh.put(isWhole ? place : fresh.withName(place, nameOf(place)));
    }
    if (isWhole) fresh.names_ = std::move(names_);
    fresh.live_ = live_;
    fresh.reserved_ = reserved_;
    *this = std::move(fresh);
}

// The place with its name behind those that are there. There is room.
ChildIndex::Place ChildIndex::withName(const Place& place, std::u16string_view name) {
    const auto begin = static_cast<std::uint32_t>(names_.size());
    names_.insert(names_.end(), name.begin(), name.end());
    return {place.offset, place.hash, begin, place.length};
}

}  // namespace norvane::platform::data::Metadata
