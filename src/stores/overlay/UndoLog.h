// What was changed under the outermost guard, so that it can be taken back.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "stores/pool/RecordPool.h"

namespace norvane::platform::core::storage::datastore {

struct UndoEntry {
    enum class Kind : std::uint8_t {
        appended,
        replaced,  // `block`: the record as it was
        extended,  // `number`: its size as it was
        patched,   // `number`: the position, `block`: the bytes that stood there
        removed,   // `block`: the record
        version    // `number`: the version as it was
    };
    Kind kind;
    bool wasDirty = false;
    std::uint32_t offset = 0;
    std::uint32_t number = 0;
    Block block;
};

class UndoLog {
  public:
    explicit UndoLog(RecordPool& pool) : pool_(pool) {}
    UndoLog(const UndoLog&) = delete;
    UndoLog& operator=(const UndoLog&) = delete;
    ~UndoLog() { clear(); }

    // Makes room for one more entry, so that `add` cannot fail.
    void prepare() {
        if (entries_.size() == entries_.capacity())
            entries_.reserve(std::max<std::size_t>(16, entries_.size() * 2));
    }
    void add(const UndoEntry& entry) noexcept { entries_.push_back(entry); }

    bool isEmpty() const noexcept { return entries_.empty(); }
    // Whether the newest entry is of this kind and record: what it holds covers one more such change.
    bool endsWith(UndoEntry::Kind kind, std::uint32_t offset) const noexcept {
        return !entries_.empty() && entries_.back().kind == kind && entries_.back().offset == offset;
    }

    // Takes out the newest entry; its block is the caller's then.
    UndoEntry take() noexcept {
        const UndoEntry entry = entries_.back();
        entries_.pop_back();
        return entry;
    }

    void clear() noexcept {
        for (UndoEntry& entry : entries_)
            if (entry.block.bytes) pool_.release(entry.block);
        entries_.clear();
        if (entries_.capacity() > kKept) entries_ = {};
    }

  private:
    static constexpr std::size_t kKept = 4096;

    RecordPool& pool_;
    std::vector<UndoEntry> entries_;
};

}  // namespace norvane::platform::core::storage::datastore
