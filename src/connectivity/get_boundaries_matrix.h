// Free boundaries as node columns, appended.
#pragma once

#include "connectivity/elfes.h"
#include "tessarium/array_ops.h"

namespace qv7 {
namespace elfe_algo {

// Appends the nodes of boundary b of an element as a column, NONE_ID in spare entries. A
// boundary that the element's kind lacks (only on rows that are no valid element) adds nothing.
// False when the column could not be added.
template <class Elfe>
bool __push_boundary(unsigned b, unsigned const* row, dense2D<unsigned>& boundaries)
{
    vector_fixed<unsigned, Elfe::boundary_width> nodes;
    for (unsigned k = 0; k < Elfe::boundary_width; ++k) nodes[k] = NONE_ID;
    if (Elfe::copy_boundary_nodes(b, row, nodes.v) == nodes.v) return true;
    return matvec::push_back(nodes, boundaries);
}

// Appends every boundary without neighbour to `boundaries`. 0, or -199 when a column could not
// be added.
template <class Elfe>
int get_boundaries_matrix(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                          dense2D<unsigned>& boundaries, Elfe const&)
{
    for (std::size_t e = 0; e < connectM.cols(); ++e) {
        unsigned const* row = connectM.col(e);
        for (unsigned b = 0, n = Elfe::nbr_boundaries(row); b < n; ++b)
            if (neighbors(b, e) == NONE_ID && !__push_boundary<Elfe>(b, row, boundaries))
                return -199;
    }
    return 0;
}

}  // namespace elfe_algo
}  // namespace qv7
