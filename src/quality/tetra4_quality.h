// The tetrahedron's shape quality with the re-evaluation that settles the sign of flat elements.
#pragma once

#include "connectivity/elfes.h"
#include "quality/point3.h"

#include <cmath>
#include <utility>

namespace qv7 {
namespace elfes {

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
    matrix_fixed<double, 3, 3> M;
    get_loc_coordinates(coords, nodes, apex, 0, M);
    bool unsure = false;
    double q = __geometric_quality1(M, unsure);
    if (!unsure && !(std::fabs(q) < 1e-10)) return q;
    if (!(std::fabs(q) > 1e-12)) return q;
    double best = std::fabs(q);
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
