#include "norvane/platform/core/storage/datastore/StoreError.h"

namespace norvane::platform::core::storage::datastore {

StoreError::StoreError(Code code, const std::string& words, std::uint32_t offset)
    : std::runtime_error(words), code_(code), offset_(offset) {}

StoreError::~StoreError() noexcept = default;

}  // namespace norvane::platform::core::storage::datastore
