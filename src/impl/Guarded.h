// The guard around every public operation.
#pragma once

#include <type_traits>
#include <utility>

#include "norvane/platform/data/Names.h"
#include "records/FirstFailure.h"
#include "records/Owned.h"
#include "records/StoreGuard.h"

namespace norvane::platform::data {

// Runs an operation under the store's guard. Its result is complete before the guard goes. Releasing a guard
// may throw; the result is a local here, so that it is released then, which compilers do not do for one that
// is being returned.
template <class Operation>
auto underGuard(IDataStore* store, Operation operation) {
    using Result = std::invoke_result_t<Operation>;
    if constexpr (std::is_void_v<Result>) {
        const StoreGuard guard(store);
        operation();
    } else {
        Result result{};
        {
            const StoreGuard guard(store);
            result = operation();
        }
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
        try {
            const StoreGuard guard(item_->store());
            item_.reset();
        } catch (...) {
            // Without a guard the store may be in the middle of another thread's change: it is left alone,
            // at the price of an open count that stays raised.
            if (item_) item_->abandon();
            if (!unwinding_.isUnwinding()) throw;
        }
    }

    T* operator->() const noexcept { return item_.get(); }
    T& operator*() const noexcept { return *item_; }

  private:
    Owned<T> item_;
    UnwindingCheck unwinding_;
};

}  // namespace norvane::platform::data
