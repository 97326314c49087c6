// How far a quadrangle in space is from planar, from the normals at its corners.
#pragma once

#include "connectivity/elfes.h"
#include "quality/point3.h"

namespace qv7 {
namespace elfes {

constexpr double INV_PI = 0.3183098861837907;

// N[i] = P(i-1)P(i) x P(i)P(i+1), indices modulo 4.
template <class Coords>
void __corner_normals(Coords const& coords, unsigned const* nodes, point3 (&N)[4]) noexcept
{
    point3 P[4] = {__point(coords, nodes[0]), __point(coords, nodes[1]), __point(coords, nodes[2]),
                   __point(coords, nodes[3])};
    for (unsigned i = 0; i < 4; ++i) N[i] = __cross(__minus(P[i], P[(i + 3) % 4]), __minus(P[(i + 1) % 4], P[i]));
}

// 1 - angle / pi for the cosine of the larger angle between opposite corner normals, not below 0.
inline double __warp_factor(double c) noexcept
{
    c = __clamp_quality(c);
    double w = 1.0 - std::acos(c) * INV_PI;
    return w < 0.0 ? 0.0 : w;
}

// The smaller cosine between the normals of opposite corners; false when a normal has no length.
// Opposite corners are compared, not neighbours: a folded quadrangle shows up between them.
template <class Coords>
bool __warp_cosine(Coords const& coords, unsigned const* nodes, double& c) noexcept
{
    point3 N[4];
    __corner_normals(coords, nodes, N);
    double n13 = __dot(N[1], N[1]) * __dot(N[3], N[3]), n02 = __dot(N[0], N[0]) * __dot(N[2], N[2]);
    if (!(n13 > 0.0) || !(n02 > 0.0)) return false;
    c = std::min(__dot(N[1], N[3]) / std::sqrt(n13), __dot(N[0], N[2]) / std::sqrt(n02));
    return true;
}

template <class Coords>
double faceQ4::__warp_quality(Coords const& coords, unsigned const* nodes, fixed_size_tag<3u>) noexcept
{
    double c;
    return __warp_cosine(coords, nodes, c) ? __warp_factor(c) : 0.0;
}

}  // namespace elfes
}  // namespace qv7
