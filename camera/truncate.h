// SPDX-License-Identifier: MIT
// The one way from a broken number to a whole one.
#pragma once

#include <cmath>
#include <limits>

/// Cut toward zero, for every number there is: what an int cannot hold becomes the end of the range that it
/// points to, and what is not a number becomes 0.
inline int truncated(double value)
{
    if (value >= std::numeric_limits<int>::max())
        return std::numeric_limits<int>::max();
    if (value <= std::numeric_limits<int>::min())
        return std::numeric_limits<int>::min();
    return std::isnan(value) ? 0 : static_cast<int>(value);
}
