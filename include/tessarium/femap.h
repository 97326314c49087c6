// FEMAP neutral text files: data blocks 403 (nodes) and 404 (elements), read and written.
#pragma once

#include "export.h"
#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Reads blocks 403 and 404. pos gets 3 rows, column ID - 1 for the node of that ID; connectM one
// column per element, shorter ones padded with NONE_ID; IDs the second field of each element's
// record. Returns 0 at the end of the file, -1 (no file), -102 (a node ID of 0), -199 (no memory,
// or a node ID that is negative or beyond eight digits).
int FEMAP_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                dense1D<int, 8>& FEs, dense1D<unsigned, 8>& IDs);
// FE is the type of a file of one group, else ET_NONE.
int FEMAP_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM, element_type& FE);
// The first two groups as views on one connectivity; later groups are dropped.
int FEMAP_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM1, dense2D<unsigned>& connectM2,
                element_type& FE1, element_type& FE2);

// Writes blocks 403 and 404. Returns 0, or -1 (no file), -2 (pos not of 2 or 3 rows), -3 (a group
// refused by check_IDs), -4 (a group past the columns), -5 (FEs and indices do not fit), -6 (IDs
// and columns differ), -199 (no memory).
int FEMAP_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                 dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs, dense1D<unsigned, 8> const& IDs);
// One group; every element record carries 1.
int FEMAP_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE);
// Two groups, records carrying 1 and 2. The group bounds are (0, columns 1, columns 2).
int FEMAP_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                 dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
