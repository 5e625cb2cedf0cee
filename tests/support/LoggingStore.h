// A store that remembers every call.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "support/ForwardingStore.h"

namespace norvane::platform::test {

namespace detail {
// A base of its own, so that the store stands before the class that forwards to it is built.
struct OwnMemory {
    core::storage::datastore::MemoryDataStore memory;
};
}  // namespace detail

// A memory store with a log of the calls that succeeded, in order; guards occur as "lock" and "unlock".
class LoggingStore : private detail::OwnMemory, public ForwardingStore {
  public:
    explicit LoggingStore(Extensions extensions = Extensions::off) : ForwardingStore(memory, extensions) {}

    const std::vector<StoreCall>& calls() const { return calls_; }
    // Takes the log away, for a test that prepares before it watches.
    std::vector<StoreCall> takeCalls() { return std::exchange(calls_, {}); }

    std::size_t count(std::string_view name) const {
        return static_cast<std::size_t>(std::count_if(
            calls_.begin(), calls_.end(), [name](const StoreCall& call) { return call.name == name; }));
    }

    // The calls that change the store, in order.
    std::vector<StoreCall> changes() const {
        std::vector<StoreCall> result;
        std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(result), isChange);
        return result;
    }

    static bool isChange(const StoreCall& call) {
        return call.name == "append" || call.name == "extend" || call.name == "write" ||
               call.name == "remove" || call.name == "patch" || call.name == "setVersion";
    }

    // The store behind, for looks that are not to be logged.
    core::storage::datastore::MemoryDataStore& behind() { return memory; }

  protected:
    void after(const StoreCall& call) override { calls_.push_back(call); }

  private:
    std::vector<StoreCall> calls_;
};

}  // namespace norvane::platform::test
