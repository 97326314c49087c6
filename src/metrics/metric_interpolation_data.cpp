#include "metrics/metric_anisotropic.h"

#include "tessarium/small_algebra.h"

namespace qv7 {
namespace {

// Inverse transpose of the basis, left as it was when the basis is singular.
void inverse_transpose(matrix_fixed<double, 2, 2> const& B, matrix_fixed<double, 2, 2>& T) noexcept
{
    double det = B(0, 0) * B(1, 1) - B(0, 1) * B(1, 0);
    if (det == 0.0) return;
    double inv = 1.0 / det;
    T(0, 0) = B(1, 1) * inv;
    T(0, 1) = -B(1, 0) * inv;
    T(1, 0) = -B(0, 1) * inv;
    T(1, 1) = B(0, 0) * inv;
}

// Cofactors, divided by the determinant unless it is 0.
void inverse_transpose(matrix_fixed<double, 3, 3> const& B, matrix_fixed<double, 3, 3>& T) noexcept
{
    double det;
    matmat::__Tinverse(B, T, det);
}

}  // namespace

template <unsigned D>
bool metric_anisotropic_interpolation_data<D>::reinit(symmetric_fixed<double, D> const& M1,
                                                      symmetric_fixed<double, D> const& M2) noexcept
{
    vector_fixed<double, D> lambda;
    if (!eigen_pairs(M1, M2, lambda, basis, true)) {
        *this = {};
        return false;
    }
    inverse_transpose(basis, basis_inv_t);
    for (unsigned k = 0; k < D; ++k) {
        mu_first[k] = __quadratic_form(M1, &basis(0, k));
        mu_second[k] = mu_first[k] * lambda[k];
    }
    return __within_limits(mu_first) && __within_limits(mu_second);
}

template <unsigned D>
bool metric_anisotropic_interpolation_data<D>::compute_metric(double t, symmetric_fixed<double, D>& M) const noexcept
{
    if (!__within_limits(mu_first) || !__within_limits(mu_second)) {
        M = {};
        return false;
    }
    vector_fixed<double, D> mu;
    for (unsigned k = 0; k < D; ++k) {
        double h1 = 1.0 / std::sqrt(mu_first[k]), h2 = 1.0 / std::sqrt(mu_second[k]);
        double h = (h2 - h1) * t + h1;
        if (SIZE_TINY > h)
            mu[k] = DBL_LIMIT;
        else if (h > SIZE_HUGE)
            mu[k] = 0.0;
        else
            mu[k] = 1.0 / (h * h);
    }
    __sum_rank_one(mu, basis_inv_t, M);
    return true;
}

template struct metric_anisotropic_interpolation_data<2>;
template struct metric_anisotropic_interpolation_data<3>;

}  // namespace qv7
