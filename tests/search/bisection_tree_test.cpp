#include "search/bisection_tree.h"

#include "support/arrays.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <numeric>
#include <random>
#include <vector>

using namespace test_arrays;
using qv7::dense1D;
using qv7::dense2D;

namespace {

template <unsigned D>
using tree_t = qv7::bisection_tree<dense2D<double>, D>;
using not_node = qv7::binder2nd<std::not_equal_to<unsigned>>;

// Records in the order: record, the subtree on side `first` (1 left, 2 right), the other one.
template <unsigned D>
void walk(tree_t<D> const& tree, unsigned slot, unsigned first, V& out)
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
    V order, descent;
    walk(tree, 0, 2, order);
    for (unsigned slot = 0, axis = 0; slot != NONE_ID; axis = (axis + 1) % D) {
        unsigned const* r = tree.nodes[slot];
        descent.push_back(r[0]);
        slot = pos(axis, r[0]) > p[axis] ? r[1] : r[2];
    }
    double best = INFINITY;  // over every node, not only those the tree holds
    for (unsigned v = 0; v < pos.cols(); ++v)
        if (v != excluded) best = std::min(best, squared(v));
    for (auto const* list : {&descent, &order})
        for (unsigned v : *list)
            if (v != excluded && squared(v) == best) return v;
    return NONE_ID;
}

// Points of an integer lattice, queried at half-integer points: on a coarse lattice, many
// coincident nodes and exact distance ties; on a fine one, searches that must look far. Box
// searches list the nodes in record-left-right order.
template <unsigned D>
void check_against_brute_force(unsigned n, int extent, unsigned seed)
{
    std::mt19937 rng(seed);
    auto pick = [&](int e) { return double(int(rng() % (2 * e + 1)) - e); };
    dense2D<double> pos;
    pos.resize(D, n);
    for (double& x : pos.flat()) x = pick(extent);
    tree_t<D> tree(&pos);
    tree.__reserve(n);
    auto* block = tree.nodes.items.storage();
    dense1D<unsigned, 8> all(n), scratch;
    std::iota(all.begin(), all.end(), 0u);
    ASSERT_EQ(qv7::__insert_shuffled(tree, all, scratch), n);
    ASSERT_EQ(tree.nodes.items.storage(), block);  // no reallocation while inserting
    V left_first;
    walk(tree, 0, 1, left_first);
    for (int q = 0; q < 2000; ++q) {
        if (q == 1000) tree.__relayout();  // which changes no result
        typename tree_t<D>::point_type p;
        double box[2 * D];  // corners from two query points: sometimes inverted
        for (unsigned k = 0; k < D; ++k) p[k] = box[k] = pick(2 * extent) * 0.5, box[D + k] = pick(2 * extent) * 0.5;
        unsigned excluded = q % n;
        ASSERT_EQ(tree.find_closest(p), expected_closest(tree, p.v, NONE_ID)) << q;
        ASSERT_EQ(tree.find_closest_if(p, not_node({}, excluded)), expected_closest(tree, p.v, excluded)) << q;
        dense1D<unsigned, 8> found = list({77u});  // appended to, never cleared
        tree.__search1(box, 0, 0, std::back_inserter(found));
        V expected{77};
        for (unsigned v : left_first) {
            bool inside = true;
            for (unsigned k = 0; k < D; ++k) inside = inside && box[k] <= pos(k, v) && pos(k, v) <= box[D + k];
            if (inside) expected.push_back(v);
        }
        ASSERT_EQ(values(found), expected) << q;
    }
    for (unsigned slot = 0; slot < n; ++slot) {  // the slots now follow the search order
        unsigned const* r = tree.nodes[slot];
        unsigned first_child = r[2] != NONE_ID ? r[2] : r[1];
        ASSERT_TRUE(first_child == NONE_ID || first_child == slot + 1);
    }
}

}  // namespace

TEST(BisectionTree, InsertLinksRecordsAndRefusesUnknownNodes)
{
    dense2D<double> pos = matrix<double>(2, {0, 0, 1, 5, -1, 2, 1, -3, 1, 5});
    tree_t<2> tree(&pos);
    EXPECT_EQ(tree.find_closest({0, 0}), NONE_ID);
    EXPECT_FALSE(tree.insert(5) || tree.insert(NONE_ID) || tree_t<2>(nullptr).insert(0));
    for (unsigned i = 0; i < 5; ++i) EXPECT_TRUE(tree.insert(i));
    // Records (node, left, right): 1 right of the root (x 1 >= 0), 2 left of it, 3 left of 1
    // (y -3 < 5), 4 equal to 1 on both axes: right of the root, right of 1.
    EXPECT_EQ(values(tree.nodes.items),
              (V{0, 2, 1, 1, 3, 4, 2, NONE_ID, NONE_ID, 3, NONE_ID, NONE_ID, 4, NONE_ID, NONE_ID}));
    EXPECT_EQ(tree.find_closest({1, 5}), 1u);  // of the coincident pair, the one met first
    EXPECT_EQ(tree.find_closest_if({1, 5}, not_node({}, 1u)), 4u);
    tree_t<2> single(&pos);
    single.insert(0);
    EXPECT_EQ(single.find_closest_if({5, 5}, not_node({}, 0u)), NONE_ID);
}

TEST(BisectionTree, SearchesAgreeWithBruteForceBeforeAndAfterRelayout)
{
    check_against_brute_force<2>(2000, 12, 3);
    check_against_brute_force<3>(3000, 6, 4);
    check_against_brute_force<3>(600, 1, 5);  // mostly coincident nodes
    check_against_brute_force<2>(300, 1000, 6);
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
