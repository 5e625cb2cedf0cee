#include "stores/file/Database.h"

#include <new>
#include <utility>

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr int kLongestValue = (512 << 20) + (1 << 20);

// The name of a file as a URI, in which some characters would mean something.
std::string asUri(const std::string& path) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char c : path) {
        if (c != '%' && c != '?' && c != '#') {
            uri += c;
            continue;
        }
        uri += '%';
        uri += kDigits[static_cast<unsigned char>(c) >> 4];
        uri += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return uri + "?immutable=1";
}

int openBy(const std::string& path, Database::Mode mode, sqlite3** db) {
    constexpr int kAlways = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_EXRESCODE;
    if (mode == Database::Mode::readUnlocked)
        return sqlite3_open_v2(asUri(path).c_str(), db, kAlways | SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
                               nullptr);
    return sqlite3_open_v2(path.c_str(), db, kAlways | SQLITE_OPEN_READWRITE, nullptr);
}

}  // namespace

Database::Database(const std::string& path, Mode mode, const std::string& name)
    : path_(path), name_(name.empty() ? path : name) {
    const bool isForWriting = mode == Mode::write || mode == Mode::create;
    const Doing doing = isForWriting ? Doing::writing : Doing::reading;
    if (const int answer = openBy(path, mode, &db_); answer != SQLITE_OK) {
        const std::pair<int, int> kept{answer, db_ ? sqlite3_system_errno(db_) : 0};
        sqlite3_close(std::exchange(db_, nullptr));
        if (kept.second != 0 && kept.first != SQLITE_NOMEM) failSystem(name_, doing, kept.second);
        failSqlite(name_, doing, kept.first, nullptr);
    }
    try {
        setUp(doing);
    } catch (...) {
        sqlite3_close(std::exchange(db_, nullptr));
        throw;
    }
}

Database::~Database() { sqlite3_close(db_); }

// The file may come from anywhere: nothing in it is to be run, nothing in it taken for true unseen.
void Database::setUp(Doing doing) {
    for (const int off :
         {SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
          SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, SQLITE_DBCONFIG_DQS_DDL, SQLITE_DBCONFIG_DQS_DML})
        sqlite3_db_config(db_, off, 0, nullptr);
    sqlite3_db_config(db_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_limit(db_, SQLITE_LIMIT_LENGTH, kLongestValue);
    sqlite3_limit(db_, SQLITE_LIMIT_SQL_LENGTH, 10000);
    sqlite3_limit(db_, SQLITE_LIMIT_COLUMN, 50);
    sqlite3_limit(db_, SQLITE_LIMIT_EXPR_DEPTH, 20);
    sqlite3_limit(db_, SQLITE_LIMIT_TRIGGER_DEPTH, 1);
    waitFor(kShortWait);
    run("PRAGMA cache_size=-200; PRAGMA cell_size_check=ON; PRAGMA mmap_size=0; PRAGMA synchronous=FULL",
        doing);
    sqlite3_wal_autocheckpoint(db_, 0);
    run(doing == Doing::reading ? "PRAGMA query_only=ON"
                                : "PRAGMA temp_store=MEMORY; PRAGMA secure_delete=ON",
        doing);
}

// Should that fail, it keeps to what it has.
void Database::useMuchMemory() noexcept {
    if (!usesMuchMemory_) tryRun("PRAGMA cache_size=-6000");
    usesMuchMemory_ = true;
}

void Database::run(const char* sql, Doing doing) {
    if (const int answer = tryRun(sql); answer != SQLITE_OK) fail(answer, doing);
}

int Database::tryRun(const char* sql) noexcept { return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr); }

void Database::keepLog() noexcept { sqlite3_db_config(db_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr); }

sqlite3_stmt* Statement::prepared() {
    if (!statement_)
        check(sqlite3_prepare_v3(database_.handle(), sql_, -1, SQLITE_PREPARE_PERSISTENT, &statement_,
                                 nullptr));
    return statement_;
}

void Statement::check(int answer) const {
    if (answer != SQLITE_OK) database_.fail(answer, doing_);
}

Statement& Statement::bind(int position, std::int64_t number) {
    check(sqlite3_bind_int64(prepared(), position, number));
    return *this;
}

Statement& Statement::bind(int position, std::span<const std::byte> bytes) {
    // Null would be no bytes at all instead of none.
    const void* from = bytes.empty() ? static_cast<const void*>("") : bytes.data();
    check(sqlite3_bind_blob64(prepared(), position, from, bytes.size(), SQLITE_STATIC));
    return *this;
}

bool Statement::step() {
    const int answer = sqlite3_step(prepared());
    if (answer != SQLITE_ROW && answer != SQLITE_DONE) database_.fail(answer, doing_);
    return answer == SQLITE_ROW;
}

void Statement::run() {
    const Rows atEnd(*this);
    step();
}

std::span<const std::byte> Statement::bytes(int column) const {
    const void* bytes = sqlite3_column_blob(statement_, column);
    const int size = sqlite3_column_bytes(statement_, column);
    // No bytes where there should be some: there was no memory for them.
    if (!bytes && sqlite3_errcode(database_.handle()) == SQLITE_NOMEM) throw std::bad_alloc();
    return {static_cast<const std::byte*>(bytes), bytes ? static_cast<std::size_t>(size) : 0};
}

std::string Statement::text(int column) const {
    const unsigned char* text = sqlite3_column_text(statement_, column);
    return text ? reinterpret_cast<const char*>(text) : "";
}

}  // namespace norvane::platform::core::storage::datastore
