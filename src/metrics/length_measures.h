// Metric length of an edge whose size varies linearly from one end to the other: the Euclidean
// length over the logarithmic mean of the end sizes. One stateless measure per metric kind and
// dimension; the shock and variation measures and the gradation take one as their parameter.
#pragma once

#include "metrics/log_mean.h"
#include "metrics/metric_anisotropic.h"
#include "tessarium/dense2D.h"

#include <cmath>

namespace qv7 {

template <class L>
class metrics_mgr_isotropic;
template <class L>
class metrics_mgr_anisotropic;

// x_b - x_a, from the first D rows of pos.
template <unsigned D>
vector_fixed<double, D> __edge_vector(dense2D<double> const& pos, std::size_t a, std::size_t b) noexcept
{
    vector_fixed<double, D> v;
    for (unsigned k = 0; k < D; ++k) v[k] = pos(k, b) - pos(k, a);
    return v;
}

template <unsigned D>
double __norm(vector_fixed<double, D> const& v) noexcept
{
    double s = 0.0;
    for (unsigned k = 0; k < D; ++k) s += v[k] * v[k];
    return std::sqrt(s);
}

template <unsigned D>
struct length_measure_isotropic {
    static constexpr unsigned dim = D;
    using metric_type = metric_isotropic;
    using manager_type = metrics_mgr_isotropic<length_measure_isotropic>;

    // |v| / log_mean(h1, h2), or 0 when that mean is not > 0.
    static double compute_length(vector_fixed<double, D> const& v, metric_isotropic h1, metric_isotropic h2) noexcept
    {
        double m = log_mean(h1, h2);
        return m > 0.0 ? __norm(v) / m : 0.0;
    }
};

template <unsigned D>
struct length_measure_anisotropic {
    static constexpr unsigned dim = D;
    using metric_type = metric_anisotropic<D>;
    using manager_type = metrics_mgr_anisotropic<length_measure_anisotropic>;

    // l1 l2 / log_mean(l1, l2), where l1 and l2 are the lengths of v under M1 and M2 alone (left
    // in the references): the isotropic formula for the sizes |v| / l1 and |v| / l2 met along v.
    // 0 when v^t M v is not > 0 at an end; the references then hold the squared values. With
    // `as_quality` a length above 1 comes back as its inverse.
    static double compute_length(vector_fixed<double, D> const& v, metric_type const& M1, metric_type const& M2,
                                 bool as_quality, double& l1, double& l2) noexcept
    {
        l1 = __quadratic_form(M1, v.v);
        l2 = __quadratic_form(M2, v.v);
        if (!(l1 > 0.0) || !(l2 > 0.0)) return 0.0;
        l1 = std::sqrt(l1);
        l2 = std::sqrt(l2);
        double p = l1 * l2, m = log_mean(l1, l2);
        if (as_quality && p > m) return m / p;
        return m > 0.0 ? p / m : 0.0;
    }
};

}  // namespace qv7
