// How units of one dimension relate.
#pragma once

#include <cstdint>
#include <optional>

namespace qvt {

// A number in the unit, times `factor`, plus `offset`, is the number in the coherent unit of its dimension:
// meters, kilograms, seconds, kelvins and what is made of these.
struct UnitScale {
    long double factor;
    long double offset;
};

// Nothing for units whose size depends on place, trade or time (a month, a horsepower of no kind), and for
// those that say no more than a name.
std::optional<UnitScale> scaleOf(std::uint32_t unit);

}  // namespace qvt
