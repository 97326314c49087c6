#include "connectivity/elfe_dispatch.h"
#include "connectivity/get_elements_on_boundaries.h"
#include "connectivity/nbr_nodes_of_boundaries.h"
#include "tessarium/connectivity.h"

namespace qv7 {
namespace tessarium {

int get_elements_on_boundaries(dense2D<unsigned> const& boundaries, dense2D<unsigned> const& connectM,
                               dense2D<unsigned> const& neighbors, dense1D<unsigned, 8> const& ancestors,
                               element_type type, dense1D<unsigned, 8>& bounding_elements, unsigned& stride)
{
    bounding_elements.clear();
    stride = 0;
    tagger_hash tagger;
    if (boundaries.empty()) return 0;
    type = __narrow(type, connectM.rows());
    if (boundaries.rows() != nbr_nodes_of_boundaries(type)) return -1;
    if (connectM.rows() != nbr_nodes(type)) return -2;
    unsigned elements = static_cast<unsigned>(connectM.cols());
    if (neighbors.cols() != connectM.cols() || neighbors.rows() != nbr_boundaries(type) ||
        !check_IDs(neighbors, elements))
        return -3;
    if (!check_IDs(ancestors, elements)) return -4;
    stride = nbr_boundaries(type);
    return __with_elfe(type, -5, [&](auto elfe) {
        return elfe_algo::get_elements_on_boundaries(boundaries, connectM, neighbors, ancestors, bounding_elements,
                                                     tagger, elfe);
    });
}

}  // namespace tessarium
}  // namespace qv7
