// One-dimensional array handle on a shared storage block.
#pragma once

#include "export.h"
#include "dense_handle.h"

#include <algorithm>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

template <class T, unsigned Align = 8>
class dense1D : public dense_handle<T> {
    static_assert(Align == 8, "arrays are always 8-aligned");
    using base = dense_handle<T>;
    using base::first_;
    using base::size_;
    using base::storage_;

public:
    dense1D() = default;
    // Storage for at least max(n, 2) elements, contents undefined; size 0 if storage failed.
    explicit dense1D(std::size_t n)
    {
        if (n == 0) return;
        storage_->__grow(n, 0, 1);
        size_ = std::min<std::size_t>(n, storage_->capacity);
    }
    dense1D(std::size_t n, T const& value) : dense1D(n) { std::fill(this->data(), this->data() + size_, value); }
    // A flat handle on a block: `size` elements from element `first` of the block.
    dense1D(typename base::block_type* block, std::size_t size, std::size_t first)
    {
        this->__share(block);
        size_ = size;
        first_ = first;
    }

    bool empty() const noexcept { return size_ == 0; }
    T& operator[](std::size_t i) noexcept { return storage_->data[first_ + i]; }
    T const& operator[](std::size_t i) const noexcept { return storage_->data[first_ + i]; }
    T* begin() noexcept { return this->data(); }
    T* end() noexcept { return this->data() + size_; }
    T const* begin() const noexcept { return this->data(); }
    T const* end() const noexcept { return this->data() + size_; }

    // Takes what fits of n elements; false when fewer than n are available.
    bool resize(std::size_t n) noexcept
    {
        std::uint64_t cap = storage_->capacity;
        if (cap - first_ < n && cap < first_ + n) storage_->__grow(first_ + n, first_ + size_, 1);
        std::uint64_t available = storage_->capacity - first_;
        size_ = std::min<std::uint64_t>(available, n);
        return available >= n;
    }

    bool push_back(T const& value)
    {
        T copy(value);  // value may live in this array
        std::size_t slot = first_ + size_;
        if (storage_->capacity <= slot && !storage_->__grow(slot + 1, slot, 2)) return false;
        storage_->data[slot] = copy;
        ++size_;
        return true;
    }

    bool push_back_n(T const& value, std::size_t n)
    {
        T copy(value);
        std::size_t needed = size_ + n;
        std::uint64_t cap = storage_->capacity;
        if (cap - first_ < needed && cap < first_ + needed) storage_->__grow(first_ + needed, first_ + size_, 2);
        if (storage_->capacity - first_ < needed) return false;
        T* p = storage_->data + first_ + size_;
        size_ = needed;
        std::fill(p, p + n, copy);
        return true;
    }

    // Deep copy. A handle on the same block as src gets a block of its own first.
    bool copy(dense1D const& src)
    {
        if (&src == this) return true;
        if (src.storage_ == storage_) this->__detach();
        size_ = 0;
        if (!resize(src.size_)) return false;
        if (src.size_ == 0) return true;
        std::copy(src.storage_->data + src.first_, src.storage_->data + src.first_ + src.size_,
                  storage_->data + first_);
        return true;
    }

    void clear() noexcept { size_ = 0; }
    void clear_hard() { this->__detach(); }
};

}  // namespace qv7
TESSARIUM_EXPORT_END
