// The one- and two-matrix forms of the readers and writers, around their common forms.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {

// The common forms: a range of matrices (Medit, VTK, EnSight), or one matrix cut into groups of
// columns with one value per column (NASTRAN, FEMAP).
using __range_writer = int (*)(char const*, dense2D<double> const&, dense2D<unsigned> const*, dense2D<unsigned> const*,
                               dense1D<int, 8> const&);
using __grouped_writer = int (*)(char const*, dense2D<double> const&, dense2D<unsigned> const&,
                                 dense1D<unsigned, 8> const&, dense1D<int, 8> const&, dense1D<unsigned, 8> const&);
using __grouped_reader = int (*)(char const*, dense2D<double>&, dense2D<unsigned>&, dense1D<unsigned, 8>&,
                                 dense1D<int, 8>&, dense1D<unsigned, 8>&);

// Writes connectM as the one group, of type FE: a range of one matrix, or one group of columns
// each given the value 1. -199 when the arrays cannot be had.
int __write_one_matrix(__range_writer write, char const* file_name, dense2D<double> const& pos,
                       dense2D<unsigned> const& connectM, element_type FE);
int __write_one_matrix(__grouped_writer write, char const* file_name, dense2D<double> const& pos,
                       dense2D<unsigned> const& connectM, element_type FE);

// Writes two groups: a range of the two matrices (shallow copies), or the columns of connectM1
// given 1, then those of connectM2 given 2, bounded by 0, the columns of connectM1 and, with
// `running_end`, the sum of both column counts, else the columns of connectM2 alone. -199 when
// the arrays cannot be had.
int __write_two_matrices(__range_writer write, char const* file_name, dense2D<double> const& pos,
                         dense2D<unsigned> const& connectM1, dense2D<unsigned> const& connectM2, element_type FE1,
                         element_type FE2);
int __write_two_matrices(__grouped_writer write, bool running_end, char const* file_name, dense2D<double> const& pos,
                         dense2D<unsigned> const& connectM1, dense2D<unsigned> const& connectM2, element_type FE1,
                         element_type FE2);

// Empties the five results of a reader's common form.
void __empty_results(dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                     dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element) noexcept;

// Reads into one matrix; FE is the type of a file of exactly one group, else ET_NONE.
int __read_one_matrix(__grouped_reader read, char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM,
                      element_type& FE);

// Reads the first two groups as views on one connectivity: the second with the rows of its type,
// the first likewise or, with `first_keeps_rows`, with all rows. A group the read did not find
// leaves its matrix and type as they were; so does a failed read.
int __read_two_matrices(__grouped_reader read, bool first_keeps_rows, char const* file_name, dense2D<double>& pos,
                        dense2D<unsigned>& connectM1, dense2D<unsigned>& connectM2, element_type& FE1,
                        element_type& FE2);

}  // namespace tessarium
}  // namespace qv7
