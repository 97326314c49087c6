// Medit mesh and solution text files (write only).
#pragma once

#include "export.h"
#include "element_type.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Writes pos (1 to 3 rows, one column per node) and the groups first .. last - 1, group i of type
// FEs[i]; every element row ends with its group's index as reference. Mixed groups are split by
// node count; pyramids and wedges are written as degenerate hexahedra; higher-order elements keep
// their corner nodes; types without a Medit entity are left out.
// Returns 0; -1 failed open; -2 pos has not 1 to 3 rows; -3 a group refused by check_IDs;
// -4 last before first; -5 FEs and groups differ in size; -199 no memory. No file is created
// when a check fails.
int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const* first,
                 dense2D<unsigned> const* last, dense1D<int, 8> const& FEs);
// One group, reference 0.
int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE);
// Two groups, references 0 and 1.
int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                 dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2);
// The reference of element j is IDs[j]; elements with NONE_ID are left out. Returns 0 at once,
// without a file, for an empty connectM; -5 when IDs and columns differ in size; -6 when the
// groups could not be allocated; else as the range form.
int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE,
                 dense1D<unsigned, 8> const& IDs);

// Solution files: one value per entity, eight to a line.
int medit_scalar(char const* file_name, unsigned dim, dense1D<double, 8> const& values);
// One column per entity.
int medit_vector(char const* file_name, unsigned dim, dense2D<double> const& values);
// Symmetric tensors, 3 rows (2-D) or 6 rows (3-D), one column per entity. The file is opened
// before the row count is tested: -2 leaves it created, empty and open.
int medit_tensor(char const* file_name, dense2D<double> const& values);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
