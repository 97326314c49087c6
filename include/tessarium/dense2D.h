// Column-major matrix handle on a shared storage block, with views and a leading dimension.
#pragma once

#include "export.h"
#include "dense1D.h"

#include <algorithm>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

// Empty tag types that select overloads of the array operations.
struct full_tag {};
struct non_symmetric_tag {};
struct symmetric_tag {};
template <unsigned N>
struct fixed_size_tag {
};

template <class T>
class dense2D : public dense_handle<T> {
    using base = dense_handle<T>;
    using base::first_;
    using base::size_;
    using base::storage_;

public:
    using shape_tag = full_tag;
    struct orientation_tag {};

    // Read-only view of one column, built on the spot.
    struct const_segment_type {
        T const* ptr;
        std::size_t col;
        std::size_t n;
        std::size_t ld;
        T const& operator[](std::size_t i) const noexcept { return ptr[i]; }
        std::size_t size() const noexcept { return n; }
    };

    dense2D() = default;

    std::size_t rows() const noexcept { return rows_; }
    std::size_t cols() const noexcept { return cols_; }
    std::size_t ld() const noexcept { return ld_; }
    bool empty() const noexcept { return rows_ == 0 || cols_ == 0; }

    T& operator()(std::size_t i, std::size_t j) noexcept { return storage_->data[first_ + i + j * ld_]; }
    T const& operator()(std::size_t i, std::size_t j) const noexcept { return storage_->data[first_ + i + j * ld_]; }
    T* col(std::size_t j) noexcept { return storage_->data + first_ + j * ld_; }
    T const* col(std::size_t j) const noexcept { return storage_->data + first_ + j * ld_; }
    const_segment_type segment(std::size_t j) const noexcept { return {col(j), j, rows_, ld_}; }

    // View of columns j0 .. j0 + c - 1 and of the first R rows, on this block.
    dense2D submatrix(std::size_t j0, std::size_t c, std::size_t R) const
    {
        dense2D view(*this);
        view.first_ = first_ + j0 * ld_;
        if (c * R == 0) {
            view.size_ = view.rows_ = view.cols_ = view.ld_ = 0;
        } else {
            view.rows_ = R;
            view.cols_ = c;
            view.size_ = (c - 1) * ld_ + R;
        }
        return view;
    }

    // The matrix as one flat run; meaningful when ld() == rows().
    dense1D<T, 8> flat() const { return dense1D<T, 8>(storage_, size_, first_); }

    bool resize(std::size_t m, std::size_t n)
    {
        std::size_t mn;
        if (__builtin_mul_overflow(m, n, &mn)) return false;
        if (mn == 0) m = n = 0;
        std::size_t L = empty() ? m : ld_;
        std::size_t nL;
        if (m <= L && !__builtin_mul_overflow(n, L, &nL) && nL <= storage_->capacity - first_) {
            size_ = nL;
            rows_ = m;
            cols_ = n;
            ld_ = m == 0 ? 0 : L;
            return true;
        }
        dense1D<T, 8> fresh(mn);
        if (fresh.size() == 0 && mn != 0) return false;
        std::size_t keep_rows = std::min(m, rows_), keep_cols = std::min(n, cols_);
        if (keep_rows && keep_cols) {
            T const* src = col(0);
            T* dst = fresh.data();
            if (ld_ == m && m <= rows_) {
                std::copy(src, src + m * keep_cols, dst);
            } else {
                for (std::size_t j = 0; j < keep_cols; ++j)
                    std::copy(src + j * ld_, src + j * ld_ + keep_rows, dst + j * m);
            }
        }
        this->__share(fresh.storage());
        size_ = fresh.size();
        first_ = fresh.first();
        rows_ = m;
        cols_ = n;
        ld_ = m;
        return true;
    }

    // resize(rows(), cols() + 1) for a matrix with elements whose storage holds one more column.
    // False, changing nothing, otherwise.
    bool __add_column_in_place() noexcept
    {
        if (empty()) return false;
        std::size_t need = (cols_ + 1) * ld_;
        if (need > storage_->capacity - first_) return false;
        size_ = need;
        ++cols_;
        return true;
    }

    // As resize, and every element that the call creates is set to fill.
    bool resize(std::size_t m, std::size_t n, T const& fill)
    {
        std::size_t old_rows = rows_, old_cols = cols_;
        if (!resize(m, n)) return false;
        if (empty()) return true;
        // Columns that the call dropped are not there to fill.
        if (old_rows < rows_ && old_cols != 0)
            for (std::size_t j = 0; j < std::min(old_cols, cols_); ++j)
                std::fill(col(j) + old_rows, col(j) + rows_, fill);
        for (std::size_t j = old_cols; j < cols_; ++j) std::fill(col(j), col(j) + rows_, fill);
        return true;
    }

    // Deep copy with ld() == rows(). A handle on the same block as src gets a block of its own.
    bool copy(dense2D const& src)
    {
        if (&src == this) return true;
        if (src.storage_ == storage_) this->__detach();
        size_ = rows_ = cols_ = ld_ = 0;
        if (!resize(src.rows_, src.cols_)) return false;
        __copy_elements(src, *this);
        return true;
    }

    void clear() noexcept { size_ = rows_ = cols_ = ld_ = 0; }

    // Copies the elements of src into dst, which has src's shape already.
    static void __copy_elements(dense2D const& src, dense2D& dst) noexcept
    {
        if (src.empty()) return;
        if (src.ld_ == src.rows_ && dst.ld_ == dst.rows_) {
            std::copy(src.col(0), src.col(0) + src.ld_ * src.cols_, dst.col(0));
            return;
        }
        for (std::size_t j = 0; j < src.cols_; ++j) std::copy(src.col(j), src.col(j) + src.rows_, dst.col(j));
    }

private:
    std::size_t rows_ = 0;
    std::size_t cols_ = 0;
    std::size_t ld_ = 0;
};

}  // namespace qv7
TESSARIUM_EXPORT_END
