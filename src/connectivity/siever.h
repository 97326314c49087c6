// A hash table of 64-bit values whose chains live inside one array of (value, link) pairs.
//
// The first bucket_count pairs are the heads of the buckets; overflow pairs are appended behind
// them. A link is the distance, in array elements, to the next pair of the same chain, so the
// table needs no fix-up when the array moves. A value or link of all ones is vacant: a free or
// cancelled entry, or the end of a chain.
#pragma once

#include "tessarium/dense1D.h"

#include <cstddef>

namespace qv7 {

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
    bool insert(unsigned long h, unsigned long value);

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
    dense1D<unsigned long, 8> slots_;
};

// The first of a fixed list of primes not below n, the largest one for a larger n.
unsigned long next_prime(unsigned long n) noexcept;

}  // namespace qv7
