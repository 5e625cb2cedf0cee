// The few system calls that files need, repeated when a signal has interrupted them.
#pragma once

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace norvane::platform::core::io {

// -1 is a failure, with the reason in `errno`.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

inline std::string describeError(int number) { return number == 0 ? std::string() : std::strerror(number); }

}  // namespace norvane::platform::core::io
