#include "connectivity/graph.h"
#include "tessarium/graphs.h"

namespace qv7 {
namespace tessarium {

int get_connected_elements(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& offsets,
                           dense1D<unsigned, 8>& indices)
{
    return qv7::get_connected_elements(connectM, offsets, indices);
}

int get_node_graph(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& graph_offsets,
                   dense1D<unsigned, 8>& graph_targets)
{
    return qv7::get_graph(connectM, graph_offsets, graph_targets);
}

}  // namespace tessarium
}  // namespace qv7
