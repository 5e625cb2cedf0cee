// A bar on standard error for what takes longer than a second.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace qvt {

// Draws itself again on `reached`, once the run has lasted for a second, and only on a terminal that can wipe
// out a line; it is wiped out when it goes.
class Progress {
  public:
    // Nothing is drawn where there is no `total`.
    Progress(const std::string& label, std::uint64_t total, bool isQuiet);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    void reached(std::uint64_t done);
    // Whether it can come to be drawn.
    bool isShown() const { return isShown_; }

    // Wipes out the bar that is drawn, if any, ahead of a message.
    static void clear();

  private:
    void draw(std::uint64_t percent);

    std::string label_;
    std::uint64_t total_;
    bool isShown_;
    std::chrono::steady_clock::time_point start_;
    std::uint64_t drawn_ = 101;
};

}  // namespace qvt
