// Appending and copying operations on dense1D and dense2D: matvec, matmat, vecvec, matscal.
#pragma once

#include "export.h"
#include "dense2D.h"
#include "fixed.h"

#include <algorithm>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

// Whether k more columns fit in the matrix's storage at its leading dimension (the column
// capacity being the element count when ld is 0).
template <class T>
bool __columns_fit(dense2D<T> const& M, std::size_t k) noexcept
{
    std::size_t step = M.ld() ? M.ld() : 1;
    return (M.cols() + k) * step <= M.capacity();
}

namespace matvec {

// Appends the N values at v as a new last column of M; false on a row mismatch or no memory.
template <class T>
bool __push_back(T const* v, std::size_t N, dense2D<T>& M)
{
    if (!M.empty() && M.rows() != N) return false;
    if (M.__add_column_in_place()) {
        std::copy(v, v + N, M.col(M.cols() - 1));
        return true;
    }
    std::size_t old_rows = M.rows(), old_cols = M.cols();
    if (M.empty() || !__columns_fit(M, 1)) {
        std::size_t want = std::max<std::size_t>(2 * old_cols, 4);
        if ((old_rows < N || old_cols < want) && M.resize(N, want)) M.resize(old_rows, old_cols);
    }
    if (!M.resize(N, old_cols + 1)) return false;
    if (N) std::copy(v, v + N, M.col(old_cols));
    return true;
}

template <class T, unsigned N>
bool push_back(vector_fixed<T, N> const& v, dense2D<T>& M)
{
    vector_fixed<T, N> copy = v;  // v may live in M
    return __push_back(copy.v, N, M);
}

template <class T>
bool push_back(dense1D<T, 8> const& v, dense2D<T>& M)
{
    return __push_back(v.data(), v.size(), M);
}

// M(i, j) += alpha * v[j] * segment[i]; a segment shorter than M's rows leaves the other rows alone.
template <unsigned N>
void rank2(double alpha, dense2D<double>::const_segment_type const& segment, vector_fixed<double, N> const& v,
           matrix_fixed<double, 3, N>& M)
{
    if (alpha == 0.0) return;
    std::size_t n = std::min<std::size_t>(segment.n, 3);
    for (unsigned j = 0; j < N; ++j) {
        double beta = v[j] * alpha;
        for (std::size_t i = 0; i < n; ++i) M(i, j) += segment[i] * beta;
    }
}

}  // namespace matvec

namespace matmat {

// Copies the elements of src into dst, which has src's shape already.
template <class T>
void __copy(dense2D<T> const& src, full_tag, dense2D<T>& dst, full_tag)
{
    dense2D<T>::__copy_elements(src, dst);
}

// Makes room for k more columns of R rows behind the c columns of B. False when the final
// sizing fails; `strict` also reports a failed enlargement.
template <class T>
bool __append_columns(std::size_t R, std::size_t k, dense2D<T>& B, bool strict)
{
    std::size_t c = B.cols(), old_rows = B.rows();
    bool enlarged = true;
    if (!__columns_fit(B, k)) {
        std::size_t want = std::max(k, c) + c;
        if (old_rows < R || c < want) {
            enlarged = B.resize(R, want);
            if (enlarged) B.resize(old_rows, c);
        }
    }
    if (!B.resize(R, c + k)) return false;
    return enlarged || !strict;
}

// Copies column j of A into column dst of B, as far as A's rows reach.
template <class T>
void __copy_column(dense2D<T> const& A, std::size_t j, dense2D<T>& B, std::size_t dst)
{
    std::size_t n = std::min(A.rows(), B.rows());
    std::copy(A.col(j), A.col(j) + n, B.col(dst));
}

// Appends all columns of A to B.
template <class T>
bool push_back(dense2D<T> const& A, dense2D<T>& B)
{
    std::size_t c = B.cols(), k = A.cols();
    dense2D<T> source = A;  // A may be B
    if (!__append_columns(std::max(A.rows(), B.rows()), k, B, true)) return false;
    if (k == 0 || B.empty()) return true;
    if (source.rows() == B.rows() && source.ld() == B.rows() && B.ld() == B.rows()) {
        std::copy(source.col(0), source.col(0) + B.rows() * k, B.col(c));
        return true;
    }
    for (std::size_t j = 0; j < k; ++j) __copy_column(source, j, B, c + j);
    return true;
}

// Appends column j of A to B.
template <class T>
bool push_back(dense2D<T> const& A, unsigned long j, dense2D<T>& B)
{
    std::size_t c = B.cols();
    dense2D<T> source = A;
    if (!__append_columns(std::max(A.rows(), B.rows()), 1, B, false)) return false;
    if (!B.empty()) __copy_column(source, j, B, c);
    return true;
}

// Appends the columns of A named in indices, in that order, to B.
template <class T>
bool push_back(dense2D<T> const& A, dense1D<unsigned, 8> const& indices, dense2D<T>& B)
{
    std::size_t c = B.cols(), k = indices.size();
    dense2D<T> source = A;
    if (!__append_columns(std::max(A.rows(), B.rows()), k, B, false)) return false;
    if (B.empty()) return true;
    for (std::size_t n = 0; n < k; ++n) __copy_column(source, indices[n], B, c + n);
    return true;
}

}  // namespace matmat

namespace vecvec {

// Appends all elements of src to dst. If the enlargement fails while exact sizing succeeds,
// dst has grown by src's size without any copy, and the result is false.
template <class T>
bool push_back(dense1D<T, 8> const& src, dense1D<T, 8>& dst)
{
    dense1D<T, 8> source = src;  // src may be dst
    std::size_t n = source.size(), s = dst.size();
    bool status = true;
    if (s + n > dst.capacity()) {
        std::size_t want = std::max(n, s) + s;
        auto* block = dst.storage();
        if (block->capacity < dst.first() + want) block->__grow(dst.first() + want, dst.first() + s, 1);
        status = dst.capacity() >= want;
    }
    status = dst.resize(s + n) && status;
    if (!status || n == 0) return status;
    std::copy(source.begin(), source.end(), dst.begin() + s);
    return true;
}

}  // namespace vecvec

namespace matscal {

// Adds value to every element of M, with unsigned wrap-around.
template <class T>
void add(T value, dense2D<T>& M)
{
    if (M.empty()) return;
    if (M.ld() == M.rows()) {
        for (T *p = M.col(0), *e = p + M.size(); p != e; ++p) *p += value;
        return;
    }
    for (std::size_t j = 0; j < M.cols(); ++j)
        for (T *p = M.col(j), *e = p + M.rows(); p != e; ++p) *p += value;
}

}  // namespace matscal

}  // namespace qv7
TESSARIUM_EXPORT_END
