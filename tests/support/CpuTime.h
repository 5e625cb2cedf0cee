// How much work something takes, on machines that do other work beside.
#pragma once

#include <algorithm>
#include <ctime>

namespace norvane::platform::test {

// Seconds that this thread has been running.
inline double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The shortest of some runs, in seconds of this thread.
template <class Work>
double shortestRun(Work work, int runs = 3) {
    double shortest = 1e9;
    for (int i = 0; i < runs; ++i) {
        const double start = threadSeconds();
        work();
        shortest = std::min(shortest, threadSeconds() - start);
    }
    return shortest;
}

}  // namespace norvane::platform::test
