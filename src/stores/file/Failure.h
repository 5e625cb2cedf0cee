// From what the system and SQLite answer to the errors of a store.
#pragma once

#include <cstdint>
#include <string>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreError.h"

struct sqlite3;

namespace norvane::platform::core::storage::datastore {

// What was being done: the same answer of the system means something else for each.
enum class Doing : std::uint8_t { reading, writing };

[[noreturn]] void fail(StoreError::Code code, const std::string& path, const std::string& words);
[[noreturn]] void failDamaged(const std::string& path, const std::string& words, std::uint32_t offset);
[[noreturn]] void failSystem(const std::string& path, Doing doing, int error);
// Throws `std::bad_alloc` where memory ran out. `db` may be null.
[[noreturn]] void failSqlite(const std::string& path, Doing doing, int answer, sqlite3* db);

// The code that an answer of SQLite stands for; `error` is the system's own number, or 0.
StoreError::Code codeOf(int answer, Doing doing, int error);

}  // namespace norvane::platform::core::storage::datastore
