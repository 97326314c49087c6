// The pairing walk over a filled boundary finder: equal boundaries in one bucket are paired off
// and their elements written as each other's neighbours.
#pragma once

#include "connectivity/siever.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

namespace qv7 {
namespace elfe_algo {

// Writes an element number at the row and column of a boundary ID in a neighbours array.
template <class Finder, class Neighbors>
struct internal_neighbors_updater;

template <class Finder>
struct internal_neighbors_updater<Finder, dense2D<unsigned>> {
    explicit internal_neighbors_updater(dense2D<unsigned>& n) noexcept : neighbors(n) {}
    void operator()(unsigned long id, unsigned long element) const noexcept
    {
        neighbors(id % Finder::stride, id / Finder::stride) = static_cast<unsigned>(element);
    }
    dense2D<unsigned>& neighbors;
};

// Told of every boundary that found no partner; does nothing.
struct null_neighbors_processor {
    void operator()(unsigned long) const noexcept {}
};

// Pairs the entry at `pos` with the later entries of its chain. False when mode 2 finds the mesh
// not manifold or not consistently oriented.
template <class Finder, class Updater, class Processor>
bool __pair_boundary(Finder& finder, Updater& update, Processor& process, unsigned long* s, std::size_t pos,
                     int mode)
{
    constexpr unsigned long vacant = siever::vacant;
    unsigned long cur = s[pos];
    std::size_t last = pos;
    unsigned long last_id = cur;
    unsigned matches = 0;
    finder.load_boundary(cur);
    for (std::size_t q = siever::next(s, pos); q != siever::chain_end; q = siever::next(s, q)) {
        unsigned long oth = s[q];
        if (oth == vacant) continue;
        int sense = finder.boundary_comp_second(oth);
        if (sense == 0) continue;  // a hash collision
        if (mode == 0) {
            update(cur, Finder::element_of(oth));
            update(oth, Finder::element_of(cur));
            s[q] = vacant;
        } else if (mode == 1) {
            if (matches > 0) {
                update(last_id, NONE_ID);
                s[last] = vacant;
            }
        } else if (sense != -1 || matches > 0) {
            return false;  // an end of an edge has no sense: its comparison never gives -1
        }
        last = q;
        last_id = oth;
        ++matches;
    }
    if (matches == 0) {
        process(cur);
        return true;
    }
    if (mode > 0) {
        bool pair = matches == 1;
        update(cur, pair ? Finder::element_of(last_id) : NONE_ID);
        update(last_id, pair ? Finder::element_of(cur) : NONE_ID);
    }
    s[pos] = vacant;
    s[last] = vacant;
    return true;
}

// Mode 0 chains the elements around a boundary shared by more than two; mode 1 leaves such a
// boundary without neighbour; mode 2 fails on it and on two elements that see a boundary in the
// same sense.
template <class Finder, class Updater, class Processor>
bool process_boundaries(Finder& finder, Updater& updater, Processor& processor, int mode)
{
    siever& sieve = finder.sieve();
    unsigned long* s = sieve.slots();
    for (unsigned long bucket = 0; bucket < sieve.bucket_count(); ++bucket) {
        std::size_t pos = siever::head(bucket);
        if (s[pos] == siever::vacant && s[pos + 1] == siever::vacant) continue;
        for (; pos != siever::chain_end; pos = siever::next(s, pos)) {
            if (s[pos] == siever::vacant) continue;
            if (!__pair_boundary(finder, updater, processor, s, pos, mode)) return false;
        }
    }
    return true;
}

}  // namespace elfe_algo
}  // namespace qv7
