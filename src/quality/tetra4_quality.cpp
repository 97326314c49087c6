// One evaluation of the tetrahedron's quality, 2 sqrt(6) times inradius over longest edge, from
// the dot products of three edge vectors alone.
#include "quality/tetra4_quality.h"

#include <algorithm>

namespace qv7 {
namespace elfes {
namespace {

constexpr double TETRAHEDRON_SCALE = 4.898979485566356;  // 2 sqrt(6)

// Below this share of its product of squared sides, a face's squared area has cancelled.
constexpr double CANCELLED = 1e-12;

}  // namespace

double tetra4::__geometric_quality1(matrix_fixed<double, 3, 3> const& M, bool& unsure) noexcept
{
    point3 a = {M(0, 0), M(1, 0), M(2, 0)}, b = {M(0, 1), M(1, 1), M(2, 1)}, c = {M(0, 2), M(1, 2), M(2, 2)};
    double aa = __dot(a, a), bb = __dot(b, b), cc = __dot(c, c);
    double ab = __dot(a, b), ac = __dot(a, c), bc = __dot(b, c);
    double ab2 = (aa - ab) + (bb - ab), ac2 = (aa - ac) + (cc - ac), bc2 = (bb - bc) + (cc - bc);
    double abac = (aa - ab) - (ac - bc);  // (a - b) . (a - c)
    // Squared double areas by Lagrange's identity: no cross product is formed.
    double A[4] = {aa * cc - ac * ac, bb * cc - bc * bc, ac2 * ab2 - abac * abac, aa * bb - ab * ab};
    double products[4] = {aa * cc, bb * cc, ac2 * ab2, aa * bb};
    unsure = !(ab2 > 0.0) || !(ac2 > 0.0) || !(bc2 > 0.0);
    for (unsigned f = 0; f < 4; ++f) unsure = unsure || CANCELLED * products[f] > A[f];
    if (unsure)
        for (double& area : A) area = std::max(area, 0.0);
    double hmax = std::sqrt(std::max({aa, bb, cc, ab2, ac2, bc2}));
    double S = std::sqrt(A[0]) + std::sqrt(A[1]) + std::sqrt(A[2]) + std::sqrt(A[3]);
    double D = S * hmax;
    if (!(D > 0.0)) return 0.0;
    return __clamp_quality(__det(a, b, c) / D * TETRAHEDRON_SCALE);
}

}  // namespace elfes
}  // namespace qv7
