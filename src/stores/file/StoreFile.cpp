#include "norvane/platform/core/storage/datastore/StoreFile.h"

#include <optional>

#include "stores/file/Checker.h"
#include "stores/file/FileBackend.h"
#include "stores/file/LogFile.h"
#include "stores/file/Publish.h"
#include "stores/file/Salvage.h"
#include "stores/file/Session.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

// What a file is, or that it cannot be read.
bool isUnreadable(const StoreError& error) {
    return error.code() == Code::notFound || error.code() == Code::notReadable;
}

// Keeps others from writing the log back over what is being read without SQLite. A file that cannot be opened
// is not being written either.
std::unique_ptr<FileBackend> holdRevision(const std::string& path) {
    FileDataStore::Options options;
    options.access = FileDataStore::Access::readOnly;
    try {
        return FileBackend::open(path, options);
    } catch (const StoreError&) {
        return nullptr;
    }
}

// Each would be sound by itself; what they give together never was a revision.
void refuseForeignLog(const std::string& path) {
    if (stateOfLog(OpenFile(path, OpenFile::Purpose::read)) == LogState::ofAnotherFile)
        failDamaged(path, "the log beside it belongs to another file", IDataStore::BADOFF);
}

std::vector<StoreFile::Problem> problemOf(const StoreError& error, const char* code,
                                          const std::string& path) {
    if (error.code() == Code::inUse) fail(Code::notReadable, path, wordsOf(error, path));
    if (isUnreadable(error)) throw error;
    return {{code, error.offset(), wordsOf(error, path)}};
}

}  // namespace

std::vector<StoreFile::Problem> StoreFile::check(const std::string& path) {
    const std::string whole = resolved(path);
    std::optional<Session> session;
    try {
        session.emplace(whole, OpenFile::Purpose::read);
    } catch (const StoreError& error) {
        return problemOf(error, "identity", whole);
    }
    try {
        return session->reading([&] {
            session->connectToRead();
            return Checker(*session).run();
        });
    } catch (const StoreError& error) {
        return problemOf(error, "structure", whole);
    }
}

StoreFile::Summary StoreFile::visit(const std::string& path, Search search, const Visitor& visitor) {
    const std::string whole = resolved(path);
    const auto held = holdRevision(whole);
    std::optional<RawFile> file;
    try {
        file.emplace(whole);
    } catch (const StoreError& error) {
        if (isUnreadable(error)) throw;
        failDamaged(whole, wordsOf(error, whole), IDataStore::BADOFF);
    }
    if (!held) refuseForeignLog(whole);
    Salvage salvage(*file, search);
    salvage.visit(visitor);
    if (salvage.hasFoundNothing()) failDamaged(whole, "nothing of a store is left in it", IDataStore::BADOFF);
    return salvage.summary();
}

void StoreFile::publish(const std::string& draft, const std::string& path) {
    datastore::publish(draft, path);
}

}  // namespace norvane::platform::core::storage::datastore
