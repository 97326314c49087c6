// How hard the size of a map jumps along an edge, and how far one end must move for the jump to
// fall to a bound.
//
// The shock of an edge is (h_large / h_small)^(1 / l) - 1, l being its metric length: the growth
// of the size per unit of metric length, less one. With the logarithmic mean it is
// exp(|h2 - h1| / L) - 1 for isotropic sizes over a Euclidean length L. The variation is the
// slope |h2 - h1| / L. A vanishing edge between different metrics has the value DBL_LIMIT, between
// equal ones 0; a length that overflows gives 0.
//
// get_metric_ratio gives the fraction t of the way from the size at i towards the size at j that
// brings the edge exactly onto the bound, and `direction` 1 when that move grows the size at i,
// -1 when it shrinks it. Anisotropic sizes are those of the end metrics along the edge.
#pragma once

#include "metrics/length_measures.h"
#include "metrics/metrics_mgr.h"
#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <algorithm>
#include <cmath>

namespace qv7 {

// Sizes along the edge i -> j: the sizes themselves, or 1 / sqrt(u^t M u) for the unit vector u
// of the edge (a form not > 0 is taken as it is). L receives the Euclidean length.
template <unsigned D, class Manager>
void __sizes_along(dense2D<double> const& pos, Manager const& mgr, unsigned i, unsigned j, double& hi, double& hj,
                   double& L, metric_isotropic) noexcept
{
    L = __norm(__edge_vector<D>(pos, i, j));
    hi = mgr.get_metric(i);
    hj = mgr.get_metric(j);
}

template <unsigned D, class Manager>
void __sizes_along(dense2D<double> const& pos, Manager const& mgr, unsigned i, unsigned j, double& hi, double& hj,
                   double& L, metric_anisotropic<D> const&) noexcept
{
    vector_fixed<double, D> u = __edge_vector<D>(pos, i, j);
    L = __norm(u);
    if (L != 0.0)
        for (unsigned k = 0; k < D; ++k) u[k] /= L;
    double qi = __quadratic_form(mgr.get_metric(i), u.v), qj = __quadratic_form(mgr.get_metric(j), u.v);
    hi = qi > 0.0 ? 1.0 / std::sqrt(qi) : qi;
    hj = qj > 0.0 ? 1.0 / std::sqrt(qj) : qj;
}

// The value given to an edge too short to measure.
inline double __vanishing_edge(metric_isotropic h1, metric_isotropic h2) noexcept
{
    return h1 == h2 ? 0.0 : DBL_LIMIT;
}
template <unsigned D>
double __vanishing_edge(metric_anisotropic<D> const& M1, metric_anisotropic<D> const& M2) noexcept
{
    return std::equal(M1.v, M1.v + D * (D + 1) / 2, M2.v) ? 0.0 : DBL_LIMIT;
}

// exp(log(ratio) / l) - 1, DBL_LIMIT from an exponent of 700 on.
inline double __growth(double ratio, double l) noexcept
{
    double x = (1.0 / l) * std::log(ratio);
    return x < 700.0 ? std::exp(x) - 1.0 : DBL_LIMIT;
}

template <class L>
struct H_shock_measure {
    static constexpr unsigned D = L::dim;
    using length_measure = L;
    using metric_type = typename L::metric_type;
    using manager_type = typename L::manager_type;

    double val(metric_isotropic h1, metric_isotropic h2, vector_fixed<double, D> const& v, double& length) const
    {
        double m = log_mean(h1, h2);
        length = 0.0;
        if (m > 0.0) {
            double norm = __norm(v), l = norm / m;
            length = l;
            if (!(1e-12 > l)) {
                if (!(l < DBL_LIMIT)) return 0.0;
                double a = norm / h1, b = norm / h2;
                return __growth(a > b ? a / b : b / a, l);
            }
        }
        return __vanishing_edge(h1, h2);
    }

    double val(metric_anisotropic<D> const& M1, metric_anisotropic<D> const& M2, vector_fixed<double, D> const& v,
               double& length) const
    {
        double l1, l2;
        double l = L::compute_length(v, M1, M2, false, l1, l2);
        length = l;
        if (1e-12 > l) return __vanishing_edge(M1, M2);
        if (!(l < DBL_LIMIT)) return 0.0;
        return __growth(l1 > l2 ? l1 / l2 : l2 / l1, l);
    }

    // vals[n] = the largest of vals[n] and the shocks of the edges at n; vals is first grown to
    // the nodes of pos with zeros. An edge with an end beyond the metrics is left out.
    void node_vals(dense2D<double> const& pos, dense2D<unsigned> const& edges, manager_type const& mgr,
                   dense1D<double, 8>& vals) const
    {
        std::size_t old = vals.size();
        if (pos.cols() > old) {
            vals.resize(pos.cols());
            std::fill(vals.begin() + old, vals.end(), 0.0);
        }
        std::size_t n = std::min({mgr.size(), pos.cols(), vals.size()});
        if (edges.rows() < 2) return;
        for (std::size_t e = 0; e < edges.cols(); ++e) {
            unsigned a = edges(0, e), b = edges(1, e);
            if (a >= n || b >= n) continue;
            double length;
            double s = val(mgr.get_metric(a), mgr.get_metric(b), __edge_vector<D>(pos, a, b), length);
            if (s > vals[a]) vals[a] = s;
            if (s > vals[b]) vals[b] = s;
        }
    }

    // t = max(0, 1 - (L / |dh|) log(1 + bound)), 0 when the sizes are equal.
    static void get_metric_ratio(dense2D<double> const& pos, manager_type const& mgr, unsigned i, unsigned j,
                                 double bound, signed char& direction, double& t)
    {
        double hi, hj, norm;
        __sizes_along<D>(pos, mgr, i, j, hi, hj, norm, metric_type{});
        direction = hj > hi ? 1 : -1;
        double d = hj - hi;
        t = d != 0.0 ? std::max(0.0, 1.0 - (norm / std::fabs(d)) * std::log(bound + 1.0)) : 0.0;
    }
};

template <class L>
struct H_variation_measure {
    static constexpr unsigned D = L::dim;
    using length_measure = L;
    using metric_type = typename L::metric_type;
    using manager_type = typename L::manager_type;

    double val(dense2D<double> const& pos, manager_type const& mgr, unsigned long i, unsigned long j) const
    {
        return val(pos, mgr, i, j, mgr.get_metric(i));
    }

    // The variation with m in place of the metric at i.
    double val(dense2D<double> const& pos, manager_type const& mgr, unsigned long i, unsigned long j,
               metric_type const& m) const
    {
        return variation(m, mgr.get_metric(j), __edge_vector<D>(pos, i, j));
    }

    // t = max(0, 1 - (L / |dh|) bound), 0 unless |dh| > 1e-12 L.
    static void get_metric_ratio(dense2D<double> const& pos, manager_type const& mgr, unsigned i, unsigned j,
                                 double bound, signed char& direction, double& t)
    {
        double hi, hj, norm;
        __sizes_along<D>(pos, mgr, i, j, hi, hj, norm, metric_type{});
        direction = hj > hi ? 1 : -1;
        double d = std::fabs(hj - hi);
        t = d > 1e-12 * norm ? std::max(0.0, 1.0 - (norm / d) * bound) : 0.0;
    }

private:
    static double variation(metric_isotropic hi, metric_isotropic hj, vector_fixed<double, D> const& v) noexcept
    {
        double m = log_mean(hi, hj);
        if (m > 0.0) {
            double norm = __norm(v), l = norm / m;
            if (l != 0.0) {
                if (!(l < DBL_LIMIT)) return 0.0;
                double a = norm / hi, b = norm / hj;
                return std::fabs(a - b) / (b * a);
            }
        }
        return __vanishing_edge(hi, hj);
    }
    static double variation(metric_anisotropic<D> const& Mi, metric_anisotropic<D> const& Mj,
                            vector_fixed<double, D> const& v) noexcept
    {
        double l1, l2;
        double l = L::compute_length(v, Mi, Mj, false, l1, l2);
        if (l == 0.0) return __vanishing_edge(Mi, Mj);
        if (!(l < DBL_LIMIT)) return 0.0;
        return std::fabs(l1 - l2) / (l1 * l2);
    }
};

}  // namespace qv7
