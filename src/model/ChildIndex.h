// An index from names to record offsets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace norvane::platform::data::Metadata {

// Maps names to offsets, the first of equal names winning. It keeps copies of the names, all in one run of
// memory, since most sets of a document are small and are opened in great numbers. Reserved names are counted
// and never found, and so are never equal.
class ChildIndex {
  public:
    // The offset that stands under the name, or null. Valid until the index changes.
    const std::uint32_t* find(std::u16string_view name) const;

    // False, with nothing changed, when the name is there already.
    bool insert(std::u16string_view name, std::uint32_t offset);
    // False when there is no such name.
    bool erase(std::u16string_view name);
    void clear() { *this = ChildIndex(); }

    std::uint32_t size() const { return live_ + reserved_; }

    // For those who know a child by its offset: what an entry's hash is, and the way back to the entry.
    template <class Visit>
    void forEachHash(Visit visit) const {
        for (const Entry& entry : entries_)
            if (entry.hash != 0) visit(entry.offset, entry.hash);
    }
    static std::uint32_t hashOf(std::u16string_view name);
    bool eraseOffset(std::uint32_t offset, std::uint32_t hash);

  private:
    // A name ends where the one of the next entry begins.
    struct Entry {
        std::uint64_t begin;
        std::uint32_t offset;
        std::uint32_t hash;  // 0 for one that was erased
    };
    // Up to so many entries are looked through one by one, without slots.
    static constexpr std::size_t kFew = 8;

    std::u16string_view nameOf(std::size_t entry) const;
    template <class IsWanted>
    std::size_t position(std::uint32_t hash, IsWanted isWanted) const;
    std::size_t position(std::u16string_view name, std::uint32_t hash) const;
    bool eraseAt(std::size_t entry);
    void makeRoom();
    void add(std::u16string_view name, std::uint32_t offset, std::uint32_t hash);
    void rebuild();
    static void place(std::vector<std::uint32_t>& slots, std::uint32_t hash, std::uint32_t entry);

    std::vector<Entry> entries_;
    std::vector<char16_t> names_;
    std::vector<std::uint32_t> slots_;  // by hash, the entry's number plus one; 0 is free
    std::uint32_t live_ = 0;
    std::uint32_t reserved_ = 0;
};

}  // namespace norvane::platform::data::Metadata
