#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::core::storage::datastore {

// Alone in its file: no code of this library can then be compiled with the value in place of the variable,
// and a program that defines another value leaves this file out.
const std::uint32_t IDataStore::BADOFF = 0xFFFFFFFFu;

}  // namespace norvane::platform::core::storage::datastore
