// From UTF-16 text to the UTF-8 of a document.
#pragma once

#include <cstddef>
#include <cstdint>

#include "norvane/platform/core/Types.h"

namespace norvane::platform::core::xml {

enum class Context : std::uint8_t { text, attribute };

// The most bytes that one code unit can become.
inline constexpr std::size_t kMostBytesPerUnit = 6;

inline bool isHighSurrogate(tWChar unit) { return (unit & 0xFC00) == 0xD800; }
inline bool isLowSurrogate(tWChar unit) { return (unit & 0xFC00) == 0xDC00; }

// Writes the text from `from` on, at least up to `stop` and at most up to `end`, and moves `from` behind what
// was written: one code unit past `stop` if a surrogate pair lies across it. `to` has room for
// `kMostBytesPerUnit` bytes for each unit before `stop`. Answers the end of what was written.
char* escape(const tWChar*& from, const tWChar* stop, const tWChar* end, char* to, Context context);

// The two halves of a surrogate pair. Writes four bytes.
char* putPair(tWChar high, tWChar low, char* to);

// The character that stands for what cannot be written. Writes three bytes.
char* putReplacement(char* to);

}  // namespace norvane::platform::core::xml
