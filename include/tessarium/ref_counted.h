// Reference-counted storage base and raw storage functions of the math1 platform layer.
#pragma once

#include "export.h"
#include <atomic>
#include <cstddef>
#include <cstdint>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace math1 {

// Raw storage for array blocks. Returns null when memory is exhausted; never throws.
void* __vector_num_alloc(std::size_t bytes) noexcept;
void __vector_num_free(void* raw) noexcept;
// Copies `bytes` from `offset` into the block at from_raw to the same offset into the block at
// to_raw, for a block that grows into another; the block at from_raw is freed next, so its pages
// may be taken instead of copied.
void __vector_num_move(void* to_raw, void* from_raw, std::size_t offset, std::size_t bytes) noexcept;

class ref_counted {
public:
    ref_counted() = default;
    ref_counted(ref_counted const&) = delete;
    ref_counted& operator=(ref_counted const&) = delete;
    virtual ~ref_counted() = default;

    void __acquire() noexcept { refcount.fetch_add(1, std::memory_order_relaxed); }
    // Drops one reference and destroys the block when it held the last one.
    void __release() noexcept
    {
        if (refcount.fetch_sub(1, std::memory_order_acq_rel) == 1) __destroy();
    }
    // Ends the life of a block whose count dropped to 0.
    void __destroy() noexcept;

    std::atomic<std::int32_t> refcount{0};
};

}  // namespace math1
}  // namespace qv7
TESSARIUM_EXPORT_END
