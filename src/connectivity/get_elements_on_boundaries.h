// Which element boundary each column of a boundaries array is, found by a shell walk per column.
#pragma once

#include "connectivity/copy_node_shell.h"
#include "connectivity/tagger_hash.h"
#include "tessarium/dense2D.h"
#include "tessarium/fixed.h"

#include <iterator>

namespace qv7 {
namespace elfe_algo {

// The ID of the boundary of the shell's elements that equals `nodes`: the first one in the same
// sense, else the last one in the opposite sense, else NONE_ID.
template <class Elfe>
unsigned __find_in_shell(unsigned const* nodes, dense1D<unsigned, 8> const& shell, dense2D<unsigned> const& connectM)
{
    unsigned candidate = NONE_ID;
    for (unsigned e : shell) {
        unsigned const* row = connectM.col(e);
        for (unsigned b = 0, n = Elfe::nbr_boundaries(row); b < n; ++b) {
            vector_fixed<unsigned, Elfe::boundary_width> own;
            for (unsigned k = 0; k < Elfe::boundary_width; ++k) own[k] = NONE_ID;
            if (Elfe::copy_boundary_nodes(b, row, own.v) == own.v) continue;
            int sense = Elfe::compare_boundaries(nodes, own.v);
            if (sense == 1) return e * Elfe::stride + b;
            if (sense == -1) candidate = e * Elfe::stride + b;
        }
    }
    return candidate;
}

// Fills `bounding_elements` with one boundary ID per column of `boundaries`, found among the
// shell of the column's first node. Arrays checked by the caller. 0, -3 or -4 for a walk that
// met an element without the node (after some elements, at the seed), -199 on memory.
template <class Elfe, class Tagger>
int get_elements_on_boundaries(dense2D<unsigned> const& boundaries, dense2D<unsigned> const& connectM,
                               dense2D<unsigned> const& neighbors, dense1D<unsigned, 8> const& ancestors,
                               dense1D<unsigned, 8>& bounding_elements, Tagger& tagger, Elfe const& elfe)
{
    std::size_t count = boundaries.cols();
    bounding_elements.clear();
    if (!bounding_elements.push_back_n(NONE_ID, count)) return -199;
    dense1D<unsigned, 8> shell, stack;
    bool closed = false;
    for (std::size_t j = 0; j < count; ++j) {
        unsigned const* nodes = boundaries.col(j);
        if (nodes[0] >= ancestors.size()) continue;
        shell.clear();
        if (copy_node_shell(nodes[0], ancestors[nodes[0]], connectM, neighbors, std::back_inserter(shell), closed,
                            stack, tagger, elfe) != 0)
            return shell.empty() ? -4 : -3;
        bounding_elements[j] = __find_in_shell<Elfe>(nodes, shell, connectM);
    }
    return 0;
}

}  // namespace elfe_algo
}  // namespace qv7
