#include "metrics/h_shock_measures.h"
#include "metrics/metric_samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace qv7;

namespace {

template <unsigned D>
struct edge_sample {
    dense2D<double> pos;
    dense1D<double, 8> sizes;
    dense2D<double> tensors;
    double L;
};

// Two nodes at random places with random sizes in [0.1, 2], and the tensors I / h^2.
template <unsigned D>
edge_sample<D> random_edge(std::mt19937& gen)
{
    std::uniform_real_distribution<double> coord(-1, 1), size(0.1, 2);
    edge_sample<D> s;
    s.pos.resize(D, 2);
    s.sizes.resize(2);
    s.tensors.resize(D * (D + 1) / 2, 2, 0.0);
    double d2 = 0;
    for (unsigned k = 0; k < D; ++k) {
        s.pos(k, 0) = coord(gen);
        s.pos(k, 1) = coord(gen);
        d2 += (s.pos(k, 1) - s.pos(k, 0)) * (s.pos(k, 1) - s.pos(k, 0));
    }
    s.L = std::sqrt(d2);
    for (unsigned n = 0; n < 2; ++n) {
        s.sizes[n] = size(gen);
        for (unsigned k = 0; k < D; ++k) s.tensors(k * (k + 1) / 2 + k, n) = 1 / (s.sizes[n] * s.sizes[n]);
    }
    return s;
}

template <unsigned D>
void check_against_closed_forms()
{
    using iso = length_measure_isotropic<D>;
    using aniso = length_measure_anisotropic<D>;
    std::mt19937 gen(D);
    for (int trial = 0; trial < 500; ++trial) {
        edge_sample<D> s = random_edge<D>(gen);
        auto iso_mgr = __metrics_mgr<D>(s.sizes);
        auto aniso_mgr = __metrics_mgr<D>(s.tensors);
        double h1 = s.sizes[0], h2 = s.sizes[1], dh = std::fabs(h2 - h1);
        double shock = std::exp(dh / s.L) - 1, variation = dh / s.L;
        if (shock > 1e6) continue;
        vector_fixed<double, D> v = __edge_vector<D>(s.pos, 0, 1);
        double iso_length, aniso_length;
        double iso_shock = H_shock_measure<iso>().val(h1, h2, v, iso_length);
        double aniso_shock = H_shock_measure<aniso>().val(aniso_mgr.get_metric(0), aniso_mgr.get_metric(1), v,
                                                          aniso_length);
        // The series below a ratio of 0.1 is good to some 1e-7 in the mean.
        EXPECT_NEAR(iso_shock, shock, 1e-6 * (1 + shock));
        EXPECT_NEAR(aniso_shock, iso_shock, 1e-9 * (1 + shock));
        EXPECT_NEAR(aniso_length, iso_length, 1e-12 * iso_length);
        EXPECT_NEAR(H_variation_measure<iso>().val(s.pos, iso_mgr, 0, 1), variation, 1e-12 * variation);
        EXPECT_NEAR(H_variation_measure<aniso>().val(s.pos, aniso_mgr, 0, 1), variation, 1e-9 * variation);
        EXPECT_EQ(H_variation_measure<iso>().val(s.pos, iso_mgr, 0, 1, h2), 0.0);
    }
}

// Moving the size at i by the fraction that get_metric_ratio gives, and measuring again, meets the
// bound; for tensors the size along the edge is moved by scaling the tensor at i.
template <class Measure, class Manager>
void check_ratio(Measure const& measure, dense2D<double> const& pos, Manager mgr, double bound, double tolerance)
{
    constexpr unsigned D = Manager::length_measure::dim;
    signed char direction;
    double t, hi, hj, L;
    Measure::get_metric_ratio(pos, mgr, 0, 1, bound, direction, t);
    __sizes_along<D>(pos, mgr, 0, 1, hi, hj, L, typename Manager::metric_type{});
    ASSERT_GT(t, 0.0);
    ASSERT_LT(t, 1.0);
    EXPECT_EQ(direction, hj > hi ? 1 : -1);
    double h = hi + t * (hj - hi);
    auto M = mgr.get_metric(0);
    if constexpr (std::is_same<decltype(M), double>::value) {
        M = h;
    } else {
        for (double& m : M.v) m *= (hi / h) * (hi / h);
    }
    mgr.set_metric(0, M);
    double length, value;
    if constexpr (std::is_same<Measure, H_variation_measure<typename Manager::length_measure>>::value)
        value = measure.val(pos, mgr, 0, 1);
    else
        value = measure.val(mgr.get_metric(0), mgr.get_metric(1), __edge_vector<D>(pos, 0, 1), length);
    EXPECT_NEAR(value, bound, tolerance * bound);
    // Met already: no move.
    Measure::get_metric_ratio(pos, mgr, 0, 1, 2 * bound, direction, t);
    EXPECT_EQ(t, 0.0);
}

template <unsigned D>
void check_ratios()
{
    using iso = length_measure_isotropic<D>;
    using aniso = length_measure_anisotropic<D>;
    std::mt19937 gen(D);
    for (int trial = 0; trial < 100; ++trial) {
        edge_sample<D> s = random_edge<D>(gen);
        for (unsigned n = 0; n < 2; ++n) {  // general tensors
            auto M = metric_samples::tensor(metric_samples::random_sample<D>(gen, 0.5));
            std::copy(M.v, M.v + D * (D + 1) / 2, s.tensors.col(n));
        }
        double hi, hj, L;
        __sizes_along<D>(s.pos, __metrics_mgr<D>(s.tensors), 0, 1, hi, hj, L, metric_anisotropic<D>{});
        double dh = std::fabs(s.sizes[1] - s.sizes[0]), adh = std::fabs(hj - hi);
        if (dh < 1e-3 || adh < 1e-3) continue;
        dense1D<double, 8> sizes;
        dense2D<double> tensors;
        sizes.copy(s.sizes);
        tensors.copy(s.tensors);
        check_ratio(H_variation_measure<iso>(), s.pos, __metrics_mgr<D>(sizes), 0.5 * dh / s.L, 1e-12);
        check_ratio(H_variation_measure<aniso>(), s.pos, __metrics_mgr<D>(tensors), 0.5 * adh / L, 1e-12);
        sizes.copy(s.sizes);
        tensors.copy(s.tensors);
        double shock = std::exp(0.5 * dh / s.L) - 1, ashock = std::exp(0.5 * adh / L) - 1;
        check_ratio(H_shock_measure<iso>(), s.pos, __metrics_mgr<D>(sizes), shock, 1e-6);
        check_ratio(H_shock_measure<aniso>(), s.pos, __metrics_mgr<D>(tensors), ashock, 1e-6);
    }
}

}  // namespace

TEST(LogMean, SeriesMeetsTheLogarithmAndIsSymmetric)
{
    double const a = 1.0, b = 1.1;  // r = 0.1 takes the logarithm, the next double below the series
    double below = std::nextafter(b, 0.0);
    ASSERT_GE((b - a) / a, 0.1);
    ASSERT_LT((below - a) / a, 0.1);
    EXPECT_LT(std::fabs(log_mean(a, b) - log_mean(a, below)), 2e-7);
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> exponent(-12, 3);
    for (int trial = 0; trial < 2000; ++trial) {
        double x = std::pow(10.0, exponent(gen) / 2), y = x * (1 + std::pow(10.0, exponent(gen)));
        long double reference = (y - x) / (std::log((long double)y) - std::log((long double)x));
        EXPECT_EQ(log_mean(x, y), log_mean(y, x));
        if (y / x > 1 + 1e-6) {
            EXPECT_NEAR(log_mean(x, y), double(reference), 2e-7 * x);
        }
    }
    EXPECT_EQ(log_mean(2.0, 2.0), 2.0);
    EXPECT_EQ(log_mean(-1.0, 2.0), -1.0);
}

TEST(LengthMeasures, ShockAndVariationMeetTheirClosedForms)
{
    check_against_closed_forms<2>();
    check_against_closed_forms<3>();
}

TEST(LengthMeasures, VanishingAndOverflowingEdges)
{
    using iso = length_measure_isotropic<3>;
    using aniso = length_measure_anisotropic<3>;
    vector_fixed<double, 3> zero{0, 0, 0}, unit{1, 0, 0}, tiny{1e-3, 0, 0};
    double length;
    H_shock_measure<iso> shock;
    EXPECT_EQ(shock.val(1.5, 1.5, zero, length), 0.0);
    EXPECT_EQ(shock.val(1.0, 2.0, zero, length), DBL_LIMIT);
    EXPECT_NEAR(shock.val(1.0, 2.0, unit, length), std::exp(1.0) - 1, 1e-6);
    EXPECT_EQ(shock.val(1.0, 1000.0, tiny, length), DBL_LIMIT);  // exponent near 1e6
    // Exponents |dh| / L of 699 and 710: exp overflows at 710.
    EXPECT_LT(shock.val(1.0, 1.7, {0.7 / 699, 0, 0}, length), DBL_LIMIT);
    EXPECT_EQ(shock.val(1.0, 1.7, {0.7 / 710, 0, 0}, length), DBL_LIMIT);

    metric_anisotropic<3> I{{1, 0, 1, 0, 0, 1}}, J{{4, 0, 1, 0, 0, 1}}, flat{{0, 0, 1, 0, 0, 1}};
    double l1 = -1, l2 = -1;
    EXPECT_EQ(aniso::compute_length(zero, I, J, false, l1, l2), 0.0);
    EXPECT_EQ(l1, 0.0);
    EXPECT_EQ(l2, 0.0);
    EXPECT_EQ(aniso::compute_length(unit, J, flat, false, l1, l2), 0.0);  // v^t M v = 0 at one end
    EXPECT_EQ(l1, 4.0);                                                   // squared, as it was
    EXPECT_EQ(H_shock_measure<aniso>().val(I, I, zero, length), 0.0);
    EXPECT_EQ(H_shock_measure<aniso>().val(J, flat, unit, length), DBL_LIMIT);
    EXPECT_NEAR(aniso::compute_length(unit, I, J, true, l1, l2), 1 / aniso::compute_length(unit, I, J, false, l1, l2),
                1e-15);

    dense2D<double> pos;
    pos.resize(3, 2, 0.0);
    dense1D<double, 8> sizes(2, 1.0);
    sizes[1] = 2.0;
    EXPECT_EQ(H_variation_measure<iso>().val(pos, __metrics_mgr<3>(sizes), 0, 1), DBL_LIMIT);
    EXPECT_EQ(H_variation_measure<iso>().val(pos, __metrics_mgr<3>(sizes), 0, 1, 2.0), 0.0);
}

TEST(LengthMeasures, MetricRatioPutsTheEdgeOnTheBound)
{
    check_ratios<2>();
    check_ratios<3>();
}
