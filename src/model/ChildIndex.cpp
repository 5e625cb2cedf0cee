#include "model/ChildIndex.h"

#include <algorithm>
#include <utility>

#include "records/NameMap.h"

namespace norvane::platform::data::Metadata {

namespace {

constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
constexpr std::size_t kFirstSlots = 32;
// Of a deep document every level has an index open, so the first room is small.
constexpr std::size_t kFirstEntries = 4;
constexpr std::size_t kFirstUnits = 32;

// Doubles what is too small: many small steps must not cost the square of their number.
template <class T>
void reserveFor(std::vector<T>& items, std::size_t more, std::size_t first) {
    const std::size_t wanted = items.size() + more;
    if (wanted > items.capacity()) items.reserve(std::max({wanted, items.capacity() * 2, first}));
}

}  // namespace

// Never 0, which is the mark of what was erased.
std::uint32_t ChildIndex::hashOf(std::u16string_view name) {
    return static_cast<std::uint32_t>(nameHash(name)) | 1u << 31;
}

std::u16string_view ChildIndex::nameOf(std::size_t entry) const {
    const std::uint64_t begin = entries_[entry].begin;
    const std::uint64_t end = entry + 1 == entries_.size() ? names_.size() : entries_[entry + 1].begin;
    return {names_.data() + begin, static_cast<std::size_t>(end - begin)};
}

// The first entry with that hash that `isWanted` takes.
template <class IsWanted>
std::size_t ChildIndex::position(std::uint32_t hash, IsWanted isWanted) const {
    if (slots_.empty()) {
        for (std::size_t entry = 0; entry < entries_.size(); ++entry)
            if (entries_[entry].hash == hash && isWanted(entry)) return entry;
        return kNowhere;
    }
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = hash & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
        const std::size_t entry = slots_[slot] - 1;
        if (entries_[entry].hash == hash && isWanted(entry)) return entry;
    }
    return kNowhere;
}

std::size_t ChildIndex::position(std::u16string_view name, std::uint32_t hash) const {
    return position(hash, [&](std::size_t entry) { return nameOf(entry) == name; });
}

const std::uint32_t* ChildIndex::find(std::u16string_view name) const {
    if (entries_.empty() || isReserved(name)) return nullptr;
    const std::size_t entry = position(name, hashOf(name));
    return entry == kNowhere ? nullptr : &entries_[entry].offset;
}

bool ChildIndex::insert(std::u16string_view name, std::uint32_t offset) {
    if (isReserved(name)) {
        ++reserved_;
        return true;
    }
    const std::uint32_t hash = hashOf(name);
    if (position(name, hash) != kNowhere) return false;
    makeRoom();
    reserveFor(names_, name.size(), kFirstUnits);
    add(name, offset, hash);
    return true;
}

bool ChildIndex::erase(std::u16string_view name) {
    return !isReserved(name) && eraseAt(position(name, hashOf(name)));
}

bool ChildIndex::eraseOffset(std::uint32_t offset, std::uint32_t hash) {
    return eraseAt(position(hash, [&](std::size_t entry) { return entries_[entry].offset == offset; }));
}

bool ChildIndex::eraseAt(std::size_t entry) {
    if (entry == kNowhere) return false;
    entries_[entry].hash = 0;
    --live_;
    return true;
}

// All that can fail on the way to one entry more. Of the slots at least half stay free, and what was erased
// goes once it is most of the entries.
void ChildIndex::makeRoom() {
    if (entries_.size() < kFew || (entries_.size() + 1) * 2 <= slots_.size())
        reserveFor(entries_, 1, kFirstEntries);
    else
        rebuild();
}

void ChildIndex::add(std::u16string_view name, std::uint32_t offset, std::uint32_t hash) {
    const auto entry = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back({names_.size(), offset, hash});
    names_.insert(names_.end(), name.begin(), name.end());
    if (!slots_.empty()) place(slots_, hash, entry + 1);
    ++live_;
}

void ChildIndex::rebuild() {
    ChildIndex fresh;
    std::size_t slots = kFirstSlots;
    while (slots < (std::size_t{live_} + 1) * 4) slots *= 2;
    fresh.slots_.resize(slots);
    fresh.entries_.reserve(slots / 2);
    fresh.names_.reserve(names_.size());
    for (std::size_t entry = 0; entry < entries_.size(); ++entry)
        if (entries_[entry].hash != 0) fresh.add(nameOf(entry), entries_[entry].offset, entries_[entry].hash);
    fresh.reserved_ = reserved_;
    *this = std::move(fresh);
}

void ChildIndex::place(std::vector<std::uint32_t>& slots, std::uint32_t hash, std::uint32_t entry) {
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = hash & mask;
    while (slots[slot] != 0) slot = (slot + 1) & mask;
    slots[slot] = entry;
}

}  // namespace norvane::platform::data::Metadata
