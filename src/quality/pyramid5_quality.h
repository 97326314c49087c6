// The pyramid's shape quality: the smallest base corner extent over 2 (apex sides) + (base sides)
// squared, to the power 3/2, times the warp of the base.
#pragma once

#include "quality/faceQ4_warp.h"
#include "quality/tetra4_quality.h"

namespace qv7 {
namespace elfes {

// The extents of the four corner tetrahedra of the base, with the apex.
template <class Coords>
double pyramid5::__min_tet_extent(Coords const& coords, unsigned const* nodes) noexcept
{
    point3 P0 = __point(coords, nodes[0]), P3 = __point(coords, nodes[3]), P4 = __point(coords, nodes[4]);
    point3 A = __minus(P0, P4), B = __minus(__point(coords, nodes[2]), P4);
    point3 C = __minus(__point(coords, nodes[1]), P4), D = __minus(P3, P4);
    return std::min({__det(A, B, __minus(P4, P3)), __det(A, B, C), __det(C, D, __minus(P4, P0)), __det(C, D, B)});
}

template <class Coords>
double pyramid5::__geometric_quality1(Coords const& coords, unsigned const* nodes) noexcept
{
    constexpr double PYRAMID_SCALE = 58.78775382679627;  // 24 sqrt(6)
    point3 P[5];
    for (unsigned i = 0; i < 5; ++i) P[i] = __point(coords, nodes[i]);
    double apex_sides = 0.0, base_sides = 0.0;
    for (unsigned i = 0; i < 4; ++i) {
        point3 up = __minus(P[4], P[i]), along = __minus(P[(i + 1) % 4], P[i]);
        apex_sides += __dot(up, up);
        base_sides += __dot(along, along);
    }
    double D = __pow_three_halves(2.0 * apex_sides + base_sides);
    if (!(D > 0.0)) return 0.0;
    return __clamp_quality(PYRAMID_SCALE * __min_tet_extent(coords, nodes) / D);
}

// The quality before the warp of the base; `final` when it is the pyramid's value as it stands:
// flat or inverted, or barely positive with a base tetrahedron below flat, whose sign is settled
// with care.
template <class Coords>
double __pyramid_corner_quality(Coords const& coords, unsigned const* nodes, bool& final) noexcept
{
    constexpr double BARELY_POSITIVE = 4.1569219381653057e-11;
    double q = pyramid5::__geometric_quality1(coords, nodes);
    final = true;
    if (!(q > 1e-12)) return q;
    if (q < BARELY_POSITIVE) {
        double m = 1.0;
        for (unsigned k = 1; k <= 4 && m > 1e-12; ++k) {
            unsigned tet[4] = {nodes[k - 1], nodes[(k + 1) % 4], nodes[k % 4], nodes[4]};
            m = std::min(m, tetra4::geometric_quality(coords, tet));
        }
        if (m < 1e-12) return m;
    }
    final = false;
    return q;
}

// A planar base gives `warp` 1, and so does a pos of other than three rows.
template <class Coords>
double pyramid5::geometric_quality(Coords const& coords, unsigned const* nodes, double& warp) noexcept
{
    bool final;
    double q = __pyramid_corner_quality(coords, nodes, final);
    warp = 0.0;
    if (final) return q;
    warp = coords.rows() == 3 ? faceQ4::__warp_quality(coords, nodes, fixed_size_tag<3u>{}) : 1.0;
    return q * warp;
}

}  // namespace elfes
}  // namespace qv7
