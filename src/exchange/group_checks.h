// The refusals the mesh writers make before anything is written. The formats differ in what pos
// may be, in how far node IDs are checked, in the group form and in where the file is opened:
//   Medit    -2 pos not of 1 to 3 rows, -4, -5, -3 node IDs beyond pos; before the file is opened
//   VTK      -1 open; -2 pos not of 2 or 3 rows, -4, -5, -3 node IDs beyond pos
//   EnSight  -1 open; -2 pos not of 1 to 3 rows, -4, -5, -3 shapes only
//   NASTRAN  0 and no file when connectM is empty; -1 open; then the grouped checks below
//   FEMAP    the file is opened first; 0 when connectM is empty; -1 open; the grouped checks
// After a refusal VTK, EnSight and NASTRAN leave the file they opened created, empty and open;
// FEMAP closes it.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <cstddef>

namespace qv7 {
namespace tessarium {

// What a writer of a range of groups asks beyond the checks all of them make.
struct __range_rules {
    unsigned min_pos_rows;  // pos has min_pos_rows to 3 rows
    bool IDs_below_nodes;   // node IDs are checked against the columns of pos, else shapes alone
};

constexpr __range_rules __medit_rules = {1, true};
constexpr __range_rules __vtk_rules = {2, true};
constexpr __range_rules __ensight_rules = {1, false};

// In this order: -2 pos has a row count the rules refuse, -4 last lies before first, -5 FEs does
// not hold one type per group, -3 a non-empty group whose type is no element type or which
// check_IDs refuses. 0 when all pass.
int __check_groups(__range_rules rules, dense2D<double> const& pos, dense2D<unsigned> const* first,
                   dense2D<unsigned> const* last, dense1D<int, 8> const& FEs) noexcept;

// In this order: -2 pos without 2 or 3 rows, -5 FEs and indices of unequal group counts, -6
// `per_element` values for another column count; then for each group -4 a range past the
// columns, -3 a type or shape check_IDs refuses.
int __check_grouped_mesh(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                         dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs, std::size_t per_element);

}  // namespace tessarium
}  // namespace qv7
