// Which data types hold numbers, and how number text counts them.
#pragma once

#include <cstdint>

#include "norvane/platform/data/metadata/tDataType.h"

namespace norvane::platform::data {

constexpr bool isNumeric(std::uint32_t type) {
    return type >= metadata::kBool && type <= metadata::kMatrix4x4;
}

// What `parseNumber` and `formatNumber` know a numeric type by.
constexpr int numberIndex(std::uint32_t type) { return static_cast<int>(type - metadata::kBool); }

// The widest number in bytes.
inline constexpr std::uint32_t kWidestNumber = 8;

}  // namespace norvane::platform::data
