// The element names that make a record.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "norvane/platform/data/metadata/tDataType.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "records/Fields.h"

namespace norvane::platform::data {

// An element name and the record that it makes. `detail` is the container kind or the data type.
struct tKeyword {
    const char* name;
    Record::Kind kind;
    std::uint32_t detail;
};

// Root, table, the containers by kind, then the value elements by data type from 1 on.
#define QVT_KEYWORD(name, kind, detail) \
    tKeyword { name, Record::Kind::kind, detail }
inline constexpr std::array<tKeyword, 29> kKeywords{
    QVT_KEYWORD("root", root, 0),
    QVT_KEYWORD("table", table, 0),
    QVT_KEYWORD("node", container, structure::kNode),
    QVT_KEYWORD("group", container, structure::kGroup),
    QVT_KEYWORD("link", container, structure::kLink),
    QVT_KEYWORD("binary", primitive, metadata::kBinary),
    QVT_KEYWORD("uuid", primitive, metadata::kUuid),
    QVT_KEYWORD("string", primitive, metadata::kString),
    QVT_KEYWORD("time", primitive, metadata::kTime),
    QVT_KEYWORD("uri", primitive, metadata::kUri),
    QVT_KEYWORD("version", primitive, metadata::kVersion),
    QVT_KEYWORD("bool", primitive, metadata::kBool),
    QVT_KEYWORD("int8", primitive, metadata::kInt8),
    QVT_KEYWORD("uint8", primitive, metadata::kUint8),
    QVT_KEYWORD("int16", primitive, metadata::kInt16),
    QVT_KEYWORD("uint16", primitive, metadata::kUint16),
    QVT_KEYWORD("int32", primitive, metadata::kInt32),
    QVT_KEYWORD("uint32", primitive, metadata::kUint32),
    QVT_KEYWORD("int64", primitive, metadata::kInt64),
    QVT_KEYWORD("uint64", primitive, metadata::kUint64),
    QVT_KEYWORD("scalar", primitive, metadata::kScalar),
    QVT_KEYWORD("double", primitive, metadata::kDouble),
    QVT_KEYWORD("vector2", primitive, metadata::kVector2),
    QVT_KEYWORD("vector3", primitive, metadata::kVector3),
    QVT_KEYWORD("vector4", primitive, metadata::kVector4),
    QVT_KEYWORD("matrix2x2", primitive, metadata::kMatrix2x2),
    QVT_KEYWORD("matrix3x3", primitive, metadata::kMatrix3x3),
    QVT_KEYWORD("matrix4x4", primitive, metadata::kMatrix4x4),
    QVT_KEYWORD("struct", primitive, metadata::kStruct),
};
#undef QVT_KEYWORD

// The keyword of that name in lower case, or null.
const tKeyword* keywordOf(std::string_view name);

// The keyword that such a record is written as, or null: records can hold container kinds and data types that
// no element has.
const tKeyword* keywordOf(Record::Kind kind, std::uint32_t detail);

}  // namespace norvane::platform::data
