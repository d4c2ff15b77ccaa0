#pragma once

#include <algorithm>
#include <cmath>

/// True for two numbers that differ by no more than sums and products of them are rounded: a millionth, of
/// the larger one if that is above 1.
template <class Number>
[[nodiscard]] bool TolerantEq(Number a, Number b) {
    constexpr Number tolerance = Number(1e-6);
    return std::abs(a - b) <= tolerance * std::max({Number(1), std::abs(a), std::abs(b)});
}
