// Bracketed minimisation of a function of one variable by repeated halving.
#pragma once

#include <algorithm>
#include <cmath>

namespace qv7 {

// Keeps lo <= x <= hi with x below both ends when it can; leaves the best point in x and its
// value in fx. Stops when the three values lie within value_tolerance (relative when negative)
// or the bracket is no wider than argument_tolerance. `less` orders the values.
template <class Objective, class Less>
void dichotomic_min(typename Objective::domain_type& lo, typename Objective::domain_type& x,
                    typename Objective::domain_type& hi, Objective& f, Less less, double value_tolerance,
                    double argument_tolerance, typename Objective::range_type& fx)
{
    using range = typename Objective::range_type;
    x = lo;
    range flo = f(lo);
    fx = flo;
    range fhi = f(hi);
    if (lo >= hi) return;
    x = (lo + hi) / 2;
    fx = f(x);
    for (;;) {
        auto a = (lo + x) / 2, b = (hi + x) / 2;
        if (less(fx, flo) && less(fx, fhi)) {
            range fa = f(a);
            if (less(fa, fx)) {
                hi = x, fhi = fx, x = a, fx = fa;
            } else {
                range fb = f(b);
                if (less(fb, fx)) {
                    lo = x, flo = fx, x = b, fx = fb;
                } else {
                    lo = a, flo = fa, hi = b, fhi = fb;
                }
            }
        } else {
            if (less(fhi, flo)) {
                lo = x, flo = fx, x = b;
            } else {
                hi = x, fhi = fx, x = a;
            }
            fx = f(x);
        }
        double d = std::max(std::abs(fx - fhi), std::abs(fx - flo));
        if (value_tolerance >= 0 && value_tolerance >= d) break;
        if (value_tolerance < 0 && -value_tolerance * std::max({std::abs(fhi), std::abs(fx), std::abs(flo)}) >= d)
            break;
        if (argument_tolerance >= hi - lo) break;
    }
    if (less(flo, fhi) && less(flo, fx)) {
        if (less(fx, fhi)) hi = x;
        x = lo;
        fx = flo;
    }
    if (less(fhi, flo) && less(fhi, fx)) {
        if (less(fx, flo)) lo = x;
        x = hi;
        fx = fhi;
    }
}

}  // namespace qv7
