// Reads the chains of a siever in bucket order, several buckets ahead of their use.
//
// A chain is a walk from pair to pair, each step a load that depends on the one before; on a
// large table nearly every step misses the cache. The window keeps a number of chains in flight
// and moves each one step per round, asking for the next pair, and for what the use of every
// entry will need (through `fetch`), ahead of time, so that the misses of different chains
// overlap. A chain is handed out once the chains `lag` places behind it are read too, so that
// what was asked for has had time to arrive.
//
// The window also closes the chains of a table still open from filling, each one when its walk
// starts (one more step: head, last pair, then the chain from its first overflow pair), and the
// rest of the table when it is destroyed. Apart from that it only reads the table.
#pragma once

#include "connectivity/siever.h"

#include <cstddef>

namespace qv7 {
namespace elfe_algo {

// The entries (values not vacant) of one chain, in chain order.
struct __gathered_chain {
    static constexpr unsigned capacity = 32;

    unsigned long bucket;
    std::size_t next;  // next pair to read, chain_end when the walk is done
    bool at_last;      // next is the last pair of an open chain, to be closed first
    bool too_long;     // more than `capacity` entries: values incomplete
    unsigned count;
    unsigned long values[capacity];

    bool done() const noexcept { return next == siever::chain_end; }
};

template <class Fetch>
class __chain_window {
public:
    static constexpr unsigned width = 64, lag = 16;

    __chain_window(siever& sieve, Fetch fetch) noexcept
        : sieve_(sieve), s_(sieve.slots()), buckets_(sieve.bucket_count()), open_(sieve.is_open()), fetch_(fetch)
    {
    }
    __chain_window(__chain_window const&) = delete;
    __chain_window& operator=(__chain_window const&) = delete;
    // Leaves the whole table closed, however far the walk went.
    ~__chain_window()
    {
        while (active_count_ > 0) __advance();
        sieve_.close_from(scan_);
    }

    // The chain of the next bucket that holds pairs, read to its end (or found too long); null
    // after the last bucket. The chain returned before is dropped.
    __gathered_chain const* next() noexcept
    {
        if (returned_) {
            front_ = (front_ + 1) % width;
            --size_;
            returned_ = false;
        }
        for (;;) {
            __fill();
            if (size_ == 0) return nullptr;
            unsigned behind = size_ - 1 < lag ? size_ - 1 : lag;
            if (__at(0).done() && __at(behind).done()) {
                returned_ = true;
                return &__at(0);
            }
            __advance();
        }
    }

private:
    __gathered_chain& __at(unsigned k) noexcept { return ring_[(front_ + k) % width]; }

    void __fill() noexcept
    {
        while (size_ < width && scan_ < buckets_) {
            unsigned long bucket = scan_++;
            std::size_t head = siever::head(bucket);
            if (s_[head] == siever::vacant && s_[head + 1] == siever::vacant) continue;
            unsigned slot = (front_ + size_++) % width;
            __gathered_chain& c = ring_[slot];
            c.bucket = bucket;
            c.next = head;
            c.at_last = false;
            c.too_long = false;
            c.count = 0;
            __step(c);
            if (!c.done()) active_[active_count_++] = slot;
        }
    }

    // One step of every chain still being read.
    void __advance() noexcept
    {
        for (unsigned k = 0; k < active_count_;) {
            __gathered_chain& c = ring_[active_[k]];
            __step(c);
            if (c.done())
                active_[k] = active_[--active_count_];
            else
                ++k;
        }
    }

    void __step(__gathered_chain& c) noexcept
    {
        std::size_t pos = c.next;
        if (c.at_last) {
            c.at_last = false;
            __go(c, siever::close_chain(s_, siever::head(c.bucket), pos));
            return;
        }
        unsigned long value = s_[pos];
        if (value != siever::vacant) {
            if (c.count == __gathered_chain::capacity) {
                c.too_long = true;
                c.next = siever::chain_end;
                return;
            }
            c.values[c.count++] = value;
            fetch_(value);
        }
        c.at_last = open_ && pos == siever::head(c.bucket) && s_[pos + 1] != siever::vacant;
        __go(c, siever::next(s_, pos));
    }

    void __go(__gathered_chain& c, std::size_t pos) noexcept
    {
        c.next = pos;
        if (pos != siever::chain_end) __prefetch(s_ + pos);
    }

    siever& sieve_;
    unsigned long* s_;
    unsigned long buckets_;
    bool open_;
    Fetch fetch_;
    unsigned long scan_ = 0;
    unsigned front_ = 0, size_ = 0;
    bool returned_ = false;
    unsigned active_count_ = 0;
    unsigned active_[width];  // ring places of the chains still being read
    __gathered_chain ring_[width];
};

}  // namespace elfe_algo
}  // namespace qv7
