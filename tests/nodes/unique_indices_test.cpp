#include "tessarium/index_utilities.h"

#include "node_arrays.h"

#include <gtest/gtest.h>

#include <random>
#include <unordered_set>

namespace {

using namespace node_arrays;
using qv7::tessarium::count_unique_indices;
using qv7::tessarium::unique_indices;

TEST(UniqueIndices, FirstSeenOrderAppendedWithoutNoneAndExcluded)
{
    auto connect = matrix<unsigned>(2, 2, {3, 1, 1, NONE_ID});
    auto out = list({3u});
    EXPECT_EQ(unique_indices(out, connect), 0);
    EXPECT_EQ(values(out), (V{3, 3, 1}));  // what out held is not known to the walk

    qv7::dense1D<unsigned, 8> fresh;
    EXPECT_EQ(unique_indices(fresh, connect, list({3u})), 0);
    EXPECT_EQ(values(fresh), (V{1}));
    EXPECT_EQ(unique_indices(fresh, list({5u, 2u, NONE_ID, 5u, 8u}), list({8u})), 0);
    EXPECT_EQ(values(fresh), (V{1, 5, 2}));
}

TEST(UniqueIndices, RangeFormWalksMatricesInTurnAndHonoursViews)
{
    // The view takes rows 0-1 of columns 1-2: entries 4, 5, 7, 8 of the 3 x 3 matrix.
    auto big = matrix<unsigned>(3, 3, {0, 1, 2, 4, 5, 6, 7, 8, 9});
    qv7::dense2D<unsigned> pair[2] = {big.submatrix(1, 2, 2), matrix<unsigned>(1, 3, {8, 3, NONE_ID})};
    qv7::dense1D<unsigned, 8> out;
    EXPECT_EQ(unique_indices(out, pair, pair + 2), 0);
    EXPECT_EQ(values(out), (V{4, 5, 7, 8, 3}));
    EXPECT_EQ(count_unique_indices(pair, pair + 2), 5);
    EXPECT_EQ(unique_indices(out, pair + 2, pair), -3);
    EXPECT_EQ(count_unique_indices(pair + 2, pair), -2);
    EXPECT_EQ(unique_indices(out, pair, pair), 0);
    EXPECT_EQ(count_unique_indices(pair, pair), 0);
    EXPECT_EQ(out.size(), 5u);
}

// Enough values to grow the set many times, against a plain reference walk.
TEST(UniqueIndices, LargeInputAgreesWithReference)
{
    std::mt19937 gen(3);
    qv7::dense2D<unsigned> connect;
    connect.resize(4, 50000);
    for (std::size_t j = 0; j < connect.cols(); ++j)
        for (std::size_t i = 0; i < 4; ++i) {
            unsigned r = gen();
            connect(i, j) = r % 97 == 0 ? NONE_ID : (j / 2 + r % 64) * (r % 2 ? 1 : 4096);
        }
    V expected;
    std::unordered_set<unsigned> seen{0, 64, 4096, NONE_ID}, distinct;
    for (unsigned v : values(connect)) {
        if (seen.insert(v).second) expected.push_back(v);
        if (v != NONE_ID) distinct.insert(v);
    }
    qv7::dense1D<unsigned, 8> out;
    EXPECT_EQ(unique_indices(out, connect, list({0u, 64u, 4096u})), 0);
    EXPECT_EQ(values(out), expected);
    EXPECT_EQ(count_unique_indices(connect), int(distinct.size()));
}

}  // namespace
