// Index tools shared inside the library; the exported forms in index_utilities.h call these.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

namespace qv7 {

// Calls f(first, count) on the contiguous runs of M's entries in column order: one run when
// ld == rows, one per column otherwise.
template <class F>
void __for_each_run(dense2D<unsigned> const& M, F&& f)
{
    if (M.empty()) return;
    if (M.ld() == M.rows()) {
        f(M.col(0), M.rows() * M.cols());
        return;
    }
    for (std::size_t j = 0; j < M.cols(); ++j) f(M.col(j), M.rows());
}

// Calls f(value) on every entry of M, column by column and row by row, honouring ld.
template <class F>
void __for_each_index(dense2D<unsigned> const& M, F&& f)
{
    __for_each_run(M, [&f](unsigned const* p, std::size_t n) {
        for (unsigned const* e = p + n; p != e; ++p) f(*p);
    });
}

// As above, for mutable entries.
template <class F>
void __for_each_index(dense2D<unsigned>& M, F&& f)
{
    if (M.empty()) return;
    for (std::size_t j = 0; j < M.cols(); ++j)
        for (unsigned *p = M.col(j), *e = p + M.rows(); p != e; ++p) f(*p);
}

unsigned max_ID(dense1D<unsigned, 8> const& IDs) noexcept;
unsigned max_ID(dense2D<unsigned> const& connect) noexcept;

int get_sorted_order(dense1D<unsigned, 8> const& values, dense1D<unsigned, 8>& order, dense1D<unsigned, 8>& offsets);

// Scatter of data by perm; see tessarium::permutation. Instantiated for unsigned and double.
template <class Array>
int permutation(Array& data, dense1D<unsigned, 8> const& perm);

// Renumbers values in place to 0, 1, 2, ... in order of first appearance, NONE_ID staying.
// Afterwards unique[new] = old and map[old] = new. compress_indices sizes map to max_ID + 1 with
// NONE_ID for unused numbers; compress_indices_fast sets only the entries of numbers that occur
// and leaves the others undefined. 0, or -199 when memory runs out.
int compress_indices(dense1D<unsigned, 8>& values, dense1D<unsigned, 8>& unique, dense1D<unsigned, 8>& map);
int compress_indices_fast(dense1D<unsigned, 8>& values, dense1D<unsigned, 8>& unique, dense1D<unsigned, 8>& map);

}  // namespace qv7
