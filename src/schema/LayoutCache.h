// The layouts of a locator, by name.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace norvane::platform::data::Schema {

class Layout;

// Whoever looks takes no lock and writes nothing that others read, so that lookups on several threads do not
// make each other dearer. Changes come one at a time, which the owner sees to, at any time beside lookups.
//
// For that, what was ever looked at stays until the cache goes: tables that became too small, and names whose
// layout went.
class LayoutCache {
  public:
    LayoutCache() = default;
    LayoutCache(const LayoutCache&) = delete;
    LayoutCache& operator=(const LayoutCache&) = delete;

    // Null if there is none. The layouts are borrowed.
    Layout* find(std::u16string_view name) const noexcept;
    // In the place of the one that has that name, if any. When it throws, nothing has changed.
    void put(std::u16string_view name, Layout* layout);
    void remove(std::u16string_view name) noexcept;

  private:
    struct Entry {
        Entry(std::u16string_view itsName, std::size_t itsHash, Layout* its)
            : name(itsName), hash(itsHash), layout(its) {}

        const std::u16string name;
        const std::size_t hash;
        std::atomic<Layout*> layout;
    };
    // An entry stands at its hash or, where that place is taken, at the next one that is free.
    struct Table {
        explicit Table(std::size_t size) : places(size) {}
        void put(Entry* entry) noexcept;
        Entry* find(std::u16string_view name, std::size_t hash) const noexcept;

        std::vector<std::atomic<Entry*>> places;  // a power of two, never full
    };

    Entry* entryOf(std::u16string_view name, std::size_t hash) const noexcept;
    void prepare();

    std::atomic<Table*> current_{nullptr};
    std::vector<std::unique_ptr<Table>> tables_;
    std::vector<std::unique_ptr<Entry>> entries_;
};

}  // namespace norvane::platform::data::Schema
