// The wedge's shape quality: the worst corner extent over the squared sides to the power 3/2,
// times the worst face warp, or the split around the centroid when that is worse.
#include "quality/solid_split.h"

namespace qv7 {
namespace elfes {
namespace {

constexpr double WEDGE_SCALE = 31.17691453623979;  // 18 sqrt(3)

// Corner i and the three nodes joined to it, turned so that a right prism is positive.
constexpr unsigned char CORNERS[6][4] = {{0, 1, 2, 3}, {1, 2, 0, 4}, {2, 0, 1, 5},
                                         {3, 0, 5, 4}, {4, 1, 3, 5}, {5, 2, 4, 3}};

}  // namespace

double wedge6::sum_sqr_sides(dense2D<double> const& coords, unsigned const* nodes) noexcept
{
    return elfe_algo::__sum_sqr_edges(coords, nodes, EDGES);
}

double wedge6::min_split_quality(dense2D<double> const& coords, unsigned const* nodes, double& warp) noexcept
{
    return elfe_algo::__split_quality<wedge6>(coords, nodes, warp, true);
}

double wedge6::geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept
{
    double extent = __corner_extent(coords, nodes, 0, 1, 2, 3);
    for (auto const& c : CORNERS) extent = std::min(extent, __corner_extent(coords, nodes, c[0], c[1], c[2], c[3]));
    return elfe_algo::__corner_and_split_quality<wedge6>(coords, nodes, WEDGE_SCALE, extent);
}

}  // namespace elfes
}  // namespace qv7
