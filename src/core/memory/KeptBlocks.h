// Small blocks that were given back, kept for the next ones of their size.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>

namespace norvane::platform::core::memory {

// The blocks that a thread keeps, by size. Each one is a block of the allocator of its own, so that it does
// not matter which thread gives it back.
class KeptBlocks {
  public:
    static constexpr std::size_t kUnit = 16;
    static constexpr std::size_t kLargest = 512;
    static constexpr std::uint32_t kMost = 32;  // of one size

    static constexpr std::size_t classOf(std::size_t size) { return size == 0 ? 0 : (size - 1) / kUnit; }
    static constexpr std::size_t sizeOf(std::size_t sizeClass) { return (sizeClass + 1) * kUnit; }

    KeptBlocks() = default;
    KeptBlocks(const KeptBlocks&) = delete;
    KeptBlocks& operator=(const KeptBlocks&) = delete;
    ~KeptBlocks() {
        for (std::size_t i = 0; i < kClasses; ++i)
            while (void* block = take(i)) ::operator delete(block, sizeOf(i));
    }

    void* take(std::size_t sizeClass) noexcept {
        Shelf& shelf = shelves_[sizeClass];
        if (!shelf.first) return nullptr;
        --shelf.count;
        void* block = shelf.first;
        shelf.first = shelf.first->next;
        return block;
    }

    bool put(void* block, std::size_t sizeClass) noexcept {
        Shelf& shelf = shelves_[sizeClass];
        if (shelf.count == kMost) return false;
        ++shelf.count;
        shelf.first = new (block) Block{shelf.first};
        return true;
    }

  private:
    static constexpr std::size_t kClasses = kLargest / kUnit;

    struct Block {
        Block* next;
    };
    struct Shelf {
        Block* first = nullptr;
        std::uint32_t count = 0;
    };

    std::array<Shelf, kClasses> shelves_;
};

}  // namespace norvane::platform::core::memory
