// Units and dimensions by name, for people.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qvt {

// The name of a unit id: empty for 0, its number for an id that has none.
std::string unitName(std::uint32_t id);

// The name of the dimension that a unit id or a dimension key belongs to, or its number.
std::string dimensionName(std::uint32_t id);

// The id of a unit by its exact name, or 0.
std::uint32_t unitIdOf(std::string_view name);
// The same; a name that is none is a Failure that says what may have been meant.
std::uint32_t unitNamed(const std::string& name);
// The unit whose name is near, or nothing.
std::string unitNear(const std::string& name);

// 0x2001
std::string hexadecimal(std::uint32_t number);

}  // namespace qvt
