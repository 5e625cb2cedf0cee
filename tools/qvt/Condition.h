// What a value is asked to be.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Glob.h"
#include "Names.h"

namespace qvt {

// "OPERATOR NUMBER [UNIT]", "= TEXT", "!= TEXT", or a pattern for texts, which may be a number too. A value
// meets it if one of its numbers or texts does. With a unit it is met only by primitives with a unit of the
// same dimension, whose numbers are converted.
class Condition {
  public:
    // What is no condition is a Failure.
    explicit Condition(const std::string& text);

    bool isMetBy(IPrimitive& primitive);

    // A unit of the same dimension that was met and whose size is not known, or that of the condition is not:
    // its values could not be compared. 0 if there was none.
    std::uint32_t incomparable() const { return incomparable_; }
    std::uint32_t unit() const { return unit_; }

  private:
    enum class Operator { equal, unequal, less, atMost, greater, atLeast, like };

    void takeOperator(std::string& rest);
    void takeNumber(const std::string& text);
    void takeUnit(const std::string& name, const std::string& text);
    bool isMetByText(const std::string& text) const;
    bool isMetByNumber(long double number, long double wanted, long double slack) const;
    bool isMetByNumbers(IPrimitive& primitive);
    // The number that is asked for in the primitive's own unit; nothing if it has none of the dimension.
    std::optional<long double> wantedIn(std::uint32_t unit);

    Operator operator_ = Operator::like;
    std::string text_;
    Glob glob_;
    std::optional<long double> number_;
    bool isTruth_ = false;  // "true" or "false", for bools alone
    std::uint32_t unit_ = 0;
    std::uint32_t incomparable_ = 0;
};

}  // namespace qvt
