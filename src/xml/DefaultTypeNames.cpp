#include "xml/DefaultTypeNames.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "norvane/platform/data/metadata/tDataType.h"

namespace norvane::platform::data {
namespace {

template <typename Matches>
const tTypeName& firstRow(Matches matches) {
    return *std::find_if(std::begin(kDefaultTypeNames), std::end(kDefaultTypeNames) - 1, matches);
}

}  // namespace

// The second "string" is never reached: both directions take the first row that fits.
const tTypeName kDefaultTypeNames[25] = {
    // clang-format off
    {"string", metadata::kString},
    {"binary", metadata::kBinary},
    {"scalar", metadata::kScalar},
    {"double", metadata::kDouble},
    {"bool", metadata::kBool},
    {"string", metadata::kString},
    {"uuid", metadata::kUuid},
    {"time", metadata::kTime},
    {"uri", metadata::kUri},
    {"version", metadata::kVersion},
    {"int8", metadata::kInt8},
    {"uint8", metadata::kUint8},
    {"int16", metadata::kInt16},
    {"uint16", metadata::kUint16},
    {"int32", metadata::kInt32},
    {"uint32", metadata::kUint32},
    {"int64", metadata::kInt64},
    {"uint64", metadata::kUint64},
    {"mtx2x2", metadata::kMatrix2x2},
    {"mtx3x3", metadata::kMatrix3x3},
    {"mtx4x4", metadata::kMatrix4x4},
    {"vec2", metadata::kVector2},
    {"vec3", metadata::kVector3},
    {"vec4", metadata::kVector4},
    {nullptr, 0},
    // clang-format on
};

std::uint32_t defaultTypeOf(const char* name) {
    if (!name) return 0;
    return firstRow([name](const tTypeName& row) { return std::strcmp(row.name, name) == 0; }).type;
}

const char* defaultTypeNameOf(std::uint32_t type) {
    return firstRow([type](const tTypeName& row) { return row.type == type; }).name;
}

}  // namespace norvane::platform::data
