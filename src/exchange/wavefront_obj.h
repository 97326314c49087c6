// Token readers of the Wavefront OBJ reader, open to the tests.
#pragma once

#include "tessarium/dense1D.h"

#include <istream>

namespace qv7 {
namespace tessarium {

// Empties values, reads the rest of `line` and appends the doubles found there up to the first
// word that is not a number. -2 when nothing is left to read, -199 when values cannot grow.
int __WFRT_read_floats(std::istream& line, dense1D<double, 8>& values);

// Reads one slot of a vertex token "a", "a/b", "a//c" or "a/b/c": a number is appended to ids.
// An empty slot or the end of the token stores nothing. -2 when the number is followed by
// anything but "/", -199 when ids cannot grow.
int __read_id(std::istream& token, dense1D<unsigned, 8>& ids);

}  // namespace tessarium
}  // namespace qv7
