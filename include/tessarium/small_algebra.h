// Closed-form solvers and small-matrix products on the fixed-size types.
#pragma once

#include "export.h"
#include "dense2D.h"
#include "fixed.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

// Symmetric 2 x 2 system [a b; b c] x = r, with at most n relaxed refinement steps.
// A singular system yields x = 0 and det = 0.
void solve(double a, double b, double c, double r0, double r1, double& x0, double& x1, double& det, unsigned n);
void solve(symmetric_fixed<double, 2> const& A, vector_fixed<double, 2>& x, double& det, unsigned n);
// Symmetric 3 x 3 system; det is the mean of the three row expansions.
void solve(double a00, double a01, double a11, double a02, double a12, double a22, double r0, double r1, double r2,
           double& x0, double& x1, double& x2, double& det, unsigned n);
void solve(symmetric_fixed<double, 3> const& A, vector_fixed<double, 3>& x, double& det, unsigned n);

namespace matmat {

using mat33 = matrix_fixed<double, 3, 3>;

// C += alpha * A * B.
void __mult_small(double alpha, mat33 const& A, mat33 const& B, mat33& C, non_symmetric_tag);
// S += alpha * transpose(A) * B, upper triangle only: the product must be known to be symmetric.
void __transpose_mult_small(double alpha, mat33 const& A, mat33 const& B, symmetric_fixed<double, 3>& S, symmetric_tag);
// B = transpose of the inverse of A; B keeps the unscaled cofactors when det is exactly 0.
void __Tinverse(mat33 const& A, mat33& B, double& det, full_tag = {});
// In-place upper Cholesky factor of a symmetric semidefinite 3 x 3 matrix; false when it has none.
bool __Cholesky_factor(double& a00, double& a01, double& a11, double& a02, double& a12, double& a22);

// S += alpha * transpose(B) * A * B for a 3 x K matrix B. The trailing arguments have no effect.
template <class Bmat, class Smat>
void __Bt_A_B_op(double alpha, symmetric_fixed<double, 3> const& A, Bmat const& B, Smat& S, unsigned long = 0, int = 0)
{
    constexpr unsigned K = Bmat::cols();
    matrix_fixed<double, 3, K> P{};
    if (alpha != 0.0) {
        for (unsigned j = 0; j < K; ++j)
            for (unsigned i = 0; i < 3; ++i) {
                double s = 0.0;
                for (unsigned k = 0; k < 3; ++k) s += A(i, k) * B(k, j);
                P(i, j) += s * alpha;
            }
    }
    for (unsigned j = 0; j < K; ++j)
        for (unsigned i = 0; i <= j; ++i) {
            double s = 0.0;
            for (unsigned k = 0; k < 3; ++k) s += B(k, i) * P(k, j);
            S(i, j) += s;
        }
}

}  // namespace matmat
}  // namespace qv7
TESSARIUM_EXPORT_END
