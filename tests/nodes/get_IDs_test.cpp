#include "tessarium/index_utilities.h"

#include "node_arrays.h"

#include <gtest/gtest.h>

namespace {

using namespace node_arrays;
using qv7::tessarium::get_IDs;
constexpr unsigned N = NONE_ID;

TEST(GetIDs, ListsMatchFirstPositionsBothWays)
{
    qv7::dense1D<unsigned, 8> out_b, out_a;
    EXPECT_EQ(get_IDs(list({5u, 3u, 5u, N, 8u}), list({8u, 5u, 9u, N, 5u}), out_b, out_a), 0);
    EXPECT_EQ(values(out_b), (V{4, 0, N, N, 0}));
    EXPECT_EQ(values(out_a), (V{1, N, N, N, 0}));
}

struct ColumnMatch : ::testing::Test {
    qv7::dense1D<unsigned, 8> out_b, out_a;
    void match(qv7::dense2D<unsigned> const& a, qv7::dense2D<unsigned> const& b, bool ordered)
    {
        ASSERT_EQ(get_IDs(a, b, out_b, out_a, ordered), 0);
    }
};

TEST_F(ColumnMatch, LoopsMatchFromAnyStartInEitherDirectionUnlessOrdered)
{
    auto a = matrix<unsigned>(4, 1, {1, 2, 3, 4});
    // Reversed, turned start, turned start reversed, another loop on the same nodes, identical.
    auto b = matrix<unsigned>(4, 5, {4, 3, 2, 1, 3, 4, 1, 2, 2, 1, 4, 3, 1, 3, 2, 4, 1, 2, 3, 4});
    match(a, b, false);
    EXPECT_EQ(values(out_b), (V{0, 0, 0, N, 0}));
    EXPECT_EQ(values(out_a), (V{0}));
    match(a, b, true);
    EXPECT_EQ(values(out_b), (V{N, N, N, N, 0}));
    EXPECT_EQ(values(out_a), (V{4}));
}

TEST_F(ColumnMatch, LowestDuplicateWinsAndEveryDuplicateLearnsTheLowestMatch)
{
    auto a = matrix<unsigned>(3, 4, {1, 2, 3, 7, 8, 9, 3, 1, 2, 1, 2, 3});
    auto b = matrix<unsigned>(3, 3, {2, 3, 1, 9, 9, 9, 2, 1, 3});
    match(a, b, false);
    EXPECT_EQ(values(out_b), (V{0, N, 0}));
    EXPECT_EQ(values(out_a), (V{0, N, 0, 0}));
    match(matrix<unsigned>(1, 3, {5, 6, 5}), matrix<unsigned>(1, 2, {6, 5}), true);
    EXPECT_EQ(values(out_b), (V{1, 0}));
    EXPECT_EQ(values(out_a), (V{1, 0, 1}));
}

TEST_F(ColumnMatch, EqualKeysOfDifferentColumnsDoNotMatch)
{
    // The terms of 0 and 3 add up to those of 1 and 2, so both columns share one key.
    match(matrix<unsigned>(2, 1, {0, 3}), matrix<unsigned>(2, 2, {1, 2, 3, 0}), false);
    EXPECT_EQ(values(out_b), (V{N, 0}));
    EXPECT_EQ(values(out_a), (V{1}));
}

TEST_F(ColumnMatch, RowMismatchEmptiesTheOutputs)
{
    out_b = list({1u});
    EXPECT_EQ(get_IDs(matrix<unsigned>(3, 1, {1, 2, 3}), matrix<unsigned>(2, 1, {1, 2}), out_b, out_a, true), -2);
    EXPECT_TRUE(out_b.empty() && out_a.empty());
}

}  // namespace
