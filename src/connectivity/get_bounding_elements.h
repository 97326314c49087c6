// Boundary IDs of the free boundaries, appended.
#pragma once

#include "connectivity/elfes.h"
#include "tessarium/dense2D.h"

namespace qv7 {
namespace elfe_algo {

// Appends element * stride + b for each boundary b without neighbour. 0, -1 for a wrong row
// count, -2 for a neighbours array of the wrong shape, -199 on memory.
template <class Elfe>
int get_bounding_elements(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                          dense1D<unsigned, 8>& bounding_elements, Elfe const&)
{
    if (connectM.empty()) return 0;
    if (connectM.rows() != Elfe::nbr_rows) return -1;
    if (neighbors.cols() != connectM.cols() || neighbors.rows() != Elfe::stride) return -2;
    for (std::size_t e = 0; e < connectM.cols(); ++e) {
        unsigned const* row = connectM.col(e);
        for (unsigned b = 0, n = Elfe::nbr_boundaries(row); b < n; ++b)
            if (neighbors(b, e) == NONE_ID && !bounding_elements.push_back(static_cast<unsigned>(e * Elfe::stride + b)))
                return -199;
    }
    return 0;
}

}  // namespace elfe_algo
}  // namespace qv7
