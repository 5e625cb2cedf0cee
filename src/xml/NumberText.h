#pragma once

#include <cstddef>

#include "norvane/platform/core/Types.h"

/// Numbers as text, in the "C" locale whatever the host's is. Not a conversion between types: a value is
/// written and read with the bytes of its own type.
///
/// The index says the type: the data type less 7, from 0 (bool) to 16 (matrix4x4). There are no others.
/// Values and targets need no alignment.
namespace norvane::platform::data {

/// Reads the number at the start of a token; a tail that cannot continue it is ignored. Integers of less than
/// 32 bits are read and stored as 32-bit ones without a look at their own range, so that `target` has room
/// for 4 bytes up to index 6 and at index 9, and for 8 at the others. False, with `target` left alone, when
/// the token does not begin with a number or the number is out of range.
bool parseNumber(const char* token, void* target, int index);

/// The same for a token that ends at `end`, with or without a NUL there.
bool parseNumber(const char* token, const char* end, void* target, int index);

/// Characters that the longest number takes, with its NUL.
inline constexpr std::size_t kNumberTextSize = 128;

/// Writes a value as decimal integer or, with at most 7 significant digits, in the general form of floats.
/// `text` has room for kNumberTextSize characters and gets a NUL. Always true.
bool formatNumber(const void* value, core::tWChar* text, int index);

/// The same without the NUL; gives the number of characters.
std::size_t formatNumber(const void* value, char* text, int index);

}  // namespace norvane::platform::data
