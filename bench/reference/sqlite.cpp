// SQLite as a store of records: a table of numbers and bytes, written as the store in a file writes its own.
#include <sqlite3.h>

#include <cstdio>
#include <memory>

#include "harness/Harness.h"

namespace {

using bench::Arguments;
using bench::Result;

class Database {
  public:
    Database(const std::string& path, int flags) {
        bench::require(sqlite3_open_v2(path.c_str(), &database_, flags, nullptr) == SQLITE_OK, "not opened");
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { sqlite3_close(database_); }

    void run(const char* statement) {
        bench::require(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK, statement);
    }
    sqlite3* get() const { return database_; }

  private:
    sqlite3* database_ = nullptr;
};

class Statement {
  public:
    Statement(const Database& database, const char* text) {
        bench::require(sqlite3_prepare_v2(database.get(), text, -1, &statement_, nullptr) == SQLITE_OK, text);
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement() { sqlite3_finalize(statement_); }

    void set(std::uint64_t number, const std::string& bytes) {
        sqlite3_bind_int64(statement_, 1, static_cast<sqlite3_int64>(number));
        sqlite3_bind_blob(statement_, 2, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC);
        bench::require(sqlite3_step(statement_) == SQLITE_DONE, "not written");
        sqlite3_reset(statement_);
    }
    double number(std::uint64_t number) {
        sqlite3_bind_int64(statement_, 1, static_cast<sqlite3_int64>(number));
        bench::require(sqlite3_step(statement_) == SQLITE_ROW, "not found");
        return sqlite3_column_double(statement_, 0);
    }

  private:
    sqlite3_stmt* statement_ = nullptr;
};

constexpr int kMake = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
constexpr const char* kPut = "insert or replace into record values (?, ?)";

std::string pathOf(const Arguments& arguments, const char* name) {
    return arguments.text("folder") + "/" + name + ".db";
}

void removeDatabase(const std::string& path) {
    for (const char* suffix : {"", "-wal", "-shm"}) std::remove((path + suffix).c_str());
}

void prepare(Database& database) {
    database.run("pragma journal_mode=wal; pragma synchronous=full");
    database.run("create table record (id integer primary key, data blob)");
}

void append(const Arguments& arguments, Result& result) {
    const std::string path = pathOf(arguments, "append");
    const std::uint64_t count = arguments.number("size", 100'000);
    removeDatabase(path);
    const std::string bytes(64, 'a');
    const double start = bench::cpuSeconds();
    {
        Database database(path, kMake);
        prepare(database);
        database.run("begin");
        Statement put(database, kPut);
        for (std::uint64_t i = 0; i < count; ++i) put.set(i, bytes);
        database.run("commit");
    }
    result.set("seconds", bench::cpuSeconds() - start);
    result.set("units", count);
    removeDatabase(path);
}

void commit(const Arguments& arguments, Result& result) {
    const std::string path = pathOf(arguments, "commit");
    const std::uint64_t times = arguments.number("times", 50);
    removeDatabase(path);
    {
        Database database(path, kMake);
        prepare(database);
        Statement put(database, kPut);
        std::string bytes(64, 'a');
        put.set(0, bytes);
        const double start = bench::wallSeconds();
        for (std::uint64_t i = 0; i < times; ++i) {
            bytes[0] = static_cast<char>('b' + i % 20);
            put.set(0, bytes);
        }
        result.set("seconds", bench::wallSeconds() - start);
        result.set("units", times);
    }
    removeDatabase(path);
}

std::string valuesOf(const Arguments& arguments) {
    const std::uint64_t count = arguments.number("size", 100'000);
    std::string path = pathOf(arguments, ("values-" + std::to_string(count)).c_str());
    removeDatabase(path);
    Database database(path, kMake);
    database.run("create table value (id integer primary key, data real)");
    database.run(("with recursive n(i) as (select 0 union all select i + 1 from n where i + 1 < " +
                  std::to_string(count) + ") insert into value select i, i * 0.5 from n")
                     .c_str());
    return path;
}

void makeValues(const Arguments& arguments, Result&) { valuesOf(arguments); }

// One value of many by its number, from a file that is there.
void open(const Arguments& arguments, Result& result) {
    const std::uint64_t count = arguments.number("size", 100'000);
    const std::string path = pathOf(arguments, ("values-" + std::to_string(count)).c_str());
    const std::uint64_t before = bench::residentBytes();
    const double start = bench::cpuSeconds();
    {
        const Database database(path, SQLITE_OPEN_READONLY);
        Statement get(database, "select data from value where id = ?");
        bench::require(get.number(count / 2) == static_cast<double>(count / 2) * 0.5,
                       "something else was read");
    }
    result.set("seconds", bench::cpuSeconds() - start);
    result.set("units", std::uint64_t{1});
    result.set("bytes", bench::peakBytes() - before);
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"append", append}, {"commit", commit}, {"make", makeValues}, {"open", open}});
}
