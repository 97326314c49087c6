// The working list of mesh edges: each edge a pair (first, second) with first <= second, kept as
// one 64-bit word with `first` in the high half, so that the order of the words is the order of
// the pairs by first, then second.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <cstdint>

namespace qv7 {

using edge_pair = std::uint64_t;

constexpr edge_pair __edge_pair(unsigned a, unsigned b) noexcept
{
    return a < b ? edge_pair(a) << 32 | b : edge_pair(b) << 32 | a;
}
constexpr unsigned __first(edge_pair e) noexcept
{
    return unsigned(e >> 32);
}
constexpr unsigned __second(edge_pair e) noexcept
{
    return unsigned(e);
}

namespace tessarium {

// Appends the edges of every element of connectM, then sorts the whole of `pairs` and keeps
// each pair once: calls in a row give the union. Types without edges add nothing. The array must
// have the rows of its type (check_IDs). 0, or -199 when the list cannot grow.
int __get_edges(dense2D<unsigned> const& connectM, element_type type, dense1D<edge_pair, 8>& pairs);

// Takes out of the sorted list `pairs` every edge named by a column (rows 0 and 1, in either
// order) of connectM. Without memory for its own list, leaves `pairs` as it is.
void __remove_edges(dense2D<unsigned> const& connectM, dense1D<edge_pair, 8>& pairs);

}  // namespace tessarium
}  // namespace qv7
