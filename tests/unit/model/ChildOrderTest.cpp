// The order of deletion against a real hash map of the kind that it stands for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "model/ChildOrder.h"
#include "support/CpuTime.h"
#include "support/reference/ModelReference.h"

namespace norvane::platform::test {
namespace {

using data::Metadata::deletionOrder;
using testing::ElementsAre;
using testing::ElementsAreArray;

std::vector<std::uint32_t> orderOf(const std::vector<std::u16string>& names) {
    return deletionOrder({names.begin(), names.end()});
}

// What the map gives, and behind it, in their own order, the names that it had already.
std::vector<std::uint32_t> expectedOrder(const std::vector<std::u16string>& names) {
    std::vector<std::uint32_t> order;
    for (const std::size_t index : reference::tableOrder(names))
        order.push_back(static_cast<std::uint32_t>(index));
    std::set<std::uint32_t> known(order.begin(), order.end());
    for (std::uint32_t i = 0; i < names.size(); ++i)
        if (known.count(i) == 0) order.push_back(i);
    return order;
}

std::u16string numbered(std::u16string name, std::uint32_t number) {
    for (int digit = 0; digit < 6; ++digit, number /= 10)
        name.push_back(static_cast<char16_t>(u'0' + number % 10));
    return name;
}

// Names of one of several shapes: short and random, with a common beginning, with a common end, with units
// outside of ASCII.
std::u16string randomName(std::mt19937& random, int shape) {
    std::u16string name;
    if (shape == 1) name = u"MaterialProperty_";
    if (shape == 3) name = std::u16string(random() % 40, u'q');
    const std::size_t length = random() % (shape == 0 ? 4 : 12);
    for (std::size_t i = 0; i < length; ++i)
        name.push_back(static_cast<char16_t>(shape == 4 ? 1 + random() % 0xFFFE : u'a' + random() % 26));
    if (shape == 2) name += u"_of_the_material";
    return name;
}

TEST(ChildOrderTest, NothingHasNoOrder) { EXPECT_THAT(orderOf({}), ElementsAre()); }

TEST(ChildOrderTest, SmallListsAreOrderedAsTheMapOrdersThem) {
    for (std::uint32_t size = 0; size < 140; ++size) {
        std::vector<std::u16string> names;
        for (std::uint32_t i = 0; i < size; ++i) names.push_back(numbered(u"", i));

        ASSERT_THAT(orderOf(names), ElementsAreArray(expectedOrder(names))) << size;
    }
}

TEST(ChildOrderTest, RandomListsAreOrderedAsTheMapOrdersThem) {
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t size = round % 50 == 0 ? random() % 2000 : random() % 80;
        const int shape = static_cast<int>(random() % 6);
        std::vector<std::u16string> names;
        for (std::size_t i = 0; i < size; ++i)
            names.push_back(randomName(random, shape == 5 ? static_cast<int>(random() % 5) : shape));

        ASSERT_THAT(orderOf(names), ElementsAreArray(expectedOrder(names))) << "round " << round;
    }
}

TEST(ChildOrderTest, NameThatIsThereAlreadyStillMakesTheMapGrow) {
    for (std::uint32_t size = 1; size < 40; ++size) {
        std::vector<std::u16string> names;
        for (std::uint32_t i = 0; i < size; ++i) names.push_back(numbered(u"n", i));
        names.push_back(names[size / 2]);

        ASSERT_THAT(orderOf(names), ElementsAreArray(expectedOrder(names))) << size;
    }
}

TEST(ChildOrderTest, ReservedAndRepeatedNamesComeLast) {
    EXPECT_THAT(
        orderOf({u"$$$$$_____empty_key", u"a", u"$$$$$_____deleted_key", u"a", u"$$$$$_____empty_key"}),
        ElementsAre(1, 0, 2, 3, 4));
}

TEST(ChildOrderTest, NamesWithoutDifferenceInTheirFirstHalfTakeLinearTime) {
    const auto secondsFor = [](std::uint32_t count) {
        std::vector<std::u16string> names;
        for (std::uint32_t i = 0; i < count; ++i) names.push_back(numbered(u"MaterialProperty_", i));
        return shortestRun([&names] { EXPECT_EQ(orderOf(names).size(), names.size()); });
    };

    const double few = secondsFor(20000);

    EXPECT_LT(secondsFor(100000), 12 * few + 0.05);
}

}  // namespace
}  // namespace norvane::platform::test
