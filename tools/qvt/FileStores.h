// Files as stores.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Names.h"
#include "Options.h"
#include "norvane/platform/core/storage/datastore/FileDataStore.h"

namespace qvt {

using core::storage::datastore::FileDataStore;
using core::storage::datastore::StoreError;

// Whether a path names a file store (*.qvt); everything else is a document.
bool isFileStore(std::string_view path);
// Whether the file is one, whatever its name; false where it cannot be read.
bool holdsFileStore(const std::string& path);
// Whether a file that begins so is one.
bool beginsAsFileStore(std::string_view bytes);

// Whether two paths lead to one file.
bool isSameFile(const std::string& left, const std::string& right);

// For a verb that works on files alone: a Failure for the path of a document.
void mustBeFileStore(const std::string& path, const char* verb);

// Throws StoreError, as everything that is done with the store may.
std::unique_ptr<IDataStore> openForReading(const std::string& path);

// What a store's failure means for the run. The store begins its words with the place of its file, which they
// may have found out; if it is that of `file`, the message has `name` instead, and before that of its folder.
// Nothing if it is another one.
std::optional<Failure> failureOf(const StoreError& error, const std::string& file, const std::string& name);

// The same for words that begin with another place.
Failure failureOf(const StoreError& error, const std::string& name);

}  // namespace qvt
