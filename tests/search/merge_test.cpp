#include "tessarium/repair.h"

#include "nodes/node_arrays.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

using namespace node_arrays;
using qv7::dense1D;
using qv7::dense2D;
using qv7::NONE_ID;
using qv7::tessarium::merge;

namespace {

using U = std::vector<unsigned>;

dense2D<double> on_x_axis(std::initializer_list<double> xs)
{
    dense2D<double> pos;
    pos.resize(2, xs.size(), 0.0);
    std::size_t j = 0;
    for (double x : xs) pos(0, j++) = x;
    return pos;
}

dense2D<unsigned> one_column(std::initializer_list<unsigned> nodes)
{
    return matrix<unsigned>(nodes.size(), 1, nodes);
}

}  // namespace

TEST(MergeList, FirstListedSurvivesNotTheLowestNumber)
{
    dense2D<double> pos = on_x_axis({0.0, 0.5});
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pos, list({0u, 1u}), merged, 1.0), 1);
    EXPECT_EQ(values(merged), (U{0, 0}));
    EXPECT_EQ(merge(pos, list({1u, 0u}), merged, 1.0), 1);
    EXPECT_EQ(values(merged), (U{1, 1}));
}

TEST(MergeList, ToleranceIsInclusive)
{
    dense2D<double> pos = matrix<double>(3, 2, {0, 0, 0, 3, 4, 0});  // 3-4-5: distance exactly 5
    dense1D<unsigned, 8> merged, both = list({0u, 1u});
    EXPECT_EQ(merge(pos, both, merged, 5.0), 1);
    EXPECT_EQ(values(merged), (U{0, 0}));
    EXPECT_EQ(merge(pos, both, merged, std::nextafter(5.0, 0.0)), 0);
    EXPECT_EQ(values(merged), (U{0, 1}));

    dense2D<double> close = on_x_axis({0.0, 0.0, 1e-300});
    EXPECT_EQ(merge(close, list({0u, 1u, 2u}), merged, 0.0), 1);  // exact duplicates only
    EXPECT_EQ(values(merged), (U{0, 0, 2}));
}

TEST(MergeList, ChainsFollowTheMapWhileTheRankFalls)
{
    // a-b and b-c within tol, a-c not.
    dense2D<double> pos = on_x_axis({0, 1, 2});
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pos, list({0u, 1u, 2u}), merged, 1.0), 2);
    EXPECT_EQ(values(merged), (U{0, 0, 0}));
    EXPECT_EQ(merge(pos, list({1u, 0u, 2u}), merged, 1.0), 2);
    EXPECT_EQ(values(merged), (U{1, 1, 1}));
    EXPECT_EQ(merge(pos, list({2u, 1u, 0u}), merged, 1.0), 2);
    EXPECT_EQ(values(merged), (U{2, 2, 2}));
}

TEST(MergeList, RepeatsAndNoneIdInTheListAreIgnored)
{
    dense2D<double> pos = on_x_axis({0, 0, 7});
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pos, list({1u, NONE_ID, 1u, 0u}), merged, 0.5), 1);
    EXPECT_EQ(values(merged), (U{1, 1, 2}));
}

TEST(MergeList, TwoListsMoveOnlyTheFirstOntoTheSecond)
{
    dense2D<double> pos = on_x_axis({0, 0.1, 0.2, 0.15, 9});
    dense1D<unsigned, 8> merged;
    // 2 and 3 are close to each other but only in the second list: they stay. 3 is listed first.
    EXPECT_EQ(merge(pos, list({0u, 1u, 4u}), list({3u, 2u}), merged, 0.5), 2);
    EXPECT_EQ(values(merged), (U{3, 3, 2, 3, 4}));
    // Nodes of the first list never merge onto each other.
    EXPECT_EQ(merge(pos, list({0u, 1u}), list({4u}), merged, 0.5), 0);
    EXPECT_EQ(values(merged), (U{0, 1, 2, 3, 4}));
}

TEST(MergeList, TwoListsAgreeWithBruteForceOnLatticeTies)
{
    // Half-integer lattice points: many at exactly tol from each other, and duplicates. With
    // disjoint lists no chain forms, so each node of the first list goes to the first-listed node
    // of the second list within tol.
    for (unsigned rows : {2u, 3u}) {
        std::mt19937 rng(rows);
        std::uniform_int_distribution<int> pick(0, rows == 2 ? 40 : 14);
        unsigned const n = 4000;
        dense2D<double> pos;
        pos.resize(rows, n);
        for (unsigned j = 0; j < n; ++j)
            for (unsigned k = 0; k < rows; ++k) pos(k, j) = pick(rng) * 0.5;
        std::vector<unsigned> perm(n);
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

TEST(MergeList, ClustersCollapseOntoTheirFirstListedMember)
{
    // Clusters far apart compared with tol, whose members are all within tol of one another.
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> jitter(-0.01, 0.01), spread(-0.2, 0.2);
    std::vector<std::vector<double>> points;
    std::vector<unsigned> cluster;
    for (unsigned c = 0; c < 3000; ++c) {
        double centre[3] = {double(c % 15) + spread(rng), double(c / 15 % 15) + spread(rng), double(c / 225) + spread(rng)};
        unsigned members = 1 + rng() % 4;
        for (unsigned m = 0; m < members; ++m) {
            points.push_back({centre[0] + jitter(rng), centre[1] + jitter(rng), centre[2] + jitter(rng)});
            cluster.push_back(c);
        }
    }
    unsigned n = unsigned(points.size());
    dense2D<double> pos;
    pos.resize(3, n);
    for (unsigned j = 0; j < n; ++j)
        for (unsigned k = 0; k < 3; ++k) pos(k, j) = points[j][k];
    std::vector<unsigned> order(n);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(order.begin(), order.end(), rng);
    dense1D<unsigned, 8> IDs, merged;
    for (unsigned v : order) IDs.push_back(v);

    std::vector<unsigned> survivor(3000, NONE_ID);
    for (unsigned v : order)
        if (survivor[cluster[v]] == NONE_ID) survivor[cluster[v]] = v;
    EXPECT_EQ(merge(pos, IDs, merged, 0.05), int(n - 3000));
    for (unsigned j = 0; j < n; ++j) ASSERT_EQ(merged[j], survivor[cluster[j]]);
}

TEST(MergeList, NonFiniteAndFarApartCoordinates)
{
    double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    dense2D<double> pos = matrix<double>(2, 6, {0, 0, nan, 0, 0, 0, inf, 0, inf, 0, 1e300, 0});
    dense1D<unsigned, 8> all = list({0u, 1u, 2u, 3u, 4u, 5u}), merged;
    // inf - inf is NaN: the two infinite nodes are not within 0 of each other.
    EXPECT_EQ(merge(pos, all, merged, 0.0), 1);
    EXPECT_EQ(values(merged), (U{0, 1, 0, 3, 4, 5}));
    // An infinite tol reaches the infinite nodes from finite ones, but their own boxes are NaN.
    EXPECT_EQ(merge(pos, all, merged, inf), 2);
    EXPECT_EQ(values(merged), (U{0, 1, 0, 3, 4, 0}));

    dense2D<double> far = matrix<double>(3, 3, {0, 0, 0, 0, 0, 1e-9, 1e12, 1e12, -1e12});
    EXPECT_EQ(merge(far, merged, 2e-9), 1);
    EXPECT_EQ(values(merged), (U{0, 0, 2}));
}

TEST(MergeCoordinates, NodesTakeTheCoordinatesOfTheirSurvivor)
{
    dense2D<double> pos = matrix<double>(3, 4, {0, 0, 0, 0.5, 0, 0, 1, 0, 0, 5, 5, 5});
    dense2D<double> other = pos;  // shares the block: sees the change
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pos, merged, 0.5), 2);
    EXPECT_EQ(values(merged), (U{0, 0, 0, 3}));
    EXPECT_EQ(values(pos), (std::vector<double>{0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 5, 5}));
    EXPECT_EQ(values(other), values(pos));

    dense2D<double> flat = matrix<double>(2, 3, {1, 1, 4, 4, 1, 1.25});
    EXPECT_EQ(merge(flat, 0.25), 1);
    EXPECT_EQ(values(flat), (std::vector<double>{1, 1, 4, 4, 1, 1}));
}

TEST(MergeCodes, RefusalsComeInOrderAndEmptyTheMap)
{
    dense2D<double> pos = on_x_axis({0, 1});
    dense2D<double> one_row = matrix<double>(1, 2, {0, 1});
    dense2D<double> no_nodes;
    dense1D<unsigned, 8> merged = list({5u, 5u});
    dense1D<unsigned, 8> good = list({0u, 1u}), bad = list({0u, 2u});
    double nan = std::numeric_limits<double>::quiet_NaN();

    EXPECT_EQ(merge(no_nodes, merged, -1.0), 0);
    EXPECT_EQ(merged.size(), 0u);
    EXPECT_EQ(merge(one_row, merged, -1.0), -1);
    EXPECT_EQ(merge(pos, merged, -1.0), -3);
    EXPECT_EQ(merge(pos, -1.0), -3);
    EXPECT_EQ(merge(pos, merged, nan), 0);
    EXPECT_EQ(values(merged), (U{0, 1}));

    merged = list({5u});
    EXPECT_EQ(merge(no_nodes, bad, merged, -1.0), 0);
    EXPECT_EQ(merged.size(), 0u);
    EXPECT_EQ(merge(one_row, bad, merged, -1.0), -1);
    EXPECT_EQ(merge(pos, bad, merged, -1.0), -2);
    EXPECT_EQ(merge(pos, good, merged, -1.0), -4);
    EXPECT_EQ(merge(pos, good, merged, nan), 0);

    EXPECT_EQ(merge(pos, bad, bad, merged, -1.0), -2);
    EXPECT_EQ(merge(pos, good, bad, merged, -1.0), -3);
    EXPECT_EQ(merge(pos, good, good, merged, -1.0), -4);

    dense2D<unsigned> edges = one_column({0, 1}), wrong = one_column({0, 2});
    merged = list({5u});
    EXPECT_EQ(merge(pos, &edges, &edges, merged, -1.0, 9), 0);  // empty range: no checks
    EXPECT_EQ(merged.size(), 0u);
    EXPECT_EQ(merge(one_row, &edges, &edges + 1, merged, -1.0, 9), -1);
    EXPECT_EQ(merge(pos, &edges + 1, &edges, merged, -1.0, 9), -3);
    EXPECT_EQ(merge(pos, &edges, &edges + 1, merged, -1.0, 9), -5);
    EXPECT_EQ(merge(pos, edges, merged, 1.0, 3), -6);
    EXPECT_EQ(merge(pos, wrong, merged, 1.0, 1), -2);
    EXPECT_EQ(merge(pos, edges, wrong, 1.0, 0), -2);
    EXPECT_EQ(values(wrong), (U{0, 2}));
    EXPECT_EQ(merge(pos, edges, nan, 1), 0);
    EXPECT_EQ(values(edges), (U{0, 1}));
}

TEST(MergeModes, ShortEdgeWithinOneElementAgainstCoincidentNodesOfTwo)
{
    // Triangle A has the short edge 1-2; node 3 of triangle B lies on node 0 of A.
    dense2D<double> pos = matrix<double>(2, 6, {0, 0, 1, 0, 1, 0.01, 0, 0, -1, 0, 0, -1});
    dense2D<unsigned> A = one_column({0, 1, 2}), B = one_column({3, 4, 5});
    dense1D<unsigned, 8> merged;

    dense2D<unsigned> a1, b1;
    a1.copy(A);
    b1.copy(B);
    EXPECT_EQ(merge(pos, a1, b1, merged, 0.05, 1), 1);
    EXPECT_EQ(values(merged), (U{0, 1, 1, 3, 4, 5}));
    EXPECT_EQ(values(a1), (U{0, 1, 1}));
    EXPECT_EQ(values(b1), (U{3, 4, 5}));

    dense2D<unsigned> both[2];
    both[0].copy(A);
    both[1].copy(B);
    EXPECT_EQ(merge(pos, both, both + 2, merged, 0.05, 0), 2);
    EXPECT_EQ(values(merged), (U{0, 1, 1, 0, 4, 5}));
    EXPECT_EQ(values(both[0]), (U{0, 1, 1}));
    EXPECT_EQ(values(both[1]), (U{0, 4, 5}));
}

TEST(MergeModes, ShortestPairsGoFirst)
{
    // One 4-node column on a line: 0-1 and 2-3 exactly at tol, 1-2 much closer.
    dense2D<double> pos = on_x_axis({0, 1, 1.125, 2.125});
    dense1D<unsigned, 8> merged;
    dense2D<unsigned> quad = one_column({0, 1, 2, 3});
    EXPECT_EQ(merge(pos, quad, merged, 1.0, 1), 2);  // 2 onto 1, then 1 onto 0; 2-3 no longer free
    EXPECT_EQ(values(merged), (U{0, 0, 0, 3}));
    EXPECT_EQ(values(quad), (U{0, 0, 0, 3}));

    quad = one_column({0, 1, 2, 3});
    EXPECT_EQ(merge(pos, quad, merged, 1.0, 0), 3);  // the list rule takes 3 along the chain
    EXPECT_EQ(values(quad), (U{0, 0, 0, 0}));
}

TEST(MergeModes, RepeatedPassesFindPairsThatMergingBroughtTogether)
{
    dense2D<double> pos = on_x_axis({0, 0.375, 0.875});
    dense2D<unsigned> edges = matrix<unsigned>(2, 2, {0, 1, 1, 2});
    dense1D<unsigned, 8> merged;
    EXPECT_EQ(merge(pos, edges, merged, 1.0, 1), 1);
    EXPECT_EQ(values(merged), (U{0, 0, 2}));
    EXPECT_EQ(values(edges), (U{0, 0, 0, 2}));

    edges = matrix<unsigned>(2, 2, {0, 1, 1, 2});
    EXPECT_EQ(merge(pos, edges, merged, 1.0, 2), 2);
    EXPECT_EQ(values(merged), (U{0, 0, 0}));
    EXPECT_EQ(values(edges), (U{0, 0, 0, 0}));
}

TEST(MergeModes, MixedColumnsAndFormsWithoutMap)
{
    dense2D<double> pos = matrix<double>(3, 4, {0, 0, 0, 1, 0, 0, 1, 0, 1e-9, 0, 1, 0});
    dense2D<unsigned> mixed = matrix<unsigned>(4, 2, {0, 1, 2, NONE_ID, 2, 1, 3, NONE_ID});
    EXPECT_EQ(merge(pos, mixed, 1e-6, 1), 1);
    EXPECT_EQ(values(mixed), (U{0, 1, 1, NONE_ID, 1, 1, 3, NONE_ID}));

    dense2D<unsigned> range[1] = {matrix<unsigned>(2, 1, {3, 0})};
    EXPECT_EQ(merge(pos, range, range + 1, 2.0, 2), 1);
    EXPECT_EQ(values(range[0]), (U{0, 0}));
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
        int list_result, mode_result;
        {
            test_alloc::failing_scope guard(k);
            list_result = merge(pos, IDs, merged, 1.0);
        }
        if (list_result == -199) {
            refused = true;
            EXPECT_EQ(merged.size(), 0u);
        } else {
            EXPECT_EQ(list_result, 3);
            EXPECT_EQ(values(merged), (U{0, 0, 0, 3, 3}));
        }
        {
            test_alloc::failing_scope guard(k);
            mode_result = merge(pos, tris, merged, 0.6, 1);
        }
        if (mode_result != -199) {
            EXPECT_EQ(mode_result, 1);
            EXPECT_EQ(values(tris), (U{0, 1, 2, 2, 3, 3}));
        }
    }
    EXPECT_TRUE(refused);
    EXPECT_EQ(test_alloc::live_blocks(), before);
}
