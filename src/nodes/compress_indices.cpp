#include "nodes/index_internal.h"

#include <algorithm>

namespace qv7 {
namespace {

// Renumbers in order of first appearance, given a map whose entries at the numbers that occur
// hold NONE_ID.
int __compress(dense1D<unsigned, 8>& values, dense1D<unsigned, 8>& unique, dense1D<unsigned, 8>& map)
{
    unsigned next = 0;
    for (unsigned& v : values) {
        if (v == NONE_ID) continue;
        if (map[v] == NONE_ID) {
            unique.push_back(v);
            map[v] = next++;
        }
        v = map[v];
    }
    return unique.size() == next ? 0 : -199;
}

// Sizes map to one entry per number up to the largest; false when memory runs out.
bool __size_map(dense1D<unsigned, 8> const& values, dense1D<unsigned, 8>& map)
{
    return map.resize(std::size_t(max_ID(values)) + 1);
}

}  // namespace

int compress_indices(dense1D<unsigned, 8>& values, dense1D<unsigned, 8>& unique, dense1D<unsigned, 8>& map)
{
    unique.clear();
    map.clear();
    if (values.empty()) return 0;
    if (!__size_map(values, map)) return -199;
    std::fill(map.begin(), map.end(), NONE_ID);
    return __compress(values, unique, map);
}

int compress_indices_fast(dense1D<unsigned, 8>& values, dense1D<unsigned, 8>& unique, dense1D<unsigned, 8>& map)
{
    unique.clear();
    map.clear();
    if (values.empty()) return 0;
    if (!__size_map(values, map)) return -199;
    for (unsigned v : values)
        if (v != NONE_ID) map[v] = NONE_ID;
    return __compress(values, unique, map);
}

}  // namespace qv7
