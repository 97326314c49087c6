#include "nodes/node_moves.h"
#include "tessarium/transforms.h"

namespace qv7 {
namespace tessarium {
namespace {

using IDs = dense1D<unsigned, 8>;

// All nodes when list is null.
template <unsigned D>
int __translate(dense2D<double>& pos, vector_fixed<double, D> const& T, IDs const* list)
{
    if (pos.empty() || __is_zero(T) || (list && list->empty())) return 0;
    if (!__grow_rows<D>(pos)) return -199;
    auto move = [&T](double* p) {
        for (unsigned k = 0; k < D; ++k) p[k] += T[k];
    };
    return list ? __move_listed(pos, *list, move) : __move_all(pos, move);
}

}  // namespace

int translate(dense2D<double>& pos, vector_fixed<double, 2> const& T)
{
    return __translate(pos, T, nullptr);
}
int translate(dense2D<double>& pos, vector_fixed<double, 2> const& T, IDs const& ids)
{
    return __translate(pos, T, &ids);
}
int translate(dense2D<double>& pos, vector_fixed<double, 2> const& T, dense2D<unsigned> const& connect)
{
    return translate(pos, T, __nodes_of(connect));
}

int translate(dense2D<double>& pos, vector_fixed<double, 3> const& T)
{
    return __translate(pos, T, nullptr);
}
int translate(dense2D<double>& pos, vector_fixed<double, 3> const& T, IDs const& ids)
{
    return __translate(pos, T, &ids);
}
int translate(dense2D<double>& pos, vector_fixed<double, 3> const& T, dense2D<unsigned> const& connect)
{
    return translate(pos, T, __nodes_of(connect));
}

}  // namespace tessarium
}  // namespace qv7
