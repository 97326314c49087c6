// Element quality over a whole mesh: Jacobians at a sample point and shape qualities.
//
// Shape quality is a number in [-1, 1]: 1 for the ideal element of its kind (equilateral
// triangle, square, regular tetrahedron, pyramid with equal edges, right prism with equal edges,
// cube), 0 for a flat one, negative for an inverted one where the kind has a sign (solids, and
// faces given with two coordinate rows). A solid is positive when the right-hand normals of its
// faces point into it.
#pragma once

#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"
#include "export.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// One value per element: half the length of an edge, the norm of the cross product of a face's
// tangents (twice the area of a triangle), the signed determinant for a solid (six times the
// volume of a tetrahedron, an eighth of the volume of a right-handed parallelepiped).
// 0; -2 node IDs refused; -3 unsupported type (`jacs` emptied); -199 memory.
TESSARIUM_API int jacobians(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type,
                            dense1D<double, 8>& jacs);

// One shape quality per element; edges are 1. 0; -2 node IDs refused; -3 unsupported type
// (`qualities` emptied); -199 memory.
TESSARIUM_API int shape_qualities(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type,
                                  dense1D<double, 8>& qualities);

// The lowest quality and the first element that has it. Starts at q_min 1 and e_min NONE_ID, and
// takes an element only when strictly below: a mesh with nothing below 1 keeps NONE_ID.
// 0; -2 node IDs refused; -3 unsupported type.
TESSARIUM_API int min_quality(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type,
                              double& q_min, unsigned& e_min);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
