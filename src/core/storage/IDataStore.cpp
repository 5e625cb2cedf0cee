#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::core::storage::datastore {

const void* IDataStore::view(std::uint32_t, std::uint32_t& size) {
    size = 0;
    return nullptr;
}

bool IDataStore::patch(std::uint32_t, std::uint32_t, const void*, std::uint32_t, bool) { return false; }

std::uint32_t IDataStore::recordLimit() { return 0xFFFFFFFFu; }

std::uint64_t IDataStore::changeStamp() { return 0; }

IDataStore::Companion* IDataStore::companion(std::unique_ptr<Companion> (*)()) { return nullptr; }

}  // namespace norvane::platform::core::storage::datastore
