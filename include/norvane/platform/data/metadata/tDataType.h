#pragma once

#include <cstdint>

namespace norvane::platform::data::metadata {

/// The type of a primitive's elements. Not a promise about the bytes: values are moved untyped, and the code
/// only says how long an element is and how it is read and written as text. The values are persistent; 0 and
/// everything above 24 is no type. Interfaces pass them as std::uint32_t, because a store may hold others.
enum tDataType : std::uint32_t {
    kBinary = 1,      ///< Bytes.
    kUuid = 2,        ///< Text, as are the four below: UTF-16 code units, each string with its NUL.
    kString = 3,      ///< Text of any meaning.
    kTime = 4,        ///< Text that a host reads as a time.
    kUri = 5,         ///< Text that a host reads as a URI. Not where a value lies: see IPrimitive::setUri.
    kVersion = 6,     ///< Text that a host reads as a version.
    kBool = 7,        ///< A byte, 0 or 1.
    kInt8 = 8,        ///< 8 bits, signed.
    kUint8 = 9,       ///< 8 bits, unsigned.
    kInt16 = 10,      ///< 16 bits, signed.
    kUint16 = 11,     ///< 16 bits, unsigned.
    kInt32 = 12,      ///< 32 bits, signed.
    kUint32 = 13,     ///< 32 bits, unsigned.
    kInt64 = 14,      ///< 64 bits, signed.
    kUint64 = 15,     ///< 64 bits, unsigned.
    kScalar = 16,     ///< binary32.
    kDouble = 17,     ///< binary64, as are the components of vectors and matrices.
    kVector2 = 18,    ///< 2 components.
    kVector3 = 19,    ///< 3 components.
    kVector4 = 20,    ///< 4 components.
    kMatrix2x2 = 21,  ///< 4 components.
    kMatrix3x3 = 22,  ///< 9 components.
    kMatrix4x4 = 23,  ///< 16 components.
    kStruct = 24,     ///< Packed by the layout of a schema.
};

/// Bytes of one element: a code unit for text, one component for vectors and matrices, one byte for structs.
/// 0 for what is no type.
constexpr std::uint32_t elementSize(std::uint32_t type) {
    constexpr std::uint32_t kElementSize[] = {0, 1, 2, 2, 2, 2, 2, 1, 1, 1, 2, 2, 4,
                                              4, 8, 8, 4, 8, 8, 8, 8, 8, 8, 8, 1};
    return type <= kStruct ? kElementSize[type] : 0;
}

/// Elements that make one vector or matrix; 1 for every other type, 0 for what is no type.
constexpr std::uint32_t componentCount(std::uint32_t type) {
    constexpr std::uint32_t kComponents[] = {2, 3, 4, 4, 9, 16};
    if (type >= kVector2 && type <= kMatrix4x4) return kComponents[type - kVector2];
    return elementSize(type) == 0 ? 0 : 1;
}

/// True for the types whose value is text: uuid, string, time, uri and version.
constexpr bool isTextType(std::uint32_t type) { return type >= kUuid && type <= kVersion; }

}  // namespace norvane::platform::data::metadata
