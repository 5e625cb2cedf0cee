// Where the bytes of records lie in memory.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace norvane::platform::core::storage::datastore {

// The bytes of one record. Null bytes mean that there is no record; one of size 0 has bytes all the same.
struct Block {
    std::byte* bytes = nullptr;
    std::uint32_t size = 0;
    std::uint32_t capacity = 0;
};

// Sixteen bytes, on their way.
struct Sixteen {
    explicit Sixteen(const std::byte* from) noexcept { std::memcpy(bytes, from, sizeof bytes); }
    void put(std::byte* to) const noexcept { std::memcpy(to, bytes, sizeof bytes); }
    std::uint64_t bytes[2];
};

// Whether `copyShort` is for so many bytes.
inline bool isShort(std::size_t size) noexcept { return size - 16 <= 48; }

// Most records are short, and a call for them would take longer than the copying: all bytes are taken before
// the first is put, some of them twice.
inline void copyShort(std::byte* to, const std::byte* from, std::size_t size) noexcept {
    const Sixteen first(from);
    const Sixteen last(from + size - 16);
    if (size > 32) {
        const Sixteen second(from + 16);
        const Sixteen third(from + size - 32);
        second.put(to + 16);
        third.put(to + size - 32);
    }
    first.put(to);
    last.put(to + size - 16);
}

// The bytes may overlap, and where there are none either may be null.
inline void copyBytes(std::byte* to, const void* from, std::size_t size) noexcept {
    const auto* bytes = static_cast<const std::byte*>(from);
    if (isShort(size)) return copyShort(to, bytes, size);
    if (size != 0 && to != bytes) std::memmove(to, from, size);
}

// Hands out blocks. Small ones are cut from chunks without a header of their own, and come from and go to
// lists by capacity; large ones are the allocator's. Chunks are given back all together, when the pool goes.
//
// Under AddressSanitizer, what is not the bytes of a record may not be touched: neither the rest of a block
// behind `size` nor a block that was released.
class RecordPool {
  public:
    RecordPool() = default;
    RecordPool(const RecordPool&) = delete;
    RecordPool& operator=(const RecordPool&) = delete;
    ~RecordPool();

    // A block of that size, its bytes not set, with room for `capacity` bytes if that is more. Throws
    // `std::bad_alloc`.
    Block take(std::uint32_t size, std::uint32_t capacity = 0);
    // A block with a copy of the bytes. Throws `std::bad_alloc`, as do those that follow; the block is as
    // before then. Bytes may lie in the block that they are for.
    Block copy(const void* bytes, std::uint32_t size);
    // Puts other bytes in the place of all; a block that becomes much too large for them goes back.
    void assign(Block& block, const void* bytes, std::uint32_t size);
    // Adds bytes behind those that are there. Filling a block so costs what is added: it gets room for more,
    // but not for more than `most` bytes.
    void extend(Block& block, const void* bytes, std::uint32_t size, std::uint32_t most);
    // Gives the block back and leaves it as of no record.
    void release(Block& block);
    // The same for a pool whose blocks are all given up now: those that go with the chunks are not touched.
    void releaseAtEnd(Block& block);
    // Lets bytes up to `size` be written before the size is changed.
    static void openTo(const Block& block, std::uint32_t size);
    // Changes the size within the capacity. Bytes that come in so are not set.
    static void resize(Block& block, std::uint32_t size);

  private:
    struct FreeBlock {
        FreeBlock* next;
    };
    struct Free {
        void operator()(std::byte* chunk) const;
        std::size_t size;
    };
    using Chunk = std::unique_ptr<std::byte[], Free>;

    void replace(Block& block, const Block& fresh);
    std::byte* takeSmall(std::uint32_t capacity);
    std::byte* cut(std::uint32_t capacity);
    void addChunk();
    void keep(std::byte* bytes, std::uint32_t capacity);

    static constexpr std::uint32_t kUnit = 8;
    static constexpr std::uint32_t kLargestSmall = 1024;

    std::array<FreeBlock*, kLargestSmall / kUnit + 1> free_{};
    std::vector<Chunk> chunks_;
    std::size_t chunkSize_ = 0;
    std::byte* uncut_ = nullptr;
    std::byte* uncutEnd_ = nullptr;
};

}  // namespace norvane::platform::core::storage::datastore
