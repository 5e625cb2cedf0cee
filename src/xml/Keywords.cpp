#include "xml/Keywords.h"

#include <cstddef>

namespace norvane::platform::data {
namespace {

constexpr std::size_t kSlots = 128;
constexpr std::uint8_t kNoRow = 0xFF;

constexpr std::size_t slotOf(std::string_view name, std::uint32_t seed) {
    std::uint32_t hash = seed;
    for (const char each : name) hash = (hash ^ static_cast<unsigned char>(each)) * 0x01000193U;
    static_assert(kSlots == 1U << 7);
    return hash * 0x9E3779B1U >> (32 - 7);
}

// Row numbers by the hash of the name, with a seed under which no two names meet.
struct tSlots {
    std::uint32_t seed = 0;
    std::array<std::uint8_t, kSlots> rows{};

    constexpr tSlots() {
        while (!fill()) ++seed;
    }

    constexpr bool fill() {
        rows.fill(kNoRow);
        for (std::size_t row = 0; row < kKeywords.size(); ++row) {
            std::uint8_t& slot = rows[slotOf(kKeywords[row].name, seed)];
            if (slot != kNoRow) return false;
            slot = static_cast<std::uint8_t>(row);
        }
        return true;
    }
};

constexpr tSlots kByName;

constexpr std::size_t kFirstContainer = 2;
constexpr std::size_t kFirstPrimitive = 5;
static_assert(kKeywords[kFirstContainer].detail == structure::kNode);
static_assert(kKeywords[kFirstPrimitive].detail == metadata::kBinary);
static_assert(kKeywords.back().detail == metadata::kStruct);

}  // namespace

const tKeyword* keywordOf(std::string_view name) {
    const std::uint8_t row = kByName.rows[slotOf(name, kByName.seed)];
    return row != kNoRow && name == kKeywords[row].name ? &kKeywords[row] : nullptr;
}

const tKeyword* keywordOf(Record::Kind kind, std::uint32_t detail) {
    switch (kind) {
        case Record::Kind::root:
            return &kKeywords[0];
        case Record::Kind::table:
            return &kKeywords[1];
        case Record::Kind::container:
            return detail <= structure::kLink ? &kKeywords[kFirstContainer + detail] : nullptr;
        case Record::Kind::primitive:
            return metadata::elementSize(detail) != 0 ? &kKeywords[kFirstPrimitive + detail - 1] : nullptr;
        default:
            return nullptr;
    }
}

}  // namespace norvane::platform::data
