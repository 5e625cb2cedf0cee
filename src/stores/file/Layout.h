// What stands in a store file: its identity, its tables, its checksums. docs/file-format.md tells it whole.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "stores/overlay/Backend.h"

namespace norvane::platform::core::storage::datastore {

class OpenFile;

inline constexpr std::uint32_t kApplicationId = 0x51565444;  // "QVTD"
inline constexpr std::uint32_t kLayoutVersion = 1;

// The tables, word for word as SQLite keeps them, in the order in which they were made.
struct Table {
    const char* name;
    const char* sql;
};
inline constexpr std::array<Table, 4> kTables{{
    {"meta",
     "CREATE TABLE meta(id INTEGER PRIMARY KEY, version INTEGER, next INTEGER, records INTEGER, "
     "revision INTEGER, token INTEGER, previous INTEGER, crc INTEGER)"},
    {"record", "CREATE TABLE record(id INTEGER PRIMARY KEY, crc INTEGER, data BLOB)"},
    {"part", "CREATE TABLE part(id INTEGER PRIMARY KEY, data BLOB)"},
    {"live", "CREATE TABLE live(block INTEGER PRIMARY KEY, crc INTEGER, bits BLOB)"},
}};

// The only row of `meta`.
struct MetaRow {
    StoreMeta meta;
    std::int64_t token = 0;     // drawn anew for every attempt to commit
    std::int64_t previous = 0;  // the token of the revision before

    friend bool operator==(const MetaRow&, const MetaRow&) = default;
};
std::int64_t newToken();
inline constexpr std::int64_t kMetaId = 1;
inline constexpr std::uint32_t kMetaPage = 2;  // where its table begins, being the first one
inline constexpr std::uint64_t kEndOfOffsets = 0xFFFFFFFFu;

// Part n of a record stands at record * kMostParts + n.
inline constexpr std::uint64_t kMostParts = 4096;
inline constexpr std::uint32_t kSmallestPart = 4 << 10;
inline constexpr std::uint32_t kLargestPart = 512 << 20;
// The size of all parts but the last of a record, whose number is limited.
std::uint32_t partSizeFor(std::uint32_t recordSize, std::uint32_t wanted);

// One row of `live` tells of so many offsets. There is one for every block up to the highest offset given
// out; bits behind its end are 0.
inline constexpr std::uint32_t kBlockSize = 4096;
inline constexpr std::size_t kBlockBytes = kBlockSize / 8;
using LiveBits = std::array<std::byte, kBlockBytes>;
inline std::uint64_t blockCount(std::uint64_t next) { return (next + kBlockSize - 1) / kBlockSize; }

// Checksums go into the tables as signed numbers, which take less room.
using Checksum = std::int32_t;

// The checksum of a record, of which the bytes come in one go or in parts.
class RecordChecksum {
  public:
    explicit RecordChecksum(std::uint32_t offset);
    void add(std::span<const std::byte> bytes);
    Checksum value() const { return static_cast<Checksum>(crc_); }

  private:
    std::uint32_t crc_;
};
Checksum checksumOf(std::uint32_t offset, std::span<const std::byte> bytes);
Checksum checksumOfBlock(std::uint32_t block, std::span<const std::byte> bits);
Checksum checksumOf(const MetaRow& row);

// True if the numbers can belong together.
bool isPlausible(const StoreMeta& meta);

// All of a page is SQLite's to use. Since the size is fixed, pages are found in a file without a head.
inline constexpr std::uint32_t kPageSize = 4096;
inline constexpr std::size_t kFileHeaderSize = 100;
// Throws notAStore, newerVersion or damaged if the file is not one that can be opened.
void checkIdentity(const OpenFile& file);

}  // namespace norvane::platform::core::storage::datastore
