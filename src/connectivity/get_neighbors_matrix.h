// Neighbours across boundaries, by one pass of hashing and pairing.
#pragma once

#include "connectivity/boundary_finder.h"
#include "connectivity/process_boundaries.h"

namespace qv7 {
namespace elfe_algo {

// Replaces `neighbors` by one row per boundary and one column per element. Mode as in
// process_boundaries. 0, -1 for a wrong row count or a failed walk, -199 on memory.
template <class Elfe>
int get_neighbors_matrix(dense2D<unsigned> const& connectM, dense2D<unsigned>& neighbors, int mode, Elfe const&)
{
    using finder_type = boundary_finder<Elfe, dense2D<unsigned>>;
    finder_type finder;
    neighbors.clear();
    if (!connectM.empty() && connectM.rows() != Elfe::nbr_rows) return -1;
    unsigned long elements = connectM.cols();
    if (!neighbors.resize(Elfe::stride, elements, NONE_ID)) return -199;
    finder.set_connectivity(&connectM);
    finder.clear_boundary();
    if (!finder.resize(elements)) return -199;
    finder.__bdry_insert_elements(0, elements);
    internal_neighbors_updater<finder_type, dense2D<unsigned>> updater(neighbors);
    null_neighbors_processor processor;
    return process_boundaries(finder, updater, processor, mode) ? 0 : -1;
}

}  // namespace elfe_algo
}  // namespace qv7
