// Stores that fail: nothing leaks, nothing stays open or guarded, nothing ends the program.
#include <gtest/gtest.h>

#include <new>

#include "records/StoreGuard.h"
#include "schema/Conformance.h"
#include "support/ThrowingStore.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using namespace data::metadata;

class StoreFailures : public testing::TestWithParam<Extensions> {};

INSTANTIATE_TEST_SUITE_P(Stores, StoreFailures, testing::Values(Extensions::off, Extensions::on));

// A type with everything in it, and an object of it.
struct Types {
    explicit Types(IDataStore& given) : store(given), build(given) {
        build.primitive(build.table(0, u"S"), kInt8, u"x");
        type = build.table(0, u"T");
        build.primitive(type, kInt32, u"n");
        build.primitive(build.table(type, u"nested"), kInt32, u"m");
        build.structOf(type, u"p", u"S", 2);
        object = build.container(0, u"object");
        locator = ISchemaLocator::make(&store);
    }

    IDataStore& store;
    Builder build;
    Offset type = 0;
    Offset object = 0;
    SharedPtr<ISchemaLocator> locator;
};

// Asks again when the store has calmed down, and looks at what the failure has left.
struct AskedAgain : Types {
    using Types::Types;
    ~AskedAgain() {
        EXPECT_EQ(layoutsOf(locator->locate(u"T;S")).size(), 2u);
        EXPECT_EQ(openCount(store, type), 1u);
        locator.reset();
        EXPECT_EQ(openCount(store, type), 0u);
    }
};

TEST_P(StoreFailures, FailedLocateLeavesNothingOpenAndSucceedsWhenRepeated) {
    const std::uint64_t failures =
        failAtEveryCall<AskedAgain>([](AskedAgain& types) { types.locator->locate(u"T;S"); }, GetParam());
    EXPECT_GT(failures, 10u);
}

TEST_P(StoreFailures, FailureWhileImportingLetsTheGuardGo) {
    const std::uint64_t failures = failAtEveryCall<Types>(
        [](Types& types) {
            const auto schema = types.locator->locate(u"T;S");
            Structural::Container(&types.store, types.object).importClasses(schema.get());
        },
        GetParam());
    EXPECT_GT(failures, 20u);
}

TEST_P(StoreFailures, FailureWhileComparingLeavesNothing) {
    const std::uint64_t failures = failAtEveryCall<Types>(
        [](Types& types) {
            const auto schema = types.locator->locate(u"T;S");
            Schema::matchesStructure(schema.get(), Structural::Container(&types.store, types.object));
        },
        GetParam());
    EXPECT_GT(failures, 20u);
}

TEST_P(StoreFailures, FailureWhileClosingComesOutOfRemoveStoreWhichStillRemoves) {
    MemoryDataStore memory;
    ThrowingStore store(memory, GetParam());
    Types types(store);
    types.locator->locate(u"T;S");

    store.throwFrom(1);
    EXPECT_THROW(types.locator->removeStore(&store), StoreFailure);
    store.calm();

    EXPECT_FALSE(types.locator->removeStore(&store));
    EXPECT_EQ(types.locator->locate(u"T"), nullptr);
}

TEST_P(StoreFailures, FailureWhileClosingComesOutOfTheLastPointer) {
    MemoryDataStore memory;
    ThrowingStore store(memory, GetParam());
    Types types(store);
    types.locator->locate(u"T;S");

    store.throwFrom(1);

    EXPECT_THROW(types.locator.reset(), StoreFailure);
    EXPECT_EQ(types.locator, nullptr);
}

TEST_P(StoreFailures, AFailureToCloseOneTableDoesNotKeepTheOthersOpen) {
    MemoryDataStore memory, sound;
    const Offset other = Builder(sound).table(0, u"Other");
    ThrowingStore store(memory, GetParam());
    Types types(store);
    types.locator->addStore(&sound);
    types.locator->locate(u"T;Other;S");

    store.throwFrom(1);
    EXPECT_THROW(types.locator.reset(), StoreFailure);

    EXPECT_EQ(openCount(sound, other), 0u);
}

TEST_P(StoreFailures, FailureWhileClosingDuringAnotherExceptionIsDropped) {
    MemoryDataStore memory;
    ThrowingStore store(memory, GetParam());
    const auto leaveWithAnException = [&] {
        Types types(store);
        types.locator->locate(u"T;S");
        store.throwFrom(1);
        throw std::bad_alloc();
    };
    EXPECT_THROW(leaveWithAnException(), std::bad_alloc);
}

// Types found while an exception is under way do not know that it is one when they are closed by it.
TEST_P(StoreFailures, FailureWhileClosingWhatTheExceptionHasOpenedIsDroppedToo) {
    struct LocateAtTheEnd {
        Types& types;
        ThrowingStore& store;
        ~LocateAtTheEnd() {
            types.locator->locate(u"T;S");
            store.throwFrom(1);
        }
    };
    MemoryDataStore memory;
    ThrowingStore store(memory, GetParam());
    const auto leaveWithAnException = [&] {
        Types types(store);
        const LocateAtTheEnd atTheEnd{types, store};
        throw std::bad_alloc();
    };
    EXPECT_THROW(leaveWithAnException(), std::bad_alloc);
}

class ThrowingGuardStore : public MemoryDataStore {
  public:
    struct ThrowingGuard : Guard {
        ~ThrowingGuard() noexcept(false) override { throw StoreFailure(); }
    };
    Guard* lock() override { return new ThrowingGuard; }
};

TEST(StoreGuard, WhatTheGuardThrowsWhenItGoesComesOut) {
    ThrowingGuardStore store;
    EXPECT_THROW(data::StoreGuard guard(&store), StoreFailure);
}

TEST(StoreGuard, WhatTheGuardThrowsDuringAnotherExceptionIsDropped) {
    ThrowingGuardStore store;
    const auto fail = [&store] {
        const data::StoreGuard guard(&store);
        throw std::bad_alloc();
    };
    EXPECT_THROW(fail(), std::bad_alloc);
}

}  // namespace
}  // namespace norvane::platform::test
