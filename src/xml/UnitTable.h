#pragma once

#include <cstdint>

namespace norvane::platform::data {

/// The id of a unit, found by its whole name. 0 when there is no such unit, or no name: 0 means no unit.
std::uint32_t unitIdOf(const char* name);

/// The name that is written for a unit id: of two names with one id, the one that stands first in the table.
/// Null when no unit has the id. The text lives as long as the library.
const char* unitNameOf(std::uint32_t id);

}  // namespace norvane::platform::data
