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

// ---- the convenience forms of readers and writers, around their common forms ----

using __grouped_reader = int (*)(char const*, dense2D<double>&, dense2D<unsigned>&, dense1D<unsigned, 8>&,
                                 dense1D<int, 8>&, dense1D<unsigned, 8>&);
using __grouped_writer = int (*)(char const*, dense2D<double> const&, dense2D<unsigned> const&,
                                 dense1D<unsigned, 8> const&, dense1D<int, 8> const&, dense1D<unsigned, 8> const&);

// Empties the five results of a reader's common form.
void __empty_results(dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                     dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element) noexcept;

// Reads into one matrix; FE is the type of a file of exactly one group, else ET_NONE.
int __read_one_matrix(__grouped_reader read, char const* file_name, dense2D<double>& pos,
                      dense2D<unsigned>& connectM, element_type& FE);

// Reads the first two groups as views on one connectivity: the second with the rows of its type,
// the first likewise or, with `first_keeps_rows`, with all rows. A group the read did not find
// leaves its matrix and type as they were; so does a failed read.
int __read_two_matrices(__grouped_reader read, bool first_keeps_rows, char const* file_name,
                        dense2D<double>& pos, dense2D<unsigned>& connectM1, dense2D<unsigned>& connectM2,
                        element_type& FE1, element_type& FE2);

// Writes one group of type FE, every column given the value 1.
int __write_one_matrix(__grouped_writer write, char const* file_name, dense2D<double> const& pos,
                       dense2D<unsigned> const& connectM, element_type FE);

// Writes the columns of connectM1 given 1, then those of connectM2 given 2, as two groups
// bounded by 0, the columns of connectM1 and, with `running_end`, the sum of both column counts,
// else the columns of connectM2 alone.
int __write_two_matrices(__grouped_writer write, bool running_end, char const* file_name,
                         dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                         dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2);

// The pure type of one column of a mixed group whose matrix has `rows` rows: rows missing from
// a narrow matrix count as NONE_ID.
element_type __face_mix_element(unsigned const* column, std::size_t rows) noexcept;
element_type __solid_mix_element(unsigned const* column, std::size_t rows) noexcept;

}  // namespace tessarium
}  // namespace qv7
