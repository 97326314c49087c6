// Adjacency from a connectivity array: neighbours across boundaries, free boundaries, all
// boundaries, and one element per node.
//
// A neighbours array has one row per local boundary of the element type and one column per
// element; entry (b, e) is the element across boundary b of element e, or NONE_ID. A boundaries
// array has one column per boundary holding its nodes (NONE_ID after the third node of a
// triangle among quadrangles). A boundary ID is element * stride + local boundary.
#pragma once

#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"

namespace qv7 {
namespace tessarium {

// For each node, the last element that uses it. An empty `ancestors` is sized to the highest
// node + 1 and filled with NONE_ID first; a filled one is kept as mask and default. 0 or -199.
int get_ancestors(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& ancestors);

// Replaces `neighbors`. A boundary shared by more than two elements gets no neighbour, unless
// `non_manifold` is true: then the later elements name the first, and the first names the last.
// 0; -1 bad connectivity; -2 unsupported type; -199 memory.
int get_neighbors(dense2D<unsigned> const& connectM, element_type type, bool non_manifold,
                  dense2D<unsigned>& neighbors);

// Appends the free boundaries to `boundaries`. 0; -1 `connectM` rows; -2 `neighbors`;
// -3 unsupported type; -4 `boundaries` rows; -199 memory.
int get_mesh_boundaries(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors, element_type type,
                        dense2D<unsigned>& boundaries);

// Appends the IDs of the free boundaries and sets `stride`. 0; -1 bad connectivity;
// -2 unsupported type or `neighbors` shape; -199 memory.
int get_mesh_bounding_elements(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                               element_type type, dense1D<unsigned, 8>& bounding_elements, unsigned& stride);

// Appends every boundary of every element. 0; -1 bad connectivity; -2 unsupported type or
// `boundaries` rows; -199 memory.
int get_element_boundaries(dense2D<unsigned> const& connectM, element_type type, dense2D<unsigned>& boundaries);

}  // namespace tessarium
}  // namespace qv7
