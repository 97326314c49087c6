#include "tessarium/finite_rotation.h"

#include "tessarium/small_algebra.h"

#include <cmath>

namespace qv7 {
namespace {

using vec3 = finite_rotation::vec3;
using mat33 = finite_rotation::mat33;

// Above this angle the closed forms lose no accuracy to cancellation.
constexpr double series_limit = 0.1;

mat33 skew(vec3 const& v)
{
    return mat33{{0.0, v[2], -v[1], -v[2], 0.0, v[0], v[1], -v[0], 0.0}};
}

double dot(vec3 const& a, vec3 const& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

vec3 times(mat33 const& M, vec3 const& v)
{
    vec3 out;
    for (unsigned i = 0; i < 3; ++i) out[i] = M(i, 0) * v[0] + M(i, 1) * v[1] + M(i, 2) * v[2];
    return out;
}

mat33 product(mat33 const& A, mat33 const& B)
{
    mat33 C{};
    matmat::__mult_small(1.0, A, B, C, non_symmetric_tag());
    return C;
}

// out += alpha * M, skipped when alpha is exactly 0.
void add_scaled(double alpha, mat33 const& M, mat33& out)
{
    if (alpha == 0.0) return;
    for (unsigned k = 0; k < 9; ++k) out[k] += alpha * M[k];
}

// a S + b S2, entry by entry.
mat33 combine(double a, mat33 const& S, double b, mat33 const& S2)
{
    mat33 out;
    for (unsigned k = 0; k < 9; ++k) out[k] = a * S[k] + b * S2[k];
    return out;
}

void add_identity(mat33& M)
{
    for (unsigned i = 0; i < 3; ++i) M(i, i) += 1.0;
}

// Horner's rule from the highest coefficient.
template <unsigned N>
double horner(double x, double const (&c)[N])
{
    double r = c[N - 1];
    for (unsigned k = N - 1; k-- > 0;) r = r * x + c[k];
    return r;
}

void closed_form_coefficients(double phi, double* c)
{
    double s = std::sin(phi), co = std::cos(phi);
    double r = 1.0 / phi, r2 = r * r;
    c[0] = s * r;
    c[1] = (1.0 - co) * r2;
    c[5] = (1.0 - c[0]) * r2;
    c[2] = c[5] - c[1];
    c[3] = (c[0] - 2.0 * c[1]) * r2;
    c[6] = (c[1] - 3.0 * c[5]) * r2;
    c[4] = (c[2] - 4.0 * c[3]) * r2;
    c[7] = (c[3] - 5.0 * c[6]) * r2;
}

void series_coefficients(double x2, double* c)
{
    static double const c0[] = {1.0, -1.0 / 6, 1.0 / 120, -1.0 / 5040, 1.0 / 362880, -1.0 / 39916800};
    static double const c1[] = {1.0 / 2, -1.0 / 24, 1.0 / 720, -1.0 / 40320, 1.0 / 3628800};
    static double const c2[] = {-1.0 / 3, 1.0 / 30, -1.0 / 840, 1.0 / 45360, -1.0 / 3991680};
    static double const c3[] = {-1.0 / 12, 1.0 / 180, -1.0 / 6720, 1.0 / 453600, -1.0 / 47900160};
    static double const c4[] = {1.0 / 90, -1.0 / 1680, 1.0 / 75600, -1.0 / 5987520};
    static double const c5[] = {1.0 / 6, -1.0 / 120, 1.0 / 5040, -1.0 / 362880, 1.0 / 39916800};
    static double const c6[] = {-1.0 / 60, 1.0 / 1260, -1.0 / 60480, 1.0 / 4989600};
    static double const c7[] = {1.0 / 630, -1.0 / 15120, 1.0 / 831600, -1.0 / 77837760};
    c[0] = horner(x2, c0);
    c[1] = horner(x2, c1);
    c[2] = horner(x2, c2);
    c[3] = horner(x2, c3);
    c[4] = horner(x2, c4);
    c[5] = horner(x2, c5);
    c[6] = horner(x2, c6);
    c[7] = horner(x2, c7);
}

// c3 W + c6 (W S + S W): how the S-linear part of T moves along w.
mat33 first_order_part(double c3, double c6, mat33 const& W, mat33 const& S)
{
    mat33 out{};
    add_scaled(c3, W, out);
    add_scaled(c6, product(W, S), out);
    add_scaled(c6, product(S, W), out);
    return out;
}

}  // namespace

void finite_rotation::init(vec3 const& th)
{
    double x = th[0], y = th[1], z = th[2];
    double x2 = 0.0 + (z * z + (y * y + x * x));
    double phi = std::sqrt(x2);
    theta = th;
    if (phi > series_limit)
        closed_form_coefficients(phi, coefs);
    else
        series_coefficients(x2, coefs);

    S = skew(theta);
    S2 = mat33{};
    matmat::__mult_small(1.0, S, S, S2, non_symmetric_tag());
    R_minus_I = combine(coefs[0], S, coefs[1], S2);
    R = R_minus_I;
    T = combine(coefs[1], S, coefs[5], S2);
    U = combine(coefs[3], S, coefs[6], S2);
    V = combine(coefs[4], S, coefs[7], S2);
    add_identity(R);
    add_identity(T);
}

void finite_rotation::compute_DR(vec3 const& w, mat33& out) const
{
    out = mat33{};
    matmat::__mult_small(1.0, skew(times(T, w)), R, out, non_symmetric_tag());
}

void finite_rotation::compute_DT(vec3 const& w, mat33& out) const
{
    mat33 W = skew(w);
    out = mat33{};
    add_scaled(dot(theta, w), U, out);
    add_scaled(coefs[1], W, out);
    add_scaled(coefs[5], product(W, S), out);
    add_scaled(coefs[5], product(S, W), out);
}

void finite_rotation::compute_D2T(vec3 const& w1, vec3 const& w2, mat33& out) const
{
    double a1 = dot(theta, w1), a2 = dot(theta, w2), s = dot(w1, w2);
    mat33 W1 = skew(w1), W2 = skew(w2);
    out = mat33{};
    add_scaled(a1 * a2, V, out);
    add_scaled(s, U, out);
    add_scaled(a2, first_order_part(coefs[3], coefs[6], W1, S), out);
    add_scaled(a1, first_order_part(coefs[3], coefs[6], W2, S), out);
    add_scaled(coefs[5], product(W1, W2), out);
    add_scaled(coefs[5], product(W2, W1), out);
}

void finite_rotation::compute_D2R(vec3 const& w1, vec3 const& w2, mat33& out) const
{
    mat33 A;
    compute_DT(w2, A);
    mat33 K = skew(times(A, w1));
    matmat::__mult_small(1.0, skew(times(T, w1)), skew(times(T, w2)), K, non_symmetric_tag());
    out = product(K, R);
}

void finite_rotation::compute_D3R(vec3 const& w1, vec3 const& w2, vec3 const& w3, mat33& out) const
{
    vec3 y1 = times(T, w1), y2 = times(T, w2), y3 = times(T, w3);
    mat33 A, B, C;
    compute_DT(w2, A);
    compute_DT(w3, B);
    compute_D2T(w2, w3, C);
    mat33 K = skew(times(C, w1));
    matmat::__mult_small(1.0, skew(times(B, w1)), skew(y2), K, non_symmetric_tag());
    matmat::__mult_small(1.0, skew(y1), skew(times(B, w2)), K, non_symmetric_tag());
    matmat::__mult_small(1.0, skew(times(A, w1)), skew(y3), K, non_symmetric_tag());
    matmat::__mult_small(1.0, product(skew(y1), skew(y2)), skew(y3), K, non_symmetric_tag());
    out = product(K, R);
}

}  // namespace qv7
