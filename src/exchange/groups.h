// Groups of elements, as the writers and readers take them, in one of two forms:
// - a range of matrices first .. last - 1, group i of type FEs[i] (Medit, VTK, EnSight);
// - one matrix whose group g covers the columns indices[g] up to indices[g + 1] and holds
//   elements of type FEs[g] (NASTRAN, FEMAP).
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <cstddef>

namespace qv7 {
namespace tessarium {

// One of the values of element_type.
bool __is_element_type(int FE) noexcept;

// The pure type of one column of a group of type `group`: the group's own type, or for a mixed
// group the member the column holds, told by its first NONE_ID; rows from `rows` on count as
// NONE_ID.
element_type __column_type(element_type group, unsigned const* column, std::size_t rows) noexcept;

// ---- a range of matrices ----

// One connectivity of one element type, and the group it came from.
struct __block_list {
    dense1D<dense2D<unsigned>, 8> blocks;
    dense1D<int, 8> types;
    dense1D<unsigned, 8> references;
};

// Appends the blocks of every non-empty group, in group order. A mixed group is copied and
// sorted, largest node count first, and each node count becomes one block of its member type;
// any other group is one block sharing the group's storage. For checked groups only. False when
// an array could not be sized.
bool __split_groups(dense2D<unsigned> const* first, dense2D<unsigned> const* last, dense1D<int, 8> const& FEs,
                    __block_list& list);

// ---- column ranges of one matrix ----

// The columns of group g; none when the bounds are reversed.
struct __column_range {
    std::size_t first;
    std::size_t count;
};
__column_range __group_columns(dense1D<unsigned, 8> const& indices, std::size_t g) noexcept;

// View of group g with `rows` rows, cut to the columns M has.
dense2D<unsigned> __group_view(dense2D<unsigned> const& M, dense1D<unsigned, 8> const& indices, std::size_t g,
                               std::size_t rows);

}  // namespace tessarium
}  // namespace qv7
