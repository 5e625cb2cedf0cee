#include "model/ChildCache.h"

#include <algorithm>
#include <new>

#include "records/NameMap.h"

namespace norvane::platform::data::Metadata {

namespace {

std::unique_ptr<IDataStore::Companion> makeCache() { return std::make_unique<ChildCache>(); }

// How many values stand before that position of a list.
std::size_t valuesBefore(std::uint32_t position) {
    return position <= Record::kOffsetsHeader ? 0 : (position - Record::kOffsetsHeader) / 4;
}

// What lies between the equal beginnings and the equal ends of two lists.
struct Difference {
    Difference(const std::vector<std::uint32_t>& before, const Record::View& now, std::size_t known) {
        const std::size_t shorter = std::min<std::size_t>(before.size(), now.valueCount());
        begin = std::min(known, shorter);
        while (begin < shorter && before[begin] == now.value(static_cast<std::uint32_t>(begin))) ++begin;
        const auto last = [&](std::size_t from) {
            return now.value(static_cast<std::uint32_t>(now.valueCount() - from));
        };
        while (end < shorter - begin && before[before.size() - end - 1] == last(end + 1)) ++end;
        removed = before.size() - begin - end;
        added = now.valueCount() - begin - end;
    }

    std::size_t begin = 0;
    std::size_t end = 0;  // counted from behind
    std::size_t removed = 0;
    std::size_t added = 0;
};

}  // namespace

ChildCache* ChildCache::of(IDataStore* store, std::uint32_t listLength) {
    return listLength < kWide ? nullptr : dynamic_cast<ChildCache*>(store->companion(makeCache));
}

void ChildCache::Watched::insert(std::uint32_t offset) {
    const std::size_t page = offset / kPageBits;
    if (page >= pages_.size()) pages_.resize(page + 1);
    if (!pages_[page]) pages_[page] = std::make_unique<Page>();
    (*pages_[page])[offset % kPageBits / 64] |= std::uint64_t{1} << (offset % 64);
}

bool ChildCache::Watched::contains(std::uint32_t offset) const noexcept {
    const std::size_t page = offset / kPageBits;
    if (page >= pages_.size() || !pages_[page]) return false;
    return ((*pages_[page])[offset % kPageBits / 64] >> (offset % 64) & 1) != 0;
}

// With no memory for one more the oldest go, as they do when there are too many.
void ChildCache::changed(std::uint32_t offset, std::uint32_t position) noexcept {
    if (!watched_.contains(offset)) return;
    if (changes_.size() == changes_.capacity()) changedAll();
    if (changes_.size() < changes_.capacity()) changes_.push_back({offset, position});
}

void ChildCache::changedAll() noexcept {
    forgotten_ = changeCount() + 1;
    changes_.clear();
}

std::optional<std::uint32_t> ChildCache::find(IDataStore* store, std::uint32_t list,
                                              std::u16string_view name) {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    const Known* known = lock ? upToDate(store, list) : nullptr;
    if (!known) return std::nullopt;
    const std::uint32_t* found = known->tracked->index.findByRecord(
        name, [&](std::uint32_t child) { return Record::Snapshot(store, child)->hasName(name); });
    return found ? *found : std::uint32_t{IDataStore::BADOFF};
}

std::shared_ptr<const ChildIndex> ChildCache::snapshot(IDataStore* store, std::uint32_t list) {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    const Known* known = lock ? upToDate(store, list) : nullptr;
    if (!known) return nullptr;
    return {known->tracked, &known->tracked->index};
}

// Null where the list is asked for the first time, or there is no memory for an index, without which all goes
// as well.
ChildCache::Known* ChildCache::upToDate(IDataStore* store, std::uint32_t list) try {
    const auto [entry, isNew] = lists_.try_emplace(list);
    if (isNew) {
        if (lists_.size() > mostLists_) dropGone(store);
        return nullptr;
    }
    Known& known = entry->second;
    try {
        if (!known.tracked || !follow(store, list, known)) build(store, list, known);
    } catch (...) {
        known.tracked.reset();  // it may have been left half changed
        throw;
    }
    return &known;
} catch (const std::bad_alloc&) {
    return nullptr;
}

// Nobody asks for the list of a set that was deleted, nor tells that it was.
void ChildCache::dropGone(IDataStore* store) {
    std::erase_if(lists_, [store](const auto& list) {
        return Record::kindOf(store, list.first) != static_cast<std::uint8_t>(Record::Kind::offsets);
    });
    mostLists_ = std::max<std::size_t>(mostLists_, lists_.size() * 2);
}

void ChildCache::build(IDataStore* store, std::uint32_t list, Known& known) {
    changes_.reserve(kMostChanges);
    known.tracked = std::make_shared<Tracked>();
    watched_.insert(list);
    const Record::Snapshot listed(store, list);
    const std::uint32_t count = listed->isWhole(Record::Kind::offsets) ? listed->valueCount() : 0;
    known.tracked->values.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) take(store, *known.tracked, listed->value(i));
    known.seen = changeCount();
}

// Takes the last value of the list in. Of equal names the first stays.
void ChildCache::take(IDataStore* store, Tracked& tracked, std::uint32_t child) {
    watched_.insert(child);
    tracked.values.push_back(child);
    const Record::Snapshot record(store, child);
    if (!Record::isChildKind(record->kind())) {
        tracked.isPlain = false;
        return;
    }
    const std::u16string name = record->name();
    if (isReserved(name) || !tracked.index.insert(name, child)) tracked.isPlain = false;
    if (!tracked.hashes.empty()) tracked.hashes.emplace(child, ChildIndex::hashOf(name));
}

// False where it is simpler to make the index anew. The list comes first, so that a child that went is no
// longer in it when its record is looked at.
bool ChildCache::follow(IDataStore* store, std::uint32_t list, Known& known) {
    if (known.seen < forgotten_) return false;
    const auto begin = changes_.begin() + static_cast<std::ptrdiff_t>(known.seen - forgotten_);
    constexpr std::uint32_t kUnchanged = 0xFFFFFFFFu;
    std::uint32_t position = kUnchanged;
    std::for_each(begin, changes_.end(), [&](const Change& change) {
        if (change.offset == list) position = std::min(position, change.position);
    });
    if (position != kUnchanged && !followList(store, list, known, position)) return false;
    known.seen = changeCount();
    return std::all_of(begin, changes_.end(), [&](const Change& change) {
        return change.offset == list || followChild(store, change.offset, known);
    });
}

bool ChildCache::followList(IDataStore* store, std::uint32_t list, Known& known, std::uint32_t position) {
    const Record::Snapshot listed(store, list);
    if (!listed->isWhole(Record::Kind::offsets)) return false;
    const Difference found(known.tracked->values, *listed, valuesBefore(position));
    if (found.added + found.removed == 0) return true;
    const bool isInside = found.added != 0 && found.end != 0;
    const bool isLarge = found.removed > known.tracked->values.size() / 8 + 1;
    if (isInside || isLarge || (found.removed != 0 && !known.tracked->isPlain)) return false;
    Tracked& tracked = ownedBy(known);
    const auto first = tracked.values.begin() + static_cast<std::ptrdiff_t>(found.begin);
    const auto last = first + static_cast<std::ptrdiff_t>(found.removed);
    if (!std::all_of(first, last, [&](std::uint32_t child) { return drop(tracked, child); })) return false;
    tracked.values.erase(first, last);
    for (std::size_t i = tracked.values.size(); i < listed->valueCount(); ++i)
        take(store, tracked, listed->value(static_cast<std::uint32_t>(i)));
    return true;
}

// Most changes of a child leave its name.
bool ChildCache::followChild(IDataStore* store, std::uint32_t child, Known& known) {
    const Record::Snapshot record(store, child);
    const bool isChild = Record::isChildKind(record->kind());
    const std::u16string name = isChild ? record->name() : std::u16string();
    const std::uint32_t* found = isChild ? known.tracked->index.find(name) : nullptr;
    if (found && *found == child) return true;
    if (!isListed(*known.tracked, child)) return true;
    if (!known.tracked->isPlain) return false;
    Tracked& tracked = ownedBy(known);
    drop(tracked, child);
    if (!isChild || isReserved(name) || !tracked.index.insert(name, child)) return false;
    tracked.hashes.emplace(child, ChildIndex::hashOf(name));
    return true;
}

ChildCache::Tracked& ChildCache::ownedBy(Known& known) {
    if (known.tracked.use_count() > 1)
        known.tracked = std::make_shared<Tracked>(
            Tracked{known.tracked->index, known.tracked->values, {}, known.tracked->isPlain});
    // Whoever had it has done with it: counting down once more puts all that was read there before what is
    // written now. A fence does the same, but the thread sanitizer does not know of it.
    std::shared_ptr<Tracked>(known.tracked).reset();
    return *known.tracked;
}

bool ChildCache::isListed(Tracked& tracked, std::uint32_t child) {
    if (!tracked.isPlain)
        return std::find(tracked.values.begin(), tracked.values.end(), child) != tracked.values.end();
    prepareHashes(tracked);
    return tracked.hashes.count(child) != 0;
}

void ChildCache::prepareHashes(Tracked& tracked) {
    if (tracked.hashes.empty())
        tracked.index.forEachHash(
            [&](std::uint32_t offset, std::uint32_t hash) { tracked.hashes.emplace(offset, hash); });
}

// False for a child that is not in the index.
bool ChildCache::drop(Tracked& tracked, std::uint32_t child) {
    prepareHashes(tracked);
    const auto known = tracked.hashes.find(child);
    if (known == tracked.hashes.end()) return false;
    tracked.index.eraseOffset(child, known->second);
    tracked.hashes.erase(known);
    return true;
}

}  // namespace norvane::platform::data::Metadata
