// A backend in one SQLite file.
#pragma once

#include <memory>
#include <string>

#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "stores/overlay/Backend.h"

namespace norvane::platform::core::storage::datastore {

class FileBackend : public Backend {
  public:
    // Throws what the constructor of `FileDataStore` throws.
    static std::unique_ptr<FileBackend> open(const std::string& path, const FileDataStore::Options& options);

    // Gives the file up: the writer's lock goes, and the log is written back where that is this store's to
    // do.
    virtual void close() = 0;
    virtual void compact() = 0;
    virtual FileDataStore::LogStatus logStatus() const = 0;
};

}  // namespace norvane::platform::core::storage::datastore
