// The exported forms of merge: argument checks, then one of the two cores.
#include "search/merge_cores.h"
#include "search/node_count.h"
#include "tessarium/element_type.h"
#include "tessarium/fixed.h"
#include "tessarium/repair.h"

namespace qv7 {
namespace tessarium {

namespace {

using IDs = dense1D<unsigned, 8>;
using connect_type = dense2D<unsigned>;

bool rows_supported(dense2D<double> const& pos) noexcept
{
    return pos.rows() == 2 || pos.rows() == 3;
}

// A NaN tol passes.
bool negative(double tol) noexcept
{
    return 0.0 > tol;
}

int list_core(dense2D<double> const& pos, IDs const& IDs1, IDs const& IDs2, IDs& merged, double tol)
{
    if (pos.rows() == 3) return __merge<vector_fixed<double, 3>>(pos, IDs1, IDs2, merged, tol);
    return __merge<vector_fixed<double, 2>>(pos, IDs1, IDs2, merged, tol);
}

int connectivity_core(dense2D<double> const& pos, connect_type* begin, connect_type* end, IDs& merged, double tol,
                      unsigned mode)
{
    if (pos.rows() == 3) return __merge<vector_fixed<double, 3>>(pos, begin, end, merged, tol, mode);
    return __merge<vector_fixed<double, 2>>(pos, begin, end, merged, tol, mode);
}

// Each moved node takes the coordinates that its survivor had before the call.
int move_onto_survivors(dense2D<double>& pos, IDs const& merged)
{
    dense2D<double> moved;
    if (!moved.copy(pos)) return -199;
    for (std::size_t i = 0; i < merged.size(); ++i) {
        if (merged[i] == i) continue;
        double const* from = pos.col(merged[i]);
        std::copy(from, from + pos.rows(), moved.col(i));
    }
    pos.copy(moved);
    return 0;
}

}  // namespace

int merge(dense2D<double>& pos, IDs& merged, double tol)
{
    merged.clear();
    if (pos.cols() == 0) return 0;
    if (!rows_supported(pos)) return -1;
    if (negative(tol)) return -3;
    IDs all(pos.cols());
    if (all.size() != pos.cols()) return -199;
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<unsigned>(i);
    int count = list_core(pos, all, all, merged, tol);
    if (count <= 0) return count;
    int status = move_onto_survivors(pos, merged);
    return status < 0 ? status : count;
}

int merge(dense2D<double>& pos, double tol)
{
    IDs merged;
    return merge(pos, merged, tol);
}

int merge(dense2D<double> const& pos, IDs const& list, IDs& merged, double tol)
{
    merged.clear();
    if (pos.cols() == 0) return 0;
    if (!rows_supported(pos)) return -1;
    if (!check_IDs(list, __node_count(pos))) return -2;
    if (negative(tol)) return -4;
    return list_core(pos, list, list, merged, tol);
}

int merge(dense2D<double> const& pos, IDs const& IDs1, IDs const& IDs2, IDs& merged, double tol)
{
    merged.clear();
    if (pos.cols() == 0) return 0;
    if (!rows_supported(pos)) return -1;
    if (!check_IDs(IDs1, __node_count(pos))) return -2;
    if (!check_IDs(IDs2, __node_count(pos))) return -3;
    if (negative(tol)) return -4;
    return list_core(pos, IDs1, IDs2, merged, tol);
}

int merge(dense2D<double> const& pos, connect_type* connect_begin, connect_type* connect_end, IDs& merged, double tol,
          unsigned mode)
{
    merged.clear();
    if (pos.cols() == 0 || connect_begin == connect_end) return 0;
    if (!rows_supported(pos)) return -1;
    if (connect_end < connect_begin) return -3;
    if (negative(tol)) return -5;
    if (mode > 2) return -6;
    return connectivity_core(pos, connect_begin, connect_end, merged, tol, mode);
}

int merge(dense2D<double> const& pos, connect_type& connect, IDs& merged, double tol, unsigned mode)
{
    return merge(pos, &connect, &connect + 1, merged, tol, mode);
}

int merge(dense2D<double> const& pos, connect_type& connect1, connect_type& connect2, IDs& merged, double tol,
          unsigned mode)
{
    connect_type both[2] = {connect1, connect2};
    int result = merge(pos, both, both + 2, merged, tol, mode);
    connect1 = both[0];
    connect2 = both[1];
    return result;
}

int merge(dense2D<double> const& pos, connect_type* connect_begin, connect_type* connect_end, double tol, unsigned mode)
{
    IDs merged;
    return merge(pos, connect_begin, connect_end, merged, tol, mode);
}

int merge(dense2D<double> const& pos, connect_type& connect, double tol, unsigned mode)
{
    IDs merged;
    return merge(pos, connect, merged, tol, mode);
}

int merge(dense2D<double> const& pos, connect_type& connect1, connect_type& connect2, double tol, unsigned mode)
{
    IDs merged;
    return merge(pos, connect1, connect2, merged, tol, mode);
}

}  // namespace tessarium
}  // namespace qv7
