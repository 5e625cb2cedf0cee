// The log (write-ahead log) of an open store file.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "stores/file/Database.h"

namespace norvane::platform::core::storage::datastore {

// Where a log ended at some time.
class LogEnd {
  public:
    // Looked up while other writers are kept out.
    static LogEnd of(Database& database);

    // Takes away what a commit that has failed may have left behind this end: found by whoever opens the file
    // next, it could pass for committed. What was committed since stays. False if that fails too. Readers
    // never look behind the end.
    bool cutBack(Database& database) const noexcept;

  private:
    bool lookUp(Database& database) noexcept;

    std::uint32_t frameCount_ = 0;
    std::uint32_t pageSize_ = 0;
    std::array<std::byte, 8> salts_{};  // other ones when the log has begun anew
};

std::string logPathOf(const std::string& path);
std::uint64_t logSizeOf(const std::string& path);

// True if the name of the log still leads to the one that the connection writes.
bool isLogStillThere(Database& database);

// Writes the log back into the file and empties it. Answers what SQLite does, `SQLITE_BUSY` when a reader
// needs the log; commits are safe in any case.
int emptyLog(Database& database) noexcept;

// The processes that read an open file, as far as the system tells.
std::vector<pid_t> readersOf(const std::string& path);

}  // namespace norvane::platform::core::storage::datastore
