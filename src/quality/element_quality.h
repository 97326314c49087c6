// The shape quality of one element, chosen by its descriptor, and the walk over the columns of a
// connectivity array that the mesh-wide entries share.
#pragma once

#include "quality/pyramid5_quality.h"

#include <algorithm>

namespace qv7 {
namespace elfe_algo {

// f(column, nodes) for each element, the nodes of the column copied to a local array first.
template <class Elfe, class F>
void __for_each_element(dense2D<unsigned> const& connectM, Elfe, F&& f)
{
    unsigned nodes[8];
    for (std::size_t j = 0; j < connectM.cols(); ++j) {
        unsigned const* column = connectM.col(j);
        std::copy(column, column + Elfe::nbr_rows, nodes);
        f(j, static_cast<unsigned const*>(nodes));
    }
}

inline double element_quality(dense2D<double> const&, unsigned const*, elfes::edge2) noexcept { return 1.0; }
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
