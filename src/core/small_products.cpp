#include "tessarium/small_algebra.h"

namespace qv7 {
namespace matmat {

void __mult_small(double alpha, mat33 const& A, mat33 const& B, mat33& C, non_symmetric_tag)
{
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned i = 0; i < 3; ++i) {
            double s = 0.0;
            for (unsigned k = 0; k < 3; ++k) s += A(i, k) * B(k, j);
            C(i, j) += s * alpha;
        }
}

void __transpose_mult_small(double alpha, mat33 const& A, mat33 const& B, symmetric_fixed<double, 3>& S, symmetric_tag)
{
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned i = 0; i <= j; ++i) {
            double s = 0.0;
            for (unsigned k = 0; k < 3; ++k) s += A(k, i) * B(k, j);
            S(i, j) += s * alpha;
        }
}

void __Tinverse(mat33 const& A, mat33& B, double& det, full_tag)
{
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned i = 0; i < 3; ++i) {
            unsigned i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
            // Cyclic indices give the signed cofactor directly.
            B(i, j) = A(i1, j1) * A(i2, j2) - A(i1, j2) * A(i2, j1);
        }
    det = B(0, 0) * A(0, 0) + B(1, 0) * A(1, 0) + B(2, 0) * A(2, 0);
    if (det == 0.0) return;
    double inv = 1.0 / det;
    for (unsigned k = 0; k < 9; ++k) B[k] *= inv;
}

}  // namespace matmat
}  // namespace qv7
