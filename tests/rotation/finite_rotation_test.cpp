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

mat33 identity() { return mat33{{1, 0, 0, 0, 1, 0, 0, 0, 1}}; }

vec3 along(vec3 const& t, double h, vec3 const& w) { return vec3{{t[0] + h * w[0], t[1] + h * w[1], t[2] + h * w[2]}}; }

// Central difference of a matrix function of theta along w.
mat33 central_difference(std::function<mat33(vec3 const&)> const& f, vec3 const& t, vec3 const& w)
{
    double const h = 1e-5;
    mat33 plus = f(along(t, h, w)), minus = f(along(t, -h, w)), out;
    for (unsigned k = 0; k < 9; ++k) out[k] = (plus[k] - minus[k]) / (2 * h);
    return out;
}

// The eight coefficients from their power series in x2 = phi^2, summed far beyond double precision:
// c0, c1, c5 have terms (-x2)^k / (2k+1)!, (2k+2)!, (2k+3)!; D = 2 d/dx2 gives the others.
void reference_coefficients(long double x2, long double* c)
{
    for (int i = 0; i < 8; ++i) c[i] = 0;
    long double fact = 1;  // (2k+1)!
    long double power = 1; // (-x2)^k
    for (int k = 0; k < 40; ++k) {
        long double f1 = fact, f2 = f1 * (2 * k + 2), f3 = f2 * (2 * k + 3);
        c[0] += power / f1;
        c[1] += power / f2;
        c[5] += power / f3;
        if (k >= 1) {
            long double dpow = 2.0L * k * power / x2;  // 2 d/dx2 of (-x2)^k, for x2 > 0
            if (x2 == 0) dpow = (k == 1) ? -2.0L : 0.0L;
            c[2] += dpow / f1;
            c[3] += dpow / f2;
            c[6] += dpow / f3;
        }
        if (k >= 2) {
            long double ddpow = 4.0L * k * (k - 1) * power / (x2 * x2);
            if (x2 == 0) ddpow = (k == 2) ? 8.0L : 0.0L;
            c[4] += ddpow / f2;
            c[7] += ddpow / f3;
        }
        power *= -x2;
        fact *= (2 * k + 2) * (2 * k + 3);
    }
}

TEST(FiniteRotation, ZeroRotationIsTheIdentityWithItsLimitCoefficients)
{
    finite_rotation fr(vec3{{0, 0, 0}});
    EXPECT_EQ(max_difference(fr.R, identity()), 0.0);
    EXPECT_EQ(max_difference(fr.T, identity()), 0.0);
    EXPECT_EQ(max_difference(fr.R_minus_I, mat33{}), 0.0);
    double const expected[8] = {1.0, 0.5, -1.0 / 3, -1.0 / 12, 1.0 / 90, 1.0 / 6, -1.0 / 60, 1.0 / 630};
    for (int i = 0; i < 8; ++i) EXPECT_DOUBLE_EQ(fr.coefs[i], expected[i]) << i;

    vec3 w{{0.3, -1.2, 2.0}};
    mat33 DR, skew_w{{0, 2.0, 1.2, -2.0, 0, 0.3, -1.2, -0.3, 0}};
    fr.compute_DR(w, DR);
    EXPECT_EQ(max_difference(DR, skew_w), 0.0);
}

TEST(FiniteRotation, CoefficientsMatchLongSeriesOnBothSidesOfTheSwitch)
{
    double const above = std::nextafter(0.1, 1.0);
    for (double phi : {1e-9, 0.03, 0.1, above, 0.4, 1.0, 2.5, 3.1}) {
        finite_rotation fr(vec3{{0.0, phi, 0.0}});
        long double ref[8];
        reference_coefficients((long double)phi * phi, ref);
        // Just above the switch the closed forms lose digits to cancellation: each step of the
        // recurrence multiplies the error by about 1 / phi^2, so c4 and c7 keep only ~1e-9.
        double tolerance = phi > 0.1 && phi < 0.2 ? 2e-9 : phi > 0.1 && phi < 1 ? 2e-11 : 1e-14;
        for (int i = 0; i < 8; ++i) EXPECT_NEAR(fr.coefs[i], (double)ref[i], tolerance) << "phi " << phi << " c" << i;
    }
    finite_rotation at(vec3{{0.1, 0, 0}}), past(vec3{{above, 0, 0}});
    for (int i = 0; i < 8; ++i) EXPECT_NEAR(at.coefs[i], past.coefs[i], 2e-9) << i;
    EXPECT_NEAR(at.coefs[0], past.coefs[0], 1e-15);
    EXPECT_NEAR(at.coefs[1], past.coefs[1], 2e-14);
}

TEST(FiniteRotation, TurnsFromXTowardsYAboutZ)
{
    finite_rotation half(vec3{{0, 0, M_PI}});
    mat33 flipped{{-1, 0, 0, 0, -1, 0, 0, 0, 1}};
    EXPECT_LT(max_difference(half.R, flipped), 1e-15);

    finite_rotation quarter(vec3{{0, 0, 0.5}});
    EXPECT_NEAR(quarter.R(0, 0), std::cos(0.5), 1e-16);
    EXPECT_NEAR(quarter.R(1, 0), std::sin(0.5), 1e-16);
    EXPECT_NEAR(quarter.R(2, 0), 0.0, 1e-16);
}

TEST(FiniteRotation, RotationMatricesAreOrthogonal)
{
    std::mt19937 gen(5);
    std::uniform_real_distribution<double> u(-3.0, 3.0);
    for (int n = 0; n < 50; ++n) {
        double scale = n % 3 == 0 ? 0.02 : 1.0;
        finite_rotation fr(vec3{{scale * u(gen), scale * u(gen), scale * u(gen)}});
        for (unsigned i = 0; i < 3; ++i)
            for (unsigned j = 0; j < 3; ++j) {
                double s = 0;
                for (unsigned k = 0; k < 3; ++k) s += fr.R(k, i) * fr.R(k, j);
                ASSERT_NEAR(s, i == j ? 1.0 : 0.0, 1e-14);
            }
        for (unsigned k = 0; k < 9; ++k)
            ASSERT_NEAR(fr.R[k], fr.R_minus_I[k] + (k % 4 == 0 ? 1.0 : 0.0), 1e-15);
    }
}

struct Derivatives : ::testing::TestWithParam<double> {
    vec3 theta, w1, w2, w3;
    void SetUp() override
    {
        double len = GetParam();
        double n = std::sqrt(0.2 * 0.2 + 0.5 * 0.5 + 0.84 * 0.84);
        theta = vec3{{0.2 * len / n, -0.5 * len / n, 0.84 * len / n}};
        w1 = vec3{{0.7, 0.1, -0.4}};
        w2 = vec3{{-0.3, 0.9, 0.2}};
        w3 = vec3{{0.5, 0.5, 1.1}};
    }
};

TEST_P(Derivatives, MatchFiniteDifferences)
{
    finite_rotation fr(theta);
    auto R = [](vec3 const& t) { return finite_rotation(t).R; };
    auto T = [](vec3 const& t) { return finite_rotation(t).T; };
    auto DR1 = [&](vec3 const& t) { mat33 m; finite_rotation(t).compute_DR(w1, m); return m; };
    auto DT1 = [&](vec3 const& t) { mat33 m; finite_rotation(t).compute_DT(w1, m); return m; };
    auto D2R12 = [&](vec3 const& t) { mat33 m; finite_rotation(t).compute_D2R(w1, w2, m); return m; };

    mat33 m;
    fr.compute_DR(w1, m);
    EXPECT_LT(max_difference(m, central_difference(R, theta, w1)), 1e-8);
    fr.compute_DT(w1, m);
    EXPECT_LT(max_difference(m, central_difference(T, theta, w1)), 1e-8);
    fr.compute_D2R(w1, w2, m);
    EXPECT_LT(max_difference(m, central_difference(DR1, theta, w2)), 1e-8);
    fr.compute_D2T(w1, w2, m);
    EXPECT_LT(max_difference(m, central_difference(DT1, theta, w2)), 1e-8);
    fr.compute_D3R(w1, w2, w3, m);
    EXPECT_LT(max_difference(m, central_difference(D2R12, theta, w3)), 1e-8);
}

TEST_P(Derivatives, SecondDerivativesAreSymmetric)
{
    finite_rotation fr(theta);
    mat33 a, b;
    fr.compute_D2R(w1, w2, a);
    fr.compute_D2R(w2, w1, b);
    EXPECT_LT(max_difference(a, b), 1e-14);
    fr.compute_D2T(w1, w2, a);
    fr.compute_D2T(w2, w1, b);
    EXPECT_LT(max_difference(a, b), 1e-15);
}

// Through zero, inside the series range, and in the closed forms.
INSTANTIATE_TEST_SUITE_P(Angles, Derivatives, ::testing::Values(0.0, 0.06, 0.7, 2.9));

TEST(FiniteRotation, InitOverwritesAndCopiesAreIndependent)
{
    finite_rotation a(vec3{{0.3, 0.2, 0.1}});
    finite_rotation b(a);
    a.init(vec3{{0, 0, 0}});
    EXPECT_EQ(max_difference(a.R, identity()), 0.0);
    EXPECT_GT(max_difference(b.R, identity()), 0.1);
    b = a;
    EXPECT_EQ(max_difference(b.S, mat33{}), 0.0);
}

}  // namespace
