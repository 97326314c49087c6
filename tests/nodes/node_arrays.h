// Builders and readers of small arrays for the node-set and search tests.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace node_arrays {

using qv7::NONE_ID;
using V = std::vector<unsigned>;
using D = std::vector<double>;

template <class T = unsigned>
qv7::dense1D<T, 8> list(std::initializer_list<T> values)
{
    qv7::dense1D<T, 8> out;
    for (T v : values) out.push_back(v);
    return out;
}

// A rows x cols matrix from its entries in column-major order.
template <class T>
qv7::dense2D<T> matrix(std::size_t rows, std::size_t cols, std::initializer_list<T> column_major)
{
    qv7::dense2D<T> M;
    M.resize(rows, cols);
    std::size_t k = 0;
    for (T v : column_major) M(k % rows, k / rows) = v, ++k;
    return M;
}

template <class T>
std::vector<T> values(qv7::dense1D<T, 8> const& a) { return std::vector<T>(a.begin(), a.end()); }

// Entries column by column, honouring ld.
template <class T>
std::vector<T> values(qv7::dense2D<T> const& M)
{
    std::vector<T> out;
    for (std::size_t j = 0; j < M.cols(); ++j)
        for (std::size_t i = 0; i < M.rows(); ++i) out.push_back(M(i, j));
    return out;
}

inline void expect_near(D const& got, D const& want, double tol = 1e-14)
{
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t k = 0; k < got.size(); ++k) EXPECT_NEAR(got[k], want[k], tol) << k;
}

// What f returns when every array allocation after the first k fails.
template <class F>
int failing_after(std::size_t k, F f)
{
    test_alloc::failing_scope guard(k);
    return f();
}

}  // namespace node_arrays
