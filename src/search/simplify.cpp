// Dropping the nodes that no element uses, and renumbering the rest in order.
#include "search/node_count.h"
#include "tessarium/element_type.h"
#include "tessarium/index_utilities.h"
#include "tessarium/repair.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

namespace {

using connect_type = dense2D<unsigned>;

// One flag per node, set for the nodes that some connectivity of the range uses.
bool mark_used(connect_type const* begin, connect_type const* end, std::size_t n, dense1D<unsigned long, 8>& used)
{
    std::size_t words = (n + 63) / 64;
    used.clear();
    if (!used.push_back_n(0ul, words)) return false;
    for (; begin != end; ++begin)
        for (std::size_t j = 0; j < begin->cols(); ++j)
            for (unsigned const *v = begin->col(j), *e = v + begin->rows(); v != e; ++v)
                if (*v != NONE_ID) used[*v / 64] |= 1ul << (*v % 64);
    return true;
}

// Moves the used nodes from nbr_kept on down over the unused ones, in order; IDs maps old to new.
std::size_t squeeze(dense2D<double>& pos, dense1D<unsigned long, 8> const& used, unsigned nbr_kept,
                    dense1D<unsigned, 8>& IDs)
{
    std::size_t rows = pos.rows(), next = nbr_kept;
    for (std::size_t i = 0; i < IDs.size(); ++i) IDs[i] = static_cast<unsigned>(i);
    for (std::size_t i = nbr_kept; i < pos.cols(); ++i) {
        if (!(used[i / 64] >> (i % 64) & 1)) {
            IDs[i] = NONE_ID;
            continue;
        }
        if (i != next) {
            std::copy(pos.col(i), pos.col(i) + rows, pos.col(next));
            IDs[i] = static_cast<unsigned>(next);
        }
        ++next;
    }
    return next;
}

}  // namespace

int simplify(dense2D<double>& pos, connect_type* connect_begin, connect_type* connect_end, dense1D<unsigned, 8>& IDs,
             unsigned nbr_kept)
{
    IDs.clear();
    if (connect_begin == connect_end) return 0;
    if (connect_end < connect_begin) return -3;
    for (connect_type const* c = connect_begin; c != connect_end; ++c)
        if (!check_IDs(*c, __node_count(pos))) return -2;
    std::size_t cols = pos.cols();
    if (nbr_kept >= cols || pos.empty()) return 0;

    dense1D<unsigned long, 8> used;
    if (!IDs.resize(cols) || !mark_used(connect_begin, connect_end, cols, used)) {
        IDs.clear();
        return -199;
    }
    std::size_t next = squeeze(pos, used, nbr_kept, IDs);
    pos.resize(pos.rows(), next);
    if (next != cols)
        for (connect_type* c = connect_begin; c != connect_end; ++c) change_indices(*c, IDs);
    return static_cast<int>(cols - next);
}

int simplify(dense2D<double>& pos, connect_type& connect, dense1D<unsigned, 8>& IDs, unsigned nbr_kept)
{
    return simplify(pos, &connect, &connect + 1, IDs, nbr_kept);
}

int simplify(dense2D<double>& pos, connect_type& connect, unsigned nbr_kept)
{
    dense1D<unsigned, 8> IDs;
    return simplify(pos, connect, IDs, nbr_kept);
}

int simplify(dense2D<double>& pos, connect_type& connect1, connect_type& connect2, unsigned nbr_kept)
{
    connect_type both[2] = {connect1, connect2};
    dense1D<unsigned, 8> IDs;
    int result = simplify(pos, both, both + 2, IDs, nbr_kept);
    connect1 = both[0];
    connect2 = both[1];
    return result;
}

}  // namespace tessarium
}  // namespace qv7
