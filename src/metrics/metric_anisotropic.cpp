#include "metrics/metric_anisotropic.h"

#include <cmath>

namespace qv7 {
namespace {

// Keeps for each common direction of the pair the larger (take_larger) or smaller eigenvalue.
template <unsigned D>
bool combine(metric_anisotropic<D> const& M1, metric_anisotropic<D> const& M2, metric_anisotropic<D>& M,
             bool take_larger) noexcept
{
    // A failed reduction zeroes the data, which the range test below refuses.
    metric_anisotropic_interpolation_data<D> data;
    data.reinit(M1, M2);
    vector_fixed<double, D> mu;
    for (unsigned k = 0; k < D; ++k) {
        double a = data.mu_first[k], b = data.mu_second[k];
        mu[k] = (b > a) == take_larger ? b : a;
    }
    __sum_rank_one(mu, data.basis_inv_t, M);
    if (!__within_limits(mu)) return false;
    return M.is_valid();
}

// Eigenvalues and vectors (vector k in column k) of a 2D or 3D tensor.
bool decompose(symmetric_fixed<double, 2> const& M, vector_fixed<double, 2>& lambda,
               matrix_fixed<double, 2, 2>& V) noexcept
{
    return eigen_pairs(M[0], M[1], M[2], lambda[0], lambda[1], &V[0], &V[2], true);
}
bool decompose(symmetric_fixed<double, 3> const& M, vector_fixed<double, 3>& lambda,
               matrix_fixed<double, 3, 3>& V) noexcept
{
    return __eigen_decomposition(M, lambda, V);
}

}  // namespace

template <unsigned D>
bool metric_anisotropic<D>::minimum_metric(metric_anisotropic const& M1, metric_anisotropic const& M2,
                                           metric_anisotropic& M) noexcept
{
    return combine(M1, M2, M, true);
}

template <unsigned D>
bool metric_anisotropic<D>::maximum_metric(metric_anisotropic const& M1, metric_anisotropic const& M2,
                                           metric_anisotropic& M) noexcept
{
    return combine(M1, M2, M, false);
}

template <unsigned D>
bool metric_anisotropic<D>::interpolation(double t, metric_anisotropic const& M1, metric_anisotropic const& M2,
                                          metric_anisotropic& M) noexcept
{
    if (1e-12 > std::fabs(t)) {
        M = M1;
        return true;
    }
    if (1e-12 > std::fabs(t - 1.0)) {
        M = M2;
        return true;
    }
    metric_anisotropic_interpolation_data<D> data;
    data.reinit(M1, M2);
    bool computed = data.compute_metric(t, M);
    return computed && M.is_valid();
}

template <unsigned D>
bool metric_anisotropic<D>::bound(double hmin, double hmax) noexcept
{
    double lam_max = hmin > 0.0 ? 1.0 / (hmin * hmin) : DBL_LIMIT;
    double lam_min = hmax > 0.0 ? 1.0 / (hmax * hmax) : 0.0;
    vector_fixed<double, D> lambda;
    matrix_fixed<double, D, D> V;
    if (decompose(*this, lambda, V)) {
        bool changed = false;
        for (unsigned k = 0; k < D; ++k) {
            if (lambda[k] > lam_max) {
                lambda[k] = lam_max;
                changed = true;
            }
            if (lam_min > lambda[k]) {
                lambda[k] = lam_min;
                changed = true;
            }
        }
        if (!changed) return false;
    } else {
        V = {};
        for (unsigned k = 0; k < D; ++k) {
            lambda[k] = lam_max;
            V(k, k) = 1.0;
        }
    }
    __sum_rank_one(lambda, V, *this);
    return true;
}

template struct metric_anisotropic<2>;
template struct metric_anisotropic<3>;

}  // namespace qv7
