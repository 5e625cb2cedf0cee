#include "schema/LayoutCache.h"

#include <functional>

namespace norvane::platform::data::Schema {
namespace {

constexpr std::size_t kFirstSize = 16;

std::size_t hashOf(std::u16string_view name) { return std::hash<std::u16string_view>()(name); }

}  // namespace

LayoutCache::Entry* LayoutCache::Table::find(std::u16string_view name, std::size_t hash) const noexcept {
    for (std::size_t at = hash;; ++at) {
        Entry* entry = places[at & (places.size() - 1)].load(std::memory_order_acquire);
        if (!entry || (entry->hash == hash && entry->name == name)) return entry;
    }
}

void LayoutCache::Table::put(Entry* entry) noexcept {
    std::size_t at = entry->hash;
    while (places[at & (places.size() - 1)].load(std::memory_order_relaxed)) ++at;
    places[at & (places.size() - 1)].store(entry, std::memory_order_release);
}

LayoutCache::Entry* LayoutCache::entryOf(std::u16string_view name, std::size_t hash) const noexcept {
    const Table* table = current_.load(std::memory_order_acquire);
    return table ? table->find(name, hash) : nullptr;
}

Layout* LayoutCache::find(std::u16string_view name) const noexcept {
    const Entry* entry = entryOf(name, hashOf(name));
    return entry ? entry->layout.load(std::memory_order_acquire) : nullptr;
}

void LayoutCache::put(std::u16string_view name, Layout* layout) {
    const std::size_t hash = hashOf(name);
    if (Entry* entry = entryOf(name, hash)) return entry->layout.store(layout, std::memory_order_release);
    prepare();
    entries_.push_back(std::make_unique<Entry>(name, hash, layout));
    current_.load(std::memory_order_relaxed)->put(entries_.back().get());
}

// Makes room for one more entry in a table that stays half empty.
void LayoutCache::prepare() {
    Table* table = current_.load(std::memory_order_relaxed);
    if (table && (entries_.size() + 1) * 2 <= table->places.size()) return;
    auto larger = std::make_unique<Table>(table ? table->places.size() * 2 : kFirstSize);
    for (const auto& entry : entries_) larger->put(entry.get());
    tables_.push_back(std::move(larger));
    current_.store(tables_.back().get(), std::memory_order_release);
}

void LayoutCache::remove(std::u16string_view name) noexcept {
    if (Entry* entry = entryOf(name, hashOf(name))) entry->layout.store(nullptr, std::memory_order_release);
}

}  // namespace norvane::platform::data::Schema
