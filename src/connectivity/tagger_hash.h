// The marks of a walk over elements: a set of element numbers, hashed by identity into a prime
// number of chained buckets and kept at no more than one entry per bucket. Clearing keeps the
// buckets, so that a walk repeated many times allocates only while it grows.
#pragma once

#include "tessarium/dense1D.h"

namespace qv7 {

class tagger_hash {
public:
    tagger_hash();

    // Inserts id; false when it was tagged already or the table could not grow.
    bool tag(unsigned id);
    bool is_tagged(unsigned id) const noexcept
    {
        if (heads_.empty()) return false;
        for (unsigned k = heads_[id % heads_.size()]; k != NONE; k = entries_[k].next)
            if (entries_[k].id == id) return true;
        return false;
    }
    bool empty() const noexcept { return entries_.empty(); }
    std::size_t size() const noexcept { return entries_.size(); }
    // Empties every bucket that holds a tag.
    void clear() noexcept;

private:
    static constexpr unsigned NONE = ~0u;
    struct entry {
        unsigned id, next;
    };
    bool __rehash(std::size_t buckets);

    dense1D<unsigned, 8> heads_;  // first entry of each bucket, NONE when empty
    dense1D<entry, 8> entries_;
};

}  // namespace qv7
