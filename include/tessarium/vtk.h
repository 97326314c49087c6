// Legacy VTK unstructured-grid text files (write only).
#pragma once

#include "export.h"
#include "element_type.h"

#include <cstdio>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Appends the cells of connectM, of type FE, to cells (node count, then zero-based nodes) and
// their VTK types to cell_types, adding the number of cells to nbr_cells. Rows beyond the main
// cell's nodes follow as a poly-vertex cell. Returns 0; -1 when connectM does not have FE's shape
// or too few rows; -2 when FE has no VTK cell.
int vtk_convert(dense2D<unsigned> const& connectM, element_type FE, unsigned& nbr_cells, dense1D<unsigned, 8>& cells,
                dense1D<unsigned, 8>& cell_types);

// Writes the whole file content on stream, which stays open. Returns 0; -1 null stream; -2 pos
// has not 2 or 3 rows.
int vtk_output(std::FILE* stream, dense2D<double> const& pos, unsigned nbr_cells, dense1D<unsigned, 8> const& cells,
               dense1D<unsigned, 8> const& cell_types);

// Writes pos and the groups first .. last - 1, group i of type FEs[i]; mixed groups are split by
// node count, largest first. Returns 0; -1 failed open; -2 pos has not 2 or 3 rows; -3 a group
// refused by check_IDs; -4 last before first; -5 FEs and groups differ in size; a code of
// vtk_convert; -199 no memory. The file is opened first: after a refusal it is left created,
// empty and open.
int vtk_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const* first,
               dense2D<unsigned> const* last, dense1D<int, 8> const& FEs);
int vtk_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE);
int vtk_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
               dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
