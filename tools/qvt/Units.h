// Units and dimensions by name, for people.
#pragma once

#include <cstdint>
#include <string>

namespace qvt {

// The name of a unit id: empty for 0, its number for an id that has none.
std::string unitName(std::uint32_t id);

// The name of the dimension that a unit id or a dimension key belongs to, or its number.
std::string dimensionName(std::uint32_t id);

// 0x2001
std::string hexadecimal(std::uint32_t number);

}  // namespace qvt
