#pragma once

#include <cstdint>
#include <memory>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::storage::datastore {

/// The size that makes `IDataStore::read` copy the whole record.
inline constexpr std::uint32_t kWholeRecord = 0xFFFFFFFFu;

/// A store of records: runs of bytes, each with a size, named by 32-bit offsets. It is not a model: it knows
/// nothing of what its records mean, and an offset inside a record is just bytes to it.
///
/// Offsets. The first record of an empty store gets offset 0. An offset stays valid until `remove`, whatever
/// size the record takes; stores of this library never give it out again afterwards.
///
/// Failure. A store that cannot do what is asked throws, and callers let that pass. Every call that changes
/// something either does all of it or throws and changes nothing.
///
/// Bytes that are handed in may lie in a view of the same store, also of the record that they go to: such as
/// those behind a removed value, which move up over it.
///
/// Threads. Callers hold a guard around related calls. The store itself need not be safe without it.
///
/// The first twelve slots are required and keep this order. Behind them stand extensions with bodies that
/// offer nothing, so that a host's own store needs none of them; new ones go last.
class QVT_CORE_API IDataStore {
  public:
    /// Exclusive use of a store, from `lock` until it is deleted. It is deleted on the thread that took it.
    struct QVT_CORE_API Guard {
        virtual ~Guard() noexcept(false) {}
    };

    /// An object that somebody keeps with a store, such as an index of its records. It goes with the store.
    /// It hears of every change but bookkeeping writes, right after the change, on the thread that made it,
    /// and must not call the store then.
    struct QVT_CORE_API Companion {
        virtual ~Companion() {}
        /// A record came, went, or has other bytes or another end from `position` on.
        virtual void changed(std::uint32_t offset, std::uint32_t position) noexcept = 0;
        /// Any record may have changed.
        virtual void changedAll() noexcept = 0;
    };

    /// The offset of no record. Never 0 and never given out by `append`. Its value belongs to the core
    /// library in use: it is read at each use and never folded into code.
    static const std::uint32_t BADOFF;

    virtual ~IDataStore() noexcept(false) {}

    /// Copies the start of a record to `buffer`. `size` is either `kWholeRecord`, for which the buffer holds
    /// at least `recordSize` bytes, or 1, for which the caller has set the byte to 0. A read of 1 byte at
    /// `BADOFF`, or where there is no record, leaves the byte as it is and does not throw. A whole read there
    /// may throw.
    virtual void read(std::uint32_t offset, void* buffer, std::uint32_t size) = 0;

    /// Begins exclusive use. The caller deletes the result to end it; it may be null, which means that this
    /// store needs no guard. A thread may hold several guards of one store at a time.
    virtual Guard* lock() = 0;

    /// Makes everything that was written so far as durable as this store can.
    virtual void flush() = 0;

    /// The format version number of the contents; 0 until `setVersion` has set it.
    virtual std::uint32_t version() = 0;
    /// Sets that number. The model does when it makes the root of an empty store, and where a document has
    /// one.
    virtual void setVersion(std::uint32_t version) = 0;

    /// 0 as long as no record was ever appended, not 0 from then on. What else the number says is the store's
    /// own matter.
    virtual std::uint64_t size() = 0;

    /// Adds a record with a copy of the bytes, and answers its offset. `buffer` may be null if `size` is 0.
    virtual std::uint32_t append(const void* buffer, std::uint32_t size) = 0;

    /// Adds bytes to the end of an existing record, also bytes of its own. Filling a record this way costs
    /// time in proportion to what is added.
    virtual void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) = 0;

    /// Replaces the bytes of an existing record, whose size becomes `size`. `flag` is false for a write that
    /// changes nothing but bookkeeping (how often an entity is open), and true for every other. `buffer` may
    /// be any part of the record's own view.
    virtual void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) = 0;

    /// The size of a record in bytes; 0 where there is none.
    virtual std::uint32_t recordSize(std::uint32_t offset) = 0;

    /// Deletes a record. Nothing happens where there is none.
    virtual void remove(std::uint32_t offset) = 0;

    /// The bytes of a record in place, and their number. Null means that this store has no such views or that
    /// there is no such record; `size` is 0 then. The bytes may be looked at until the next change of the
    /// store by anyone.
    virtual const void* view(std::uint32_t offset, std::uint32_t& size);

    /// Replaces `size` bytes of a record from `position` on; the record keeps its size. False means that this
    /// store does not offer it, and nothing was changed. `flag` as in `write`. `bytes` may be any part of the
    /// record's own view, also one that overlaps with what it replaces.
    virtual bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
                       bool flag);

    /// The largest size of a record that this store takes, in bytes.
    virtual std::uint32_t recordLimit();

    /// A number that is another one whenever any record changed, other than by a bookkeeping write. 0 means
    /// that this store does not offer it.
    virtual std::uint64_t changeStamp();

    /// The companion of this store, which is owned by it; `make` makes one where there is none yet. There is
    /// one for all who ask, whoever made it. Null means that this store keeps none. Safe from all threads
    /// that only look at the store.
    virtual Companion* companion(std::unique_ptr<Companion> (*make)());
};

}  // namespace norvane::platform::core::storage::datastore
