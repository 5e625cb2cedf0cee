#pragma once

#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

/// Number text through streams, one stream a number: slow and plainly right. The library must do the same.
namespace norvane::platform::data::reference {

template <typename T>
bool extractNumber(const std::string& token, void* target) {
    std::istringstream stream(token);
    stream.imbue(std::locale::classic());
    T value{};
    stream >> value;
    if (stream.fail() || stream.bad()) return false;
    std::memcpy(target, &value, sizeof value);
    return true;
}

inline bool parseNumber(const std::string& token, void* target, int index) {
    if (index == 7) return extractNumber<std::int64_t>(token, target);
    if (index == 8) return extractNumber<std::uint64_t>(token, target);
    if (index == 9) return extractNumber<float>(token, target);
    if (index >= 10) return extractNumber<double>(token, target);
    const bool isUnsigned = index == 2 || index == 4 || index == 6;
    return isUnsigned ? extractNumber<std::uint32_t>(token, target)
                      : extractNumber<std::int32_t>(token, target);
}

template <typename Stored, typename Printed>
std::string insertNumber(const void* value) {
    Stored stored;
    std::memcpy(&stored, value, sizeof stored);
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    if (!std::numeric_limits<Stored>::is_integer) stream.precision(7);
    stream << static_cast<Printed>(stored);
    return stream.str();
}

inline std::string formatNumber(const void* value, int index) {
    switch (index) {
        case 0:
        case 2:
            return insertNumber<std::uint8_t, std::int64_t>(value);
        case 1:
            return insertNumber<std::int8_t, std::int64_t>(value);
        case 3:
            return insertNumber<std::int16_t, std::int64_t>(value);
        case 4:
            return insertNumber<std::uint16_t, std::int64_t>(value);
        case 5:
            return insertNumber<std::int32_t, std::int64_t>(value);
        case 6:
            return insertNumber<std::uint32_t, std::int64_t>(value);
        case 7:
            return insertNumber<std::int64_t, std::int64_t>(value);
        case 8:
            return insertNumber<std::uint64_t, std::uint64_t>(value);
        case 9:
            return insertNumber<float, float>(value);
        default:
            return insertNumber<double, double>(value);
    }
}

}  // namespace norvane::platform::data::reference
