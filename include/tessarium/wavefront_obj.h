// Wavefront OBJ text files: vertices with their normals and texture coordinates, triangles and
// quadrilaterals. Files count from 1, memory from 0.
#pragma once

#include "export.h"
#include "dense2D.h"
#include "element_type.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Reads "v", "vn", "vt" and "f" lines; every other line is skipped. All five arrays are emptied
// first. pos gets 3 rows, normals 3, textures as many as the file's "vt" lines hold. A face keeps
// its vertex indices only; faces of 3 nodes go to connectT3, of 4 to connectQ4, others are
// dropped. Returns 0, -1 when the file cannot be opened, -2 on a malformed line (what was read
// before stays), -199 when an array cannot grow.
int WavefrontOBJ_input(char const* file_name, dense2D<double>& pos, dense2D<double>& normals, dense2D<double>& textures,
                       dense2D<unsigned>& connectT3, dense2D<unsigned>& connectQ4);

// Writes nodes, then texture coordinates and normals when not empty (one per node), then the
// faces. Returns 0, -1 when the file cannot be opened, -2 when pos has not 2 or 3 rows, -3 for
// normals not 3 x nodes, -4 for textures not 2 x nodes, -5 / -6 when connectT3 / connectQ4 has
// the wrong shape. After a refusal the file exists and is empty.
int WavefrontOBJ_output(char const* file_name, dense2D<double> const& pos, dense2D<double> const& normals,
                        dense2D<double> const& textures, dense2D<unsigned> const& connectT3,
                        dense2D<unsigned> const& connectQ4);
// One connectivity: ET_FACE_T3 or ET_FACE_Q4 are written, any other type leaves nodes alone.
int WavefrontOBJ_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                        element_type FE);
// Two connectivities, each going by its own type; two of the same face type are written one
// behind the other.
int WavefrontOBJ_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                        dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
