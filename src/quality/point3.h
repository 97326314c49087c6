// Points of an element in space and the few vector products the quality measures need.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/fixed.h"

#include <cmath>

namespace qv7 {
namespace elfes {

using point3 = vector_fixed<double, 3>;

// A node of a coordinate array; rows it lacks read as 0, and nothing is read past a column.
inline point3 __point(dense2D<double> const& coords, unsigned node) noexcept
{
    double const* c = coords.col(node);
    switch (coords.rows()) {
    case 1:
        return {c[0], 0.0, 0.0};
    case 2:
        return {c[0], c[1], 0.0};
    default:
        return {c[0], c[1], c[2]};
    }
}
// A column of the local holder of a face and a centroid.
inline point3 __point(matrix_fixed<double, 3, 5> const& coords, unsigned node) noexcept
{
    return {coords(0, node), coords(1, node), coords(2, node)};
}

inline point3 __minus(point3 const& a, point3 const& b) noexcept
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline double __dot(point3 const& a, point3 const& b) noexcept
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline double __norm(point3 const& a) noexcept
{
    return std::sqrt(__dot(a, a));
}
inline point3 __cross(point3 const& a, point3 const& b) noexcept
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
// a . (b x c): six times the signed volume of the tetrahedron on the three edge vectors.
inline double __det(point3 const& a, point3 const& b, point3 const& c) noexcept
{
    return __dot(a, __cross(b, c));
}

// The extent of the corner at i with the edges towards a, b and c.
template <class Coords>
double __corner_extent(Coords const& coords, unsigned const* nodes, unsigned i, unsigned a, unsigned b,
                       unsigned c) noexcept
{
    point3 P = __point(coords, nodes[i]);
    return __det(__minus(__point(coords, nodes[a]), P), __minus(__point(coords, nodes[b]), P),
                 __minus(__point(coords, nodes[c]), P));
}

inline double __clamp_quality(double q, double low = -1.0) noexcept
{
    return q < low ? low : q > 1.0 ? 1.0 : q;
}

// The shared scale of the solids' corner measures: a sum of squared sides to the power 3/2,
// without the cost of pow.
inline double __pow_three_halves(double s) noexcept
{
    return s * std::sqrt(s);
}

}  // namespace elfes
}  // namespace qv7
