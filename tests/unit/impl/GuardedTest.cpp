#include <gtest/gtest.h>

#include "impl/Guarded.h"
#include "model/Container.h"
#include "model/Primitive.h"
#include "support/LoggingStore.h"
#include "support/ThrowingStore.h"

namespace norvane::platform::data {
namespace {

using core::storage::datastore::MemoryDataStore;
using test::LoggingStore;
using test::StoreFailure;
using test::ThrowingStore;

// Tells how many of its kind are alive.
struct Counted {
    static inline int alive = 0;
    Counted() { ++alive; }
    Counted(const Counted&) { ++alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() noexcept(false) { --alive; }
};

// A store whose guards fail when they go.
class FailingUnlockStore : public test::ForwardingStore {
  public:
    explicit FailingUnlockStore(IDataStore& store) : ForwardingStore(store, test::Extensions::off) {}

  protected:
    void after(const test::StoreCall& call) override {
        if (call.name == "unlock") throw StoreFailure();
    }
};

class NoGuardStore : public test::ForwardingStore {
  public:
    explicit NoGuardStore(IDataStore& store) : ForwardingStore(store, test::Extensions::off) {}
    Guard* lock() override { return nullptr; }
};

TEST(UnderGuardTest, HoldsTheGuardForTheWholeOperation) {
    LoggingStore store;

    const int result = underGuard(&store, [&store] { return store.guardsHeld(); });

    EXPECT_EQ(result, 1);
    EXPECT_EQ(store.guardsHeld(), 0);
}

TEST(UnderGuardTest, OperationsWithoutResultAreGuardedToo) {
    LoggingStore store;
    int held = 0;

    underGuard(&store, [&] { held = store.guardsHeld(); });

    EXPECT_EQ(held, 1);
    EXPECT_EQ(store.guardsHeld(), 0);
}

TEST(UnderGuardTest, StoreMayGiveNoGuard) {
    MemoryDataStore memory;
    NoGuardStore store(memory);

    EXPECT_EQ(underGuard(&store, [] { return 5; }), 5);
}

TEST(UnderGuardTest, FailureOfTheOperationReleasesTheGuard) {
    LoggingStore store;

    EXPECT_THROW(underGuard(&store, []() -> int { throw StoreFailure(); }), StoreFailure);

    EXPECT_EQ(store.guardsHeld(), 0);
}

TEST(UnderGuardTest, FailureOfTheGuardReleasesTheResult) {
    MemoryDataStore memory;
    FailingUnlockStore store(memory);

    EXPECT_THROW(underGuard(&store, [] { return Counted(); }), StoreFailure);

    EXPECT_EQ(Counted::alive, 0);
}

TEST(UnderGuardTest, FailureOfTheOperationWinsOverThatOfTheGuard) {
    struct First {};
    MemoryDataStore memory;
    FailingUnlockStore store(memory);

    EXPECT_THROW(underGuard(&store, [] { throw First(); }), First);
}

class GuardedItemTest : public ::testing::Test {
  protected:
    ~GuardedItemTest() noexcept override = default;

    using Item = GuardedItem<Metadata::Item>;

    Owned<Design::Primitive> open(IDataStore& opened) {
        return makeOwned<Design::Primitive>(&opened, offset);
    }
    std::uint32_t openCount() { return Record::Snapshot(&memory, offset)->load(Record::field::openCount); }

    MemoryDataStore memory;
    std::uint32_t offset = Design::Primitive(&memory, 12, u"p").offset();
};

TEST_F(GuardedItemTest, ClosesUnderTheGuard) {
    test::LoggingStore logging;
    const std::uint32_t there = Design::Primitive(&logging, 12, u"p").offset();
    {
        const Item item(makeOwned<Design::Primitive>(&logging, there));
        logging.takeCalls();
    }

    EXPECT_EQ(logging.calls().front().name, "lock");
    EXPECT_EQ(logging.calls().back().name, "unlock");
    EXPECT_GT(logging.count("write"), 0u);
}

TEST_F(GuardedItemTest, LowersTheOpenCount) {
    { const Item item(open(memory)); }

    EXPECT_EQ(openCount(), 0u);
}

TEST_F(GuardedItemTest, FailureOfClosingLeavesTheDestructor) {
    ThrowingStore store(memory);
    const auto work = [&] {
        const Item item(open(store));
        store.throwAt(2);
    };

    EXPECT_THROW(work(), StoreFailure);
    EXPECT_EQ(store.guardsHeld(), 0);
}

TEST_F(GuardedItemTest, FailureOfTheGuardsReleaseLeavesTheDestructor) {
    FailingUnlockStore store(memory);
    const auto work = [&] { const Item item(open(store)); };

    EXPECT_THROW(work(), StoreFailure);
    EXPECT_EQ(openCount(), 0u);
}

TEST_F(GuardedItemTest, WithoutAGuardNothingIsWritten) {
    ThrowingStore store(memory);
    const auto work = [&] {
        const Item item(open(store));
        item->setLocalised(u"text", u"en");
        store.throwAt(1);
    };

    EXPECT_THROW(work(), StoreFailure);
    EXPECT_EQ(store.calls(), 1u);
    EXPECT_EQ(openCount(), 1u);
}

TEST_F(GuardedItemTest, FailureIsKeptBackWhileAnotherExceptionIsUnderWay) {
    struct First {};
    ThrowingStore store(memory);

    for (std::uint64_t n = 1; n <= 3; ++n) {
        store.calm();
        const auto work = [&] {
            const Item item(open(store));
            store.throwAt(n);
            throw First();
        };
        EXPECT_THROW(work(), First) << n;
        EXPECT_EQ(store.guardsHeld(), 0);
    }
}

}  // namespace
}  // namespace norvane::platform::data
