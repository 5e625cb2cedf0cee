// The checksum of records, beside zlib's.
#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <vector>

#include "stores/file/Crc32.h"

namespace norvane::platform::core::storage::datastore {
namespace {

std::vector<std::byte> randomBytes(std::size_t size) {
    std::minstd_rand random(7);
    std::vector<std::byte> bytes(size);
    for (std::byte& byte : bytes) byte = static_cast<std::byte>(random() >> 8);
    return bytes;
}

std::uint32_t ofZlib(std::uint32_t crc, std::span<const std::byte> bytes) {
    if (bytes.empty()) return crc;
    return static_cast<std::uint32_t>(
        ::crc32_z(crc, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

TEST(Crc32Test, EveryLengthGivesWhatZlibGives) {
    const std::vector<std::byte> bytes = randomBytes(1200);

    for (std::size_t size = 0; size < 1100; ++size) {
        const std::span<const std::byte> run(bytes.data() + size % 16, size);
        ASSERT_EQ(crc32With(0, run), ofZlib(0, run)) << size;
    }
}

TEST(Crc32Test, GoesOnFromWhatComesBefore) {
    const std::vector<std::byte> bytes = randomBytes(700);
    const std::span<const std::byte> all(bytes);

    for (std::size_t first = 0; first <= all.size(); first += 7)
        ASSERT_EQ(crc32With(crc32With(0, all.first(first)), all.subspan(first)), ofZlib(0, all)) << first;
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
