// Every boundary of every element as node columns, appended.
#pragma once

#include "connectivity/get_boundaries_matrix.h"

namespace qv7 {
namespace elfe_algo {

// Appends each boundary of each element in table order; a shared boundary comes once per
// element, in that element's node order. 0, -1 for a wrong row count, -2 for a boundaries array
// with other rows, -199 on memory.
template <class Elfe>
int get_element_boundaries_matrix(dense2D<unsigned> const& connectM, dense2D<unsigned>& boundaries, Elfe const&)
{
    if (!connectM.empty() && connectM.rows() != Elfe::nbr_rows) return -1;
    if (!boundaries.empty() && boundaries.rows() != Elfe::boundary_width) return -2;
    for (std::size_t e = 0; e < connectM.cols(); ++e) {
        unsigned const* row = connectM.col(e);
        for (unsigned b = 0, n = Elfe::nbr_boundaries(row); b < n; ++b)
            if (!__push_boundary<Elfe>(b, row, boundaries)) return -199;
    }
    return 0;
}

}  // namespace elfe_algo
}  // namespace qv7
