#include "support/FaultyVfs.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

namespace norvane::platform::test {
namespace {

using Fault = FaultyVfs::Fault;
using Kind = FaultyVfs::Event::Kind;

constexpr std::size_t kSector = 512;

FaultyVfs* instance = nullptr;
sqlite3_vfs* below = nullptr;

// A file of the system's own, behind what notes and fails. The file below lies behind it in memory.
struct File {
    sqlite3_file base;
    std::string* tracedName;  // null for files that nobody looks at after a power cut
    sqlite3_file* below;
};

File* of(sqlite3_file* file) { return reinterpret_cast<File*>(file); }
sqlite3_file* under(sqlite3_file* file) { return of(file)->below; }

int errorOf(Fault fault) {
    switch (fault) {
        case Fault::noSpace:
            return ENOSPC;
        case Fault::interrupted:
            return EINTR;
        default:
            return EIO;
    }
}

// True if this call is to fail; `answer` is what it then answers.
bool fails(int usual, int& answer, bool isWrite = false, Fault* which = nullptr) {
    Fault fault{};
    if (!instance->isFailing(isWrite, fault)) return false;
    if (which) *which = fault;
    instance->lastError = errorOf(fault);
    answer = isWrite && fault == Fault::noSpace ? SQLITE_FULL : usual;
    return true;
}

void note(sqlite3_file* file, Kind kind, sqlite3_int64 position, std::string bytes = {}) {
    if (of(file)->tracedName)
        instance->note({kind, *of(file)->tracedName, static_cast<std::uint64_t>(position), std::move(bytes)});
}

int closeFile(sqlite3_file* file) {
    const int answer = under(file)->pMethods ? under(file)->pMethods->xClose(under(file)) : SQLITE_OK;
    delete std::exchange(of(file)->tracedName, nullptr);
    return answer;
}

int readFile(sqlite3_file* file, void* to, int size, sqlite3_int64 position) {
    if (int answer = 0; fails(SQLITE_IOERR_READ, answer)) return answer;
    return under(file)->pMethods->xRead(under(file), to, size, position);
}

int writeFile(sqlite3_file* file, const void* from, int size, sqlite3_int64 position) {
    Fault fault{};
    int failed = SQLITE_OK;
    if (fails(SQLITE_IOERR_WRITE, failed, true, &fault) && fault != Fault::shortWrite) return failed;
    const int done = failed == SQLITE_OK ? size : size / 2;
    const int answer = under(file)->pMethods->xWrite(under(file), from, done, position);
    if (answer == SQLITE_OK)
        note(file, Kind::write, position, {static_cast<const char*>(from), static_cast<std::size_t>(done)});
    return failed != SQLITE_OK ? failed : answer;
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    if (int answer = 0; fails(SQLITE_IOERR_TRUNCATE, answer)) return answer;
    note(file, Kind::truncate, size);
    return under(file)->pMethods->xTruncate(under(file), size);
}

// The disk below is not waited for: what a sync is good for shows where the power is cut, and that is only
// played.
int syncFile(sqlite3_file* file, int) {
    if (int answer = 0; fails(SQLITE_IOERR_FSYNC, answer)) return answer;
    note(file, Kind::sync, 0);
    return SQLITE_OK;
}

int sizeOfFile(sqlite3_file* file, sqlite3_int64* size) {
    if (int answer = 0; fails(SQLITE_IOERR_FSTAT, answer)) return answer;
    return under(file)->pMethods->xFileSize(under(file), size);
}

int lockFile(sqlite3_file* file, int level) {
    if (int answer = 0; fails(SQLITE_IOERR_LOCK, answer)) return answer;
    return under(file)->pMethods->xLock(under(file), level);
}

int unlockFile(sqlite3_file* file, int level) { return under(file)->pMethods->xUnlock(under(file), level); }

int checkReserved(sqlite3_file* file, int* isReserved) {
    return under(file)->pMethods->xCheckReservedLock(under(file), isReserved);
}

int controlFile(sqlite3_file* file, int which, void* argument) {
    return under(file)->pMethods->xFileControl(under(file), which, argument);
}

int sectorSize(sqlite3_file* file) { return under(file)->pMethods->xSectorSize(under(file)); }

int characteristics(sqlite3_file* file) { return under(file)->pMethods->xDeviceCharacteristics(under(file)); }

int mapShared(sqlite3_file* file, int region, int size, int extend, void volatile** memory) {
    if (int answer = 0; fails(SQLITE_IOERR_SHMMAP, answer)) return answer;
    return under(file)->pMethods->xShmMap(under(file), region, size, extend, memory);
}

int lockShared(sqlite3_file* file, int first, int count, int flags) {
    // Unlocking has no way to fail.
    if (int answer = 0; (flags & SQLITE_SHM_LOCK) != 0 && fails(SQLITE_IOERR_SHMLOCK, answer)) return answer;
    return under(file)->pMethods->xShmLock(under(file), first, count, flags);
}

void barrier(sqlite3_file* file) { under(file)->pMethods->xShmBarrier(under(file)); }

int unmapShared(sqlite3_file* file, int remove) {
    return under(file)->pMethods->xShmUnmap(under(file), remove);
}

const sqlite3_io_methods methods = {2,           closeFile,   readFile,        writeFile,  truncateFile,
                                    syncFile,    sizeOfFile,  lockFile,        unlockFile, checkReserved,
                                    controlFile, sectorSize,  characteristics, mapShared,  lockShared,
                                    barrier,     unmapShared, nullptr,         nullptr};

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* flagsOut) {
    file->pMethods = nullptr;
    if (int answer = 0; fails(SQLITE_CANTOPEN, answer)) return answer;
    File* made = new (file) File{{&methods}, nullptr, reinterpret_cast<sqlite3_file*>(of(file) + 1)};
    const int answer = below->xOpen(below, name, made->below, flags, flagsOut);
    if (answer != SQLITE_OK) {
        file->pMethods = nullptr;
    } else if (name && (flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_WAL)) != 0) {
        made->tracedName = new std::string(name);
    }
    return answer;
}

int removeFile(sqlite3_vfs*, const char* name, int syncFolder) {
    if (int answer = 0; fails(SQLITE_IOERR_DELETE, answer)) return answer;
    instance->note({Kind::remove, name, 0, {}});
    return below->xDelete(below, name, syncFolder);
}

int accessFile(sqlite3_vfs*, const char* name, int flags, int* result) {
    if (int answer = 0; fails(SQLITE_IOERR_ACCESS, answer)) return answer;
    return below->xAccess(below, name, flags, result);
}

int fullPath(sqlite3_vfs*, const char* name, int size, char* out) {
    return below->xFullPathname(below, name, size, out);
}
int randomness(sqlite3_vfs*, int size, char* out) { return below->xRandomness(below, size, out); }
int sleepFor(sqlite3_vfs*, int microseconds) { return below->xSleep(below, microseconds); }
int currentTime(sqlite3_vfs*, double* time) { return below->xCurrentTime(below, time); }
int currentTime64(sqlite3_vfs*, sqlite3_int64* time) { return below->xCurrentTimeInt64(below, time); }

int takeError(sqlite3_vfs*, int size, char* out) {
    if (const int error = std::exchange(instance->lastError, 0)) return error;
    return below->xGetLastError(below, size, out);
}

}  // namespace

FaultyVfs& FaultyVfs::install() {
    if (instance) return *instance;
    instance = new FaultyVfs;
    below = sqlite3_vfs_find(nullptr);
    static sqlite3_vfs shim{};
    shim.iVersion = 2;
    shim.szOsFile = static_cast<int>(sizeof(File)) + below->szOsFile;
    shim.mxPathname = below->mxPathname;
    shim.zName = "faulty";
    shim.xOpen = openFile;
    shim.xDelete = removeFile;
    shim.xAccess = accessFile;
    shim.xFullPathname = fullPath;
    shim.xRandomness = randomness;
    shim.xSleep = sleepFor;
    shim.xCurrentTime = currentTime;
    shim.xGetLastError = takeError;
    shim.xCurrentTimeInt64 = currentTime64;
    sqlite3_vfs_register(&shim, 1);
    return *instance;
}

void FaultyVfs::failAt(std::uint64_t call, Fault fault, bool forGood) {
    calls_ = 0;
    failAt_ = call;
    fault_ = fault;
    forGood_ = forGood;
    hasFailed_ = false;
}

bool FaultyVfs::heal() {
    failAt_ = 0;
    return hasFailed_;
}

bool FaultyVfs::isFailing(bool isWrite, Fault& fault) {
    ++calls_;
    if (failAt_ == 0 || calls_ < failAt_ || (calls_ > failAt_ && !forGood_)) return false;
    hasFailed_ = true;
    fault = fault_ == Fault::shortWrite && !isWrite ? Fault::inputOutput : fault_;
    return true;
}

void FaultyVfs::startTrace() {
    trace_.clear();
    isTracing_ = true;
}

std::vector<FaultyVfs::Event> FaultyVfs::stopTrace() {
    isTracing_ = false;
    return std::exchange(trace_, {});
}

void FaultyVfs::mark(std::uint64_t number) { note({Event::Kind::mark, {}, number, {}}); }

void FaultyVfs::note(Event event) {
    if (isTracing_) trace_.push_back(std::move(event));
}

DiskAfterCut::DiskAfterCut(std::map<std::string, std::string> content) {
    for (auto& [name, bytes] : content) files_[name].durable = std::move(bytes);
}

void DiskAfterCut::redo(std::optional<std::string>& content, const FaultyVfs::Event& event) {
    if (event.kind == Kind::remove) {
        content.reset();
        return;
    }
    if (!content) content.emplace();
    if (event.kind == Kind::truncate) {
        content->resize(std::min<std::size_t>(content->size(), event.position));
    } else if (event.kind == Kind::write) {
        content->resize(std::max<std::size_t>(content->size(), event.position + event.bytes.size()));
        content->replace(event.position, event.bytes.size(), event.bytes);
    }
}

void DiskAfterCut::apply(const FaultyVfs::Event& event) {
    if (event.kind == Kind::mark) return;
    File& file = files_[event.file];
    if (event.kind != Kind::sync) {
        file.pending.push_back(event);
        return;
    }
    for (const auto& pending : file.pending) redo(file.durable, pending);
    file.pending.clear();
    if (!file.durable) file.durable.emplace();
}

// What was not synced comes sector by sector: whole, not at all, or its first bytes only.
std::optional<std::string> DiskAfterCut::cut(const File& file, std::mt19937& random) {
    std::optional<std::string> content = file.durable;
    // Some cuts lose nearly everything and some nearly nothing.
    const unsigned kept = std::array<unsigned, 4>{0, 50, 90, 100}[random() % 4];
    for (const auto& event : file.pending) {
        if (event.kind != Kind::write) {
            if (random() % 100 < kept) redo(content, event);
            continue;
        }
        for (std::size_t at = 0; at < event.bytes.size();) {
            const std::size_t position = event.position + at;
            const std::size_t size = std::min(kSector - position % kSector, event.bytes.size() - at);
            const std::size_t torn = random() % 100 < 3 ? random() % size : size;
            if (random() % 100 < kept)
                redo(content, {Kind::write, {}, position, event.bytes.substr(at, torn)});
            at += size;
        }
    }
    return content;
}

std::map<std::string, std::string> DiskAfterCut::cut(std::mt19937& random) const {
    std::map<std::string, std::string> left;
    for (const auto& [name, file] : files_)
        if (auto content = cut(file, random)) left.emplace(name, std::move(*content));
    return left;
}

}  // namespace norvane::platform::test
