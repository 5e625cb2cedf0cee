// Clean-up in steps of which each is taken, whatever the others throw.
#pragma once

#include <exception>
#include <utility>

namespace norvane::platform::data {

// Takes all steps of a clean-up and keeps the first exception for its end.
class FirstFailure {
  public:
    template <class Step>
    void attempt(Step&& step) noexcept {
        try {
            std::forward<Step>(step)();
        } catch (...) {
            if (!failure_) failure_ = std::current_exception();
        }
    }

    // Throws what the first failed step threw, if any did. Not for an unwinding destructor: see
    // `isUnwinding`.
    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

  private:
    std::exception_ptr failure_;
};

// Tells a destructor whether it runs because of an exception, in which case it must not throw another.
class UnwindingCheck {
  public:
    bool isUnwinding() const { return std::uncaught_exceptions() > atBirth_; }

  private:
    int atBirth_ = std::uncaught_exceptions();
};

}  // namespace norvane::platform::data
