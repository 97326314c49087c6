// Dropping the elements that hold a node twice.
#include "tessarium/element_type.h"
#include "tessarium/repair.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

namespace {

// A column is degenerate when a sorted copy of it has two equal neighbours. NONE_ID sorts last, so
// a repeated real node is found first; repeats of NONE_ID alone only count when strict, since
// mixed arrays end their shorter elements with several of them.
bool degenerate(unsigned const* column, dense1D<unsigned, 8>& sorted, bool strict)
{
    std::copy(column, column + sorted.size(), sorted.begin());
    std::sort(sorted.begin(), sorted.end());
    unsigned const* pair = std::adjacent_find(sorted.begin(), sorted.end());
    return pair != sorted.end() && (*pair != NONE_ID || strict);
}

// Compacts the kept columns in order; map, when given, receives the new place of each column.
int compact(dense2D<unsigned>& connect, dense1D<unsigned, 8>* map, bool strict)
{
    std::size_t rows = connect.rows(), cols = connect.cols();
    dense1D<unsigned, 8> sorted(rows);
    if (sorted.size() != rows) return -199;
    std::size_t kept = 0;
    for (std::size_t j = 0; j < cols; ++j) {
        if (degenerate(connect.col(j), sorted, strict)) continue;
        if (kept != j) std::copy(connect.col(j), connect.col(j) + rows, connect.col(kept));
        if (map) (*map)[j] = static_cast<unsigned>(kept);
        ++kept;
    }
    connect.resize(rows, kept);
    return static_cast<int>(cols - kept);
}

}  // namespace

int remove_degenerated(dense2D<unsigned>& connect, bool strict)
{
    if (connect.empty()) return 0;
    return compact(connect, nullptr, strict);
}

int remove_degenerated(dense2D<unsigned>& connect, dense1D<unsigned, 8>& IDs, bool strict)
{
    IDs.clear();
    if (!IDs.push_back_n(NONE_ID, connect.cols())) return -199;
    if (connect.empty()) return 0;
    return compact(connect, &IDs, strict);
}

}  // namespace tessarium
}  // namespace qv7
