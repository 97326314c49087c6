// The connectivity core of merge: in modes 1 and 2 only nodes of one element merge, closest first.
#include "search/merge_cores.h"
#include "search/node_count.h"
#include "search/point_tests.h"
#include "search/triad.h"
#include "tessarium/index_utilities.h"

#include <algorithm>
#include <cmath>

namespace qv7 {
namespace tessarium {

namespace {

using IDs = dense1D<unsigned, 8>;
using close_pair = triad<double, unsigned, unsigned>;
using pair_list = dense1D<close_pair, 8>;

// True when c appears in the column before row r.
bool seen_before(unsigned const* column, std::size_t r, unsigned c) noexcept
{
    return std::find(column, column + r, c) != column + r;
}

// Appends (d, a, c) for every pair of distinct nodes a, c of one column, both still mapping to
// themselves, with c in the box of half-width tol around a and at a distance d <= tol. A pair can
// only join nodes of one column, so comparing the entries of each column finds exactly the hits a
// box search would keep, with the same tests; their order among equal (d, a) does not matter, since
// such records never affect one another.
template <unsigned D>
bool collect_pairs(dense2D<double> const& pos, dense2D<unsigned> const& connect, IDs const& merged, double tol,
                   pair_list& pairs)
{
    std::size_t rows = connect.rows();
    for (std::size_t j = 0; j < connect.cols(); ++j) {
        unsigned const* column = connect.col(j);
        for (std::size_t r = 0; r < rows; ++r) {
            unsigned a = column[r];
            if (a == NONE_ID || merged[a] != a) continue;
            double const* p = pos.col(a);
            double box[2 * D];
            __box_around<D>(p, tol, box);
            for (std::size_t t = 0; t < rows; ++t) {
                unsigned c = column[t];
                if (c == NONE_ID || c == a || merged[c] != c || seen_before(column, t, c)) continue;
                double const* q = pos.col(c);
                if (!__in_box<D>(q, box, box + D)) continue;
                double d = std::sqrt(__squared_distance<D>(q, p));
                if (tol >= d && !pairs.push_back({d, a, c})) return false;
            }
        }
    }
    return true;
}

// Shortest pairs first: a record (d, a, c) moves c onto a if both still map to themselves.
unsigned apply_pairs(pair_list& pairs, IDs& merged)
{
    std::stable_sort(pairs.begin(), pairs.end(), lesser_pair<close_pair>());
    unsigned count = 0;
    for (close_pair const& p : pairs) {
        if (merged[p.second] != p.second || merged[p.third] != p.third) continue;
        merged[p.third] = p.second;
        ++count;
    }
    return count;
}

// Points every node straight at the end of its chain.
void flatten(IDs const& nodes, IDs& merged)
{
    for (unsigned i : nodes) {
        unsigned r = i;
        while (merged[r] != r) r = merged[r];
        merged[i] = r;
    }
}

// Room for the distinct nodes of the range, so that none is dropped: at most one more than pos
// has columns, since beyond that a number out of range is kept and the check refuses it.
bool reserve_distinct(dense2D<double> const& pos, dense2D<unsigned> const* begin, dense2D<unsigned> const* end,
                      IDs& nodes)
{
    std::size_t entries = 0;
    for (; begin != end; ++begin) entries += begin->rows() * begin->cols();
    std::size_t wanted = std::min(entries, pos.cols() + 1);
    if (!nodes.resize(wanted)) return false;
    nodes.clear();
    return true;
}

void renumber(dense2D<unsigned>* begin, dense2D<unsigned>* end, IDs const& merged)
{
    for (; begin != end; ++begin) change_indices(*begin, merged);
}

template <unsigned D>
int merge_within_elements(dense2D<double> const& pos, dense2D<unsigned>* begin, dense2D<unsigned>* end,
                          IDs const& nodes, IDs& merged, double tol, unsigned mode)
{
    if (!merged.resize(pos.cols())) return -199;
    for (std::size_t i = 0; i < merged.size(); ++i) merged[i] = static_cast<unsigned>(i);
    pair_list pairs;
    int total = 0;
    for (;;) {
        // Records of earlier passes could never fire again: each has a node that moved.
        pairs.clear();
        for (dense2D<unsigned>* c = begin; c != end; ++c)
            if (!collect_pairs<D>(pos, *c, merged, tol, pairs)) return -199;
        unsigned pass = apply_pairs(pairs, merged);
        flatten(nodes, merged);
        renumber(begin, end, merged);
        total += static_cast<int>(pass);
        if (mode == 1 || pass == 0) return total;
    }
}

}  // namespace

template <class Point>
int __merge(dense2D<double> const& pos, dense2D<unsigned>* begin, dense2D<unsigned>* end, IDs& merged, double tol,
            unsigned mode)
{
    merged.clear();
    IDs nodes;
    if (!reserve_distinct(pos, begin, end, nodes)) return -199;
    unique_indices(nodes, begin, end);
    if (nodes.empty()) return 0;
    if (!check_IDs(nodes, __node_count(pos))) return -2;
    if (mode == 0) {
        int count = __merge<Point>(pos, nodes, nodes, merged, tol);
        if (count >= 0) renumber(begin, end, merged);
        return count;
    }
    int count = merge_within_elements<Point::size()>(pos, begin, end, nodes, merged, tol, mode);
    if (count < 0) merged.clear();
    return count;
}

template int __merge<vector_fixed<double, 2>>(dense2D<double> const&, dense2D<unsigned>*, dense2D<unsigned>*, IDs&,
                                              double, unsigned);
template int __merge<vector_fixed<double, 3>>(dense2D<double> const&, dense2D<unsigned>*, dense2D<unsigned>*, IDs&,
                                              double, unsigned);

}  // namespace tessarium
}  // namespace qv7
