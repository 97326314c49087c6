#include "tessarium/repair.h"

#include "nodes/node_arrays.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

using namespace node_arrays;
using qv7::dense1D;
using qv7::dense2D;
using qv7::tessarium::remove_degenerated;

TEST(RemoveDegenerated, RepeatedNodesAnywhereInTheColumn)
{
    dense2D<unsigned> tris = matrix<unsigned>(3, 5, {1, 2, 2, 0, 1, 2, 7, 3, 7, 4, 5, 6, 3, 3, 3});
    dense1D<unsigned, 8> IDs;
    EXPECT_EQ(remove_degenerated(tris, IDs, false), 3);
    EXPECT_EQ(values(tris), (V{0, 1, 2, 4, 5, 6}));  // order kept
    EXPECT_EQ(values(IDs), (V{NONE_ID, 0, NONE_ID, 1, NONE_ID}));

    dense2D<unsigned> edges = matrix<unsigned>(2, 2, {0, 0, 5, 5}), none;
    EXPECT_EQ(remove_degenerated(edges, false), 2);
    EXPECT_EQ(edges.rows(), 0u);  // 0 x 0
    EXPECT_EQ(remove_degenerated(none, IDs, true), 0);
    EXPECT_EQ(IDs.size(), 0u);

    // Through a view of the first two rows, whose leading dimension is 3.
    dense2D<unsigned> full = matrix<unsigned>(3, 3, {4, 4, 9, 1, 2, 9, 3, 3, 9});
    dense2D<unsigned> view = full.submatrix(0, 3, 2);
    EXPECT_EQ(remove_degenerated(view, false), 2);
    EXPECT_EQ(values(view), (V{1, 2}));
}

TEST(RemoveDegenerated, NoneIdRepeatsCountOnlyWhenStrict)
{
    dense2D<unsigned> face = matrix<unsigned>(4, 1, {1, 2, 3, NONE_ID});
    EXPECT_EQ(remove_degenerated(face, true), 0);  // a single NONE_ID has no equal neighbour
    dense2D<unsigned> solids = matrix<unsigned>(8, 3, {1, 2, 3, 4, NONE_ID, NONE_ID, NONE_ID, NONE_ID,  //
                                                       1, 2, 3, 4, 5, 6, 7, 8,                          //
                                                       1, 2, 1, 4, NONE_ID, NONE_ID, NONE_ID, NONE_ID});
    dense1D<unsigned, 8> IDs;
    EXPECT_EQ(remove_degenerated(solids, IDs, false), 1);
    EXPECT_EQ(values(IDs), (V{0, 1, NONE_ID}));
    EXPECT_EQ(remove_degenerated(solids, IDs, true), 1);
    EXPECT_EQ(values(IDs), (V{NONE_ID, 0}));
}

TEST(RemoveDegenerated, MemoryExhaustion)
{
    dense2D<unsigned> tris = matrix<unsigned>(3, 2, {1, 2, 2, 0, 1, 2});
    dense1D<unsigned, 8> IDs;
    for (std::size_t k = 0; k < 2; ++k) {  // the map, then the scratch column
        test_alloc::failing_scope guard(k);
        EXPECT_EQ(remove_degenerated(tris, IDs, false), -199);
    }
    EXPECT_EQ(values(tris), (V{1, 2, 2, 0, 1, 2}));
}
