// Nodes grouped by exactly equal coordinates, for searches of half-width 0.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace qv7 {

// With a half-width of 0 the box around p is p itself and the distance test asks for a sum of
// squared differences of 0, so a node c is close to p exactly when every coordinate of c equals that
// of p (-0.0 equal to 0.0) and all are finite: an infinite difference is NaN and a NaN never equals.
// Each group of equal coordinates keeps its two first-listed nodes, which is all a search for the
// first-listed node other than the query needs. The table grows with the groups, not the nodes:
// duplicates are the point of the search, so it stays small enough for the caches.
template <unsigned D>
class __coordinate_hash {
public:
    // Groups the listed nodes (distinct, all below pos.cols()) in list order. False when memory runs
    // out.
    bool build(dense2D<double> const& pos, dense1D<unsigned, 8> const& list)
    {
        pos_ = &pos;
        if (!group_of_.resize(list.size()) || !first_.resize(0) || !second_.resize(0) || !__reshape(4)) return false;
        for (std::size_t j = 0; j < list.size(); ++j) {
            unsigned node = list[j];
            double const* c = pos.col(node);
            group_of_[j] = NONE_ID;
            if (!__finite(c)) continue;
            std::size_t s = __find(c);
            unsigned g = slots_[s];
            if (g == NONE_ID) {
                g = static_cast<unsigned>(first_.size());
                if (!first_.push_back(node) || !second_.push_back(NONE_ID)) return false;
                slots_[s] = g;
                if (2 * first_.size() > slots_.size() && !__reshape(bits_ + 1)) return false;
            } else if (second_[g] == NONE_ID) {
                second_[g] = node;
            }
            group_of_[j] = g;
        }
        return true;
    }

    // The first-listed node other than node i with the coordinates of i, or NONE_ID.
    unsigned first_other(unsigned i) const noexcept
    {
        double const* c = pos_->col(i);
        return __finite(c) ? __other(slots_[__find(c)], i) : NONE_ID;
    }

    // The same for node i = list[j] of the list the table was built on, without a look-up.
    unsigned first_other_listed(std::size_t j, unsigned i) const noexcept { return __other(group_of_[j], i); }

private:
    unsigned __other(unsigned g, unsigned i) const noexcept
    {
        if (g == NONE_ID) return NONE_ID;
        return first_[g] != i ? first_[g] : second_[g];
    }

    static bool __finite(double const* c) noexcept
    {
        for (unsigned k = 0; k < D; ++k)
            if (!std::isfinite(c[k])) return false;
        return true;
    }

    static bool __equal(double const* a, double const* b) noexcept
    {
        for (unsigned k = 0; k < D; ++k)
            if (!(a[k] == b[k])) return false;
        return true;
    }

    // Equal finite coordinates have equal bits once -0.0 is turned into 0.0. Coordinates read from
    // single precision have zero low bits, so the slot comes from the high bits of the hash.
    static std::uint64_t __hash(double const* c) noexcept
    {
        std::uint64_t h = 0;
        for (unsigned k = 0; k < D; ++k) {
            double x = c[k] == 0.0 ? 0.0 : c[k];
            std::uint64_t bits;
            std::memcpy(&bits, &x, sizeof bits);
            h = (h ^ bits) * 0x9E3779B97F4A7C15ull;
            h ^= h >> 32;
        }
        return h * 0x9E3779B97F4A7C15ull;
    }

    // The slot of the group of c, or the empty slot where it would go.
    std::size_t __find(double const* c) const noexcept
    {
        std::size_t mask = slots_.size() - 1;
        std::size_t s = static_cast<std::size_t>(__hash(c) >> (64 - bits_));
        for (unsigned g; (g = slots_[s]) != NONE_ID && !__equal(pos_->col(first_[g]), c);) s = (s + 1) & mask;
        return s;
    }

    // A table of 2^bits slots holding the groups made so far.
    bool __reshape(unsigned bits)
    {
        bits_ = bits;
        if (!slots_.resize(std::size_t(1) << bits)) return false;
        std::fill(slots_.begin(), slots_.end(), NONE_ID);
        for (unsigned g = 0; g < first_.size(); ++g) slots_[__find(pos_->col(first_[g]))] = g;
        return true;
    }

    dense2D<double> const* pos_ = nullptr;
    dense1D<unsigned, 8> slots_;     // group numbers, NONE_ID for an empty slot
    dense1D<unsigned, 8> first_;     // per group, its first-listed node
    dense1D<unsigned, 8> second_;    // per group, its second-listed node or NONE_ID
    dense1D<unsigned, 8> group_of_;  // per place in the list, the group, NONE_ID for a non-finite node
    unsigned bits_ = 0;
};

}  // namespace qv7
