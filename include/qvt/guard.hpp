#pragma once

#include <exception>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "qvt/text.hpp"

namespace qvt {

/// What keeps records: a store of the library, or one of the host.
using Store = core::storage::datastore::IDataStore;

/// The guard of a store, until the end of the scope: see `hold`.
class [[nodiscard]] Hold {
  public:
    /// Waits for the guard.
    explicit Hold(Store& store) : guard_(store.lock()) {}
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    /// Throws what the store throws.
    ~Hold() noexcept(false) { delete guard_; }

  private:
    Store::Guard* guard_;
};

/// Keeps other threads off a store, so that what is done until the end of the scope happens as one: `const
/// auto guard = qvt::hold(store);`. One thread may hold a store several times. In a store in a file, an
/// exception that ends the scope takes back all that was changed in it.
///
/// `top` and `find` of a store take a lock of the process ahead of the guard. Call them first where several
/// threads hold several stores; a ring of waiting threads is refused with `std::system_error`.
[[nodiscard]] inline Hold hold(Store& store) { return Hold(store); }

}  // namespace qvt
