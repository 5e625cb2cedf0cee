// Exclusive use of a store for one scope.
#pragma once

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "records/FirstFailure.h"

namespace norvane::platform::data {

// Holds a store's guard, if the store gives one, from construction to destruction. What the guard throws when
// it goes leaves from here, unless another exception is under way.
class StoreGuard {
  public:
    explicit StoreGuard(core::storage::datastore::IDataStore* store) : guard_(store->lock()) {}
    StoreGuard(const StoreGuard&) = delete;
    StoreGuard& operator=(const StoreGuard&) = delete;
    ~StoreGuard() noexcept(false) {
        try {
            delete guard_;
        } catch (...) {
            if (!unwinding_.isUnwinding()) throw;
        }
    }

  private:
    UnwindingCheck unwinding_;
    core::storage::datastore::IDataStore::Guard* guard_;
};

}  // namespace norvane::platform::data
