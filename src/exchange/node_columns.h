// Matrices that readers of numbered decks grow in place: node columns by ID, element columns one
// at a time, both with capacity in powers of two.
#pragma once

#include "tessarium/dense2D.h"

#include <cstddef>

namespace qv7 {
namespace tessarium {

// The largest node ID a reader places in pos: eight digits, the width of an ID field. It keeps a
// hostile ID from asking for gigabytes of coordinates.
constexpr std::size_t __max_node_ID = 99999999;

// The smallest power of two not below n (0 for 0).
std::size_t __power_of_two_ceil(std::size_t n) noexcept;

// Makes column ID - 1 of the 3-row pos exist, new columns 0.0, capacity growing to a power of two.
// False for an ID of 0 or above max_ID, or when the storage cannot be had (pos is then unchanged).
bool __reach_node_column(dense2D<double>& pos, std::size_t ID, std::size_t max_ID);

// Makes room for `cols` columns of `rows` rows without changing the shape; false if that failed.
template <class T>
bool __reserve_columns(dense2D<T>& M, std::size_t rows, std::size_t cols)
{
    std::size_t L = M.empty() ? rows : M.ld();
    if (rows <= L && cols * L <= M.capacity()) return true;
    std::size_t old_rows = M.rows(), old_cols = M.cols();
    if (!M.resize(rows, cols)) return false;
    return M.resize(old_rows, old_cols);
}

}  // namespace tessarium
}  // namespace qv7
