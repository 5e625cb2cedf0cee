// A store file as it is open: known in this process, and connected or not.
#pragma once

#include <optional>
#include <string>

#include "stores/file/Connection.h"
#include "stores/file/OpenFile.h"

namespace norvane::platform::core::storage::datastore {

class Session {
  public:
    // Opens the file and looks at what it is, without SQLite. Throws as `OpenFile` and `checkIdentity` do.
    Session(const std::string& path, OpenFile::Purpose purpose);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { disconnect(); }

    const std::string& path() const { return file_.path(); }
    const OpenFile& file() const { return file_; }

    bool isConnected() const { return connection_.has_value(); }
    Connection& connection() { return *connection_; }
    void connectToRead();
    // False without a connection, and for one that goes on seeing what it has found.
    bool seesLog() const { return connection_ && connection_->seesLog(); }
    // Runs a step that reads. On a connection that keeps nobody from writing it throws `notReadable` if
    // somebody has done so since the connection was made; what the step has found is not to be used then.
    template <class Step>
    auto reading(Step step) {
        try {
            auto found = step();
            requireUnchanged();
            return found;
        } catch (const StoreError&) {
            requireUnchanged();
            throw;
        }
    }
    void connectToWrite();

    // Leaves a log as it is: what stands in it goes into the file when somebody writes, not when somebody has
    // read. An empty one goes with the connection.
    void disconnect() noexcept;
    // The same, and the log stays in any case.
    void abandon() noexcept;
    // Writes the log back if nobody needs it.
    void finish() noexcept;

  private:
    void checkLog() const;
    void requireUnchanged() const;
    bool isLogEmpty() const noexcept;
    bool leavesFilesOfItsOwn() const;
    void connectUnlocked();

    // The file stays known here until SQLite has closed it.
    OpenFile file_;
    std::optional<OpenFile::Stamp> unlockedSince_;  // as the file was when it was opened without locks
    std::optional<Connection> connection_;
};

}  // namespace norvane::platform::core::storage::datastore
