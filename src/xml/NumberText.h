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

/// Reads numbers that have white space between them into elements of their type, one behind the other and no
/// more than `room`, as long as they are written plainly: digits, with a minus where the type has a sign, and
/// a point where it has fractions. Gives how many, and moves `at` behind them; what stands there, behind
/// white space or not, is the end or takes `parseNumber`.
std::size_t parsePlainNumbers(const char*& at, const char* end, std::byte* elements, std::size_t room,
                              int index);

/// Characters that the longest number takes, with its NUL.
inline constexpr std::size_t kNumberTextSize = 128;

/// Writes a value as decimal integer or, with at most 7 significant digits, in the general form of floats.
/// `text` has room for kNumberTextSize characters and gets a NUL. Always true.
bool formatNumber(const void* value, core::tWChar* text, int index);

/// The same without the NUL; gives the number of characters.
std::size_t formatNumber(const void* value, char* text, int index);

}  // namespace norvane::platform::data
