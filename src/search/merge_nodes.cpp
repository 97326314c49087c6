// The list core of merge: every node of one list moves onto the first-listed close node of another.
#include "search/cell_grid.h"
#include "search/merge_cores.h"
#include "search/point_tests.h"
#include "tessarium/index_utilities.h"

#include <algorithm>
#include <cmath>

namespace qv7 {
namespace tessarium {

namespace {

using IDs = dense1D<unsigned, 8>;

bool same_array(IDs const& a, IDs const& b) noexcept
{
    return a.storage() == b.storage() && a.size() == b.size() && a.first() == b.first();
}

// The distinct nodes of a list, in first-seen order, with room reserved so that none is dropped.
bool distinct(IDs const& list, IDs& out)
{
    if (!out.resize(list.size())) return false;
    out.clear();
    unique_indices(out, list);
    return true;
}

bool identity(IDs& map, std::size_t n)
{
    if (!map.resize(n)) return false;
    for (std::size_t i = 0; i < n; ++i) map[i] = static_cast<unsigned>(i);
    return true;
}

// rank[v] is the place of v in list, NONE_ID for a node not listed.
bool ranks(IDs const& list, std::size_t n, IDs& rank)
{
    if (!rank.resize(n)) return false;
    std::fill(rank.begin(), rank.end(), NONE_ID);
    for (std::size_t k = 0; k < list.size(); ++k) rank[list[k]] = static_cast<unsigned>(k);
    return true;
}

// Of the nodes of the grid within tol of node i, other than i, the one of lowest rank. The hits
// are those of a box search of half-width tol followed by the distance test, so the survivor does
// not depend on the structure that finds them.
template <unsigned D>
unsigned lowest_ranked_neighbour(dense2D<double> const& pos, __cell_grid<D> const& grid, unsigned i, double tol,
                                 IDs const& rank)
{
    double const* p = pos.col(i);
    double box[2 * D];
    __box_around<D>(p, tol, box);
    double tol_squared = tol * tol;
    unsigned best = NONE_ID;
    grid.for_each_candidate(box, box + D, [&](unsigned c) {
        if (c == i || (best != NONE_ID && rank[c] >= rank[best])) return;
        double const* q = pos.col(c);
        if (__in_box<D>(q, box, box + D) && __squared_distance<D>(q, p) <= tol_squared) best = c;
    });
    return best;
}

// Since closeness is not transitive, a node may have moved onto one that moved elsewhere: follow
// the map from each node while the rank keeps falling, which also breaks every cycle at its node
// of lowest rank. Updates take effect at once.
void resolve_chains(IDs const& list1, IDs const& rank, IDs& merged)
{
    for (unsigned i : list1) {
        unsigned w = i, cur = i, best = NONE_ID;
        for (;;) {
            w = cur;
            cur = merged[w];
            if (cur == w || !(rank[cur] < best)) break;
            best = rank[cur];
        }
        merged[i] = w;
    }
}

template <unsigned D>
int merge_lists(dense2D<double> const& pos, IDs const& list1, IDs const& list2, IDs& merged, double tol)
{
    IDs rank;
    if (!identity(merged, pos.cols()) || !ranks(list2, pos.cols(), rank)) return -199;
    if (std::isnan(tol)) return 0;  // no box holds anything
    __cell_grid<D> grid;
    if (!grid.build(pos, list2, tol)) return -199;

    unsigned count = 0;
    for (unsigned i : list1) {
        unsigned c = lowest_ranked_neighbour(pos, grid, i, tol, rank);
        if (c == NONE_ID) continue;
        merged[i] = c;
        ++count;
    }
    if (count < 2) return static_cast<int>(count);
    resolve_chains(list1, rank, merged);
    count = 0;
    for (unsigned i : list1) count += merged[i] != i;
    return static_cast<int>(count);
}

}  // namespace

template <class Point>
int __merge(dense2D<double> const& pos, IDs const& IDs1, IDs const& IDs2, IDs& merged, double tol)
{
    merged.clear();
    if (IDs1.empty() || IDs2.empty()) return 0;
    IDs list1, own_list2;
    bool shared = same_array(IDs1, IDs2);
    if (!distinct(IDs1, list1) || (!shared && !distinct(IDs2, own_list2))) return -199;
    int count = merge_lists<Point::size()>(pos, list1, shared ? list1 : own_list2, merged, tol);
    if (count < 0) merged.clear();
    return count;
}

template int __merge<vector_fixed<double, 2>>(dense2D<double> const&, IDs const&, IDs const&, IDs&, double);
template int __merge<vector_fixed<double, 3>>(dense2D<double> const&, IDs const&, IDs const&, IDs&, double);

}  // namespace tessarium
}  // namespace qv7
