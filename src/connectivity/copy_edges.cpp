#include "tessarium/edges.h"

#include "connectivity/edge_pairs.h"
#include "core/element_type_value.h"

namespace qv7 {
namespace tessarium {
namespace {

// Appends the pairs as columns of `edges`, whose storage is grown once beforehand.
int append_columns(dense1D<edge_pair, 8> const& pairs, dense2D<unsigned>& edges)
{
    std::size_t rows = edges.rows(), old = edges.cols(), n = pairs.size();
    if (rows < 2 || n > 0) {
        if (!edges.resize(2, old + n) || !edges.resize(rows, old)) return -199;
    }
    if (n == 0) return 0;
    edges.resize(2, old + n);
    for (std::size_t k = 0; k < n; ++k) {
        unsigned* column = edges.col(old + k);
        column[0] = __first(pairs[k]);
        column[1] = __second(pairs[k]);
    }
    return 0;
}

}  // namespace

int copy_edges(dense2D<unsigned> const& connectM, element_type type, dense2D<unsigned>& edges)
{
    if (connectM.empty()) return 0;
    if (!__is_element_type(type) || !check_IDs(connectM, type, NONE_ID)) return -1;
    if (edges.rows() != 2 && !edges.empty()) return -3;
    dense1D<edge_pair, 8> pairs;
    __get_edges(connectM, type, pairs);
    return append_columns(pairs, edges);
}

int copy_edges(dense2D<unsigned> const* first, dense2D<unsigned> const* last, dense1D<int, 8> const& types,
               dense2D<unsigned>& edges)
{
    if (first > last) return -2;
    std::size_t count = last - first;
    if (count != types.size()) return -3;
    if (edges.rows() != 2 && !edges.empty()) return -4;
    for (std::size_t k = 0; k < count; ++k)
        if (!__is_element_type(types[k]) || !check_IDs(first[k], element_type(types[k]), NONE_ID)) return -1;
    dense1D<edge_pair, 8> pairs;
    for (std::size_t k = 0; k < count; ++k)
        if (__get_edges(first[k], element_type(types[k]), pairs) < 0) break;
    return append_columns(pairs, edges);
}

}  // namespace tessarium
}  // namespace qv7
