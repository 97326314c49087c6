#include "connectivity/graph.h"
#include "nodes/index_internal.h"

#include <algorithm>

namespace qv7 {
namespace {

// Cliques [begin, end) of clique c, clamped to the entries that exist.
struct clique_range {
    unsigned const* begin;
    unsigned const* end;
};

clique_range clique(dense1D<unsigned, 8> const& co, dense1D<unsigned, 8> const& ci, std::size_t c) noexcept
{
    std::size_t b = std::min<std::size_t>(co[c], ci.size()), e = std::min<std::size_t>(co[c + 1], ci.size());
    return {ci.data() + b, ci.data() + std::max(b, e)};
}

bool single_zero(dense1D<unsigned, 8>& offsets)
{
    return offsets.push_back(0);
}

}  // namespace

int get_connected_cliques(dense1D<unsigned, 8> const& clique_offsets, dense1D<unsigned, 8> const& clique_indices,
                          dense1D<unsigned, 8>& offsets, dense1D<unsigned, 8>& indices)
{
    offsets.clear();
    indices.clear();
    std::size_t nc = clique_offsets.size();
    if (nc < 2) return single_zero(offsets) ? 0 : -199;
    --nc;

    bool any = false;
    unsigned n = 0;
    for (std::size_t c = 0; c < nc; ++c)
        for (auto r = clique(clique_offsets, clique_indices, c); r.begin != r.end; ++r.begin)
            if (*r.begin != NONE_ID) {
                any = true;
                n = std::max(n, *r.begin);
            }
    if (!any) return single_zero(offsets) ? 0 : -199;

    // One array counts, runs the sum and ends as the offsets, shifted by two, then by one.
    if (!offsets.resize(std::size_t(n) + 4)) {
        offsets.clear();
        return -199;
    }
    std::fill(offsets.begin(), offsets.end(), 0u);
    unsigned* count = offsets.data() + 2;
    for (std::size_t c = 0; c < nc; ++c)
        for (auto r = clique(clique_offsets, clique_indices, c); r.begin != r.end; ++r.begin)
            if (*r.begin != NONE_ID) ++count[*r.begin];
    for (std::size_t v = 1; v < std::size_t(n) + 2; ++v) count[v] += count[v - 1];

    if (!indices.resize(offsets[std::size_t(n) + 2])) {
        indices.clear();
        offsets.clear_hard();
        return -199;
    }
    unsigned* next = offsets.data() + 1;
    for (std::size_t c = 0; c < nc; ++c)
        for (auto r = clique(clique_offsets, clique_indices, c); r.begin != r.end; ++r.begin)
            if (*r.begin != NONE_ID) indices[next[*r.begin]++] = static_cast<unsigned>(c);
    offsets.resize(std::size_t(n) + 2);
    return 0;
}

int __cliques_of(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& clique_offsets,
                 dense1D<unsigned, 8>& clique_indices)
{
    std::size_t rows = connectM.rows(), cols = connectM.cols();
    if (rows * cols > NONE_ID) return -199;  // offsets are 32-bit
    if (connectM.ld() == rows) {
        clique_indices = connectM.flat();
    } else {
        if (!clique_indices.resize(rows * cols)) return -199;
        for (std::size_t e = 0; e < cols; ++e)
            std::copy(connectM.col(e), connectM.col(e) + rows, &clique_indices[e * rows]);
    }
    if (!clique_offsets.resize(cols + 1)) return -199;
    for (std::size_t e = 0; e <= cols; ++e) clique_offsets[e] = static_cast<unsigned>(e * rows);
    return 0;
}

int get_connected_elements(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& offsets,
                           dense1D<unsigned, 8>& indices)
{
    offsets.clear();
    indices.clear();
    if (connectM.empty()) return single_zero(offsets) ? 0 : -199;
    dense1D<unsigned, 8> clique_offsets, clique_indices;
    int rc = __cliques_of(connectM, clique_offsets, clique_indices);
    if (rc < 0) return rc;
    return get_connected_cliques(clique_offsets, clique_indices, offsets, indices);
}

}  // namespace qv7
