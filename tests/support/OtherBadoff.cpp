// Gives the offset of no record another value than the core library does. Linked into a test program, it
// takes the place of the library's own definition, so that code with a copy of that value in it is found out.
#include "norvane/platform/core/storage/datastore/IDataStore.h"

#ifndef QVT_OTHER_BADOFF
#define QVT_OTHER_BADOFF 0x80001001u
#endif

namespace norvane::platform::core::storage::datastore {

const std::uint32_t IDataStore::BADOFF = QVT_OTHER_BADOFF;

}  // namespace norvane::platform::core::storage::datastore
