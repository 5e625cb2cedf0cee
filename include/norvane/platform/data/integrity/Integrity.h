#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::data::integrity {

using core::storage::datastore::IDataStore;

/// How much a finding matters.
enum class Severity : std::uint8_t {
    note,     ///< Worth knowing; nothing is wrong.
    warning,  ///< Allowed, but it will surprise somebody: a name that no path can reach.
    error     ///< The records contradict each other or themselves.
};

/// One thing that was found in a store, or changed in it.
struct Finding {
    /// How much it matters.
    Severity severity;
    std::string
        code;  ///< A short word that stays the same from version to version; docs/integrity.md lists all.
    std::uint32_t offset;  ///< The record, or `IDataStore::BADOFF`.
    std::string path;      ///< The dotted path of the entity, in UTF-8; empty if it has none.
    std::string text;      ///< What it is, in a sentence without the path.
};

/// What came of looking at a store, or of mending one.
struct Report {
    /// In the order in which they were found.
    std::vector<Finding> findings;
    std::uint64_t recordCount = 0;  ///< Records that were looked at.
    /// True if nothing is an error.
    QVT_FILE_API bool isSound() const;
};

/// Looks at every record of a store, and at how they hang together. It changes nothing, takes the guard for
/// its whole length and needs memory in proportion to the number of records. A record that the store cannot
/// give is a finding. Open counts are expected to be 0: nothing may be open.
QVT_FILE_API Report check(IDataStore& store);

/// The same for a store's file, after the file itself. Throws `StoreError` notFound and notReadable only.
QVT_FILE_API Report checkFile(const std::string& path);

/// What `removeUnreachable` has found and done.
struct Removal {
    /// What `check` says of the store as it was.
    Report report;
    /// Records that were removed.
    std::uint64_t removedCount = 0;
};

/// Removes all that nothing leads to, from the root down: what refused and overridden elements of documents
/// leave behind, for good. Where `check` finds an error it removes nothing, since what is damaged may be what
/// led to the rest. All other records stay as they are. Takes the guard for its whole length, and memory as
/// `check` does; nothing may be open. Throws what the store throws.
QVT_FILE_API Removal removeUnreachable(IDataStore& store);

/// What `repair` does besides leaving out what is damaged.
struct RepairOptions {
    /// Takes records from every page that looks as if it held some, for files whose own order is broken.
    bool salvage = false;
    /// Puts entities that nothing leads to below a group of this name (UTF-8), below the root. Empty leaves
    /// them out of the tree, as they are.
    std::string recovered;
};

/// Makes a new store at `out` of what is sound in the file `in`, and answers what is different: the errors
/// that `in` had, each with what was done about it, and what was put into lists anew. `check` finds no error
/// in the new store. What readers take for a record stays one, and reads as before. Records keep their
/// offsets; nothing is renamed. Throws `StoreError`: notFound, notReadable; damaged when
/// nothing can be saved; exists, notWritable, diskFull for `out`, of which nothing stays then.
QVT_FILE_API Report repair(const std::string& in, const std::string& out, const RepairOptions& options);

}  // namespace norvane::platform::data::integrity
