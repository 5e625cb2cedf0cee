// The index from names to values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "norvane/platform/core/string/KeyHash.h"
#include "records/NameMap.h"

namespace norvane::platform::test {
namespace {

using data::NameMap;
using testing::UnorderedElementsAre;

template <class Value>
std::vector<Value> valuesOf(const NameMap<Value>& map) {
    std::vector<Value> values;
    map.forEach([&values](Value value) { values.push_back(value); });
    return values;
}

TEST(NameMapTest, NewMapIsEmpty) {
    const NameMap<int> map;

    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(map.find(u"a"), nullptr);
    EXPECT_THAT(valuesOf(map), UnorderedElementsAre());
}

TEST(NameMapTest, NamesAreFoundByTheirText) {
    NameMap<int> map;
    const std::u16string first = u"ab", second = u"";
    map.insert(first, 1);
    map.insert(second, 2);

    EXPECT_EQ(*map.find(std::u16string(u"ab")), 1);
    EXPECT_EQ(*map.find(u""), 2);
    EXPECT_EQ(map.find(u"a"), nullptr);
    EXPECT_EQ(map.find(u"abc"), nullptr);
    EXPECT_EQ(map.size(), 2u);
}

TEST(NameMapTest, FirstOfEqualNamesStays) {
    NameMap<int> map;

    EXPECT_TRUE(map.insert(u"a", 1));
    EXPECT_FALSE(map.insert(u"a", 2));

    EXPECT_EQ(*map.find(u"a"), 1);
    EXPECT_EQ(map.size(), 1u);
}

TEST(NameMapTest, NamesThatDifferInTheirSecondHalfAreTwo) {
    NameMap<int> map;
    const std::u16string a = u"abcd", b = u"abXY";
    ASSERT_EQ(core::string::wideKeyHash(a.data(), 4), core::string::wideKeyHash(b.data(), 4));

    map.insert(a, 1);
    map.insert(b, 2);

    EXPECT_EQ(*map.find(u"abcd"), 1);
    EXPECT_EQ(*map.find(u"abXY"), 2);
}

TEST(NameMapTest, ErasedNameCanBeInsertedAgain) {
    NameMap<int> map;
    map.insert(u"a", 1);

    map.erase(u"a");
    map.erase(u"b");
    EXPECT_EQ(map.find(u"a"), nullptr);
    EXPECT_TRUE(map.insert(u"a", 2));

    EXPECT_EQ(*map.find(u"a"), 2);
    EXPECT_EQ(map.size(), 1u);
}

TEST(NameMapTest, ReservedNamesAreHeldAndCountedButNeverFound) {
    NameMap<int> map;
    map.insert(u"a", 1);

    EXPECT_TRUE(map.insert(u"$$$$$_____empty_key", 2));
    EXPECT_TRUE(map.insert(u"$$$$$_____deleted_key", 3));
    EXPECT_TRUE(map.insert(u"$$$$$_____empty_key", 4));

    EXPECT_EQ(map.find(u"$$$$$_____empty_key"), nullptr);
    EXPECT_EQ(map.find(u"$$$$$_____deleted_key"), nullptr);
    EXPECT_EQ(map.size(), 4u);
    EXPECT_THAT(valuesOf(map), UnorderedElementsAre(1, 2, 3, 4));
}

TEST(NameMapTest, ReservedNamesAreNotErasedByName) {
    NameMap<int> map;
    map.insert(u"$$$$$_____empty_key", 2);

    map.erase(u"$$$$$_____empty_key");

    EXPECT_EQ(map.size(), 1u);
}

TEST(NameMapTest, ClearedMapTakesNamesAgain) {
    NameMap<int> map;
    map.insert(u"a", 1);
    map.insert(u"$$$$$_____deleted_key", 2);

    map.clear();
    EXPECT_TRUE(map.isEmpty());
    map.insert(u"a", 3);

    EXPECT_EQ(*map.find(u"a"), 3);
}

TEST(NameMapTest, RandomChangesAgreeWithAPlainMap) {
    std::mt19937 random(7);
    std::vector<std::u16string> names;
    for (int i = 0; i < 200; ++i) names.push_back(u"name" + std::u16string(1, static_cast<char16_t>(i + 1)));
    NameMap<int> map;
    std::map<std::u16string_view, int> model;
    for (int step = 0; step < 20000; ++step) {
        const std::u16string& name = names[random() % names.size()];
        if (random() % 3 == 0) {
            map.erase(name);
            model.erase(name);
        } else {
            EXPECT_EQ(map.insert(name, step), model.emplace(name, step).second);
        }
        ASSERT_EQ(map.size(), model.size());
        const auto known = model.find(name);
        const int* found = map.find(name);
        ASSERT_EQ(found != nullptr, known != model.end());
        if (found) {
            ASSERT_EQ(*found, known->second);
        }
    }
}

// Five times as many names with one long beginning may take about five times as long, not 25 times.
TEST(NameMapTest, NamesWithALongCommonBeginningTakeLinearTime) {
    const auto secondsFor = [](int count) {
        std::vector<std::u16string> names;
        for (int i = 0; i < count; ++i) {
            std::u16string name(60, u'm');
            for (int digit = 0, rest = i; digit < 6; ++digit, rest /= 10)
                name.push_back(static_cast<char16_t>(u'0' + rest % 10));
            names.push_back(name);
        }
        const auto start = std::chrono::steady_clock::now();
        NameMap<int> map;
        for (const std::u16string& name : names) map.insert(name, 1);
        for (const std::u16string& name : names) EXPECT_NE(map.find(name), nullptr);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };

    const double few = std::min(secondsFor(20000), secondsFor(20000));

    EXPECT_LT(secondsFor(100000), 15 * few + 0.2);
}

}  // namespace
}  // namespace norvane::platform::test
