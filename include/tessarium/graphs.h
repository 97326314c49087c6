// Node-to-element lists and the node graph of a connectivity, as compressed lists: group g is
// indices[offsets[g]] .. indices[offsets[g+1] - 1].
#pragma once

#include "dense2D.h"
#include "export.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Group v lists, ascending, the elements that hold node v (twice if the element holds it twice);
// NONE_ID entries of mixed columns are no nodes. offsets has max node + 2 entries, or the single 0
// for an empty connectivity. 0 or -199.
TESSARIUM_API int get_connected_elements(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& offsets,
                                         dense1D<unsigned, 8>& indices);

// Group v lists the other nodes of the elements of v, each once, in order of first appearance
// through those elements; quadrangle and hexahedron diagonals included. 0 or -199.
TESSARIUM_API int get_node_graph(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& graph_offsets,
                                 dense1D<unsigned, 8>& graph_targets);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
