#include "tessarium/repair.h"

#include "support/arrays.h"
#include "support/plain_merge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <numeric>
#include <random>
#include <utility>

using namespace test_arrays;
using qv7::dense2D;
using qv7::tessarium::merge;
using IDs = qv7::dense1D<unsigned, 8>;

namespace {

double const inf = std::numeric_limits<double>::infinity(), NaN = std::numeric_limits<double>::quiet_NaN();

using refusal = std::pair<int, std::function<int()>>;  // code, call

}  // namespace

TEST(MergeList, FirstListedSurvivesWithinAnInclusiveTolerance)
{
    // Nodes on the x axis. The first listed survives, not the lowest number.
    IDs merged;
    EXPECT_EQ(merge(matrix<double>(2, {0, 0, 0.5, 0}), list({1u, NONE_ID, 1u, 0u}), merged, 1.0), 1);
    EXPECT_EQ(values(merged), (V{1, 1}));
    dense2D<double> pos = matrix<double>(3, {0, 0, 0, 3, 4, 0, 0, 0, 0});  // 3-4-5 triangle
    EXPECT_EQ(merge(pos, list({0u, 1u}), merged, 5.0), 1);
    EXPECT_EQ(merge(pos, list({0u, 1u}), merged, std::nextafter(5.0, 0.0)), 0);
    EXPECT_EQ(values(merged), (V{0, 1, 2}));
    EXPECT_EQ(merge(pos, list({2u, 1u, 0u}), merged, 0.0), 1);  // exact duplicates only
    EXPECT_EQ(values(merged), (V{2, 1, 2}));

    // a-b and b-c within tol, a-c not: the map is followed while the rank falls.
    EXPECT_EQ(merge(matrix<double>(2, {0, 0, 1, 0, 2, 0}), list({0u, 1u, 2u}), merged, 1.0), 2);
    EXPECT_EQ(values(merged), (V{0, 0, 0}));
    EXPECT_EQ(merge(matrix<double>(2, {0, 0, 1, 0, 2, 0}), list({1u, 0u, 2u}), merged, 1.0), 2);
    EXPECT_EQ(values(merged), (V{1, 1, 1}));
}

TEST(MergeList, TwoListsAgreeWithBruteForceOnLatticeTies)
{
    // Half-integer lattice points: many at exactly tol, and duplicates. With disjoint lists no chain
    // forms, so each node of the first list goes to the first-listed node of the second within tol,
    // and the nodes of the second list stay even when close to one another.
    for (unsigned rows : {2u, 3u}) {
        std::mt19937 rng(rows);
        unsigned const n = 4000, extent = rows == 2 ? 40 : 14;
        dense2D<double> pos;
        pos.resize(rows, n);
        for (double& x : pos.flat()) x = rng() % (extent + 1) * 0.5;
        V perm(n);
        std::iota(perm.begin(), perm.end(), 0u);
        std::shuffle(perm.begin(), perm.end(), rng);
        IDs first, second, merged;
        for (unsigned j = 0; j < n; ++j) (j % 2 ? first : second).push_back(perm[j]);

        ASSERT_GE(merge(pos, first, second, merged, 1.0), 0);
        for (unsigned i : first) {
            auto close = std::find_if(second.begin(), second.end(), [&](unsigned c) {
                double q = 0;
                for (unsigned k = 0; k < rows; ++k) q += (pos(k, c) - pos(k, i)) * (pos(k, c) - pos(k, i));
                return q <= 1.0;
            });
            ASSERT_EQ(merged[i], close == second.end() ? i : *close) << "node " << i;
        }
        for (unsigned c : second) ASSERT_EQ(merged[c], c);
    }
}

namespace {

IDs to_ids(V const& v)
{
    IDs out;
    for (unsigned x : v) out.push_back(x);
    return out;
}

}  // namespace

TEST(MergeList, DuplicatesAgreeWithThePlainAlgorithm)
{
    // Coordinates from a handful of values, signed zeros and non-finite ones among them, so that
    // most nodes have exact duplicates; lists repeat nodes and hold NONE_ID. Tol 0 keeps the exact
    // duplicates only; a small tol joins the 1 and 1 + 1e-12 as well.
    double const values_pool[] = {0.0, -0.0, 1.0, 1.0 + 1e-12, -2.5, 1e-300, inf, -inf, NaN};
    for (unsigned rows : {2u, 3u}) {
        for (unsigned trial = 0; trial < 6; ++trial) {
            std::mt19937 rng(10 * rows + trial);
            unsigned const n = 500, spread = trial < 3 ? 4 : 9;
            dense2D<double> pos;
            pos.resize(rows, n);
            for (double& x : pos.flat()) x = values_pool[rng() % spread];
            V ids1, ids2;
            for (unsigned j = 0; j < n; ++j) {
                unsigned v = rng() % 8 == 0 ? NONE_ID : static_cast<unsigned>(rng() % n);
                ids1.push_back(v);
                if (rng() % 3) ids2.push_back(rng() % 2 ? v : static_cast<unsigned>(rng() % n));
            }
            for (double tol : {0.0, -0.0, 1e-9}) {
                int expected_count = 0;
                V expected = plain_merge(pos, ids1, ids1, tol, expected_count);
                IDs merged, one = to_ids(ids1);
                ASSERT_EQ(merge(pos, one, merged, tol), expected_count) << rows << " " << trial << " " << tol;
                ASSERT_EQ(values(merged), expected) << rows << " " << trial << " " << tol;
                expected = plain_merge(pos, ids1, ids2, tol, expected_count);
                ASSERT_EQ(merge(pos, one, to_ids(ids2), merged, tol), expected_count) << rows << " " << trial;
                ASSERT_EQ(values(merged), expected) << rows << " " << trial << " " << tol;

                // Mode 0 on the first list as a connectivity: the same map, applied to the entries.
                std::size_t cols = ids1.size() / 3;
                dense2D<unsigned> connect;
                connect.resize(3, cols);
                std::copy(ids1.begin(), ids1.begin() + 3 * cols, connect.data());
                V entries(ids1.begin(), ids1.begin() + 3 * cols);
                expected = plain_merge(pos, entries, entries, tol, expected_count);
                ASSERT_EQ(merge(pos, connect, merged, tol, 0u), expected_count) << rows << " " << trial;
                ASSERT_EQ(values(merged), expected) << rows << " " << trial << " " << tol;
                for (std::size_t e = 0; e < entries.size(); ++e)
                    ASSERT_EQ(connect.data()[e], entries[e] == NONE_ID ? NONE_ID : expected[entries[e]]);
            }
        }
    }
}

TEST(MergeList, NonFiniteAndFarApartCoordinates)
{
    dense2D<double> pos = matrix<double>(2, {0, 0, NaN, 0, 0, 0, inf, 0, inf, 0, 1e300, 0});
    IDs all = list({0u, 1u, 2u, 3u, 4u, 5u}), merged;
    EXPECT_EQ(merge(pos, all, merged, 0.0), 1);  // inf - inf is NaN: infinite nodes stay apart
    EXPECT_EQ(values(merged), (V{0, 1, 0, 3, 4, 5}));
    // An infinite tol reaches the infinite nodes from finite ones, but their own boxes are NaN.
    EXPECT_EQ(merge(pos, all, merged, inf), 2);
    EXPECT_EQ(values(merged), (V{0, 1, 0, 3, 4, 0}));
    dense2D<double> far = matrix<double>(3, {0, 0, 0, 0, 0, 1e-9, 1e12, 1e12, -1e12});
    EXPECT_EQ(merge(far, merged, 2e-9), 1);
}

TEST(MergeCoordinates, NodesTakeTheCoordinatesOfTheirSurvivor)
{
    dense2D<double> pos = matrix<double>(3, {0, 0, 0, 0.5, 0, 0, 1, 0, 0, 5, 5, 5});
    dense2D<double> other = pos;  // shares the block: sees the change
    IDs merged;
    EXPECT_EQ(merge(pos, merged, 0.5), 2);
    EXPECT_EQ(values(merged), (V{0, 0, 0, 3}));
    EXPECT_EQ(values(other), (D{0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 5, 5}));
    dense2D<double> flat = matrix<double>(2, {1, 1, 4, 4, 1, 1.25});
    EXPECT_EQ(merge(flat, 0.25), 1);
    EXPECT_EQ(values(flat), (D{1, 1, 4, 4, 1, 1}));
    EXPECT_EQ(merge(flat, merged, NaN), 0);  // a NaN tol passes and merges nothing
    EXPECT_EQ(values(merged), (V{0, 1, 2}));
}

TEST(MergeCodes, RefusalsComeInOrderAndEmptyTheMap)
{
    dense2D<double> pos = matrix<double>(2, {0, 0, 1, 0}), one_row = matrix<double>(1, {0, 1}), no_nodes;
    IDs merged, good = list({0u, 1u}), bad = list({0u, 2u});
    dense2D<unsigned> edges = matrix<unsigned>(2, {0, 1}), wrong = matrix<unsigned>(2, {0, 2});
    refusal const cases[] = {
        {0, [&] { return merge(no_nodes, bad, merged, -1.0); }},  // no nodes: no checks
        {-1, [&] { return merge(one_row, merged, -1.0); }},
        {-3, [&] { return merge(pos, merged, -1.0); }},
        {-1, [&] { return merge(one_row, bad, merged, -1.0); }},
        {-2, [&] { return merge(pos, bad, merged, -1.0); }},
        {-4, [&] { return merge(pos, good, merged, -1.0); }},
        {-2, [&] { return merge(pos, bad, bad, merged, -1.0); }},
        {-3, [&] { return merge(pos, good, bad, merged, -1.0); }},
        {-4, [&] { return merge(pos, good, good, merged, -1.0); }},
        {0, [&] { return merge(pos, &edges, &edges, merged, -1.0, 9); }},  // empty range: no checks
        {-1, [&] { return merge(one_row, &edges, &edges + 1, merged, -1.0, 9); }},
        {-3, [&] { return merge(pos, &edges + 1, &edges, merged, -1.0, 9); }},
        {-5, [&] { return merge(pos, edges, merged, -1.0, 9); }},
        {-6, [&] { return merge(pos, edges, merged, 1.0, 3); }},
        {-2, [&] { return merge(pos, edges, wrong, merged, 1.0, 0); }},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        merged = list({5u, 5u});
        EXPECT_EQ(cases[i].second(), cases[i].first) << i;
        EXPECT_TRUE(merged.empty()) << i;
    }
    EXPECT_EQ(values(edges), (V{0, 1}));
    EXPECT_EQ(values(wrong), (V{0, 2}));
}

TEST(MergeModes, WithinOneElementClosestFirstAndRepeatedPasses)
{
    // Triangle A has the short edge 1-2; node 3 of triangle B lies on node 0 of A. Mode 1 merges
    // within an element only, mode 0 across elements.
    dense2D<double> pos = matrix<double>(2, {0, 0, 1, 0, 1, 0.01, 0, 0, -1, 0, 0, -1});
    IDs merged;
    dense2D<unsigned> A = matrix<unsigned>(3, {0, 1, 2}), B = matrix<unsigned>(3, {3, 4, 5});
    EXPECT_EQ(merge(pos, A, B, merged, 0.05, 1), 1);
    EXPECT_EQ(values(merged), (V{0, 1, 1, 3, 4, 5}));
    EXPECT_EQ(values(A), (V{0, 1, 1}));
    dense2D<unsigned> both[2] = {matrix<unsigned>(3, {0, 1, 2}), matrix<unsigned>(3, {3, 4, 5})};
    EXPECT_EQ(merge(pos, both, both + 2, merged, 0.05, 0), 2);
    EXPECT_EQ(values(merged), (V{0, 1, 1, 0, 4, 5}));
    EXPECT_EQ(values(both[1]), (V{0, 4, 5}));

    // One 4-node column on a line: 0-1 and 2-3 exactly at tol, 1-2 much closer. Mode 1 moves 2 onto
    // 1 first, then 1 onto 0, so 2-3 is no longer free; the list rule of mode 0 chains 3 along.
    dense2D<double> line = matrix<double>(2, {0, 0, 1, 0, 1.125, 0, 2.125, 0});
    for (unsigned mode : {1u, 0u}) {
        dense2D<unsigned> quad = matrix<unsigned>(4, {0, 1, 2, 3});
        EXPECT_EQ(merge(line, quad, merged, 1.0, mode), mode == 1 ? 2 : 3);
        EXPECT_EQ(values(quad), mode == 1 ? (V{0, 0, 0, 3}) : (V{0, 0, 0, 0}));
    }
    // Edges 0-1 and 1-2: once 1 is on 0, the second edge joins 0 and 2, which only mode 2 merges.
    dense2D<double> short_line = matrix<double>(2, {0, 0, 0.375, 0, 0.875, 0});
    for (unsigned mode : {1u, 2u}) {
        dense2D<unsigned> edges = matrix<unsigned>(2, {0, 1, 1, 2});
        EXPECT_EQ(merge(short_line, edges, merged, 1.0, mode), mode == 1 ? 1 : 2);
        EXPECT_EQ(values(merged), mode == 1 ? (V{0, 0, 2}) : (V{0, 0, 0}));
    }
}

TEST(MergeMemory, ExhaustionGivesMinus199OrTheFullResult)
{
    dense2D<double> pos = matrix<double>(2, {0, 0, 1, 0, 2, 0, 5, 0, 5.5, 0});
    IDs ids = list({0u, 1u, 2u, 3u, 4u});
    long before = test_alloc::live_blocks();
    for (std::size_t k = 0; k < 60; ++k) {
        IDs merged;
        dense2D<unsigned> tris = matrix<unsigned>(3, {0, 1, 2, 2, 3, 4});
        int by_list = failing_after(k, [&] { return merge(pos, ids, merged, 1.0); });
        int by_element = failing_after(k, [&] { return merge(pos, tris, 0.6, 1); });
        EXPECT_TRUE(k > 0 || (by_list == -199 && by_element == -199));
        EXPECT_EQ(values(merged), by_list == -199 ? V{} : (V{0, 0, 0, 3, 3}));
        EXPECT_EQ(values(tris), by_element == -199 ? (V{0, 1, 2, 2, 3, 4}) : (V{0, 1, 2, 2, 3, 3}));
    }
    EXPECT_EQ(test_alloc::live_blocks(), before);
}
