#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "model/ChildIndex.h"
#include "records/NameMap.h"

namespace norvane::platform::test {
namespace {

using data::kEmptyKey;
using data::Metadata::ChildIndex;

std::u16string numbered(unsigned number) {
    std::u16string name = u"MaterialProperty_";
    for (; number != 0; number /= 10) name.push_back(static_cast<char16_t>(u'0' + number % 10));
    return name;
}

std::uint32_t found(const ChildIndex& index, const std::u16string& name) {
    const std::uint32_t* offset = index.find(name);
    return offset ? *offset : 0xFFFFFFFFu;
}

TEST(ChildIndexTest, EmptyIndexFindsNothing) {
    const ChildIndex index;

    EXPECT_EQ(index.find(u""), nullptr);
    EXPECT_EQ(index.size(), 0u);
}

TEST(ChildIndexTest, FirstOfEqualNamesStays) {
    ChildIndex index;

    EXPECT_TRUE(index.insert(u"a", 1));
    EXPECT_FALSE(index.insert(u"a", 2));

    EXPECT_EQ(found(index, u"a"), 1u);
    EXPECT_EQ(index.size(), 1u);
}

TEST(ChildIndexTest, ReservedNamesAreCountedAndNeverFound) {
    ChildIndex index;

    EXPECT_TRUE(index.insert(kEmptyKey, 1));
    EXPECT_TRUE(index.insert(kEmptyKey, 2));

    EXPECT_EQ(index.find(kEmptyKey), nullptr);
    EXPECT_FALSE(index.erase(kEmptyKey));
    EXPECT_EQ(index.size(), 2u);
}

TEST(ChildIndexTest, RecordsDecideWhereTheyAreAsked) {
    ChildIndex index;
    for (unsigned i = 0; i < 100; ++i) index.insert(numbered(i), i);
    std::uint32_t asked = 0;

    const std::uint32_t* offset = index.findByRecord(numbered(7), [&](std::uint32_t child) {
        asked = child;
        return true;
    });

    EXPECT_EQ(*offset, 7u);
    EXPECT_EQ(asked, 7u);
    EXPECT_EQ(index.findByRecord(numbered(7), [](std::uint32_t) { return false; }), nullptr);
}

TEST(ChildIndexTest, NameCanBeTheBeginningOfAnother) {
    ChildIndex index;
    index.insert(u"ab", 1);

    EXPECT_EQ(index.find(u"a"), nullptr);
    EXPECT_EQ(index.find(u"abc"), nullptr);
    EXPECT_TRUE(index.insert(u"a", 2));
    EXPECT_TRUE(index.insert(u"", 3));

    EXPECT_EQ(found(index, u"ab"), 1u);
    EXPECT_EQ(found(index, u"a"), 2u);
    EXPECT_EQ(found(index, u""), 3u);
}

TEST(ChildIndexTest, OffsetAndHashLeadToTheEntry) {
    ChildIndex index;
    for (unsigned i = 0; i < 100; ++i) index.insert(numbered(i), i);

    EXPECT_FALSE(index.eraseOffset(8, ChildIndex::hashOf(numbered(7))));
    EXPECT_TRUE(index.eraseOffset(7, ChildIndex::hashOf(numbered(7))));

    EXPECT_EQ(index.find(numbered(7)), nullptr);
    EXPECT_EQ(index.size(), 99u);
}

TEST(ChildIndexTest, AnswersAsAMapDoesOverRandomPrograms) {
    std::mt19937 random(5);
    for (const unsigned names : {5u, 12u, 300u}) {
        ChildIndex index;
        std::map<std::u16string, std::uint32_t> plain;
        for (std::uint32_t step = 0; step < 20000; ++step) {
            const std::u16string name = numbered(static_cast<unsigned>(random() % names));
            if (random() % 2 == 0)
                ASSERT_EQ(index.insert(name, step), plain.emplace(name, step).second);
            else
                ASSERT_EQ(index.erase(name), plain.erase(name) != 0);
            const std::u16string asked = numbered(static_cast<unsigned>(random() % names));
            ASSERT_EQ(found(index, asked), plain.count(asked) == 0 ? 0xFFFFFFFFu : plain[asked]);
            ASSERT_EQ(index.size(), plain.size());
        }
    }
}

}  // namespace
}  // namespace norvane::platform::test
