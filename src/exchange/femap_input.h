// The worker behind FEMAP_input and its line helpers, open to the tests and the fuzzer.
#pragma once

#include "exchange/node_columns.h"
#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <istream>
#include <string>
#include <vector>

namespace qv7 {
namespace tessarium {

// Replaces the contents of words by the comma-separated tokens of line, blanks kept; empty
// tokens are dropped, so the tokens behind an empty field move one place to the front.
void __get_words(std::string const& line, std::vector<std::string>& words);
// Reads and discards n lines.
void __skip_lines(std::istream& in, unsigned n);
// Removes every blank (code 32, nothing else) from text; returns it.
std::string& __remove_spaces(std::string& text);

// Reads blocks 403 and 404 from an open stream into the five results; pos and connectM are
// emptied first, the other three appended to. Node IDs above max_ID are refused with -199.
int __FEMAP_input(std::istream& in, dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                  dense1D<int, 8>& FEs, dense1D<unsigned, 8>& IDs, std::size_t max_ID = __max_node_ID);

}  // namespace tessarium
}  // namespace qv7
