// The shape quality of one element, chosen by its descriptor.
#pragma once

#include "quality/pyramid5_quality.h"

namespace qv7 {
namespace elfe_algo {

inline double element_quality(dense2D<double> const&, unsigned const*, elfes::edge2) noexcept
{
    return 1.0;
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::faceT3) noexcept
{
    return elfes::faceT3::geometric_quality(coords, nodes);
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::faceQ4) noexcept
{
    if (coords.rows() == 2) return elfes::faceQ4::__geometric_quality(coords, nodes, fixed_size_tag<2u>{});
    return elfes::faceQ4::__geometric_quality(coords, nodes, fixed_size_tag<3u>{});
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::face_mix) noexcept
{
    if (elfes::face_mix::is_quadrangle(nodes)) return element_quality(coords, nodes, elfes::faceQ4{});
    return element_quality(coords, nodes, elfes::faceT3{});
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::tetra4) noexcept
{
    return elfes::tetra4::geometric_quality(coords, nodes);
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::pyramid5) noexcept
{
    double warp;
    return elfes::pyramid5::geometric_quality(coords, nodes, warp);
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::wedge6) noexcept
{
    return elfes::wedge6::geometric_quality(coords, nodes);
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::hexa8) noexcept
{
    return elfes::hexa8::geometric_quality(coords, nodes);
}
inline double element_quality(dense2D<double> const& coords, unsigned const* nodes, elfes::solid_mix) noexcept
{
    return elfes::solid_mix::geometric_quality(coords, nodes);
}

}  // namespace elfe_algo
}  // namespace qv7
