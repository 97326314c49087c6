// The worst-edge-first queue of the gradation minimiser: a binary max-heap on float priorities
// whose push and pop rules fix the order of equal priorities, so that runs reproduce.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/fixed.h"

#include <algorithm>
#include <cfloat>

namespace qv7 {

// Priority, then (stamp, i, j): the directed edge from i, the node to change, to j.
struct __shock_entry {
    float priority;
    vector_fixed<unsigned, 3> words;
};

class __shock_queue {
public:
    // The float nearest to v, clamped to the largest finite float.
    static float priority_of(double v) noexcept { return static_cast<float>(std::min(v, double(FLT_MAX))); }

    bool empty() const noexcept { return heap_.empty(); }
    std::size_t size() const noexcept { return heap_.size(); }

    // False when the heap could not grow.
    bool push(double value, unsigned stamp, unsigned i, unsigned j)
    {
        std::size_t k = heap_.size();
        __shock_entry e{priority_of(value), {{stamp, i, j}}};
        heap_.push_back(e);
        if (heap_.size() != k + 1) return false;
        __shock_entry* h = heap_.data();
        // A parent moves down only when strictly smaller.
        while (k > 0) {
            std::size_t p = (k - 1) / 2;
            if (!(h[p].priority < e.priority)) break;
            h[k] = h[p];
            k = p;
        }
        h[k] = e;
        return true;
    }

    __shock_entry pop() noexcept
    {
        __shock_entry* h = heap_.data();
        __shock_entry top = h[0];
        std::size_t n = heap_.size() - 1;
        __shock_entry moved = h[n];
        heap_.resize(n);
        if (n == 0) return top;
        // The right child wins only when strictly greater; an equal child moves up.
        std::size_t k = 0;
        for (std::size_t c = 1; c < n; c = 2 * k + 1) {
            if (c + 1 < n && h[c + 1].priority > h[c].priority) ++c;
            if (moved.priority > h[c].priority) break;
            h[k] = h[c];
            k = c;
        }
        h[k] = moved;
        return top;
    }

private:
    dense1D<__shock_entry, 8> heap_;
};

}  // namespace qv7
