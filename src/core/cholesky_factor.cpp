#include "tessarium/small_algebra.h"

#include <cmath>

namespace qv7 {
namespace matmat {
namespace {

// Factor of a matrix whose only possibly non-zero entry is the last diagonal one.
bool factor_last_only(double& a22)
{
    if (!(a22 >= 0.0)) return false;
    a22 = std::sqrt(a22);
    return true;
}

// Factor of the 2 x 2 block [p q; q s] in place, the other row being zero.
bool factor_pair(double& p, double& q, double& s)
{
    if (!(p > 0.0)) return false;
    double t = p * s - q * q;
    if (!(t >= 0.0)) return false;
    double r = 1.0 / std::sqrt(p);
    p = std::sqrt(p);
    q = q * r;
    s = r * std::sqrt(t);
    return true;
}

}  // namespace

bool __Cholesky_factor(double& a00, double& a01, double& a11, double& a02, double& a12, double& a22)
{
    if (a00 == 0.0 && a01 == 0.0 && a02 == 0.0) {
        if (a11 == 0.0 && a12 == 0.0) return factor_last_only(a22);
        return factor_pair(a11, a12, a22);
    }
    if (a01 == 0.0 && a11 == 0.0 && a12 == 0.0) {
        if (a00 == 0.0 && a02 == 0.0) return factor_last_only(a22);
        return factor_pair(a00, a02, a22);
    }
    if (!(a00 > 0.0)) return false;
    double p = a00 * a11 - a01 * a01;
    double q = a12 * a00 - a01 * a02;
    if (!(p > 0.0)) return false;
    a00 = std::sqrt(a00);
    double r = 1.0 / a00;
    a11 = std::sqrt(p) * r;
    a01 = a01 * r;
    a02 = a02 * r;
    a12 = (q / std::sqrt(p)) * r;
    double t = a22 - (a12 * a12 + a02 * a02);
    if (!(t >= 0.0)) return false;
    a22 = std::sqrt(t);
    return true;
}

}  // namespace matmat
}  // namespace qv7
