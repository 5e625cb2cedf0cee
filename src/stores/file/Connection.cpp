#include "stores/file/Connection.h"

#include <algorithm>
#include <cstring>

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr std::int64_t firstPart(std::uint32_t offset) {
    return static_cast<std::int64_t>(offset) * static_cast<std::int64_t>(kMostParts);
}

// Column by column, whether there are whole numbers.
bool areNumbers(const Statement& row, int first, int last) {
    for (int column = first; column <= last; ++column)
        if (row.type(column) != SQLITE_INTEGER) return false;
    return true;
}

const char* addRecordsSql() {
    static const std::string sql = [] {
        std::string text = "INSERT INTO record(id, crc, data) VALUES(?, ?, ?)";
        for (std::size_t i = 1; i < kNewRows; ++i) text += ",(?, ?, ?)";
        return text;
    }();
    return sql.c_str();
}

}  // namespace

Connection::Statements::Statements(Database& database)
    : meta(database, "SELECT version, next, records, revision, token, previous, crc FROM meta WHERE id = 1",
           Doing::reading),
      putMeta(database,
              "REPLACE INTO meta(id, version, next, records, revision, token, previous, crc) VALUES(1, ?, ?, "
              "?, ?, ?, ?, ?)",
              Doing::writing),
      record(database, "SELECT crc, data FROM record WHERE id = ?", Doing::reading),
      addRecord(database, "INSERT INTO record(id, crc, data) VALUES(?, ?, ?)", Doing::writing),
      addRecords(database, addRecordsSql(), Doing::writing),
      changeRecord(database, "UPDATE record SET crc = ?2, data = ?3 WHERE id = ?1", Doing::writing),
      eraseRecord(database, "DELETE FROM record WHERE id = ?", Doing::writing),
      parts(database, "SELECT id, data FROM part WHERE id BETWEEN ? AND ? ORDER BY id", Doing::reading),
      putPart(database, "INSERT INTO part(id, data) VALUES(?, ?)", Doing::writing),
      eraseParts(database, "DELETE FROM part WHERE id BETWEEN ? AND ?", Doing::writing),
      anyParts(database, "SELECT 1 FROM part LIMIT 1", Doing::reading),
      live(database, "SELECT crc, bits FROM live WHERE block = ?", Doing::reading),
      lives(database, "SELECT block, crc, bits FROM live WHERE block BETWEEN ? AND ?", Doing::reading),
      putLive(database, "REPLACE INTO live(block, crc, bits) VALUES(?, ?, ?)", Doing::writing),
      pageCount(database, "PRAGMA page_count", Doing::reading),
      pageSize(database, "PRAGMA page_size", Doing::reading) {}

Connection::Connection(const std::string& path, Database::Mode mode, const std::string& name)
    : mode_(mode), database_(path, mode, name), statements_(database_) {
    if (mode == Database::Mode::create) makeTables();
    checkTables();
}

// Nobody sees the file before it is whole and synced, so what SQLite does for one in use is left out.
void Connection::makeTables() {
    database_.useMuchMemory();
    const std::string identity = "PRAGMA application_id=" + std::to_string(kApplicationId) +
                                 "; PRAGMA user_version=" + std::to_string(kLayoutVersion);
    database_.run(
        "PRAGMA locking_mode=EXCLUSIVE; PRAGMA synchronous=OFF; PRAGMA page_size=4096;"
        "PRAGMA encoding='UTF-8'; PRAGMA auto_vacuum=NONE; PRAGMA journal_mode=MEMORY; BEGIN",
        Doing::writing);
    database_.run(identity.c_str(), Doing::writing);
    for (const Table& table : kTables) database_.run(table.sql, Doing::writing);
    database_.run("COMMIT", Doing::writing);
}

// What SQLite would run or compute besides reading rows is refused with all else that is not expected here.
void Connection::checkTables() {
    Statement tables(database_, "SELECT type, name, sql FROM sqlite_master ORDER BY rowid", Doing::reading);
    for (const Table& table : kTables)
        if (!tables.step() || tables.text(0) != "table" || tables.text(1) != table.name ||
            tables.text(2) != table.sql)
            failDamaged("its tables are not those of a store", IDataStore::BADOFF);
    if (tables.step()) failDamaged("it has more tables than a store", IDataStore::BADOFF);
}

MetaRow Connection::beginReading() {
    database_.run("BEGIN", Doing::reading);
    try {
        return meta();
    } catch (...) {
        endReading();
        throw;
    }
}

void Connection::endReading() noexcept {
    if (isReading()) rollBack();
}

MetaRow Connection::meta() {
    Statement& row = statements_.meta;
    const Rows atEnd(row);
    if (!row.step() || !areNumbers(row, 0, 6)) failDamaged("says nothing of itself", IDataStore::BADOFF);
    MetaRow found;
    found.meta.version = static_cast<std::uint32_t>(row.number(0));
    found.meta.next = static_cast<std::uint64_t>(row.number(1));
    found.meta.recordCount = static_cast<std::uint64_t>(row.number(2));
    found.meta.revision = static_cast<std::uint64_t>(row.number(3));
    found.token = row.number(4);
    found.previous = row.number(5);
    if (row.number(0) != found.meta.version || row.number(6) != checksumOf(found) || !isPlausible(found.meta))
        failDamaged("what it says of itself has a wrong checksum", IDataStore::BADOFF);
    return found;
}

void Connection::putMeta(const MetaRow& row) {
    statements_.putMeta.bind(1, row.meta.version)
        .bind(2, static_cast<std::int64_t>(row.meta.next))
        .bind(3, static_cast<std::int64_t>(row.meta.recordCount))
        .bind(4, static_cast<std::int64_t>(row.meta.revision))
        .bind(5, row.token)
        .bind(6, row.previous)
        .bind(7, checksumOf(row))
        .run();
}

bool Connection::load(std::uint32_t offset, LoadTarget& target) {
    if (++loadCount_ == kFewLoads) database_.useMuchMemory();
    Statement& row = statements_.record;
    const Rows atEnd(row);
    if (!row.bind(1, offset).step()) return false;
    const std::int64_t wanted = row.number(0);
    if (row.type(0) != SQLITE_INTEGER || wanted != static_cast<Checksum>(wanted))
        failDamaged("a record without a checksum", offset);
    switch (row.type(1)) {
        case SQLITE_BLOB:
            loadWhole(offset, static_cast<Checksum>(wanted), target);
            break;
        case SQLITE_INTEGER:
            loadParts(offset, static_cast<Checksum>(wanted), target);
            break;
        default:
            failDamaged("a record that is no bytes", offset);
    }
    return true;
}

void Connection::loadWhole(std::uint32_t offset, Checksum wanted, LoadTarget& target) {
    const std::span<const std::byte> bytes = statements_.record.bytes(1);
    if (checksumOf(offset, bytes) != wanted) failDamaged("a record with a wrong checksum", offset);
    std::byte* to = target.take(static_cast<std::uint32_t>(bytes.size()));
    if (!bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
}

// What a damaged size asks for is not more than the file has.
std::uint32_t Connection::sizeOfParts(std::uint32_t offset) {
    const std::int64_t size = statements_.record.number(1);
    const Rows countAtEnd(statements_.pageCount);
    const Rows sizeAtEnd(statements_.pageSize);
    statements_.pageCount.step();
    statements_.pageSize.step();
    const std::int64_t most = statements_.pageCount.number(0) * statements_.pageSize.number(0);
    if (size <= 0 || size > most || size > std::int64_t{0xFFFFFFFF})
        failDamaged("a record of a size that cannot be", offset);
    return static_cast<std::uint32_t>(size);
}

void Connection::loadParts(std::uint32_t offset, Checksum wanted, LoadTarget& target) {
    const std::uint32_t size = sizeOfParts(offset);
    std::byte* to = target.take(size);
    RecordChecksum checksum(offset);
    Statement& part = statements_.parts;
    const Rows atEnd(part);
    std::uint32_t done = 0;
    part.bind(1, firstPart(offset)).bind(2, firstPart(offset + 1ull) - 1);
    while (part.step()) {
        const std::span<const std::byte> bytes = part.bytes(1);
        if (bytes.size() > size - done) failDamaged("a record with more parts than it has room for", offset);
        if (!bytes.empty()) std::memcpy(to + done, bytes.data(), bytes.size());
        checksum.add(bytes);
        done += static_cast<std::uint32_t>(bytes.size());
    }
    if (done != size || checksum.value() != wanted) failDamaged("a record with a wrong checksum", offset);
}

void Connection::add(std::uint32_t offset, std::span<const std::byte> bytes, std::uint32_t partSize) {
    put(statements_.addRecord, offset, bytes, partSize);
}

void Connection::add(const std::array<NewRow, kNewRows>& rows) {
    int position = 0;
    for (const NewRow& row : rows) {
        statements_.addRecords.bind(++position, row.offset);
        statements_.addRecords.bind(++position, checksumOf(row.offset, row.bytes));
        statements_.addRecords.bind(++position, row.bytes);
    }
    statements_.addRecords.run();
}

void Connection::change(std::uint32_t offset, std::span<const std::byte> bytes, std::uint32_t partSize) {
    put(statements_.changeRecord, offset, bytes, partSize);
    requireRow(offset);
}

void Connection::put(Statement& row, std::uint32_t offset, std::span<const std::byte> bytes,
                     std::uint32_t partSize) {
    const std::uint32_t each = partSizeFor(static_cast<std::uint32_t>(bytes.size()), partSize);
    const bool isWhole = bytes.size() <= each;
    row.bind(1, offset).bind(2, checksumOf(offset, bytes));
    if (isWhole) return row.bind(3, bytes).run();
    putParts(offset, bytes, each);
    row.bind(3, static_cast<std::int64_t>(bytes.size())).run();
}

void Connection::putParts(std::uint32_t offset, std::span<const std::byte> bytes, std::uint32_t each) {
    std::int64_t id = firstPart(offset);
    for (std::size_t at = 0; at < bytes.size(); at += each, ++id)
        statements_.putPart.bind(1, id)
            .bind(2, bytes.subspan(at, std::min<std::size_t>(each, bytes.size() - at)))
            .run();
}

void Connection::erase(std::uint32_t offset) {
    statements_.eraseRecord.bind(1, offset).run();
    requireRow(offset);
}

// A row that damage hides would come to light again beside the new one.
void Connection::requireRow(std::uint32_t offset) {
    if (sqlite3_changes(database_.handle()) != 1) failDamaged("a record is missing", offset);
}

void Connection::eraseParts(std::uint32_t offset) {
    statements_.eraseParts.bind(1, firstPart(offset))
        .bind(2, firstPart(offset) + std::int64_t{kMostParts} - 1)
        .run();
}

bool Connection::anyParts() {
    const Rows atEnd(statements_.anyParts);
    return statements_.anyParts.step();
}

LiveBits Connection::liveBits(std::uint32_t block) {
    Statement& row = statements_.live;
    const Rows atEnd(row);
    const std::uint32_t first = block * kBlockSize;
    if (!row.bind(1, block).step()) failDamaged("a part of the directory is missing", first);
    LiveBits bits{};
    if (!readBits(row, 0, block, bits)) failDamaged("a part of the directory has a wrong checksum", first);
    return bits;
}

bool Connection::readBits(const Statement& row, int column, std::uint32_t block, LiveBits& bits) {
    const std::span<const std::byte> bytes = row.bytes(column + 1);
    const bool isSized = bytes.empty() || bytes.size() == kBlockBytes;
    if (!isSized || row.type(column + 1) != SQLITE_BLOB || row.type(column) != SQLITE_INTEGER ||
        row.number(column) != checksumOfBlock(block, bytes))
        return false;
    std::copy(bytes.begin(), bytes.end(), bits.begin());
    return true;
}

// A block without live records takes next to no room.
void Connection::putLiveBits(std::uint32_t block, const LiveBits& bits) {
    const bool isEmpty = bits == LiveBits{};
    const std::span<const std::byte> bytes = isEmpty ? std::span<const std::byte>() : std::span(bits);
    statements_.putLive.bind(1, block).bind(2, checksumOfBlock(block, bytes)).bind(3, bytes).run();
}

void Connection::failDamaged(const char* words, std::uint32_t offset) const {
    datastore::failDamaged(database_.path(), words, offset);
}

}  // namespace norvane::platform::core::storage::datastore
