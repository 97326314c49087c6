// The gradation queue as it was before large pages and the descent to a leaf, kept to time
// against it in the same run.
#pragma once

#include "metrics/shock_queue.h"

#include "tessarium/dense1D.h"
#include "tessarium/fixed.h"

#include <algorithm>
#include <cfloat>
#include <cstdint>
#include <vector>

namespace bench_gradation {

using qv7::__shock_entry;
using qv7::dense1D;

// Entry k (children 2k + 1 and 2k + 2) is stored at slot k + 1 of pages whose starts are aligned
// on 64 bytes: two siblings always share a cache line, and so do the four grandchildren of an
// entry. Pages are never moved, so the heap grows without copying and holds no spare half.
class previous_shock_queue {
public:
    // The float nearest to v, clamped to the largest finite float.
    static float priority_of(double v) noexcept { return qv7::__shock_queue::priority_of(v); }

    bool empty() const noexcept { return size_ == 0; }
    std::size_t size() const noexcept { return size_; }
    // Entries pushed since construction, and the largest size reached.
    std::size_t pushes() const noexcept { return pushes_; }
    std::size_t peak() const noexcept { return peak_; }

    // False when the heap could not grow.
    bool push(double value, unsigned stamp, unsigned i, unsigned j)
    {
        if (((size_ + 1) >> shift) >= pages_.size() && !add_page()) return false;
        __shock_entry e{priority_of(value), {{stamp, i, j}}};
        // A parent moves down only when strictly smaller.
        std::size_t k = size_++;
        ++pushes_;
        peak_ = std::max(peak_, size_);
        while (k > 0) {
            std::size_t p = (k - 1) / 2;
            if (!(at(p).priority < e.priority)) break;
            at(k) = at(p);
            k = p;
        }
        at(k) = e;
        return true;
    }

    __shock_entry pop() noexcept
    {
        __shock_entry top = at(0);
        std::size_t n = --size_;
        __shock_entry moved = at(n);
        if (n == 0) return top;
        // The right child wins only when strictly greater; an equal child moves up.
        std::size_t k = 0;
        for (std::size_t c = 1; c < n; c = 2 * k + 1) {
            if (16 * k + 15 < n) {  // four levels down, four lines
                __builtin_prefetch(&at(16 * k + 15));
                __builtin_prefetch(&at(16 * k + 19));
                __builtin_prefetch(&at(16 * k + 23));
                __builtin_prefetch(&at(16 * k + 27));
            }
            if (c + 1 < n && at(c + 1).priority > at(c).priority) ++c;
            if (moved.priority > at(c).priority) break;
            at(k) = at(c);
            k = c;
        }
        at(k) = moved;
        return top;
    }

private:
    static constexpr unsigned shift = 16;  // 1 MiB pages, given back to the system when freed
    static constexpr std::size_t page_size = std::size_t(1) << shift;

    std::vector<dense1D<__shock_entry, 8>> blocks_;
    std::vector<__shock_entry*> pages_;
    std::size_t size_ = 0;
    std::size_t pushes_ = 0;
    std::size_t peak_ = 0;

    __shock_entry& at(std::size_t k) noexcept
    {
        std::size_t slot = k + 1;
        return pages_[slot >> shift][slot & (page_size - 1)];
    }

    bool add_page()
    {
        dense1D<__shock_entry, 8> block(page_size + 3);
        if (block.size() != page_size + 3) return false;
        auto address = reinterpret_cast<std::uintptr_t>(block.data());
        std::size_t skip = ((64 - address % 64) % 64) / sizeof(__shock_entry);
        pages_.push_back(block.data() + skip);
        blocks_.push_back(block);
        return true;
    }
};

}  // namespace bench_gradation
