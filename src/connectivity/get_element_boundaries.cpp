#include "connectivity/elfe_dispatch.h"
#include "connectivity/get_element_boundaries_matrix.h"
#include "tessarium/connectivity.h"

namespace qv7 {
namespace tessarium {

int get_element_boundaries(dense2D<unsigned> const& connectM, element_type type, dense2D<unsigned>& boundaries)
{
    if (connectM.empty()) return 0;
    type = __narrow(type, connectM.rows());
    if (!check_IDs(connectM, type, NONE_ID)) return -1;
    return __with_elfe(type, -2,
                       [&](auto elfe) { return elfe_algo::get_element_boundaries_matrix(connectM, boundaries, elfe); });
}

}  // namespace tessarium
}  // namespace qv7
