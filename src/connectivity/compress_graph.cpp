#include "connectivity/graph.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace qv7 {
namespace {

using key_pair = std::pair<std::uint64_t, std::uint64_t>;

// Neighbours of compressed vertex c, each once: f(group) for every group next to a vertex of c.
template <class F>
void walk_group(unsigned c, dense1D<unsigned, 8> const& offs, dense1D<unsigned, 8> const& targets,
                dense1D<unsigned, 8> const& vertex_map, dense1D<unsigned, 8> const& group_offsets,
                dense1D<unsigned, 8> const& group_vertices, unsigned* mark, F&& f)
{
    mark[c] = c;
    for (unsigned k = group_offsets[c]; k < group_offsets[c + 1]; ++k) {
        unsigned u = group_vertices[k];
        for (unsigned p = offs[u]; p < offs[u + 1]; ++p) {
            unsigned w = vertex_map[targets[p]];
            if (mark[w] == c) continue;
            mark[w] = c;
            f(w);
        }
    }
}

}  // namespace

int compress_graph(dense1D<unsigned, 8> const& offs, dense1D<unsigned, 8> const& targets,
                   dense1D<unsigned, 8>& cgraph_offsets, dense1D<unsigned, 8>& cgraph_targets,
                   dense1D<unsigned, 8>& vertex_map, dense1D<unsigned, 8>& group_offsets,
                   dense1D<unsigned, 8>& group_vertices)
{
    cgraph_offsets.clear();
    cgraph_targets.clear();
    vertex_map.clear();
    group_offsets.clear();
    group_vertices.clear();
    std::size_t n = offs.empty() ? 0 : offs.size() - 1;
    dense1D<unsigned, 8> mark;
    dense1D<key_pair, 8> pairs;
    if (!vertex_map.resize(n) || !group_offsets.resize(n / 3) || !group_vertices.resize(n) || !mark.resize(n) ||
        !pairs.resize(n))
        return -199;
    group_offsets.clear();
    std::fill(vertex_map.begin(), vertex_map.end(), NONE_ID);
    std::fill(mark.begin(), mark.end(), NONE_ID);

    // Equal closed neighbourhoods give equal sums of their vertices.
    for (std::size_t i = 0; i < n; ++i) {
        std::uint64_t sum = i;
        for (unsigned p = offs[i]; p < offs[i + 1]; ++p) sum += targets[p];
        pairs[i] = {sum, i};
    }
    std::sort(pairs.begin(), pairs.end());
    if (!group_offsets.push_back(0)) return -199;

    auto degree = [&offs](std::size_t v) { return offs[v + 1] - offs[v]; };
    unsigned c = 0, k = 0;
    for (std::size_t p = 0; p < n; ++p) {
        unsigned v = static_cast<unsigned>(pairs[p].second);
        if (vertex_map[v] != NONE_ID) continue;
        mark[v] = unsigned(p);
        for (unsigned q = offs[v]; q < offs[v + 1]; ++q) mark[targets[q]] = unsigned(p);
        vertex_map[v] = c;
        group_vertices[k++] = v;
        // A different degree ends the run even if equal keys follow: such vertices stay apart.
        for (std::size_t q = p + 1; q < n && pairs[q].first == pairs[p].first; ++q) {
            unsigned u = static_cast<unsigned>(pairs[q].second);
            if (degree(u) != degree(v)) break;
            if (vertex_map[u] != NONE_ID) continue;
            bool same = true;
            for (unsigned r = offs[u]; same && r < offs[u + 1]; ++r) same = mark[targets[r]] == unsigned(p);
            if (!same) continue;
            vertex_map[u] = c;
            group_vertices[k++] = u;
        }
        if (!group_offsets.push_back(k)) return -199;
        ++c;
    }
    pairs.clear_hard();

    std::fill(mark.begin(), mark.end(), NONE_ID);
    std::size_t count = 0;
    for (unsigned g = 0; g < c; ++g)
        walk_group(g, offs, targets, vertex_map, group_offsets, group_vertices, mark.data(),
                   [&count](unsigned) { ++count; });
    if (!cgraph_offsets.resize(std::size_t(c) + 1) || !cgraph_targets.resize(count)) {
        cgraph_offsets.clear_hard();
        cgraph_targets.clear();
        vertex_map.clear_hard();
        group_offsets.clear_hard();
        group_vertices.clear_hard();
        return -199;
    }
    std::fill(mark.begin(), mark.end(), NONE_ID);
    cgraph_offsets[0] = 0;
    unsigned* out = cgraph_targets.data();
    for (unsigned g = 0; g < c; ++g) {
        walk_group(g, offs, targets, vertex_map, group_offsets, group_vertices, mark.data(),
                   [&out](unsigned w) { *out++ = w; });
        cgraph_offsets[std::size_t(g) + 1] = static_cast<unsigned>(out - cgraph_targets.data());
    }
    return 0;
}

}  // namespace qv7
