#include "stores/file/Layout.h"

#include <algorithm>
#include <cstring>
#include <random>

#include "stores/file/Crc32.h"
#include "stores/file/Failure.h"
#include "stores/file/OpenFile.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

constexpr char kMagic[] = "SQLite format 3";  // with the NUL at its end
constexpr std::size_t kPageSizeAt = 16;
constexpr std::size_t kWriteFormatAt = 18;
constexpr std::size_t kReadFormatAt = 19;
constexpr std::size_t kReservedAt = 20;
constexpr std::size_t kUserVersionAt = 60;
constexpr std::size_t kApplicationIdAt = 68;
constexpr std::byte kWithLog{2};

using FileHeader = std::array<std::byte, kFileHeaderSize>;

// The sum goes on over bytes of the number, the lowest first.
template <class Number>
std::uint32_t crcWith(std::uint32_t crc, Number number) {
    std::byte bytes[sizeof number];
    for (std::size_t at = 0; at < sizeof number; ++at) bytes[at] = static_cast<std::byte>(number >> (8 * at));
    return crc32With(crc, bytes);
}

// Rows of different tables look alike: a word of their own keeps one from passing for another.
std::uint32_t crcWith(std::uint32_t crc, const char* word) {
    return crc32With(crc, std::as_bytes(std::span(word, std::strlen(word))));
}

std::uint32_t numberAt(const FileHeader& header, std::size_t position) {
    std::uint32_t number = 0;
    for (std::size_t at = position; at < position + 4; ++at)
        number = number << 8 | std::to_integer<std::uint32_t>(header[at]);
    return number;
}

}  // namespace

std::int64_t newToken() {
    std::random_device device;
    return static_cast<std::int64_t>(std::uint64_t{device()} << 32 | device());
}

std::uint32_t partSizeFor(std::uint32_t recordSize, std::uint32_t wanted) {
    const std::uint64_t least = (recordSize + kMostParts - 1) / kMostParts;
    return std::max(std::clamp(wanted, kSmallestPart, kLargestPart), static_cast<std::uint32_t>(least));
}

RecordChecksum::RecordChecksum(std::uint32_t offset) : crc_(crcWith(0, offset)) {}

void RecordChecksum::add(std::span<const std::byte> bytes) { crc_ = crc32With(crc_, bytes); }

Checksum checksumOf(std::uint32_t offset, std::span<const std::byte> bytes) {
    RecordChecksum checksum(offset);
    checksum.add(bytes);
    return checksum.value();
}

Checksum checksumOfBlock(std::uint32_t block, std::span<const std::byte> bits) {
    return static_cast<Checksum>(crc32With(crcWith(crcWith(0, "live"), block), bits));
}

Checksum checksumOf(const MetaRow& row) {
    std::uint32_t crc = crcWith(crcWith(0, "meta"), row.meta.version);
    for (const std::uint64_t number :
         {row.meta.next, row.meta.recordCount, row.meta.revision, static_cast<std::uint64_t>(row.token),
          static_cast<std::uint64_t>(row.previous)})
        crc = crcWith(crc, number);
    return static_cast<Checksum>(crc);
}

bool isPlausible(const StoreMeta& meta) {
    return meta.next <= kEndOfOffsets && meta.recordCount <= meta.next;
}

void checkIdentity(const OpenFile& file) {
    FileHeader header{};
    const std::size_t size = file.readAt(0, header);
    if (size < header.size() || std::memcmp(header.data(), kMagic, sizeof kMagic) != 0)
        fail(Code::notAStore, file.path(), "not a store");
    if (numberAt(header, kApplicationIdAt) != kApplicationId)
        fail(Code::notAStore, file.path(), "a database of another kind");
    const std::uint32_t version = numberAt(header, kUserVersionAt);
    if (version > kLayoutVersion)
        fail(Code::newerVersion, file.path(),
             "layout " + std::to_string(version) + ", newer than this library's " +
                 std::to_string(kLayoutVersion));
    if (version == 0) failDamaged(file.path(), "layout 0, which never was", IDataStore::BADOFF);
    if (numberAt(header, kPageSizeAt) >> 16 != kPageSize || header[kReservedAt] != std::byte{0})
        failDamaged(file.path(), "pages of another size than a store has", IDataStore::BADOFF);
    // Read as a file without a log, it would be an old revision.
    if (header[kWriteFormatAt] != kWithLog || header[kReadFormatAt] != kWithLog)
        failDamaged(file.path(), "does not say that it has a log", IDataStore::BADOFF);
}

}  // namespace norvane::platform::core::storage::datastore
