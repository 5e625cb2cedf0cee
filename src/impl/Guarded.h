// The guard around every public operation.
#pragma once

#include <exception>
#include <type_traits>
#include <utility>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/data/Names.h"
#include "records/Owned.h"

namespace norvane::platform::data {

// Holds a store's guard until `release`, or until an exception passes: what the guard throws leaves from the
// one, and is dropped by the other. So it need not ask which of both it is.
class OperationGuard {
  public:
    explicit OperationGuard(IDataStore* store) : guard_(store->lock()) {}
    OperationGuard(const OperationGuard&) = delete;
    OperationGuard& operator=(const OperationGuard&) = delete;
    ~OperationGuard() {
        if (!guard_) return;
        try {
            release();
        } catch (...) {
        }
    }

    void release() { delete std::exchange(guard_, nullptr); }

  private:
    IDataStore::Guard* guard_;
};

// Runs an operation under the store's guard. Its result is complete before the guard goes. Releasing a guard
// may throw; the result is a local here, so that it is released then.
template <class Operation>
auto underGuard(IDataStore* store, Operation operation) {
    OperationGuard guard(store);
    if constexpr (std::is_void_v<std::invoke_result_t<Operation>>) {
        operation();
        guard.release();
    } else {
        auto result = operation();
        guard.release();
        return result;
    }
}

// The open object behind a handle, closed under its store's guard. What the store throws leaves from the
// destructor, unless another exception is under way. The object's memory goes in any case.
template <class T>
class GuardedItem {
  public:
    explicit GuardedItem(Owned<T> item) noexcept : item_(std::move(item)) {}
    GuardedItem(const GuardedItem&) = delete;
    GuardedItem& operator=(const GuardedItem&) = delete;
    ~GuardedItem() noexcept(false) {
        const int exceptionsAtBirth = item_->exceptionsAtBirth();
        try {
            OperationGuard guard(item_->store());
            item_.reset();
            guard.release();
        } catch (...) {
            // Without a guard the store may be in the middle of another thread's change: it is left alone,
            // at the price of an open count that stays raised.
            if (item_) item_->abandon();
            if (std::uncaught_exceptions() <= exceptionsAtBirth) throw;
        }
    }

    T* operator->() const noexcept { return item_.get(); }
    T& operator*() const noexcept { return *item_; }

  private:
    Owned<T> item_;
};

}  // namespace norvane::platform::data
