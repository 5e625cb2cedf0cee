#include "contract/StoreContract.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "support/LoggingStore.h"

namespace norvane::platform::test {

struct MemoryHarness {
    IDataStore& store() { return memory; }
    core::storage::datastore::MemoryDataStore memory;
};

// What stands between tests and a store keeps the store's promises, or the tests would prove little.
struct WatchedHarness {
    IDataStore& store() { return watched; }
    LoggingStore watched{Extensions::on};
};

struct PlainHarness {
    IDataStore& store() { return watched; }
    LoggingStore watched{Extensions::off};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, StoreContract, MemoryHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Watched, StoreContract, WatchedHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Plain, StoreContract, PlainHarness);

}  // namespace norvane::platform::test
