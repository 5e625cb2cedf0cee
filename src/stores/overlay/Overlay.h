// The records of a store in memory, in front of a backend that keeps them: looks and changes happen here,
// `commit` hands all changes down at once. What it promises stands in FileDataStore.h.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreError.h"
#include "norvane/platform/core/thread/RecursiveMutex.h"
#include "stores/overlay/Backend.h"
#include "stores/overlay/Fetched.h"
#include "stores/overlay/Slots.h"
#include "stores/overlay/UndoLog.h"
#include "stores/pool/RecordPool.h"

namespace norvane::platform::core::storage::datastore {

struct OverlayOptions {
    std::string name;  // of the store, for messages
    bool isReadOnly = false;
    std::uint64_t memoryLimit = std::uint64_t{256} << 20;
    std::uint32_t recordLimit = std::uint32_t{1} << 30;
    bool commitsAtRelease = false;
    std::chrono::milliseconds commitInterval{0};  // at the earliest, when it commits at release
};

class Overlay {
  public:
    // The backend is borrowed.
    Overlay(Backend& backend, OverlayOptions options);
    Overlay(const Overlay&) = delete;
    Overlay& operator=(const Overlay&) = delete;
    ~Overlay();

    // The operations of IDataStore.
    void read(std::uint32_t offset, void* buffer, std::uint32_t size);
    IDataStore::Guard* lock();
    void flush();
    std::uint32_t version() const { return version_; }
    void setVersion(std::uint32_t version);
    std::uint64_t size() const { return next_; }
    std::uint32_t append(const void* buffer, std::uint32_t size);
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size);
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag);
    std::uint32_t recordSize(std::uint32_t offset);
    void remove(std::uint32_t offset);
    const void* view(std::uint32_t offset, std::uint32_t& size);
    bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
               bool flag);
    std::uint32_t recordLimit() const { return options_.recordLimit; }
    std::uint64_t changeStamp() const { return changeStamp_; }
    IDataStore::Companion* companion(std::unique_ptr<IDataStore::Companion> (*make)());

    // Each takes the guard.
    void commit();
    void rollback();
    bool refresh();
    // Commits; from then on only what is in memory can be looked at, and only open counts change.
    void close();
    // Commits what there is. Until the end nothing else commits. Throws `wrongState` for a second one.
    void beginTransaction();
    void commitTransaction();
    void endTransaction() noexcept { inTransaction_ = false; }
    // Keeps the exception that is being handled, if it is the first: nothing is committed until a rollback.
    void noteFailure() noexcept;
    // What the guard takes: for whatever must not meet an operation half done.
    core::thread::RecursiveMutex& mutex() { return mutex_; }

    bool isReadOnly() const { return options_.isReadOnly; }
    bool isClosed() const { return isClosed_; }
    bool hasChanges() const;
    std::uint64_t revision() const { return committed_.revision; }
    std::uint64_t recordCount() const { return recordCount_; }
    std::uint64_t residentBytes() const { return residentBytes_; }

  private:
    class Guard;

    template <class Step>
    auto noting(Step step) {
        try {
            return step();
        } catch (...) {
            noteFailure();
            throw;
        }
    }
    [[noreturn]] void fail(StoreError::Code code, const std::string& words) const;

    // Looking.
    Slot* look(std::uint32_t offset);
    Slot& at(std::uint32_t offset);
    Slot* fetch(std::uint32_t offset);

    // Changing. A change prepares all that can fail, and then does what cannot.
    void checkOpen() const;
    void checkWritable() const;
    void checkSize(std::uint64_t size) const;
    void prepareChange();
    void prepareRing();
    void changed(std::uint32_t offset, Slot& slot, bool flag, std::uint32_t position = 0) noexcept;
    void changedMuch() noexcept;
    void markDirty(std::uint32_t offset, Slot& slot) noexcept;
    void clearDirty(Slot& slot) noexcept;
    void putOpenCount(Slot& slot, const void* bytes, std::uint32_t position, std::uint32_t size) noexcept;
    void replace(std::uint32_t offset, Slot& slot, const void* buffer, std::uint32_t size);
    void makePresent(std::uint32_t offset, Slot& slot, const Block& block) noexcept;
    void dropBytes(Slot& slot) noexcept;

    // Undoing.
    bool isUndoable() const noexcept { return isInScope_; }
    bool needsImage(const Slot& slot) const noexcept {
        return isUndoable() && slot.scope != scope_ && !slot.isGhost;
    }
    void keepImage(std::uint32_t offset, Slot& slot, const Block& image) noexcept;
    void keepForPatch(std::uint32_t offset, Slot& slot, std::uint32_t position, std::uint32_t size);
    void beginScope() noexcept;
    void endScope(bool isFailing);
    void undo() noexcept;
    void undo(UndoEntry entry) noexcept;
    void putBack(Block& block, UndoEntry& entry) noexcept;
    void takeBack(Slot& slot) noexcept;
    void dropGhost(Slot& slot) noexcept;
    void lowerEnd() noexcept;

    // Committing.
    void throwFailure() const;
    void commitIfDue();
    void commitChanges();
    void becomeCommitted(const StoreMeta& meta) noexcept;
    void fetchCommitted(std::vector<Fetched>& restored);
    void restore(Fetched& restored) noexcept;
    void forgetChanges() noexcept;
    void forgetOpened() noexcept;
    void burn(std::uint32_t offset) noexcept;

    // Memory.
    void evictIfFull() noexcept;
    void evictAfterCommit(std::uint64_t freedRecords) noexcept;
    std::uint64_t sweep(std::uint64_t goal) noexcept;
    static bool mayGo(const Slot& slot) noexcept;
    void evict(Slot& slot) noexcept;
    void keepSatellites(bool isKept) noexcept;
    bool anyOpen() const noexcept;
    void forgetRecords() noexcept;

    Backend& backend_;
    const OverlayOptions options_;
    RecordPool pool_;
    Slots slots_;
    UndoLog undo_;

    StoreMeta committed_;
    std::uint32_t version_ = 0;
    std::uint64_t next_ = 0;
    std::uint64_t firstFree_ = 0;  // offsets below it, save for 0, are not given out again
    std::uint64_t recordCount_ = 0;
    std::uint64_t changeStamp_ = 1;
    std::unique_ptr<IDataStore::Companion> companion_;
    std::once_flag companionIsMade_;

    std::vector<std::uint32_t> listed_;  // offsets that may be dirty
    std::uint64_t dirtyCount_ = 0;

    std::vector<std::uint32_t> ring_;  // offsets that may be in memory, in the order of eviction
    std::uint64_t residentBytes_ = 0;
    std::uint64_t evictAbove_;
    std::uint32_t sweptAt_ = 0;     // the epoch of the last pass over what is in memory
    std::uint32_t epoch_ = 1;       // views of another epoch have ended
    std::uint32_t viewsEndAt_ = 0;  // the epoch in which no more views are given

    core::thread::RecursiveMutex mutex_;
    std::uint64_t scope_ = 0;
    bool isInScope_ = false;         // somebody holds a guard
    std::uint32_t transaction_ = 1;  // the number of the one under way, declared or not
    std::exception_ptr failure_;
    bool failedInScope_ = false;
    bool changedInScope_ = false;
    bool inTransaction_ = false;
    bool isClosed_ = false;
    std::chrono::steady_clock::time_point lastCommit_;
};

}  // namespace norvane::platform::core::storage::datastore
