// A hash table of 64-bit values whose chains live inside one array of (value, link) pairs.
//
// The first bucket_count pairs are the heads of the buckets; overflow pairs are appended behind
// them. A link is the distance, in array elements, to the next pair of the same chain, so the
// table needs no fix-up when the array moves. A value or link of all ones is vacant: a free or
// cancelled entry, or the end of a chain.
//
// While entries go in, a chain with overflow pairs is kept open, so that appending costs the same
// whatever its length: the head links to the last pair and the last pair back to the first
// overflow pair. Closing gives every chain its final form, head to last in order of insertion,
// before the chains are walked: all at once with close(), or chain by chain as a walk reaches them
// (close_chain, then close_from for the rest).
#pragma once

#include "tessarium/dense1D.h"

#include <cstddef>

namespace qv7 {

// Asks for the cache line of p ahead of its use; no effect on results.
inline void __prefetch(void const* p) noexcept
{
    __builtin_prefetch(p);
}

class siever {
public:
    static constexpr unsigned long vacant = ~0ul;
    // Position standing for "no further pair" in a chain walk.
    static constexpr std::size_t chain_end = ~std::size_t(0);

    // Empties the table and makes room for `expected` entries in at least `buckets` buckets
    // (rounded up to a power of two). False when the storage could not be had.
    bool resize(unsigned long expected, unsigned long buckets);

    // Appends value to the chain of bucket h (h below bucket_count). When the array cannot grow
    // the value is dropped and the result is false.
    bool insert(unsigned long h, unsigned long value)
    {
        unsigned long* s = slots_.data();
        std::size_t pos = head(h);
        if (s[pos] == vacant) {
            s[pos] = value;
            ++entry_count_;
            return true;
        }
        std::size_t added = slots_.size();
        if (!slots_.push_back_n(vacant, 2)) return false;
        slots_.data()[added] = value;
        // A table closed with overflow pairs in it has lost its tails: walk to the end of the chain.
        if (open_ || added == 2 * bucket_count_)
            __append_open(pos, added);
        else
            __append_closed(pos, added);
        ++entry_count_;
        return true;
    }
    // Ends the filling: every chain gets its final links. Nothing to do on a closed table.
    void close() noexcept { close_from(0); }
    // The same for buckets first_bucket and up, those below having been closed one by one.
    void close_from(unsigned long first_bucket) noexcept;
    bool is_open() const noexcept { return open_; }
    // Closes the open chain from the head pair at `head` whose last pair is at `last`; returns
    // the position of its first overflow pair.
    static std::size_t close_chain(unsigned long* slots, std::size_t head, std::size_t last) noexcept
    {
        std::size_t first = last + slots[last + 1];
        slots[head + 1] = first - head;
        slots[last + 1] = vacant;
        return first;
    }

    // Hints for a coming insert into bucket h: its head pair, then (once the head is at hand) the
    // pair the new entry will be linked from.
    void prefetch_head(unsigned long h) const noexcept { __prefetch(slots_.data() + head(h)); }
    void prefetch_tail(unsigned long h) const noexcept
    {
        unsigned long const* s = slots_.data();
        unsigned long link = s[head(h) + 1];
        if (link != vacant) __prefetch(s + head(h) + link);
    }

    unsigned long bucket_count() const noexcept { return bucket_count_; }
    unsigned long mask() const noexcept { return mask_; }
    unsigned long entry_count() const noexcept { return entry_count_; }
    // Bytes of storage held by the table.
    std::size_t memory() const noexcept { return slots_.storage()->capacity * sizeof(unsigned long); }

    // Chain walking over the raw pairs; `slots` is stable between insertions.
    unsigned long* slots() noexcept { return slots_.data(); }
    static std::size_t head(unsigned long bucket) noexcept { return 2 * bucket; }
    static std::size_t next(unsigned long const* slots, std::size_t pos) noexcept
    {
        unsigned long link = slots[pos + 1];
        return link == vacant ? chain_end : pos + link;
    }

private:
    unsigned long bucket_count_ = 0;
    unsigned long mask_ = 0;
    unsigned long entry_count_ = 0;
    bool open_ = false;
    dense1D<unsigned long, 8> slots_;

    // Links are differences modulo 2^64; the one from the last pair back to the first is the
    // only one that goes backwards, and it is even, so never taken for vacant.
    void __append_open(std::size_t pos, std::size_t added) noexcept
    {
        unsigned long* s = slots_.data();
        unsigned long& to_last = s[pos + 1];
        if (to_last == vacant) {
            s[added + 1] = 0;  // the first overflow pair is also the last
        } else {
            std::size_t last = pos + to_last;
            std::size_t first = last + s[last + 1];
            s[added + 1] = first - added;
            s[last + 1] = added - last;
        }
        to_last = added - pos;
        open_ = true;
    }
    void __append_closed(std::size_t pos, std::size_t added) noexcept;
};

// The first of a fixed list of primes not below n, the largest one for a larger n.
unsigned long next_prime(unsigned long n) noexcept;

}  // namespace qv7
