#include "metrics/metric_anisotropic.h"
#include "metrics/metric_samples.h"
#include "tessarium/metrics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

using namespace qv7;
using namespace metric_samples;
namespace ts = qv7::tessarium;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

template <class T>
bool same_bits(T const& a, T const& b)
{
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

template <unsigned D>
double max_abs(symmetric_fixed<double, D> const& M)
{
    double m = 0;
    for (double x : M.v) m = std::max(m, std::fabs(x));
    return m;
}

template <unsigned D>
void expect_near_tensor(symmetric_fixed<double, D> const& got, symmetric_fixed<double, D> const& want, double rel)
{
    double tol = rel * max_abs(want);
    for (unsigned k = 0; k < D * (D + 1) / 2; ++k) EXPECT_NEAR(got[k], want[k], tol) << "entry " << k;
}

template <class T>
struct Metric : ::testing::Test {};
template <unsigned N>
struct dim {
    static constexpr unsigned D = N;
};
using dims = ::testing::Types<dim<2>, dim<3>>;
TYPED_TEST_SUITE(Metric, dims);

}  // namespace

TYPED_TEST(Metric, IntersectionAndUnionBoundBothInEveryDirection)
{
    constexpr unsigned D = TypeParam::D;
    std::mt19937 gen(1);
    std::normal_distribution<double> normal;
    for (int trial = 0; trial < 200; ++trial) {
        // Sizes within two decades: the reduction's rounding grows with the condition of the pair.
        auto M1 = tensor(random_sample<D>(gen, 1)), M2 = tensor(random_sample<D>(gen, 1));
        symmetric_fixed<double, D> lo, hi;
        ASSERT_TRUE(ts::minimum_metric(M1, M2, lo));
        ASSERT_TRUE(ts::maximum_metric(M1, M2, hi));
        for (int k = 0; k < 20; ++k) {
            double v[D];
            for (double& x : v) x = normal(gen);
            double a = form(M1, v), b = form(M2, v);
            EXPECT_GE(form(lo, v), std::max(a, b) * (1 - 1e-12));
            EXPECT_LE(form(hi, v), std::min(a, b) * (1 + 1e-12));
        }
        // Aliasing the output with an input.
        symmetric_fixed<double, D> alias = M1;
        ts::minimum_metric(alias, M2, alias);
        EXPECT_TRUE(same_bits(alias, lo));
    }
}

TYPED_TEST(Metric, PairOperationsOnSimpleAndInvalidInput)
{
    constexpr unsigned D = TypeParam::D;
    symmetric_fixed<double, D> I{}, I4{}, R;
    for (unsigned k = 0; k < D; ++k) I(k, k) = 1, I4(k, k) = 4;
    ASSERT_TRUE(ts::minimum_metric(I, I4, R));
    expect_near_tensor(R, I4, 1e-15);
    ASSERT_TRUE(ts::maximum_metric(I, I4, R));
    expect_near_tensor(R, I, 1e-15);

    std::mt19937 gen(3);
    auto M = tensor(random_sample<D>(gen));
    ASSERT_TRUE(ts::minimum_metric(M, M, R));
    expect_near_tensor(R, M, 1e-12);

    // Not positive definite: false, and R is that metric exactly.
    symmetric_fixed<double, D> bad = I;
    bad(D - 1, D - 1) = -1;
    EXPECT_FALSE(ts::minimum_metric(bad, I, R));
    EXPECT_TRUE(same_bits(R, bad));
    EXPECT_FALSE(ts::maximum_metric(bad, bad, R));
    EXPECT_TRUE(same_bits(R, bad));
}

TYPED_TEST(Metric, InterpolationReturnsEndsAndInterpolatesSizes)
{
    constexpr unsigned D = TypeParam::D;
    using metric = metric_anisotropic<D>;
    std::mt19937 gen(5);
    metric bad{};
    bad[0] = NaN;
    for (int trial = 0; trial < 50; ++trial) {
        // Common directions R, sizes h and g at the ends.
        auto s1 = random_sample<D>(gen, 1), s2 = random_sample<D>(gen, 1);
        s2.R = s1.R;
        metric M1{tensor(s1)}, M2{tensor(s2)}, M;
        EXPECT_TRUE(metric::interpolation(0.5e-12, M1, M2, M) && same_bits(M, M1));
        EXPECT_TRUE(metric::interpolation(1 + 0.5e-12, M1, M2, M) && same_bits(M, M2));
        EXPECT_TRUE(metric::interpolation(-0.5e-12, bad, M2, M) && same_bits(M, bad));
        for (double t : {0.25, 0.5, 0.9}) {
            ASSERT_TRUE(metric::interpolation(t, M1, M2, M));
            for (unsigned k = 0; k < D; ++k) {
                double h = (1 - t) * s1.h[k] + t * s2.h[k], direction[D];
                for (unsigned j = 0; j < D; ++j) direction[j] = s1.R(k, j);
                EXPECT_NEAR(form(M, direction) * h * h, 1.0, 1e-10);
            }
        }
    }
    metric M1{}, M;
    M1(0, 0) = 1;
    EXPECT_FALSE(metric::interpolation(0.5, M1, M1, M));  // singular: no reduction
}

TYPED_TEST(Metric, BoundClampsEigenvaluesLowerClampLast)
{
    constexpr unsigned D = TypeParam::D;
    std::mt19937 gen(7);
    for (int trial = 0; trial < 100; ++trial) {
        auto s = random_sample<D>(gen);
        auto M = tensor(s);
        double hmin = 0.01 * std::pow(10.0, trial % 4), hmax = hmin * (trial % 5 == 0 ? 0.5 : 30);
        double eig[D];
        bool changes = false;
        for (unsigned k = 0; k < D; ++k) {
            double l = 1 / (s.h[k] * s.h[k]);
            eig[k] = std::max(std::min(l, 1 / (hmin * hmin)), 1 / (hmax * hmax));
            changes |= eig[k] != l;
        }
        auto before = M;
        ASSERT_EQ(ts::bound_metric(M, hmin, hmax), changes ? 1 : 0);
        if (changes)
            expect_near_tensor(M, tensor(s.R, eig), 1e-13 * std::max(1.0, max_abs(before) / max_abs(M)));
        else
            EXPECT_TRUE(same_bits(M, before));
    }
}

TYPED_TEST(Metric, BoundOnBadInput)
{
    constexpr unsigned D = TypeParam::D;
    symmetric_fixed<double, D> M{}, want{};
    M[0] = NaN;
    auto before = M;
    EXPECT_EQ(ts::bound_metric(M, 0, DBL_LIMIT), 0);  // nothing to bound, not even looked at
    EXPECT_EQ(ts::bound_metric(M, NaN, 1), -2);
    EXPECT_EQ(ts::bound_metric(M, inf, 1), -2);
    EXPECT_EQ(ts::bound_metric(M, 1, NaN), -3);
    EXPECT_EQ(ts::bound_metric(M, 1, -inf), -3);
    EXPECT_TRUE(same_bits(M, before));

    // Crossed bounds: the lower clamp acts last, every eigenvalue ends at 1 / hmax^2.
    symmetric_fixed<double, D> I{};
    for (unsigned k = 0; k < D; ++k) I(k, k) = 1, want(k, k) = 4;
    EXPECT_EQ(ts::bound_metric(I, 1, 0.5), 1);
    expect_near_tensor(I, want, 1e-15);

    metric_anisotropic<D> m{M};
    EXPECT_TRUE(m.bound(0.5, 2));
    symmetric_fixed<double, D> got = m;
    EXPECT_TRUE(same_bits(got, want));  // NaN: no decomposition
    m = metric_anisotropic<D>{M};
    EXPECT_TRUE(m.bound(0, 2));
    for (unsigned k = 0; k < D; ++k) EXPECT_EQ(m(k, k), DBL_LIMIT);
}

TEST(EigenValues, KeepsRelativeAccuracyOfTheSmallRoot)
{
    double l1, l2;
    ASSERT_TRUE(eigen_values(1e-20, 0, 1, l1, l2));
    EXPECT_NEAR(l1, 1e-20, 1e-35);
    EXPECT_EQ(l2, 1);
    ASSERT_TRUE(eigen_values(1, 0, 1e-20, l1, l2));
    EXPECT_NEAR(l1, 1e-20, 1e-35);
    EXPECT_FALSE(eigen_values(1, NaN, 1, l1, l2));
    EXPECT_FALSE(eigen_values(1e300, 1e300, 1, l1, l2));  // overflow

    double e1[2] = {7, 7}, e2[2] = {7, 7};
    ASSERT_TRUE(eigen_pairs(2, 0, 2, l1, l2, e1, e2, true));
    EXPECT_EQ(l1, 2);
    EXPECT_EQ(l2, 2);
    EXPECT_EQ(e1[0], 1);
    EXPECT_EQ(e1[1], 0);
    EXPECT_TRUE(e2[0] == 0 && std::signbit(e2[0]));
    EXPECT_EQ(e2[1], 1);
    e1[0] = 7;
    EXPECT_FALSE(eigen_pairs(inf, 0, 1, l1, l2, e1, e2, true));
    EXPECT_EQ(e1[0], 7);  // not written on failure
}

TEST(EigenPairs, StandardDecompositions)
{
    std::mt19937 gen(9);
    for (int trial = 0; trial < 50; ++trial) {
        auto M2 = tensor(random_sample<2>(gen, 1));
        auto M3 = tensor(random_sample<3>(gen, 1));
        vector_fixed<double, 2> l2;
        matrix_fixed<double, 2, 2> V2;
        vector_fixed<double, 3> l3;
        matrix_fixed<double, 3, 3> V3;
        ASSERT_TRUE(ts::eigen_pairs(M2, l2, V2));
        ASSERT_TRUE(ts::eigen_pairs(M3, l3, V3));
        EXPECT_LE(l2[0], l2[1]);
        EXPECT_LE(l3[0], l3[1]);
        for (unsigned k = 0; k < 2; ++k)
            for (unsigned i = 0; i < 2; ++i)
                EXPECT_NEAR(M2(i, 0) * V2(0, k) + M2(i, 1) * V2(1, k), l2[k] * V2(i, k), 1e-12 * max_abs(M2));
        for (unsigned k = 0; k < 3; ++k)
            for (unsigned i = 0; i < 3; ++i)
                EXPECT_NEAR(M3(i, 0) * V3(0, k) + M3(i, 1) * V3(1, k) + M3(i, 2) * V3(2, k), l3[k] * V3(i, k),
                            1e-12 * max_abs(M3));
    }
}

TYPED_TEST(Metric, GeneralisedSolverSatisfiesTheEquation)
{
    constexpr unsigned D = TypeParam::D;
    std::mt19937 gen(11);
    for (int trial = 0; trial < 200; ++trial) {
        auto A = tensor(random_sample<D>(gen, 1)), B = tensor(random_sample<D>(gen, 1));
        vector_fixed<double, D> lambda;
        matrix_fixed<double, D, D> V;
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
    // A not positive definite: refused, also where a factor exists with a zero pivot.
    symmetric_fixed<double, D> A{}, B{};
    for (unsigned k = 0; k < D; ++k) B(k, k) = 1, A(k, k) = 1;
    A(D - 1, D - 1) = 0;
    vector_fixed<double, D> lambda;
    matrix_fixed<double, D, D> V;
    EXPECT_FALSE(ts::eigen_pairs(A, B, lambda, V));
    A(0, 0) = 0;
    A(D - 1, D - 1) = 1;
    EXPECT_FALSE(ts::eigen_pairs(A, B, lambda, V));
}

TEST(MetricConversions, IsotropicAndProjected)
{
    symmetric_fixed<double, 2> M2{9, 9, 9};
    symmetric_fixed<double, 3> M3{9, 9, 9, 9, 9, 9};
    ts::metric_iso_to_aniso(0.5, M2);
    ts::metric_iso_to_aniso(2, M3);
    EXPECT_TRUE(same_bits(M2, symmetric_fixed<double, 2>{4, 0, 4}));
    EXPECT_TRUE(same_bits(M3, symmetric_fixed<double, 3>{0.25, 0, 0.25, 0, 0, 0.25}));
    ts::metric_iso_to_aniso(0, M3);
    EXPECT_TRUE(same_bits(M3, symmetric_fixed<double, 3>{}));
    EXPECT_FALSE(ts::is_valid_metric(M3));

    // b1 = (1, 2, 2), b2 = (0, 3, 4): b1.b1 = 9, b1.b2 = 14, b2.b2 = 25.
    matrix_fixed<double, 3, 2> B{1, 2, 2, 0, 3, 4};
    ts::metric_iso_to_aniso2d(2, B, M2);
    EXPECT_TRUE(same_bits(M2, symmetric_fixed<double, 2>{2.25, 3.5, 6.25}));
    ts::metric_iso_to_aniso2d(-1, B, M2);
    EXPECT_TRUE(same_bits(M2, symmetric_fixed<double, 2>{}));

    // M3 = [2 1 0; 1 3 0; 0 0 5]: B^t M3 B by hand.
    symmetric_fixed<double, 3> A{2, 1, 3, 0, 0, 5};
    // M3 b1 = (4, 7, 10), M3 b2 = (3, 9, 20).
    ts::metric_aniso3d_to_aniso2d(A, B, M2);
    EXPECT_TRUE(same_bits(M2, symmetric_fixed<double, 2>{38, 61, 107}));
}

TEST(MetricValidity, SmallestEigenvalueAboveZero)
{
    EXPECT_TRUE(ts::is_valid_metric(symmetric_fixed<double, 2>{1, 0.9, 1}));
    EXPECT_FALSE(ts::is_valid_metric(symmetric_fixed<double, 2>{1, 1, 1}));
    EXPECT_FALSE(ts::is_valid_metric(symmetric_fixed<double, 2>{NaN, 0, 1}));
    EXPECT_FALSE(ts::is_valid_metric(symmetric_fixed<double, 2>{inf, 0, 1}));
    EXPECT_TRUE(ts::is_valid_metric(symmetric_fixed<double, 3>{1, 0, 1, 0, 0, 1e-30}));
    EXPECT_FALSE(ts::is_valid_metric(symmetric_fixed<double, 3>{1, 0, 1, 0, 0, -1e-30}));
    EXPECT_FALSE(ts::is_valid_metric(symmetric_fixed<double, 3>{1, 0, 1, 0, NaN, 1}));
    EXPECT_FALSE(ts::is_valid_metric(symmetric_fixed<double, 3>{1, 0, 1, 0, 0, inf}));
}
