// How often tests with random input are done.
#pragma once

#include <cstdlib>

namespace norvane::platform::test {

// Ten times as often as usual where the environment has QVT_LONG_TESTS.
inline unsigned rounds(unsigned usual) { return std::getenv("QVT_LONG_TESTS") ? usual * 10 : usual; }

}  // namespace norvane::platform::test
