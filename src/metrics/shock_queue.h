// The worst-edge-first queue of the gradation minimiser: a binary max-heap on float priorities
// whose push and pop rules fix the order of equal priorities, so that runs reproduce.
#pragma once

#include "platform/huge_pages.h"
#include "tessarium/dense1D.h"
#include "tessarium/fixed.h"

#include <algorithm>
#include <cfloat>
#include <cstdint>
#include <vector>

namespace qv7 {

// Priority, then (stamp, i, j): the directed edge from i, the node to change, to j.
struct __shock_entry {
    float priority;
    vector_fixed<unsigned, 3> words;
};

// Entry k (children 2k + 1 and 2k + 2) is stored at slot k + 1 of pages of 2 MiB aligned on their
// size and backed by large pages where the system allows: two siblings always share a cache line,
// and a pop down the lower levels misses the address cache far less often. Pages are never moved,
// so the heap grows without copying and holds no spare half.
class __shock_queue {
public:
    // The float nearest to v, clamped to the largest finite float.
    static float priority_of(double v) noexcept { return static_cast<float>(std::min(v, double(FLT_MAX))); }

    bool empty() const noexcept { return size_ == 0; }
    std::size_t size() const noexcept { return size_; }
    // Entries pushed since construction, and the largest size reached.
    std::size_t pushes() const noexcept { return pushes_; }
    std::size_t peak() const noexcept { return peak_; }

    // False when the heap could not grow.
    bool push(double value, unsigned stamp, unsigned i, unsigned j)
    {
        if (((size_ + 1) >> shift) >= pages_.size() && !add_page()) return false;
        ++pushes_;
        peak_ = std::max(peak_, size_ + 1);
        sift_up(size_++, __shock_entry{priority_of(value), {{stamp, i, j}}});
        return true;
    }

    // The root goes; the last entry is sifted down from the root, where a right child is taken
    // only when strictly greater than the left, and an equal child moves up. The priorities met
    // on that path never grow, so the children smaller than the moved entry form its tail: going
    // down to a leaf without comparing with the moved entry, then climbing back as a push does
    // (a parent moves down only when strictly smaller), stops at the same slot. Priorities are
    // never NaN: only measures above the bound enter.
    __shock_entry pop() noexcept
    {
        __shock_entry top = at(0);
        std::size_t n = --size_;
        if (n == 0) return top;
        std::size_t k = 0;
        for (std::size_t c = 1; c < n; c = 2 * k + 1) {
            if (16 * k + 15 < n) {  // four levels down, four lines
                __builtin_prefetch(&at(16 * k + 15));
                __builtin_prefetch(&at(16 * k + 19));
                __builtin_prefetch(&at(16 * k + 23));
                __builtin_prefetch(&at(16 * k + 27));
            }
            if (c + 1 < n && at(c + 1).priority > at(c).priority) ++c;
            at(k) = at(c);
            k = c;
        }
        sift_up(k, at(n));
        return top;
    }

private:
    static constexpr unsigned shift = 17;  // entries of a page
    static constexpr std::size_t page_size = std::size_t(1) << shift;
    static constexpr std::size_t page_bytes = page_size * sizeof(__shock_entry);
    static_assert(page_bytes % huge_page_bytes == 0, "a page is whole large pages");

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

    // Puts e at hole k or above it: a parent moves down only when strictly smaller.
    void sift_up(std::size_t k, __shock_entry e) noexcept
    {
        while (k > 0) {
            std::size_t p = (k - 1) / 2;
            if (!(at(p).priority < e.priority)) break;
            at(k) = at(p);
            k = p;
        }
        at(k) = e;
    }

    bool add_page()
    {
        std::size_t slack = huge_page_bytes / sizeof(__shock_entry);
        dense1D<__shock_entry, 8> block(page_size + slack);
        if (block.size() != page_size + slack) return false;
        auto address = reinterpret_cast<std::uintptr_t>(block.data());
        std::size_t skip = ((huge_page_bytes - address % huge_page_bytes) % huge_page_bytes) / sizeof(__shock_entry);
        pages_.push_back(block.data() + skip);
        __advise_huge_pages(pages_.back(), page_bytes);
        blocks_.push_back(block);
        return true;
    }
};

}  // namespace qv7
