#include "nodes/node_moves.h"
#include "tessarium/element_type.h"
#include "tessarium/transforms.h"

namespace qv7 {
namespace tessarium {
namespace {

using IDs = dense1D<unsigned, 8>;

// Comparisons written so that a NaN coordinate never enters the box.
template <unsigned D>
void __enclose(double const* p, vector_fixed<double, D>& min, vector_fixed<double, D>& max)
{
    for (unsigned k = 0; k < D; ++k) {
        if (min[k] > p[k]) min[k] = p[k];
        if (p[k] > max[k]) max[k] = p[k];
    }
}

template <unsigned D>
int __box(dense2D<double> const& pos, vector_fixed<double, D>& min, vector_fixed<double, D>& max)
{
    if (pos.rows() != D) return -1;
    for (std::size_t j = 0; j < pos.cols(); ++j) __enclose(pos.col(j), min, max);
    return 0;
}

// NONE_ID passes check_IDs but names no node: it is skipped.
template <unsigned D>
int __box(dense2D<double> const& pos, IDs const& ids, vector_fixed<double, D>& min, vector_fixed<double, D>& max)
{
    if (ids.empty()) return 0;
    if (pos.rows() != D) return -1;
    if (!check_IDs(ids, static_cast<unsigned>(pos.cols()))) return -2;
    for (unsigned id : ids)
        if (id != NONE_ID) __enclose(pos.col(id), min, max);
    return 0;
}

}  // namespace

int inc_bounding_box(dense2D<double> const& pos, vector_fixed<double, 2>& min, vector_fixed<double, 2>& max)
{
    return __box(pos, min, max);
}
int inc_bounding_box(dense2D<double> const& pos, IDs const& ids, vector_fixed<double, 2>& min,
                     vector_fixed<double, 2>& max)
{
    return __box(pos, ids, min, max);
}
int inc_bounding_box(dense2D<double> const& pos, dense2D<unsigned> const& connect, vector_fixed<double, 2>& min,
                     vector_fixed<double, 2>& max)
{
    return __box(pos, __nodes_of(connect), min, max);
}

int inc_bounding_box(dense2D<double> const& pos, vector_fixed<double, 3>& min, vector_fixed<double, 3>& max)
{
    return __box(pos, min, max);
}
int inc_bounding_box(dense2D<double> const& pos, IDs const& ids, vector_fixed<double, 3>& min,
                     vector_fixed<double, 3>& max)
{
    return __box(pos, ids, min, max);
}
int inc_bounding_box(dense2D<double> const& pos, dense2D<unsigned> const& connect, vector_fixed<double, 3>& min,
                     vector_fixed<double, 3>& max)
{
    return __box(pos, __nodes_of(connect), min, max);
}

}  // namespace tessarium
}  // namespace qv7
