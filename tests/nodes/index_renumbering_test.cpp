// max_ID, shift_indices, change_indices, permutation and compress_indices.
#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

#include "node_arrays.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

namespace {

using namespace node_arrays;
using qv7::NONE_ID;
using V = std::vector<unsigned>;
namespace ts = qv7::tessarium;

TEST(MaxID, NoneIsNeverTheLargest)
{
    EXPECT_EQ(ts::max_ID(qv7::dense1D<unsigned, 8>()), NONE_ID);
    EXPECT_EQ(ts::max_ID(qv7::dense2D<unsigned>()), NONE_ID);
    EXPECT_EQ(ts::max_ID(list({NONE_ID})), 0u);
    EXPECT_EQ(ts::max_ID(list({3u, NONE_ID, 7u, 2u})), 7u);
    // Row 2 of the matrix (holding 50) is outside the view.
    auto M = matrix<unsigned>(3, 2, {1, 9, 50, NONE_ID, 4, 50});
    EXPECT_EQ(ts::max_ID(M.submatrix(0, 2, 2)), 9u);
    EXPECT_EQ(ts::max_ID(M), 50u);
}

TEST(ShiftIndices, ListSkipsNoneAndWrapsAround)
{
    auto ids = list({0u, NONE_ID, 5u});
    EXPECT_EQ(ts::shift_indices(ids, -1), 0);
    EXPECT_EQ(values(ids), (V{NONE_ID, NONE_ID, 4}));
    EXPECT_EQ(ts::shift_indices(ids, 0), 0);
    EXPECT_EQ(values(ids), (V{NONE_ID, NONE_ID, 4}));
}

TEST(ShiftIndices, OnlyMixedTypesProtectNone)
{
    auto mixed = matrix<unsigned>(4, 2, {1, 2, 3, NONE_ID, 4, 5, 6, 7});
    EXPECT_EQ(ts::shift_indices(mixed, 2, qv7::ET_FACE_MIX), 0);
    EXPECT_EQ(values(mixed), (V{3, 4, 5, NONE_ID, 6, 7, 8, 9}));

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
    EXPECT_EQ(values(d), (std::vector<double>{3.5, 1.5, 2.5}));

    auto u = list({10u, 20u, 30u, 40u});
    EXPECT_EQ(ts::permutation(u, list({0u, 0u, 3u, NONE_ID})), 0);
    EXPECT_EQ(values(u), (V{20, 20, 30, 30}));

    auto v = list({10u, 20u, 30u});
    EXPECT_EQ(ts::permutation(v, list({2u})), 0);
    EXPECT_EQ(values(v), (V{10, 20, 10}));

    auto w = list({10u, 20u});
    EXPECT_EQ(ts::permutation(w, list({1u, 0u, 0u, 1u})), 0);
    EXPECT_EQ(values(w), (V{20, 10}));

    qv7::dense1D<unsigned, 8> empty;
    EXPECT_EQ(ts::permutation(empty, list({0u})), 0);
}

TEST(Permutation, OutOfMemoryLeavesDataAlone)
{
    auto u = list({10u, 20u, 30u});
    auto perm = list({2u, 1u, 0u});
    {
        test_alloc::failing_scope guard(0);
        EXPECT_EQ(ts::permutation(u, perm), -199);
    }
    EXPECT_EQ(values(u), (V{10, 20, 30}));
}

TEST(CompressIndices, RenumbersInFirstSeenOrder)
{
    auto vals = list({7u, NONE_ID, 3u, 7u});
    qv7::dense1D<unsigned, 8> unique, map;
    EXPECT_EQ(qv7::compress_indices(vals, unique, map), 0);
    EXPECT_EQ(values(vals), (V{0, NONE_ID, 1, 0}));
    EXPECT_EQ(values(unique), (V{7, 3}));
    EXPECT_EQ(values(map), (V{NONE_ID, NONE_ID, NONE_ID, 1, NONE_ID, NONE_ID, NONE_ID, 0}));

    auto fast = list({7u, NONE_ID, 3u, 7u});
    qv7::dense1D<unsigned, 8> unique2, map2;
    EXPECT_EQ(qv7::compress_indices_fast(fast, unique2, map2), 0);
    EXPECT_EQ(values(fast), (V{0, NONE_ID, 1, 0}));
    EXPECT_EQ(values(unique2), (V{7, 3}));
    ASSERT_EQ(map2.size(), 8u);
    EXPECT_EQ(map2[7], 0u);
    EXPECT_EQ(map2[3], 1u);
}

TEST(CompressIndices, EmptyInputClearsOutputsAndFailuresGiveMinus199)
{
    qv7::dense1D<unsigned, 8> none, unique = list({1u}), map = list({1u});
    EXPECT_EQ(qv7::compress_indices(none, unique, map), 0);
    EXPECT_TRUE(unique.empty() && map.empty());

    auto vals = list({4u, 1u});
    {
        test_alloc::failing_scope guard(0);
        EXPECT_EQ(qv7::compress_indices(vals, unique, map), -199);
        EXPECT_EQ(qv7::compress_indices_fast(vals, unique, map), -199);
    }
    // The map fits, the list of old numbers does not.
    qv7::dense1D<unsigned, 8> fresh_unique, fresh_map;
    {
        test_alloc::failing_scope guard(1);
        EXPECT_EQ(qv7::compress_indices(vals, fresh_unique, fresh_map), -199);
    }
}

}  // namespace
