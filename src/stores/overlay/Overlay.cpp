#include "stores/overlay/Overlay.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "stores/overlay/Bookkeeping.h"

namespace norvane::platform::core::storage::datastore {
namespace {

// A record up to this size is kept whole when a few of its bytes are patched under a guard.
constexpr std::uint32_t kKeptWhole = 512;

// Room for one more, which `push_back` then needs not make.
void prepareList(std::vector<std::uint32_t>& list) {
    if (list.size() == list.capacity()) list.reserve(std::max<std::size_t>(64, list.size() * 2));
}

bool isInOpenCount(const Block& block, std::uint32_t position, std::uint32_t size) noexcept {
    return hasOpenCount(block) && position >= kCountBegin && std::uint64_t{position} + size <= kCountEnd;
}

}  // namespace

Overlay::Overlay(Backend& backend, OverlayOptions options)
    : backend_(backend),
      options_(std::move(options)),
      undo_(pool_),
      evictAbove_(options_.memoryLimit),
      lastCommit_(std::chrono::steady_clock::now()) {
    becomeCommitted(backend_.meta());
}

Overlay::~Overlay() {
    for (const std::uint32_t offset : ring_)
        if (Slot* slot = slots_.find(offset); slot && slot->block.bytes) pool_.releaseAtEnd(slot->block);
}

void Overlay::noteFailure() noexcept {
    if (failure_ || isClosed_) return;
    failure_ = std::current_exception();
    failedInScope_ = isUndoable();
}

void Overlay::fail(StoreError::Code code, const std::string& words) const {
    throw StoreError(code, options_.name + ": " + words, IDataStore::BADOFF);
}

// ---- Looking

// Null where there is no record.
Slot* Overlay::look(std::uint32_t offset) {
    if (offset >= next_) return nullptr;
    Slot* slot = slots_.find(offset);
    if (!slot || slot->presence == Presence::unknown) return fetch(offset);
    if (slot->presence == Presence::absent) return nullptr;
    slot->isUsed = true;
    return slot;
}

Slot& Overlay::at(std::uint32_t offset) {
    Slot* slot = look(offset);
    if (!slot) throw std::out_of_range("no record at this offset");
    return *slot;
}

Slot* Overlay::fetch(std::uint32_t offset) {
    checkOpen();
    evictIfFull();
    Slot& slot = slots_.at(offset);
    prepareRing();
    Fetched record(pool_, offset);
    slot.isStored = backend_.load(offset, record);
    slot.isUsed = true;
    if (slot.isStored)
        makePresent(offset, slot, record.keep());
    else
        slot.presence = Presence::absent;
    return slot.isStored ? &slot : nullptr;
}

void Overlay::read(std::uint32_t offset, void* buffer, std::uint32_t size) {
    noting([&] {
        const Slot* slot = look(offset);
        if (!slot && size == 1) return;
        if (!slot) throw std::out_of_range("no record at this offset");
        copyBytes(static_cast<std::byte*>(buffer), slot->block.bytes, std::min(size, slot->block.size));
    });
}

std::uint32_t Overlay::recordSize(std::uint32_t offset) {
    const Slot* slot = noting([&] { return look(offset); });
    return slot ? slot->block.size : 0;
}

const void* Overlay::view(std::uint32_t offset, std::uint32_t& size) {
    size = 0;
    Slot* slot = noting([&] { return look(offset); });
    if (!slot) return nullptr;
    // What is looked at in place must stay; when memory is full of that, callers are to copy.
    if (viewsEndAt_ == epoch_ && slot->viewed != epoch_) return nullptr;
    slot->viewed = epoch_;
    size = slot->block.size;
    return slot->block.bytes;
}

// ---- Changing

void Overlay::checkOpen() const {
    if (isClosed_) fail(StoreError::Code::closed, "the store is closed");
}

void Overlay::checkWritable() const {
    checkOpen();
    if (options_.isReadOnly) fail(StoreError::Code::readOnly, "the store is open for reading only");
}

void Overlay::checkSize(std::uint64_t size) const {
    if (size > options_.recordLimit) throw std::length_error("record larger than the store's limit");
}

// Makes room for all that a change adds to, so that the change itself cannot fail.
void Overlay::prepareChange() {
    if (isUndoable()) undo_.prepare();
    prepareList(listed_);
    prepareRing();
}

void Overlay::changed(std::uint32_t offset, Slot& slot, bool flag, std::uint32_t position) noexcept {
    ++epoch_;
    changeStamp_ += flag ? 1 : 0;
    if (flag && companion_) companion_->changed(offset, position);
    changedInScope_ = true;
    if (!slot.isGhost)
        markDirty(offset, slot);
    else if (!isOpen(slot.block))
        dropGhost(slot);
}

// More than can be told record by record: something was taken back, or others have written.
void Overlay::changedMuch() noexcept {
    ++epoch_;
    ++changeStamp_;
    if (companion_) companion_->changedAll();
}

IDataStore::Companion* Overlay::companion(std::unique_ptr<IDataStore::Companion> (*make)()) {
    std::call_once(companionIsMade_, [&] { companion_ = make(); });
    return companion_.get();
}

void Overlay::markDirty(std::uint32_t offset, Slot& slot) noexcept {
    if (!slot.isDirty) ++dirtyCount_;
    slot.isDirty = true;
    if (!slot.isListed) listed_.push_back(offset);
    slot.isListed = true;
}

void Overlay::clearDirty(Slot& slot) noexcept {
    if (slot.isDirty) --dirtyCount_;
    slot.isDirty = false;
}

void Overlay::prepareRing() { prepareList(ring_); }

void Overlay::makePresent(std::uint32_t offset, Slot& slot, const Block& block) noexcept {
    slot.block = block;
    slot.presence = Presence::present;
    slot.isUndone = false;
    residentBytes_ += block.size;
    if (!slot.isRinged) ring_.push_back(offset);
    slot.isRinged = true;
}

void Overlay::dropBytes(Slot& slot) noexcept {
    residentBytes_ -= slot.block.size;
    pool_.release(slot.block);
}

void Overlay::setVersion(std::uint32_t version) {
    noting([&] {
        if (version == version_) return;
        checkWritable();
        prepareChange();
        if (isUndoable()) undo_.add({UndoEntry::Kind::version, false, 0, version_, {}});
        version_ = version;
        changedInScope_ = true;
        ++epoch_;
    });
}

std::uint32_t Overlay::append(const void* buffer, std::uint32_t size) {
    return noting([&] {
        checkWritable();
        checkSize(size);
        // The first record of a store has offset 0, whatever was there before and was taken back.
        const std::uint64_t free = next_ == 0 ? 0 : std::max(next_, firstFree_);
        if (free >= IDataStore::BADOFF) throw std::length_error("the store has given out all offsets");
        const auto offset = static_cast<std::uint32_t>(free);
        Slot& slot = slots_.at(offset);
        prepareChange();
        makePresent(offset, slot, pool_.copy(buffer, size));
        if (isUndoable()) undo_.add({UndoEntry::Kind::appended, false, offset, 0, {}});
        slot.scope = scope_;
        slot.isStored = false;
        slot.isHeld = false;
        next_ = free + 1;
        ++recordCount_;
        changed(offset, slot, true);
        return offset;
    });
}

void Overlay::extend(std::uint32_t offset, const void* buffer, std::uint32_t size) {
    noting([&] {
        Slot& slot = at(offset);
        checkWritable();
        const std::uint32_t before = slot.block.size;
        const std::uint64_t wanted = std::uint64_t{before} + size;
        checkSize(wanted);
        prepareChange();
        pool_.extend(slot.block, buffer, size, options_.recordLimit);
        if (needsImage(slot) && !undo_.endsWith(UndoEntry::Kind::extended, offset))
            undo_.add({UndoEntry::Kind::extended, slot.isDirty, offset, before, {}});
        residentBytes_ += size;
        changed(offset, slot, true, before);
    });
}

void Overlay::write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) {
    noting([&] {
        Slot& slot = at(offset);
        const auto* bytes = static_cast<const std::byte*>(buffer);
        if (!flag && changesOnlyOpenCount(slot.block, bytes, size)) {
            putOpenCount(slot, bytes + kCountBegin, kCountBegin, kCountEnd - kCountBegin);
            return;
        }
        checkWritable();
        checkSize(size);
        replace(offset, slot, bytes, size);
        changed(offset, slot, flag);
    });
}

void Overlay::replace(std::uint32_t offset, Slot& slot, const void* buffer, std::uint32_t size) {
    prepareChange();
    const std::uint32_t before = slot.block.size;
    if (needsImage(slot)) {
        const Block fresh = pool_.copy(buffer, size);
        keepImage(offset, slot, slot.block);
        slot.block = fresh;
    } else {
        pool_.assign(slot.block, buffer, size);
    }
    residentBytes_ += size;
    residentBytes_ -= before;
}

void Overlay::keepImage(std::uint32_t offset, Slot& slot, const Block& image) noexcept {
    undo_.add({UndoEntry::Kind::replaced, slot.isDirty, offset, 0, image});
    slot.scope = scope_;
}

bool Overlay::patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
                    bool flag) {
    return noting([&] {
        Slot& slot = at(offset);
        if (std::uint64_t{position} + size > slot.block.size)
            throw std::out_of_range("patch outside of the record");
        if (!flag && isInOpenCount(slot.block, position, size)) {
            putOpenCount(slot, bytes, position, size);
            return true;
        }
        checkWritable();
        prepareChange();
        if (needsImage(slot)) keepForPatch(offset, slot, position, size);
        copyBytes(slot.block.bytes + position, bytes, size);
        changed(offset, slot, flag, position);
        return true;
    });
}

void Overlay::keepForPatch(std::uint32_t offset, Slot& slot, std::uint32_t position, std::uint32_t size) {
    const bool isWhole = slot.block.size <= kKeptWhole;
    const Block kept = isWhole ? pool_.copy(slot.block.bytes, slot.block.size)
                               : pool_.copy(slot.block.bytes + position, size);
    if (isWhole)
        keepImage(offset, slot, kept);
    else
        undo_.add({UndoEntry::Kind::patched, slot.isDirty, offset, position, kept});
}

// Nothing of this is ever committed, so it is no change of the record. A count does not fall below 0: what is
// closed then is a handle from before a rollback, which is not counted any more.
void Overlay::putOpenCount(Slot& slot, const void* bytes, std::uint32_t position,
                           std::uint32_t size) noexcept {
    const std::uint32_t before = wordAt(slot.block, kCountBegin);
    if (slot.countedIn != transaction_) slot.countBefore = before;
    slot.countedIn = transaction_;
    copyBytes(slot.block.bytes + position, bytes, size);
    if (before == 0 && wordAt(slot.block, kCountBegin) == 0xFFFFFFFFu) setOpenCount(slot.block, 0);
    ++epoch_;
    if (slot.isGhost && !isOpen(slot.block)) dropGhost(slot);
}

void Overlay::remove(std::uint32_t offset) {
    noting([&] {
        Slot* slot = look(offset);
        if (!slot) return;
        checkWritable();
        if (slot->isGhost) return dropGhost(*slot);
        prepareChange();
        const bool wasDirty = slot->isDirty;
        residentBytes_ -= slot->block.size;
        if (isUndoable())
            undo_.add({UndoEntry::Kind::removed, wasDirty, offset, 0, std::exchange(slot->block, {})});
        else
            pool_.release(slot->block);
        slot->presence = Presence::absent;
        slot->scope = scope_;
        --recordCount_;
        changed(offset, *slot, true);
        if (!slot->isStored) clearDirty(*slot);
    });
}

}  // namespace norvane::platform::core::storage::datastore
