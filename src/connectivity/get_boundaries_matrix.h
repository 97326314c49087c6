// Free boundaries, and those between colours, as node columns, appended.
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

// Appends boundary b of element e to `boundaries` wherever qualifies(e, neighbors(b, e)). 0, or
// -199 when a column could not be added.
template <class Elfe, class Qualifies>
int __push_boundaries_where(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                            dense2D<unsigned>& boundaries, Qualifies qualifies)
{
    for (std::size_t e = 0; e < connectM.cols(); ++e) {
        unsigned const* row = connectM.col(e);
        for (unsigned b = 0, n = Elfe::nbr_boundaries(row); b < n; ++b)
            if (qualifies(e, neighbors(b, e)) && !__push_boundary<Elfe>(b, row, boundaries)) return -199;
    }
    return 0;
}

// Appends every boundary without neighbour to `boundaries`. 0 or -199.
template <class Elfe>
int get_boundaries_matrix(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                          dense2D<unsigned>& boundaries, Elfe const&)
{
    return __push_boundaries_where<Elfe>(connectM, neighbors, boundaries,
                                         [](std::size_t, unsigned n) { return n == NONE_ID; });
}

// Appends every boundary without neighbour and every boundary between elements of different
// colours: from the lower element, or from both with `both_sides`. 0 or -199.
template <class Elfe>
int get_boundaries_matrix(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                          dense1D<unsigned, 8> const& colors, bool both_sides, dense2D<unsigned>& boundaries,
                          Elfe const&)
{
    return __push_boundaries_where<Elfe>(connectM, neighbors, boundaries, [&](std::size_t e, unsigned n) {
        return n == NONE_ID || ((e < n || both_sides) && colors[n] != colors[e]);
    });
}

}  // namespace elfe_algo
}  // namespace qv7
