// Reads the chains of a closed siever in bucket order, several buckets ahead of their use.
//
// A chain is a walk from pair to pair, each step a load that depends on the one before; on a
// large table nearly every step misses the cache. The window keeps a number of chains in flight
// and moves each one step per round, asking for the next pair and for the nodes of every entry
// ahead of use, so that the misses of different chains overlap. It only reads the table.
#pragma once

#include "connectivity/siever.h"

#include <cstddef>

namespace qv7 {
namespace elfe_algo {

// The positions of the entries (values not vacant) of one chain, in chain order.
struct __gathered_chain {
    static constexpr unsigned capacity = 32;

    unsigned long bucket;
    std::size_t next;        // next pair to read, chain_end when the walk is done
    unsigned long done_at;   // round in which the walk ended
    unsigned count;
    bool too_long;           // more than `capacity` entries: positions incomplete
    std::size_t pos[capacity];
};

template <class Finder>
class __chain_window {
public:
    static constexpr unsigned width = 16;

    __chain_window(Finder const& finder, unsigned long const* slots, unsigned long buckets) noexcept
        : finder_(finder), s_(slots), buckets_(buckets)
    {
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
            __gathered_chain& c = ring_[front_];
            // A chain is handed out one round after its walk ended, so that the nodes of its
            // last entries have had time to arrive.
            if (c.next == siever::chain_end && c.done_at < round_) {
                returned_ = true;
                return &c;
            }
            __advance();
        }
    }

private:
    void __fill() noexcept
    {
        while (size_ < width && scan_ < buckets_) {
            unsigned long bucket = scan_++;
            std::size_t head = siever::head(bucket);
            if (s_[head] == siever::vacant && s_[head + 1] == siever::vacant) continue;
            __gathered_chain& c = ring_[(front_ + size_++) % width];
            c.bucket = bucket;
            c.next = head;
            c.count = 0;
            c.too_long = false;
            __step(c);
        }
    }

    void __advance() noexcept
    {
        for (unsigned k = 0; k < size_; ++k) {
            __gathered_chain& c = ring_[(front_ + k) % width];
            if (c.next != siever::chain_end) __step(c);
        }
        ++round_;
    }

    void __step(__gathered_chain& c) noexcept
    {
        std::size_t pos = c.next;
        unsigned long value = s_[pos];
        if (value != siever::vacant) {
            if (c.count == __gathered_chain::capacity) {
                c.too_long = true;
                c.next = siever::chain_end;
                c.done_at = round_;
                return;
            }
            c.pos[c.count++] = pos;
            finder_.prefetch_nodes(value);
        }
        c.next = siever::next(s_, pos);
        if (c.next == siever::chain_end)
            c.done_at = round_;
        else
            __prefetch(s_ + c.next);
    }

    Finder const& finder_;
    unsigned long const* s_;
    unsigned long buckets_;
    unsigned long scan_ = 0;
    unsigned long round_ = 0;
    unsigned front_ = 0, size_ = 0;
    bool returned_ = false;
    __gathered_chain ring_[width];
};

}  // namespace elfe_algo
}  // namespace qv7
