#pragma once

#include <cstdint>
#include <memory>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::core::storage::datastore {

/// A store that lives in memory and goes with its object: for parsing, for tests, for models of one process.
///
/// Offsets are slot numbers, counted up from 0 and never used again, also after `remove`. Where there is no
/// record (never appended, removed, `BADOFF`), a read of one byte leaves the byte, `recordSize` is 0, `view`
/// is null and `remove` does nothing; every other read, `write`, `extend` and `patch` throws
/// `std::out_of_range`. A read of another size than 1 or `kWholeRecord` copies that many bytes, or fewer if
/// the record is shorter.
///
/// `append`, `write` and `extend` throw `std::length_error` for a record above the limit, `append` also when
/// all offsets have been given out. Memory exhaustion throws `std::bad_alloc`. After any of these the store
/// is as before.
///
/// `lock` gives guards that are re-entrant within a thread; other threads wait. Where threads wait for each
/// other in a ring, it throws `std::system_error` with `resource_deadlock_would_occur`. Without a guard,
/// calls that only look may run at the same time, and nothing may run beside a change.
///
/// All extensions are offered. The memory of removed and of replaced records is kept for new ones until the
/// store goes.
class QVT_CORE_API MemoryDataStore : public IDataStore {
  public:
    /// How a store is made.
    struct Options {
        /// A larger record is refused. The default keeps one mistaken count in a document from taking all
        /// memory.
        std::uint32_t recordLimit = 1u << 30;
    };

    MemoryDataStore();
    /// An empty store with these options.
    explicit MemoryDataStore(Options options);
    MemoryDataStore(const MemoryDataStore&) = delete;
    MemoryDataStore& operator=(const MemoryDataStore&) = delete;
    ~MemoryDataStore() noexcept override;

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override;
    Guard* lock() override;
    /// Does nothing: there is nothing more durable than this object's memory.
    void flush() override;
    std::uint32_t version() override;
    void setVersion(std::uint32_t version) override;
    /// One more than the highest offset given out so far, so that all records are found between 0 and this.
    std::uint64_t size() override;
    std::uint32_t append(const void* buffer, std::uint32_t size) override;
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override;
    /// The flag decides only whether `changeStamp` moves.
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) override;
    std::uint32_t recordSize(std::uint32_t offset) override;
    void remove(std::uint32_t offset) override;

    const void* view(std::uint32_t offset, std::uint32_t& size) override;
    bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
               bool flag) override;
    std::uint32_t recordLimit() override;
    std::uint64_t changeStamp() override;
    Companion* companion(std::unique_ptr<Companion> (*make)()) override;

    /// How many records there are now.
    std::uint64_t recordCount() const;
    /// The sum of their sizes in bytes.
    std::uint64_t byteCount() const;

  private:
    struct Contents;
    std::unique_ptr<Contents> contents_;
};

}  // namespace norvane::platform::core::storage::datastore
