// What an overlay knows of each record, by offset.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "stores/pool/RecordPool.h"

namespace norvane::platform::core::storage::datastore {

enum class Presence : std::uint8_t {
    unknown,  // not looked up since it was last in memory, if it ever was
    absent,   // there is no such record
    present   // in memory
};

struct Slot {
    Block block;  // null bytes unless present
    // The outermost guard under which any change of the record can be undone already.
    std::uint64_t scope = 0;
    // When its bytes were last given out to be looked at in place.
    std::uint32_t viewed = 0;
    // The open count as it was when the transaction of that number began.
    std::uint32_t countBefore = 0;
    std::uint32_t countedIn = 0;
    Presence presence = Presence::unknown;
    bool isStored : 1 = false;  // the backend has a record here
    bool isDirty : 1 = false;   // and another one than this, or none
    bool isListed : 1 = false;  // stands in the list of what may be dirty
    bool isRinged : 1 = false;  // stands in the list of what may be dropped from memory
    bool isUsed : 1 = false;    // since eviction last came by
    bool isKept : 1 = false;    // belongs to an open entity; set only while eviction runs
    bool isGhost : 1 = false;   // was taken back, but is open: it goes when it is closed
    bool isUndone : 1 = false;  // absent because it was taken back, so that its offset is free again
    bool isHeld : 1 = false;    // a rollback has forgotten handles on it, which are still to be closed
};

// Slots come into being when they are first asked for, in small pages, so that a store of many records costs
// nothing to open and a look at a few that lie far apart little. They stay where they are until
// `dropUnknown`.
class Slots {
  public:
    // The slot of any offset. Throws `std::bad_alloc`.
    Slot& at(std::uint32_t offset) {
        const std::size_t index = offset / kBookSize;
        if (index >= books_.size()) books_.resize(index + 1);
        if (!books_[index]) books_[index] = std::make_unique<Book>();
        std::unique_ptr<Page>& page = pageOf(*books_[index], offset);
        if (!page) page = std::make_unique<Page>();
        return (*page)[offset % kPageSize];
    }

    // The slot of an offset that was asked for before; null if it was not.
    Slot* find(std::uint32_t offset) const noexcept {
        const std::size_t index = offset / kBookSize;
        if (index >= books_.size() || !books_[index]) return nullptr;
        const std::unique_ptr<Page>& page = pageOf(*books_[index], offset);
        return page ? &(*page)[offset % kPageSize] : nullptr;
    }

    // Gives back the pages that say nothing.
    void dropUnknown() noexcept {
        for (auto& book : books_) {
            if (!book) continue;
            for (auto& page : *book)
                if (page && saysNothing(*page)) page.reset();
            if (std::none_of(book->begin(), book->end(), [](const auto& page) { return bool(page); }))
                book.reset();
        }
    }

    void clear() noexcept { books_.clear(); }

  private:
    static constexpr std::size_t kPageSize = 8;
    static constexpr std::size_t kBookSize = 16 * kPageSize;
    using Page = std::array<Slot, kPageSize>;
    using Book = std::array<std::unique_ptr<Page>, kBookSize / kPageSize>;

    static std::unique_ptr<Page>& pageOf(Book& book, std::uint32_t offset) noexcept {
        return book[offset % kBookSize / kPageSize];
    }

    static bool saysNothing(const Page& page) noexcept {
        for (const Slot& slot : page)
            if (slot.presence != Presence::unknown || slot.isDirty || slot.isListed || slot.isRinged)
                return false;
        return true;
    }

    std::vector<std::unique_ptr<Book>> books_;
};

}  // namespace norvane::platform::core::storage::datastore
