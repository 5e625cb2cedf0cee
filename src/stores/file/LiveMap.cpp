#include "stores/file/LiveMap.h"

namespace norvane::platform::core::storage::datastore {
namespace {

std::byte maskOf(std::uint32_t offset) { return std::byte{1} << (offset % 8); }

std::size_t placeOf(std::uint32_t offset) { return offset % kBlockSize / 8; }

}  // namespace

bool LiveMap::isLive(Connection& connection, std::uint32_t offset) {
    const LiveBits& bits = cached(connection, offset / kBlockSize);
    return (bits[placeOf(offset)] & maskOf(offset)) != std::byte{0};
}

LiveBits& LiveMap::cached(Connection& connection, std::uint32_t block) {
    if (last_ && lastBlock_ == block) return *last_;
    auto found = cache_.find(block);
    if (found == cache_.end()) {
        const LiveBits bits = connection.liveBits(block);
        if (cache_.size() >= kMostCached) clear();
        const bool isOnTheWay = block - lastMissed_ <= kAhead;
        lastMissed_ = block;
        if (isOnTheWay) readAhead(connection, block + 1);
        found = cache_.emplace(block, bits).first;
    }
    last_ = &found->second;
    lastBlock_ = block;
    return *last_;
}

// Whoever goes through a file asks for one after the other. What cannot be read is told when it is asked for.
void LiveMap::readAhead(Connection& connection, std::uint32_t first) try {
    lastMissed_ = first + kAhead - 1;
    connection.forEachSoundBlock(first, first + kAhead - 1, [&](std::uint32_t block, const LiveBits& bits) {
        cache_.emplace(block, bits);
    });
} catch (const StoreError&) {
    lastMissed_ = first;
}

bool LiveMap::set(Connection& connection, std::uint32_t offset, bool isLive, std::uint64_t blocks) {
    const std::uint32_t block = offset / kBlockSize;
    if (!lastStaged_ || lastStaged_->first != block) {
        const auto found = staged_.find(block);
        lastStaged_ = found != staged_.end() ? &*found : &stage(connection, block, blocks);
    }
    std::byte& bits = lastStaged_->second[placeOf(offset)];
    const bool wasLive = (bits & maskOf(offset)) != std::byte{0};
    bits = isLive ? bits | maskOf(offset) : bits & ~maskOf(offset);
    return wasLive;
}

std::pair<const std::uint32_t, LiveBits>& LiveMap::stage(Connection& connection, std::uint32_t block,
                                                         std::uint64_t blocks) {
    return *staged_.emplace(block, block < blocks ? cached(connection, block) : LiveBits{}).first;
}

void LiveMap::drop() noexcept {
    staged_.clear();
    lastStaged_ = nullptr;
}

void LiveMap::write(Connection& connection, std::uint64_t blocksBefore, std::uint64_t blocksAfter) {
    for (std::uint64_t block = blocksBefore; block < blocksAfter; ++block)
        staged_.emplace(static_cast<std::uint32_t>(block), LiveBits{});
    for (const auto& [block, bits] : staged_) connection.putLiveBits(block, bits);
}

void LiveMap::keep() {
    for (const auto& [block, bits] : staged_)
        if (const auto found = cache_.find(block); found != cache_.end()) found->second = bits;
    drop();
}

void LiveMap::clear() noexcept {
    cache_.clear();
    last_ = nullptr;
}

}  // namespace norvane::platform::core::storage::datastore
