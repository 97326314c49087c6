// A connectivity cut into groups of one element type each: group g covers the columns
// indices[g] up to indices[g + 1] and holds elements of type FEs[g].
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <cstddef>

namespace qv7 {
namespace tessarium {

// The columns of group g; none when the bounds are reversed.
struct __column_range {
    std::size_t first;
    std::size_t count;
};
__column_range __group_columns(dense1D<unsigned, 8> const& indices, std::size_t g) noexcept;

// View of group g with `rows` rows, cut to the columns M has.
dense2D<unsigned> __group_view(dense2D<unsigned> const& M, dense1D<unsigned, 8> const& indices,
                               std::size_t g, std::size_t rows);

// The refusals shared by the writers of grouped meshes, in their order: -2 pos without 2 or 3
// rows, -5 FEs and indices of unequal group counts, -6 `per_element` values for another column
// count; then for each group -4 a range past the columns, -3 a type or shape check_IDs refuses.
int __check_grouped_mesh(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                         dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs,
                         std::size_t per_element);

// The columns of A, then those of B, in a matrix of the larger row count; rows that a matrix
// lacks hold NONE_ID. False when it cannot be sized.
bool __concatenate(dense2D<unsigned> const& A, dense2D<unsigned> const& B, dense2D<unsigned>& all);

// ---- the convenience forms of the readers ----

// Empties the five results of a reader's common form.
void __empty_results(dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                     dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element) noexcept;

// The type of a read that found exactly one group, else ET_NONE.
element_type __single_group_type(int result, dense1D<int, 8> const& FEs) noexcept;

// The first two groups of a successful read as views on its connectivity `all`: the second with
// the rows of its type, the first likewise or, with `first_keeps_rows`, with all rows. A group
// the read did not find leaves its matrix and type as they were.
void __first_two_groups(int result, dense2D<unsigned> const& all, dense1D<unsigned, 8> const& indices,
                        dense1D<int, 8> const& FEs, bool first_keeps_rows, dense2D<unsigned>& M1,
                        dense2D<unsigned>& M2, element_type& FE1, element_type& FE2);

// ---- the convenience forms of the writers ----

// One group of `cols` columns of type FE, each column given the value 1.
bool __one_group(std::size_t cols, element_type FE, dense1D<unsigned, 8>& indices, dense1D<int, 8>& FEs,
                 dense1D<unsigned, 8>& per_element);
// Two groups bounded by (0, c1, end2), of types FE1 and FE2; c1 columns given 1, then c2 given 2.
bool __two_groups(std::size_t c1, std::size_t c2, std::size_t end2, element_type FE1, element_type FE2,
                  dense1D<unsigned, 8>& indices, dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element);

// The pure type of one column of a mixed group whose matrix has `rows` rows: rows missing from
// a narrow matrix count as NONE_ID.
element_type __face_mix_element(unsigned const* column, std::size_t rows) noexcept;
element_type __solid_mix_element(unsigned const* column, std::size_t rows) noexcept;

}  // namespace tessarium
}  // namespace qv7
