#include "xml/UnitTable.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "norvane/platform/data/format/xml/UnitTable.h"

namespace norvane::platform::data {
namespace {

using format::xml::dimensionKeyOf;
using format::xml::kDimensionTable;
using format::xml::kUnitTable;

constexpr std::size_t kUnitCount = std::size(kUnitTable) - 1;
constexpr std::size_t kDimensionCount = std::size(kDimensionTable) - 1;
constexpr int kDimensionShift = 12;

// Row numbers plus one, so that 0 is an empty slot.
using tRow = std::uint16_t;

constexpr std::uint32_t hashed(std::uint32_t hash, char c) {
    return (hash ^ static_cast<unsigned char>(c)) * 0x01000193U;
}

constexpr std::uint32_t hashOf(const char* name) {
    std::uint32_t hash = 0x811C9DC5U;
    for (; *name; ++name) hash = hashed(hash, *name);
    return hash;
}

// Rows by name: an open hash table, less than half full, which is walked from the slot of the hash on.
struct tNameIndex {
    static constexpr std::size_t kSlots = 2048;
    static_assert(kUnitCount * 2 < kSlots);

    std::array<tRow, kSlots> slots{};

    static constexpr std::size_t next(std::size_t slot) { return (slot + 1) % kSlots; }

    constexpr tNameIndex() {
        for (std::size_t row = 0; row < kUnitCount; ++row) {
            std::size_t slot = hashOf(kUnitTable[row].name) % kSlots;
            while (slots[slot]) slot = next(slot);
            slots[slot] = static_cast<tRow>(row + 1);
        }
    }
};

// Rows by id. The ids of a dimension run from 1 without a gap and stand together in the table, so that the
// first row of each dimension is enough; but names that share an id push the rows behind them on, and so the
// rows are listed once per id.
struct tIdIndex {
    std::array<tRow, kDimensionCount + 2> first{};  // by number of the dimension, into rows
    std::array<tRow, kUnitCount> rows{};

    constexpr tIdIndex() {
        tRow filled = 0;
        for (std::size_t dimension = 1; dimension <= kDimensionCount; ++dimension) {
            first[dimension] = filled;
            filled = fill(kDimensionTable[dimension - 1].id, filled);
        }
        first[kDimensionCount + 1] = filled;
    }

    constexpr tRow fill(std::uint32_t key, tRow filled) {
        std::uint32_t latest = key;
        for (std::size_t row = 0; row < kUnitCount; ++row) {
            const std::uint32_t id = kUnitTable[row].id;
            if (dimensionKeyOf(id) != key || id == latest) continue;
            if (id != latest + 1) throw "a gap or a jump in the ids of a dimension";  // does not compile
            rows[filled++] = static_cast<tRow>(row);
            latest = id;
        }
        return filled;
    }
};

constexpr tNameIndex kByName;
constexpr tIdIndex kById;

}  // namespace

std::uint32_t unitIdOf(const char* name) {
    if (!name) return 0;
    for (std::size_t slot = hashOf(name) % tNameIndex::kSlots; kByName.slots[slot];
         slot = tNameIndex::next(slot)) {
        const auto& row = kUnitTable[kByName.slots[slot] - 1];
        if (std::strcmp(row.name, name) == 0) return row.id;
    }
    return 0;
}

const char* unitNameOf(std::uint32_t id) {
    const std::uint32_t dimension = id >> kDimensionShift;
    if (dimension == 0 || dimension > kDimensionCount) return nullptr;
    const std::uint32_t number = id - dimensionKeyOf(id);
    const std::uint32_t count = kById.first[dimension + 1] - kById.first[dimension];
    if (number == 0 || number > count) return nullptr;
    return kUnitTable[kById.rows[kById.first[dimension] + number - 1]].name;
}

}  // namespace norvane::platform::data
