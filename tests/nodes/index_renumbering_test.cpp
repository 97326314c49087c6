// max_ID, shift_indices, change_indices, permutation, get_sorted_order and compress_indices.
#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

#include "node_arrays.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using namespace node_arrays;
namespace ts = qv7::tessarium;

TEST(MaxID, NoneIsNeverTheLargest)
{
    EXPECT_EQ(ts::max_ID(qv7::dense1D<unsigned, 8>()), NONE_ID);
    EXPECT_EQ(ts::max_ID(list({NONE_ID})), 0u);
    EXPECT_EQ(ts::max_ID(list({3u, NONE_ID, 7u, 2u})), 7u);
    auto M = matrix<unsigned>(3, 2, {1, 9, 50, NONE_ID, 4, 50});
    EXPECT_EQ(ts::max_ID(M.submatrix(0, 2, 2)), 9u);  // row 2 lies outside the view
}

TEST(ShiftIndices, NoneIsProtectedInListsAndMixedTypesOnly)
{
    auto ids = list({0u, NONE_ID, 5u});
    EXPECT_EQ(ts::shift_indices(ids, -1), 0);
    EXPECT_EQ(values(ids), (V{NONE_ID, NONE_ID, 4}));  // 0 - 1 wraps onto NONE_ID
    // The type is taken as given: a 4-row SOLID_MIX still skips NONE_ID.
    auto solid = matrix<unsigned>(4, 1, {1, NONE_ID, 3, 4});
    ts::shift_indices(solid, 10, qv7::ET_SOLID_MIX);
    EXPECT_EQ(values(solid), (V{11, NONE_ID, 13, 14}));
    auto quads = matrix<unsigned>(4, 1, {1, 2, 3, NONE_ID});
    ts::shift_indices(quads, 2, qv7::ET_FACE_Q4);
    EXPECT_EQ(values(quads), (V{3, 4, 5, 1}));
}

TEST(ChangeIndices, MapsOnlyNumbersInsideTheMap)
{
    auto map = list({10u, NONE_ID, 12u});
    auto ids = list({0u, 2u, 5u, NONE_ID, 1u});
    ts::change_indices(ids, map);
    EXPECT_EQ(values(ids), (V{10, 12, 5, NONE_ID, NONE_ID}));
    auto big = matrix<unsigned>(3, 2, {0, 2, 1, 2, 0, 2});
    auto view = big.submatrix(0, 2, 2);
    ts::change_indices(view, map);
    EXPECT_EQ(values(big), (V{10, 12, 1, 12, 10, 2}));
}

TEST(Permutation, ScatterWithPartialAndNonBijectivePermutations)
{
    auto d = list<double>({1.5, 2.5, 3.5});
    EXPECT_EQ(ts::permutation(d, list({1u, 2u, 0u})), 0);
    EXPECT_EQ(values(d), (D{3.5, 1.5, 2.5}));
    auto u = list({10u, 20u, 30u, 40u});
    EXPECT_EQ(ts::permutation(u, list({0u, 0u, 3u, NONE_ID})), 0);
    EXPECT_EQ(values(u), (V{20, 20, 30, 30}));
    auto v = list({10u, 20u, 30u});
    EXPECT_EQ(ts::permutation(v, list({2u})), 0);
    EXPECT_EQ(values(v), (V{10, 20, 10}));
    {
        test_alloc::failing_scope guard(0);
        EXPECT_EQ(ts::permutation(v, list({2u, 1u, 0u})), -199);
    }
    EXPECT_EQ(values(v), (V{10, 20, 10}));
}

TEST(CompressIndices, RenumbersInFirstSeenOrder)
{
    auto vals = list({7u, NONE_ID, 3u, 7u}), fast = list({7u, NONE_ID, 3u, 7u});
    qv7::dense1D<unsigned, 8> unique, map, unique2, map2;
    EXPECT_EQ(qv7::compress_indices(vals, unique, map), 0);
    EXPECT_EQ(values(vals), (V{0, NONE_ID, 1, 0}));
    EXPECT_EQ(values(unique), (V{7, 3}));
    EXPECT_EQ(values(map), (V{NONE_ID, NONE_ID, NONE_ID, 1, NONE_ID, NONE_ID, NONE_ID, 0}));
    EXPECT_EQ(qv7::compress_indices_fast(fast, unique2, map2), 0);
    EXPECT_EQ(values(fast), (V{0, NONE_ID, 1, 0}));
    EXPECT_EQ(values(unique2), (V{7, 3}));
    ASSERT_EQ(map2.size(), 8u);
    EXPECT_EQ(map2[7], 0u);
    EXPECT_EQ(map2[3], 1u);
}

TEST(CompressIndices, ExhaustedMemoryGivesMinus199)
{
    auto vals = list({4u, 1u});
    qv7::dense1D<unsigned, 8> unique, map;
    for (std::size_t successes : {0u, 1u}) {  // no map; a map but no list of old numbers
        test_alloc::failing_scope guard(successes);
        EXPECT_EQ(qv7::compress_indices(vals, unique, map), -199);
        EXPECT_EQ(qv7::compress_indices_fast(vals, unique, map), -199);
    }
}

TEST(GetSortedOrder, BucketsOfEachValueAndEmptyInputs)
{
    qv7::dense1D<unsigned, 8> order = list({5u}), offsets;
    EXPECT_EQ(ts::get_sorted_order(list({2u, 0u, 2u, NONE_ID}), order, offsets), 0);
    EXPECT_EQ(values(order), (V{1, 0, 2}));
    EXPECT_EQ(values(offsets), (V{0, 1, 1, 3}));
    EXPECT_EQ(ts::get_sorted_order(qv7::dense1D<unsigned, 8>(), order, offsets), 0);
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(values(offsets), (V{0}));
    EXPECT_EQ(ts::get_sorted_order(list({NONE_ID}), order, offsets), 0);
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(values(offsets), (V{0, 0}));
}

TEST(GetSortedOrder, MatchesAStableSortOfPositions)
{
    std::mt19937 gen(11);
    qv7::dense1D<unsigned, 8> vals, order, offsets;
    for (int i = 0; i < 20000; ++i) vals.push_back(gen() % 53 == 0 ? NONE_ID : gen() % 3000);
    V expected;
    for (unsigned i = 0; i < vals.size(); ++i)
        if (vals[i] != NONE_ID) expected.push_back(i);
    std::stable_sort(expected.begin(), expected.end(), [&](unsigned a, unsigned b) { return vals[a] < vals[b]; });
    ASSERT_EQ(ts::get_sorted_order(vals, order, offsets), 0);
    EXPECT_EQ(values(order), expected);
    ASSERT_EQ(offsets.size(), qv7::tessarium::max_ID(vals) + 2u);
    for (unsigned v = 0; v + 1 < offsets.size(); ++v)
        for (unsigned k = offsets[v]; k < offsets[v + 1]; ++k) ASSERT_EQ(vals[order[k]], v);
}

TEST(GetSortedOrder, OutOfMemoryEmptiesBothOutputs)
{
    qv7::dense1D<unsigned, 8> vals = list({3u, 1u}), order, offsets;
    for (std::size_t successes : {0u, 1u}) {
        test_alloc::failing_scope guard(successes);
        EXPECT_EQ(ts::get_sorted_order(vals, order, offsets), -199);
        EXPECT_TRUE(order.empty() && offsets.empty());
    }
}

}  // namespace
