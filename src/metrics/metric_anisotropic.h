// The two metric kinds and the operations on pairs of anisotropic metrics: intersection, union,
// interpolation along an edge and the clamping of sizes. All work on the stack.
#pragma once

#include "metrics/eigen.h"
#include "tessarium/fixed.h"
#include "tessarium/metrics.h"

namespace qv7 {

// The wanted edge length at a node.
using metric_isotropic = double;

// v^t M v, summed as m11 x^2 + 2 m12 x y + m22 y^2 [+ 2 (m13 x + m23 y) z + m33 z^2].
inline double __quadratic_form(symmetric_fixed<double, 2> const& M, double const* v) noexcept
{
    double x = v[0], y = v[1];
    return M[0] * x * x + 2 * M[1] * x * y + M[2] * y * y;
}
inline double __quadratic_form(symmetric_fixed<double, 3> const& M, double const* v) noexcept
{
    double x = v[0], y = v[1], z = v[2];
    return M[0] * x * x + 2 * M[1] * x * y + M[2] * y * y + 2 * (M[3] * x + M[4] * y) * z + M[5] * z * z;
}

// M = sum of mu_k c_k c_k^t over the columns c_k of C, each packed entry summed for k = 0, 1, ...
template <unsigned D>
void __sum_rank_one(vector_fixed<double, D> const& mu, matrix_fixed<double, D, D> const& C,
                    symmetric_fixed<double, D>& M) noexcept
{
    for (unsigned j = 0; j < D; ++j)
        for (unsigned i = 0; i <= j; ++i) {
            double s = 0.0;
            for (unsigned k = 0; k < D; ++k) s += C(i, k) * mu[k] * C(j, k);
            M(i, j) = s;
        }
}

// Smallest and largest values both strictly inside (0, DBL_LIMIT); NaN fails.
template <unsigned D>
bool __within_limits(vector_fixed<double, D> const& v) noexcept
{
    for (unsigned k = 0; k < D; ++k)
        if (!(v[k] > 0.0 && v[k] < DBL_LIMIT)) return false;
    return true;
}

// The tensor M = R^t diag(1/h_k^2) R, packed (D = 2 or 3).
template <unsigned D>
struct metric_anisotropic : symmetric_fixed<double, D> {
    // Intersection: in each common direction of the pair the larger eigenvalue, the smaller size.
    static bool minimum_metric(metric_anisotropic const& M1, metric_anisotropic const& M2,
                               metric_anisotropic& M) noexcept;
    // Union: the smaller eigenvalue, the larger size.
    static bool maximum_metric(metric_anisotropic const& M1, metric_anisotropic const& M2,
                               metric_anisotropic& M) noexcept;
    // Sizes interpolated linearly in t along the common directions; M1 or M2 as they are within
    // 1e-12 of t = 0 or 1. True when the result is positive definite.
    static bool interpolation(double t, metric_anisotropic const& M1, metric_anisotropic const& M2,
                              metric_anisotropic& M) noexcept;
    // Clamps every eigenvalue into [1/hmax^2, 1/hmin^2], the lower clamp last; true when changed.
    // A matrix that cannot be decomposed becomes I / hmin^2 (DBL_LIMIT I for hmin <= 0).
    bool bound(double hmin, double hmax) noexcept;
    // Smallest eigenvalue > 0.
    bool is_valid() const noexcept { return __smallest_eigenvalue(*this) > 0.0; }
};

// Simultaneous reduction of a pair (M1, M2): M1 and M2 are both diagonal in `basis`.
template <unsigned D>
struct metric_anisotropic_interpolation_data {
    matrix_fixed<double, D, D> basis{};        // unit generalised eigenvectors x_k
    matrix_fixed<double, D, D> basis_inv_t{};  // columns c_k with M = sum mu_k c_k c_k^t
    vector_fixed<double, D> mu_first{};        // x_k^t M1 x_k
    vector_fixed<double, D> mu_second{};       // x_k^t M2 x_k, as mu_first times the eigenvalue

    // False with every field zero when the pair has no reduction (M1 not positive definite); false
    // with the fields kept when a mu lies outside (0, DBL_LIMIT).
    bool reinit(symmetric_fixed<double, D> const& M1, symmetric_fixed<double, D> const& M2) noexcept;
    // The metric at t with sizes (1 - t) h1 + t h2 along each x_k; false and M zero when a mu is out
    // of range. Sizes beyond SIZE_TINY and SIZE_HUGE give DBL_LIMIT and 0.
    bool compute_metric(double t, symmetric_fixed<double, D>& M) const noexcept;
    // M = C diag(mu) C^t.
    static void compute_metric(vector_fixed<double, 3> const& mu, matrix_fixed<double, 3, 3> const& C,
                               symmetric_fixed<double, 3>& M) noexcept
    {
        __sum_rank_one(mu, C, M);
    }
};

extern template struct metric_anisotropic<2>;
extern template struct metric_anisotropic<3>;
extern template struct metric_anisotropic_interpolation_data<2>;
extern template struct metric_anisotropic_interpolation_data<3>;

}  // namespace qv7
