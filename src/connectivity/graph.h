// Compressed adjacency: node-to-clique lists, node graphs, graph compression and the reverse
// Cuthill-McKee ordering. Group g of a compressed list is indices[offsets[g]] .. indices[offsets[g+1]-1].
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

namespace qv7 {

struct graph {
    dense1D<unsigned, 8> graph_offsets;
    dense1D<unsigned, 8> graph_targets;

    std::size_t nbr_vertices() const noexcept { return graph_offsets.empty() ? 0 : graph_offsets.size() - 1; }
    // degrees[i] = number of neighbours of i. False when memory runs out.
    bool get_degrees(dense1D<unsigned, 8>& degrees) const;
};

// Transposes cliques (groups of node numbers, NONE_ID skipped) into node-to-clique lists: group v
// lists, ascending, the cliques that hold v, once per occurrence. 0 or -199.
int get_connected_cliques(dense1D<unsigned, 8> const& clique_offsets, dense1D<unsigned, 8> const& clique_indices,
                          dense1D<unsigned, 8>& offsets, dense1D<unsigned, 8>& indices);
// Node-to-element lists of a connectivity. 0 or -199.
int get_connected_elements(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& offsets,
                           dense1D<unsigned, 8>& indices);

// A connectivity seen as cliques of equal size, sharing its storage when its columns are packed.
// 0 or -199.
int __cliques_of(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& clique_offsets,
                 dense1D<unsigned, 8>& clique_indices);

// Node graph: the neighbours of a node are the other nodes of its cliques, each once, in order of
// first appearance. `offsets`/`indices` are the node-to-clique lists of the cliques. 0 or -199.
int get_graph(dense1D<unsigned, 8> const& clique_offsets, dense1D<unsigned, 8> const& clique_indices,
              dense1D<unsigned, 8> const& offsets, dense1D<unsigned, 8> const& indices,
              dense1D<unsigned, 8>& graph_offsets, dense1D<unsigned, 8>& graph_targets);
int get_graph(dense1D<unsigned, 8> const& clique_offsets, dense1D<unsigned, 8> const& clique_indices,
              dense1D<unsigned, 8>& graph_offsets, dense1D<unsigned, 8>& graph_targets);
int get_graph(dense2D<unsigned> const& connectM, dense1D<unsigned, 8> const& offsets,
              dense1D<unsigned, 8> const& indices, dense1D<unsigned, 8>& graph_offsets,
              dense1D<unsigned, 8>& graph_targets);
int get_graph(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& graph_offsets,
              dense1D<unsigned, 8>& graph_targets);

// Merges vertices with equal closed neighbourhoods (vertices of equal key and degree that follow
// each other in key order). vertex_map[v] = group of v; group c holds group_vertices[group_offsets[c]
// .. group_offsets[c+1]-1]; cgraph is the graph between groups. 0 or -199.
int compress_graph(dense1D<unsigned, 8> const& graph_offsets, dense1D<unsigned, 8> const& graph_targets,
                   dense1D<unsigned, 8>& cgraph_offsets, dense1D<unsigned, 8>& cgraph_targets,
                   dense1D<unsigned, 8>& vertex_map, dense1D<unsigned, 8>& group_offsets,
                   dense1D<unsigned, 8>& group_vertices);

// Reverse Cuthill-McKee: `order` lists the vertices in their new order (isolated vertices left
// out), reversed when `reverse` is true. The second form also sets inverse[v] = new number of v and
// numbers the isolated vertices last.
struct ordonator_RCMK {
    static void run(graph const& g, dense1D<unsigned, 8>& order, bool reverse);
    static void run(graph const& g, dense1D<unsigned, 8>& order, dense1D<unsigned, 8>& inverse, bool reverse);
};

}  // namespace qv7
