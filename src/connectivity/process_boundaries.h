// The pairing walk over a filled boundary finder: equal boundaries in one bucket are paired off
// and their elements written as each other's neighbours.
#pragma once

#include "connectivity/chain_window.h"
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

// Holds back the writes of the walk and hands them to the updater in runs, in the same order:
// one tight loop of scattered stores goes faster than stores spread among the misses of the walk.
// Flushed when full and when destroyed, so that the updater has seen every write by the time
// process_boundaries returns, a failed walk included.
template <class Updater>
class __held_updates {
public:
    explicit __held_updates(Updater& updater) noexcept : updater_(updater) {}
    __held_updates(__held_updates const&) = delete;
    __held_updates& operator=(__held_updates const&) = delete;
    ~__held_updates() { flush(); }

    void operator()(unsigned long id, unsigned long element) noexcept
    {
        if (count_ == run) flush();
        ids_[count_] = id;
        elements_[count_++] = element;
    }
    void flush() noexcept
    {
        for (unsigned k = 0; k < count_; ++k) updater_(ids_[k], elements_[k]);
        count_ = 0;
    }

private:
    static constexpr unsigned run = 512;
    Updater& updater_;
    unsigned count_ = 0;
    unsigned long ids_[run];
    unsigned long elements_[run];
};

// A chain read straight from the table: entries by position, nodes read on each comparison.
template <class Finder>
struct __linked_chain {
    using index = std::size_t;
    static constexpr index end = siever::chain_end;

    Finder& finder;
    unsigned long* s;
    std::size_t head;

    index first() const noexcept { return head; }
    index after(index pos) const noexcept { return siever::next(s, pos); }
    unsigned long value(index pos) const noexcept { return s[pos]; }
    void cancel(index pos) noexcept { s[pos] = siever::vacant; }
    void load(index pos) noexcept { finder.load_boundary(s[pos]); }
    bool candidate(index pos) const noexcept { return s[pos] != siever::vacant; }
    int compare(index pos) const noexcept { return finder.boundary_comp_second(s[pos]); }
};

// A chain gathered by the chain window, held at hand with the nodes of its entries, each read
// once. Cancels stay in the held copy: the table is not walked again.
template <class Finder>
struct __held_chain {
    using index = unsigned;
    using boundary_type = typename Finder::boundary_type;
    static constexpr index end = __gathered_chain::capacity;

    __held_chain(Finder const& finder, __gathered_chain const& chain) noexcept : count(chain.count)
    {
        for (unsigned k = 0; k < count; ++k) {
            values[k] = chain.values[k];
            nodes[k] = finder.nodes_of(values[k]);
            keys[k] = Finder::key(nodes[k]);
        }
    }

    index first() const noexcept { return count == 0 ? end : 0; }
    index after(index k) const noexcept { return k + 1 < count ? k + 1 : end; }
    unsigned long value(index k) const noexcept { return values[k]; }
    void cancel(index k) noexcept { values[k] = siever::vacant; }
    void load(index k) noexcept { current = k; }
    // Different keys mean different nodes, for which every comparison gives 0: such an entry is
    // passed over as a collision would be.
    bool candidate(index k) const noexcept { return keys[k] == keys[current] && values[k] != siever::vacant; }
    int compare(index k) const noexcept { return Finder::compare(nodes[current], nodes[k]); }

    unsigned count;
    index current = 0;
    unsigned long values[__gathered_chain::capacity];
    unsigned long keys[__gathered_chain::capacity];
    boundary_type nodes[__gathered_chain::capacity];
};

// Pairs the entry cur of a chain with the later entries. False when mode 2 finds the mesh not
// manifold or not consistently oriented.
template <class Finder, class Chain, class Updater, class Processor>
bool __pair_boundary(Chain& chain, typename Chain::index at, Updater& update, Processor& process, int mode)
{
    unsigned long cur = chain.value(at);
    typename Chain::index last = at;
    unsigned long last_id = cur;
    unsigned matches = 0;
    chain.load(at);
    for (auto q = chain.after(at); q != Chain::end; q = chain.after(q)) {
        if (!chain.candidate(q)) continue;  // cancelled
        unsigned long oth = chain.value(q);
        int sense = chain.compare(q);
        if (sense == 0) continue;  // a hash collision
        if (mode == 0) {
            update(cur, Finder::element_of(oth));
            update(oth, Finder::element_of(cur));
            chain.cancel(q);
        } else if (mode == 1) {
            if (matches > 0) {
                update(last_id, NONE_ID);
                chain.cancel(last);
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
    chain.cancel(at);
    chain.cancel(last);
    return true;
}

// Every entry of one chain in turn against those behind it.
template <class Finder, class Chain, class Updater, class Processor>
bool __pair_chain(Chain& chain, Updater& updater, Processor& processor, int mode)
{
    for (auto at = chain.first(); at != Chain::end; at = chain.after(at)) {
        if (chain.value(at) == siever::vacant) continue;
        if (!__pair_boundary<Finder>(chain, at, updater, processor, mode)) return false;
    }
    return true;
}

// Mode 0 chains the elements around a boundary shared by more than two; mode 1 leaves such a
// boundary without neighbour; mode 2 fails on it and on two elements that see a boundary in the
// same sense. Buckets are done in ascending order, each chain from its head; chains too long to
// be held are walked by their links.
template <class Finder, class Updater, class Processor>
bool process_boundaries(Finder& finder, Updater& updater, Processor& processor, int mode)
{
    siever& sieve = finder.sieve();
    auto fetch = [&finder](unsigned long id) { finder.prefetch_nodes(id); };
    __chain_window<decltype(fetch)> window(sieve, fetch);
    __held_updates<Updater> held(updater);
    while (__gathered_chain const* gathered = window.next()) {
        bool done;
        if (gathered->too_long) {
            __linked_chain<Finder> chain{finder, sieve.slots(), siever::head(gathered->bucket)};
            done = __pair_chain<Finder>(chain, held, processor, mode);
        } else {
            __held_chain<Finder> chain(finder, *gathered);
            done = __pair_chain<Finder>(chain, held, processor, mode);
        }
        if (!done) return false;
    }
    return true;
}

}  // namespace elfe_algo
}  // namespace qv7
