// STL triangle surfaces, text and binary.
#pragma once

#include "export.h"
#include "dense2D.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Reads a text STL, or else a binary one, and welds the triangle soup into a connected mesh:
// nodes closer than a twentieth of the smallest positive triangle height merge, collapsed
// triangles and unused nodes go. pos gets 3 rows, connectT3 3 rows, one column per triangle.
// Returns 0, -1 when the file cannot be opened, -2 when it is neither text nor binary STL (no
// "solid" line, shorter than the binary header), -3 when its body is malformed or cut short,
// -199 when an array cannot grow. After a failure both arrays are empty.
int STL_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectT3);

// Writes the triangles of connectT3 as text STL (text true) or binary STL, with unit normals
// (zero for a degenerate triangle). A 2-row pos is written with z = 0. Returns 0, -1 when the
// file cannot be opened or a write fails, -2 when pos has not 2 or 3 rows, -3 when connectT3 is
// not a valid triangle connectivity for pos. On -2 and -3 the created file is left open and empty.
int STL_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectT3, bool text);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
