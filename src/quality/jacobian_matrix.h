// The Jacobian matrix of the isoparametric map of one element at one parametric point.
#pragma once

#include "connectivity/elfes.h"
#include "quality/shape_functions.h"

#include <algorithm>

namespace qv7 {
namespace matvec {

// A += alpha x y^t, with the first nx rows of x; the rows of A beyond them are left alone.
template <unsigned M, unsigned N>
void rank2(double alpha, double const* x, unsigned nx, vector_fixed<double, N> const& y,
           matrix_fixed<double, M, N>& A) noexcept
{
    for (unsigned k = 0; k < N; ++k)
        for (unsigned i = 0; i < nx; ++i) A(i, k) += alpha * x[i] * y[k];
}

}  // namespace matvec

namespace elfe_algo {

template <class Elfe>
struct __shape_of;
template <>
struct __shape_of<elfes::edge2> {
    using type = elfes::shape_edge2;
};
template <>
struct __shape_of<elfes::faceT3> {
    using type = elfes::shape_faceT3;
};
template <>
struct __shape_of<elfes::faceQ4> {
    using type = elfes::shape_faceQ4;
};
template <>
struct __shape_of<elfes::tetra4> {
    using type = elfes::shape_tetra4;
};
template <>
struct __shape_of<elfes::pyramid5> {
    using type = elfes::shape_pyramid5;
};
template <>
struct __shape_of<elfes::wedge6> {
    using type = elfes::shape_wedge6;
};
template <>
struct __shape_of<elfes::hexa8> {
    using type = elfes::shape_hexa8;
};

// Column k of J is dP/d(k-th parameter): each node's coordinates times its shape derivatives.
// J keeps zeros in the rows that coords lacks.
template <class Coords, class Elfe, class P, class J>
void jacobian_matrix(Coords const& coords, unsigned const* nodes, P const& point, J& Jm) noexcept
{
    Jm = J{};
    unsigned rows = static_cast<unsigned>(std::min<std::size_t>(coords.rows(), J::rows()));
    for (auto const& shape : elfes::shape_set<typename __shape_of<Elfe>::type>())
        matvec::rank2(1.0, coords.col(nodes[shape.id]), rows, shape.derivatives_at(point), Jm);
}

}  // namespace elfe_algo
}  // namespace qv7
