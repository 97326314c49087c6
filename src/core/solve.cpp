#include "tessarium/small_algebra.h"

#include <cmath>

namespace qv7 {
namespace {

constexpr double relaxation = 0.7;
constexpr double tolerance = 1e-12;

double inverse_or_zero(double det)
{
    return det == 0.0 ? 0.0 : 1.0 / det;
}

bool converged(double x, double d)
{
    return std::fabs(x) * tolerance >= std::fabs(d);
}

}  // namespace

void solve(double a, double b, double c, double r0, double r1, double& x0, double& x1, double& det, unsigned n)
{
    det = a * c - b * b;
    double inv = inverse_or_zero(det);
    x0 = (c * r0 - b * r1) * inv;
    x1 = (a * r1 - b * r0) * inv;
    for (unsigned step = 0; step < n; ++step) {
        double e0 = r0 - (x1 * b + x0 * a);
        double e1 = r1 - (x1 * c + x0 * b);
        double d0 = (e0 * c - e1 * b) * inv;
        double d1 = (e1 * a - e0 * b) * inv;
        x0 += relaxation * d0;
        x1 += relaxation * d1;
        if (converged(x0, d0) && converged(x1, d1)) break;
    }
}

void solve(symmetric_fixed<double, 2> const& A, vector_fixed<double, 2>& x, double& det, unsigned n)
{
    solve(A[0], A[1], A[2], x[0], x[1], x[0], x[1], det, n);
}

void solve(double a00, double a01, double a11, double a02, double a12, double a22, double r0, double r1, double r2,
           double& x0, double& x1, double& x2, double& det, unsigned n)
{
    double C00 = a11 * a22 - a12 * a12, C11 = a00 * a22 - a02 * a02, C22 = a00 * a11 - a01 * a01;
    double C01 = a02 * a12 - a01 * a22, C02 = a01 * a12 - a11 * a02, C12 = a01 * a02 - a00 * a12;
    det = ((C00 * a00 + C01 * a01 + C02 * a02) + (C11 * a11 + C01 * a01 + C12 * a12) +
           (C22 * a22 + C12 * a12 + C02 * a02)) *
          0.3333333333333333;
    double inv = inverse_or_zero(det);
    x0 = (C00 * r0 + C01 * r1 + C02 * r2) * inv;
    x1 = (C01 * r0 + C11 * r1 + C12 * r2) * inv;
    x2 = (C02 * r0 + C12 * r1 + C22 * r2) * inv;
    for (unsigned step = 0; step < n; ++step) {
        double e0 = r0 - (a00 * x0 + a01 * x1 + a02 * x2);
        double e1 = r1 - (a01 * x0 + a11 * x1 + a12 * x2);
        double e2 = r2 - (a02 * x0 + a12 * x1 + a22 * x2);
        double d0 = (C00 * e0 + C01 * e1 + C02 * e2) * inv;
        double d1 = (C01 * e0 + C11 * e1 + C12 * e2) * inv;
        double d2 = (C02 * e0 + C12 * e1 + C22 * e2) * inv;
        x0 += relaxation * d0;
        x1 += relaxation * d1;
        x2 += relaxation * d2;
        if (converged(x0, d0) && converged(x1, d1) && converged(x2, d2)) break;
    }
}

void solve(symmetric_fixed<double, 3> const& A, vector_fixed<double, 3>& x, double& det, unsigned n)
{
    solve(A[0], A[1], A[2], A[3], A[4], A[5], x[0], x[1], x[2], x[0], x[1], x[2], det, n);
}

}  // namespace qv7
