// Ascending sort of 64-bit keys by least significant digit first.
//
// The caller says how many low bits of a key vary (through `rank`, which maps a key to a number
// below 2^bits with the same order), so that keys made of small numbers take few passes. The
// digits are 11 bits wide: 2048 counters per pass stay in the first-level cache. A pass whose
// digit is the same for every key moves nothing and is skipped. The result is the one of any
// other ascending sort, since equal keys are indistinguishable.
#pragma once

#include "tessarium/dense1D.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace qv7 {

constexpr unsigned __radix_bits = 11;
constexpr std::size_t __radix_size = std::size_t(1) << __radix_bits;

// Sorts keys[0 .. n); Rank: uint64 -> uint64, monotone, values below 2^bits. False, with the keys
// untouched, when the working storage (n keys and the counters) cannot be had.
template <class Rank>
bool radix_sort(std::uint64_t* keys, std::size_t n, unsigned bits, Rank rank)
{
    unsigned const passes = std::max(1u, (bits + __radix_bits - 1) / __radix_bits);
    std::size_t const nbr_counts = passes * __radix_size;
    dense1D<std::uint64_t, 8> work;
    if (n > std::size_t(-1) / 16 || !work.resize(n + nbr_counts)) return false;
    std::uint64_t* counts = work.data() + n;
    std::fill(counts, counts + nbr_counts, 0);
    for (std::size_t i = 0; i < n; ++i) {
        std::uint64_t r = rank(keys[i]);
        for (unsigned p = 0; p < passes; ++p)
            ++counts[p * __radix_size + (r >> (p * __radix_bits) & (__radix_size - 1))];
    }
    std::uint64_t *from = keys, *to = work.data();
    for (unsigned p = 0; p < passes; ++p) {
        std::uint64_t* count = counts + p * __radix_size;
        if (std::find(count, count + __radix_size, n) != count + __radix_size) continue;
        std::uint64_t offset = 0;
        for (std::size_t d = 0; d < __radix_size; ++d) offset += std::exchange(count[d], offset);
        unsigned shift = p * __radix_bits;
        for (std::size_t i = 0; i < n; ++i) {
            std::uint64_t k = from[i];
            to[count[rank(k) >> shift & (__radix_size - 1)]++] = k;
        }
        std::swap(from, to);
    }
    if (from != keys) std::copy(from, from + n, keys);
    return true;
}

}  // namespace qv7
