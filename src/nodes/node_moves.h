// What the transforms share: growing a node set to the transform's dimension and applying a move
// to all nodes or to listed ones.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/fixed.h"
#include "tessarium/index_utilities.h"

namespace qv7 {
namespace tessarium {

// Gives pos at least D rows, the new ones 0; false when memory runs out, and then no move may run,
// since it would write D coordinates into shorter columns.
template <unsigned D>
bool __grow_rows(dense2D<double>& pos)
{
    return pos.rows() >= D || pos.resize(D, pos.cols(), 0.0);
}

template <unsigned D>
bool __is_zero(vector_fixed<double, D> const& v) noexcept
{
    for (unsigned k = 0; k < D; ++k)
        if (!(v[k] == 0.0)) return false;
    return true;
}

// Calls move(column) on every node; returns the node count.
template <class Move>
int __move_all(dense2D<double>& pos, Move&& move)
{
    for (std::size_t j = 0; j < pos.cols(); ++j) move(pos.col(j));
    return static_cast<int>(pos.cols());
}

// Calls move(column) for each listed index inside pos, once per occurrence; returns how many.
template <class Move>
int __move_listed(dense2D<double>& pos, dense1D<unsigned, 8> const& IDs, Move&& move)
{
    int moved = 0;
    for (unsigned id : IDs)
        if (id < pos.cols()) {
            move(pos.col(id));
            ++moved;
        }
    return moved;
}

// The nodes of a connectivity, each once, in first-seen order.
inline dense1D<unsigned, 8> __nodes_of(dense2D<unsigned> const& connect)
{
    dense1D<unsigned, 8> IDs;
    unique_indices(IDs, connect);
    return IDs;
}

}  // namespace tessarium
}  // namespace qv7
