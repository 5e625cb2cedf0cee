#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::storage::datastore {

/// What a store that keeps its records outside of memory throws when that fails. `what` says it in one line,
/// with the name of the file first.
///
/// A caller's own mistake is another exception: `std::out_of_range` where there is no record,
/// `std::length_error` for a record above the limit.
class QVT_FILE_API StoreError : public std::runtime_error {
  public:
    /// What has gone wrong, for programs.
    enum class Code : std::uint8_t {
        notFound,      ///< There is no such file, and none was to be made.
        exists,        ///< There is such a file, though a new one was to be made.
        notAStore,     ///< A file of another kind, or of no kind.
        newerVersion,  ///< A store whose layout is newer than this library.
        damaged,       ///< What is there contradicts itself; see `offset`.
        inUse,         ///< Another writer has the file, in this process or in another one.
        notReadable,   ///< The file or its folder cannot be read: permissions, a failing disk.
        notWritable,   ///< Writing has failed, other than for want of room.
        diskFull,      ///< There is no room; the same commit succeeds when there is.
        readOnly,      ///< A change was asked of a store that was opened for reading only.
        fenced,        ///< Another writer has changed the file since; what is uncommitted here cannot be.
        closed,        ///< The store was closed.
        wrongState,    ///< Not possible now, as a second transaction within a first.
    };

    /// Made by stores: the words are what `what` gives.
    StoreError(Code code, const std::string& words, std::uint32_t offset);
    ~StoreError() noexcept override;

    /// What has gone wrong.
    Code code() const noexcept { return code_; }

    /// The first record that is concerned, `IDataStore::BADOFF` if it is none in particular.
    std::uint32_t offset() const noexcept { return offset_; }

  private:
    Code code_;
    std::uint32_t offset_;
};

}  // namespace norvane::platform::core::storage::datastore
