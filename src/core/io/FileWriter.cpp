#include "norvane/platform/core/io/FileWriter.h"

#include <sys/stat.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "core/io/Posix.h"

namespace norvane::platform::core::io {
namespace {

// The file behind a symbolic link, so that the link itself is not replaced by a file.
std::string linkTarget(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : path;
}

std::string nameBeside(const std::string& path) {
    static std::atomic<unsigned> number{0};
    return path + ".new-" + std::to_string(::getpid()) + "-" + std::to_string(number++);
}

}  // namespace

FileWriter::FileWriter(std::string path) : path_(std::move(path)) {}

FileWriter::FileWriter(int descriptor) : descriptor_(descriptor), borrowed_(true) {}

FileWriter::~FileWriter() noexcept { abandon(); }

bool FileWriter::open() {
    abandon();
    errorNumber_ = 0;
    if (borrowed_) return true;
    struct stat status {};
    const bool exists = ::stat(path_.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) return openInPlace();
    if (!openBeside()) return false;
    // The new file keeps who may read and write the old one.
    if (exists && ::fchmod(descriptor_, status.st_mode & 07777) == -1) return fail();
    return true;
}

bool FileWriter::openInPlace() {
    descriptor_ = uninterrupted([this] { return ::open(path_.c_str(), O_WRONLY | O_CLOEXEC); });
    return descriptor_ != -1 || fail();
}

bool FileWriter::openBeside() {
    unfinished_ = nameBeside(linkTarget(path_));
    descriptor_ = uninterrupted(
        [this] { return ::open(unfinished_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666); });
    if (descriptor_ != -1) return true;
    unfinished_.clear();
    return fail();
}

std::size_t FileWriter::write(const void* buffer, std::size_t size) {
    if (failed()) return 0;
    const ssize_t count = uninterrupted([&] { return ::write(descriptor_, buffer, size); });
    if (count >= 0) return static_cast<std::size_t>(count);
    fail();
    return 0;
}

void FileWriter::close() {
    if (borrowed_ || descriptor_ == -1) return;
    if (!failed() && !unfinished_.empty() && uninterrupted([this] { return ::fsync(descriptor_); }) == -1)
        fail();
    if (::close(std::exchange(descriptor_, -1)) == -1) fail();
    if (!failed()) commit();
    abandon();
}

void FileWriter::commit() {
    if (unfinished_.empty()) return;
    if (std::rename(unfinished_.c_str(), linkTarget(path_).c_str()) == -1)
        fail();
    else
        unfinished_.clear();
}

void FileWriter::abandon() {
    if (!borrowed_ && descriptor_ != -1) ::close(std::exchange(descriptor_, -1));
    if (!unfinished_.empty()) ::unlink(std::exchange(unfinished_, {}).c_str());
}

bool FileWriter::fail() {
    if (errorNumber_ == 0) errorNumber_ = errno;
    return false;
}

std::string FileWriter::error() const { return describeError(errorNumber_); }

}  // namespace norvane::platform::core::io
