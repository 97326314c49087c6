#include "connectivity/graph.h"

#include <algorithm>

namespace qv7 {
namespace {

// Calls f(m) for each node m first met from vertex i through its cliques, i itself excluded.
// mark holds one vertex-valued mark per node, so nothing is cleared between vertices.
template <class F>
void walk_vertex(unsigned i, dense1D<unsigned, 8> const& co, dense1D<unsigned, 8> const& ci,
                 dense1D<unsigned, 8> const& offsets, dense1D<unsigned, 8> const& indices, unsigned* mark,
                 std::size_t nv, F&& f)
{
    mark[i] = i;
    std::size_t nc = co.size() - 1, ni = ci.size();
    for (std::size_t k = offsets[i], ke = std::min<std::size_t>(offsets[i + 1], indices.size()); k < ke; ++k) {
        std::size_t c = indices[k];
        if (c >= nc) continue;
        for (std::size_t p = co[c], pe = std::min<std::size_t>(co[c + 1], ni); p < pe; ++p) {
            unsigned m = ci[p];
            if (m >= nv || mark[m] == i) continue;  // NONE_ID is never below nv
            mark[m] = i;
            f(m);
        }
    }
}

}  // namespace

int get_graph(dense1D<unsigned, 8> const& clique_offsets, dense1D<unsigned, 8> const& clique_indices,
              dense1D<unsigned, 8> const& offsets, dense1D<unsigned, 8> const& indices,
              dense1D<unsigned, 8>& graph_offsets, dense1D<unsigned, 8>& graph_targets)
{
    graph_offsets.clear();
    graph_targets.clear();
    if (clique_indices.empty() || clique_offsets.empty() || offsets.empty())
        return graph_offsets.push_back(0) ? 0 : -199;
    std::size_t nv = offsets.size() - 1;
    dense1D<unsigned, 8> mark(nv, NONE_ID);
    if (!graph_offsets.resize(nv + 1) || mark.size() != nv) {
        graph_offsets.clear();
        return -199;
    }

    std::size_t count = 0;
    graph_offsets[0] = 0;
    for (std::size_t i = 0; i < nv; ++i) {
        walk_vertex(unsigned(i), clique_offsets, clique_indices, offsets, indices, mark.data(), nv,
                    [&count](unsigned) { ++count; });
        graph_offsets[i + 1] = static_cast<unsigned>(count);
    }

    if (!graph_targets.resize(count)) {
        graph_targets.clear();
        graph_offsets.clear_hard();
        return -199;
    }
    std::fill(mark.begin(), mark.end(), NONE_ID);
    unsigned* out = graph_targets.data();
    for (std::size_t i = 0; i < nv; ++i)
        walk_vertex(unsigned(i), clique_offsets, clique_indices, offsets, indices, mark.data(), nv,
                    [&out](unsigned m) { *out++ = m; });
    return 0;
}

int get_graph(dense1D<unsigned, 8> const& clique_offsets, dense1D<unsigned, 8> const& clique_indices,
              dense1D<unsigned, 8>& graph_offsets, dense1D<unsigned, 8>& graph_targets)
{
    dense1D<unsigned, 8> offsets, indices;
    int rc = get_connected_cliques(clique_offsets, clique_indices, offsets, indices);
    if (rc < 0) {
        graph_offsets.clear();
        graph_targets.clear();
        return rc;
    }
    return get_graph(clique_offsets, clique_indices, offsets, indices, graph_offsets, graph_targets);
}

int get_graph(dense2D<unsigned> const& connectM, dense1D<unsigned, 8> const& offsets,
              dense1D<unsigned, 8> const& indices, dense1D<unsigned, 8>& graph_offsets,
              dense1D<unsigned, 8>& graph_targets)
{
    graph_offsets.clear();
    graph_targets.clear();
    dense1D<unsigned, 8> clique_offsets, clique_indices;
    int rc = __cliques_of(connectM, clique_offsets, clique_indices);
    if (rc < 0) return rc;
    return get_graph(clique_offsets, clique_indices, offsets, indices, graph_offsets, graph_targets);
}

int get_graph(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& graph_offsets,
              dense1D<unsigned, 8>& graph_targets)
{
    dense1D<unsigned, 8> offsets, indices;
    int rc = get_connected_elements(connectM, offsets, indices);
    if (rc < 0) {
        graph_offsets.clear();
        graph_targets.clear();
        return rc;
    }
    return get_graph(connectM, offsets, indices, graph_offsets, graph_targets);
}

bool graph::get_degrees(dense1D<unsigned, 8>& degrees) const
{
    std::size_t n = nbr_vertices();
    if (!degrees.resize(n)) return false;
    for (std::size_t i = 0; i < n; ++i) degrees[i] = graph_offsets[i + 1] - graph_offsets[i];
    return true;
}

}  // namespace qv7
