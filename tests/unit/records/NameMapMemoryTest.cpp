// In a program of its own, since it takes the place of the global allocator.
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "records/NameMap.h"

namespace {

constexpr long kForEver = std::numeric_limits<long>::max();
long allocationsLeft = kForEver;

void* allocate(std::size_t size) {
    if (allocationsLeft == 0) throw std::bad_alloc();
    if (allocationsLeft != kForEver) --allocationsLeft;
    void* block = std::malloc(size == 0 ? 1 : size);
    if (!block) throw std::bad_alloc();
    return block;
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace norvane::platform::data {
namespace {

// Without memory from here on, and with it again at the end of the scope.
struct NoMemory {
    NoMemory() { allocationsLeft = 0; }
    ~NoMemory() { allocationsLeft = kForEver; }
};

TEST(NameMapMemoryTest, FirstNameThrowsAndCanBeInsertedLater) {
    NameMap<int> map;
    {
        const NoMemory none;
        EXPECT_THROW(map.insert(u"a", 1), std::bad_alloc);
    }

    EXPECT_EQ(map.size(), 0u);
    EXPECT_TRUE(map.insert(u"a", 1));
    EXPECT_EQ(*map.find(u"a"), 1);
}

TEST(NameMapMemoryTest, MapThatCannotGrowThrowsAndKeepsWhatItHas) {
    std::vector<std::u16string> names;
    for (char16_t i = 0; i < 1000; ++i) names.push_back({u'a', static_cast<char16_t>(u'a' + i)});
    NameMap<std::size_t> map;
    std::size_t held = 0;
    bool hasThrown = false;
    map.insert(names[held++], 0);
    {
        const NoMemory none;
        try {
            for (; held < names.size(); ++held) map.insert(names[held], held);
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
    }

    ASSERT_TRUE(hasThrown);
    EXPECT_EQ(map.size(), held);
    for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(map.find(names[i]) != nullptr, i < held) << i;
}

}  // namespace
}  // namespace norvane::platform::data
