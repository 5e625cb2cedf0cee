// Floating point numbers with at most seven significant digits.
#pragma once

namespace norvane::platform::data {

// Writes what `to_chars` in the general form with precision 7 writes, and gives the end of it. Null, with
// `text` to be written over, for the few values of which one multiplication does not tell how they are
// rounded, and for those very large, very small or no numbers. `text` has room for 24 characters.
char* printSevenDigits(double value, char* text);

}  // namespace norvane::platform::data
