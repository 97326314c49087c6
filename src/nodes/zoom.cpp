#include "nodes/node_moves.h"
#include "tessarium/transforms.h"

namespace qv7 {
namespace tessarium {
namespace {

using IDs = dense1D<unsigned, 8>;

// All nodes when list is null. Only the all-node form reports a count. Indices beyond pos are out
// of contract for the list form; they are skipped rather than followed.
template <unsigned D>
int __zoom(dense2D<double>& pos, vector_fixed<double, D> const& C, double factor, IDs const* list)
{
    if (pos.empty() || factor == 1.0 || (list && list->empty())) return 0;
    if (!__grow_rows<D>(pos)) return -199;
    double f = factor - 1.0;
    auto move = [&C, f](double* p) {
        for (unsigned k = 0; k < D; ++k) p[k] = (p[k] - C[k]) * f + p[k];
    };
    if (!list) return __move_all(pos, move);
    __move_listed(pos, *list, move);
    return 0;
}

}  // namespace

int zoom(dense2D<double>& pos, vector_fixed<double, 2> const& C, double factor)
{
    return __zoom(pos, C, factor, nullptr);
}
int zoom(dense2D<double>& pos, vector_fixed<double, 2> const& C, double factor, IDs const& ids)
{
    return __zoom(pos, C, factor, &ids);
}
int zoom(dense2D<double>& pos, vector_fixed<double, 2> const& C, double factor, dense2D<unsigned> const& connect)
{
    return zoom(pos, C, factor, __nodes_of(connect));
}

int zoom(dense2D<double>& pos, vector_fixed<double, 3> const& C, double factor)
{
    return __zoom(pos, C, factor, nullptr);
}
int zoom(dense2D<double>& pos, vector_fixed<double, 3> const& C, double factor, IDs const& ids)
{
    return __zoom(pos, C, factor, &ids);
}
int zoom(dense2D<double>& pos, vector_fixed<double, 3> const& C, double factor, dense2D<unsigned> const& connect)
{
    return zoom(pos, C, factor, __nodes_of(connect));
}

}  // namespace tessarium
}  // namespace qv7
