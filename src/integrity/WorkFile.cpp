#include "integrity/WorkFile.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreError.h"

namespace norvane::platform::data::integrity {

using core::storage::datastore::IDataStore;
using core::storage::datastore::StoreError;

namespace {

[[noreturn]] void fail(StoreError::Code code, const std::string& path, const std::string& words) {
    throw StoreError(code, path + ": " + words, IDataStore::BADOFF);
}

[[noreturn]] void failWith(int error, const std::string& path) {
    if (error == EEXIST) fail(StoreError::Code::exists, path, "there is such a file already");
    const bool isFull = error == ENOSPC || error == EDQUOT;
    fail(isFull ? StoreError::Code::diskFull : StoreError::Code::notWritable, path, std::strerror(error));
}

// Never in place of another file. Some file systems know one way and some the other.
bool renameToNew(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) return false;
    if (link(from.c_str(), to.c_str()) != 0) return false;
    unlink(from.c_str());
    return true;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash + 1);
}

// A name lasts when its folder has been written.
void syncFolderOf(const std::string& path) {
    const int folder = open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    fsync(folder);
    close(folder);
}

}  // namespace

WorkFile::~WorkFile() {
    if (path_.empty()) return;
    for (const char* beside : {"", "-wal", "-shm", "-journal"}) unlink((path_ + beside).c_str());
}

void WorkFile::moveTo(const std::string& path) {
    // What could not be written back stands in a log that would not go with the file.
    struct stat log;
    if (lstat((path_ + "-wal").c_str(), &log) == 0) failWith(ENOSPC, path);
    if (!renameToNew(path_, path)) failWith(errno, path);
    path_.clear();
    syncFolderOf(path);
}

std::string WorkFile::pathFor(const std::string& path) {
    return path + ".repairing-" + std::to_string(getpid());
}

void refuseExisting(const std::string& path) {
    struct stat status;
    if (lstat(path.c_str(), &status) == 0) failWith(EEXIST, path);
}

}  // namespace norvane::platform::data::integrity
