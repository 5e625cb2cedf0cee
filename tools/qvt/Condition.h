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
    // `whole` is the condition as it was given, for messages.
    void takeNumber(const std::string& text, const std::string& whole);
    void takeUnit(const std::string& name, const std::string& whole);
    bool isMetByText(const std::string& text) const;
    bool isMetByNumber(long double number, long double wanted, long double slack) const;
    bool isMetByNumbers(IPrimitive& primitive);
    // A number in the unit of a primitive, and what its rounding may be off by.
    struct Wanted {
        long double number;
        long double slack;
    };
    // The number that is asked for; nothing if the primitive has no unit of its dimension.
    std::optional<Wanted> wantedFor(IPrimitive& primitive);
    std::optional<Wanted> converted(std::uint32_t unit, long double precision);
    // As a primitive of that type would keep it.
    long double asKept(std::uint32_t type) const;

    Operator operator_ = Operator::like;
    std::string text_;
    Glob glob_;
    std::optional<long double> number_;
    double double_ = 0;  // the same number as the types of floating point round it
    float single_ = 0;
    bool isTruth_ = false;  // "true" or "false", for bools alone
    std::uint32_t unit_ = 0;
    std::uint32_t incomparable_ = 0;
};

}  // namespace qvt
