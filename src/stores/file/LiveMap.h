// Which offsets have a record: told by bits of their own, so that a row that damage has hidden is not taken
// for a removed record.
#pragma once

#include <cstdint>
#include <map>
#include <unordered_map>
#include <utility>

#include "stores/file/Connection.h"
#include "stores/file/Layout.h"

namespace norvane::platform::core::storage::datastore {

class LiveMap {
  public:
    // Asked of offsets below `next`. Throws `damaged`.
    bool isLive(Connection& connection, std::uint32_t offset);

    // Changes of a commit under way, which `keep` or `drop` ends. `blocks` is how many there were before.
    // Answers what was so until now.
    bool set(Connection& connection, std::uint32_t offset, bool isLive, std::uint64_t blocks);
    // Writes them, and a row for every block that is new.
    void write(Connection& connection, std::uint64_t blocksBefore, std::uint64_t blocksAfter);
    void keep();
    void drop() noexcept;

    // Forgets what it has read.
    void clear() noexcept;

  private:
    LiveBits& cached(Connection& connection, std::uint32_t block);
    std::pair<const std::uint32_t, LiveBits>& stage(Connection& connection, std::uint32_t block,
                                                    std::uint64_t blocks);

    void readAhead(Connection& connection, std::uint32_t first);

    static constexpr std::size_t kMostCached = 2048;
    static constexpr std::uint32_t kAhead = 16;

    std::unordered_map<std::uint32_t, LiveBits> cache_;
    std::map<std::uint32_t, LiveBits> staged_;
    std::pair<const std::uint32_t, LiveBits>* lastStaged_ = nullptr;  // most often changed again
    std::uint32_t lastMissed_ = 0xFFFFFF00u;                          // far from every block
    LiveBits* last_ = nullptr;  // the block that was asked for last, most often asked for again
    std::uint32_t lastBlock_ = 0;
};

}  // namespace norvane::platform::core::storage::datastore
