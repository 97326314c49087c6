// What dense1D and dense2D have in common: a handle on a shared block, its size and first element.
#pragma once

#include "export.h"
#include "vector_num.h"

#include <cstddef>
#include <cstdint>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

template <class T>
class dense_handle {
public:
    using value_type = T;
    using block_type = vector_num<T, 8>;

    dense_handle() : storage_(new block_type) { storage_->__acquire(); }
    dense_handle(dense_handle const& other) noexcept
        : storage_(other.storage_), size_(other.size_), first_(other.first_)
    {
        storage_->__acquire();
    }
    dense_handle& operator=(dense_handle const& other) noexcept
    {
        __share(other.storage_);
        size_ = other.size_;
        first_ = other.first_;
        return *this;
    }
    ~dense_handle() { storage_->__release(); }

    std::size_t size() const noexcept { return size_; }
    std::size_t first() const noexcept { return first_; }
    // Elements of the block visible from `first`.
    std::size_t capacity() const noexcept { return storage_->capacity - first_; }
    block_type* storage() const noexcept { return storage_; }
    T* data() noexcept { return storage_->data ? storage_->data + first_ : nullptr; }
    T const* data() const noexcept { return storage_->data ? storage_->data + first_ : nullptr; }

    // Points this handle at `block` (count +1 there before -1 on the old one).
    void __share(block_type* block) noexcept
    {
        block->__acquire();
        storage_->__release();
        storage_ = block;
    }
    // Puts a fresh empty block in place of the current one.
    void __detach()
    {
        block_type* fresh = new block_type;
        __share(fresh);
        size_ = 0;
        first_ = 0;
    }
    void __set_size(std::size_t n) noexcept { size_ = n; }
    void __set_first(std::size_t f) noexcept { first_ = f; }

protected:
    block_type* storage_;
    std::size_t size_ = 0;
    std::size_t first_ = 0;
};

}  // namespace qv7
TESSARIUM_EXPORT_END
