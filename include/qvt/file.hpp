#pragma once

#if __cplusplus < 202002L
#error "<qvt/file.hpp> needs C++20 (-std=c++20); FileDataStore.h needs C++17 only"
#else

#include <concepts>
#include <type_traits>
#include <utility>

#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "qvt/guard.hpp"

namespace qvt {

/// A store in one file, of the library qvt::file. What it throws is a `StoreError`.
using FileStore = core::storage::datastore::FileDataStore;
using core::storage::datastore::StoreError;

/// What can be done in a commit: it says whether to keep what it did, or returns nothing and always does.
template <class Work>
concept Commitment = std::invocable<Work> &&
    (std::same_as<std::invoke_result_t<Work>, bool> || std::is_void_v<std::invoke_result_t<Work>>);

/// Does some work under the guard, and brings it into the file as one: all of it, if `work` ends and does not
/// answer false; else nothing. What was changed before is committed first. Answers whether the work is in the
/// file. What `work` throws comes out, and so does the failure of a commit. Handles that are opened in `work`
/// are to end in it.
template <Commitment Work>
bool commit(FileStore& store, Work&& work) {
    const auto guard = hold(store);
    FileStore::Transaction transaction(store);
    bool keeps = true;
    if constexpr (std::is_void_v<std::invoke_result_t<Work>>)
        std::forward<Work>(work)();
    else
        keeps = std::forward<Work>(work)();
    if (keeps)
        transaction.commit();
    else
        transaction.rollback();
    return keeps;
}

}  // namespace qvt

#endif
