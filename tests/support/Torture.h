// How long tests go on that could go on for ever. With the environment variable QVT_TORTURE set they take
// the long form; a number other than 1 in it begins other random sequences.
#pragma once

#include <cstdlib>
#include <string>

namespace norvane::platform::test {

inline bool isTorture() { return std::getenv("QVT_TORTURE") != nullptr; }

inline int rounds(int usual, int torture) { return isTorture() ? torture : usual; }

// Four times as often.
inline unsigned rounds(unsigned usual) { return isTorture() ? usual * 4 : usual; }

inline unsigned seed() {
    const char* text = std::getenv("QVT_TORTURE");
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : 1;
}

}  // namespace norvane::platform::test
