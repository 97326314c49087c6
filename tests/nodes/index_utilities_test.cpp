#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

#include "support/arrays.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

namespace {

using namespace test_arrays;
namespace ts = qv7::tessarium;
using IDs = qv7::dense1D<unsigned, 8>;
using both_ways = std::pair<V, V>;  // out_b, out_a
constexpr unsigned N = NONE_ID;

TEST(UniqueIndices, FirstSeenOrderAppendedWithoutNoneAndExcluded)
{
    auto out = list({3u});
    EXPECT_EQ(ts::unique_indices(out, matrix<unsigned>(2, {3, 1, 1, N}), list({1u})), 0);
    EXPECT_EQ(ts::unique_indices(out, list({5u, 2u, N, 5u, 8u}), list({8u})), 0);
    EXPECT_EQ(values(out), (V{3, 3, 5, 2}));  // what out held is not known to the walks
    EXPECT_EQ(ts::count_unique_indices(matrix<unsigned>(2, {3, 1, 1, N})), 2);

    // A range of matrices walked in turn; the view takes entries 4, 5, 7, 8 of the 3 x 3 matrix.
    auto big = matrix<unsigned>(3, {0, 1, 2, 4, 5, 6, 7, 8, 9});
    qv7::dense2D<unsigned> pair[2] = {big.submatrix(1, 2, 2), matrix<unsigned>(1, {8, 3, N})};
    IDs fresh;
    EXPECT_EQ(ts::unique_indices(fresh, pair, pair + 2), 0);
    EXPECT_EQ(values(fresh), (V{4, 5, 7, 8, 3}));
    EXPECT_EQ(ts::count_unique_indices(pair, pair + 2), 5);
    EXPECT_EQ(ts::unique_indices(fresh, pair + 2, pair), -3);
    EXPECT_EQ(ts::count_unique_indices(pair + 2, pair), -2);
    EXPECT_EQ(ts::count_unique_indices(pair, pair), 0);
    EXPECT_EQ(fresh.size(), 5u);
}

both_ways match(qv7::dense2D<unsigned> const& a, qv7::dense2D<unsigned> const& b, bool ordered)
{
    IDs out_b, out_a;
    EXPECT_EQ(ts::get_IDs(a, b, out_b, out_a, ordered), 0);
    return {values(out_b), values(out_a)};
}

TEST(GetIDs, LoopsMatchFromAnyStartInEitherDirectionUnlessOrdered)
{
    auto a = matrix<unsigned>(4, {1, 2, 3, 4});
    // Reversed, turned start, turned start reversed, another loop on the same nodes, identical.
    auto b = matrix<unsigned>(4, {4, 3, 2, 1, 3, 4, 1, 2, 2, 1, 4, 3, 1, 3, 2, 4, 1, 2, 3, 4});
    EXPECT_EQ(match(a, b, false), both_ways({0, 0, 0, N, 0}, {0}));
    EXPECT_EQ(match(a, b, true), both_ways({N, N, N, N, 0}, {4}));
    // The terms of 0 and 3 add up to those of 1 and 2: one key, yet no match.
    EXPECT_EQ(match(matrix<unsigned>(2, {0, 3}), matrix<unsigned>(2, {1, 2, 3, 0}), false), both_ways({N, 0}, {1}));
    IDs out_b, out_a;  // lists match by value, first positions both ways
    EXPECT_EQ(ts::get_IDs(list({5u, 3u, 5u, N, 8u}), list({8u, 5u, 9u, N, 5u}), out_b, out_a), 0);
    EXPECT_EQ(both_ways(values(out_b), values(out_a)), both_ways({4, 0, N, N, 0}, {1, N, N, N, 0}));
}

TEST(GetIDs, LowestDuplicateWinsAndEveryDuplicateLearnsTheLowestMatch)
{
    auto a = matrix<unsigned>(3, {1, 2, 3, 7, 8, 9, 3, 1, 2, 1, 2, 3});
    auto b = matrix<unsigned>(3, {2, 3, 1, 9, 9, 9, 2, 1, 3});
    EXPECT_EQ(match(a, b, false), both_ways({0, N, 0}, {0, N, 0, 0}));
    IDs out_b = list({1u}), out_a;  // rows that differ
    EXPECT_EQ(ts::get_IDs(a, matrix<unsigned>(2, {1, 2}), out_b, out_a, true), -2);
    EXPECT_TRUE(out_b.empty() && out_a.empty());
}

TEST(IndexArithmetic, LeavesNoneAndUnmappedNumbersAlone)
{
    EXPECT_EQ(ts::max_ID(IDs()), N);
    EXPECT_EQ(ts::max_ID(list({N})), 0u);
    auto M = matrix<unsigned>(3, {1, 9, 50, N, 4, 50});
    EXPECT_EQ(ts::max_ID(M.submatrix(0, 2, 2)), 9u);  // row 2 lies outside the view

    auto ids = list({0u, N, 5u});
    EXPECT_EQ(ts::shift_indices(ids, -1), 0);
    EXPECT_EQ(values(ids), (V{N, N, 4}));  // 0 - 1 wraps onto NONE_ID
    // The type is taken as given: a 4-row SOLID_MIX skips NONE_ID, FACE_Q4 shifts it too.
    auto solid = matrix<unsigned>(4, {1, N, 3, 4}), quads = matrix<unsigned>(4, {1, 2, 3, N});
    ts::shift_indices(solid, 10, qv7::ET_SOLID_MIX);
    ts::shift_indices(quads, 2, qv7::ET_FACE_Q4);
    EXPECT_EQ(values(solid), (V{11, N, 13, 14}));
    EXPECT_EQ(values(quads), (V{3, 4, 5, 1}));

    auto map = list({10u, N, 12u}), renumbered = list({0u, 2u, 5u, N, 1u});
    ts::change_indices(renumbered, map);
    EXPECT_EQ(values(renumbered), (V{10, 12, 5, N, N}));
    auto big = matrix<unsigned>(3, {0, 2, 1, 2, 0, 2});
    auto view = big.submatrix(0, 2, 2);
    ts::change_indices(view, map);
    EXPECT_EQ(values(big), (V{10, 12, 1, 12, 10, 2}));
}

TEST(Permutation, ScattersAndKeepsWhatNoEntryReaches)
{
    auto d = list<double>({1.5, 2.5, 3.5});
    EXPECT_EQ(ts::permutation(d, list({1u, 2u, 0u})), 0);
    EXPECT_EQ(values(d), (D{3.5, 1.5, 2.5}));
    auto u = list({10u, 20u, 30u, 40u, 50u});
    EXPECT_EQ(ts::permutation(u, list({0u, 0u, 3u, N})), 0);
    EXPECT_EQ(values(u), (V{20, 20, 30, 30, 50}));
}

TEST(CompressIndices, RenumbersInFirstSeenOrder)
{
    for (auto compress : {qv7::compress_indices, qv7::compress_indices_fast}) {
        IDs vals = list({7u, N, 3u, 7u}), unique, map;
        EXPECT_EQ(compress(vals, unique, map), 0);
        EXPECT_EQ(values(vals), (V{0, N, 1, 0}));
        EXPECT_EQ(values(unique), (V{7, 3}));
        ASSERT_EQ(map.size(), 8u);
        EXPECT_TRUE(map[7] == 0 && map[3] == 1);
        if (compress == qv7::compress_indices) {
            EXPECT_EQ(values(map), (V{N, N, N, 1, N, N, N, 0}));
        }
    }
}

TEST(GetSortedOrder, MatchesAStableSortOfPositions)
{
    IDs order = list({5u}), offsets;
    EXPECT_EQ(ts::get_sorted_order(IDs(), order, offsets), 0);
    EXPECT_TRUE(order.empty() && values(offsets) == V{0});
    EXPECT_EQ(ts::get_sorted_order(list({N}), order, offsets), 0);
    EXPECT_TRUE(order.empty() && values(offsets) == (V{0, 0}));

    std::mt19937 gen(11);
    IDs vals;
    for (int i = 0; i < 20000; ++i) vals.push_back(gen() % 53 == 0 ? N : gen() % 3000);
    V expected;
    for (unsigned i = 0; i < vals.size(); ++i)
        if (vals[i] != N) expected.push_back(i);
    std::stable_sort(expected.begin(), expected.end(), [&](unsigned a, unsigned b) { return vals[a] < vals[b]; });
    ASSERT_EQ(ts::get_sorted_order(vals, order, offsets), 0);
    EXPECT_EQ(values(order), expected);
    ASSERT_EQ(offsets.size(), ts::max_ID(vals) + 2u);
    for (unsigned v = 0; v + 1 < offsets.size(); ++v)
        for (unsigned k = offsets[v]; k < offsets[v + 1]; ++k) ASSERT_EQ(vals[order[k]], v);
}

TEST(IndexArrays, ExhaustedMemoryGivesMinus199)
{
    for (std::size_t k : {0u, 1u}) {  // the first or the second array is refused
        IDs vals = list({4u, 1u}), fast = list({4u, 1u}), u1, m1, u2, m2, order, offsets;
        EXPECT_EQ(failing_after(k, [&] { return qv7::compress_indices(vals, u1, m1); }), -199);
        EXPECT_EQ(failing_after(k, [&] { return qv7::compress_indices_fast(fast, u2, m2); }), -199);
        EXPECT_EQ(failing_after(k, [&] { return ts::get_sorted_order(vals, order, offsets); }), -199);
        EXPECT_TRUE(order.empty() && offsets.empty());
    }
    IDs data = list({5u, 6u}), perm = list({1u, 0u});
    EXPECT_EQ(failing_after(0, [&] { return ts::permutation(data, perm); }), -199);
    EXPECT_EQ(values(data), (V{5, 6}));
}

}  // namespace
