// The list core of merge: every node of one list moves onto the first-listed close node of another.
#include "search/cell_grid.h"
#include "search/coordinate_hash.h"
#include "search/merge_cores.h"
#include "search/point_tests.h"
#include "tessarium/index_utilities.h"

#include <algorithm>
#include <cfloat>
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

// rank[v] is the place of v in list. Only listed nodes are ever looked up (the search hits and
// the survivors of the map are all listed), so the other entries are left unset: the array spans
// all of pos while the list may be a small part of it.
bool ranks(IDs const& list, std::size_t n, IDs& rank)
{
    if (!rank.resize(n)) return false;
    for (std::size_t k = 0; k < list.size(); ++k) rank[list[k]] = static_cast<unsigned>(k);
    return true;
}

// Of the nodes of the grid within tol of node i, other than i, the one of lowest rank. The hits
// are those of a box search of half-width tol followed by the distance test, so the survivor does
// not depend on the structure that finds them. A cell lists its nodes by rank, so its scan ends at
// its first hit, or at a rank no better than the best so far.
template <unsigned D>
bool all_finite(double const* p)
{
    for (unsigned k = 0; k < D; ++k)
        if (!std::isfinite(p[k])) return false;
    return true;
}

template <unsigned D>
unsigned lowest_ranked_neighbour(dense2D<double> const& pos, __cell_grid<D> const& grid, unsigned i, double tol,
                                 IDs const& rank)
{
    double const* p = pos.col(i);
    double box[2 * D];
    __box_around<D>(p, tol, box);
    double tol_squared = tol * tol;
    // An infinite or NaN coordinate puts every distance from i at infinity or NaN, never within a
    // finite tol; skipping the scan keeps a crowd of such nodes from being searched pair by pair.
    if (tol_squared <= DBL_MAX && !all_finite<D>(p)) return NONE_ID;
    unsigned best = NONE_ID;
    grid.for_each_candidate(box, box + D, [&](unsigned c) {
        if (c == i) return true;
        if (best != NONE_ID && rank[c] >= rank[best]) return false;
        double const* q = pos.col(c);
        if (!__in_box<D>(q, box, box + D) || !(__squared_distance<D>(q, p) <= tol_squared)) return true;
        best = c;
        return false;
    });
    return best;
}

// Moves each node i of list1 onto survivor(i) unless that is NONE_ID; the count of moved nodes.
template <class Survivor>
unsigned move_onto(IDs const& list1, IDs& merged, Survivor&& survivor)
{
    unsigned count = 0;
    for (unsigned i : list1) {
        unsigned c = survivor(i);
        if (c == NONE_ID) continue;
        merged[i] = c;
        ++count;
    }
    return count;
}

// The nodes of list1 moved onto their lowest-ranked neighbour within tol: their count, NONE_ID
// when memory runs out. Each search is independent of the others, so the memory of later searches
// is asked for ahead: the filter words `ahead` nodes on, the slots half as far.
template <unsigned D>
unsigned survivors_within(dense2D<double> const& pos, IDs const& list1, IDs const& list2, IDs& merged, double tol,
                          IDs const& rank)
{
    __cell_grid<D> grid;
    if (!grid.build(pos, list2, tol)) return NONE_ID;
    constexpr std::size_t ahead = 16;
    auto prefetch = [&](std::size_t j, bool slots) {
        if (j >= list1.size()) return;
        double box[2 * D];
        __box_around<D>(pos.col(list1[j]), tol, box);
        grid.prefetch(box, box + D, slots);
    };
    std::size_t j = 0;
    return move_onto(list1, merged, [&](unsigned i) {
        prefetch(j + ahead, false);
        prefetch(j + ahead / 2, true);
        ++j;
        return lowest_ranked_neighbour(pos, grid, i, tol, rank);
    });
}

// The same at tol 0, where the neighbours are the nodes of equal coordinates.
template <unsigned D>
unsigned survivors_of_duplicates(dense2D<double> const& pos, IDs const& list1, IDs const& list2, IDs& merged)
{
    __coordinate_hash<D> groups;
    if (!groups.build(pos, list2)) return NONE_ID;
    if (&list1 != &list2) return move_onto(list1, merged, [&](unsigned i) { return groups.first_other(i); });
    std::size_t j = 0;  // list1 is walked in order, so j is the place of i
    return move_onto(list1, merged, [&](unsigned i) { return groups.first_other_listed(j++, i); });
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
    unsigned count = tol == 0.0 ? survivors_of_duplicates<D>(pos, list1, list2, merged)
                                : survivors_within<D>(pos, list1, list2, merged, tol, rank);
    if (count == NONE_ID) return -199;
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

template <class Point>
int __merge_distinct(dense2D<double> const& pos, IDs const& nodes, IDs& merged, double tol)
{
    merged.clear();
    IDs listed;
    IDs const* list = &nodes;
    if (std::find(nodes.begin(), nodes.end(), NONE_ID) != nodes.end()) {
        if (!listed.resize(nodes.size())) return -199;
        listed.resize(std::remove_copy(nodes.begin(), nodes.end(), listed.begin(), NONE_ID) - listed.begin());
        list = &listed;
    }
    int count = merge_lists<Point::size()>(pos, *list, *list, merged, tol);
    if (count < 0) merged.clear();
    return count;
}

template int __merge<vector_fixed<double, 2>>(dense2D<double> const&, IDs const&, IDs const&, IDs&, double);
template int __merge<vector_fixed<double, 3>>(dense2D<double> const&, IDs const&, IDs const&, IDs&, double);
template int __merge_distinct<vector_fixed<double, 2>>(dense2D<double> const&, IDs const&, IDs&, double);
template int __merge_distinct<vector_fixed<double, 3>>(dense2D<double> const&, IDs const&, IDs&, double);

}  // namespace tessarium
}  // namespace qv7
