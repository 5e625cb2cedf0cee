#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "norvane/platform/data/metadata/tDataType.h"
#include "qvt/text.hpp"

namespace qvt {

/// A vector of N numbers, as `vec<3>{1, 2, 3}`.
template <std::size_t N>
requires(N >= 2 && N <= 4) struct vec {
    double components[N];  ///< x, y, z and w, as many as there are.

    /// The component at an index below N.
    constexpr double& operator[](std::size_t index) { return components[index]; }
    /// The component at an index below N.
    constexpr const double& operator[](std::size_t index) const { return components[index]; }
    /// Equal if all components are.
    friend constexpr bool operator==(const vec&, const vec&) = default;
};

/// A matrix of N by N numbers, in the order in which documents and records hold them.
template <std::size_t N>
requires(N >= 2 && N <= 4) struct mat {
    double elements[N * N];  ///< As documents and records have them, one after the other.

    /// The element at an index below N * N.
    constexpr double& operator[](std::size_t index) { return elements[index]; }
    /// The element at an index below N * N.
    constexpr const double& operator[](std::size_t index) const { return elements[index]; }
    /// Equal if all elements are.
    friend constexpr bool operator==(const mat&, const mat&) = default;
};

/// A number that some type of the model has: neither `bool`, nor a character, nor wider than 64 bits.
template <class T>
concept Number = (std::integral<T> || std::floating_point<T>)&&sizeof(T) <= 8 && !std::same_as<T, bool> &&
                 !std::same_as<T, char> && !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
                 !std::same_as<T, char16_t> && !std::same_as<T, char32_t> && !std::is_const_v<T>;

namespace detail {

template <class T>
struct VectorType {
    static constexpr std::uint32_t code = 0;
};
template <std::size_t N>
struct VectorType<vec<N>> {
    static constexpr std::uint32_t code = data::metadata::kVector2 + static_cast<std::uint32_t>(N) - 2;
};
template <std::size_t N>
struct VectorType<mat<N>> {
    static constexpr std::uint32_t code = data::metadata::kMatrix2x2 + static_cast<std::uint32_t>(N) - 2;
};

template <class T>
constexpr std::uint32_t numberType() {
    if constexpr (std::floating_point<T>)
        return sizeof(T) == 4 ? data::metadata::kScalar : data::metadata::kDouble;
    else
        return data::metadata::kInt8 + (std::is_unsigned_v<T> ? 1 : 0) +
               (sizeof(T) == 1   ? 0
                : sizeof(T) == 2 ? 2
                : sizeof(T) == 4 ? 4
                                 : 6);
}

}  // namespace detail

/// A vector or a matrix.
template <class T>
concept Compound = detail::VectorType<T>::code != 0;

/// What a primitive can hold one or more of: numbers, `bool`, `std::byte`, `vec`, `mat` and `std::string`.
template <class T>
concept Value = Number<T> || Compound<T> || std::same_as<T, bool> || std::same_as<T, std::byte> ||
    std::same_as<T, std::string>;

/// The `tDataType` that is made for values of a type.
template <Value T>
constexpr std::uint32_t typeOf() {
    if constexpr (Number<T>)
        return detail::numberType<T>();
    else if constexpr (Compound<T>)
        return detail::VectorType<T>::code;
    else if constexpr (std::same_as<T, bool>)
        return data::metadata::kBool;
    else if constexpr (std::same_as<T, std::byte>)
        return data::metadata::kBinary;
    else
        return data::metadata::kString;
}

namespace detail {

/// The same number in another type; none if that type does not have it. Only between floating types, digits
/// that do not fit are rounded away.
template <class To, class From>
constexpr std::optional<To> exactly(From number) {
    if constexpr (std::integral<To> && std::integral<From>) {
        if (!std::in_range<To>(number)) return std::nullopt;
        return static_cast<To>(number);
    } else if constexpr (std::integral<To>) {
        const auto wide = static_cast<long double>(number);
        if (!(wide >= static_cast<long double>(std::numeric_limits<To>::min()) &&
              wide <= static_cast<long double>(std::numeric_limits<To>::max())) ||
            static_cast<long double>(static_cast<To>(number)) != wide)
            return std::nullopt;
        return static_cast<To>(number);
    } else if constexpr (std::integral<From>) {
        const auto result = static_cast<To>(number);
        if (static_cast<long double>(result) != static_cast<long double>(number)) return std::nullopt;
        return result;
    } else {
        const auto result = static_cast<To>(number);
        if (std::isinf(result) && !std::isinf(number)) return std::nullopt;
        return result;
    }
}

/// Calls `use` with a zero of the type in which elements of a numeric `tDataType` are kept. False, without a
/// call, for other types.
template <class Use>
bool withNumber(std::uint32_t type, Use use) {
    switch (type) {
        case data::metadata::kInt8:
            return use(std::int8_t{});
        case data::metadata::kBool:
        case data::metadata::kUint8:
            return use(std::uint8_t{});
        case data::metadata::kInt16:
            return use(std::int16_t{});
        case data::metadata::kUint16:
            return use(std::uint16_t{});
        case data::metadata::kInt32:
            return use(std::int32_t{});
        case data::metadata::kUint32:
            return use(std::uint32_t{});
        case data::metadata::kInt64:
            return use(std::int64_t{});
        case data::metadata::kUint64:
            return use(std::uint64_t{});
        case data::metadata::kScalar:
            return use(float{});
        default:
            return type >= data::metadata::kDouble && type <= data::metadata::kMatrix4x4 && use(double{});
    }
}

/// Each number in another type; empty if one of them has none there.
template <class To, class From>
std::vector<To> converted(const From* numbers, std::size_t count) {
    std::vector<To> result(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::optional<To> number = exactly<To>(numbers[i]);
        if (!number) return {};
        result[i] = *number;
    }
    return result;
}

/// Code units with a NUL behind each text, and back.
inline std::vector<std::string> split(const std::u16string& units) {
    std::vector<std::string> texts;
    for (std::size_t begin = 0, end = 0; (end = units.find(u'\0', begin)) != std::u16string::npos;
         begin = end + 1)
        core::string::StringAlgorithm::UTF8Encode(std::u16string_view(units).substr(begin, end - begin),
                                                  texts.emplace_back());
    return texts;
}

inline std::u16string joined(const std::string* texts, std::size_t count) {
    std::u16string units;
    for (std::size_t i = 0; i < count; ++i) {
        core::string::StringAlgorithm::UTF8Decode(std::string_view(texts[i]), units);
        units.push_back(u'\0');
    }
    return units;
}

}  // namespace detail

}  // namespace qvt
