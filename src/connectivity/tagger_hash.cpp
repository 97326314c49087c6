#include "connectivity/tagger_hash.h"

#include "connectivity/siever.h"

#include <algorithm>

namespace qv7 {

tagger_hash::tagger_hash()
{
    __rehash(193);
}

bool tagger_hash::tag(unsigned id)
{
    if (is_tagged(id)) return false;
    if (entries_.size() >= heads_.size() && !__rehash(next_prime(2 * std::max<std::size_t>(heads_.size(), 97))))
        return false;
    unsigned& head = heads_[id % heads_.size()];
    if (!entries_.push_back(entry{id, head})) return false;
    head = static_cast<unsigned>(entries_.size() - 1);
    return true;
}

void tagger_hash::clear() noexcept
{
    for (entry const& e : entries_) heads_[e.id % heads_.size()] = NONE;
    entries_.clear();
}

// Spreads the entries over a new bucket array; the old table stays whole when that fails.
bool tagger_hash::__rehash(std::size_t buckets)
{
    dense1D<unsigned, 8> heads(buckets);
    if (heads.size() != buckets) return false;
    std::fill(heads.begin(), heads.end(), NONE);
    for (unsigned k = 0; k < entries_.size(); ++k) {
        unsigned& head = heads[entries_[k].id % buckets];
        entries_[k].next = head;
        head = k;
    }
    heads_ = heads;
    return true;
}

}  // namespace qv7
