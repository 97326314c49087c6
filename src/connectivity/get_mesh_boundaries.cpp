#include "connectivity/elfe_dispatch.h"
#include "connectivity/get_boundaries_matrix.h"
#include "connectivity/nbr_nodes_of_boundaries.h"
#include "tessarium/connectivity.h"

namespace qv7 {
namespace tessarium {

int get_mesh_boundaries(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors, element_type type,
                        dense2D<unsigned>& boundaries)
{
    if (connectM.cols() == 0) return 0;
    type = __narrow(type, connectM.rows());
    if (connectM.rows() != nbr_nodes(type)) return -1;
    unsigned elements = static_cast<unsigned>(connectM.cols());
    if (neighbors.cols() != connectM.cols() || neighbors.rows() != nbr_boundaries(type) ||
        !check_IDs(neighbors, elements))
        return -2;
    if (!boundaries.empty() && boundaries.rows() != nbr_nodes_of_boundaries(type)) return -4;
    return __with_elfe(
        type, -3, [&](auto elfe) { return elfe_algo::get_boundaries_matrix(connectM, neighbors, boundaries, elfe); });
}

}  // namespace tessarium
}  // namespace qv7
