// Groups the columns of a mixed connectivity by node count, largest first.
#pragma once

#include "export.h"
#include "dense2D.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Sorts the columns of connectM in place by descending count of valid nodes (the entries above
// the first NONE_ID), stably, and drops columns without any node. sizes gets the node count of
// each group, ends the column just past each group, new_indices the new place of every initial
// column (NONE_ID when dropped). Returns 0, or -199 when a work array could not be sized.
int sort_elfes(dense2D<unsigned>& connectM, dense1D<unsigned, 8>& sizes, dense1D<unsigned, 8>& ends,
               dense1D<unsigned, 8>& new_indices);

// As above, carrying along a companion of one column per element (e.g. neighbours) whose element
// entries are renumbered; an entry naming a dropped element becomes NONE_ID. An empty companion is
// no companion. Returns -1 when a companion's column count differs from connectM's.
int sort_elfes(dense2D<unsigned>& connectM, dense2D<unsigned>& neighbours, dense1D<unsigned, 8>& sizes,
               dense1D<unsigned, 8>& ends, dense1D<unsigned, 8>& new_indices);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
