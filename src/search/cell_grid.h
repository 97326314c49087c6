// Nodes bucketed by the cells of a uniform grid, for box queries of a half-width known in advance.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace qv7 {

// Cells are twice the half-width wide whatever the spread of the nodes, so a query box meets two or
// three cells per axis and one far node cannot crowd the others into a few cells. A cell is named by
// its integer coordinates, hashed; only cells that hold nodes are stored. Where a coordinate divided
// by the width no longer fits 2^52, the coordinate's own bit pattern counts on from there: doubles
// that far out are at least half a width apart, so a box still meets at most four such cells. Every
// step is monotone in the coordinate, infinities included, so every node inside a box lies in a cell
// between those of the box corners, and the candidates of a query are a superset of its hits.
template <unsigned D>
class __cell_grid {
public:
    // Buckets the listed nodes (distinct, all below pos.cols()), keeping list order within a cell.
    // Nodes with a NaN coordinate lie in no box and are left out. False when memory runs out.
    bool build(dense2D<double> const& pos, dense1D<unsigned, 8> const& list, double half_width)
    {
        __set_width(half_width);
        std::size_t n = list.size();
        dense1D<unsigned, 8> cell_of(n);
        // Room for a cell per node up front: the records are large, and growing them would copy.
        if (cell_of.size() != n || !cells_.resize(n + 1) || !cells_.resize(0) || !__size_tables(n)) return false;
        for (std::size_t j = 0; j < n; ++j) {
            double const* c = pos.col(list[j]);
            cell_of[j] = NONE_ID;
            if (__has_nan(c)) continue;
            cell_record cell{};
            for (unsigned k = 0; k < D; ++k) cell.at[k] = __cell(c[k]);
            std::uint64_t h = __hash(cell.at);
            std::size_t s = __find(cell.at, h);
            if (slots_[s] == empty_slot) {
                slots_[s] = (h & tag_mask) | cells_.size();
                if (!cells_.push_back(cell)) return false;
                filter_[__filter_bit(h) / 64] |= std::uint64_t(1) << (__filter_bit(h) % 64);
            }
            unsigned number = static_cast<unsigned>(slots_[s]);
            ++cells_[number].start;  // a count until __scatter
            cell_of[j] = number;
        }
        return __scatter(list, cell_of);
    }

    // Calls f(node) for the nodes of every cell that meets the box [lo, hi], in list order within a
    // cell; f returns false to skip the rest of that cell.
    template <class F>
    void for_each_candidate(double const* lo, double const* hi, F&& f) const
    {
        __for_each_cell(lo, hi, [&](std::int64_t const* at, std::uint64_t h) {
            if (!__may_hold(h)) return;
            std::uint64_t slot = slots_[__find(at, h)];
            if (slot == empty_slot) return;
            cell_record const* cell = &cells_[static_cast<unsigned>(slot)];
            for (unsigned s = cell[0].start, e = cell[1].start; s < e && f(order_[s]); ++s) {
            }
        });
    }

    // Asks the caches for what a coming search of the box [lo, hi] reads: the filter words of its
    // cells, or, once these are at hand, the slots of the cells that pass the filter. A search
    // waits on these two reads; asking ahead for both, a few searches apart, lets them overlap.
    void prefetch(double const* lo, double const* hi, bool slots) const
    {
        __for_each_cell(lo, hi, [&](std::int64_t const*, std::uint64_t h) {
            if (!slots)
                __builtin_prefetch(&filter_[__filter_bit(h) / 64]);
            else if (__may_hold(h))
                __builtin_prefetch(&slots_[static_cast<std::size_t>(h >> (64 - slot_bits_))]);
        });
    }

private:
    static constexpr double fine_cells = 4503599627370496.0;  // 2^52
    static constexpr std::uint64_t empty_slot = ~std::uint64_t(0);
    static constexpr std::uint64_t tag_mask = ~std::uint64_t(0) << 32;

    // A cell's place and the start of its nodes in order_, with the start of the next cell after it.
    struct cell_record {
        std::int64_t at[D];
        unsigned start;
    };

    void __set_width(double half_width)
    {
        width_ = half_width > 0.0 ? 2.0 * half_width : 1.0;
        inverse_width_ = 1.0 / width_;  // infinite for the smallest widths, which divide instead
        coarse_ = width_ * fine_cells;
        // With no coarse range the infinities take the cells just beyond the largest finite double.
        first_coarse_ = std::isinf(coarse_) ? static_cast<std::int64_t>(std::floor(DBL_MAX * inverse_width_)) + 1
                                            : static_cast<std::int64_t>(fine_cells);
    }

    static std::int64_t __bits(double x) noexcept
    {
        std::int64_t b;
        std::memcpy(&b, &x, sizeof b);
        return b;
    }

    // floor(x / width) while that fits 2^52, then on by one cell per double. Not NaN.
    std::int64_t __cell(double x) const noexcept
    {
        if (x >= coarse_) return first_coarse_ + (__bits(x) - __bits(coarse_));
        if (x <= -coarse_) return -first_coarse_ - (__bits(-x) - __bits(coarse_));
        double t = std::isinf(inverse_width_) ? x / width_ : x * inverse_width_;  // at most 2^52
        return static_cast<std::int64_t>(std::floor(t));
    }

    // Calls f(at, hash) for every cell that meets the box [lo, hi]; none when a bound is NaN.
    template <class F>
    void __for_each_cell(double const* lo, double const* hi, F&& f) const
    {
        std::int64_t first[D], last[D], at[D];
        for (unsigned k = 0; k < D; ++k) {
            if (std::isnan(lo[k]) || std::isnan(hi[k])) return;  // nothing passes a NaN bound
            first[k] = at[k] = __cell(lo[k]);
            last[k] = __cell(hi[k]);
            if (last[k] < first[k]) return;
        }
        for (;;) {
            f(static_cast<std::int64_t const*>(at), __hash(at));
            unsigned k = 0;
            while (k < D && at[k] == last[k]) {
                at[k] = first[k];
                ++k;
            }
            if (k == D) return;
            ++at[k];
        }
    }

    bool __may_hold(std::uint64_t h) const noexcept
    {
        return (filter_[__filter_bit(h) / 64] >> (__filter_bit(h) % 64)) & 1u;
    }

    static bool __has_nan(double const* c) noexcept
    {
        for (unsigned k = 0; k < D; ++k)
            if (std::isnan(c[k])) return true;
        return false;
    }

    static std::uint64_t __hash(std::int64_t const* at) noexcept
    {
        std::uint64_t h = 0;
        for (unsigned k = 0; k < D; ++k) {
            h = (h ^ static_cast<std::uint64_t>(at[k])) * 0x9E3779B97F4A7C15ull;
            h ^= h >> 29;
        }
        return h * 0xBF58476D1CE4E5B9ull;
    }

    // The slot of the cell at, or the empty slot where it would go. A slot holds the high half of
    // the cell's hash above its number, so that most other cells are told apart without a look.
    std::size_t __find(std::int64_t const* at, std::uint64_t h) const noexcept
    {
        std::size_t mask = slots_.size() - 1;
        std::size_t s = static_cast<std::size_t>(h >> (64 - slot_bits_));
        for (std::uint64_t v; (v = slots_[s]) != empty_slot; s = (s + 1) & mask)
            if ((v & tag_mask) == (h & tag_mask) && std::equal(at, at + D, cells_[static_cast<unsigned>(v)].at)) break;
        return s;
    }

    // Most cells that a box meets hold nothing, and the table is too large for the caches: a bit
    // per hashed key, about 16 bits per node, rules out nearly all of them before the look-up.
    std::size_t __filter_bit(std::uint64_t h) const noexcept
    {
        return static_cast<std::size_t>((h * 0x9E3779B97F4A7C15ull) >> filter_shift_);
    }

    // A slot table at most half full with one cell per node, and the filter.
    bool __size_tables(std::size_t n)
    {
        slot_bits_ = 4;
        while ((std::size_t(1) << slot_bits_) < 2 * n) ++slot_bits_;
        std::size_t filter_bits = std::size_t(1) << (slot_bits_ + 3);
        filter_shift_ = 64 - (slot_bits_ + 3);
        if (!slots_.resize(std::size_t(1) << slot_bits_) || !filter_.resize(filter_bits / 64)) return false;
        std::fill(slots_.begin(), slots_.end(), empty_slot);
        std::fill(filter_.begin(), filter_.end(), 0);
        return true;
    }

    // Turns the counts into starts, closed by a last record, and lists the nodes cell by cell, in
    // list order within a cell.
    bool __scatter(dense1D<unsigned, 8> const& list, dense1D<unsigned, 8> const& cell_of)
    {
        if (!cells_.push_back(cell_record{})) return false;
        dense1D<unsigned, 8> next(cells_.size());
        if (next.size() != cells_.size()) return false;
        unsigned sum = 0;
        for (std::size_t c = 0; c < cells_.size(); ++c) {
            unsigned here = cells_[c].start;
            next[c] = cells_[c].start = sum;
            sum += here;
        }
        if (!order_.resize(sum)) return false;
        for (std::size_t j = 0; j < list.size(); ++j)
            if (cell_of[j] != NONE_ID) order_[next[cell_of[j]]++] = list[j];
        return true;
    }

    double width_ = 1.0;
    double inverse_width_ = 1.0;
    double coarse_ = fine_cells;       // from here on, one cell per double
    std::int64_t first_coarse_ = 0;    // the cell of coarse_
    dense1D<std::uint64_t, 8> slots_;  // hash tag and cell number, empty_slot for none
    dense1D<cell_record, 8> cells_;    // cell c holds order_[cells_[c].start .. cells_[c + 1].start)
    dense1D<unsigned, 8> order_;
    dense1D<std::uint64_t, 8> filter_;  // bit __filter_bit(hash) set for every stored cell
    unsigned filter_shift_ = 57;
    unsigned slot_bits_ = 4;
};

}  // namespace qv7
