#include "metrics/metric_anisotropic.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>

using namespace qv7;
namespace ts = qv7::tessarium;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

template <class A, class B>
bool same_bits(A const& a, B const& b)
{
    static_assert(sizeof(A) == sizeof(B));
    return std::memcmp(&a, &b, sizeof(A)) == 0;
}

template <unsigned D>
using sym = symmetric_fixed<double, D>;

template <unsigned D>
double max_abs(sym<D> const& M)
{
    double m = 0;
    for (double x : M.v) m = std::max(m, std::fabs(x));
    return m;
}

template <unsigned D>
double max_diff(sym<D> const& a, sym<D> const& b)
{
    double m = 0;
    for (unsigned k = 0; k < D * (D + 1) / 2; ++k) m = std::max(m, std::fabs(a[k] - b[k]));
    return m;
}

template <unsigned D>
double form(sym<D> const& M, double const* v)
{
    double s = 0;
    for (unsigned i = 0; i < D; ++i)
        for (unsigned j = 0; j < D; ++j) s += v[i] * M(i, j) * v[j];
    return s;
}

// A metric built without the library: orthonormal rows R (Gram-Schmidt on normal rows), sizes h
// log-uniform in [10^-spread, 10^spread], M = R^t diag(eig) R with eig = 1 / h^2 by default.
template <unsigned D>
struct sample {
    matrix_fixed<double, D, D> R;
    double h[D];

    sample(std::mt19937& gen, double spread = 1)
    {
        std::normal_distribution<double> normal;
        std::uniform_real_distribution<double> exponent(-spread, spread);
        for (unsigned i = 0; i < D; ++i) {
            double n = 0;
            for (unsigned j = 0; j < D; ++j) R(i, j) = normal(gen);
            for (unsigned p = 0; p < i; ++p) {
                double d = 0;
                for (unsigned j = 0; j < D; ++j) d += R(i, j) * R(p, j);
                for (unsigned j = 0; j < D; ++j) R(i, j) -= d * R(p, j);
            }
            for (unsigned j = 0; j < D; ++j) n += R(i, j) * R(i, j);
            for (unsigned j = 0; j < D; ++j) R(i, j) /= std::sqrt(n);
            h[i] = std::pow(10.0, exponent(gen));
        }
    }
    metric_anisotropic<D> tensor(double const* eig = nullptr) const
    {
        metric_anisotropic<D> M{};
        for (unsigned j = 0; j < D; ++j)
            for (unsigned i = 0; i <= j; ++i)
                for (unsigned k = 0; k < D; ++k) M(i, j) += R(k, i) * (eig ? eig[k] : 1 / (h[k] * h[k])) * R(k, j);
        return M;
    }
};

template <unsigned D>
sym<D> identity(double g)
{
    sym<D> M{};
    for (unsigned k = 0; k < D; ++k) M(k, k) = g;
    return M;
}

template <class T>
struct Metric : ::testing::Test {
    static constexpr unsigned D = T::value;
};
using dims = ::testing::Types<std::integral_constant<unsigned, 2>, std::integral_constant<unsigned, 3>>;
TYPED_TEST_SUITE(Metric, dims);

}  // namespace

TYPED_TEST(Metric, IntersectionAndUnionBoundBothInEveryDirection)
{
    constexpr unsigned D = TestFixture::D;
    std::mt19937 gen(1);
    std::normal_distribution<double> normal;
    for (int trial = 0; trial < 200; ++trial) {
        sym<D> M1 = sample<D>(gen).tensor(), M2 = sample<D>(gen).tensor(), lo, hi, alias = M1;
        ASSERT_TRUE(ts::minimum_metric(M1, M2, lo) && ts::maximum_metric(M1, M2, hi));
        for (int k = 0; k < 20; ++k) {
            double v[D];
            for (double& x : v) x = normal(gen);
            double a = form(M1, v), b = form(M2, v);
            EXPECT_GE(form(lo, v), std::max(a, b) * (1 - 1e-12));
            EXPECT_LE(form(hi, v), std::min(a, b) * (1 + 1e-12));
        }
        ts::minimum_metric(alias, M2, alias);
        EXPECT_TRUE(same_bits(alias, lo));
        ASSERT_TRUE(ts::minimum_metric(M1, M1, lo));
        EXPECT_LE(max_diff(lo, M1), 1e-12 * max_abs(M1));
    }
    sym<D> R, bad = identity<D>(1);
    EXPECT_TRUE(ts::minimum_metric(identity<D>(1), identity<D>(4), R) && max_diff(R, identity<D>(4)) < 1e-15);
    EXPECT_TRUE(ts::maximum_metric(identity<D>(1), identity<D>(4), R) && max_diff(R, identity<D>(1)) < 1e-15);
    bad(D - 1, D - 1) = -1;  // not positive definite: false, and R is the first metric exactly
    EXPECT_TRUE(!ts::minimum_metric(bad, identity<D>(1), R) && same_bits(R, bad));
    EXPECT_TRUE(!ts::maximum_metric(bad, bad, R) && same_bits(R, bad));
}

TYPED_TEST(Metric, InterpolationReturnsEndsAndInterpolatesSizes)
{
    constexpr unsigned D = TestFixture::D;
    using metric = metric_anisotropic<D>;
    std::mt19937 gen(5);
    metric bad{}, M;
    bad[0] = NaN;
    for (int trial = 0; trial < 50; ++trial) {
        sample<D> s1(gen), s2(gen);
        s2.R = s1.R;  // common directions
        metric M1 = s1.tensor(), M2 = s2.tensor();
        EXPECT_TRUE(metric::interpolation(0.5e-12, M1, M2, M) && same_bits(M, M1));
        EXPECT_TRUE(metric::interpolation(1 + 0.5e-12, M1, M2, M) && same_bits(M, M2));
        EXPECT_TRUE(metric::interpolation(-0.5e-12, bad, M2, M) && same_bits(M, bad));
        for (double t : {0.25, 0.9}) {
            ASSERT_TRUE(metric::interpolation(t, M1, M2, M));
            for (unsigned k = 0; k < D; ++k) {
                double h = (1 - t) * s1.h[k] + t * s2.h[k], direction[D];
                for (unsigned j = 0; j < D; ++j) direction[j] = s1.R(k, j);
                EXPECT_NEAR(form<D>(M, direction) * h * h, 1.0, 1e-10);
            }
        }
    }
    EXPECT_FALSE(metric::interpolation(0.5, bad, bad, M));
}

TYPED_TEST(Metric, BoundClampsEigenvaluesLowerClampLast)
{
    constexpr unsigned D = TestFixture::D;
    std::mt19937 gen(7);
    for (int trial = 0; trial < 100; ++trial) {
        sample<D> s(gen, 3);
        sym<D> M = s.tensor(), before = M;
        double hmin = 0.01 * std::pow(10.0, trial % 4), hmax = hmin * (trial % 5 == 0 ? 0.5 : 30), eig[D];
        bool changes = false;
        for (unsigned k = 0; k < D; ++k) {
            double l = 1 / (s.h[k] * s.h[k]);
            eig[k] = std::max(std::min(l, 1 / (hmin * hmin)), 1 / (hmax * hmax));
            changes |= eig[k] != l;
        }
        ASSERT_EQ(ts::bound_metric(M, hmin, hmax), changes ? 1 : 0);
        if (changes)
            EXPECT_LE(max_diff<D>(M, s.tensor(eig)), 1e-13 * std::max(max_abs(before), max_abs(M)));
        else
            EXPECT_TRUE(same_bits(M, before));
    }
    // No decomposition: the smallest allowed isotropic metric.
    metric_anisotropic<D> m{}, nan{};
    nan[0] = NaN;
    for (auto [hmin, g] : {std::pair{0.5, 4.0}, {0.0, DBL_LIMIT}}) {
        m = nan;
        EXPECT_TRUE(m.bound(hmin, 2) && same_bits(m, identity<D>(g)));
    }
}

TYPED_TEST(Metric, GeneralisedSolverSatisfiesTheEquation)
{
    constexpr unsigned D = TestFixture::D;
    std::mt19937 gen(11);
    vector_fixed<double, D> lambda;
    matrix_fixed<double, D, D> V;
    for (int trial = 0; trial < 200; ++trial) {
        sym<D> A = sample<D>(gen).tensor(), B = sample<D>(gen).tensor();
        ASSERT_TRUE(ts::eigen_pairs(A, B, lambda, V));
        for (unsigned k = 0; k < D; ++k) {
            double norm = 0;
            for (unsigned i = 0; i < D; ++i) {
                double bx = 0, ax = 0;
                for (unsigned j = 0; j < D; ++j) bx += B(i, j) * V(j, k), ax += A(i, j) * V(j, k);
                EXPECT_NEAR(bx, lambda[k] * ax, 1e-12 * (max_abs(B) + std::fabs(lambda[k]) * max_abs(A)));
                norm += V(i, k) * V(i, k);
            }
            EXPECT_NEAR(norm, 1, 1e-14);
        }
    }
    auto A = identity<D>(1);  // semidefinite: refused, also where a factor with a zero pivot exists
    A(D - 1, D - 1) = 0;
    EXPECT_FALSE(ts::eigen_pairs(A, identity<D>(1), lambda, V));
    A(0, 0) = 0;
    A(D - 1, D - 1) = 1;
    EXPECT_FALSE(ts::eigen_pairs(A, identity<D>(1), lambda, V));
}

TEST(EigenValues, ClosedFormIn2D)
{
    double l1, l2, e1[2], e2[2];
    for (auto [a, c] : {std::pair{1e-20, 1.0}, {1.0, 1e-20}}) {
        ASSERT_TRUE(eigen_values(a, 0, c, l1, l2));
        EXPECT_NEAR(l1, 1e-20, 1e-35);  // relative accuracy kept
        EXPECT_EQ(l2, 1);
    }
    EXPECT_FALSE(eigen_values(1, NaN, 1, l1, l2) || eigen_values(1e300, 1e300, 1, l1, l2));
    ASSERT_TRUE(eigen_pairs(2, 0, 2, l1, l2, e1, e2, true));
    EXPECT_TRUE(l1 == 2 && l2 == 2 && e1[0] == 1 && e1[1] == 0 && e2[1] == 1 && std::signbit(e2[0]));
}
