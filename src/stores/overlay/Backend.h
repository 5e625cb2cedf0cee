// What an overlay stands on: the place where committed records lie.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace norvane::platform::core::storage::datastore {

// What is kept of a store beside its records.
struct StoreMeta {
    std::uint32_t version = 0;      // as set by the model
    std::uint64_t next = 0;         // the offset that the next new record gets
    std::uint64_t recordCount = 0;  // live records
    std::uint64_t revision = 0;     // commits so far

    friend bool operator==(const StoreMeta&, const StoreMeta&) = default;
};

// One record of a batch. The bytes are what is to be stored, open counts already at 0.
struct Change {
    std::uint32_t offset = 0;
    bool isRemoved = false;  // the record goes, and was there at the last commit
    bool isNew = false;      // there was no such record at the last commit
    const std::byte* bytes = nullptr;
    std::uint32_t size = 0;
};

// Where a record that is loaded goes. Asked at most once, when the size is known and before the bytes are.
class LoadTarget {
  public:
    virtual ~LoadTarget() = default;
    // Room for so many bytes (which may be 0), not null. Throws `std::bad_alloc`.
    virtual std::byte* take(std::uint32_t size) = 0;
};

// Loads and commits always speak of one revision: loads see the state of the last commit made here, or of the
// last `refresh`, whatever others have written since. Failures are `StoreError`s. Calls come one at a time,
// from any thread.
class Backend {
  public:
    virtual ~Backend() = default;

    // What goes with that revision.
    virtual const StoreMeta& meta() const = 0;

    // Copies a record into the target. False if there is none at this offset; damage is never taken for that.
    // When it throws, what the target has given is not to be used.
    virtual bool load(std::uint32_t offset, LoadTarget& target) = 0;

    // Makes all changes and the new meta durable, or throws and changes nothing. Changes are in order of
    // offset, one for each. `meta.revision` is that of `meta()` plus 1; a store that has another revision
    // than that of `meta()` by now was written by somebody else, which is `fenced`.
    // A commit that has thrown can be tried again, with the same changes or with others that hold them.
    virtual void commit(std::span<const Change> changes, const StoreMeta& meta) = 0;

    // For reading, goes to the newest revision. For writing, makes sure that the revision of `meta()` is
    // still the newest: after a commit that has thrown it can be that commit's, and where somebody else has
    // written the answer is `fenced`. True if `meta()` is another one now, which a writer need not say.
    virtual bool refresh() = 0;
};

}  // namespace norvane::platform::core::storage::datastore
