// The quadrangle's shape quality: 4 sqrt(2) times the worst corner over longest side and perimeter.
#include "quality/faceQ4_warp.h"

#include <algorithm>

namespace qv7 {
namespace elfes {
namespace {

constexpr double QUADRANGLE_SCALE = 5.656854249492381;  // 4 sqrt(2)

// The corner normals N, and the product of the perimeter and of the longest of the sides and
// diagonals: 0 for coincident points.
double corners_and_scale(dense2D<double> const& coords, unsigned const* nodes, point3 (&N)[4]) noexcept
{
    point3 P[4];
    for (unsigned i = 0; i < 4; ++i) P[i] = __point(coords, nodes[i]);
    __corner_normals(coords, nodes, N);
    double side[4];
    for (unsigned i = 0; i < 4; ++i) side[i] = __norm(__minus(P[(i + 1) % 4], P[i]));
    double L = side[0] + side[1] + side[2] + side[3];
    double diagonal[2] = {__norm(__minus(P[2], P[0])), __norm(__minus(P[3], P[1]))};
    double H = std::max({side[0], side[1], side[2], side[3], diagonal[0], diagonal[1]});
    return H * L;
}

}  // namespace

// Signed in the plane: the smallest corner cross product, negative at a re-entrant corner.
double faceQ4::__geometric_quality(dense2D<double> const& coords, unsigned const* nodes, fixed_size_tag<2u>) noexcept
{
    point3 N[4];
    double HL = corners_and_scale(coords, nodes, N);
    double X = std::min({N[0][2], N[1][2], N[2][2], N[3][2]});
    if (!(HL > 0.0)) return 0.0;
    return __clamp_quality(QUADRANGLE_SCALE * X / HL);
}

// Unsigned in space: the smallest corner normal's length, times the warp factor.
double faceQ4::__geometric_quality(dense2D<double> const& coords, unsigned const* nodes, fixed_size_tag<3u>) noexcept
{
    point3 N[4];
    double HL = corners_and_scale(coords, nodes, N);
    double length[4] = {__norm(N[0]), __norm(N[1]), __norm(N[2]), __norm(N[3])};
    double X = std::min({length[0], length[1], length[2], length[3]});
    double base = HL > 0.0 ? QUADRANGLE_SCALE * X / HL : 0.0;
    // The products are tested too: two tiny normals can underflow to 0 between them.
    double p02 = length[0] * length[2], p13 = length[1] * length[3];
    double warp = 0.0;
    if (X > 0.0 && p02 > 0.0 && p13 > 0.0)
        warp = __warp_factor(std::min(__dot(N[0], N[2]) / p02, __dot(N[1], N[3]) / p13));
    return __clamp_quality(base * warp, 0.0);
}

}  // namespace elfes
}  // namespace qv7
