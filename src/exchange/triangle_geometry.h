// Squared heights and normals of a triangle given by three node numbers. With fewer than three
// rows in pos the missing coordinates are 0.0; nothing is read past a column.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/fixed.h"

namespace qv7 {
namespace tessarium {

// Squared height of the triangle over its vertex i, measured from the nearer end of the
// opposite side. A 2-row pos is a plane: z = 0 makes the space formula the plane one.
double __sqr_height(dense2D<double> const& pos, unsigned const* nodes, unsigned i) noexcept;

// The unnormalised normal (P1 - P0) x (P2 - P0), formed from the shorter sides.
void __copy_director(dense2D<double> const& pos, unsigned const* nodes, vector_fixed<double, 3>& director) noexcept;

}  // namespace tessarium
}  // namespace qv7
