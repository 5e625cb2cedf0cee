#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "qvt/model.hpp"

namespace qvt {

/// A value that lies elsewhere.
struct Uri {
    /// As it was given; nothing here follows it.
    std::string text;
};

/// The bytes of structs of a class.
struct Structs {
    /// The class that says what the bytes are.
    std::string className;
    /// One struct after the other, without gaps.
    std::vector<std::byte> bytes;
};

/// Calls `visitor` once with what a property is: a `std::vector` of one of the types of `Value` for
/// primitives with values, even for a single one or none; or `Structs`, `Uri`, `Table`; or `std::monostate`
/// for an empty handle and for what is of no known type. The calls all have the same result, which is that
/// of `visit`.
template <class Visitor>
decltype(auto) visit(const Property& property, Visitor&& visitor) {
    namespace type = data::metadata;
    if (property.isTable()) return visitor(property.table());
    if (property.primitive() && property.primitive()->uri().value()) return visitor(Uri{property.uri()});
    switch (property.type()) {
        case type::kBinary:
            return visitor(property.values<std::byte>());
        case type::kUuid:
        case type::kString:
        case type::kTime:
        case type::kUri:
        case type::kVersion:
            return visitor(property.values<std::string>());
        case type::kBool:
            return visitor(property.values<bool>());
        case type::kInt8:
            return visitor(property.values<std::int8_t>());
        case type::kUint8:
            return visitor(property.values<std::uint8_t>());
        case type::kInt16:
            return visitor(property.values<std::int16_t>());
        case type::kUint16:
            return visitor(property.values<std::uint16_t>());
        case type::kInt32:
            return visitor(property.values<std::int32_t>());
        case type::kUint32:
            return visitor(property.values<std::uint32_t>());
        case type::kInt64:
            return visitor(property.values<std::int64_t>());
        case type::kUint64:
            return visitor(property.values<std::uint64_t>());
        case type::kScalar:
            return visitor(property.values<float>());
        case type::kDouble:
            return visitor(property.values<double>());
        case type::kVector2:
            return visitor(property.values<vec<2>>());
        case type::kVector3:
            return visitor(property.values<vec<3>>());
        case type::kVector4:
            return visitor(property.values<vec<4>>());
        case type::kMatrix2x2:
            return visitor(property.values<mat<2>>());
        case type::kMatrix3x3:
            return visitor(property.values<mat<3>>());
        case type::kMatrix4x4:
            return visitor(property.values<mat<4>>());
        case type::kStruct:
            return visitor(Structs{property.structType(), property.bytes()});
        default:
            return visitor(std::monostate());
    }
}

}  // namespace qvt
