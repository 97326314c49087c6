// Slot array of fixed-width records, one record per column of a matrix.
#pragma once

#include "export.h"
#include "dense2D.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

template <class T, unsigned W>
class dynamic_array {
public:
    // Stores the W values at `record` in column `slot`, growing the slot count when it appends.
    bool __construct(std::size_t slot, T const* record)
    {
        if (slot >= items.cols()) {
            if (slot == items.cols()) __reserve_for(slot);
            if (!items.resize(W, slot + 1)) return false;
        }
        std::copy(record, record + W, items.col(slot));
        return true;
    }

    std::size_t size() const noexcept { return items.cols(); }
    T* operator[](std::size_t slot) noexcept { return items.col(slot); }
    T const* operator[](std::size_t slot) const noexcept { return items.col(slot); }

    dense2D<T> items;
    dense1D<unsigned long, 8> free_flags;  // bit vector of released slots
    dense1D<unsigned long, 8> free_slots;  // stack of released slots

private:
    // Doubles the column storage (at least 8 columns) when the slot does not fit, keeping the shape.
    void __reserve_for(std::size_t slot)
    {
        std::size_t room = items.capacity();
        std::size_t column_capacity = items.ld() ? room / items.ld() : room;
        if (column_capacity > slot) return;
        std::size_t want = std::max<std::size_t>(2 * slot, 8);
        std::size_t old_rows = items.rows();
        if ((items.rows() < W || want > slot) && items.resize(W, want)) items.resize(old_rows, slot);
    }
};

}  // namespace qv7
TESSARIUM_EXPORT_END
