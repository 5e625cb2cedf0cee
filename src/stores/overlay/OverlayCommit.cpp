// What becomes of changes: undone with the guard, rolled back, or committed.
#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <utility>

#include "stores/overlay/Bookkeeping.h"
#include "stores/overlay/Overlay.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using OffsetsSeen = std::unordered_set<std::uint32_t>;

// The record as it is when nobody has it open.
std::unique_ptr<std::byte[]> closedCopy(const Block& block) {
    std::unique_ptr<std::byte[]> bytes(new std::byte[block.size]);
    std::memcpy(bytes.get(), block.bytes, block.size);
    std::memset(bytes.get() + kCountBegin, 0, kCountEnd - kCountBegin);
    return bytes;
}

}  // namespace

// Deleted by an exception under way, the outermost guard takes back what was done under it.
class Overlay::Guard : public IDataStore::Guard {
  public:
    explicit Guard(Overlay& overlay) : overlay_(overlay), exceptions_(std::uncaught_exceptions()) {
        overlay_.mutex_.lock();
        if (overlay_.mutex_.depth() == 1) overlay_.beginScope();
    }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() noexcept(false) override {
        const std::unique_lock lock(overlay_.mutex_, std::adopt_lock);
        if (overlay_.mutex_.depth() == 1) overlay_.endScope(std::uncaught_exceptions() > exceptions_);
    }

  private:
    Overlay& overlay_;
    int exceptions_;
};

IDataStore::Guard* Overlay::lock() { return new Guard(*this); }

// ---- Undoing

void Overlay::beginScope() noexcept {
    ++scope_;
    isInScope_ = true;
    changedInScope_ = false;
}

void Overlay::endScope(bool isFailing) {
    isInScope_ = false;
    if (isFailing) {
        undo();
        // Whoever asked for the operation is told by the exception, and nothing is left of it.
        if (failedInScope_) failure_ = nullptr;
        failedInScope_ = false;
        return;
    }
    undo_.clear();
    failedInScope_ = false;
    // What only closes a handle does not pay for a commit that has failed before.
    if (options_.commitsAtRelease && changedInScope_) commitIfDue();
}

void Overlay::undo() noexcept {
    if (undo_.isEmpty()) return;
    while (!undo_.isEmpty()) undo(undo_.take());
    lowerEnd();
    changedMuch();
}

void Overlay::undo(UndoEntry entry) noexcept {
    if (entry.kind == UndoEntry::Kind::version) {
        version_ = entry.number;
        return;
    }
    Slot& slot = *slots_.find(entry.offset);
    switch (entry.kind) {
        case UndoEntry::Kind::appended:
            return takeBack(slot);
        case UndoEntry::Kind::removed:
            // Whoever had it open has removed it, and does not close it any more.
            setOpenCount(entry.block, 0);
            makePresent(entry.offset, slot, entry.block);
            ++recordCount_;
            break;
        case UndoEntry::Kind::replaced:
            if (hasOpenCount(slot.block)) setOpenCount(entry.block, openCountOf(slot.block));
            dropBytes(slot);
            makePresent(entry.offset, slot, entry.block);
            break;
        case UndoEntry::Kind::extended:
            residentBytes_ -= slot.block.size - entry.number;
            RecordPool::resize(slot.block, entry.number);
            break;
        case UndoEntry::Kind::patched:
            putBack(slot.block, entry);
            break;
        case UndoEntry::Kind::version:
            break;
    }
    if (entry.wasDirty)
        markDirty(entry.offset, slot);
    else
        clearDirty(slot);
}

// All but the open count.
void Overlay::putBack(Block& block, UndoEntry& entry) noexcept {
    const std::uint32_t count = openCountOf(block);
    std::memcpy(block.bytes + entry.number, entry.block.bytes, entry.block.size);
    setOpenCount(block, count);
    pool_.release(entry.block);
}

// A record that was appended and is not to be. While it is open it stays in sight, as its destruction will
// look for it.
void Overlay::takeBack(Slot& slot) noexcept {
    clearDirty(slot);
    --recordCount_;
    slot.isGhost = isOpen(slot.block);
    if (!slot.isGhost) dropGhost(slot);
}

void Overlay::dropGhost(Slot& slot) noexcept {
    dropBytes(slot);
    slot.presence = Presence::absent;
    slot.isGhost = false;
    slot.isUndone = true;
    changedMuch();
    lowerEnd();
}

// Offsets that were never committed and are nobody's any more are given out again, so that a store whose
// first model was taken back is empty.
void Overlay::lowerEnd() noexcept {
    while (next_ > committed_.next) {
        const Slot* last = slots_.find(static_cast<std::uint32_t>(next_ - 1));
        const bool isNobodys =
            next_ > firstFree_ ? last && last->isUndone : !last || last->presence != Presence::present;
        if (!isNobodys) return;
        --next_;
    }
}

// ---- Committing

bool Overlay::hasChanges() const {
    return dirtyCount_ != 0 || version_ != committed_.version || next_ != committed_.next;
}

void Overlay::throwFailure() const {
    if (failure_) std::rethrow_exception(failure_);
}

void Overlay::flush() {
    const std::lock_guard lock(mutex_);
    throwFailure();
    if (!inTransaction_ && !isClosed_) commitChanges();
}

void Overlay::commit() {
    const std::lock_guard lock(mutex_);
    checkOpen();
    throwFailure();
    if (inTransaction_) fail(StoreError::Code::wrongState, "a transaction is under way");
    commitChanges();
}

void Overlay::commitTransaction() {
    const std::lock_guard lock(mutex_);
    checkOpen();
    throwFailure();
    commitChanges();
    inTransaction_ = false;
}

void Overlay::commitIfDue() {
    if (inTransaction_ || isClosed_ || !hasChanges()) return;
    if (std::chrono::steady_clock::now() - lastCommit_ < options_.commitInterval) return;
    throwFailure();
    commitChanges();
}

void Overlay::commitChanges() {
    if (!hasChanges()) return;
    // New records were listed in order.
    if (!std::is_sorted(listed_.begin(), listed_.end())) std::sort(listed_.begin(), listed_.end());
    std::vector<Change> changes;
    std::vector<std::unique_ptr<std::byte[]>> closed;
    changes.reserve(static_cast<std::size_t>(dirtyCount_));
    for (const std::uint32_t offset : listed_) {
        const Slot& slot = *slots_.find(offset);
        if (!slot.isDirty) continue;
        const bool isRemoved = slot.presence == Presence::absent;
        Change change{offset, isRemoved, !slot.isStored, slot.block.bytes, slot.block.size};
        if (!isRemoved && isOpen(slot.block))
            change.bytes = closed.emplace_back(closedCopy(slot.block)).get();
        changes.push_back(change);
    }
    const StoreMeta meta{version_, next_, recordCount_, committed_.revision + 1};
    backend_.commit(changes, meta);
    becomeCommitted(backend_.meta());
}

// Everything here is in the backend now, and cannot be undone any more.
void Overlay::becomeCommitted(const StoreMeta& meta) noexcept {
    const std::uint64_t freed = dirtyCount_;
    for (const std::uint32_t offset : listed_) {
        Slot& slot = *slots_.find(offset);
        if (slot.isDirty) slot.isStored = slot.presence == Presence::present;
        clearDirty(slot);
        slot.isListed = false;
    }
    listed_.clear();
    undo_.clear();
    ++scope_;
    ++transaction_;
    committed_ = meta;
    version_ = meta.version;
    next_ = meta.next;
    recordCount_ = meta.recordCount;
    lastCommit_ = std::chrono::steady_clock::now();
    evictAfterCommit(freed);
}

void Overlay::rollback() {
    const std::lock_guard lock(mutex_);
    checkOpen();
    // A commit that has seemed to fail can have been made, as one can never be quite sure.
    if (!options_.isReadOnly && (backend_.refresh() || backend_.meta() != committed_))
        fail(StoreError::Code::fenced, "the file has another revision: open it anew");
    std::vector<Fetched> restored;
    keepSatellites(true);
    try {
        fetchCommitted(restored);
    } catch (...) {
        keepSatellites(false);
        throw;
    }
    keepSatellites(false);
    for (Fetched& each : restored) restore(each);
    forgetChanges();
    forgetOpened();
}

// Entities that are open are read again at once, with what belongs to them: their destruction must not meet a
// failing disk.
void Overlay::fetchCommitted(std::vector<Fetched>& restored) {
    OffsetsSeen seen;
    const auto fetchOnce = [&](std::uint32_t offset) {
        if (!seen.insert(offset).second) return;
        Fetched record(pool_, offset);
        if (backend_.load(offset, record)) restored.push_back(std::move(record));
    };
    for (const std::uint32_t offset : listed_) {
        const Slot& slot = *slots_.find(offset);
        if (!slot.isDirty || !slot.isStored) continue;
        if (slot.isKept || (slot.presence == Presence::present && isOpen(slot.block))) fetchOnce(offset);
    }
    for (std::size_t next = 0; next < restored.size(); ++next) {
        const Block block = restored[next].block();
        forEachSatellite(block, [&](std::uint32_t satellite) {
            const Slot* slot = slots_.find(satellite);
            const bool isAsItWas = slot && slot->presence == Presence::present && !slot->isDirty;
            if (satellite < committed_.next && !isAsItWas) fetchOnce(satellite);
        });
    }
    for (const Fetched& each : restored) slots_.at(each.offset());
    ring_.reserve(ring_.size() + restored.size());
}

void Overlay::restore(Fetched& restored) noexcept {
    Slot& slot = *slots_.find(restored.offset());
    const bool isPresent = slot.presence == Presence::present;
    const std::uint32_t count = isPresent ? openCountOf(slot.block) : 0;
    if (isPresent) dropBytes(slot);
    makePresent(restored.offset(), slot, restored.keep());
    setOpenCount(slot.block, count);
    slot.isStored = true;
    clearDirty(slot);
}

void Overlay::forgetChanges() noexcept {
    for (const std::uint32_t offset : listed_) {
        Slot& slot = *slots_.find(offset);
        slot.isListed = false;
        if (!slot.isStored && slot.presence == Presence::absent) slot.isUndone = true;
        if (!slot.isDirty) continue;
        clearDirty(slot);
        if (!slot.isStored) {
            if (isOpen(slot.block)) burn(offset);
            dropGhost(slot);
            continue;
        }
        if (slot.presence == Presence::present) dropBytes(slot);
        slot.presence = Presence::unknown;
    }
    listed_.clear();
    undo_.clear();
    ++scope_;
    changedMuch();
    version_ = committed_.version;
    recordCount_ = committed_.recordCount;
    failure_ = nullptr;
    failedInScope_ = false;
    lowerEnd();
}

// Whoever has made handles since the transaction began is to drop them, and may have lost them: a reader of
// documents that meets an exception leaves its objects open. Those from before are still counted.
void Overlay::forgetOpened() noexcept {
    for (const std::uint32_t offset : ring_) {
        Slot& slot = *slots_.find(offset);
        if (slot.presence != Presence::present) continue;
        if (slot.isGhost) {
            burn(offset);
            dropGhost(slot);
        } else if (slot.countedIn == transaction_ && slot.countBefore < openCountOf(slot.block)) {
            setOpenCount(slot.block, slot.countBefore);
            slot.isHeld = true;
        }
    }
    ++transaction_;
    lowerEnd();
}

// Who may still have a handle on a record that was taken back must not close another one with it.
void Overlay::burn(std::uint32_t offset) noexcept {
    firstFree_ = std::max(firstFree_, offset + std::uint64_t{1});
}

void Overlay::beginTransaction() {
    const std::lock_guard lock(mutex_);
    checkOpen();
    if (inTransaction_) fail(StoreError::Code::wrongState, "there is a transaction already");
    throwFailure();
    commitChanges();
    inTransaction_ = true;
    ++transaction_;
}

void Overlay::close() {
    const std::lock_guard lock(mutex_);
    if (isClosed_) return;
    if (!options_.isReadOnly) throwFailure();
    if (inTransaction_) fail(StoreError::Code::wrongState, "a transaction is under way");
    commitChanges();
    isClosed_ = true;
}

bool Overlay::refresh() {
    const std::lock_guard lock(mutex_);
    checkOpen();
    if (!options_.isReadOnly) fail(StoreError::Code::wrongState, "a store for writing is always up to date");
    if (anyOpen()) fail(StoreError::Code::wrongState, "entities are open");
    if (!backend_.refresh()) return false;
    forgetRecords();
    becomeCommitted(backend_.meta());
    changedMuch();
    return true;
}

}  // namespace norvane::platform::core::storage::datastore
