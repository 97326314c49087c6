#include "tessarium/small_algebra.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace qv7;
using matmat::mat33;

TEST(Solve, TwoByTwo)
{
    double x0, x1, det;
    solve(4.0, 1.0, 3.0, 6.0, 7.0, x0, x1, det, 0);  // solution (1, 2)
    EXPECT_EQ(det, 11.0);
    EXPECT_NEAR(x0, 1.0, 1e-15);
    EXPECT_NEAR(x1, 2.0, 1e-15);

    for (unsigned n : {0u, 1u, 5u}) {
        solve(1.0, 2.0, 4.0, 3.0, 5.0, x0, x1, det, n);  // singular
        EXPECT_EQ(det, 0.0);
        EXPECT_EQ(x0, 0.0);
        EXPECT_EQ(x1, 0.0);
    }

    symmetric_fixed<double, 2> A{4.0, 1.0, 3.0};
    vector_fixed<double, 2> x{6.0, 7.0};
    solve(A, x, det, 3);
    EXPECT_NEAR(x[0], 1.0, 1e-15);
    EXPECT_NEAR(x[1], 2.0, 1e-15);
}

TEST(Solve, ThreeByThree)
{
    // A = [4 1 2; 1 5 3; 2 3 6], det = 4*21 - 1*0 + 2*(-7) = 70; solution (1, -1, 2).
    symmetric_fixed<double, 3> A{4.0, 1.0, 5.0, 2.0, 3.0, 6.0};
    vector_fixed<double, 3> x{7.0, 2.0, 11.0};
    double det;
    solve(A, x, det, 4);
    EXPECT_EQ(det, 70.0);
    EXPECT_NEAR(x[0], 1.0, 1e-14);
    EXPECT_NEAR(x[1], -1.0, 1e-14);
    EXPECT_NEAR(x[2], 2.0, 1e-14);

    double x0, x1, x2;
    solve(1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 2.0, 3.0, x0, x1, x2, det, 2);
    EXPECT_EQ(det, 0.0);
    EXPECT_EQ(x0 + x1 + x2, 0.0);
}

TEST(SmallProducts, AccumulateScaledProducts)
{
    mat33 A{1, 2, 3, 4, 5, 6, 7, 8, 10};  // columns
    mat33 B{2, 0, 1, 1, 3, 0, 0, 1, 1};
    mat33 C{};
    C(0, 0) = 1.0;
    matmat::__mult_small(2.0, A, B, C, non_symmetric_tag{});
    for (unsigned i = 0; i < 3; ++i)
        for (unsigned j = 0; j < 3; ++j) {
            double s = 0;
            for (unsigned k = 0; k < 3; ++k) s += A(i, k) * B(k, j);
            EXPECT_EQ(C(i, j), 2.0 * s + (i == 0 && j == 0 ? 1.0 : 0.0));
        }

    symmetric_fixed<double, 3> S{};
    matmat::__transpose_mult_small(1.0, A, A, S, symmetric_tag{});
    EXPECT_EQ(S(0, 0), 1 + 4 + 9);
    EXPECT_EQ(S(0, 2), 7 + 16 + 30);
    EXPECT_EQ(S(1, 2), 28 + 40 + 60);

    // transpose(B) * A * B with A = diag(1, 2, 3) and B the first two unit columns scaled.
    symmetric_fixed<double, 3> D{1, 0, 2, 0, 0, 3};
    matrix_fixed<double, 3, 2> E{1, 1, 0, 0, 1, 1};
    symmetric_fixed<double, 2> T{10, 0, 0};
    matmat::__Bt_A_B_op<matrix_fixed<double, 3, 2>, symmetric_fixed<double, 2>>(0.5, D, E, T, 0, 0);
    EXPECT_EQ(T[0], 10 + 0.5 * (1 + 2));
    EXPECT_EQ(T[1], 0.5 * 2);
    EXPECT_EQ(T[2], 0.5 * (2 + 3));
}

TEST(SmallProducts, TransposedInverse)
{
    mat33 A{2, 0, 1, 1, 3, 0, 0, 1, 4};
    mat33 B{};
    double det;
    matmat::__Tinverse(A, B, det);
    EXPECT_EQ(det, 25.0);  // rows (2 1 0), (0 3 1), (1 0 4)
    for (unsigned i = 0; i < 3; ++i)
        for (unsigned j = 0; j < 3; ++j) {
            double s = 0;  // transpose(B) * A = identity
            for (unsigned k = 0; k < 3; ++k) s += B(k, i) * A(k, j);
            EXPECT_NEAR(s, i == j ? 1.0 : 0.0, 1e-15);
        }

    mat33 singular{1, 2, 3, 2, 4, 6, 0, 1, 1};
    matmat::__Tinverse(singular, B, det);
    EXPECT_EQ(det, 0.0);
    EXPECT_EQ(B(0, 0), -2.0);  // unscaled cofactor 4 * 1 - 1 * 6
}

namespace {

bool factor(double (&a)[6])
{
    return matmat::__Cholesky_factor(a[0], a[1], a[2], a[3], a[4], a[5]);
}

}  // namespace

TEST(Cholesky, FactorsSemidefiniteMatrices)
{
    double a[6] = {4, 2, 5, -2, 1, 6};  // a00 a01 a11 a02 a12 a22
    double const A[6] = {4, 2, 5, -2, 1, 6};
    ASSERT_TRUE(factor(a));
    // transpose(R) R with R upper = [a00 a01 a02; 0 a11 a12; 0 0 a22] gives A back.
    double const RtR[6] = {a[0] * a[0],
                           a[0] * a[1],
                           a[1] * a[1] + a[2] * a[2],
                           a[0] * a[3],
                           a[1] * a[3] + a[2] * a[4],
                           a[3] * a[3] + a[4] * a[4] + a[5] * a[5]};
    for (int k = 0; k < 6; ++k) EXPECT_NEAR(RtR[k], A[k], 1e-14) << k;

    double const nan = std::numeric_limits<double>::quiet_NaN();
    struct {
        double in[6];
        bool ok;
        double out[6];
    } cases[] = {
        {{0, 0, 0, 0, 0, 0}, true, {0, 0, 0, 0, 0, 0}},  // zero matrix
        {{0, 0, 0, 0, 0, 9}, true, {0, 0, 0, 0, 0, 3}},  // only a22
        {{4, 0, 0, 2, 0, 5}, true, {2, 0, 0, 1, 0, 2}},  // row 1 zero: the (0, 2) block alone
        {{0, 0, 4, 0, 2, 5}, true, {0, 0, 2, 0, 1, 2}},  // row 0 zero: the (1, 2) block alone
        {{1, 2, 1, 0, 0, 1}, false, {}},                 // indefinite
        {{-1, 0.5, 1, 0, 0, 1}, false, {}},              // negative pivot
        {{1, 0, 1, 0, 0, nan}, false, {}},               // NaN fails every test
    };
    for (auto& c : cases) {
        ASSERT_EQ(factor(c.in), c.ok);
        for (int k = 0; c.ok && k < 6; ++k) EXPECT_EQ(c.in[k], c.out[k]) << k;
    }
}
