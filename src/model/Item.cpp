#include "model/Item.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <memory>
#include <unordered_set>

#include "norvane/platform/core/memory/PooledHeap.h"
#include "records/FirstFailure.h"

namespace norvane::platform::data::Metadata {

namespace field = Record::field;

Item::Item() noexcept
    : offset_(IDataStore::BADOFF),
      parent_(IDataStore::BADOFF),
      localeRecord_(IDataStore::BADOFF),
      exceptionsAtBirth_(std::uncaught_exceptions()) {}

Item::~Item() noexcept(false) {
    try {
        if (localised_)
            closeWithStrings();
        else
            lowerOpenCount();
    } catch (...) {
        if (std::uncaught_exceptions() <= exceptionsAtBirth_) throw;
    }
}

// The strings are stored even when the count could not be lowered: nothing else holds them.
void Item::closeWithStrings() {
    FirstFailure failure;
    failure.attempt([this] { lowerOpenCount(); });
    failure.attempt([this] { storeLocalised(); });
    dropEntries();
    failure.rethrow();
}

void* Item::operator new(std::size_t size) { return core::memory::PooledHeap::malloc(size); }

void Item::operator delete(void* object, std::size_t size) { core::memory::PooledHeap::free(object, size); }

bool Item::bind(IDataStore* store, std::uint32_t offset, Record::Kind kind, const Record::View& record,
                Record::Section name) {
    store_ = store;
    offset_ = offset;
    if (!record.isWhole(kind)) return false;
    inert_ = false;
    if (kind != Record::Kind::root) parent_ = record.load(field::parent);
    localeRecord_ = record.load(field::locale);
    name_ = name;
    return true;
}

void Item::bindNew(IDataStore* store, std::uint32_t offset, std::u16string_view name) {
    store_ = store;
    offset_ = offset;
    inert_ = false;
    name_ = name;
}

void Item::raiseOpenCount(const Record::View& record) {
    const std::uint32_t count = record.load(field::openCount) + 1;
    if (!store_->patch(offset_, field::openCount.position, &count, sizeof count, false))
        return raiseOpenCount();
    counted_ = true;
}

void Item::beSeen() {
    if (!inert_ && !counted_) raiseOpenCount();
}

void Item::raiseOpenCount() {
    Record::addToOpenCount(store_, offset_, 1);
    counted_ = true;
}

void Item::lowerOpenCount() {
    if (counted_ && !abandoned_) Record::addToOpenCount(store_, offset_, std::uint32_t{0} - 1);
}

std::uint32_t Item::openCount() const {
    const std::uint32_t count = Record::Snapshot(store_, offset_)->load(field::openCount);
    return counted_ ? count : count + 1;
}

bool Item::isStored() const { return !inert_ && Record::isEntity(Record::kindOf(store_, offset_)); }

std::u16string Item::path() const {
    std::vector<std::u16string> names;
    std::unordered_set<std::uint32_t> met{offset_};
    std::uint32_t current = Record::Snapshot(store_, offset_)->load(field::parent);
    while (!inert_ && met.insert(current).second) {
        const Record::Snapshot parent(store_, current);
        if (!parent->isWholeChild()) break;
        names.push_back(parent->name());
        current = parent->load(field::parent);
    }
    std::u16string path;
    std::for_each(names.rbegin(), names.rend(), [&path](const auto& name) { path += name + u"."; });
    return path.append(name());
}

std::uint8_t Item::flags() const {
    return inert_ ? std::uint8_t{0} : Record::Snapshot(store_, offset_)->load(field::flags);
}

void Item::setFlags(std::uint8_t bits) {
    const auto flags = static_cast<std::uint8_t>(this->flags() | bits);
    if (!inert_) Record::storeField(store_, offset_, field::flags, flags);
}

void Item::clearFlags(std::uint8_t bits) {
    const auto flags = static_cast<std::uint8_t>(this->flags() & ~bits);
    if (!inert_) Record::storeField(store_, offset_, field::flags, flags);
}

// A ring of parents in a damaged store ends the walk too: what it met before has lost the bit.
void Item::touch() {
    std::uint32_t current = inert_ ? std::uint32_t{IDataStore::BADOFF} : offset_;
    for (bool isStart = true;; isStart = false) {
        std::uint8_t flags = 0;
        std::uint32_t parent = IDataStore::BADOFF;
        {
            const Record::Snapshot record(store_, current);
            if (!record->isWholeEntity()) return;
            flags = record->load(field::flags);
            parent = record->load(field::parent);
        }
        if (parent == IDataStore::BADOFF) return;
        const bool isInherited = (flags & Record::kInherited) != 0;
        if (!isInherited && !isStart) return;
        const auto touched = static_cast<std::uint8_t>(flags & ~Record::kInherited);
        if (isInherited) Record::storeField(store_, current, field::flags, touched);
        current = parent;
    }
}

// Whether the item has a record of localised strings, with its entries loaded if none are in memory. No
// entries is the sign of not loaded, so what was taken out in memory down to the last one comes back here.
bool Item::loadIfStored() {
    if (localeRecord_ == IDataStore::BADOFF) return false;
    if (localised_ && !localised_->entries.empty()) return true;
    if (!localised_) localised_ = std::make_unique<Localised>();
    try {
        loadLocalised();
    } catch (...) {
        dropEntries();  // some of the strings must not pass for all of them, and overwrite the rest
        throw;
    }
    return true;
}

LocalisedEntry* Item::entryOf(std::u16string_view locale) const {
    LocalisedEntry* const* found = localised_ ? localised_->index.find(locale) : nullptr;
    return found ? *found : nullptr;
}

void Item::addEntry(std::u16string_view locale, std::u16string_view text) {
    auto entry = std::make_unique<LocalisedEntry>(
        LocalisedEntry{std::u16string(locale), std::u16string(text),
                       static_cast<std::uint32_t>(localised_->entries.size())});
    localised_->entries.push_back(entry.get());
    LocalisedEntry* added = entry.release();
    localised_->index.insert(added->locale, added);
}

void Item::removeEntry(LocalisedEntry* entry) {
    localised_->index.erase(entry->locale);
    std::erase(localised_->entries, entry);
    delete entry;
}

void Item::dropEntries() {
    if (!localised_) return;
    localised_->index.clear();
    for (LocalisedEntry* entry : localised_->entries) delete entry;
    localised_->entries.clear();
}

std::uint64_t Item::setLocalised(const tWChar* text, const tWChar* locale) {
    loadIfStored();
    const std::u16string_view wanted = Record::textOf(locale);
    LocalisedEntry* entry = entryOf(wanted);
    if (!entry && !text) return std::numeric_limits<std::uint64_t>::max();
    if (!localised_) localised_ = std::make_unique<Localised>();
    const std::uint64_t index = entry ? entry->index : localised_->entries.size();
    if (!entry)
        addEntry(wanted, text);
    else if (text)
        entry->text = text;
    else
        removeEntry(entry);
    localised_->isChanged = true;
    return index;
}

std::int32_t Item::localisedIndex(std::u16string_view locale) {
    const LocalisedEntry* entry = loadIfStored() ? entryOf(locale) : nullptr;
    return entry ? static_cast<std::int32_t>(entry->index) : -1;
}

std::uint32_t Item::localisedCount() {
    return loadIfStored() ? static_cast<std::uint32_t>(localised_->entries.size()) : 0;
}

std::u16string Item::localeAt(std::uint32_t index) {
    return index < localisedCount() ? localised_->entries[index]->locale : std::u16string();
}

std::u16string Item::textAt(std::uint32_t index) {
    return index < localisedCount() ? localised_->entries[index]->text : std::u16string();
}

std::u16string Item::localised(std::u16string_view locale) {
    const LocalisedEntry* entry = loadIfStored() ? entryOf(locale) : nullptr;
    return entry ? entry->text : std::u16string();
}

void Item::loadLocalised() {
    const Record::Snapshot record(store_, localeRecord_);
    if (!record->isWhole(Record::Kind::locale)) return;
    const Record::Section payload = record->section(field::payloadSize);
    std::u16string units(payload.size / 2, u'\0');
    if (!units.empty()) std::memcpy(units.data(), payload.begin, units.size() * 2);
    std::u16string_view left(units);
    // A locale without a text behind it is dropped, and so is what no NUL ends.
    while (true) {
        const std::size_t localeEnd = left.find(u'\0');
        if (localeEnd == left.npos) return;
        const std::size_t textEnd = left.find(u'\0', localeEnd + 1);
        if (textEnd == left.npos) return;
        addEntry(left.substr(0, localeEnd), left.substr(localeEnd + 1, textEnd - localeEnd - 1));
        left.remove_prefix(textEnd + 1);
    }
}

bool Item::isLocale(std::uint32_t offset) const {
    return Record::Snapshot(store_, offset)->isWhole(Record::Kind::locale);
}

void Item::eraseLocale() {
    if (localeRecord_ == IDataStore::BADOFF) return;
    if (isLocale(localeRecord_)) store_->remove(localeRecord_);
    dropEntries();
    localeRecord_ = IDataStore::BADOFF;
}

// Where the strings go: another object on the entity may have made the record since this one was opened.
std::uint32_t Item::storedLocaleRecord() const {
    if (isLocale(localeRecord_)) return localeRecord_;
    const std::uint32_t stored = Record::Snapshot(store_, offset_)->load(field::locale);
    return isLocale(stored) ? stored : std::uint32_t{IDataStore::BADOFF};
}

void Item::storeLocalised() {
    if (!localised_->isChanged || localised_->entries.empty() || abandoned_ || !isStored()) return;
    std::u16string payload;
    for (const LocalisedEntry* entry : localised_->entries) {
        payload.append(entry->locale).push_back(u'\0');
        payload.append(entry->text).push_back(u'\0');
    }
    const std::uint32_t stored = storedLocaleRecord();
    if (stored != IDataStore::BADOFF) {
        Record::Locale(store_, stored).setPayload(payload.data(), std::uint64_t{payload.size()} * 2);
        return;
    }
    Record::Locale record(store_);
    record.setPayload(payload.data(), std::uint64_t{payload.size()} * 2);
    Record::storeField(store_, offset_, field::locale, record.offset());
}

}  // namespace norvane::platform::data::Metadata
