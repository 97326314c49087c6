// The worker behind NASTRAN_input, open to the tests and the fuzzer.
#pragma once

#include "exchange/node_columns.h"
#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <istream>

namespace qv7 {
namespace tessarium {

// Reads a deck from an open stream into the five results, which it empties first (indices is
// appended to). Node IDs above max_ID are refused with -199.
int __NASTRAN_input(std::istream& in, dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                    dense1D<int, 8>& FEs, dense1D<unsigned, 8>& PIDs, std::size_t max_ID = __max_node_ID);

}  // namespace tessarium
}  // namespace qv7
