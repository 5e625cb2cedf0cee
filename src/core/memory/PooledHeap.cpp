#include "norvane/platform/core/memory/PooledHeap.h"

#include <new>

#include "core/memory/KeptBlocks.h"
#include "core/memory/LargePages.h"

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

// Null before a thread's first block, and again once the thread has given back what it kept: blocks may come
// and go later still. Of a library, thread-local data is otherwise looked up by a call; only little of it may
// be of this kind.
[[gnu::tls_model("initial-exec")]] thread_local KeptBlocks* kept = nullptr;

// Makes a thread's shelves, and clears them away when the thread ends.
class Keeper {
  public:
    Keeper() { kept = &shelves_; }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;
    ~Keeper() { kept = nullptr; }

  private:
    KeptBlocks shelves_;
};

[[gnu::cold, gnu::noinline]] void beginKeeping() {
    thread_local const Keeper keeper;
    static_cast<void>(keeper);
}

constexpr std::align_val_t kLargeAlignment{kLargePage};

void* takeLarge(std::size_t size) {
    if (size < kLargePage) return ::operator new(size);
    void* block = ::operator new(size, kLargeAlignment);
    preferLargePages(block, size);
    return block;
}

void freeLarge(void* pointer, std::size_t size) {
    if (size < kLargePage)
        ::operator delete(pointer, size);
    else
        ::operator delete(pointer, size, kLargeAlignment);
}

}  // namespace

void* PooledHeap::malloc(std::size_t size) {
    if (!kKeepsBlocks || size > KeptBlocks::kLargest) return takeLarge(size);
    const std::size_t sizeClass = KeptBlocks::classOf(size);
    if (kept)
        if (void* block = kept->take(sizeClass)) return block;
    return ::operator new(KeptBlocks::sizeOf(sizeClass));
}

void PooledHeap::free(void* pointer, std::size_t size) {
    if (!kKeepsBlocks || size > KeptBlocks::kLargest || !pointer) return freeLarge(pointer, size);
    const std::size_t sizeClass = KeptBlocks::classOf(size);
    if (!kept) beginKeeping();
    if (kept && kept->put(pointer, sizeClass)) return;
    ::operator delete(pointer, KeptBlocks::sizeOf(sizeClass));
}

}  // namespace norvane::platform::core::memory
