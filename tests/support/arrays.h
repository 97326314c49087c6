// Builders and readers of small arrays, shared by all tests.
#pragma once

#include "support/failing_alloc.h"
#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace test_arrays {

using V = std::vector<unsigned>;
using D = std::vector<double>;
using T = std::vector<int>;
using qv7::NONE_ID;

template <class E = unsigned>
qv7::dense1D<E, 8> list(std::vector<E> const& entries)
{
    qv7::dense1D<E, 8> a;
    for (E v : entries) a.push_back(v);
    return a;
}

// A matrix of `rows` rows from its values listed column after column.
template <class E>
qv7::dense2D<E> matrix(std::size_t rows, std::initializer_list<E> entries)
{
    qv7::dense2D<E> M;
    if (rows == 0 || entries.size() == 0) return M;
    M.resize(rows, entries.size() / rows);
    std::size_t k = 0;
    for (E v : entries) M(k % rows, k / rows) = v, ++k;
    return M;
}
// The same with the column count written out, which must agree with the entries.
template <class E>
qv7::dense2D<E> matrix(std::size_t rows, std::size_t cols, std::initializer_list<E> entries)
{
    EXPECT_EQ(rows * cols, entries.size());
    return matrix<E>(rows, entries);
}
inline qv7::dense2D<unsigned> connect(std::size_t rows, std::initializer_list<unsigned> entries)
{
    return matrix<unsigned>(rows, entries);
}
inline qv7::dense2D<double> coords(std::size_t rows, std::initializer_list<double> entries)
{
    return matrix<double>(rows, entries);
}

// Column j holds j * rows, j * rows + 1, ...: the written nodes of the first element show which
// local rows a writer takes.
inline qv7::dense2D<unsigned> counting(std::size_t rows, std::size_t cols = 1)
{
    qv7::dense2D<unsigned> M;
    M.resize(rows, cols);
    for (std::size_t j = 0; j < cols; ++j)
        for (std::size_t i = 0; i < rows; ++i) M(i, j) = static_cast<unsigned>(j * rows + i);
    return M;
}

template <class E>
std::vector<E> values(qv7::dense1D<E, 8> const& a)
{
    return std::vector<E>(a.begin(), a.end());
}

// Entries column by column, honouring ld.
template <class E>
std::vector<E> values(qv7::dense2D<E> const& M)
{
    std::vector<E> out;
    for (std::size_t j = 0; j < M.cols(); ++j)
        for (std::size_t i = 0; i < M.rows(); ++i) out.push_back(M(i, j));
    return out;
}

template <class E>
std::vector<E> column(qv7::dense2D<E> const& M, std::size_t j)
{
    return std::vector<E>(M.col(j), M.col(j) + M.rows());
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

// Runs `call` with the library's allocator failing after 0, 1, 2, ... successes until it returns
// 0, expecting -199 from every failed run; returns the number of failed runs.
template <class Call>
std::size_t failed_runs_before_success(Call call)
{
    for (std::size_t successes = 0;; ++successes) {
        int code = failing_after(successes, call);
        if (code == 0) return successes;
        EXPECT_EQ(code, -199) << "after " << successes << " allocations";
        if (code != -199) return successes;
    }
}

}  // namespace test_arrays
