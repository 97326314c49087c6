// The walk over the columns of a connectivity array that the mesh-wide entries share.
#pragma once

#include "connectivity/elfe_dispatch.h"
#include "search/node_count.h"

#include <algorithm>

namespace qv7 {
namespace elfe_algo {

// f(column, nodes) for each element, the nodes of the column copied to a local array first.
template <class Elfe, class F>
void __for_each_element(dense2D<unsigned> const& connectM, Elfe, F&& f)
{
    unsigned nodes[8];
    for (std::size_t j = 0; j < connectM.cols(); ++j) {
        unsigned const* column = connectM.col(j);
        std::copy(column, column + Elfe::nbr_rows, nodes);
        f(j, static_cast<unsigned const*>(nodes));
    }
}

}  // namespace elfe_algo

namespace tessarium {

// One value(coords, nodes, descriptor) per element into `values`, after the checks: 0; -2 node
// IDs refused; -3 no descriptor for the type (`values` emptied); -199 memory.
template <class Value>
int __per_element_values(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type,
                         dense1D<double, 8>& values, Value&& value)
{
    values.clear();
    if (connectM.cols() == 0) return 0;
    if (!check_IDs(connectM, type, __node_count(coords))) return -2;
    if (!values.resize(connectM.cols())) return -199;
    std::fill(values.begin(), values.end(), 0.0);
    int code = __with_elfe(__narrow(type, connectM.rows()), -3, [&](auto elfe) {
        elfe_algo::__for_each_element(connectM, elfe,
                                      [&](std::size_t j, unsigned const* nodes) { values[j] = value(nodes, elfe); });
        return 0;
    });
    if (code != 0) values.clear();
    return code;
}

}  // namespace tessarium
}  // namespace qv7
