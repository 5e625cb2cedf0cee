#include "stores/file/OpenFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

// Far behind every byte that a file can have, and behind those that SQLite locks.
constexpr off_t kWriterByte = off_t{1} << 62;

// What is longer than a step of the clock by which the system notes changes of files.
constexpr std::int64_t kClockTick = 20'000'000;
constexpr int kMostRounds = 50;

struct Freeing {
    void operator()(char* text) const { std::free(text); }
};

struct stat statusOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) failSystem(path, Doing::reading, errno);
    return status;
}

struct Key {
    dev_t device;
    ino_t inode;
    auto operator<=>(const Key&) const = default;
};

// What this process has to do with one file.
struct Users {
    pid_t process = ::getpid();
    std::size_t count = 0;
    bool hasWriter = false;
    std::vector<int> parked;  // descriptors to be closed when nobody has the file open

    // One that can be used again, or -1.
    int unpark(bool isForWriting) {
        for (auto at = parked.begin(); at != parked.end(); ++at) {
            const int descriptor = *at;
            if (isForWriting && (::fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDWR) continue;
            parked.erase(at);
            return descriptor;
        }
        return -1;
    }
};

// The files by what they are, since one can have several names.
struct Registry {
    std::mutex mutex;
    std::map<Key, Users> users;
};

// Never gone: stores may be closed as late as when the program ends.
Registry& registry() {
    static auto* instance = new Registry;
    return *instance;
}

int setWriterLock(int descriptor, short type) {
    struct flock region {};
    region.l_type = type;
    region.l_whence = SEEK_SET;
    region.l_start = kWriterByte;
    region.l_len = 1;
    return ::fcntl(descriptor, F_OFD_SETLK, &region);
}

bool isWriterLocked(int descriptor) {
    struct flock region {};
    region.l_type = F_RDLCK;
    region.l_whence = SEEK_SET;
    region.l_start = kWriterByte;
    region.l_len = 1;
    return ::fcntl(descriptor, F_OFD_GETLK, &region) == 0 && region.l_type != F_UNLCK;
}

int openDescriptor(const std::string& path, bool isForWriting) {
    const int access = isForWriting ? O_RDWR : O_RDONLY;
    const int descriptor = ::open(path.c_str(), access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) failSystem(path, isForWriting ? Doing::writing : Doing::reading, errno);
    return descriptor;
}

[[noreturn]] void failInUse(const std::string& path, const char* where) {
    fail(Code::inUse, path, std::string("another writer has it open in ") + where);
}

}  // namespace

OpenFile::OpenFile(const std::string& path, Purpose purpose)
    : path_(path), purpose_(purpose), process_(::getpid()) {
    const std::lock_guard lock(registry().mutex);
    const struct stat before = statusOf(path_);
    if (!S_ISREG(before.st_mode)) fail(Code::notAStore, path_, "not a file");
    const auto found = registry().users.find({before.st_dev, before.st_ino});
    if (found != registry().users.end() && found->second.process != process_)
        fail(purpose == Purpose::write ? Code::inUse : Code::notReadable, path_,
             "the process that this one was forked from has it open");
    if (purpose == Purpose::write && found != registry().users.end() && found->second.hasWriter)
        failInUse(path_, "this process");

    if (found != registry().users.end()) descriptor_ = found->second.unpark(purpose == Purpose::write);
    if (descriptor_ < 0) descriptor_ = openDescriptor(path_, purpose == Purpose::write);
    // The name may lead to another file than a moment ago: what counts is the one that was opened.
    struct stat status {};
    ::fstat(descriptor_, &status);
    device_ = status.st_dev;
    inode_ = status.st_ino;
    Users& users = registry().users[{device_, inode_}];
    ++users.count;
    users.parked.reserve(users.parked.size() + users.count);
    if (purpose_ == Purpose::write) lockOut();
}

OpenFile::~OpenFile() {
    if (!isFromHere()) return;
    const std::lock_guard lock(registry().mutex);
    if (purpose_ == Purpose::write) {
        setWriterLock(descriptor_, F_UNLCK);
        registry().users[{device_, inode_}].hasWriter = false;
    }
    giveUp();
}

void OpenFile::lockOut() {
    Users& users = registry().users[{device_, inode_}];
    const int error = users.hasWriter ? EAGAIN : setWriterLock(descriptor_, F_WRLCK) == 0 ? 0 : errno;
    if (error == 0) {
        users.hasWriter = true;
        return;
    }
    giveUp();
    if (error == EAGAIN || error == EACCES) failInUse(path_, "another process");
    failSystem(path_, Doing::writing, error);
}

void OpenFile::giveUp() noexcept {
    const auto found = registry().users.find({device_, inode_});
    Users& users = found->second;
    users.parked.push_back(descriptor_);
    if (--users.count != 0) return;
    for (const int descriptor : users.parked) ::close(descriptor);
    registry().users.erase(found);
}

std::size_t OpenFile::readAt(std::uint64_t position, std::span<std::byte> buffer) const {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t got = ::pread(descriptor_, buffer.data() + done, buffer.size() - done,
                                    static_cast<off_t>(position + done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) failSystem(path_, Doing::reading, errno);
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::uint64_t OpenFile::size() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) failSystem(path_, Doing::reading, errno);
    return static_cast<std::uint64_t>(status.st_size);
}

std::uint64_t OpenFile::nextData(std::uint64_t position) const {
    const off_t found = ::lseek(descriptor_, static_cast<off_t>(position), SEEK_DATA);
    if (found >= 0) return static_cast<std::uint64_t>(found);
    return errno == ENXIO ? size() : position;
}

bool OpenFile::isFromHere() const noexcept { return ::getpid() == process_; }

OpenFile::Stamp OpenFile::stamp() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) failSystem(path_, Doing::reading, errno);
    return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec, static_cast<std::uint64_t>(status.st_size)};
}

OpenFile::Stamp OpenFile::settledStamp() const {
    for (int round = 0; round < kMostRounds; ++round) {
        const Stamp found = stamp();
        struct timespec now {};
        ::clock_gettime(CLOCK_REALTIME, &now);
        const std::int64_t age =
            (now.tv_sec - found.seconds) * 1'000'000'000 + now.tv_nsec - found.nanoseconds;
        if (age < 0 || age > kClockTick) return found;
        std::this_thread::sleep_for(std::chrono::nanoseconds(kClockTick));
    }
    fail(Code::notReadable, path_, "the file is being written");
}

bool OpenFile::isStillThere() const noexcept {
    struct stat status {};
    return ::stat(path_.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
}

// One's own lock does not stand in one's own way.
bool OpenFile::hasWriter() const { return purpose_ == Purpose::write || isWriterLocked(descriptor_); }

bool OpenFile::isSharedHere() const {
    const std::lock_guard lock(registry().mutex);
    return registry().users[{device_, inode_}].count > 1;
}

std::string resolved(const std::string& path, Doing doing) {
    const std::unique_ptr<char, Freeing> whole(::realpath(path.c_str(), nullptr));
    if (!whole) failSystem(path, doing, errno);
    return whole.get();
}

std::string resolvedInFolder(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    const bool isPlain = slash == std::string::npos;
    const std::string folder = resolved(isPlain ? "." : path.substr(0, slash + 1), Doing::writing);
    return folder + (folder.ends_with('/') ? "" : "/") + (isPlain ? path : path.substr(slash + 1));
}

}  // namespace norvane::platform::core::storage::datastore
