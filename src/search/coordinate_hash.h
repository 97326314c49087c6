// Nodes grouped by exactly equal coordinates, for searches of half-width 0.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace qv7 {

// With a half-width of 0 the box around p is p itself and the distance test asks for a sum of
// squared differences of 0, so a node c is close to p exactly when every coordinate of c equals that
// of p (-0.0 equal to 0.0) and all are finite: an infinite difference is NaN and a NaN never equals.
// Each group of equal coordinates keeps its two first-listed nodes, which is all a search for the
// first-listed node other than the query needs.
template <unsigned D>
class __coordinate_hash {
    struct slot {
        unsigned first;   // NONE_ID marks an empty slot
        unsigned second;  // NONE_ID while the group has one node
    };

public:
    // Groups the listed nodes (distinct, all below pos.cols()) in list order. False when memory runs
    // out.
    bool build(dense2D<double> const& pos, dense1D<unsigned, 8> const& list)
    {
        pos_ = &pos;
        unsigned bits = 4;
        while ((std::size_t(1) << bits) < 2 * list.size()) ++bits;
        std::size_t wanted = std::size_t(1) << bits;
        shift_ = 64 - bits;
        if (!slots_.resize(wanted)) return false;
        std::fill(slots_.begin(), slots_.end(), slot{NONE_ID, NONE_ID});
        mask_ = wanted - 1;
        for (unsigned node : list) {
            double const* c = pos.col(node);
            if (!__finite(c)) continue;
            slot& s = slots_[__find(c)];
            if (s.first == NONE_ID)
                s.first = node;
            else if (s.second == NONE_ID)
                s.second = node;
        }
        return true;
    }

    // The first-listed node other than node i with the coordinates of i, or NONE_ID.
    unsigned first_other(unsigned i) const noexcept
    {
        double const* c = pos_->col(i);
        if (!__finite(c)) return NONE_ID;
        slot const& s = slots_[__find(c)];
        return s.first != i ? s.first : s.second;
    }

private:
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
        std::size_t i = static_cast<std::size_t>(__hash(c) >> shift_);
        while (slots_[i].first != NONE_ID && !__equal(pos_->col(slots_[i].first), c)) i = (i + 1) & mask_;
        return i;
    }

    dense2D<double> const* pos_ = nullptr;
    dense1D<slot, 8> slots_;
    std::size_t mask_ = 0;
    unsigned shift_ = 60;
};

}  // namespace qv7
