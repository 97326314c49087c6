// The distance and box tests that every search of this family applies to a candidate, written once
// so that different search structures keep exactly the same hits.
#pragma once

namespace qv7 {

// Sum of squared differences over the first D coordinates, in axis order.
template <unsigned D>
double __squared_distance(double const* c, double const* p) noexcept
{
    double q = 0.0;
    for (unsigned k = 0; k < D; ++k) {
        double t = c[k] - p[k];
        q += t * t;
    }
    return q;
}

// lo <= c <= hi on every axis; nothing passes a NaN bound.
template <unsigned D>
bool __in_box(double const* c, double const* lo, double const* hi) noexcept
{
    for (unsigned k = 0; k < D; ++k)
        if (!(lo[k] <= c[k] && c[k] <= hi[k])) return false;
    return true;
}

// p - d <= c <= p + d on every axis.
template <unsigned D>
bool __in_cube(double const* c, double const* p, double d) noexcept
{
    for (unsigned k = 0; k < D; ++k)
        if (!(p[k] - d <= c[k] && c[k] <= p[k] + d)) return false;
    return true;
}

// The box of half-width h around p: lo in box[0 .. D), hi in box[D .. 2D).
template <unsigned D>
void __box_around(double const* p, double h, double* box) noexcept
{
    for (unsigned k = 0; k < D; ++k) {
        box[k] = p[k] - h;
        box[D + k] = p[k] + h;
    }
}

}  // namespace qv7
