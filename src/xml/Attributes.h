// The attributes of a start tag.
#pragma once

#include <string>
#include <string_view>

#include "norvane/platform/core/string/StringAlgorithm.h"

namespace norvane::platform::data {

// Name, value, name, value and so on, ending in a null name; UTF-8. A value may be null.
using Attributes = const char* const*;

// Whether the text, which ends in a NUL, is that name. Most differ in their first character.
inline bool isName(const char* text, std::string_view name) {
    for (const char each : name)
        if (*text++ != each) return false;
    return *text == '\0';
}

// The value of the first attribute of that name, case included; null when there is none. An empty value is a
// value.
inline const char* findAttribute(std::string_view name, Attributes attributes) {
    for (; attributes && *attributes; attributes += 2)
        if (isName(attributes[0], name)) return attributes[1];
    return nullptr;
}

inline std::u16string decode(std::string_view utf8) {
    std::u16string text;
    core::string::StringAlgorithm::UTF8Decode(utf8, text);
    return text;
}

}  // namespace norvane::platform::data
