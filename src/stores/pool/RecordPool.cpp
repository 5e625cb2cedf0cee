#include "stores/pool/RecordPool.h"

#include <algorithm>
#include <new>
#include <utility>

#include "core/memory/LargePages.h"
#include "stores/pool/Fence.h"

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr std::size_t kFirstChunk = std::size_t{4} << 10;
constexpr std::size_t kLargestChunk = std::size_t{4} << 20;

// Small records that have the size of a cache line lie in one.
std::align_val_t alignmentOf(std::size_t chunkSize) {
    constexpr std::size_t kCacheLine = 64;
    return std::align_val_t{chunkSize < memory::kLargePage ? kCacheLine : memory::kLargePage};
}

}  // namespace

void RecordPool::Free::operator()(std::byte* chunk) const { ::operator delete[](chunk, alignmentOf(size)); }

RecordPool::~RecordPool() {
    // The allocator gets its memory back as it gave it out.
    for (const Chunk& chunk : chunks_) openMemory(chunk.get(), chunk.get_deleter().size);
}

Block RecordPool::take(std::uint32_t size, std::uint32_t capacity) {
    const std::uint64_t wanted = std::max({size, capacity, std::uint32_t{1}});
    const std::uint64_t rounded = (wanted + kUnit - 1) / kUnit * kUnit;
    const auto given = static_cast<std::uint32_t>(std::min<std::uint64_t>(rounded, 0xFFFFFFFFu));
    auto* bytes = given <= kLargestSmall ? takeSmall(given) : static_cast<std::byte*>(::operator new(given));
    Block block{bytes, given, given};
    resize(block, size);
    return block;
}

Block RecordPool::copy(const void* bytes, std::uint32_t size) {
    const Block block = take(size);
    copyBytes(block.bytes, bytes, size);
    return block;
}

void RecordPool::assign(Block& block, const void* bytes, std::uint32_t size) {
    if (size <= block.capacity && size >= block.capacity / 4) {
        openTo(block, size);
        copyBytes(block.bytes, bytes, size);
        resize(block, size);
    } else {
        replace(block, copy(bytes, size));
    }
}

void RecordPool::extend(Block& block, const void* bytes, std::uint32_t size, std::uint32_t most) {
    const std::uint32_t before = block.size;
    const std::uint64_t after = std::uint64_t{before} + size;
    if (after <= block.capacity) {
        resize(block, static_cast<std::uint32_t>(after));
        copyBytes(block.bytes + before, bytes, size);
        return;
    }
    const auto roomy = std::min<std::uint64_t>(after + after / 2, most);
    const Block fresh = take(static_cast<std::uint32_t>(after), static_cast<std::uint32_t>(roomy));
    copyBytes(fresh.bytes, block.bytes, before);
    copyBytes(fresh.bytes + before, bytes, size);
    replace(block, fresh);
}

// Called when the new one has all its bytes, since they may come from the old.
void RecordPool::replace(Block& block, const Block& fresh) {
    release(block);
    block = fresh;
}

void RecordPool::release(Block& block) {
    if (block.capacity <= kLargestSmall) {
        keep(block.bytes, block.capacity);
    } else {
        openMemory(block.bytes, block.capacity);
        ::operator delete(block.bytes, block.capacity);
    }
    block = {};
}

void RecordPool::releaseAtEnd(Block& block) {
    if (block.capacity > kLargestSmall) release(block);
}

void RecordPool::openTo(const Block& block, std::uint32_t size) {
    if (size > block.size) openMemory(block.bytes, size);
}

void RecordPool::resize(Block& block, std::uint32_t size) {
    openMemory(block.bytes, size);
    closeMemory(block.bytes + size, block.capacity - size);
    block.size = size;
}

std::byte* RecordPool::takeSmall(std::uint32_t capacity) {
    FreeBlock*& list = free_[capacity / kUnit];
    if (!list) return cut(capacity);
    openMemory(list, capacity);
    FreeBlock* first = list;
    list = first->next;
    return reinterpret_cast<std::byte*>(first);
}

std::byte* RecordPool::cut(std::uint32_t capacity) {
    if (static_cast<std::size_t>(uncutEnd_ - uncut_) < capacity) addChunk();
    std::byte* bytes = uncut_;
    openMemory(bytes, capacity);
    uncut_ += capacity;
    return bytes;
}

// What is left of the chunk in use is too short for the block that is wanted now, but not for every other.
void RecordPool::addChunk() {
    const std::size_t size = std::clamp(chunkSize_ * 2, kFirstChunk, kLargestChunk);
    Chunk chunk(new (alignmentOf(size)) std::byte[size], Free{size});
    memory::preferLargePages(chunk.get(), size);
    chunks_.push_back(std::move(chunk));
    const auto rest = static_cast<std::uint32_t>(uncutEnd_ - uncut_);
    if (rest != 0) keep(uncut_, rest);
    chunkSize_ = size;
    uncut_ = chunks_.back().get();
    uncutEnd_ = uncut_ + size;
    closeMemory(uncut_, size);
}

void RecordPool::keep(std::byte* bytes, std::uint32_t capacity) {
    openMemory(bytes, capacity);
    FreeBlock*& list = free_[capacity / kUnit];
    list = new (bytes) FreeBlock{list};
    closeMemory(bytes, capacity);
}

}  // namespace norvane::platform::core::storage::datastore
