#include "connectivity/graph_algo.h"

#include <algorithm>

namespace qv7 {

void ordonator_RCMK::run(graph const& g, dense1D<unsigned, 8>& order, bool reverse)
{
    std::size_t n = g.nbr_vertices();
    order.clear();
    order.resize(n);
    order.clear();
    if (n == 0) return;
    dense1D<unsigned, 8> degrees;
    if (!g.get_degrees(degrees)) return;
    std::size_t left = n;
    // Numbered and isolated vertices hold NONE_ID, so the smallest degree is always in a component
    // still to number.
    for (unsigned& d : degrees)
        if (d == 0) {
            d = NONE_ID;
            --left;
        }

    RCMK_visitor numbering(degrees, order, g);
    while (left > 0) {
        unsigned s = static_cast<unsigned>(std::min_element(degrees.begin(), degrees.end()) - degrees.begin());
        if (degrees[s] == NONE_ID) break;  // only reached by a graph that is not symmetric
        graph_algo::__visitorPP peripheral{&degrees, 0, degrees[s], s, s};
        graph_algo::traverse_breadth_first(g, s, peripheral);
        while (peripheral.best != s) {
            s = peripheral.best;
            graph_algo::traverse_breadth_first(g, s, peripheral);
        }
        left -= std::min<std::size_t>(left, graph_algo::traverse_breadth_first(g, s, numbering));
    }
    if (reverse) std::reverse(order.begin(), order.end());
}

void ordonator_RCMK::run(graph const& g, dense1D<unsigned, 8>& order, dense1D<unsigned, 8>& inverse, bool reverse)
{
    std::size_t n = g.nbr_vertices();
    inverse.clear();
    if (!inverse.resize(n)) inverse.clear();
    std::fill(inverse.begin(), inverse.end(), NONE_ID);
    run(g, order, reverse);
    for (std::size_t i = 0; i < order.size(); ++i)
        if (order[i] < inverse.size()) inverse[order[i]] = static_cast<unsigned>(i);
    unsigned next = static_cast<unsigned>(order.size());
    for (std::size_t v = 0; v < inverse.size(); ++v)
        if (inverse[v] == NONE_ID) {
            order.push_back(static_cast<unsigned>(v));
            inverse[v] = next++;
        }
}

}  // namespace qv7
