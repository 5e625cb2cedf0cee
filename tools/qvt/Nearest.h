// What a mistyped word may have been meant to be.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qvt {

// Of the names that are offered, the one that takes the fewest slips of the hand (a letter too much, missing,
// wrong, or changed with the next) to become what was typed. Names further off than a third of their letters,
// or than three slips, are none; letters may differ in case.
class Nearest {
  public:
    explicit Nearest(std::string typed) : typed_(std::move(typed)) {}

    void offer(std::string_view name);

    // Empty if nothing that was offered is near.
    const std::string& name() const { return name_; }
    // "; did you mean NAME?", or nothing.
    std::string question() const { return asQuestion(name_); }
    static std::string asQuestion(const std::string& name);

  private:
    std::string typed_;
    std::string name_;
    std::size_t best_ = static_cast<std::size_t>(-1);
};

}  // namespace qvt
