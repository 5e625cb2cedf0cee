// Finds the records of a store file in its pages, without SQLite: those that the tables lead to and, when
// asked, those in pages that nothing leads to any more. What has no right checksum is passed over.
#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "norvane/platform/core/storage/datastore/StoreFile.h"
#include "stores/file/Layout.h"
#include "stores/file/RawFile.h"
#include "stores/file/RawRow.h"

namespace norvane::platform::core::storage::datastore {

// Numbers of pages. It takes room for those that it has.
class PageSet {
  public:
    bool contains(std::uint32_t page) const {
        const auto found = blocks_.find(page / kBlock);
        return found != blocks_.end() && found->second[page % kBlock];
    }
    void insert(std::uint32_t page) { blocks_[page / kBlock].set(page % kBlock); }

  private:
    static constexpr std::uint32_t kBlock = 4096;
    std::unordered_map<std::uint32_t, std::bitset<kBlock>> blocks_;
};

class Salvage {
  public:
    Salvage(const RawFile& file, StoreFile::Search search);

    // In order of offset, each once.
    void visit(const StoreFile::Visitor& visitor);
    // As far as it can be trusted. Asked after `visit`.
    StoreFile::Summary summary() const;
    bool hasFoundNothing() const { return !hasMeta_ && given_ == 0; }

  private:
    // Where a row was found. Of rows that claim to be the same, the first in this order that is sound counts:
    // those that the tables lead to, then those in the hindmost page.
    struct Place {
        std::uint64_t id;
        std::uint32_t page;
        std::uint16_t position;
        bool isStray;

        bool operator<(const Place& other) const;
    };
    using Places = std::vector<Place>;

    void walk(std::uint32_t root);
    void sweep();
    std::vector<std::uint32_t> roots() const;
    bool take(std::uint32_t number, bool isStray);
    bool takeRow(const RawRow& row, const Place& place);
    void takeHidden(const Page& page, const Place& place, const std::vector<bool>& known);

    bool isRemoved(std::uint32_t offset) const;
    bool give(const Place& place, const StoreFile::Visitor& visitor);
    bool assemble(std::uint32_t offset, std::uint64_t size, std::vector<std::byte>& bytes) const;

    const RawFile& file_;
    PageSet seen_;
    Places records_;
    Places parts_;
    std::unordered_map<std::uint32_t, LiveBits> live_;
    StoreMeta meta_;
    bool hasMeta_ = false;
    std::uint64_t given_ = 0;
    std::uint64_t end_ = 0;
};

}  // namespace norvane::platform::core::storage::datastore
