#include "connectivity/siever.h"

#include <algorithm>
#include <iterator>

namespace qv7 {
namespace {

unsigned long power_of_two_not_below(unsigned long n) noexcept
{
    unsigned long p = 1;
    while (p < n && p != 0) p <<= 1;
    return p;
}

constexpr unsigned long primes[28] = {53ul,        97ul,         193ul,        389ul,       769ul,       1543ul,
                                      3079ul,      6151ul,       12289ul,      24593ul,     49157ul,     98317ul,
                                      196613ul,    393241ul,     786433ul,     1572869ul,   3145739ul,   6291469ul,
                                      12582917ul,  25165843ul,   50331653ul,   100663319ul, 201326611ul, 402653189ul,
                                      805306457ul, 1610612741ul, 3221225473ul, 4294967291ul};

}  // namespace

bool siever::resize(unsigned long expected, unsigned long buckets)
{
    entry_count_ = bucket_count_ = mask_ = 0;
    open_ = false;
    slots_.clear();
    unsigned long p = power_of_two_not_below(buckets);
    if (p == 0 || p > vacant / 4 || expected > vacant / 4) return false;
    unsigned long reserve = 2 * std::max(p, expected);
    auto* block = slots_.storage();
    if (block->capacity - slots_.first() < reserve && !block->__grow(slots_.first() + reserve, 0, 1)) return false;
    bucket_count_ = p;
    mask_ = p - 1;
    slots_.resize(2 * p);
    std::fill(slots_.begin(), slots_.end(), vacant);
    return true;
}

void siever::__append_closed(std::size_t pos, std::size_t added) noexcept
{
    unsigned long* s = slots_.data();
    for (std::size_t n = next(s, pos); n != chain_end; n = next(s, pos)) pos = n;
    s[pos + 1] = added - pos;
}

void siever::close_from(unsigned long first_bucket) noexcept
{
    if (!open_) return;
    unsigned long* s = slots_.data();
    constexpr unsigned long ahead = 16;
    for (unsigned long h = first_bucket; h < bucket_count_; ++h) {
        if (h + ahead < bucket_count_) prefetch_tail(h + ahead);
        std::size_t pos = head(h);
        if (s[pos + 1] != vacant) close_chain(s, pos, pos + s[pos + 1]);
    }
    open_ = false;
}

unsigned long next_prime(unsigned long n) noexcept
{
    unsigned long const* found = std::lower_bound(std::begin(primes), std::end(primes), n);
    return found == std::end(primes) ? primes[27] : *found;
}

}  // namespace qv7
