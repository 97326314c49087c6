// The triangle's shape quality: 2 sqrt(3) times inradius over longest side.
#include "connectivity/elfes.h"
#include "quality/point3.h"

#include <algorithm>

namespace qv7 {
namespace elfes {
namespace {

constexpr double TRIANGLE_SCALE = 3.4641016151377544;  // 2 sqrt(3)

// Signed: counter-clockwise is positive. The cross product is taken on the two shortest sides.
double plane_quality(point3 const& u, point3 const& v) noexcept
{
    double a = __norm(u), b = __norm(v), c = __norm(__minus(u, v));
    double D = std::max({a, b, c}) * (a + b + c);
    if (!(D > 0.0)) return 0.0;
    double X = c > std::min(a, b) ? u[0] * v[1] - u[1] * v[0] : u[0] * (v[1] - u[1]) - u[1] * (v[0] - u[0]);
    return __clamp_quality(TRIANGLE_SCALE * X / D);
}

// Unsigned: the area from Heron's product in Kahan's stable grouping, on sorted sides.
double space_quality(point3 const& u, point3 const& v) noexcept
{
    double s[3] = {__norm(u), __norm(v), __norm(__minus(u, v))};
    std::sort(s, s + 3);
    double a = s[0], b = s[1], c = s[2];
    double D = c * (a + b + c);
    if (!(D > 0.0)) return 0.0;
    double W = (a + b + c) * (b - a + c) * (c - b + a) * (a - (c - b));
    if (W < 0.0) W = 0.0;
    return __clamp_quality(0.5 * std::sqrt(W) / D * TRIANGLE_SCALE);
}

}  // namespace

double faceT3::geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept
{
    point3 P2 = __point(coords, nodes[2]);
    point3 u = __minus(__point(coords, nodes[0]), P2), v = __minus(__point(coords, nodes[1]), P2);
    return coords.rows() == 2 ? plane_quality(u, v) : space_quality(u, v);
}

}  // namespace elfes
}  // namespace qv7
