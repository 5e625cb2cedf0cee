// What a kind byte says, for those that only branch on it.
#pragma once

#include <cstdint>

#include "records/Fields.h"

namespace norvane::platform::data {

constexpr bool isPrimitive(std::uint8_t kind) {
    return kind == static_cast<std::uint8_t>(Record::Kind::primitive);
}
constexpr bool isTable(std::uint8_t kind) { return kind == static_cast<std::uint8_t>(Record::Kind::table); }
constexpr bool isContainer(std::uint8_t kind) {
    return kind == static_cast<std::uint8_t>(Record::Kind::container);
}
constexpr bool isProperty(std::uint8_t kind) { return isPrimitive(kind) || isTable(kind); }

}  // namespace norvane::platform::data
