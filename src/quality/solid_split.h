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

// The pyramids on the quadrangular faces from boundary `first` on, with their apex at C, in order:
// m becomes the smallest pyramid quality, `warp` the smallest warp factor, and the walk stops once
// m is not above 1e-12; as pyramid5::geometric_quality face by face, with fewer acos. The factor
// grows with the cosine, so the smallest factor is the factor of the smallest cosine. Unless
// `all_values`, a face's own factor is taken only where its product with the quality could reach
// 1e-12 (from a cosine of 0 up the factor is above 0.49); m is then exact only below 1e-12.
template <class Solid>
double __face_pyramids_quality(dense2D<double> const& coords, unsigned const* nodes, unsigned first,
                               elfes::point3 const& C, double m, double& warp, bool all_values) noexcept
{
    static constexpr unsigned LOCAL[5] = {0, 1, 2, 3, 4};
    double c_min = HUGE_VAL;
    bool unwarped = false;
    for (unsigned b = first; b < Solid::stride; ++b) {
        matrix_fixed<double, 3, 5> local;
        for (unsigned j = 0; j < 5; ++j) {
            elfes::point3 P = j < 4 ? elfes::__point(coords, nodes[Solid::FACES[j][b]]) : C;
            for (unsigned i = 0; i < 3; ++i) local(i, j) = P[i];
        }
        bool final;
        double q = elfes::__pyramid_corner_quality(local, LOCAL, final), c;
        if (final || !elfes::__warp_cosine(local, LOCAL, c)) {
            unwarped = true;  // a factor of 0
            if (!final) q *= 0.0;
        } else {
            if (c < c_min) c_min = c;
            if (all_values || !(c >= 0.0 && q > 4e-12)) q *= elfes::__warp_factor(c);
        }
        m = std::min(m, q);
        if (!(m > 1e-12)) break;
    }
    warp = unwarped ? 0.0 : c_min == HUGE_VAL ? 1.0 : elfes::__warp_factor(c_min);
    return m;
}

// The split of a solid around its centroid: tetrahedra on its triangles, turned towards the
// centroid, then pyramids on its quadrangles; the smallest quality, stopping at flat, and the
// smallest warp factor of the pyramids.
template <class Solid>
double __split_quality(dense2D<double> const& coords, unsigned const* nodes, double& warp, bool all_values) noexcept
{
    constexpr unsigned N = Solid::nbr_rows;
    warp = 1.0;
    elfes::point3 C = centroid<N>(coords, nodes, N == 6 ? 0.16666666666666666 : 0.125);
    double m = 1.0;
    unsigned b = 0;
    for (; Solid::FACES[3][b] == NONE_ID; ++b) {
        unsigned reversed[3] = {nodes[Solid::FACES[2][b]], nodes[Solid::FACES[1][b]], nodes[Solid::FACES[0][b]]};
        m = std::min(m, elfes::tetra4::geometric_quality(coords, reversed, C));
        if (!(m > 1e-12)) return m;
    }
    return __face_pyramids_quality<Solid>(coords, nodes, b, C, m, warp, all_values);
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
    double m = __split_quality<Solid>(coords, nodes, warp, false);
    return m < 1e-12 ? m : q * warp;
}

}  // namespace elfe_algo
}  // namespace qv7
