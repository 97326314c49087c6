#include "tessarium/finite_rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

namespace {

using qv7::finite_rotation;
using vec3 = finite_rotation::vec3;
using mat33 = finite_rotation::mat33;

double max_difference(mat33 const& A, mat33 const& B)
{
    double d = 0.0;
    for (unsigned k = 0; k < 9; ++k) d = std::max(d, std::fabs(A[k] - B[k]));
    return d;
}

mat33 const identity{{1, 0, 0, 0, 1, 0, 0, 0, 1}};

// Central difference of a matrix function of theta along w.
mat33 central_difference(std::function<mat33(vec3 const&)> const& f, vec3 const& t, vec3 const& w)
{
    double const h = 1e-5;
    mat33 plus = f(vec3{{t[0] + h * w[0], t[1] + h * w[1], t[2] + h * w[2]}});
    mat33 minus = f(vec3{{t[0] - h * w[0], t[1] - h * w[1], t[2] - h * w[2]}}), out;
    for (unsigned k = 0; k < 9; ++k) out[k] = (plus[k] - minus[k]) / (2 * h);
    return out;
}

// The coefficients from their power series in x = phi^2, summed in long double far beyond
// double precision: c0, c1, c5 have terms (-x)^k / (2k+1)!, (2k+2)!, (2k+3)!; D = 2 d/dx gives
// c2, c3, c6 and D D gives c4, c7.
void reference_coefficients(long double x, long double* c)
{
    std::fill(c, c + 8, 0.0L);
    long double fact = 1, power = 1;  // (2k+1)! and (-x)^k
    for (int k = 0; k < 40; ++k, power *= -x, fact *= (2 * k) * (2 * k + 1)) {
        long double f[3] = {fact, fact * (2 * k + 2), fact * (2 * k + 2) * (2 * k + 3)};
        long double d1 = k == 0 ? 0 : x == 0 ? (k == 1 ? -2 : 0) : 2.0L * k * power / x;
        long double d2 = k < 2 ? 0 : x == 0 ? (k == 2 ? 8 : 0) : 4.0L * k * (k - 1) * power / (x * x);
        c[0] += power / f[0], c[1] += power / f[1], c[5] += power / f[2];
        c[2] += d1 / f[0], c[3] += d1 / f[1], c[6] += d1 / f[2];
        c[4] += d2 / f[1], c[7] += d2 / f[2];
    }
}

TEST(FiniteRotation, ZeroRotationIsTheIdentityWithItsLimitCoefficients)
{
    finite_rotation fr(vec3{{0, 0, 0}});
    EXPECT_EQ(max_difference(fr.R, identity), 0.0);
    EXPECT_EQ(max_difference(fr.T, identity), 0.0);
    double const limits[8] = {1.0, 0.5, -1.0 / 3, -1.0 / 12, 1.0 / 90, 1.0 / 6, -1.0 / 60, 1.0 / 630};
    for (int i = 0; i < 8; ++i) EXPECT_DOUBLE_EQ(fr.coefs[i], limits[i]) << i;
    mat33 DR, skew_w{{0, 2.0, 1.2, -2.0, 0, 0.3, -1.2, -0.3, 0}};
    fr.compute_DR(vec3{{0.3, -1.2, 2.0}}, DR);
    EXPECT_EQ(max_difference(DR, skew_w), 0.0);
}

TEST(FiniteRotation, CoefficientsMatchLongSeriesOnBothSidesOfTheSwitch)
{
    double const above = std::nextafter(0.1, 1.0);
    for (double phi : {1e-9, 0.03, 0.1, above, 0.4, 1.0, 3.1}) {
        finite_rotation fr(vec3{{0.0, phi, 0.0}});
        long double ref[8];
        reference_coefficients((long double)phi * phi, ref);
        // Just above the switch each step of the closed-form recurrence multiplies the rounding
        // error by about 1 / phi^2, so c4 and c7 keep only ~1e-9; at and below it the series is exact.
        double tolerance = phi > 0.1 && phi < 0.2 ? 2e-9 : phi > 0.1 && phi < 1 ? 2e-11 : 1e-14;
        for (int i = 0; i < 8; ++i) EXPECT_NEAR(fr.coefs[i], (double)ref[i], tolerance) << phi << " c" << i;
    }
    finite_rotation at(vec3{{0.1, 0, 0}}), past(vec3{{above, 0, 0}});
    EXPECT_NEAR(at.coefs[0], past.coefs[0], 1e-15);
    EXPECT_NEAR(at.coefs[1], past.coefs[1], 2e-14);
}

TEST(FiniteRotation, OrthogonalMatricesTurningFromXTowardsY)
{
    finite_rotation half(vec3{{0, 0, M_PI}}), quarter(vec3{{0, 0, 0.5}});
    EXPECT_LT(max_difference(half.R, mat33{{-1, 0, 0, 0, -1, 0, 0, 0, 1}}), 1e-15);
    EXPECT_NEAR(quarter.R(1, 0), std::sin(0.5), 1e-16);
    std::mt19937 gen(5);
    std::uniform_real_distribution<double> u(-3.0, 3.0);
    for (int n = 0; n < 50; ++n) {
        double scale = n % 3 == 0 ? 0.02 : 1.0;
        finite_rotation fr(vec3{{scale * u(gen), scale * u(gen), scale * u(gen)}});
        for (unsigned i = 0; i < 3; ++i)
            for (unsigned j = 0; j < 3; ++j) {
                double s = fr.R(0, i) * fr.R(0, j) + fr.R(1, i) * fr.R(1, j) + fr.R(2, i) * fr.R(2, j);
                ASSERT_NEAR(s, i == j ? 1.0 : 0.0, 1e-14);
                ASSERT_NEAR(fr.R(i, j), fr.R_minus_I(i, j) + (i == j), 1e-15);
            }
    }
}

// Derivatives at |theta| = GetParam(): through zero, inside the series range, in the closed forms.
struct Derivatives : ::testing::TestWithParam<double> {
    vec3 w1{{0.7, 0.1, -0.4}}, w2{{-0.3, 0.9, 0.2}}, w3{{0.5, 0.5, 1.1}};
    vec3 theta() const
    {
        double s = GetParam() / std::sqrt(0.2 * 0.2 + 0.5 * 0.5 + 0.84 * 0.84);
        return vec3{{0.2 * s, -0.5 * s, 0.84 * s}};
    }
};

TEST_P(Derivatives, MatchFiniteDifferencesAndAreSymmetric)
{
    finite_rotation fr(theta());
    auto R = [](vec3 const& t) { return finite_rotation(t).R; };
    auto T = [](vec3 const& t) { return finite_rotation(t).T; };
    auto DR1 = [&](vec3 const& t) { mat33 m; finite_rotation(t).compute_DR(w1, m); return m; };
    auto DT1 = [&](vec3 const& t) { mat33 m; finite_rotation(t).compute_DT(w1, m); return m; };
    auto D2R12 = [&](vec3 const& t) { mat33 m; finite_rotation(t).compute_D2R(w1, w2, m); return m; };
    mat33 m, swapped;
    fr.compute_DR(w1, m);
    EXPECT_LT(max_difference(m, central_difference(R, theta(), w1)), 1e-8);
    fr.compute_DT(w1, m);
    EXPECT_LT(max_difference(m, central_difference(T, theta(), w1)), 1e-8);
    fr.compute_D2R(w1, w2, m);
    EXPECT_LT(max_difference(m, central_difference(DR1, theta(), w2)), 1e-8);
    fr.compute_D2R(w2, w1, swapped);
    EXPECT_LT(max_difference(m, swapped), 1e-14);
    fr.compute_D2T(w1, w2, m);
    EXPECT_LT(max_difference(m, central_difference(DT1, theta(), w2)), 1e-8);
    fr.compute_D2T(w2, w1, swapped);
    EXPECT_LT(max_difference(m, swapped), 1e-15);
    fr.compute_D3R(w1, w2, w3, m);
    EXPECT_LT(max_difference(m, central_difference(D2R12, theta(), w3)), 1e-8);
}

INSTANTIATE_TEST_SUITE_P(Angles, Derivatives, ::testing::Values(0.0, 0.06, 0.7, 2.9));

}  // namespace
