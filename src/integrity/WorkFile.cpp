#include "integrity/WorkFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreFile.h"

namespace norvane::platform::data::integrity {

using core::storage::datastore::IDataStore;
using core::storage::datastore::StoreError;
using core::storage::datastore::StoreFile;

WorkFile::~WorkFile() {
    if (path_.empty()) return;
    for (const char* beside : {"", "-wal", "-shm", "-journal"}) unlink((path_ + beside).c_str());
}

void WorkFile::publish(const std::string& path) {
    StoreFile::publish(path_, path);
    path_.clear();
}

std::string WorkFile::pathFor(const std::string& path) {
    return path + ".repairing-" + std::to_string(getpid());
}

void refuseExisting(const std::string& path) {
    struct stat status;
    if (lstat(path.c_str(), &status) == 0)
        throw StoreError(StoreError::Code::exists, path + ": there is such a file already",
                         IDataStore::BADOFF);
}

}  // namespace norvane::platform::data::integrity
