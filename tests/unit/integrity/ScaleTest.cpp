// Deep, wide and crooked stores: time and memory in proportion to them, and no recursion.
#include "integrity/Mend.h"
#include "support/SmallStack.h"
#include "unit/integrity/Store.h"

namespace norvane::platform::test {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::uint32_t kMany = 50'000;

// A chain of groups: record 2i + 1 is the list of entity 2i, which holds entity 2i + 2.
void fillDeep(IDataStore& store, std::uint32_t depth, std::uint32_t wrong = 0) {
    store.setVersion(1);
    appendTo(store, rootRecord(1));
    for (std::uint32_t i = 1; i <= depth; ++i) {
        appendTo(store, listOf({2 * i}));
        appendTo(store, groupRecord(2 * i - 2 + wrong, i == depth ? none() : 2 * i + 1, u"n"));
    }
}

TEST(CheckAtScale, GoesAsDeepAsATreeIs) {
    MemoryDataStore store;
    fillDeep(store, kMany);
    onSmallStack([&] { EXPECT_THAT(checked(store), IsEmpty()); });
}

TEST(CheckAtScale, NamesSomethingAtEachLevel) {
    MemoryDataStore store;
    fillDeep(store, kMany, 1);

    const std::vector<Finding> findings = data::integrity::check(store).findings;

    ASSERT_THAT(findings, SizeIs(kMany));
    EXPECT_EQ(findings[2].path, "n.n.n");
    EXPECT_LE(findings.back().path.size(), 1024u);
    EXPECT_THAT(findings.back().path, HasSubstr(" ... "));
}

TEST(CheckAtScale, CutsADeepRing) {
    MemoryDataStore store;
    fillDeep(store, kMany);
    const std::uint32_t last = 2 * kMany, list = appendTo(store, listOf({2}));
    putAt(store, last, groupRecord(last - 2, list, u"n"));

    EXPECT_THAT(wordsOf(data::integrity::mend(store, {})), SizeIs(1));

    EXPECT_THAT(checked(store), IsEmpty());
}

TEST(CheckAtScale, TakesTimeInProportionToAWideList) {
    MemoryDataStore store;
    store.setVersion(1);
    appendTo(store, rootRecord(1));
    std::vector<std::uint32_t> children;
    appendTo(store, listOf({}));
    for (std::uint32_t i = 0; i < kMany; ++i)
        children.push_back(appendTo(store, primitiveRecord(0, 12, u"same")));
    putAt(store, 1, listOf(children));

    const std::vector<std::string> words = checked(store);

    ASSERT_THAT(words, SizeIs(kMany - 1));
    EXPECT_THAT(words, Each(HasSubstr("warning name-twice")));
}

// Each of many sets has the same long list, and each child is in it.
TEST(CheckAtScale, ReadsAListOnceHoweverManyHaveIt) {
    MemoryDataStore store;
    store.setVersion(1);
    appendTo(store, rootRecord(1));
    appendTo(store, listOf({}));
    std::vector<std::uint32_t> children;
    for (std::uint32_t i = 0; i < kMany; ++i) {
        const std::u16string name{static_cast<char16_t>(0x100 + i / 256),
                                  static_cast<char16_t>(0x100 + i % 256)};
        children.push_back(appendTo(store, groupRecord(0, 1, name)));
    }
    putAt(store, 1, listOf(children));

    EXPECT_THAT(errorsOf(store), SizeIs(kMany));
    data::integrity::mend(store, {});

    EXPECT_THAT(checked(store), IsEmpty());
}

TEST(CheckAtScale, TakesLittleMemoryForOffsetsThatAreNotInUse) {
    MemoryDataStore store;
    store.setVersion(1);
    appendTo(store, rootRecord(none()));
    for (std::uint32_t i = 0; i < 500'000; ++i) store.remove(appendTo(store, u8(3)));
    EXPECT_THAT(checked(store), IsEmpty());
}

}  // namespace
}  // namespace norvane::platform::test
