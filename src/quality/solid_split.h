// Pieces of the split of a solid into pyramids and tetrahedra on its faces around its centroid.
#pragma once

#include "quality/pyramid5_quality.h"

namespace qv7 {
namespace elfe_algo {

// The node coordinates summed in local order, times 1/N.
template <unsigned N>
elfes::point3 centroid(dense2D<double> const& coords, unsigned const* nodes, double inverse_count) noexcept
{
    elfes::point3 C = {0.0, 0.0, 0.0};
    for (unsigned i = 0; i < N; ++i) {
        elfes::point3 P = elfes::__point(coords, nodes[i]);
        for (unsigned k = 0; k < 3; ++k) C[k] += P[k];
    }
    for (unsigned k = 0; k < 3; ++k) C[k] *= inverse_count;
    return C;
}

// The sum of the squared lengths of the edges of a table of local pairs.
template <unsigned NE>
double __sum_sqr_edges(dense2D<double> const& coords, unsigned const* nodes,
                       unsigned char const (&edges)[NE][2]) noexcept
{
    double sum = 0.0;
    for (auto const& edge : edges) {
        elfes::point3 side =
            elfes::__minus(elfes::__point(coords, nodes[edge[1]]), elfes::__point(coords, nodes[edge[0]]));
        sum += elfes::__dot(side, side);
    }
    return sum;
}

// The pyramid on a quadrangular face (local nodes f0..f3) with its apex at C.
inline double __face_pyramid_quality(dense2D<double> const& coords, unsigned const* nodes, unsigned const* face,
                                     elfes::point3 const& C, double& warp) noexcept
{
    matrix_fixed<double, 3, 5> local;
    for (unsigned j = 0; j < 5; ++j) {
        elfes::point3 P = j < 4 ? elfes::__point(coords, nodes[face[j]]) : C;
        for (unsigned i = 0; i < 3; ++i) local(i, j) = P[i];
    }
    static constexpr unsigned LOCAL[5] = {0, 1, 2, 3, 4};
    return elfes::pyramid5::geometric_quality(local, LOCAL, warp);
}

// The tetrahedron on a triangular face, turned so that C lies on its positive side.
inline double __face_tetra_quality(dense2D<double> const& coords, unsigned const* nodes, unsigned const* face,
                                   elfes::point3 const& C) noexcept
{
    unsigned reversed[3] = {nodes[face[2]], nodes[face[1]], nodes[face[0]]};
    return elfes::tetra4::geometric_quality(coords, reversed, C);
}

// The corner quality, scale * extent over the squared sides to the power 3/2; past it the split:
// its own value when that is below flat, else the corner quality times the worst face warp.
template <class Solid>
double __corner_and_split_quality(dense2D<double> const& coords, unsigned const* nodes, double scale,
                                  double extent) noexcept
{
    double D = elfes::__pow_three_halves(Solid::sum_sqr_sides(coords, nodes));
    double q = D > 0.0 ? elfes::__clamp_quality(scale * extent / D) : 0.0;
    if (!(q > 1e-12)) return q;
    double warp;
    double m = Solid::min_split_quality(coords, nodes, warp);
    return m < 1e-12 ? m : q * warp;
}

}  // namespace elfe_algo
}  // namespace qv7
