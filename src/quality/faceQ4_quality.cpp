// The quadrangle's shape quality: 4 sqrt(2) times the worst corner over longest side and perimeter.
#include "quality/faceQ4_warp.h"

#include <algorithm>

namespace qv7 {
namespace elfes {
namespace {

constexpr double QUADRANGLE_SCALE = 5.656854249492381;  // 4 sqrt(2)

// Perimeter L and the longest of the sides and diagonals H; L * H is 0 for coincident points.
void perimeter_and_span(point3 const (&P)[4], double& L, double& H) noexcept
{
    double side[4];
    for (unsigned i = 0; i < 4; ++i) side[i] = __norm(__minus(P[(i + 1) % 4], P[i]));
    L = side[0] + side[1] + side[2] + side[3];
    H = std::max({side[0], side[1], side[2], side[3], __norm(__minus(P[2], P[0])), __norm(__minus(P[3], P[1]))});
}

void corners(dense2D<double> const& coords, unsigned const* nodes, point3 (&P)[4]) noexcept
{
    for (unsigned i = 0; i < 4; ++i) P[i] = __point(coords, nodes[i]);
}

}  // namespace

// Signed in the plane: the smallest corner cross product, negative at a re-entrant corner.
double faceQ4::__geometric_quality(dense2D<double> const& coords, unsigned const* nodes, fixed_size_tag<2u>) noexcept
{
    point3 P[4], N[4];
    corners(coords, nodes, P);
    __corner_normals(coords, nodes, N);
    double L, H;
    perimeter_and_span(P, L, H);
    double X = std::min({N[0][2], N[1][2], N[2][2], N[3][2]});
    if (!(H * L > 0.0)) return 0.0;
    return __clamp_quality(QUADRANGLE_SCALE * X / (H * L));
}

// Unsigned in space: the smallest corner normal's length, times the warp factor.
double faceQ4::__geometric_quality(dense2D<double> const& coords, unsigned const* nodes, fixed_size_tag<3u>) noexcept
{
    point3 P[4], N[4];
    corners(coords, nodes, P);
    __corner_normals(coords, nodes, N);
    double L, H;
    perimeter_and_span(P, L, H);
    double length[4] = {__norm(N[0]), __norm(N[1]), __norm(N[2]), __norm(N[3])};
    double X = std::min({length[0], length[1], length[2], length[3]});
    double base = H * L > 0.0 ? QUADRANGLE_SCALE * X / (H * L) : 0.0;
    double warp = 0.0;
    if (X > 0.0)
        warp = __warp_factor(std::min(__dot(N[0], N[2]) / (length[0] * length[2]),
                                      __dot(N[1], N[3]) / (length[1] * length[3])));
    return __clamp_quality(base * warp, 0.0);
}

}  // namespace elfes
}  // namespace qv7
