#pragma once

#include <cstdint>

/// The words for types in the `type` attribute of a `default` element. Not the names of value elements:
/// vectors and matrices are spelt differently there, and struct has no word.
namespace norvane::platform::data {

/// A word and the data type it stands for.
struct tTypeName {
    const char* name;  ///< null in the closing row
    std::uint32_t type;
};

/// 24 rows and a closing one.
extern const tTypeName kDefaultTypeNames[25];

/// The data type of the first row with this name, compared byte by byte. 0 when there is none, or no name.
std::uint32_t defaultTypeOf(const char* name);

/// The name in the first row with this data type. Null when there is none. The text lives as long as the
/// library.
const char* defaultTypeNameOf(std::uint32_t type);

}  // namespace norvane::platform::data
