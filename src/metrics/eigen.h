// Symmetric eigen solvers for metrics: closed forms in 2D, dspev in 3D. Nothing allocates.
#pragma once

#include "tessarium/fixed.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qv7 {

// Eigenvalues l1 <= l2 of [a b; b c]. The smaller root is recovered from the determinant when it
// is tiny beside the other, so that a nearly singular metric keeps its relative accuracy. True
// when both are finite.
inline bool eigen_values(double a, double b, double c, double& l1, double& l2) noexcept
{
    double det = a * c - b * b;
    double d = std::sqrt(4 * b * b + (a - c) * (a - c));
    l1 = (a + c - d) / 2;
    l2 = l1 + d;
    if (1e-12 * std::fabs(l2) > std::fabs(l1))
        l1 = det / l2;
    else if (1e-12 * std::fabs(l1) > std::fabs(l2))
        l2 = det / l1;
    return std::isfinite(l1) && std::isfinite(l2);
}

// The same with eigenvectors e1, e2 (two doubles each, e2 = e1 turned a quarter). On failure the
// vectors are not written. A multiple of the identity gives (1, 0) and (-0, 1).
inline bool eigen_pairs(double a, double b, double c, double& l1, double& l2, double* e1, double* e2,
                        bool normalise) noexcept
{
    if (!eigen_values(a, b, c, l1, l2)) return false;
    double p = l1 - c, q = l1 - a;
    double pp = p * p, qq = q * q;
    if (pp > qq) {
        e1[0] = p;
        e1[1] = b;
    } else {
        e1[0] = b;
        e1[1] = q;
    }
    double nn = b * b + std::max(pp, qq);
    if (std::max(c * c, a * a) * 1e-24 >= nn) {
        e1[0] = 1.0;
        e1[1] = 0.0;
    } else if (normalise) {
        double inv = 1.0 / std::sqrt(nn);
        e1[0] *= inv;
        e1[1] *= inv;
    }
    e2[0] = -e1[1];
    e2[1] = e1[0];
    return true;
}

// Divides each column by its Euclidean norm; a zero column stays.
template <unsigned D>
void __normalise_columns(matrix_fixed<double, D, D>& V) noexcept
{
    for (unsigned j = 0; j < D; ++j) {
        double nn = 0.0;
        for (unsigned i = 0; i < D; ++i) nn += V(i, j) * V(i, j);
        if (nn == 0.0) continue;
        double inv = 1.0 / std::sqrt(nn);
        for (unsigned i = 0; i < D; ++i) V(i, j) *= inv;
    }
}

// B x = lambda A x in 2D, through K = [s 0; -a12 a11] (s = sqrt(det A)), for which
// K A K^t = a11 det(A) I: one square root and no division by an entry of A but the last scaling.
inline bool eigen_pairs(symmetric_fixed<double, 2> const& A, symmetric_fixed<double, 2> const& B,
                        vector_fixed<double, 2>& lambda, matrix_fixed<double, 2, 2>& V, bool normalise) noexcept
{
    double a11 = A[0], a12 = A[1], a22 = A[2];
    double b11 = B[0], b12 = B[1], b22 = B[2];
    if (a11 == 0.0) return false;
    double det = a22 * a11 - a12 * a12;
    if (!(det > 0.0)) return false;
    double s = std::sqrt(det);
    double w = b12 * a11 - a12 * b11;
    if (!eigen_pairs(b11 * det, s * w, a11 * a11 * b22 - (w + b12 * a11) * a12, lambda[0], lambda[1], &V[0], &V[2],
                     false))
        return false;
    double scale = 1.0 / (det * a11);
    lambda[0] *= scale;
    lambda[1] *= scale;
    for (unsigned j = 0; j < 2; ++j) {
        double y1 = V(0, j), y2 = V(1, j);
        V(0, j) = s * y1 - a12 * y2;
        V(1, j) = a11 * y2;
    }
    if (normalise) __normalise_columns(V);
    return true;
}

// B x = lambda A x in 3D: A = L L^t by Cholesky, K the adjugate of L, C = K B K^t solved by dspev,
// x = K^t z. False when a pivot of L is not > 0 or dspev fails.
bool eigen_pairs(symmetric_fixed<double, 3> const& A, symmetric_fixed<double, 3> const& B,
                 vector_fixed<double, 3>& lambda, matrix_fixed<double, 3, 3>& V, bool normalise) noexcept;

// dspev with eigenvectors on a copy of M: ascending values, vector k in column k; true when info is 0.
bool __eigen_decomposition(symmetric_fixed<double, 3> const& M, vector_fixed<double, 3>& lambda,
                           matrix_fixed<double, 3, 3>& V) noexcept;

// The smallest eigenvalue, NaN when the 2D closed form does not give two finite values. The 3D
// value is the first that dspev leaves, whatever its info.
inline double __smallest_eigenvalue(symmetric_fixed<double, 2> const& M) noexcept
{
    double l1, l2;
    return eigen_values(M[0], M[1], M[2], l1, l2) ? l1 : std::numeric_limits<double>::quiet_NaN();
}
double __smallest_eigenvalue(symmetric_fixed<double, 3> const& M) noexcept;

}  // namespace qv7
