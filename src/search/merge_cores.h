// The two cores behind the exported merge forms, instantiated for Point = vector_fixed<double, D>,
// D = 2 or 3: the number of coordinates that enter boxes and distances. Arguments are checked.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/fixed.h"

namespace qv7 {
namespace tessarium {

// Nodes of IDs1 onto nodes of IDs2: each takes the first-listed node of IDs2 within tol, then
// chains are followed while that rank falls. The number of nodes of IDs1 that moved, or -199.
template <class Point>
int __merge(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs1, dense1D<unsigned, 8> const& IDs2,
            dense1D<unsigned, 8>& merged, double tol);

// Nodes of a range of connectivities, renumbered in place; see merge for the modes.
template <class Point>
int __merge(dense2D<double> const& pos, dense2D<unsigned>* connect_begin, dense2D<unsigned>* connect_end,
            dense1D<unsigned, 8>& merged, double tol, unsigned mode);

}  // namespace tessarium
}  // namespace qv7
