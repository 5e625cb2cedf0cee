#include "Progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

#include "Text.h"

namespace qvt {

namespace {

constexpr std::uint64_t kSteps = 40;
constexpr std::chrono::seconds kPatience{1};

bool isDrawn = false;

// What comes after something that took long is shown at once.
std::chrono::steady_clock::time_point beginOfRun() {
    static const auto begin = std::chrono::steady_clock::now();
    return begin;
}

}  // namespace

Progress::Progress(const std::string& label, std::uint64_t total, bool isQuiet)
    : label_(printable(label)),
      total_(total),
      isShown_(!isQuiet && total > 0 && ::isatty(STDERR_FILENO) != 0 && !isDumbTerminal()),
      start_(beginOfRun()) {}

void Progress::reached(std::uint64_t done) {
    if (!isShown_ || std::chrono::steady_clock::now() - start_ < kPatience) return;
    const std::uint64_t percent = done >= total_ ? 100 : done * 100 / total_;
    if (percent != drawn_ || !isDrawn) draw(percent);
}

void Progress::clear() {
    if (std::exchange(isDrawn, false)) std::fputs("\r\x1b[K", stderr);
}

void Progress::draw(std::uint64_t percent) {
    const auto filled = static_cast<std::size_t>(percent * kSteps / 100);
    const std::string bar = std::string(filled, '#') + std::string(kSteps - filled, '.');
    std::fprintf(stderr, "\r%s [%s] %3u%%", label_.c_str(), bar.c_str(), static_cast<unsigned>(percent));
    drawn_ = percent;
    isDrawn = true;
}

}  // namespace qvt
