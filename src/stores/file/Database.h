// A connection to SQLite and its statements, as objects. What SQLite refuses is thrown as `StoreError`.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "stores/file/Failure.h"

namespace norvane::platform::core::storage::datastore {

class Database {
  public:
    enum class Mode : std::uint8_t {
        write,
        read,          // sees the log too, and takes part in the locking
        readUnlocked,  // for a file without a log; others are not kept from writing it
        create,        // for an empty file that nobody else knows of yet
    };

    // Opens what is there already. `name` is what failures call the file, if not by its path.
    Database(const std::string& path, Mode mode, const std::string& name = {});
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    // Writes the log back if it is the last connection, unless `keepLog` was called.
    ~Database();

    sqlite3* handle() const { return db_; }
    const std::string& path() const { return path_; }

    void run(const char* sql, Doing doing);
    // Answers what SQLite answers.
    int tryRun(const char* sql) noexcept;
    // Leaves the log as it is when the connection closes.
    void keepLog() noexcept;
    // How long to wait for a lock that others hold for a short time only.
    void waitFor(int milliseconds) noexcept { sqlite3_busy_timeout(db_, milliseconds); }
    static constexpr int kShortWait = 2000;
    // Keeps many pages in memory instead of some. Memory that is taken for the first time costs more than to
    // read a page again, so whoever looks only at a few records is better off without.
    void useMuchMemory() noexcept;

    [[noreturn]] void fail(int answer, Doing doing) const { failSqlite(name_, doing, answer, db_); }

  private:
    void setUp(Doing doing);

    std::string path_;
    std::string name_;
    sqlite3* db_ = nullptr;
    bool usesMuchMemory_ = false;
};

// A statement, which is prepared when it is used for the first time: few of them are in one session.
// Positions of parameters and columns are from 1 and from 0, as SQLite counts.
class Statement {
  public:
    // The text is borrowed.
    Statement(Database& database, const char* sql, Doing doing)
        : database_(database), sql_(sql), doing_(doing) {}
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement() { sqlite3_finalize(statement_); }

    Statement& bind(int position, std::int64_t number);
    // The bytes stay where they are until the statement has run.
    Statement& bind(int position, std::span<const std::byte> bytes);
    // True if there is a row.
    bool step();
    // Runs a statement that has no rows, and makes it ready for the next time.
    void run();
    void reset() noexcept { sqlite3_reset(statement_); }

    int type(int column) const { return sqlite3_column_type(statement_, column); }
    std::int64_t number(int column) const { return sqlite3_column_int64(statement_, column); }
    // Good until the next step or reset.
    std::span<const std::byte> bytes(int column) const;
    std::string text(int column) const;

  private:
    sqlite3_stmt* prepared();
    void check(int answer) const;

    Database& database_;
    const char* const sql_;
    sqlite3_stmt* statement_ = nullptr;
    Doing doing_;
};

// Makes a statement ready for the next time when its rows are no more needed.
class Rows {
  public:
    explicit Rows(Statement& statement) : statement_(statement) {}
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    ~Rows() { statement_.reset(); }

  private:
    Statement& statement_;
};

}  // namespace norvane::platform::core::storage::datastore
