// How a file that was made under another name gets its own.
#pragma once

#include <string>

namespace norvane::platform::core::storage::datastore {

// What `StoreFile::publish` promises. Both names are in one folder.
void publish(const std::string& draft, const std::string& path);

}  // namespace norvane::platform::core::storage::datastore
