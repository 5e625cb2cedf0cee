// A store that fails when it is told to.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "support/ForwardingStore.h"

namespace norvane::platform::test {

struct StoreFailure : std::runtime_error {
    StoreFailure() : std::runtime_error("the store has failed") {}
};

// Counts calls, and throws `StoreFailure` in place of those that were chosen. The end of a guard is no call.
class ThrowingStore : public ForwardingStore {
  public:
    // The other store is borrowed.
    explicit ThrowingStore(IDataStore& store, Extensions extensions = Extensions::off)
        : ForwardingStore(store, extensions) {}

    // Counts anew. The n-th call from here, beginning with 1, throws; or that one and all after it.
    void throwAt(std::uint64_t n) { begin(n, n); }
    void throwFrom(std::uint64_t n) { begin(n, std::numeric_limits<std::uint64_t>::max()); }
    // Throws no more.
    void calm() { begin(1, 0); }

    std::uint64_t calls() const { return calls_; }
    // True if a call has thrown since the last choice.
    bool thrown() const { return thrown_; }

  protected:
    void before(const char*) override {
        ++calls_;
        if (calls_ < first_ || calls_ > last_) return;
        thrown_ = true;
        throw StoreFailure();
    }

  private:
    void begin(std::uint64_t first, std::uint64_t last) {
        calls_ = 0;
        first_ = first;
        last_ = last;
        thrown_ = false;
    }

    std::uint64_t calls_ = 0;
    std::uint64_t first_ = 1;
    std::uint64_t last_ = 0;
    bool thrown_ = false;
};

// Runs an operation on a fixture built anew each time, made to fail at its first call of the store, then at
// its second, and so on until it gets through. Each time no guard may be left; the fixture goes when the
// store is calm again. Answers how many failures there were.
//
// Fixture is constructed from an `IDataStore&`. The operation takes a `Fixture&` and lets `StoreFailure`
// pass, or not.
template <class Fixture, class Operation>
std::uint64_t failAtEveryCall(Operation operation, Extensions extensions = Extensions::off) {
    for (std::uint64_t n = 1;; ++n) {
        core::storage::datastore::MemoryDataStore memory;
        ThrowingStore store(memory, extensions);
        Fixture fixture(static_cast<IDataStore&>(store));
        store.throwAt(n);
        try {
            operation(fixture);
        } catch (const StoreFailure&) {
            EXPECT_TRUE(store.thrown());
        }
        EXPECT_EQ(store.guardsHeld(), 0) << "after a failure at call " << n;
        const bool passed = !store.thrown();
        store.calm();
        if (passed) return n - 1;
    }
}

}  // namespace norvane::platform::test
