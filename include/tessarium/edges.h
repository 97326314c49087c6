// The unique edges of a mesh, as a two-row matrix: one column per edge, the smaller node in row 0,
// columns ascending by row 0, then row 1.
#pragma once

#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"
#include "export.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Appends the edges of connectM to `edges`, without comparing them with the columns already
// there. Higher-order types give the edges of their corners; ET_PYRAMID13, ET_WEDGE15 and
// ET_HEXA20 give none. 0; -1 bad connectivity shape; -3 `edges` not of two rows; -199 memory.
TESSARIUM_API int copy_edges(dense2D<unsigned> const& connectM, element_type type, dense2D<unsigned>& edges);

// The same for the arrays [first, last), types[k] being the type of array k; an edge shared by
// several arrays comes once. 0; -1 bad shape of an array; -2 `first` after `last`; -3 as many
// types as arrays; -4 `edges` not of two rows; -199 memory.
TESSARIUM_API int copy_edges(dense2D<unsigned> const* first, dense2D<unsigned> const* last,
                             dense1D<int, 8> const& types, dense2D<unsigned>& edges);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
