#include "metrics/metric_anisotropic.h"
#include "tessarium/small_algebra.h"

#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

// The pair operation on copies, so that M may alias M1 or M2; M1 itself on failure.
template <unsigned D, class Operation>
bool on_copies(symmetric_fixed<double, D> const& M1, symmetric_fixed<double, D> const& M2,
               symmetric_fixed<double, D>& M, Operation operation)
{
    metric_anisotropic<D> a{M1}, b{M2}, result;
    bool ok = operation(a, b, result);
    M = ok ? result : a;
    return ok;
}

template <unsigned D>
int bound_one(symmetric_fixed<double, D>& M, double hmin, double hmax)
{
    if (0.0 >= hmin && hmax == DBL_LIMIT) return 0;
    if (!std::isfinite(hmin)) return -2;
    if (!std::isfinite(hmax)) return -3;
    metric_anisotropic<D> m{M};
    if (!m.bound(hmin, hmax)) return 0;
    M = m;
    return 1;
}

template <unsigned D>
void iso_to_aniso(double h, symmetric_fixed<double, D>& M)
{
    double g = h > 0.0 ? 1.0 / (h * h) : 0.0;
    M = {};
    for (unsigned k = 0; k < D; ++k) M(k, k) = g;
}

double dot3(double const* a, double const* b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

}  // namespace

bool eigen_pairs(symmetric_fixed<double, 2> const& M, vector_fixed<double, 2>& lambda, matrix_fixed<double, 2, 2>& V)
{
    return qv7::eigen_pairs(M[0], M[1], M[2], lambda[0], lambda[1], &V[0], &V[2], true);
}

bool eigen_pairs(symmetric_fixed<double, 3> const& M, vector_fixed<double, 3>& lambda, matrix_fixed<double, 3, 3>& V)
{
    return __eigen_decomposition(M, lambda, V);
}

bool eigen_pairs(symmetric_fixed<double, 2> const& A, symmetric_fixed<double, 2> const& B,
                 vector_fixed<double, 2>& lambda, matrix_fixed<double, 2, 2>& V)
{
    return qv7::eigen_pairs(A, B, lambda, V, true);
}

bool eigen_pairs(symmetric_fixed<double, 3> const& A, symmetric_fixed<double, 3> const& B,
                 vector_fixed<double, 3>& lambda, matrix_fixed<double, 3, 3>& V)
{
    return qv7::eigen_pairs(A, B, lambda, V, true);
}

bool is_valid_metric(symmetric_fixed<double, 2> const& M)
{
    return __smallest_eigenvalue(M) > 0.0;
}
bool is_valid_metric(symmetric_fixed<double, 3> const& M)
{
    return __smallest_eigenvalue(M) > 0.0;
}

bool minimum_metric(symmetric_fixed<double, 2> const& M1, symmetric_fixed<double, 2> const& M2,
                    symmetric_fixed<double, 2>& M)
{
    return on_copies(M1, M2, M, metric_anisotropic<2>::minimum_metric);
}
bool minimum_metric(symmetric_fixed<double, 3> const& M1, symmetric_fixed<double, 3> const& M2,
                    symmetric_fixed<double, 3>& M)
{
    return on_copies(M1, M2, M, metric_anisotropic<3>::minimum_metric);
}
bool maximum_metric(symmetric_fixed<double, 2> const& M1, symmetric_fixed<double, 2> const& M2,
                    symmetric_fixed<double, 2>& M)
{
    return on_copies(M1, M2, M, metric_anisotropic<2>::maximum_metric);
}
bool maximum_metric(symmetric_fixed<double, 3> const& M1, symmetric_fixed<double, 3> const& M2,
                    symmetric_fixed<double, 3>& M)
{
    return on_copies(M1, M2, M, metric_anisotropic<3>::maximum_metric);
}

int bound_metric(symmetric_fixed<double, 2>& M, double hmin, double hmax)
{
    return bound_one(M, hmin, hmax);
}
int bound_metric(symmetric_fixed<double, 3>& M, double hmin, double hmax)
{
    return bound_one(M, hmin, hmax);
}

void metric_iso_to_aniso(double h, symmetric_fixed<double, 2>& M)
{
    iso_to_aniso(h, M);
}
void metric_iso_to_aniso(double h, symmetric_fixed<double, 3>& M)
{
    iso_to_aniso(h, M);
}

void metric_iso_to_aniso2d(double h, matrix_fixed<double, 3, 2> const& B, symmetric_fixed<double, 2>& M)
{
    M = {};
    if (!(h > 0.0)) return;
    double g = 1.0 / (h * h);
    if (g == 0.0) return;
    double const* b1 = &B(0, 0);
    double const* b2 = &B(0, 1);
    M[0] = g * dot3(b1, b1);
    M[1] = g * dot3(b1, b2);
    M[2] = g * dot3(b2, b2);
}

void metric_aniso3d_to_aniso2d(symmetric_fixed<double, 3> const& M3, matrix_fixed<double, 3, 2> const& B,
                               symmetric_fixed<double, 2>& M)
{
    M = {};
    matmat::__Bt_A_B_op(1.0, M3, B, M);
}

}  // namespace tessarium
}  // namespace qv7
