#include "connectivity/elfe_dispatch.h"
#include "connectivity/get_bounding_elements.h"
#include "tessarium/connectivity.h"

namespace qv7 {
namespace tessarium {

int get_mesh_bounding_elements(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors, element_type type,
                               dense1D<unsigned, 8>& bounding_elements, unsigned& stride)
{
    stride = 0;
    if (connectM.empty()) return 0;
    type = __narrow(type, connectM.rows());
    if (!check_IDs(connectM, type, NONE_ID)) return -1;
    stride = nbr_boundaries(type);
    return __with_elfe(type, -2, [&](auto elfe) {
        return elfe_algo::get_bounding_elements(connectM, neighbors, bounding_elements, elfe);
    });
}

}  // namespace tessarium
}  // namespace qv7
