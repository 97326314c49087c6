// Ascending sort of 64-bit keys by least significant digit first.
//
// The caller says how many low bits of a key vary (through `rank`, which maps a key to a number
// below 2^bits with the same order), so that keys made of small numbers take few passes. The bits
// are shared evenly among the fewest passes of at most 12 bits: 4096 counters per pass stay in
// the first-level cache. A pass whose digit is the same for every key moves nothing and is
// skipped. The result is the one of any other ascending sort, since equal keys are
// indistinguishable.
#pragma once

#include "tessarium/dense1D.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace qv7 {

constexpr unsigned __radix_max_bits = 12;

// Sorts keys[0 .. n); Rank: uint64 -> uint64, monotone, values below 2^bits. False, with the keys
// untouched, when the working storage (n keys and the counters) cannot be had.
template <class Rank>
bool radix_sort(std::uint64_t* keys, std::size_t n, unsigned bits, Rank rank)
{
    unsigned const passes = std::max(1u, (bits + __radix_max_bits - 1) / __radix_max_bits);
    unsigned const width = std::max(1u, (bits + passes - 1) / passes);
    std::size_t const size = std::size_t(1) << width, mask = size - 1, nbr_counts = passes * size;
    dense1D<std::uint64_t, 8> work;
    if (n > std::size_t(-1) / 16 || !work.resize(n + nbr_counts)) return false;
    std::uint64_t* counts = work.data() + n;
    std::fill(counts, counts + nbr_counts, 0);
    for (std::size_t i = 0; i < n; ++i) {
        std::uint64_t r = rank(keys[i]);
        for (unsigned p = 0; p < passes; ++p) ++counts[p * size + (r >> (p * width) & mask)];
    }
    std::uint64_t *from = keys, *to = work.data();
    for (unsigned p = 0; p < passes; ++p) {
        std::uint64_t* count = counts + p * size;
        if (std::find(count, count + size, n) != count + size) continue;
        std::uint64_t offset = 0;
        for (std::size_t d = 0; d < size; ++d) offset += std::exchange(count[d], offset);
        unsigned shift = p * width;
        for (std::size_t i = 0; i < n; ++i) {
            std::uint64_t k = from[i];
            to[count[rank(k) >> shift & mask]++] = k;
        }
        std::swap(from, to);
    }
    if (from != keys) std::copy(from, from + n, keys);
    return true;
}

}  // namespace qv7
