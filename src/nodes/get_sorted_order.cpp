#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

#include <algorithm>

namespace qv7 {

// Counting sort. offsets[1 + v] first counts the values below v, then serves as the write cursor
// of value v; once every value is placed it holds the start of v + 1, so offsets[v] is the start of v.
int get_sorted_order(dense1D<unsigned, 8> const& values, dense1D<unsigned, 8>& order, dense1D<unsigned, 8>& offsets)
{
    order.clear();
    offsets.clear();
    if (values.empty()) {
        if (offsets.resize(1)) offsets[0] = 0;
        return 0;
    }
    std::size_t m = max_ID(values);
    std::size_t n = values.size();
    if (!order.resize(n) || !offsets.resize(m + 4)) {
        order.clear();
        offsets.clear();
        return -199;
    }
    unsigned* at = offsets.data();
    std::fill(at, at + m + 4, 0u);
    for (unsigned v : values)
        if (v != NONE_ID) ++at[2 + std::size_t(v)];
    for (std::size_t i = 3; i <= m + 1; ++i) at[i] += at[i - 1];
    unsigned* out = order.data();
    for (std::size_t i = 0; i < n; ++i) {
        unsigned v = values[i];
        if (v != NONE_ID) out[at[1 + std::size_t(v)]++] = static_cast<unsigned>(i);
    }
    offsets.resize(m + 2);
    order.resize(at[m + 1]);
    return 0;
}

namespace tessarium {

int get_sorted_order(dense1D<unsigned, 8> const& values, dense1D<unsigned, 8>& order, dense1D<unsigned, 8>& offsets)
{
    return qv7::get_sorted_order(values, order, offsets);
}

}  // namespace tessarium
}  // namespace qv7
