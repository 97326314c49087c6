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

// The pure type of one column of a mixed group whose matrix has `rows` rows: rows missing from
// a narrow matrix count as NONE_ID.
element_type __face_mix_element(unsigned const* column, std::size_t rows) noexcept;
element_type __solid_mix_element(unsigned const* column, std::size_t rows) noexcept;

}  // namespace tessarium
}  // namespace qv7
