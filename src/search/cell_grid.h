// Nodes bucketed by the cells of a uniform grid, for box queries of a half-width known in advance.
#pragma once

#include "core/hash_set.h"
#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qv7 {

// Cells are at least twice the half-width wide, so a query box meets at most two or three cells per
// axis; only cells that hold nodes are stored, so the cell count follows the node count and not the
// extent. A cell index is a clamped, monotone function of the coordinate: every node inside a box
// lies in a cell between those of the box corners, which makes the candidates of a query a
// superset of the nodes in its box, whatever the coordinates (infinities and NaN included).
template <unsigned D>
class __cell_grid {
public:
    // Buckets the listed nodes (distinct, all below pos.cols()). Nodes with a NaN coordinate lie in no
    // box and are left out. False when memory runs out.
    bool build(dense2D<double> const& pos, dense1D<unsigned, 8> const& list, double half_width)
    {
        __set_axes(pos, list, half_width);
        std::size_t n = list.size();
        dense1D<unsigned, 8> cell_of(n);
        if (cell_of.size() != n || !starts_.resize(0)) return false;
        index_ = hash_map<unsigned long, unsigned>(n);
        for (std::size_t j = 0; j < n; ++j) {
            double const* c = pos.col(list[j]);
            if (__has_nan(c)) {
                cell_of[j] = NONE_ID;
                continue;
            }
            unsigned long key = __key(c);
            unsigned const* found = index_.find(key);
            unsigned cell = found ? *found : static_cast<unsigned>(starts_.size());
            if (!found) {
                index_.insert_or_assign(key, cell);
                if (!starts_.push_back(0)) return false;
            }
            ++starts_[cell];
            cell_of[j] = cell;
        }
        return __scatter(list, cell_of);
    }

    // Calls f(node) for every node of every cell that meets the box [lo, hi].
    template <class F>
    void for_each_candidate(double const* lo, double const* hi, F&& f) const
    {
        unsigned long first[D], last[D], at[D];
        for (unsigned k = 0; k < D; ++k) {
            first[k] = at[k] = __cell(lo[k], k);
            last[k] = __cell(hi[k], k);
            if (last[k] < first[k]) return;
        }
        for (;;) {
            if (unsigned const* cell = index_.find(__pack(at)))
                for (unsigned s = starts_[*cell], e = starts_[*cell + 1]; s < e; ++s) f(order_[s]);
            unsigned k = 0;
            while (k < D && at[k] == last[k]) {
                at[k] = first[k];
                ++k;
            }
            if (k == D) return;
            ++at[k];
        }
    }

private:
    static constexpr unsigned bits = 63 / D;
    static constexpr unsigned long max_cells = 1ul << bits;

    // Origin and cell width per axis from the finite coordinates of the listed nodes.
    void __set_axes(dense2D<double> const& pos, dense1D<unsigned, 8> const& list, double half_width)
    {
        double lo[D], hi[D];
        std::fill(lo, lo + D, std::numeric_limits<double>::infinity());
        std::fill(hi, hi + D, -std::numeric_limits<double>::infinity());
        for (unsigned node : list) {
            double const* c = pos.col(node);
            for (unsigned k = 0; k < D; ++k) {
                if (!std::isfinite(c[k])) continue;
                lo[k] = std::min(lo[k], c[k]);
                hi[k] = std::max(hi[k], c[k]);
            }
        }
        for (unsigned k = 0; k < D; ++k) {
            if (!(lo[k] <= hi[k])) lo[k] = hi[k] = 0.0;
            double extent = hi[k] - lo[k];
            double width = std::max(2.0 * half_width, extent / static_cast<double>(max_cells - 1));
            if (!(width > 0.0)) width = 1.0;
            origin_[k] = lo[k];
            inv_width_[k] = 1.0 / width;
            double cells = std::floor(extent * inv_width_[k]) + 1.0;
            cells_[k] = cells < static_cast<double>(max_cells) ? static_cast<unsigned long>(cells) : max_cells;
        }
    }

    static bool __has_nan(double const* c) noexcept
    {
        for (unsigned k = 0; k < D; ++k)
            if (std::isnan(c[k])) return true;
        return false;
    }

    // Clamped, so that a box reaching beyond the nodes, or to infinity, stays on the grid.
    unsigned long __cell(double x, unsigned k) const noexcept
    {
        double t = std::floor((x - origin_[k]) * inv_width_[k]);
        if (!(t > 0.0)) return 0;
        double top = static_cast<double>(cells_[k] - 1);
        return t < top ? static_cast<unsigned long>(t) : cells_[k] - 1;
    }

    unsigned long __pack(unsigned long const* at) const noexcept
    {
        unsigned long key = 0;
        for (unsigned k = D; k-- > 0;) key = (key << bits) | at[k];
        return key;
    }

    unsigned long __key(double const* c) const noexcept
    {
        unsigned long at[D];
        for (unsigned k = 0; k < D; ++k) at[k] = __cell(c[k], k);
        return __pack(at);
    }

    // Turns the counts into starts and lists the nodes cell by cell, in list order within a cell.
    bool __scatter(dense1D<unsigned, 8> const& list, dense1D<unsigned, 8> const& cell_of)
    {
        if (!starts_.push_back(0)) return false;
        unsigned sum = 0;
        for (unsigned& c : starts_) {
            unsigned here = c;
            c = sum;
            sum += here;
        }
        if (!order_.resize(sum)) return false;
        dense1D<unsigned, 8> next;
        if (!next.copy(starts_)) return false;
        for (std::size_t j = 0; j < list.size(); ++j)
            if (cell_of[j] != NONE_ID) order_[next[cell_of[j]]++] = list[j];
        return true;
    }

    double origin_[D];
    double inv_width_[D];
    unsigned long cells_[D];
    hash_map<unsigned long, unsigned> index_;  // cell key to cell number
    dense1D<unsigned, 8> starts_;              // cell c holds order_[starts_[c] .. starts_[c + 1])
    dense1D<unsigned, 8> order_;
};

}  // namespace qv7
