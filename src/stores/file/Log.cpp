#include "stores/file/Log.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>

namespace norvane::platform::core::storage::datastore {
namespace {

// The head of the log's index, which connections share, and of the log itself.
constexpr int kIndexRegion = 32 << 10;
constexpr std::size_t kFrameCountAt = 16;
constexpr std::size_t kSaltsInIndexAt = 32;
constexpr std::size_t kSaltsInLogAt = 16;
constexpr int kLogHeader = 32;
constexpr int kFrameHeader = 24;

// The bytes of the index at which readers hold locks, by the marks that they read at.
constexpr std::uint64_t kFirstReaderLock = 123;
constexpr std::uint64_t kLastReaderLock = 127;

sqlite3_file* fileOf(Database& database, int which) {
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(database.handle(), "main", which, &file) != SQLITE_OK) return nullptr;
    return file && file->pMethods ? file : nullptr;
}

bool cutTo(sqlite3_file* log, sqlite3_int64 size) {
    sqlite3_int64 now = 0;
    if (log->pMethods->xFileSize(log, &now) != SQLITE_OK) return false;
    return now <= size || log->pMethods->xTruncate(log, size) == SQLITE_OK;
}

std::uint32_t pageSizeOf(Database& database) {
    Statement size(database, "PRAGMA page_size", Doing::reading);
    return size.step() ? static_cast<std::uint32_t>(size.number(0)) : 0;
}

// A line of the system's list of locks.
struct LockLine {
    long process = 0;
    unsigned major = 0;
    unsigned minor = 0;
    unsigned long inode = 0;
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

bool parse(const std::string& line, LockLine& lock) {
    unsigned long long first = 0;
    char last[32] = "";
    const int count = std::sscanf(line.c_str(), "%*s %*s %*s READ %ld %x:%x:%lu %llu %31s", &lock.process,
                                  &lock.major, &lock.minor, &lock.inode, &first, last);
    lock.first = first;
    lock.last = std::strcmp(last, "EOF") == 0 ? ~0ull : std::strtoull(last, nullptr, 10);
    return count == 6;
}

bool isReader(const LockLine& lock, const struct stat& index) {
    return lock.process > 0 && lock.inode == index.st_ino && lock.major == major(index.st_dev) &&
           lock.minor == minor(index.st_dev) && lock.first <= kLastReaderLock &&
           lock.last >= kFirstReaderLock;
}

}  // namespace

LogEnd LogEnd::of(Database& database) {
    LogEnd end;
    end.pageSize_ = pageSizeOf(database);
    if (!end.lookUp(database)) database.fail(SQLITE_CANTOPEN, Doing::writing);
    return end;
}

// What the index that connections share says.
bool LogEnd::lookUp(Database& database) noexcept {
    sqlite3_file* file = fileOf(database, SQLITE_FCNTL_FILE_POINTER);
    void volatile* index = nullptr;
    const int answer = file && file->pMethods->iVersion >= 2
                           ? file->pMethods->xShmMap(file, 0, kIndexRegion, 0, &index)
                           : SQLITE_CANTOPEN;
    if (answer != SQLITE_OK || !index) return false;
    const auto* bytes = static_cast<const std::byte*>(const_cast<void*>(index));
    std::memcpy(&frameCount_, bytes + kFrameCountAt, sizeof frameCount_);
    std::memcpy(salts_.data(), bytes + kSaltsInIndexAt, salts_.size());
    return true;
}

bool LogEnd::cutBack(Database& database) const noexcept {
    sqlite3_file* log = fileOf(database, SQLITE_FCNTL_JOURNAL_POINTER);
    if (!log) return true;  // It was never opened.
    std::array<std::byte, 8> salts{};
    const int answer = log->pMethods->xRead(log, salts.data(), static_cast<int>(salts.size()), kSaltsInLogAt);
    if (answer == SQLITE_IOERR_SHORT_READ) return cutTo(log, 0);
    if (answer != SQLITE_OK) return false;
    LogEnd now = *this;
    if (!now.lookUp(database)) return false;
    // A log that has begun anew was written back whole before.
    std::uint32_t count = salts == salts_ ? frameCount_ : 0;
    if (salts == now.salts_) count = std::max(count, now.frameCount_);
    const auto frameSize = static_cast<sqlite3_int64>(pageSize_) + kFrameHeader;
    return cutTo(log, count == 0 ? 0 : kLogHeader + count * frameSize);
}

std::string logPathOf(const std::string& path) { return path + "-wal"; }

std::uint64_t logSizeOf(const std::string& path) {
    struct stat status {};
    return ::stat(logPathOf(path).c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool isLogStillThere(Database& database) {
    sqlite3_file* log = fileOf(database, SQLITE_FCNTL_JOURNAL_POINTER);
    struct stat status {};
    sqlite3_int64 size = 0;
    return log && ::stat(logPathOf(database.path()).c_str(), &status) == 0 &&
           log->pMethods->xFileSize(log, &size) == SQLITE_OK && size == status.st_size;
}

int emptyLog(Database& database) noexcept {
    database.waitFor(0);
    const int answer =
        sqlite3_wal_checkpoint_v2(database.handle(), "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    database.waitFor(Database::kShortWait);
    return answer;
}

std::vector<pid_t> readersOf(const std::string& path) {
    struct stat index {};
    std::vector<pid_t> found;
    if (::stat((path + "-shm").c_str(), &index) != 0) return found;
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);)
        if (LockLine lock; parse(line, lock) && isReader(lock, index))
            found.push_back(static_cast<pid_t>(lock.process));
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

}  // namespace norvane::platform::core::storage::datastore
