#include "stores/file/Failure.h"

#include <sqlite3.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

constexpr int primary(int answer) { return answer & 0xFF; }

bool isFull(int error) { return error == ENOSPC || error == EDQUOT; }

Code ofInputOutput(int answer, Doing doing, int error) {
    switch (answer) {
        case SQLITE_IOERR_SHMSIZE:
            return Code::diskFull;  // It is written so that it has room later on.
        case SQLITE_IOERR_SHORT_READ:
            return Code::damaged;
        case SQLITE_IOERR_READ:
            return Code::notReadable;
        default:
            break;
    }
    if (isFull(error)) return Code::diskFull;
    return doing == Doing::reading ? Code::notReadable : Code::notWritable;
}

Code ofSystem(Doing doing, int error) {
    if (isFull(error)) return Code::diskFull;
    if (error == EEXIST) return Code::exists;
    // A folder that is not there is no place to write in.
    if (doing == Doing::reading && (error == ENOENT || error == ENOTDIR)) return Code::notFound;
    return doing == Doing::reading ? Code::notReadable : Code::notWritable;
}

}  // namespace

StoreError::Code codeOf(int answer, Doing doing, int error) {
    switch (primary(answer)) {
        case SQLITE_FULL:
            return Code::diskFull;
        case SQLITE_IOERR:
            return ofInputOutput(answer, doing, error);
        case SQLITE_BUSY:
            return answer == SQLITE_BUSY_SNAPSHOT ? Code::fenced : Code::inUse;
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL:
            return Code::inUse;
        case SQLITE_CANTOPEN:
            if (isFull(error)) return Code::diskFull;
            [[fallthrough]];
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_NOLFS:
            return doing == Doing::reading ? Code::notReadable : Code::notWritable;
        default:
            return Code::damaged;  // What was asked is always the same: the file does not fit it.
    }
}

void fail(StoreError::Code code, const std::string& path, const std::string& words) {
    throw StoreError(code, path + ": " + words, IDataStore::BADOFF);
}

void failDamaged(const std::string& path, const std::string& words, std::uint32_t offset) {
    throw StoreError(Code::damaged, path + ": " + words, offset);
}

void failSystem(const std::string& path, Doing doing, int error) {
    if (error == ENOMEM) throw std::bad_alloc();
    fail(ofSystem(doing, error), path, std::generic_category().message(error));
}

void failSqlite(const std::string& path, Doing doing, int answer, sqlite3* db) {
    if (primary(answer) == SQLITE_NOMEM || answer == SQLITE_IOERR_NOMEM) throw std::bad_alloc();
    const int error = db ? sqlite3_system_errno(db) : 0;
    std::string words = db ? sqlite3_errmsg(db) : sqlite3_errstr(answer);
    if (primary(answer) == SQLITE_IOERR && error != 0)
        words += " (" + std::generic_category().message(error) + ")";
    fail(codeOf(answer, doing, error), path, words);
}

}  // namespace norvane::platform::core::storage::datastore
