// Taking away what nothing leads to.
#include "support/ThrowingStore.h"
#include "unit/integrity/Store.h"

namespace norvane::platform::test {
namespace {

using data::integrity::Removal;
using data::integrity::removeUnreachable;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Unreachable : public SmallStore {
  protected:
    ~Unreachable() noexcept override = default;

    std::vector<std::string> records() {
        std::vector<std::string> all;
        for (std::uint32_t offset = 0; offset < store.size(); ++offset)
            if (store.recordSize(offset) != 0) all.push_back(recordAt(store, offset).bytes());
        return all;
    }
};

TEST_F(Unreachable, IsNothingInAStoreOfWhichAllIsLedTo) {
    const std::uint64_t stamp = store.changeStamp();
    const Removal removal = removeUnreachable(store);
    EXPECT_EQ(removal.removedCount, 0u);
    EXPECT_EQ(removal.report.recordCount, 8u);
    EXPECT_EQ(store.changeStamp(), stamp);
}

TEST_F(Unreachable, IsNotWhatCouldNotBeRead) {
    const std::vector<std::string> before = records();
    for (std::uint64_t n = 1;; ++n) {
        ThrowingStore failing(store);
        failing.throwAt(n);
        try {
            removeUnreachable(failing);
        } catch (const StoreFailure&) {
        }
        const bool hasPassed = !failing.thrown();
        failing.calm();
        ASSERT_EQ(records(), before) << "after a failure at call " << n;
        if (hasPassed) return;
    }
}

TEST_F(Unreachable, GoesWithAllThatBelongsToIt) {
    const std::vector<std::string> before = records();
    const std::uint32_t group = add(groupRecord(kRoot, none(), u"g"));
    const std::uint32_t below = add(tableRecord(group, none(), none(), u"t"));
    set(group, 14, u32(add(listOf({below}))));
    set(group, 9, u32(add(localeRecord(RecordBytes().text(u"de").text(u"Rest")))));
    set(below, 22, u32(add(listOf({0x2001, 17}))));

    const Removal removal = removeUnreachable(store);

    EXPECT_EQ(removal.removedCount, 5u);
    EXPECT_THAT(wordsOf(removal.report.findings), ElementsAre("note unreachable 8"));
    EXPECT_EQ(records(), before);
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(Unreachable, IsAlsoWhatBelongsToNobody) {
    const std::vector<std::string> before = records();
    add(listOf({kP}));
    add(localeRecord(RecordBytes().text(u"de").text(u"Rest")));
    add(rootRecord(none()));
    EXPECT_EQ(removeUnreachable(store).removedCount, 3u);
    EXPECT_EQ(records(), before);
}

TEST_F(Unreachable, IsAlsoARingThatNothingLeadsTo) {
    const std::uint32_t first = add(groupRecord(none(), none(), u"a"));
    const std::uint32_t second = add(groupRecord(first, add(listOf({first})), u"b"));
    set(first, 1, u32(second));
    set(first, 14, u32(add(listOf({second}))));
    EXPECT_EQ(removeUnreachable(store).removedCount, 4u);
    EXPECT_THAT(checked(store), IsEmpty());
}

TEST_F(Unreachable, StaysWhereWhatLedToItMayBeDamaged) {
    store.remove(kOfG);
    const std::vector<std::string> before = records();
    const Removal removal = removeUnreachable(store);
    EXPECT_EQ(removal.removedCount, 0u);
    EXPECT_FALSE(removal.report.isSound());
    EXPECT_THAT(wordsOf(removal.report.findings), Contains("note unreachable 4"));
    EXPECT_EQ(records(), before);
}

TEST_F(Unreachable, StaysWhereSomethingIsOpen) {
    add(groupRecord(kRoot, none(), u"a"));
    set(kP, 5, u32(1));
    EXPECT_EQ(removeUnreachable(store).removedCount, 0u);
}

TEST_F(Unreachable, IsNothingInAnEmptyStore) {
    MemoryDataStore empty;
    EXPECT_EQ(removeUnreachable(empty).removedCount, 0u);
}

}  // namespace
}  // namespace norvane::platform::test
