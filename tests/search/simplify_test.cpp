#include "tessarium/repair.h"

#include "nodes/node_arrays.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

using namespace node_arrays;
using qv7::dense1D;
using qv7::dense2D;
using qv7::tessarium::simplify;

TEST(Simplify, UnusedNodesGoAndTheOthersMoveDown)
{
    dense2D<double> pos = nodes(6, 2);
    dense2D<unsigned> tris = matrix<unsigned>(3, 2, {1, 2, 4, 4, 2, NONE_ID});
    dense1D<unsigned, 8> IDs;
    EXPECT_EQ(simplify(pos, tris, IDs, 0), 3);
    EXPECT_EQ(values(IDs), (V{NONE_ID, 0, 1, NONE_ID, 2, NONE_ID}));
    EXPECT_EQ(values(pos), (D{1, 10, 2, 20, 4, 40}));
    EXPECT_EQ(values(tris), (V{0, 1, 2, 2, 1, NONE_ID}));

    dense2D<unsigned> edges = matrix<unsigned>(2, 1, {0, 1}), points = matrix<unsigned>(1, 1, {2});
    EXPECT_EQ(simplify(pos, edges, points, 0), 0);
}

TEST(Simplify, ProtectedPrefixStaysUsedOrNot)
{
    dense2D<double> pos = nodes(5, 2);
    dense2D<unsigned> edges = matrix<unsigned>(2, 1, {4, 2});
    dense1D<unsigned, 8> IDs;
    EXPECT_EQ(simplify(pos, edges, IDs, 2), 1);
    EXPECT_EQ(values(IDs), (V{0, 1, 2, NONE_ID, 3}));
    EXPECT_EQ(values(pos), (D{0, 0, 1, 10, 2, 20, 4, 40}));
    EXPECT_EQ(values(edges), (V{3, 2}));

    EXPECT_EQ(simplify(pos, edges, IDs, 4), 0);  // nothing can go: the map stays empty
    EXPECT_EQ(IDs.size(), 0u);
    EXPECT_EQ(simplify(pos, edges, 0), 2);
    EXPECT_EQ(values(edges), (V{1, 0}));
}

TEST(Simplify, RefusalsAndExhaustionChangeNothing)
{
    dense2D<double> pos = nodes(4, 2);
    dense2D<unsigned> good = matrix<unsigned>(2, 1, {3, 1}), bad = matrix<unsigned>(2, 1, {0, 4});
    dense1D<unsigned, 8> IDs = list({7u});
    EXPECT_EQ(simplify(pos, good, bad, 0), -2);
    EXPECT_EQ(simplify(pos, &good + 1, &good, IDs, 0), -3);
    EXPECT_EQ(IDs.size(), 0u);
    EXPECT_EQ(simplify(pos, &good, &good, IDs, 0), 0);
    for (std::size_t k = 0; k < 2; ++k) {  // the map, then the flags
        test_alloc::failing_scope guard(k);
        EXPECT_EQ(simplify(pos, good, IDs, 0), -199);
    }
    EXPECT_EQ(values(pos), (D{0, 0, 1, 10, 2, 20, 3, 30}));
    EXPECT_EQ(values(good), (V{3, 1}));
}
