// What stays in memory and what goes.
#include <algorithm>

#include "stores/overlay/Bookkeeping.h"
#include "stores/overlay/Overlay.h"

namespace norvane::platform::core::storage::datastore {
namespace {

// Eviction goes a good way below the limit, and what cannot go is not looked at again for each record: a pass
// costs a look at every record in memory.
constexpr std::uint64_t kStep = 8;

}  // namespace

// What had to stay, and what was closed since the last pass, may go now. Where that is little, as with small
// commits while much is open, the next pass would find little: passes cost no more than what they follow.
void Overlay::evictAfterCommit(std::uint64_t freedRecords) noexcept {
    if (freedRecords + (epoch_ - sweptAt_) >= ring_.size() / kStep) evictAbove_ = options_.memoryLimit;
    evictIfFull();
}

void Overlay::evictIfFull() noexcept {
    if (residentBytes_ <= evictAbove_) return;
    sweptAt_ = epoch_;
    const std::uint64_t goal = options_.memoryLimit - options_.memoryLimit / kStep;
    keepSatellites(true);
    std::uint64_t viewedBytes = 0;
    // The second time round it drops what it has only marked the first time.
    for (int round = 0; round < 2 && residentBytes_ > goal; ++round) viewedBytes = sweep(goal);
    keepSatellites(false);
    slots_.dropUnknown();
    evictAbove_ = residentBytes_ + std::max(options_.memoryLimit, residentBytes_) / kStep;
    if (residentBytes_ > goal && viewedBytes > options_.memoryLimit / 2) viewsEndAt_ = epoch_;
}

// One way round the ring, or less when the goal is reached. Answers the bytes that stay only because they may
// be looked at in place.
std::uint64_t Overlay::sweep(std::uint64_t goal) noexcept {
    std::uint64_t viewedBytes = 0;
    std::size_t kept = 0;
    std::size_t next = 0;
    for (; next < ring_.size() && residentBytes_ > goal; ++next) {
        Slot& slot = *slots_.find(ring_[next]);
        const bool isFree = mayGo(slot);
        if (isFree && slot.viewed == epoch_) viewedBytes += slot.block.size;
        if (isFree && slot.viewed != epoch_ && !slot.isUsed) evict(slot);
        slot.isUsed = false;
        // One that was removed under this guard may come back, and is to find its place then.
        if (slot.presence == Presence::present || slot.scope == scope_)
            ring_[kept++] = ring_[next];
        else
            slot.isRinged = false;
    }
    // What was not come to is first the next time.
    std::rotate(ring_.begin(), ring_.begin() + static_cast<std::ptrdiff_t>(next), ring_.end());
    ring_.erase(ring_.end() - static_cast<std::ptrdiff_t>(next - kept), ring_.end());
    return viewedBytes;
}

bool Overlay::mayGo(const Slot& slot) noexcept {
    return slot.presence == Presence::present && !slot.isDirty && !slot.isGhost && !slot.isKept &&
           !slot.isHeld && !isOpen(slot.block);
}

void Overlay::evict(Slot& slot) noexcept {
    dropBytes(slot);
    slot.presence = Presence::unknown;
}

void Overlay::keepSatellites(bool isKept) noexcept {
    for (const std::uint32_t offset : ring_) {
        const Slot& slot = *slots_.find(offset);
        if (slot.presence != Presence::present || !(slot.isHeld || isOpen(slot.block))) continue;
        forEachSatellite(slot.block, [&](std::uint32_t satellite) {
            if (Slot* kept = slots_.find(satellite)) kept->isKept = isKept;
        });
    }
}

bool Overlay::anyOpen() const noexcept {
    return std::any_of(ring_.begin(), ring_.end(), [this](std::uint32_t offset) {
        const Slot& slot = *slots_.find(offset);
        return slot.presence == Presence::present && isOpen(slot.block);
    });
}

void Overlay::forgetRecords() noexcept {
    for (const std::uint32_t offset : ring_)
        if (Slot& slot = *slots_.find(offset); slot.presence == Presence::present) dropBytes(slot);
    ring_.clear();
    slots_.clear();
    evictAbove_ = options_.memoryLimit;
}

}  // namespace norvane::platform::core::storage::datastore
