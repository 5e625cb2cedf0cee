#include "stores/file/Session.h"

#include <new>

#include "stores/file/Log.h"

namespace norvane::platform::core::storage::datastore {

Session::Session(const std::string& path, OpenFile::Purpose purpose) : file_(path, purpose) {
    checkIdentity(file_);
}

void Session::connectToRead() {
    try {
        connection_.emplace(path(), Database::Mode::read);
    } catch (const StoreError& error) {
        // In a folder that cannot be written there is no place for the files that connections share.
        if (error.code() != StoreError::Code::notReadable || logSizeOf(path()) != 0) throw;
        connection_.emplace(path(), Database::Mode::readUnlocked);
    }
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
