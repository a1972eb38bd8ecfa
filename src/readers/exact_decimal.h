// The double nearest to a decimal w x 10^q (ties to even), as strtod rounds it, by the
// two exact methods that are cheap: one IEEE operation when w and 10^|q| are both exact
// doubles, and otherwise one or two 64 x 128-bit products with a truncated power of
// five, taken only when the product decides the rounding.
#pragma once

#include <cstdint>

namespace kavren {

// Sets `value` to the nearest double of (negative ? -1 : 1) * w * 10^q and returns true,
// or returns false (value untouched) when this method cannot decide: exponents out of
// its table, results below the normal range or above the largest double, and the rare
// products too close to a rounding boundary. A zero w gives a zero of the sign.
bool exact_decimal_to_double(std::uint64_t w, int q, bool negative, double& value);

}  // namespace kavren
