#include "search/bisection_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <random>
#include <vector>

using qv7::dense1D;
using qv7::dense2D;
using qv7::NONE_ID;

namespace {

template <unsigned D>
using tree_t = qv7::bisection_tree<dense2D<double>, D>;

dense2D<double> matrix(std::vector<std::vector<double>> const& columns)
{
    dense2D<double> pos;
    pos.resize(columns[0].size(), columns.size());
    for (std::size_t j = 0; j < columns.size(); ++j)
        for (std::size_t i = 0; i < columns[j].size(); ++i) pos(i, j) = columns[j][i];
    return pos;
}

// Points on a coarse integer lattice: many coincident nodes and many exact distance ties.
dense2D<double> lattice_points(unsigned rows, unsigned n, int extent, unsigned seed)
{
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> pick(-extent, extent);
    dense2D<double> pos;
    pos.resize(rows, n);
    for (unsigned j = 0; j < n; ++j)
        for (unsigned i = 0; i < rows; ++i) pos(i, j) = pick(rng);
    return pos;
}

template <unsigned D>
void insert_shuffled(tree_t<D>& tree, unsigned n)
{
    dense1D<unsigned, 8> all(n), scratch;
    for (unsigned i = 0; i < n; ++i) all[i] = i;
    ASSERT_EQ(qv7::__insert_shuffled(tree, all, scratch), n);
}

template <unsigned D>
double squared(dense2D<double> const& pos, unsigned node, double const* p)
{
    double q = 0;
    for (unsigned k = 0; k < D; ++k) q += (pos(k, node) - p[k]) * (pos(k, node) - p[k]);
    return q;
}

// Records visited as: record, then right subtree, then left subtree.
template <unsigned D>
void node_right_left(tree_t<D> const& tree, unsigned slot, std::vector<unsigned>& out)
{
    if (slot == NONE_ID) return;
    unsigned const* r = tree.nodes[slot];
    out.push_back(r[0]);
    node_right_left(tree, r[2], out);
    node_right_left(tree, r[1], out);
}

template <unsigned D>
void node_left_right(tree_t<D> const& tree, unsigned slot, std::vector<unsigned>& out)
{
    if (slot == NONE_ID) return;
    unsigned const* r = tree.nodes[slot];
    out.push_back(r[0]);
    node_left_right(tree, r[1], out);
    node_left_right(tree, r[2], out);
}

// The nodes met walking down towards the point: strictly greater stored coordinate goes left.
template <unsigned D>
std::vector<unsigned> descent(tree_t<D> const& tree, double const* p)
{
    std::vector<unsigned> path;
    unsigned axis = 0;
    for (unsigned slot = 0; slot != NONE_ID; axis = (axis + 1) % D) {
        unsigned const* r = tree.nodes[slot];
        path.push_back(r[0]);
        slot = (*tree.coords)(axis, r[0]) > p[axis] ? r[1] : r[2];
    }
    return path;
}

// Brute force with the tree's tie rule: the smallest distance wins; among equals, the first one
// on the descent, else the first one in record-right-left order.
template <unsigned D, class Pred>
unsigned expected_closest(tree_t<D> const& tree, double const* p, Pred accept)
{
    dense2D<double> const& pos = *tree.coords;
    std::vector<unsigned> order;
    node_right_left(tree, 0, order);
    double best = INFINITY;
    for (unsigned node : order)
        if (accept(node)) best = std::min(best, squared<D>(pos, node, p));
    if (best == INFINITY) return NONE_ID;
    for (unsigned node : descent(tree, p))
        if (accept(node) && squared<D>(pos, node, p) == best) return node;
    for (unsigned node : order)
        if (accept(node) && squared<D>(pos, node, p) == best) return node;
    return NONE_ID;
}

template <unsigned D>
void check_split_invariant(tree_t<D> const& tree, unsigned slot, unsigned axis, std::vector<double>& lo,
                           std::vector<double>& hi)
{
    if (slot == NONE_ID) return;
    unsigned const* r = tree.nodes[slot];
    dense2D<double> const& pos = *tree.coords;
    for (unsigned k = 0; k < D; ++k) {
        ASSERT_GE(pos(k, r[0]), lo[k]);
        ASSERT_LT(pos(k, r[0]), hi[k]);
    }
    double s = pos(axis, r[0]);
    double saved = hi[axis];
    hi[axis] = s;
    check_split_invariant(tree, r[1], (axis + 1) % D, lo, hi);
    hi[axis] = saved;
    saved = lo[axis];
    lo[axis] = s;
    check_split_invariant(tree, r[2], (axis + 1) % D, lo, hi);
    lo[axis] = saved;
}

template <unsigned D>
void closest_matches_brute_force(unsigned n, int extent, unsigned seed)
{
    dense2D<double> pos = lattice_points(D, n, extent, seed);
    tree_t<D> tree(&pos);
    insert_shuffled(tree, n);
    std::vector<double> lo(D, -INFINITY), hi(D, INFINITY);
    check_split_invariant(tree, 0, 0, lo, hi);

    std::mt19937 rng(seed + 1);
    std::uniform_int_distribution<int> pick(-2 * extent, 2 * extent);
    for (int q = 0; q < 3000; ++q) {
        typename tree_t<D>::point_type p;
        for (unsigned k = 0; k < D; ++k) p[k] = pick(rng) * 0.5;
        unsigned excluded = q % n;
        auto everything = [](unsigned) { return true; };
        auto all_but = [excluded](unsigned v) { return v != excluded; };
        ASSERT_EQ(tree.find_closest(p), expected_closest(tree, p.v, everything)) << q;
        qv7::binder2nd<std::not_equal_to<unsigned>> not_excluded({}, excluded);
        ASSERT_EQ(tree.find_closest_if(p, not_excluded), expected_closest(tree, p.v, all_but)) << q;
    }
}

template <unsigned D>
void box_matches_brute_force(unsigned n, int extent, unsigned seed)
{
    dense2D<double> pos = lattice_points(D, n, extent, seed);
    tree_t<D> tree(&pos);
    insert_shuffled(tree, n);
    std::vector<unsigned> order;
    node_left_right(tree, 0, order);

    std::mt19937 rng(seed + 7);
    std::uniform_int_distribution<int> pick(-extent - 1, extent + 1);
    for (int q = 0; q < 500; ++q) {
        double box[2 * D];
        for (unsigned k = 0; k < D; ++k) {
            int a = pick(rng), b = pick(rng);
            box[k] = std::min(a, b);
            box[D + k] = std::max(a, b);
        }
        dense1D<unsigned, 8> found;
        found.push_back(77);  // appended to, never cleared
        tree.__search1(box, 0, 0, std::back_inserter(found));
        std::vector<unsigned> expected{77};
        for (unsigned node : order) {
            bool inside = true;
            for (unsigned k = 0; k < D; ++k) inside = inside && box[k] <= pos(k, node) && pos(k, node) <= box[D + k];
            if (inside) expected.push_back(node);
        }
        ASSERT_EQ(std::vector<unsigned>(found.begin(), found.end()), expected) << q;
    }
}

}  // namespace

TEST(BisectionTree, InsertBuildsRecordsAndRefusesUnknownNodes)
{
    dense2D<double> pos = matrix({{0, 0}, {1, 5}, {-1, 2}, {1, -3}});
    tree_t<2> tree(&pos);
    EXPECT_TRUE(tree.insert(0));
    EXPECT_EQ(tree.size(), 1u);
    EXPECT_EQ(tree.nodes[0][1], NONE_ID);
    EXPECT_EQ(tree.nodes[0][2], NONE_ID);
    EXPECT_FALSE(tree.insert(4));
    EXPECT_FALSE(tree.insert(NONE_ID));
    EXPECT_EQ(tree.size(), 1u);
    EXPECT_TRUE(tree.insert(1));  // x 1 >= 0: right of the root
    EXPECT_TRUE(tree.insert(2));  // x -1 < 0: left of the root
    EXPECT_TRUE(tree.insert(3));  // right of the root, then y -3 < 5: left of node 1
    EXPECT_EQ(tree.nodes[0][2], 1u);
    EXPECT_EQ(tree.nodes[0][1], 2u);
    EXPECT_EQ(tree.nodes[1][1], 3u);
    EXPECT_EQ(tree.nodes[3][0], 3u);

    tree_t<2> detached(nullptr);
    EXPECT_FALSE(detached.insert(0));
    EXPECT_EQ(detached.find_closest({0, 0}), NONE_ID);
}

TEST(BisectionTree, EqualCoordinatesGoRightAndFormAChain)
{
    dense2D<double> pos = matrix({{2, 2, 2}, {2, 2, 2}, {2, 2, 2}});
    tree_t<3> tree(&pos);
    for (unsigned i = 0; i < 3; ++i) tree.insert(i);
    EXPECT_EQ(tree.nodes[0][2], 1u);
    EXPECT_EQ(tree.nodes[1][2], 2u);
    EXPECT_EQ(tree.nodes[0][1], NONE_ID);
    EXPECT_EQ(tree.nodes[1][1], NONE_ID);
}

TEST(BisectionTree, EmptyTreeAndExcludedOnlyNodeFindNothing)
{
    dense2D<double> pos = matrix({{1, 1}});
    tree_t<2> tree(&pos);
    EXPECT_EQ(tree.find_closest({0, 0}), NONE_ID);
    tree.insert(0);
    EXPECT_EQ(tree.find_closest({5, 5}), 0u);
    qv7::binder2nd<std::not_equal_to<unsigned>> not_zero({}, 0u);
    EXPECT_EQ(tree.find_closest_if({5, 5}, not_zero), NONE_ID);
    double distance = 0;
    EXPECT_EQ(tree.__tree_close({5, 5}, distance, not_zero), NONE_ID);
    EXPECT_EQ(distance, 1.7976931348623157e308);
}

TEST(BisectionTree, QueryOnACoincidentPairReturnsTheOneMetFirst)
{
    dense2D<double> pos = matrix({{3, 4}, {3, 4}});
    tree_t<2> first_zero(&pos), first_one(&pos);
    first_zero.insert(0);
    first_zero.insert(1);
    first_one.insert(1);
    first_one.insert(0);
    EXPECT_EQ(first_zero.find_closest({3, 4}), 0u);
    EXPECT_EQ(first_one.find_closest({3, 4}), 1u);
    double distance = -1;
    first_one.__tree_close({3, 4}, distance, qv7::yes_predicate<unsigned>());
    EXPECT_EQ(distance, 0.0);
}

TEST(BisectionTree, TieOffTheDescentGoesToTheRightSubtreeFirst)
{
    // Root (-0.1, 9); node 1 (5, 0.5) right of it, splitting on y; node 2 (-1, 0) left of the
    // root; node 3 (0, 1) right of node 1. The query (0, 0) descends root, node 1, and stops,
    // so the two nodes at distance 1 are met in the second phase: node 3 in the root's right
    // subtree comes before node 2 in its left one.
    dense2D<double> pos = matrix({{-0.1, 9}, {5, 0.5}, {-1, 0}, {0, 1}});
    tree_t<2> tree(&pos);
    for (unsigned i = 0; i < 4; ++i) tree.insert(i);
    ASSERT_EQ(tree.nodes[0][1], 2u);
    ASSERT_EQ(tree.nodes[1][2], 3u);
    double distance;
    EXPECT_EQ(tree.__tree_close({0, 0}, distance, qv7::yes_predicate<unsigned>()), 1u);
    EXPECT_EQ(tree.find_closest({0, 0}), 3u);
    qv7::binder2nd<std::not_equal_to<unsigned>> not_three({}, 3u);
    EXPECT_EQ(tree.find_closest_if({0, 0}, not_three), 2u);
}

TEST(BisectionTree, ClosestMatchesBruteForceWithTies2D) { closest_matches_brute_force<2>(2000, 12, 3); }
TEST(BisectionTree, ClosestMatchesBruteForceWithTies3D) { closest_matches_brute_force<3>(3000, 6, 4); }
TEST(BisectionTree, ClosestOnManyCoincidentNodes) { closest_matches_brute_force<3>(600, 1, 5); }

TEST(BisectionTree, BoxSearchMatchesBruteForceInWalkOrder)
{
    box_matches_brute_force<2>(1500, 10, 11);
    box_matches_brute_force<3>(2500, 5, 12);
}

TEST(BisectionTree, InvertedAndDegenerateBoxes)
{
    dense2D<double> pos = matrix({{1, 1}, {1, 1}, {1, 2}, {0, 1}});
    tree_t<2> tree(&pos);
    for (unsigned i = 0; i < 4; ++i) tree.insert(i);
    dense1D<unsigned, 8> found;
    double inverted[4] = {2, 2, 0, 0};
    tree.__search1(inverted, 0, 0, std::back_inserter(found));
    EXPECT_EQ(found.size(), 0u);
    double point[4] = {1, 1, 1, 1};
    tree.__search1(point, 0, 0, std::back_inserter(found));
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0], 0u);
    EXPECT_EQ(found[1], 1u);
}

TEST(BisectionTree, ReserveAvoidsReallocationDuringInsertion)
{
    dense2D<double> pos = lattice_points(3, 1000, 50, 8);
    tree_t<3> tree(&pos);
    tree.__reserve(1000);
    EXPECT_EQ(tree.size(), 0u);
    auto* block = tree.nodes.items.storage();
    std::size_t capacity = block->capacity;
    for (unsigned i = 0; i < 1000; ++i) tree.insert(i);
    EXPECT_EQ(tree.size(), 1000u);
    EXPECT_EQ(tree.nodes.items.storage(), block);
    EXPECT_EQ(block->capacity, capacity);
}

TEST(BisectionTree, LongChainOfCoincidentNodesDoesNotExhaustTheStack)
{
    // Coincident nodes all go right: the records of one long right chain, written directly since
    // inserting them would take quadratic time.
    unsigned const n = 1000000;
    dense2D<double> pos;
    pos.resize(2, n, 1.0);
    tree_t<2> tree(&pos);
    for (unsigned i = 0; i < n; ++i) {
        unsigned const record[3] = {i, NONE_ID, i + 1 < n ? i + 1 : NONE_ID};
        ASSERT_TRUE(tree.nodes.__construct(i, record));
    }
    qv7::binder2nd<std::not_equal_to<unsigned>> not_zero({}, 0u);
    EXPECT_EQ(tree.find_closest({1.5, 1.0}), 0u);
    EXPECT_EQ(tree.find_closest_if({1.5, 1.0}, not_zero), 1u);
}

TEST(BisectionTree, RelayoutKeepsTheShapeAndEveryResult)
{
    dense2D<double> pos = lattice_points(3, 3000, 5, 21);
    tree_t<3> tree(&pos);
    insert_shuffled(tree, 3000);
    std::vector<unsigned> shape_before;
    node_right_left(tree, 0, shape_before);

    std::mt19937 rng(22);
    std::uniform_int_distribution<int> pick(-12, 12);
    std::vector<tree_t<3>::point_type> queries(500);
    for (auto& p : queries)
        for (unsigned k = 0; k < 3; ++k) p[k] = pick(rng) * 0.5;
    auto answers = [&] {
        std::vector<unsigned> out;
        for (auto const& p : queries) {
            out.push_back(tree.find_closest(p));
            double box[6] = {p[0] - 1, p[1] - 1, p[2] - 1, p[0] + 1, p[1] + 1, p[2] + 1};
            dense1D<unsigned, 8> hits;
            tree.__search1(box, 0, 0, std::back_inserter(hits));
            out.insert(out.end(), hits.begin(), hits.end());
        }
        return out;
    };
    std::vector<unsigned> before = answers();

    tree.__relayout();
    std::vector<unsigned> shape_after;
    node_right_left(tree, 0, shape_after);
    EXPECT_EQ(shape_after, shape_before);
    for (unsigned slot = 0; slot < 3000; ++slot) {  // slots now follow the search order
        unsigned const* r = tree.nodes[slot];
        unsigned first_child = r[2] != NONE_ID ? r[2] : r[1];
        if (first_child != NONE_ID) {
            ASSERT_EQ(first_child, slot + 1);
        }
    }
    EXPECT_EQ(answers(), before);
    EXPECT_TRUE(tree.insert(7));  // still grows
    EXPECT_EQ(tree.size(), 3001u);
}
