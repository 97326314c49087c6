#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

#include <algorithm>

namespace qv7 {

template <class Array>
int permutation(Array& data, dense1D<unsigned, 8> const& perm)
{
    if (data.empty()) return 0;
    Array scattered;
    if (!scattered.copy(data)) return -199;
    std::size_t n = data.size(), m = std::min(n, perm.size());
    for (std::size_t i = 0; i < m; ++i) {
        unsigned p = perm[i];
        if (p < n && p != i) scattered[p] = data[i];
    }
    data.copy(scattered);
    return 0;
}

template int permutation(dense1D<unsigned, 8>&, dense1D<unsigned, 8> const&);
template int permutation(dense1D<double, 8>&, dense1D<unsigned, 8> const&);

namespace tessarium {

int permutation(dense1D<unsigned, 8>& data, dense1D<unsigned, 8> const& perm)
{
    return qv7::permutation(data, perm);
}

int permutation(dense1D<double, 8>& data, dense1D<unsigned, 8> const& perm)
{
    return qv7::permutation(data, perm);
}

}  // namespace tessarium
}  // namespace qv7
