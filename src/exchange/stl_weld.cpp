// Welding of an STL triangle soup into a connected mesh.
#include "exchange/stl_soup.h"
#include "tessarium/repair.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

int __STL_input_merge(double tolerance, dense2D<double>& pos, dense2D<unsigned>& connectT3)
{
    // Exact duplicates first, a bounded run of facets at a time: it shrinks the node set that
    // the tolerance pass has to search.
    constexpr std::size_t chunk = 100000;
    dense1D<unsigned, 8> map;
    std::size_t C = connectT3.cols();
    for (std::size_t j0 = 0; j0 < C; j0 += chunk) {
        dense2D<unsigned> view = connectT3.submatrix(j0, std::min(chunk, C - j0), 3);
        int r = merge(pos, view, map, 0.0, 0u);
        if (r < 0) return r;
    }
    int r = merge(pos, connectT3, map, tolerance, 0u);
    if (r >= 0) r = remove_degenerated(connectT3, map, true);
    if (r >= 0) r = simplify(pos, connectT3, map, 0u);
    return r < 0 ? r : 0;
}

}  // namespace tessarium
}  // namespace qv7
