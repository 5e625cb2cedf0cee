// Stores of every kind: without extensions, failing, with gaps; and that looking changes nothing.
#include "support/LoggingStore.h"
#include "support/ThrowingStore.h"
#include "unit/integrity/Store.h"

namespace norvane::platform::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using CheckStores = SmallStore;

// A store that cannot give one of its records.
class LosingStore : public ForwardingStore {
  public:
    LosingStore(IDataStore& store, std::uint32_t lost)
        : ForwardingStore(store, Extensions::off), lost_(lost) {}
    ~LosingStore() noexcept override = default;

    std::uint32_t recordSize(std::uint32_t offset) override {
        if (offset == lost_) throw std::runtime_error("bad sector");
        return ForwardingStore::recordSize(offset);
    }

  private:
    std::uint32_t lost_;
};

TEST_F(CheckStores, WorksWithoutViews) {
    set(kP, 1, u32(kT));
    ForwardingStore plain(store, Extensions::off);
    EXPECT_THAT(checked(plain), ElementsAre("error parent 4 g.p"));
}

TEST_F(CheckStores, ChangesNothingAndLetsTheGuardGo) {
    set(kP, 1, u32(kT));
    addTo(kTop, kG);
    LoggingStore logged;
    for (std::uint32_t offset = 0; offset < store.size(); ++offset)
        appendTo(logged.behind(), recordAt(store, offset));

    checked(logged);

    EXPECT_THAT(logged.changes(), IsEmpty());
    EXPECT_EQ(logged.guardsHeld(), 0);
    EXPECT_EQ(logged.calls().front().name, "lock");
    EXPECT_EQ(logged.calls().back().name, "unlock");
}

TEST_F(CheckStores, NamesARecordThatTheStoreCannotGive) {
    LosingStore losing(store, kP);

    const Report report = data::integrity::check(losing);

    EXPECT_THAT(wordsOf(report.findings), ElementsAre("error child-kind 2 g", "error unreadable 4"));
    EXPECT_THAT(report.findings[1].text, HasSubstr("bad sector"));
    EXPECT_EQ(report.recordCount, 8u);
}

TEST_F(CheckStores, GoesOnWithoutAListThatTheStoreCannotGive) {
    LosingStore losing(store, kTop);
    EXPECT_THAT(checked(losing), ElementsAre("error children 0", "error unreadable 1", "note unreachable 2"));
}

TEST_F(CheckStores, ComesThroughAFailureOfAnyCall) {
    set(kP, 1, u32(kT));
    ThrowingStore failing(store, Extensions::off);
    checked(failing);
    const std::uint64_t calls = failing.calls();

    for (std::uint64_t n = 1; n <= calls; ++n) {
        failing.throwAt(n);
        try {
            EXPECT_THAT(checked(failing), Contains(HasSubstr("error"))) << "call " << n;
        } catch (const StoreFailure&) {
            EXPECT_LE(n, 2u) << "only its guard and its size";
        }
        EXPECT_EQ(failing.guardsHeld(), 0) << "call " << n;
    }
}

TEST_F(CheckStores, PassesOverTheGapsOfRemovedRecords) {
    for (int i = 0; i < 20000; ++i) store.remove(add(u8(3)));
    addTo(kTop, add(primitiveRecord(kRoot, 12, u"late")));
    EXPECT_THAT(checked(store), IsEmpty());
}

}  // namespace
}  // namespace norvane::platform::test
