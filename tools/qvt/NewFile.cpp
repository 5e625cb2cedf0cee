#include "NewFile.h"

#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "norvane/platform/core/storage/datastore/StoreFile.h"

namespace qvt {

namespace {

bool isThere(const std::string& path) {
    std::error_code unknown;
    return std::filesystem::exists(path, unknown);
}

constexpr const char* kSuffixes[] = {"", "-wal", "-shm"};
constexpr int kInterruptions[] = {SIGINT, SIGTERM, SIGHUP};

// The names of the files that go when the run is interrupted; an empty one ends them. Set while no handler
// is.
char unfinished[std::size(kSuffixes)][PATH_MAX];

void removeAndEnd(int signal) {
    for (const char* file : unfinished) ::unlink(file);
    std::signal(signal, SIG_DFL);
    ::raise(signal);
}

void removeWhenInterrupted(const std::string& file) {
    for (std::size_t i = 0; i < std::size(kSuffixes); ++i) {
        const std::string name = file + kSuffixes[i];
        if (name.size() >= PATH_MAX) return;
        std::memcpy(unfinished[i], name.c_str(), name.size() + 1);
    }
    // One that is ignored, as under nohup, stays so.
    for (const int each : kInterruptions)
        if (std::signal(each, removeAndEnd) == SIG_IGN) std::signal(each, SIG_IGN);
}

void leaveWhenInterrupted() {
    for (const int each : kInterruptions)
        if (std::signal(each, SIG_DFL) == SIG_IGN) std::signal(each, SIG_IGN);
}

std::string unusedBeside(const std::string& path) {
    std::string name = path + "." + std::to_string(::getpid()) + ".new";
    while (isThere(name)) name += "0";
    return name;
}

}  // namespace

NewFile::NewFile(const std::string& path)
    : path_(path), isNew_(!isThere(path)), file_(isNew_ ? unusedBeside(path) : path) {
    if (isNew_) removeWhenInterrupted(file_);
}

NewFile::~NewFile() {
    if (!isNew_) return;
    for (const char* suffix : kSuffixes) std::remove((file_ + suffix).c_str());
    leaveWhenInterrupted();
}

void NewFile::take() const {
    if (isNew_) core::storage::datastore::StoreFile::publish(file_, path_);
}

}  // namespace qvt
