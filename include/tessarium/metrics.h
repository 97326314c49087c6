// Size maps: single metrics, arrays of metrics and size maps measured on a mesh.
//
// An isotropic metric is a size h > 0, the wanted edge length. An anisotropic metric is the
// packed tensor M = R^t diag(1/h_k^2) R (m11, m12, m22 or m11, m12, m22, m13, m23, m33), never the
// sizes; it is valid when its smallest eigenvalue is > 0, and a NaN eigenvalue is invalid. A tensor
// with a NaN or infinite entry has no eigen-decomposition here and is never valid. Arrays
// of tensors have 3 rows (2D) or 6 rows (3D), one column per node. In this family a result -k
// names the k-th argument.
#pragma once

#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"
#include "export.h"
#include "fixed.h"

namespace qv7 {

// The largest finite double: as a bound it means no bound.
constexpr double DBL_LIMIT = 1.7976931348623157e308;
// Between these sizes 1/h^2 neither overflows nor underflows.
constexpr double SIZE_TINY = 0x1p-511;
constexpr double SIZE_HUGE = 0x1p512;

namespace tessarium {

// ---- One metric ----

// Eigenvalues in ascending order, eigenvector k in column k. In 2D on a non-finite eigenvalue,
// false with lambda holding what was found and V not written; in 3D the values of dspev, true
// when its info is 0 (a non-finite entry: false, lambda NaN, V not written).
TESSARIUM_API bool eigen_pairs(symmetric_fixed<double, 2> const& M, vector_fixed<double, 2>& lambda,
                               matrix_fixed<double, 2, 2>& V);
TESSARIUM_API bool eigen_pairs(symmetric_fixed<double, 3> const& M, vector_fixed<double, 3>& lambda,
                               matrix_fixed<double, 3, 3>& V);
// The generalised problem B x = lambda A x with unit columns; false when A is not positive definite.
TESSARIUM_API bool eigen_pairs(symmetric_fixed<double, 2> const& A, symmetric_fixed<double, 2> const& B,
                               vector_fixed<double, 2>& lambda, matrix_fixed<double, 2, 2>& V);
TESSARIUM_API bool eigen_pairs(symmetric_fixed<double, 3> const& A, symmetric_fixed<double, 3> const& B,
                               vector_fixed<double, 3>& lambda, matrix_fixed<double, 3, 3>& V);

// Smallest eigenvalue > 0. In 2D a matrix whose eigenvalues are not both finite is invalid.
TESSARIUM_API bool is_valid_metric(symmetric_fixed<double, 2> const& M);
TESSARIUM_API bool is_valid_metric(symmetric_fixed<double, 3> const& M);

// Intersection (the smaller size in every direction) and union (the larger). M may be M1 or M2.
// On false M becomes a copy of M1.
TESSARIUM_API bool minimum_metric(symmetric_fixed<double, 2> const& M1, symmetric_fixed<double, 2> const& M2,
                                  symmetric_fixed<double, 2>& M);
TESSARIUM_API bool minimum_metric(symmetric_fixed<double, 3> const& M1, symmetric_fixed<double, 3> const& M2,
                                  symmetric_fixed<double, 3>& M);
TESSARIUM_API bool maximum_metric(symmetric_fixed<double, 2> const& M1, symmetric_fixed<double, 2> const& M2,
                                  symmetric_fixed<double, 2>& M);
TESSARIUM_API bool maximum_metric(symmetric_fixed<double, 3> const& M1, symmetric_fixed<double, 3> const& M2,
                                  symmetric_fixed<double, 3>& M);

// Clamps the sizes of M into [hmin, hmax], hmin winning when they cross. 1 changed, 0 unchanged
// (also at once for hmin <= 0 and hmax = DBL_LIMIT); -2 hmin, -3 hmax not finite.
TESSARIUM_API int bound_metric(symmetric_fixed<double, 2>& M, double hmin, double hmax);
TESSARIUM_API int bound_metric(symmetric_fixed<double, 3>& M, double hmin, double hmax);

// M = I / h^2; the zero tensor for h <= 0.
TESSARIUM_API void metric_iso_to_aniso(double h, symmetric_fixed<double, 2>& M);
TESSARIUM_API void metric_iso_to_aniso(double h, symmetric_fixed<double, 3>& M);
// The size h seen in the plane spanned by the columns of B: M = B^t B / h^2, or zero.
TESSARIUM_API void metric_iso_to_aniso2d(double h, matrix_fixed<double, 3, 2> const& B, symmetric_fixed<double, 2>& M);
// M = B^t M3 B.
TESSARIUM_API void metric_aniso3d_to_aniso2d(symmetric_fixed<double, 3> const& M3, matrix_fixed<double, 3, 2> const& B,
                                             symmetric_fixed<double, 2>& M);

}  // namespace tessarium
}  // namespace qv7
