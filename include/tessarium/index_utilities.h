// Arithmetic on index lists and connectivities: distinct nodes, renumbering, matching, sorting.
//
// NONE_ID is never a node. Results never depend on hash order: they come in first-seen or in
// sorted order.
#pragma once

#include "export.h"
#include "dense2D.h"
#include "element_type.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Appends to out the distinct values of the input in order of first appearance, leaving out
// NONE_ID and every value of `excluded`. Matrices are walked column by column. Values already in
// out are not looked at. The range form returns -3 when last lies before first.
int unique_indices(dense1D<unsigned, 8>& out, dense1D<unsigned, 8> const& in,
                   dense1D<unsigned, 8> excluded = dense1D<unsigned, 8>());
int unique_indices(dense1D<unsigned, 8>& out, dense2D<unsigned> const& in,
                   dense1D<unsigned, 8> excluded = dense1D<unsigned, 8>());
int unique_indices(dense1D<unsigned, 8>& out, dense2D<unsigned> const* first, dense2D<unsigned> const* last,
                   dense1D<unsigned, 8> excluded = dense1D<unsigned, 8>());

// Number of distinct values other than NONE_ID; -2 when last lies before first.
int count_unique_indices(dense2D<unsigned> const& connect);
int count_unique_indices(dense2D<unsigned> const* first, dense2D<unsigned> const* last);

// Largest value other than NONE_ID (0 if there is none); NONE_ID for an empty input.
unsigned max_ID(dense1D<unsigned, 8> const& IDs) noexcept;
unsigned max_ID(dense2D<unsigned> const& connect) noexcept;

// Matches two lists by value: out_b[j] is the first position of b[j] in a, out_a[k] the first
// position of a[k] in b for every first position k in a; NONE_ID where there is none.
int get_IDs(dense1D<unsigned, 8> const& a, dense1D<unsigned, 8> const& b, dense1D<unsigned, 8>& out_b,
            dense1D<unsigned, 8>& out_a);
// Matches the columns of two matrices: identical columns when ordered, otherwise the same closed
// loop in either direction from any start. out_b[j] is the smallest matching column of a; out_a[k]
// the smallest matching column of b. -2 when the row counts differ.
int get_IDs(dense2D<unsigned> const& a, dense2D<unsigned> const& b, dense1D<unsigned, 8>& out_b,
            dense1D<unsigned, 8>& out_a, bool ordered);

// Adds shift to every entry but NONE_ID, with unsigned wrap-around. For a connectivity of a type
// other than ET_FACE_MIX and ET_SOLID_MIX every entry is shifted, since such types hold no NONE_ID.
int shift_indices(dense1D<unsigned, 8>& IDs, int shift);
int shift_indices(dense2D<unsigned>& connect, int shift, element_type type);

// Replaces every entry v < map.size() by map[v]; larger entries and NONE_ID stay.
void change_indices(dense1D<unsigned, 8>& IDs, dense1D<unsigned, 8> const& map);
void change_indices(dense2D<unsigned>& connect, dense1D<unsigned, 8> const& map);

// Scatter: data[perm[i]] receives the old data[i]. Positions that no entry reaches keep their
// values; entries out of range, NONE_ID among them, are skipped. -199 when memory runs out.
int permutation(dense1D<unsigned, 8>& data, dense1D<unsigned, 8> const& perm);
int permutation(dense1D<double, 8>& data, dense1D<unsigned, 8> const& perm);

// Stable counting sort: the positions holding value v are order[offsets[v]] .. order[offsets[v+1]-1],
// ascending. NONE_ID values are left out. -199 when memory runs out.
int get_sorted_order(dense1D<unsigned, 8> const& values, dense1D<unsigned, 8>& order, dense1D<unsigned, 8>& offsets);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
