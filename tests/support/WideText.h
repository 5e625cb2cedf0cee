// Makes GoogleTest print wide strings as text.
#pragma once

#include <ostream>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/core/string/WideString.h"

namespace norvane::platform::core::string {

inline void PrintTo(const WideString& text, std::ostream* out) {
    if (text.value())
        *out << '"' << StringAlgorithm::UTF8Encode(text.value(), text.length()) << '"';
    else
        *out << "(null)";
}

}  // namespace norvane::platform::core::string
