// The tetrahedron's shape quality with the re-evaluation that settles the sign of flat elements.
#pragma once

#include "connectivity/elfes.h"
#include "quality/point3.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qv7 {
namespace elfes {

constexpr double __TETRAHEDRON_SCALE = 4.898979485566356;  // 2 sqrt(6)
// Below this share of its product of squared sides, a face's squared area has cancelled.
constexpr double __CANCELLED = 1e-12;

// 2 sqrt(6) times inradius over longest edge, from the dot products of three edge vectors alone.
inline double __edge_vectors_quality(point3 const& a, point3 const& b, point3 const& c, bool& unsure) noexcept
{
    double aa = __dot(a, a), bb = __dot(b, b), cc = __dot(c, c);
    double ab = __dot(a, b), ac = __dot(a, c), bc = __dot(b, c);
    double ab2 = (aa - ab) + (bb - ab), ac2 = (aa - ac) + (cc - ac), bc2 = (bb - bc) + (cc - bc);
    double abac = (aa - ab) - (ac - bc);  // (a - b) . (a - c)
    // Squared double areas by Lagrange's identity: no cross product is formed.
    double A[4] = {aa * cc - ac * ac, bb * cc - bc * bc, ac2 * ab2 - abac * abac, aa * bb - ab * ab};
    double products[4] = {aa * cc, bb * cc, ac2 * ab2, aa * bb};
    unsure = !(ab2 > 0.0) | !(ac2 > 0.0) | !(bc2 > 0.0);
    for (unsigned f = 0; f < 4; ++f) unsure |= __CANCELLED * products[f] > A[f];
    if (unsure)
        for (double& area : A) area = std::max(area, 0.0);
    double hmax = std::sqrt(std::max({aa, bb, cc, ab2, ac2, bc2}));
    double S = std::sqrt(A[0]) + std::sqrt(A[1]) + std::sqrt(A[2]) + std::sqrt(A[3]);
    double D = S * hmax;
    if (!(D > 0.0)) return 0.0;
    return __clamp_quality(__det(a, b, c) / D * __TETRAHEDRON_SCALE);
}

inline double tetra4::__geometric_quality1(matrix_fixed<double, 3, 3> const& M, bool& unsure) noexcept
{
    return __edge_vectors_quality({M(0, 0), M(1, 0), M(2, 0)}, {M(0, 1), M(1, 1), M(2, 1)}, {M(0, 2), M(1, 2), M(2, 2)},
                                  unsure);
}

inline void __set_edge_vectors(point3 const (&p)[4], matrix_fixed<double, 3, 3>& M) noexcept
{
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned i = 0; i < 3; ++i) M(i, j) = p[j][i] - p[3][i];
}

template <class Coords>
void tetra4::get_loc_coordinates(Coords const& coords, unsigned const* nodes, vector_fixed<double, 3> const& origin,
                                 unsigned index, matrix_fixed<double, 3, 3>& M) noexcept
{
    point3 p[4] = {__point(coords, nodes[0]), __point(coords, nodes[1]), __point(coords, nodes[2]), origin};
    if (index != 0) {
        unsigned r = index / 3, s = index % 3;
        point3 q[4];
        for (unsigned k = 0; k < 4; ++k) q[k] = p[(k + r) % 4];
        for (unsigned k = 0; k < 3; ++k) p[k] = q[(k + s) % 3];
        p[3] = q[3];
        // A rotation of four entries by an odd count is odd; the swap makes it even again.
        if (r % 2 == 1) std::swap(p[0], p[1]);
    }
    __set_edge_vectors(p, M);
}

// Evaluating the same element in other node orders costs nothing on usual elements, which leave
// at the first test, and takes the effect of rounding out of the sign of flat ones.
template <class Coords>
double tetra4::geometric_quality(Coords const& coords, unsigned const* nodes,
                                 vector_fixed<double, 3> const& apex) noexcept
{
    bool unsure = false;
    point3 a = __minus(__point(coords, nodes[0]), apex), b = __minus(__point(coords, nodes[1]), apex);
    double q = __edge_vectors_quality(a, b, __minus(__point(coords, nodes[2]), apex), unsure);
    if (!unsure && !(std::fabs(q) < 1e-10)) return q;
    if (!(std::fabs(q) > 1e-12)) return q;
    double best = std::fabs(q);
    matrix_fixed<double, 3, 3> M;
    for (unsigned index = 1; index < 12; ++index) {
        get_loc_coordinates(coords, nodes, apex, index, M);
        double q2 = __geometric_quality1(M, unsure);
        if (!(q * q2 > 0.0)) return 0.0;  // the sign depends on the order: flat to working precision
        if (std::fabs(q2) < best) q = q2;
        best = std::min(best, std::fabs(q2));
        if (!(best > 1e-12)) return q;
    }
    return q;
}

template <class Coords>
double tetra4::geometric_quality(Coords const& coords, unsigned const* nodes) noexcept
{
    return geometric_quality(coords, nodes, __point(coords, nodes[3]));
}

}  // namespace elfes
}  // namespace qv7
