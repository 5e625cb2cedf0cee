// In a program of its own, since it takes the place of the global allocator.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "norvane/platform/core/memory/SharedPtr.h"

namespace {
bool memoryIsOut = false;

void* allocate(std::size_t size) {
    void* block = memoryIsOut ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (!block) throw std::bad_alloc();
    return block;
}
}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace norvane::platform::core::memory {
namespace {

struct Pointee {
    explicit Pointee(bool& deleted) : deleted_(deleted) {}
    Pointee(const Pointee&) = delete;
    Pointee& operator=(const Pointee&) = delete;
    virtual ~Pointee() { deleted_ = true; }

  private:
    bool& deleted_;
};

bool throwsBadAlloc(Pointee* object) {
    try {
        memoryIsOut = true;
        const SharedPtr<Pointee> handle(object);
        memoryIsOut = false;
        return false;
    } catch (const std::bad_alloc&) {
        memoryIsOut = false;
        return true;
    }
}

TEST(SharedPtrMemoryTest, PointeeIsDeletedWhenThereIsNoMemoryForItsCounter) {
    bool deleted = false;
    auto* object = new Pointee(deleted);

    const bool thrown = throwsBadAlloc(object);

    EXPECT_TRUE(thrown);
    EXPECT_TRUE(deleted);
}

TEST(SharedPtrMemoryTest, NullPointerNeedsNoMemory) { EXPECT_FALSE(throwsBadAlloc(nullptr)); }

}  // namespace
}  // namespace norvane::platform::core::memory
