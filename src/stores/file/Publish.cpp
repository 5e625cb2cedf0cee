#include "stores/file/Publish.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>

#include "stores/file/Failure.h"
#include "stores/file/Log.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash + 1);
}

// Answers the system's number of what went wrong, 0 if nothing did.
int sync(const std::string& path, int flags) {
    const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC);
    if (descriptor < 0) return errno;
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    return error;
}

// Never over a file that somebody has made in the meantime. Not all file systems can rename so.
int giveName(const std::string& draft, const std::string& path) {
    if (::renameat2(AT_FDCWD, draft.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) return errno;
    if (::link(draft.c_str(), path.c_str()) != 0) return errno;
    ::unlink(draft.c_str());
    return 0;
}

[[noreturn]] void failToName(const std::string& path, int error) {
    if (error == EEXIST) fail(Code::exists, path, "there is such a file already");
    failSystem(path, Doing::writing, error);
}

}  // namespace

void publish(const std::string& draft, const std::string& path) {
    // What could not be written back stands in a log that would not go with the file.
    if (::access(logPathOf(draft).c_str(), F_OK) == 0)
        fail(Code::diskFull, path, "no room to write its log back");
    if (const int error = sync(draft, O_RDWR)) failSystem(path, Doing::writing, error);
    if (const int error = giveName(draft, path)) failToName(path, error);
    // A name that may not outlast a power cut is taken back, so that the file can be made again.
    if (const int error = sync(folderOf(path), O_RDONLY | O_DIRECTORY)) {
        ::unlink(path.c_str());
        failSystem(path, Doing::writing, error);
    }
}

}  // namespace norvane::platform::core::storage::datastore
