#include "search/bisection_tree.h"

#include "nodes/node_arrays.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <random>
#include <vector>

using node_arrays::matrix;
using qv7::dense1D;
using qv7::dense2D;
using qv7::NONE_ID;

namespace {

template <unsigned D>
using tree_t = qv7::bisection_tree<dense2D<double>, D>;
using not_node = qv7::binder2nd<std::not_equal_to<unsigned>>;

// Points on a coarse integer lattice: many coincident nodes and many exact distance ties.
template <unsigned D>
dense2D<double> lattice_points(unsigned n, int extent, unsigned seed)
{
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> pick(-extent, extent);
    dense2D<double> pos;
    pos.resize(D, n);
    for (unsigned j = 0; j < n; ++j)
        for (unsigned i = 0; i < D; ++i) pos(i, j) = pick(rng);
    return pos;
}

template <unsigned D>
void fill(tree_t<D>& tree, unsigned n)
{
    dense1D<unsigned, 8> all(n), scratch;
    for (unsigned i = 0; i < n; ++i) all[i] = i;
    ASSERT_EQ(qv7::__insert_shuffled(tree, all, scratch), n);
}

// Records in the order: record, the subtree on side `first` (1 left, 2 right), the other one.
template <unsigned D>
void walk(tree_t<D> const& tree, unsigned slot, unsigned first, std::vector<unsigned>& out)
{
    if (slot == NONE_ID) return;
    unsigned const* r = tree.nodes[slot];
    out.push_back(r[0]);
    walk(tree, r[first], first, out);
    walk(tree, r[3 - first], first, out);
}

// Brute force with the tree's tie rule: the smallest distance wins; among equals, the first one
// met descending towards the point (strictly greater goes left), else the first one in
// record-right-left order.
template <unsigned D>
unsigned expected_closest(tree_t<D> const& tree, double const* p, unsigned excluded)
{
    dense2D<double> const& pos = *tree.coords;
    auto squared = [&](unsigned v) {
        double q = 0;
        for (unsigned k = 0; k < D; ++k) q += (pos(k, v) - p[k]) * (pos(k, v) - p[k]);
        return q;
    };
    std::vector<unsigned> order, descent;
    walk(tree, 0, 2, order);
    for (unsigned slot = 0, axis = 0; slot != NONE_ID; axis = (axis + 1) % D) {
        unsigned const* r = tree.nodes[slot];
        descent.push_back(r[0]);
        slot = pos(axis, r[0]) > p[axis] ? r[1] : r[2];
    }
    double best = INFINITY;
    for (unsigned v : order)
        if (v != excluded) best = std::min(best, squared(v));
    for (auto const* list : {&descent, &order})
        for (unsigned v : *list)
            if (v != excluded && squared(v) == best) return v;
    return NONE_ID;
}

template <unsigned D>
void check_against_brute_force(unsigned n, int extent, unsigned seed)
{
    dense2D<double> pos = lattice_points<D>(n, extent, seed);
    tree_t<D> tree(&pos);
    fill(tree, n);
    std::vector<unsigned> left_first;
    walk(tree, 0, 1, left_first);
    std::mt19937 rng(seed + 1);
    std::uniform_int_distribution<int> pick(-2 * extent, 2 * extent);
    for (int q = 0; q < 2000; ++q) {
        typename tree_t<D>::point_type p;
        for (unsigned k = 0; k < D; ++k) p[k] = pick(rng) * 0.5;
        unsigned excluded = q % n;
        ASSERT_EQ(tree.find_closest(p), expected_closest(tree, p.v, NONE_ID)) << q;
        ASSERT_EQ(tree.find_closest_if(p, not_node({}, excluded)), expected_closest(tree, p.v, excluded)) << q;

        double box[2 * D];  // corners from two query points: sometimes inverted
        for (unsigned k = 0; k < D; ++k) box[k] = p[k], box[D + k] = pick(rng) * 0.5;
        dense1D<unsigned, 8> found;
        found.push_back(77);  // appended to, never cleared
        tree.__search1(box, 0, 0, std::back_inserter(found));
        std::vector<unsigned> expected{77};
        for (unsigned v : left_first) {
            bool inside = true;
            for (unsigned k = 0; k < D; ++k) inside = inside && box[k] <= pos(k, v) && pos(k, v) <= box[D + k];
            if (inside) expected.push_back(v);
        }
        ASSERT_EQ(node_arrays::values(found), expected) << q;
    }
}

}  // namespace

TEST(BisectionTree, InsertLinksRecordsAndRefusesUnknownNodes)
{
    dense2D<double> pos = matrix<double>(2, 5, {0, 0, 1, 5, -1, 2, 1, -3, 1, 5});
    tree_t<2> tree(&pos);
    EXPECT_EQ(tree.find_closest({0, 0}), NONE_ID);
    EXPECT_FALSE(tree.insert(5));
    EXPECT_FALSE(tree.insert(NONE_ID));
    EXPECT_EQ(tree.size(), 0u);
    for (unsigned i = 0; i < 5; ++i) EXPECT_TRUE(tree.insert(i));
    // 1 right of the root (x 1 >= 0), 2 left of it, 3 right then left of 1 (y -3 < 5), 4 equal to 1
    // on both axes: right of the root, right of 1.
    EXPECT_EQ(tree.nodes[0][1], 2u);
    EXPECT_EQ(tree.nodes[0][2], 1u);
    EXPECT_EQ(tree.nodes[1][1], 3u);
    EXPECT_EQ(tree.nodes[1][2], 4u);
    EXPECT_EQ(tree.nodes[4][1], NONE_ID);
    EXPECT_EQ(tree.find_closest({1, 5}), 1u);  // of the coincident pair, the one met first
    EXPECT_EQ(tree.find_closest_if({1, 5}, not_node({}, 1u)), 4u);

    tree_t<2> detached(nullptr);
    EXPECT_FALSE(detached.insert(0));
    tree_t<2> single(&pos);
    single.insert(0);
    double distance = 0;
    EXPECT_EQ(single.__tree_close({5, 5}, distance, not_node({}, 0u)), NONE_ID);
    EXPECT_EQ(distance, 1.7976931348623157e308);
    EXPECT_EQ(single.find_closest_if({5, 5}, not_node({}, 0u)), NONE_ID);
}

TEST(BisectionTree, TieOffTheDescentGoesToTheRightSubtreeFirst)
{
    // Root (-0.1, 9); node 1 (5, 0.5) right of it, splitting on y; node 2 (-1, 0) left of the root;
    // node 3 (0, 1) right of node 1. The query (0, 0) descends root, node 1 and stops, so the two
    // nodes at distance 1 are met in the second phase: node 3 in the root's right subtree first.
    dense2D<double> pos = matrix<double>(2, 4, {-0.1, 9, 5, 0.5, -1, 0, 0, 1});
    tree_t<2> tree(&pos);
    for (unsigned i = 0; i < 4; ++i) tree.insert(i);
    EXPECT_EQ(tree.find_closest({0, 0}), 3u);
    EXPECT_EQ(tree.find_closest_if({0, 0}, not_node({}, 3u)), 2u);
}

TEST(BisectionTree, SearchesAgreeWithBruteForce)
{
    check_against_brute_force<2>(2000, 12, 3);
    check_against_brute_force<3>(3000, 6, 4);
    check_against_brute_force<3>(600, 1, 5);  // mostly coincident nodes
}

TEST(BisectionTree, LongChainOfCoincidentNodesDoesNotExhaustTheStack)
{
    // Coincident nodes all go right: one long right chain, written directly since inserting it
    // would take quadratic time.
    unsigned const n = 1000000;
    dense2D<double> pos;
    pos.resize(2, n, 1.0);
    tree_t<2> tree(&pos);
    for (unsigned i = 0; i < n; ++i) {
        unsigned const record[3] = {i, NONE_ID, i + 1 < n ? i + 1 : NONE_ID};
        ASSERT_TRUE(tree.nodes.__construct(i, record));
    }
    EXPECT_EQ(tree.find_closest({1.5, 1.0}), 0u);
    EXPECT_EQ(tree.find_closest_if({1.5, 1.0}, not_node({}, 0u)), 1u);
}

TEST(BisectionTree, ReservedBuildAndRelayoutKeepEveryResult)
{
    dense2D<double> pos = lattice_points<3>(3000, 5, 21);
    tree_t<3> tree(&pos);
    tree.__reserve(3000);
    auto* block = tree.nodes.items.storage();
    fill(tree, 3000);
    EXPECT_EQ(tree.nodes.items.storage(), block);  // no reallocation while inserting

    std::vector<unsigned> shape;
    walk(tree, 0, 2, shape);
    std::vector<unsigned> before;
    for (int q = 0; q < 300; ++q) before.push_back(tree.find_closest({q % 7 - 3.0, q % 11 - 5.5, q % 5 - 2.0}));
    tree.__relayout();
    std::vector<unsigned> shape_after, after;
    walk(tree, 0, 2, shape_after);
    EXPECT_EQ(shape_after, shape);
    for (unsigned slot = 0; slot < 3000; ++slot) {  // slots follow the search order
        unsigned const* r = tree.nodes[slot];
        unsigned first_child = r[2] != NONE_ID ? r[2] : r[1];
        if (first_child != NONE_ID) {
            ASSERT_EQ(first_child, slot + 1);
        }
    }
    for (int q = 0; q < 300; ++q) after.push_back(tree.find_closest({q % 7 - 3.0, q % 11 - 5.5, q % 5 - 2.0}));
    EXPECT_EQ(after, before);
}
