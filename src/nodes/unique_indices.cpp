#include "core/hash_set.h"
#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

namespace qv7 {
namespace tessarium {
namespace {

using IDs = dense1D<unsigned, 8>;

// A set that already holds every value that must not come out.
hash_set<unsigned> seen_set(IDs const& excluded)
{
    hash_set<unsigned> seen(193);
    for (unsigned v : excluded) seen.insert(v);
    seen.insert(NONE_ID);
    return seen;
}

// Appends each value of a run to out on its first appearance. A value that cannot be stored
// is dropped.
struct first_seen_appender {
    hash_set<unsigned>& seen;
    IDs& out;
    void operator()(unsigned const* p, std::size_t n)
    {
        for (unsigned const* e = p + n; p != e; ++p)
            if (seen.insert(*p)) out.push_back(*p);
    }
};

}  // namespace

int unique_indices(IDs& out, IDs const& in, IDs excluded)
{
    if (in.empty()) return 0;
    std::size_t wanted = out.size() + in.size();
    if (out.capacity() < wanted) out.storage()->__grow(out.first() + wanted, out.first() + out.size(), 1);
    hash_set<unsigned> seen = seen_set(excluded);
    first_seen_appender{seen, out}(in.data(), in.size());
    return 0;
}

int unique_indices(IDs& out, dense2D<unsigned> const& in, IDs excluded)
{
    return unique_indices(out, &in, &in + 1, excluded);
}

int unique_indices(IDs& out, dense2D<unsigned> const* first, dense2D<unsigned> const* last, IDs excluded)
{
    if (first == last) return 0;
    if (last < first) return -3;
    hash_set<unsigned> seen = seen_set(excluded);
    first_seen_appender append{seen, out};
    for (; first != last; ++first) __for_each_run(*first, append);
    return 0;
}
}  // namespace tessarium
}  // namespace qv7
