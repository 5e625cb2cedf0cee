#include "NewFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace qvt {

namespace {

bool isThere(const std::string& path) {
    std::error_code unknown;
    return std::filesystem::exists(path, unknown);
}

std::string unusedBeside(const std::string& path) {
    std::string name = path + "." + std::to_string(::getpid()) + ".new";
    while (isThere(name)) name += "0";
    return name;
}

}  // namespace

NewFile::NewFile(const std::string& path)
    : path_(path), isNew_(!isThere(path)), file_(isNew_ ? unusedBeside(path) : path) {}

NewFile::~NewFile() {
    if (!isNew_) return;
    for (const char* suffix : {"", "-wal", "-shm"}) std::remove((file_ + suffix).c_str());
}

void NewFile::take() const {
    if (!isNew_) return;
    if (isThere(file_ + "-wal")) fail(kUnwritten, "its log could not be written back");
    if (!rename() || !syncFolder())
        fail(errno == EEXIST ? kRefused : kUnwritten, std::generic_category().message(errno));
}

void NewFile::fail(Status status, const std::string& why) const {
    throw Failure(status, path_ + ": error: cannot make it: " + why);
}

// Never takes the place of another file. Not all file systems can rename so.
bool NewFile::rename() const {
    if (::renameat2(AT_FDCWD, file_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) == 0) return true;
    return (errno == EINVAL || errno == ENOSYS) && ::link(file_.c_str(), path_.c_str()) == 0;
}

// The name is as durable then as what it names.
bool NewFile::syncFolder() const {
    const std::string folder = std::filesystem::path(path_).parent_path().string();
    const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isDone = descriptor >= 0 && ::fsync(descriptor) == 0;
    if (descriptor >= 0) ::close(descriptor);
    return isDone;
}

}  // namespace qvt
