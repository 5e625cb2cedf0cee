#include "norvane/platform/core/io/FileReader.h"

#include <utility>

#include "core/io/Posix.h"

namespace norvane::platform::core::io {

FileReader::FileReader(std::string path) : path_(std::move(path)) {}

FileReader::FileReader(int descriptor) : descriptor_(descriptor), borrowed_(true) {}

FileReader::~FileReader() noexcept { close(); }

bool FileReader::open() {
    errorNumber_ = 0;
    if (borrowed_) return true;
    close();
    descriptor_ = uninterrupted([this] { return ::open(path_.c_str(), O_RDONLY | O_CLOEXEC); });
    if (descriptor_ == -1) errorNumber_ = errno;
    return descriptor_ != -1;
}

void FileReader::close() {
    if (borrowed_ || descriptor_ == -1) return;
    ::close(std::exchange(descriptor_, -1));
}

std::size_t FileReader::read(void* buffer, std::size_t size) {
    if (failed()) return 0;
    const ssize_t count = uninterrupted([&] { return ::read(descriptor_, buffer, size); });
    if (count == -1) errorNumber_ = errno;
    return count == -1 ? 0 : static_cast<std::size_t>(count);
}

std::string FileReader::error() const { return describeError(errorNumber_); }

}  // namespace norvane::platform::core::io
