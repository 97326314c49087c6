// The shell of a node: the elements around it reached from a seed element by crossing the
// boundaries that hold the node, found through the neighbours array alone.
#pragma once

#include "tessarium/element_type.h"

namespace qv7 {
namespace elfe_algo {

// Appends the shell of `node` to `out`, depth first from `seed`: the neighbour across the first
// boundary that holds the node is visited next. `closed` tells whether no boundary at the node is
// free. `stack` and `tagger` are work space, kept between calls so that repeated walks do not
// allocate. 0, or -1 at an element that lacks the node (what was found stays in `out`). An
// element that `out` or `stack` could not take is left out without a report.
template <class Connect, class Neighbors, class OutIt, class Stack, class Tagger, class Elfe>
int copy_node_shell(unsigned node, unsigned seed, Connect const& connectM, Neighbors const& neighbors, OutIt out,
                    bool& closed, Stack& stack, Tagger& tagger, Elfe const&)
{
    stack.clear();
    closed = false;
    if (seed == NONE_ID) return 0;
    closed = true;
    if (!tagger.empty()) tagger.clear();
    tagger.tag(seed);
    stack.push_back(seed);
    while (!stack.empty()) {
        unsigned e = stack[stack.size() - 1];
        stack.resize(stack.size() - 1);
        unsigned at_node[6];
        unsigned* last = Elfe::copy_boundary_IDs(node, connectM.col(e), at_node);
        if (last == at_node) return -1;
        *out++ = e;
        while (last != at_node) {
            unsigned n = neighbors(*--last, e);
            if (n == NONE_ID)
                closed = false;
            else if (tagger.tag(n))
                stack.push_back(n);
        }
    }
    return 0;
}

}  // namespace elfe_algo
}  // namespace qv7
