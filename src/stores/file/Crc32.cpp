#include "stores/file/Crc32.h"

#include <zlib.h>

#include <array>

namespace norvane::platform::core::storage::datastore {
namespace {

// From here on zlib is the faster one.
constexpr std::size_t kLong = 512;

// How many bytes go into the sum at once.
constexpr std::size_t kStep = 16;

// `[n][byte]`: what a byte adds to the sum when n bytes follow it.
using Tables = std::array<std::array<std::uint32_t, 256>, kStep>;

constexpr std::uint32_t ofByte(std::uint32_t byte) {
    for (int bit = 0; bit < 8; ++bit) byte = (byte >> 1) ^ ((byte & 1) != 0 ? 0xEDB88320u : 0u);
    return byte;
}

constexpr Tables makeTables() {
    Tables tables{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) tables[0][byte] = ofByte(byte);
    for (std::size_t n = 1; n < kStep; ++n)
        for (std::size_t byte = 0; byte < 256; ++byte)
            tables[n][byte] = (tables[n - 1][byte] >> 8) ^ tables[0][tables[n - 1][byte] & 0xFF];
    return tables;
}

constexpr Tables kTables = makeTables();

std::uint32_t valueOf(std::byte byte) { return std::to_integer<std::uint32_t>(byte); }

std::uint32_t wordAt(const std::byte* bytes) {
    return valueOf(bytes[0]) | valueOf(bytes[1]) << 8 | valueOf(bytes[2]) << 16 | valueOf(bytes[3]) << 24;
}

// What a word adds to the sum when `behind` bytes follow it.
std::uint32_t ofWord(std::uint32_t word, std::size_t behind) {
    return kTables[behind + 3][word & 0xFF] ^ kTables[behind + 2][word >> 8 & 0xFF] ^
           kTables[behind + 1][word >> 16 & 0xFF] ^ kTables[behind][word >> 24];
}

std::uint32_t crcOfShort(std::uint32_t crc, std::span<const std::byte> bytes) {
    crc = ~crc;
    for (; bytes.size() >= kStep; bytes = bytes.subspan(kStep))
        crc = ofWord(crc ^ wordAt(bytes.data()), 12) ^ ofWord(wordAt(bytes.data() + 4), 8) ^
              ofWord(wordAt(bytes.data() + 8), 4) ^ ofWord(wordAt(bytes.data() + 12), 0);
    for (; bytes.size() >= 4; bytes = bytes.subspan(4)) crc = ofWord(crc ^ wordAt(bytes.data()), 0);
    for (const std::byte byte : bytes) crc = (crc >> 8) ^ kTables[0][(crc ^ valueOf(byte)) & 0xFF];
    return ~crc;
}

}  // namespace

std::uint32_t crc32With(std::uint32_t crc, std::span<const std::byte> bytes) noexcept {
    if (bytes.size() < kLong) return crcOfShort(crc, bytes);
    return static_cast<std::uint32_t>(
        ::crc32_z(crc, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

}  // namespace norvane::platform::core::storage::datastore
