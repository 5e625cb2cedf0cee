#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreError.h"

namespace norvane::platform::core::storage::datastore {

/// A store in one file, which survives crashes of the program and of the machine. Records are looked at and
/// changed in memory; `commit` writes all changes to the file at once, or none of them.
///
/// Offsets, limits and what is thrown where there is no record are as in `MemoryDataStore`. Besides, every
/// call may throw a `StoreError`.
///
/// When changes become durable. `commit`, `flush` and `close` write what was changed since the last time; a
/// policy can add more occasions. Until then a crash, or the destructor, drops it. When `commit` has
/// returned, the changes are on the disk; when it throws, the file is as before and everything here is still
/// to be committed, so that the same commit can be tried again. A file always holds one whole revision.
///
/// After a failure. A call that has thrown leaves work half done somewhere above. From then on `commit`,
/// `flush` and `close` throw the first failure again and write nothing, until `rollback`. So a host learns of
/// a failure also where a reader of documents has passed over it and called `flush`.
///
/// An operation that throws changes nothing: when the outermost guard is released by an exception under way,
/// what was changed under it is undone, and nothing needs to be rolled back. Only what was committed
/// meanwhile stays. Handles on what is undone here, or by `rollback`, are to be dropped and opened anew.
///
/// Open counts never reach the file. How often an entity is open (bytes 5 to 8 of a record that begins with
/// 0, 1, 2 or 4) is kept in memory; in the file these bytes are 0. An undo leaves them as they are, and an
/// entity that was made and is undone stays in sight until it is closed. A rollback forgets the handles made
/// since the last commit, or since the `Transaction` began: they can still be dropped, but are not counted.
///
/// One writer, many readers. A store opened for writing keeps all other writers out, in this process and in
/// others, until it is closed; a killed process keeps nobody out, unless one that it has forked still lives.
/// In a forked process the store throws `wrongState` where it would need the file, destroying it does
/// nothing, and the file cannot be opened. A store opened for reading goes on seeing the revision it has
/// opened until `refresh`. It takes writes that concern open counts alone and refuses every other change.
///
/// `lock` gives guards that are re-entrant within a thread; other threads wait. Where waiting would never
/// end, because the threads wait for each other's stores, it throws `std::system_error` with
/// `resource_deadlock_would_occur`. Unlike a memory store, not even calls that only look may run at the same
/// time without a guard.
///
/// The file must lie on a local file system. While it is open, two more files stand beside it, named as the
/// file with `-wal` and `-shm` added. They belong to it: a copy of the file alone is one without the newest
/// revisions. Nothing else in the process may open the file, since closing it would drop locks.
class QVT_FILE_API FileDataStore : public IDataStore {
  public:
    /// What a store may do with its file.
    enum class Access : std::uint8_t {
        readWrite,  ///< Everything; all other writers are kept out.
        readOnly    ///< Only looking, at one revision; nobody is kept out.
    };
    /// What becomes of a file that is there, or is not.
    enum class Creation : std::uint8_t {
        ifMissing,  ///< Opens the file, or makes it.
        never,      ///< Only opens it. A store for reading never makes one.
        always      ///< Makes it; it is an error if it is there.
    };
    /// When changes are committed besides `commit`, `flush` and `close`.
    enum class CommitPolicy : std::uint8_t {
        onRequest,  ///< At `commit`, `flush` and `close` only.
        /// Also when the outermost guard is released without an exception and something was changed under it.
        /// Where that commit fails, the release throws, though the operation is done: its changes stay and
        /// are to be committed. The same for a handle that brings display names into the store as it goes; do
        /// not keep such handles where a destructor must not throw, as in a `std::vector`.
        atRelease,
        atInterval,  ///< The same, if `commitInterval` has passed since the last commit.
    };

    /// How a store is opened. Sizes are in bytes.
    struct Options {
        /// Whether changes are taken.
        Access access = Access::readWrite;
        /// Whether the file may be there, or must be.
        Creation creation = Creation::ifMissing;
        /// Records above this many bytes in sum are dropped from memory, those not used for longest first,
        /// when they are unchanged, not open and not looked at in place. A goal, not a promise: what is
        /// changed or open stays.
        std::uint64_t memoryLimit = std::uint64_t{256} << 20;
        /// The largest record that is taken, in bytes.
        std::uint32_t recordLimit = std::uint32_t{1} << 30;
        /// A record above this many bytes is kept in parts of this size. Between 4 KiB and 512 MiB.
        std::uint32_t partSize = std::uint32_t{8} << 20;
        /// The log beside the file is written back and emptied when it is above this many bytes.
        std::uint64_t walLimit = std::uint64_t{32} << 20;
        /// Policies are suspended as long as there is a `Transaction`.
        CommitPolicy commitPolicy = CommitPolicy::onRequest;
        /// For `CommitPolicy::atInterval`.
        std::chrono::milliseconds commitInterval{5000};
    };

    /// The log beside the file, and the processes whose reading keeps it from being emptied.
    struct LogStatus {
        std::uint64_t bytes = 0;      ///< Its length; 0 if there is none.
        std::vector<pid_t> pinnedBy;  ///< Process ids; this one's only if another store here has the file.
    };

    /// Changes that come into the file together or not at all, however often `flush` is called and whatever
    /// the policy says. One at a time. It is used under the same rules as the store, which it must not
    /// outlive.
    class QVT_FILE_API Transaction {
      public:
        /// Commits what is uncommitted, and begins. Throws `wrongState` if there is one already, and what
        /// `commit` throws.
        explicit Transaction(FileDataStore& store);
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        /// Rolls back if neither `commit` nor `rollback` has ended it. A failure of that is not told; the
        /// store then commits nothing until a rollback succeeds.
        ~Transaction() noexcept;

        /// Commits the store and ends. When it throws, the transaction goes on.
        void commit();
        /// Rolls the store back and ends. When it throws, the transaction goes on.
        void rollback();

      private:
        FileDataStore* store_;
    };

    /// Opens or makes a store with the default options.
    explicit FileDataStore(const std::string& path);
    /// Throws `StoreError`: notFound, exists, notAStore, newerVersion, damaged, inUse, notReadable,
    /// notWritable, diskFull. Nothing stays behind then.
    FileDataStore(const std::string& path, const Options& options);
    FileDataStore(const FileDataStore&) = delete;
    FileDataStore& operator=(const FileDataStore&) = delete;
    /// Drops what is uncommitted, as it has no way to tell of a failure: call `close` before.
    ~FileDataStore() noexcept override;

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override;
    Guard* lock() override;
    /// Commits, except within a `Transaction` and in a store for reading, where it only tells of failures.
    void flush() override;
    std::uint32_t version() override;
    /// Sets the number; it is committed like every other change.
    void setVersion(std::uint32_t version) override;
    /// One more than the highest offset given out so far, so that all records are found between 0 and this.
    /// Offsets that a rollback or an undo has taken back are given out again, unless they were open.
    std::uint64_t size() override;
    std::uint32_t append(const void* buffer, std::uint32_t size) override;
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override;
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) override;
    std::uint32_t recordSize(std::uint32_t offset) override;
    void remove(std::uint32_t offset) override;

    /// As promised by `IDataStore`, but null also for a record that had to be fetched when memory is at its
    /// limit with records that are in use.
    const void* view(std::uint32_t offset, std::uint32_t& size) override;
    bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
               bool flag) override;
    std::uint32_t recordLimit() override;
    std::uint64_t changeStamp() override;
    Companion* companion(std::unique_ptr<Companion> (*make)()) override;

    /// Writes all changes to the file as its next revision; nothing happens if there are none. Throws
    /// `wrongState` within a `Transaction`, which has a `commit` of its own.
    void commit();
    /// Drops all changes since the last commit, and the failure that may have been kept. Where it throws,
    /// nothing has changed.
    void rollback();
    /// Commits and gives the file up. Handles can still be dropped afterwards, though display names that only
    /// they hold are lost; what changes a record or has to be fetched throws `closed`. A second call does
    /// nothing. Throws `wrongState` within a `Transaction`.
    void close();
    /// Goes on to the newest revision, in a store for reading. True if it is another one than before; handles
    /// are to be opened anew then. Throws `wrongState` in a store for writing, and where entities are open.
    bool refresh();
    /// Rewrites the file without the room that removed records have left. Commits first. Records, offsets
    /// and the revision's contents stay. Throws `wrongState` within a `Transaction`.
    void compact();

    /// The path that the store was opened with.
    const std::string& path() const;
    /// Whether it was opened for writing or for reading.
    Access access() const;
    /// True if `commit` has something to write.
    bool hasChanges() const;
    /// How many commits the file has seen, as of this store's last look.
    std::uint64_t revision() const;
    /// How many records there are now.
    std::uint64_t recordCount() const;
    /// The bytes of records in memory.
    std::uint64_t residentBytes() const;
    /// How long the log is, and who reads from it.
    LogStatus logStatus() const;

  private:
    struct Contents;
    std::unique_ptr<Contents> contents_;
};

}  // namespace norvane::platform::core::storage::datastore
