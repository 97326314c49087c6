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

TESSARIUM_EXPORT_BEGIN
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

// ---- Size maps: a dense1D of sizes, or a dense2D of tensors with 3 or 6 rows ----

// Position of the first invalid entry, the number of entries when all are valid. With `indices`,
// a position in `indices`; an index past the map is invalid. A tensor map of neither 3 nor 6 rows
// gives 0 at once, with or without `indices`.
TESSARIUM_API unsigned first_invalid_metric(dense1D<double, 8> const& metrics);
TESSARIUM_API unsigned first_invalid_metric(dense1D<unsigned, 8> const& indices, dense1D<double, 8> const& metrics);
TESSARIUM_API unsigned first_invalid_metric(dense2D<double> const& metrics);
TESSARIUM_API unsigned first_invalid_metric(dense1D<unsigned, 8> const& indices, dense2D<double> const& metrics);
// first_invalid_metric equals the number of entries (of `indices` when given).
TESSARIUM_API bool are_valid_metrics(dense1D<double, 8> const& metrics);
TESSARIUM_API bool are_valid_metrics(dense1D<unsigned, 8> const& indices, dense1D<double, 8> const& metrics);
TESSARIUM_API bool are_valid_metrics(dense2D<double> const& metrics);
TESSARIUM_API bool are_valid_metrics(dense1D<unsigned, 8> const& indices, dense2D<double> const& metrics);
// Appends the numbers of the valid columns to `indices`; a column that cannot be appended is skipped.
TESSARIUM_API void valid_metrics(dense2D<double> const& metrics, dense1D<unsigned, 8>& indices);

// Clamps every size into [hmin, hmax] (hmin wins when they cross; NaN sizes stay) and returns the
// number of changed entries, whose positions `changed` receives (emptied first). 0 at once for
// hmin <= 0 and hmax = DBL_LIMIT; -1 tensor rows neither 3 nor 6; -2 hmin, -3 hmax not finite;
// -199 when `changed` cannot grow (every entry is still bounded).
TESSARIUM_API int bound_metrics(dense1D<double, 8>& metrics, double hmin, double hmax);
TESSARIUM_API int bound_metrics(dense1D<double, 8>& metrics, double hmin, double hmax, dense1D<unsigned, 8>& changed);
TESSARIUM_API int bound_metrics(dense2D<double>& metrics, double hmin, double hmax);
TESSARIUM_API int bound_metrics(dense2D<double>& metrics, double hmin, double hmax, dense1D<unsigned, 8>& changed);

// Column i = I / h_i^2 for each h_i > 0; other columns stay. `tensors` (3 or 6 rows) is not sized
// here and needs a column per size. 0; -2 `tensors` of the wrong shape.
TESSARIUM_API int metrics_iso_to_aniso2d(dense1D<double, 8> const& sizes, dense2D<double>& tensors);
TESSARIUM_API int metrics_iso_to_aniso3d(dense1D<double, 8> const& sizes, dense2D<double>& tensors);
// Column i = metric_iso_to_aniso2d(h_i, basis i), `bases` holding b1 in rows 0-2 and b2 in rows
// 3-5. 0; -2 `bases` not 6 rows by one column per size; -3 `tensors` not 3 rows and enough columns.
TESSARIUM_API int metrics_iso_to_aniso2d(dense1D<double, 8> const& sizes, dense2D<double> const& bases,
                                         dense2D<double>& tensors);
// Column i = B_i^t M_i B_i. 0; -1 `tensors3d` not 6 rows; -2 `bases` not 6 rows by as many
// columns; -3 `tensors` not 3 rows and enough columns.
TESSARIUM_API int metrics_aniso3d_to_aniso2d(dense2D<double> const& tensors3d, dense2D<double> const& bases,
                                             dense2D<double>& tensors);

// Replaces a bad metric by its fallback when the fallback is good, over the shorter of the two;
// returns the number replaced. Sizes: a metric <= 0 by a fallback > 0 (NaN and DBL_LIMIT stay).
// Tensors: an invalid column by I / h^2 or by a valid fallback column. -1 tensor rows neither 3
// nor 6; -2 fallback tensor rows not those of `metrics`.
TESSARIUM_API int overwrite_invalid_metrics(dense1D<double, 8>& metrics, dense1D<double, 8> const& fallback);
TESSARIUM_API int overwrite_invalid_metrics(dense2D<double>& metrics, dense1D<double, 8> const& fallback);
TESSARIUM_API int overwrite_invalid_metrics(dense2D<double>& metrics, dense2D<double> const& fallback);

// ---- Size map measured on a mesh ----

// The size at each node is a mean of the lengths of the element edges at it, an edge counted once
// per element that has it: the shortest for power 0, the longest for power DBL_LIMIT, else
// (sum l^p / n)^(1/p). Edges of length 0, NaN or infinity count nowhere. `metrics` grows to the
// node count (new entries 0); nodes no edge reaches keep their value. Linear elements only.
// 0; -1 element dimension above the rows of `pos`; -2 bad node index; -3 unsupported type (also
// a value outside the 23 element types, at once); -5 negative power; -199 memory.
TESSARIUM_API int metrics_gen_iso(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                                  dense1D<double, 8>& metrics, double power);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
