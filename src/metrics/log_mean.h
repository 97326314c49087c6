// The logarithmic mean (b - a) / log(b / a) of two sizes: the mean that makes the length of an
// edge along which the size varies linearly equal to its Euclidean length over that mean.
#pragma once

#include <algorithm>
#include <cmath>

namespace qv7 {

// m * r / log(1 + r) with m = min(a, b), r = (max(a, b) - m) / m. Below r = 0.1 the factor is the
// series 1 + s - s^2/3 + s^3/3 - (19/45) s^4 in s = r / 2, which keeps its accuracy as r goes to
// 0 where the quotient would cancel. A smallest value not > 0 is returned as it is.
inline double log_mean(double a, double b) noexcept
{
    double m = std::min(a, b);
    if (!(m > 0.0)) return m;
    double r = (std::max(a, b) - m) / m;
    if (r >= 0.1) return m * (r / std::log(1.0 + r));
    double s = r / 2;
    return m * (((1.0 - (-1.2666666666666666 * s + 1.0) * s) * (-0.3333333333333333 * s) + 1.0) * s + 1.0);
}

}  // namespace qv7
