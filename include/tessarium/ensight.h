// EnSight geometry text files (write only).
#pragma once

#include "export.h"
#include "element_type.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Writes pos (1 to 3 rows, completed to three coordinates) and one part per non-empty group of a
// type with an EnSight element, numbered by the group's place from 1. Returns 0; -1 failed open;
// -2 pos has not 1 to 3 rows; -3 a group whose shape does not fit its type; -4 last before
// first; -5 FEs and groups differ in size. The file is opened first: after a refusal it is left
// created, empty and open.
int ensight_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const* first,
                   dense2D<unsigned> const* last, dense1D<int, 8> const& FEs);
int ensight_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                   element_type FE);
int ensight_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                   dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
