#include "stores/file/Session.h"

#include <unistd.h>

#include <new>

#include "stores/file/Log.h"
#include "stores/file/LogFile.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

}  // namespace

Session::Session(const std::string& path, OpenFile::Purpose purpose) : file_(path, purpose) {
    checkIdentity(file_);
}

void Session::checkLog() const {
    switch (stateOfLog(file_)) {
        case LogState::damaged:
            failDamaged(path(), "the log is damaged, and commits stand behind that", IDataStore::BADOFF);
        case LogState::ofAnotherFile:
            failDamaged(path(), "the log beside it belongs to another file", IDataStore::BADOFF);
        case LogState::sound:
            return;
    }
}

// As long as there is a writer, the log goes through its hands. One that comes while the log is looked at
// makes it look strange.
void Session::connectToRead() {
    if (!file_.hasWriter() && stateOfLog(file_) != LogState::sound && !file_.hasWriter()) checkLog();
    unlockedSince_.reset();
    if (leavesFilesOfItsOwn()) return connectUnlocked();
    try {
        connection_.emplace(path(), Database::Mode::read);
    } catch (const StoreError& error) {
        // Where there is no place for the files that connections share, as in a folder that cannot be written
        // and on a full disk.
        const Code code = error.code();
        const bool isForWantOfPlace =
            code == Code::notReadable || code == Code::notWritable || code == Code::diskFull;
        if (!isForWantOfPlace || logSizeOf(path()) != 0) throw;
        connectUnlocked();
    }
}

// The files that connections share belong to whoever makes them. Made by somebody who may not write the
// store, they would keep out those who may.
bool Session::leavesFilesOfItsOwn() const {
    return ::access(path().c_str(), W_OK) != 0 && !file_.hasWriter() && logSizeOf(path()) == 0 &&
           ::access((path() + "-shm").c_str(), F_OK) != 0;
}

void Session::connectUnlocked() {
    unlockedSince_ = file_.settledStamp();
    connection_.emplace(path(), Database::Mode::readUnlocked);
}

// A commit goes into the log, which such a connection does not see. When the log is written back, the file
// changes under it, and what it reads from then on is of several revisions.
void Session::requireUnchanged() const {
    if (unlockedSince_ && file_.stamp() != *unlockedSince_)
        fail(StoreError::Code::notReadable, path(), "the revision that was read is gone");
}

// What a process has left in the log that was killed in the midst of a commit goes, lest it be found behind
// the commits to come.
void Session::connectToWrite() {
    checkLog();
    connection_.emplace(path(), Database::Mode::write);
    if (isLogEmpty()) return;
    Connection& opened = *connection_;
    opened.beginWriting();
    const LogEnd end = LogEnd::of(opened.database());
    const bool isCut = end.cutBack(opened.database());
    opened.rollBack();
    if (!isCut)
        fail(StoreError::Code::notWritable, path(), "what a killed writer has left cannot be taken away");
}

void Session::disconnect() noexcept {
    if (!connection_) return;
    // The files beside a name that leads elsewhere by now are not this one's to remove.
    if (!isLogEmpty() || !file_.isStillThere()) return abandon();
    connection_->endReading();
    connection_.reset();
}

void Session::abandon() noexcept {
    if (!connection_) return;
    connection_->endReading();
    connection_->database().keepLog();
    connection_.reset();
}

void Session::finish() noexcept {
    if (!connection_) return;
    if (!file_.isStillThere()) return abandon();
    connection_->endReading();
    emptyLog(connection_->database());
    connection_.reset();
}

bool Session::isLogEmpty() const noexcept {
    try {
        return logSizeOf(path()) == 0;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace norvane::platform::core::storage::datastore
