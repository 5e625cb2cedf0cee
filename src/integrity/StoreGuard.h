// Exclusive use of a store for one scope.
#pragma once

#include <exception>

#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::data::integrity {

// What the guard throws when it goes leaves from here, unless another exception is under way.
class StoreGuard {
  public:
    explicit StoreGuard(core::storage::datastore::IDataStore& store)
        : exceptions_(std::uncaught_exceptions()), guard_(store.lock()) {}
    StoreGuard(const StoreGuard&) = delete;
    StoreGuard& operator=(const StoreGuard&) = delete;
    ~StoreGuard() noexcept(false) {
        try {
            delete guard_;
        } catch (...) {
            if (std::uncaught_exceptions() == exceptions_) throw;
        }
    }

  private:
    int exceptions_;
    core::storage::datastore::IDataStore::Guard* guard_;
};

}  // namespace norvane::platform::data::integrity
