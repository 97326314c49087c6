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
#include "export.h"

TESSARIUM_EXPORT_BEGIN
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
int get_mesh_bounding_elements(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors, element_type type,
                               dense1D<unsigned, 8>& bounding_elements, unsigned& stride);

// Appends every boundary of every element. 0; -1 bad connectivity; -2 unsupported type or
// `boundaries` rows; -199 memory.
int get_element_boundaries(dense2D<unsigned> const& connectM, element_type type, dense2D<unsigned>& boundaries);

// Which element boundary each column of `boundaries` (a skin, rows as a boundaries array) is: its
// boundary ID, found by walking the shell of its first node from `ancestors` (one element per
// node) through `neighbors`. The boundary seen in its own sense wins over the one seen from the
// other side; NONE_ID when none is found. Sets `stride`. 0; -1 `boundaries` rows; -2 `connectM`
// rows; -3 `neighbors`, or a walk that failed after some elements; -4 `ancestors`, or a walk that
// failed at its seed; -5 unsupported type; -199 memory.
TESSARIUM_API int get_elements_on_boundaries(dense2D<unsigned> const& boundaries, dense2D<unsigned> const& connectM,
                                             dense2D<unsigned> const& neighbors, dense1D<unsigned, 8> const& ancestors,
                                             element_type type, dense1D<unsigned, 8>& bounding_elements,
                                             unsigned& stride);

// The pieces of a mesh that hang together through `neighbors`, in compressed form: piece s is
// indices[offsets[s]] up to indices[offsets[s + 1] - 1]. Pieces come by their lowest element,
// each breadth first from it. 0 or -199.
TESSARIUM_API int get_subdomains(dense2D<unsigned> const& neighbors, dense1D<unsigned, 8>& indices,
                                 dense1D<unsigned, 8>& offsets);

// As above, and reorders the columns of `connectM` and `neighbors` so that every piece is
// contiguous, the neighbours renumbered to match. 0; -2 when the two arrays differ in columns
// (nothing changed); -199 memory, after which all three arrays are cleared.
TESSARIUM_API int get_subdomains(dense2D<unsigned>& connectM, dense2D<unsigned>& neighbors,
                                 dense1D<unsigned, 8>& offsets);

// Appends the free boundaries and the boundaries between elements of different colours. An
// interface comes once, from the lower element, or with `both_sides` once from each. 0;
// -1 `connectM` rows; -2 `neighbors`; -3 `colors` size; -4 unsupported type; -5 `boundaries`
// rows; -199 memory.
TESSARIUM_API int get_colors_boundaries(dense2D<unsigned> const& connectM, dense2D<unsigned> const& neighbors,
                                        dense1D<unsigned, 8> const& colors, element_type type, bool both_sides,
                                        dense2D<unsigned>& boundaries);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
