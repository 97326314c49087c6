#include "connectivity/elfe_dispatch.h"
#include "connectivity/get_boundaries_matrix.h"
#include "connectivity/nbr_nodes_of_boundaries.h"
#include "tessarium/connectivity.h"

namespace qv7 {
namespace tessarium {

int get_colors_boundaries(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                          dense1D<unsigned, 8> const& colors, element_type type, bool both_sides,
                          dense2D<unsigned>& boundaries)
{
    if (connectM.cols() == 0) return 0;
    type = __narrow(type, connectM.rows());
    if (connectM.rows() != nbr_nodes(type)) return -1;
    unsigned elements = static_cast<unsigned>(connectM.cols());
    // Extra columns are harmless; missing ones would be read.
    if (neighbors.rows() != nbr_boundaries(type) || neighbors.cols() < connectM.cols() ||
        !check_IDs(neighbors, elements))
        return -2;
    if (colors.size() != elements) return -3;
    if (!boundaries.empty() && boundaries.rows() != nbr_nodes_of_boundaries(type)) return -5;
    return __with_elfe(type, -4, [&](auto elfe) {
        return elfe_algo::get_boundaries_matrix(connectM, neighbors, colors, both_sides, boundaries, elfe);
    });
}

}  // namespace tessarium
}  // namespace qv7
