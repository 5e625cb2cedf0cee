// The pairs of texts in a locale record.
#pragma once

#include <cstdint>

#include "records/View.h"

namespace norvane::platform::data::integrity {

// How many bytes of the payload are whole pairs: a text with its NUL, and another one.
inline std::uint32_t wholePairsSize(const Record::Section& payload) {
    std::uint32_t whole = 0, texts = 0;
    for (std::uint32_t at = 0; payload.size - at >= 2; at += 2) {
        const bool isNul = payload.begin[at] == std::byte{0} && payload.begin[at + 1] == std::byte{0};
        if (isNul && ++texts % 2 == 0) whole = at + 2;
    }
    return whole;
}

}  // namespace norvane::platform::data::integrity
