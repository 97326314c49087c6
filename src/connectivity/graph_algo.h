// Breadth-first walk whose visitor chooses the order in which each vertex's neighbours are taken,
// and the two visitors of the reverse Cuthill-McKee ordering.
#pragma once

#include "connectivity/graph.h"

#include <vector>

namespace qv7 {
namespace graph_algo {

// Finds a pseudo-peripheral vertex: best is a vertex of the deepest level met so far with the
// smallest degree there. Its selection is the vertex offered last.
struct __visitorPP {
    dense1D<unsigned, 8> const* degrees;
    unsigned best_level;
    unsigned best_degree;
    unsigned current;
    unsigned best;

    static constexpr bool processes = false;
    // False stops the scan of the present vertex: its deeper levels are known already.
    bool offer(unsigned w, unsigned level)
    {
        current = w;
        if (best_level > level) return false;
        unsigned d = (*degrees)[w];
        if (best_level < level) {
            best_level = level;
            best_degree = d;
            best = w;
        } else if (d < best_degree) {
            best_degree = d;
            best = w;
        }
        return true;
    }
    unsigned selection() const { return current; }
    void process(unsigned) {}
};

// Visits from u, then scans u again after each visit, so that the visitor picks one neighbour at
// a time. Returns the number of vertices visited.
template <class Graph, class Visitor>
unsigned traverse_breadth_first(Graph const& g, unsigned start, Visitor& visitor)
{
    std::size_t n = g.nbr_vertices();
    unsigned const* offs = g.graph_offsets.data();
    unsigned const* targets = g.graph_targets.data();
    std::vector<char> visited(n, 0);
    std::vector<unsigned> queue;
    queue.reserve(n);
    std::size_t head = 0;
    unsigned level = 1, last = start;

    if (Visitor::processes) visitor.process(start);
    visited[start] = 1;
    queue.push_back(start);
    unsigned count = 1;
    while (head < queue.size()) {
        unsigned u = queue[head++];
        for (;;) {
            bool offered = false;
            for (unsigned p = offs[u]; p < offs[u + 1]; ++p) {
                unsigned w = targets[p];
                if (visited[w]) continue;
                offered = true;
                if (!visitor.offer(w, level)) break;
            }
            if (!offered) break;
            unsigned w = visitor.selection();
            visitor.process(w);
            visited[w] = 1;
            queue.push_back(w);
            ++count;
        }
        if (u == last && head < queue.size()) {
            last = queue.back();
            ++level;
        }
    }
    return count;
}

}  // namespace graph_algo

// Numbers next the neighbour with fewest neighbours still unnumbered, ties to the most touched
// by numbered vertices, then to the first offered.
struct RCMK_visitor {
    unsigned best_rest = ~0u;
    unsigned best_touched = 0;
    unsigned best = 0;
    dense1D<unsigned, 8>& degrees;
    dense1D<unsigned, 8>& order;
    std::vector<unsigned> touched;
    graph const& g;

    static constexpr bool processes = true;
    RCMK_visitor(dense1D<unsigned, 8>& degrees_, dense1D<unsigned, 8>& order_, graph const& g_)
        : degrees(degrees_), order(order_), touched(g_.nbr_vertices(), 0), g(g_)
    {
    }
    bool offer(unsigned w, unsigned)
    {
        unsigned t = touched[w], r = degrees[w] - t;
        if (r < best_rest) {
            best_rest = r;
            best_touched = t;
            best = w;
        } else if (r == best_rest && t > best_touched) {
            best_touched = t;
            best = w;
        }
        return true;
    }
    unsigned selection() const { return best; }
    void process(unsigned w)
    {
        best_rest = ~0u;
        best_touched = 0;
        order.push_back(w);
        degrees[w] = NONE_ID;
        for (unsigned p = g.graph_offsets[w]; p < g.graph_offsets[w + 1]; ++p) ++touched[g.graph_targets[p]];
    }
};

}  // namespace qv7
