#include "norvane/platform/core/memory/PooledHeap.h"

#include <array>
#include <cstdint>
#include <new>

namespace norvane::platform::core::memory {
namespace {

// The sanitizers are to see each block come and go.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kKeepsBlocks = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kKeepsBlocks = false;
#else
constexpr bool kKeepsBlocks = true;
#endif
#else
constexpr bool kKeepsBlocks = true;
#endif

constexpr std::size_t kUnit = 16;
constexpr std::size_t kLargestKept = 512;
constexpr std::uint32_t kMostKept = 32;  // of one size

constexpr std::size_t classOf(std::size_t size) { return size == 0 ? 0 : (size - 1) / kUnit; }
constexpr std::size_t sizeOf(std::size_t sizeClass) { return (sizeClass + 1) * kUnit; }

// The blocks that a thread keeps, by size. Each one is a block of the allocator of its own, so that it does
// not matter which thread gives it back.
class Kept {
  public:
    Kept() = default;
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
    ~Kept() {
        for (std::size_t i = 0; i < shelves_.size(); ++i)
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
        if (shelf.count == kMostKept) return false;
        ++shelf.count;
        shelf.first = new (block) Block{shelf.first};
        return true;
    }

  private:
    struct Block {
        Block* next;
    };
    struct Shelf {
        Block* first = nullptr;
        std::uint32_t count = 0;
    };

    std::array<Shelf, classOf(kLargestKept) + 1> shelves_;
};

// Null before a thread's first block, and again once the thread has given back what it kept: blocks may come
// and go later still. Of a library, thread-local data is otherwise looked up by a call; only little of it may
// be of this kind.
[[gnu::tls_model("initial-exec")]] thread_local Kept* kept = nullptr;

// Makes a thread's shelves, and clears them away when the thread ends.
class Keeper {
  public:
    Keeper() { kept = &shelves_; }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;
    ~Keeper() { kept = nullptr; }

  private:
    Kept shelves_;
};

[[gnu::cold, gnu::noinline]] void beginKeeping() {
    thread_local const Keeper keeper;
    static_cast<void>(keeper);
}

}  // namespace

void* PooledHeap::malloc(std::size_t size) {
    if (!kKeepsBlocks || size > kLargestKept) return ::operator new(size);
    const std::size_t sizeClass = classOf(size);
    if (kept)
        if (void* block = kept->take(sizeClass)) return block;
    return ::operator new(sizeOf(sizeClass));
}

void PooledHeap::free(void* pointer, std::size_t size) {
    if (!kKeepsBlocks || size > kLargestKept || !pointer) return ::operator delete(pointer, size);
    const std::size_t sizeClass = classOf(size);
    if (!kept) beginKeeping();
    if (kept && kept->put(pointer, sizeClass)) return;
    ::operator delete(pointer, sizeOf(sizeClass));
}

}  // namespace norvane::platform::core::memory
