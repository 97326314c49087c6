// NASTRAN bulk data decks: grid points and element connectivities, read and written.
#pragma once

#include "export.h"
#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Reads the bulk data section of a deck. pos gets 3 rows, column ID - 1 for the grid point of
// that ID; connectM one column per accepted element in file order. Group g, a run of elements of
// type FEs[g], covers columns indices[g] up to indices[g + 1]; PIDs holds one property ID per
// element. Returns -1 (no file, no "BEGIN BULK", bad grid line), -199 (no memory, or a node ID
// beyond eight digits), else a value that is not negative.
int NASTRAN_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM,
                  dense1D<unsigned, 8>& indices, dense1D<int, 8>& FEs, dense1D<unsigned, 8>& PIDs);
// FE is the type of a deck of one group, else ET_NONE.
int NASTRAN_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM, element_type& FE);
// The first two groups as views on one connectivity; later groups are dropped.
int NASTRAN_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM1,
                  dense2D<unsigned>& connectM2, element_type& FE1, element_type& FE2);

// Writes grid points in large field and element cards in free field. Returns 0, or -1 (no file),
// -2 (pos not of 2 or 3 rows), -3 (a group refused by check_IDs), -4 (a group past the columns),
// -5 (FEs and indices do not fit), -6 (PIDs and columns differ), -199 (no memory).
int NASTRAN_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                   dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs, dense1D<unsigned, 8> const& PIDs);
// One group; every property ID is 1.
int NASTRAN_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                   element_type FE);
// Two groups with property IDs 1 and 2.
int NASTRAN_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                   dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
