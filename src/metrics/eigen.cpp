#include "metrics/eigen.h"

#include "tessarium/lapack.h"
#include "tessarium/small_algebra.h"

namespace qv7 {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

bool all_finite(symmetric_fixed<double, 3> const& M) noexcept
{
    for (double x : M.v)
        if (!std::isfinite(x)) return false;
    return true;
}

// dspev with 'U' on a packed copy of M (n = 3, ldz = 3) and a zeroed work area on the stack. dspev
// can report success and positive values on a NaN entry: a non-finite matrix is refused first,
// with NaN eigenvalues.
long packed_dspev(char jobz, symmetric_fixed<double, 3> M, double* w, double* z) noexcept
{
    if (!all_finite(M)) {
        w[0] = w[1] = w[2] = NaN;
        return -1;
    }
    double work[9] = {};
    long info = 0;
    lapack::dspev(jobz, 'U', 3, M.v, w, z, 3, work, info);
    return info;
}

}  // namespace

bool __eigen_decomposition(symmetric_fixed<double, 3> const& M, vector_fixed<double, 3>& lambda,
                           matrix_fixed<double, 3, 3>& V) noexcept
{
    return packed_dspev('V', M, lambda.v, V.v) == 0;
}

double __smallest_eigenvalue(symmetric_fixed<double, 3> const& M) noexcept
{
    // Left NaN should dspev not write it, so that an unwritten value is never valid.
    double w[3] = {NaN, 0.0, 0.0};
    double z[1] = {};
    packed_dspev('N', M, w, z);
    return w[0];
}

bool eigen_pairs(symmetric_fixed<double, 3> const& A, symmetric_fixed<double, 3> const& B,
                 vector_fixed<double, 3>& lambda, matrix_fixed<double, 3, 3>& V, bool normalise) noexcept
{
    symmetric_fixed<double, 3> R = A;
    if (!matmat::__Cholesky_factor(R[0], R[1], R[2], R[3], R[4], R[5])) return false;
    // L = R^t.
    double l11 = R[0], l21 = R[1], l22 = R[2], l31 = R[3], l32 = R[4], l33 = R[5];
    if (!(l11 > 0.0 && l22 > 0.0 && l33 > 0.0)) return false;

    // K = det(L) inv(L), lower triangular: no division.
    matrix_fixed<double, 3, 3> K{};
    K(0, 0) = l22 * l33;
    K(1, 0) = -l21 * l33;
    K(1, 1) = l11 * l33;
    K(2, 0) = l21 * l32 - l22 * l31;
    K(2, 1) = -l11 * l32;
    K(2, 2) = l11 * l22;

    // C = K B K^t, upper triangle packed.
    matrix_fixed<double, 3, 3> KB{};
    for (unsigned i = 0; i < 3; ++i)
        for (unsigned j = 0; j < 3; ++j) {
            double s = 0.0;
            for (unsigned k = 0; k <= i; ++k) s += K(i, k) * B(k, j);
            KB(i, j) = s;
        }
    symmetric_fixed<double, 3> C;
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned i = 0; i <= j; ++i) {
            double s = 0.0;
            for (unsigned k = 0; k <= j; ++k) s += KB(i, k) * K(j, k);
            C(i, j) = s;
        }

    matrix_fixed<double, 3, 3> Z;
    if (packed_dspev('V', C, lambda.v, Z.v) != 0) return false;
    double d = l11 * l22 * l33;
    double scale = 1.0 / (d * d);
    for (unsigned k = 0; k < 3; ++k) lambda[k] *= scale;

    // V = K^t Z.
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned i = 0; i < 3; ++i) {
            double s = 0.0;
            for (unsigned k = i; k < 3; ++k) s += K(k, i) * Z(k, j);
            V(i, j) = s;
        }
    if (normalise) __normalise_columns(V);
    return true;
}

}  // namespace qv7
