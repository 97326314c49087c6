// Random metrics with known principal directions and sizes, built independently of the library.
#pragma once

#include "tessarium/fixed.h"

#include <cmath>
#include <random>

namespace metric_samples {

using qv7::matrix_fixed;
using qv7::symmetric_fixed;

// Rows of R are orthonormal directions; sizes h_k log-uniform in [1e-3, 1e3].
template <unsigned D>
struct sample {
    matrix_fixed<double, D, D> R;
    double h[D];
};

template <unsigned D>
sample<D> random_sample(std::mt19937& gen, double spread = 3.0)
{
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> exponent(-spread, spread);
    sample<D> s;
    // Gram-Schmidt on random rows.
    for (unsigned i = 0; i < D; ++i) {
        double r[D];
        for (unsigned j = 0; j < D; ++j) r[j] = normal(gen);
        for (unsigned p = 0; p < i; ++p) {
            double d = 0;
            for (unsigned j = 0; j < D; ++j) d += r[j] * s.R(p, j);
            for (unsigned j = 0; j < D; ++j) r[j] -= d * s.R(p, j);
        }
        double n = 0;
        for (unsigned j = 0; j < D; ++j) n += r[j] * r[j];
        for (unsigned j = 0; j < D; ++j) s.R(i, j) = r[j] / std::sqrt(n);
        s.h[i] = std::pow(10.0, exponent(gen));
    }
    return s;
}

// R^t diag(eig) R.
template <unsigned D>
symmetric_fixed<double, D> tensor(matrix_fixed<double, D, D> const& R, double const* eig)
{
    symmetric_fixed<double, D> M{};
    for (unsigned j = 0; j < D; ++j)
        for (unsigned i = 0; i <= j; ++i)
            for (unsigned k = 0; k < D; ++k) M(i, j) += R(k, i) * eig[k] * R(k, j);
    return M;
}

template <unsigned D>
symmetric_fixed<double, D> tensor(sample<D> const& s)
{
    double eig[D];
    for (unsigned k = 0; k < D; ++k) eig[k] = 1 / (s.h[k] * s.h[k]);
    return tensor(s.R, eig);
}

template <unsigned D>
double form(symmetric_fixed<double, D> const& M, double const* v)
{
    double s = 0;
    for (unsigned i = 0; i < D; ++i)
        for (unsigned j = 0; j < D; ++j) s += v[i] * M(i, j) * v[j];
    return s;
}

}  // namespace metric_samples
