// A connection to a store file, with the statements that read and write its tables.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "stores/file/Database.h"
#include "stores/file/Layout.h"
#include "stores/overlay/Backend.h"

namespace norvane::platform::core::storage::datastore {

// A record that is not in the file yet.
struct NewRow {
    std::uint32_t offset = 0;
    std::span<const std::byte> bytes;
};
// What one statement adds: within it SQLite stays where the last row went, as long as offsets rise.
inline constexpr std::size_t kNewRows = 64;

class Connection {
  public:
    // Opens the file and checks that its tables are those of a store; with `create` it makes them.
    Connection(const std::string& path, Database::Mode mode, const std::string& name = {});

    Database& database() { return database_; }
    bool seesLog() const { return mode_ != Database::Mode::readUnlocked; }

    // From here on everything that is read belongs to one revision. Answers which.
    MetaRow beginReading();
    void endReading() noexcept;
    bool isReading() const noexcept { return sqlite3_get_autocommit(database_.handle()) == 0; }

    // Keeps other writers out, also those that know of no other lock.
    void beginWriting() {
        database_.useMuchMemory();
        database_.run("BEGIN IMMEDIATE", Doing::writing);
    }
    void commit() { database_.run("COMMIT", Doing::writing); }
    void rollBack() noexcept { database_.tryRun("ROLLBACK"); }

    MetaRow meta();
    void putMeta(const MetaRow& row);

    // False if there is no row for it.
    bool load(std::uint32_t offset, LoadTarget& target);
    // Each is for a record that there is not, or is: the caller knows from the directory. Throws `damaged` if
    // the table says otherwise.
    void add(std::uint32_t offset, std::span<const std::byte> bytes, std::uint32_t partSize);
    // Adds so many at once, none of which is in parts. The bytes are borrowed until it returns.
    void add(const std::array<NewRow, kNewRows>& rows);
    void change(std::uint32_t offset, std::span<const std::byte> bytes, std::uint32_t partSize);
    void erase(std::uint32_t offset);
    // Needed before a record with parts is changed or removed.
    void eraseParts(std::uint32_t offset);
    // False if no record has parts.
    bool anyParts();

    // Throws `damaged` if there is no sound row for the block.
    LiveBits liveBits(std::uint32_t block);
    // Goes through the rows for these blocks, and leaves out those that are not sound.
    template <class Visit>
    void forEachSoundBlock(std::uint32_t first, std::uint32_t last, Visit visit) {
        Statement& row = statements_.lives;
        const Rows atEnd(row);
        row.bind(1, first).bind(2, last);
        while (row.step()) {
            const std::int64_t block = row.number(0);
            LiveBits bits{};
            if (block >= first && block <= last && readBits(row, 1, static_cast<std::uint32_t>(block), bits))
                visit(static_cast<std::uint32_t>(block), bits);
        }
    }
    void putLiveBits(std::uint32_t block, const LiveBits& bits);

  private:
    void makeTables();
    void checkTables();
    void loadWhole(std::uint32_t offset, Checksum wanted, LoadTarget& target);
    void loadParts(std::uint32_t offset, Checksum wanted, LoadTarget& target);
    void put(Statement& row, std::uint32_t offset, std::span<const std::byte> bytes, std::uint32_t partSize);
    void putParts(std::uint32_t offset, std::span<const std::byte> bytes, std::uint32_t each);
    void requireRow(std::uint32_t offset);
    // False if the checksum in that column and the bits behind it are not those of the block.
    static bool readBits(const Statement& row, int column, std::uint32_t block, LiveBits& bits);
    std::uint32_t sizeOfParts(std::uint32_t offset);
    [[noreturn]] void failDamaged(const char* words, std::uint32_t offset) const;

    // Until so many records were loaded, few pages stay in memory.
    static constexpr std::uint32_t kFewLoads = 2000;

    struct Statements {
        explicit Statements(Database& database);

        Statement meta, putMeta;
        Statement record, addRecord, addRecords, changeRecord, eraseRecord;
        Statement parts, putPart, eraseParts, anyParts;
        Statement live, lives, putLive;
        Statement pageCount, pageSize;
    };

    const Database::Mode mode_;
    Database database_;
    Statements statements_;
    std::uint32_t loadCount_ = 0;
};

}  // namespace norvane::platform::core::storage::datastore
