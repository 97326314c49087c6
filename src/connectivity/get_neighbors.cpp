#include "connectivity/elfe_dispatch.h"
#include "connectivity/get_neighbors_matrix.h"
#include "tessarium/connectivity.h"

namespace qv7 {
namespace tessarium {

int get_neighbors(dense2D<unsigned> const& connectM, element_type type, bool non_manifold, dense2D<unsigned>& neighbors)
{
    neighbors.clear();
    if (connectM.empty()) return 0;
    type = __narrow(type, connectM.rows());
    if (!check_IDs(connectM, type, NONE_ID)) return -1;
    int mode = non_manifold ? 0 : 1;
    return __with_elfe(type, -2,
                       [&](auto elfe) { return elfe_algo::get_neighbors_matrix(connectM, neighbors, mode, elfe); });
}

}  // namespace tessarium
}  // namespace qv7
