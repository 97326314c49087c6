#include "tessarium/index_utilities.h"

#include "node_arrays.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using namespace node_arrays;
using qv7::NONE_ID;
using qv7::tessarium::get_sorted_order;
using V = std::vector<unsigned>;

TEST(GetSortedOrder, BucketsOfEachValue)
{
    qv7::dense1D<unsigned, 8> order = list({5u}), offsets;
    EXPECT_EQ(get_sorted_order(list({2u, 0u, 2u, NONE_ID}), order, offsets), 0);
    EXPECT_EQ(values(order), (V{1, 0, 2}));
    EXPECT_EQ(values(offsets), (V{0, 1, 1, 3}));
}

TEST(GetSortedOrder, EmptyAndAllNoneInputs)
{
    qv7::dense1D<unsigned, 8> order = list({5u}), offsets = list({5u, 6u});
    EXPECT_EQ(get_sorted_order(qv7::dense1D<unsigned, 8>(), order, offsets), 0);
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(values(offsets), (V{0}));

    EXPECT_EQ(get_sorted_order(list({NONE_ID, NONE_ID}), order, offsets), 0);
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(values(offsets), (V{0, 0}));
}

TEST(GetSortedOrder, MatchesAStableSortOfPositions)
{
    std::mt19937 gen(11);
    qv7::dense1D<unsigned, 8> vals;
    for (int i = 0; i < 20000; ++i) vals.push_back(gen() % 53 == 0 ? NONE_ID : gen() % 3000);
    V expected;
    for (unsigned i = 0; i < vals.size(); ++i)
        if (vals[i] != NONE_ID) expected.push_back(i);
    std::stable_sort(expected.begin(), expected.end(), [&](unsigned a, unsigned b) { return vals[a] < vals[b]; });

    qv7::dense1D<unsigned, 8> order, offsets;
    ASSERT_EQ(get_sorted_order(vals, order, offsets), 0);
    EXPECT_EQ(values(order), expected);
    unsigned m = qv7::tessarium::max_ID(vals);
    ASSERT_EQ(offsets.size(), m + 2u);
    for (unsigned v = 0; v <= m; ++v)
        for (unsigned k = offsets[v]; k < offsets[v + 1]; ++k) ASSERT_EQ(vals[order[k]], v);
}

TEST(GetSortedOrder, OutOfMemoryEmptiesBothOutputs)
{
    auto vals = list({3u, 1u});
    qv7::dense1D<unsigned, 8> order, offsets;
    for (std::size_t successes : {0u, 1u}) {
        test_alloc::failing_scope guard(successes);
        EXPECT_EQ(get_sorted_order(vals, order, offsets), -199);
        EXPECT_TRUE(order.empty());
        EXPECT_TRUE(offsets.empty());
    }
}

}  // namespace
