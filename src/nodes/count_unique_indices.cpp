#include "core/hash_set.h"
#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

int count_unique_indices(dense2D<unsigned> const& connect)
{
    return count_unique_indices(&connect, &connect + 1);
}

int count_unique_indices(dense2D<unsigned> const* first, dense2D<unsigned> const* last)
{
    if (first == last) return 0;
    if (last < first) return -2;
    hash_set<unsigned> seen(193);
    auto into_set = hash_inserter(seen);
    for (; first != last; ++first)
        __for_each_run(*first, [&into_set](unsigned const* p, std::size_t n) { std::copy(p, p + n, into_set); });
    seen.erase(NONE_ID);
    return static_cast<int>(seen.size());
}

}  // namespace tessarium
}  // namespace qv7
