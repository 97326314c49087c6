// The hexahedron's shape quality: the worst corner extent over the squared sides to the power
// 3/2, times the worst face warp, or the split around the centroid when that is worse.
#include "quality/solid_split.h"

namespace qv7 {
namespace elfes {

double hexa8::sum_sqr_sides(dense2D<double> const& coords, unsigned const* nodes) noexcept
{
    return elfe_algo::__sum_sqr_edges(coords, nodes, EDGES);
}

double hexa8::__tet_extent(dense2D<double> const& coords, unsigned const* nodes, unsigned corner) noexcept
{
    unsigned a, b, c;
    get_connected_local_node_IDs(corner, a, b, c);
    return __corner_extent(coords, nodes, corner, a, b, c);
}

double hexa8::__min_tet_extent(dense2D<double> const& coords, unsigned const* nodes) noexcept
{
    double extent = __tet_extent(coords, nodes, 0);
    for (unsigned corner = 1; corner < 8; ++corner) extent = std::min(extent, __tet_extent(coords, nodes, corner));
    return extent;
}

double hexa8::min_split_quality(dense2D<double> const& coords, unsigned const* nodes, double& warp) noexcept
{
    return elfe_algo::__split_quality<hexa8>(coords, nodes, warp, true);
}

double hexa8::geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept
{
    constexpr double HEXAHEDRON_SCALE = 41.569219381653056;  // 24 sqrt(3)
    return elfe_algo::__corner_and_split_quality<hexa8>(coords, nodes, HEXAHEDRON_SCALE,
                                                        __min_tet_extent(coords, nodes));
}

}  // namespace elfes
}  // namespace qv7
