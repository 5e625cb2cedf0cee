// Indices of wide lists of children, kept with their store.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/ChildIndex.h"
#include "records/Records.h"

namespace norvane::platform::data::Metadata {

// Lets all who look for children of one wide set share one index of them. It is the store's companion, and so
// hears of each change: the records that an index was made of are watched, and what was changed among them is
// looked at again before the index answers the next question. An index that somebody else holds is never
// changed; who asks next gets another one.
//
// A list is indexed when it is asked for the second time, so that nobody pays for an index who looks once.
//
// Threads that only look at a store may come here at the same time. None waits: who finds another one here
// is told nothing, and looks for himself.
class ChildCache final : public IDataStore::Companion {
  public:
    // Shorter lists are not worth it.
    static constexpr std::uint32_t kWide = 32;

    // The cache of a store that hosts one for a list of that length; else null.
    static ChildCache* of(IDataStore* store, std::uint32_t listLength);

    // The first child with that name in the list, BADOFF if there is none; nothing if that is not known here.
    std::optional<std::uint32_t> find(IDataStore* store, std::uint32_t list, std::u16string_view name);
    // The index of the list as it is now; null if there is none to be had.
    std::shared_ptr<const ChildIndex> snapshot(IDataStore* store, std::uint32_t list);

    void changed(std::uint32_t offset, std::uint32_t position) noexcept override;
    void changedAll() noexcept override;

  private:
    // The index of one list, and what it was made of.
    struct Tracked {
        ChildIndex index;
        std::vector<std::uint32_t> values;
        std::unordered_map<std::uint32_t, std::uint32_t> hashes;  // by offset, once a child went
        bool isPlain = true;  // each value leads to a child with a name of its own
    };
    struct Known {
        std::shared_ptr<Tracked> tracked;  // null for a list that was asked for once
        std::uint64_t seen = 0;            // so many changes are in it
    };
    struct Change {
        std::uint32_t offset;
        std::uint32_t position;
    };
    // Numbers by offset that cost little where they lie close together.
    class Watched {
      public:
        void insert(std::uint32_t offset);
        bool contains(std::uint32_t offset) const noexcept;

      private:
        static constexpr std::uint32_t kPageBits = 4096;
        using Page = std::array<std::uint64_t, kPageBits / 64>;
        std::vector<std::unique_ptr<Page>> pages_;
    };
    static constexpr std::size_t kMostChanges = std::size_t{1} << 14;

    Known* upToDate(IDataStore* store, std::uint32_t list);
    void dropGone(IDataStore* store);
    std::uint64_t changeCount() const { return forgotten_ + changes_.size(); }
    void build(IDataStore* store, std::uint32_t list, Known& known);
    bool follow(IDataStore* store, std::uint32_t list, Known& known);
    bool followList(IDataStore* store, std::uint32_t list, Known& known, std::uint32_t position);
    bool followChild(IDataStore* store, std::uint32_t child, Known& known);
    void take(IDataStore* store, Tracked& tracked, std::uint32_t child);
    static Tracked& ownedBy(Known& known);
    static bool isListed(Tracked& tracked, std::uint32_t child);
    static void prepareHashes(Tracked& tracked);
    static bool drop(Tracked& tracked, std::uint32_t child);

    std::mutex mutex_;
    std::unordered_map<std::uint32_t, Known> lists_;
    std::size_t mostLists_ = 64;  // with more it is time to look for those that are gone
    Watched watched_;
    std::vector<Change> changes_;  // of what is watched, the last ones
    std::uint64_t forgotten_ = 1;  // how many went before them; what is new has seen none
};

}  // namespace norvane::platform::data::Metadata
