// Rows of a boundaries array for an element type: the nodes of its widest boundary.
#pragma once

#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {

constexpr unsigned char __boundary_nodes_table[nbr_element_types] = {
    0, 0, 1, 1, 1,      // none, node, edges
    2, 2, 2, 3, 3, 3,   // faces: mixed, T3, Q4, T6, Q8, Q9
    4, 3, 6, 4, 8, 9,   // mixed solids, tetrahedra, pyramids
    4, 8, 9, 4, 8, 9};  // wedges, hexahedra

// The argument must be one of the element types.
constexpr unsigned nbr_nodes_of_boundaries(element_type type) noexcept
{
    return __boundary_nodes_table[type];
}

}  // namespace tessarium
}  // namespace qv7
