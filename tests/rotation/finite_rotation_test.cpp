#include "tessarium/finite_rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using qv7::finite_rotation;
using vec3 = finite_rotation::vec3;
using mat33 = finite_rotation::mat33;
using field = std::function<mat33(finite_rotation const&)>;

double max_difference(mat33 const& A, mat33 const& B)
{
    double d = 0.0;
    for (unsigned k = 0; k < 9; ++k) d = std::max(d, std::fabs(A[k] - B[k]));
    return d;
}

// The coefficients from their series in x = phi^2, in long double: c0, c1, c5 have terms (-x)^k
// over (2k+1)!, (2k+2)!, (2k+3)!; D = 2 d/dx gives c2, c3, c6 and D D gives c4, c7.
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

TEST(FiniteRotation, BothBranchesOfTheCoefficientsMatchTheLongSeries)
{
    for (double phi : {0.0, 1e-9, 0.03, 0.1, std::nextafter(0.1, 1.0), 0.4, 1.0, 3.1}) {
        finite_rotation fr(vec3{{0.0, phi, 0.0}});
        long double ref[8];
        reference_coefficients((long double)phi * phi, ref);
        // Just above the switch each step of the closed-form recurrence multiplies the rounding
        // error by about 1 / phi^2, so c4 and c7 keep only ~1e-9; at and below it the series is exact.
        double loose = phi > 0.1 && phi < 0.2 ? 2e-9 : phi > 0.1 && phi < 1 ? 2e-11 : 1e-14;
        for (int i = 0; i < 8; ++i) EXPECT_NEAR(fr.coefs[i], (double)ref[i], i < 2 ? 2e-14 : loose) << phi << " c" << i;
    }
}

TEST(FiniteRotation, TurnsRightHandedAndKeepsTheSmallPartExact)
{
    EXPECT_NEAR(finite_rotation(vec3{{0, 0, 0.5}}).R(1, 0), std::sin(0.5), 1e-16);  // x turns towards y
    finite_rotation tiny(vec3{{0, 0, 1e-9}});
    EXPECT_DOUBLE_EQ(tiny.R_minus_I(1, 0), 1e-9);
    EXPECT_DOUBLE_EQ(tiny.R_minus_I(0, 0), -0.5e-18);
}

// Central difference of a field of the rotation at t along w.
mat33 slope(field const& f, vec3 const& t, vec3 const& w)
{
    double const h = 1e-5;
    mat33 plus = f(finite_rotation(vec3{{t[0] + h * w[0], t[1] + h * w[1], t[2] + h * w[2]}}));
    mat33 minus = f(finite_rotation(vec3{{t[0] - h * w[0], t[1] - h * w[1], t[2] - h * w[2]}})), out;
    for (unsigned k = 0; k < 9; ++k) out[k] = (plus[k] - minus[k]) / (2 * h);
    return out;
}

// Derivatives at |theta| = GetParam(): through zero, inside the series range, in the closed forms.
struct Derivatives : ::testing::TestWithParam<double> {};

TEST_P(Derivatives, MatchCentralDifferencesOfTheFieldBelow)
{
    vec3 const w1{{0.7, 0.1, -0.4}}, w2{{-0.3, 0.9, 0.2}}, w3{{0.5, 0.5, 1.1}};
    double const s = GetParam() / std::sqrt(0.2 * 0.2 + 0.5 * 0.5 + 0.84 * 0.84);
    vec3 const t{{0.2 * s, -0.5 * s, 0.84 * s}};
    field R = [](finite_rotation const&f) { return f.R; }, T = [](finite_rotation const&f) { return f.T; };
    field DR = [&](finite_rotation const& f) {
        mat33 m;
        f.compute_DR(w1, m);
        return m;
    };
    field DT = [&](finite_rotation const& f) {
        mat33 m;
        f.compute_DT(w1, m);
        return m;
    };
    field D2R = [&](finite_rotation const& f) {
        mat33 m;
        f.compute_D2R(w1, w2, m);
        return m;
    };
    field D2T = [&](finite_rotation const& f) {
        mat33 m;
        f.compute_D2T(w1, w2, m);
        return m;
    };
    field D3R = [&](finite_rotation const& f) {
        mat33 m;
        f.compute_D3R(w1, w2, w3, m);
        return m;
    };
    finite_rotation const fr(t);
    EXPECT_LT(max_difference(DR(fr), slope(R, t, w1)), 1e-8);
    EXPECT_LT(max_difference(DT(fr), slope(T, t, w1)), 1e-8);
    EXPECT_LT(max_difference(D2R(fr), slope(DR, t, w2)), 1e-8);
    EXPECT_LT(max_difference(D2T(fr), slope(DT, t, w2)), 1e-8);
    EXPECT_LT(max_difference(D3R(fr), slope(D2R, t, w3)), 1e-8);
}

INSTANTIATE_TEST_SUITE_P(Angles, Derivatives, ::testing::Values(0.0, 0.06, 0.7, 2.9));

}  // namespace
