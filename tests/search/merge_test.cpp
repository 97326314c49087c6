#include "tessarium/repair.h"

#include "nodes/node_arrays.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

using namespace node_arrays;
using qv7::dense1D;
using qv7::dense2D;
using qv7::tessarium::merge;

namespace {

dense2D<double> on_x_axis(std::initializer_list<double> xs)
{
    dense2D<double> pos;
    pos.resize(2, xs.size(), 0.0);
    std::size_t j = 0;
    for (double x : xs) pos(0, j++) = x;
    return pos;
}

}  // namespace

TEST(MergeList, FirstListedSurvivesWithinAnInclusiveTolerance)
{
    dense2D<double> pair = on_x_axis({0.0, 0.5});
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pair, list({0u, 1u}), merged, 1.0), 1);
    EXPECT_EQ(values(merged), (V{0, 0}));
    EXPECT_EQ(merge(pair, list({1u, NONE_ID, 1u, 0u}), merged, 1.0), 1);  // not the lowest number
    EXPECT_EQ(values(merged), (V{1, 1}));

    dense2D<double> pos = matrix<double>(3, 3, {0, 0, 0, 3, 4, 0, 0, 0, 0});  // 3-4-5 triangle
    dense1D<unsigned, 8> first_two = list({0u, 1u});
    EXPECT_EQ(merge(pos, first_two, merged, 5.0), 1);
    EXPECT_EQ(merge(pos, first_two, merged, std::nextafter(5.0, 0.0)), 0);
    EXPECT_EQ(values(merged), (V{0, 1, 2}));
    EXPECT_EQ(merge(pos, list({2u, 1u, 0u}), merged, 0.0), 1);  // exact duplicates only
    EXPECT_EQ(values(merged), (V{2, 1, 2}));
}

TEST(MergeList, ChainsFollowTheMapWhileTheRankFalls)
{
    // a-b and b-c within tol, a-c not.
    dense2D<double> pos = on_x_axis({0, 1, 2});
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pos, list({0u, 1u, 2u}), merged, 1.0), 2);
    EXPECT_EQ(values(merged), (V{0, 0, 0}));
    EXPECT_EQ(merge(pos, list({1u, 0u, 2u}), merged, 1.0), 2);
    EXPECT_EQ(values(merged), (V{1, 1, 1}));
}

TEST(MergeList, TwoListsAgreeWithBruteForceOnLatticeTies)
{
    // Half-integer lattice points: many at exactly tol, and duplicates. With disjoint lists no chain
    // forms, so each node of the first list goes to the first-listed node of the second within tol,
    // and the nodes of the second list stay even when close to one another.
    for (unsigned rows : {2u, 3u}) {
        std::mt19937 rng(rows);
        std::uniform_int_distribution<int> pick(0, rows == 2 ? 40 : 14);
        unsigned const n = 4000;
        dense2D<double> pos;
        pos.resize(rows, n);
        for (unsigned j = 0; j < n; ++j)
            for (unsigned k = 0; k < rows; ++k) pos(k, j) = pick(rng) * 0.5;
        V perm(n);
        std::iota(perm.begin(), perm.end(), 0u);
        std::shuffle(perm.begin(), perm.end(), rng);
        dense1D<unsigned, 8> first, second, merged;
        for (unsigned j = 0; j < n; ++j) (j % 2 ? first : second).push_back(perm[j]);

        ASSERT_GE(merge(pos, first, second, merged, 1.0), 0);
        for (unsigned i : first) {
            unsigned expected = i;
            for (unsigned c : second) {
                double q = 0;
                for (unsigned k = 0; k < rows; ++k) q += (pos(k, c) - pos(k, i)) * (pos(k, c) - pos(k, i));
                if (q <= 1.0) {
                    expected = c;
                    break;
                }
            }
            ASSERT_EQ(merged[i], expected) << "node " << i;
        }
        for (unsigned c : second) ASSERT_EQ(merged[c], c);
    }
}

TEST(MergeList, NonFiniteAndFarApartCoordinates)
{
    double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    dense2D<double> pos = matrix<double>(2, 6, {0, 0, nan, 0, 0, 0, inf, 0, inf, 0, 1e300, 0});
    dense1D<unsigned, 8> all = list({0u, 1u, 2u, 3u, 4u, 5u}), merged;
    EXPECT_EQ(merge(pos, all, merged, 0.0), 1);  // inf - inf is NaN: infinite nodes stay apart
    EXPECT_EQ(values(merged), (V{0, 1, 0, 3, 4, 5}));
    // An infinite tol reaches the infinite nodes from finite ones, but their own boxes are NaN.
    EXPECT_EQ(merge(pos, all, merged, inf), 2);
    EXPECT_EQ(values(merged), (V{0, 1, 0, 3, 4, 0}));

    dense2D<double> far = matrix<double>(3, 3, {0, 0, 0, 0, 0, 1e-9, 1e12, 1e12, -1e12});
    EXPECT_EQ(merge(far, merged, 2e-9), 1);
}

TEST(MergeCoordinates, NodesTakeTheCoordinatesOfTheirSurvivor)
{
    dense2D<double> pos = matrix<double>(3, 4, {0, 0, 0, 0.5, 0, 0, 1, 0, 0, 5, 5, 5});
    dense2D<double> other = pos;  // shares the block: sees the change
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pos, merged, 0.5), 2);
    EXPECT_EQ(values(merged), (V{0, 0, 0, 3}));
    EXPECT_EQ(values(other), (D{0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 5, 5}));
    dense2D<double> flat = matrix<double>(2, 3, {1, 1, 4, 4, 1, 1.25});
    EXPECT_EQ(merge(flat, 0.25), 1);
    EXPECT_EQ(values(flat), (D{1, 1, 4, 4, 1, 1}));
}

TEST(MergeCodes, RefusalsComeInOrderAndEmptyTheMap)
{
    dense2D<double> pos = on_x_axis({0, 1}), one_row = matrix<double>(1, 2, {0, 1}), no_nodes;
    dense1D<unsigned, 8> merged = list({5u, 5u}), good = list({0u, 1u}), bad = list({0u, 2u});
    double nan = std::numeric_limits<double>::quiet_NaN();

    EXPECT_EQ(merge(no_nodes, bad, merged, -1.0), 0);
    EXPECT_EQ(merged.size(), 0u);
    EXPECT_EQ(merge(one_row, merged, -1.0), -1);
    EXPECT_EQ(merge(pos, -1.0), -3);
    EXPECT_EQ(merge(pos, merged, nan), 0);  // a NaN tol passes and merges nothing
    EXPECT_EQ(values(merged), (V{0, 1}));
    EXPECT_EQ(merge(one_row, bad, merged, -1.0), -1);
    EXPECT_EQ(merge(pos, bad, merged, -1.0), -2);
    EXPECT_EQ(merge(pos, good, merged, -1.0), -4);
    EXPECT_EQ(merged.size(), 0u);
    EXPECT_EQ(merge(pos, bad, bad, merged, -1.0), -2);
    EXPECT_EQ(merge(pos, good, bad, merged, -1.0), -3);
    EXPECT_EQ(merge(pos, good, good, merged, -1.0), -4);

    dense2D<unsigned> edges = matrix<unsigned>(2, 1, {0, 1}), wrong = matrix<unsigned>(2, 1, {0, 2});
    EXPECT_EQ(merge(pos, &edges, &edges, merged, -1.0, 9), 0);  // empty range: no checks
    EXPECT_EQ(merge(one_row, &edges, &edges + 1, merged, -1.0, 9), -1);
    EXPECT_EQ(merge(pos, &edges + 1, &edges, merged, -1.0, 9), -3);
    EXPECT_EQ(merge(pos, edges, merged, -1.0, 9), -5);
    EXPECT_EQ(merge(pos, edges, merged, 1.0, 3), -6);
    EXPECT_EQ(merge(pos, edges, wrong, 1.0, 0), -2);
    EXPECT_EQ(values(wrong), (V{0, 2}));
    EXPECT_EQ(merge(pos, edges, nan, 1), 0);
    EXPECT_EQ(values(edges), (V{0, 1}));
}

TEST(MergeModes, ShortEdgeWithinOneElementAgainstCoincidentNodesOfTwo)
{
    // Triangle A has the short edge 1-2; node 3 of triangle B lies on node 0 of A.
    dense2D<double> pos = matrix<double>(2, 6, {0, 0, 1, 0, 1, 0.01, 0, 0, -1, 0, 0, -1});
    dense1D<unsigned, 8> merged;
    dense2D<unsigned> A = matrix<unsigned>(3, 1, {0, 1, 2}), B = matrix<unsigned>(3, 1, {3, 4, 5});
    EXPECT_EQ(merge(pos, A, B, merged, 0.05, 1), 1);
    EXPECT_EQ(values(merged), (V{0, 1, 1, 3, 4, 5}));
    EXPECT_EQ(values(A), (V{0, 1, 1}));

    dense2D<unsigned> both[2] = {matrix<unsigned>(3, 1, {0, 1, 2}), matrix<unsigned>(3, 1, {3, 4, 5})};
    EXPECT_EQ(merge(pos, both, both + 2, merged, 0.05, 0), 2);
    EXPECT_EQ(values(merged), (V{0, 1, 1, 0, 4, 5}));
    EXPECT_EQ(values(both[1]), (V{0, 4, 5}));
}

TEST(MergeModes, ShortestPairsFirstAndRepeatedPasses)
{
    // One 4-node column on a line: 0-1 and 2-3 exactly at tol, 1-2 much closer. Mode 1 moves 2 onto
    // 1 first, then 1 onto 0, so 2-3 is no longer free; the list rule of mode 0 chains 3 along.
    dense2D<double> pos = on_x_axis({0, 1, 1.125, 2.125});
    dense1D<unsigned, 8> merged;
    dense2D<unsigned> quad = matrix<unsigned>(4, 1, {0, 1, 2, 3});
    EXPECT_EQ(merge(pos, quad, merged, 1.0, 1), 2);
    EXPECT_EQ(values(quad), (V{0, 0, 0, 3}));
    quad = matrix<unsigned>(4, 1, {0, 1, 2, 3});
    EXPECT_EQ(merge(pos, quad, merged, 1.0, 0), 3);
    EXPECT_EQ(values(quad), (V{0, 0, 0, 0}));

    // Two edges 0-1 and 1-2: once 1 is on 0, the second edge joins 0 and 2, which mode 2 merges.
    dense2D<double> line = on_x_axis({0, 0.375, 0.875});
    dense2D<unsigned> edges = matrix<unsigned>(2, 2, {0, 1, 1, 2});
    EXPECT_EQ(merge(line, edges, merged, 1.0, 1), 1);
    EXPECT_EQ(values(edges), (V{0, 0, 0, 2}));
    edges = matrix<unsigned>(2, 2, {0, 1, 1, 2});
    EXPECT_EQ(merge(line, edges, merged, 1.0, 2), 2);
    EXPECT_EQ(values(merged), (V{0, 0, 0}));
}

TEST(MergeMemory, ExhaustionGivesMinus199OrTheFullResult)
{
    dense2D<double> pos = on_x_axis({0, 1, 2, 5, 5.5});
    dense1D<unsigned, 8> IDs = list({0u, 1u, 2u, 3u, 4u});
    long before = test_alloc::live_blocks();
    bool refused = false;
    for (std::size_t k = 0; k < 60; ++k) {
        dense1D<unsigned, 8> merged;
        dense2D<unsigned> tris = matrix<unsigned>(3, 2, {0, 1, 2, 2, 3, 4});
        int by_list, by_element;
        {
            test_alloc::failing_scope guard(k);
            by_list = merge(pos, IDs, merged, 1.0);
            by_element = merge(pos, tris, 0.6, 1);
        }
        refused = refused || by_list == -199;
        EXPECT_EQ(values(merged), by_list == -199 ? V{} : (V{0, 0, 0, 3, 3}));
        EXPECT_EQ(values(tris), by_element == -199 ? (V{0, 1, 2, 2, 3, 4}) : (V{0, 1, 2, 2, 3, 3}));
    }
    EXPECT_TRUE(refused);
    EXPECT_EQ(test_alloc::live_blocks(), before);
}
