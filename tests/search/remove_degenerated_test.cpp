#include "tessarium/repair.h"

#include "nodes/node_arrays.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

using namespace node_arrays;
using qv7::dense1D;
using qv7::dense2D;
using qv7::NONE_ID;
using qv7::tessarium::merge;
using qv7::tessarium::remove_degenerated;
using U = std::vector<unsigned>;

TEST(RemoveDegenerated, EmptyMatrix)
{
    dense2D<unsigned> none;
    dense1D<unsigned, 8> IDs = list({4u});
    EXPECT_EQ(remove_degenerated(none, false), 0);
    EXPECT_EQ(remove_degenerated(none, IDs, true), 0);
    EXPECT_EQ(IDs.size(), 0u);
}

TEST(RemoveDegenerated, RepeatedNodesAnywhereInTheColumn)
{
    dense2D<unsigned> tris = matrix<unsigned>(3, 5, {1, 2, 2, 0, 1, 2, 7, 3, 7, 4, 5, 6, 3, 3, 3});
    dense1D<unsigned, 8> IDs;
    EXPECT_EQ(remove_degenerated(tris, IDs, false), 3);
    EXPECT_EQ(tris.rows(), 3u);
    EXPECT_EQ(values(tris), (U{0, 1, 2, 4, 5, 6}));  // order kept
    EXPECT_EQ(values(IDs), (U{NONE_ID, 0, NONE_ID, 1, NONE_ID}));
}

TEST(RemoveDegenerated, NoneIdRepeatsCountOnlyWhenStrict)
{
    dense2D<unsigned> faces = matrix<unsigned>(4, 1, {1, 2, 3, NONE_ID});
    EXPECT_EQ(remove_degenerated(faces, false), 0);
    EXPECT_EQ(remove_degenerated(faces, true), 0);  // a single NONE_ID has no equal neighbour

    dense2D<unsigned> solids = matrix<unsigned>(8, 2, {1, 2, 3, 4, NONE_ID, NONE_ID, NONE_ID, NONE_ID,  //
                                                       1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(remove_degenerated(solids, false), 0);
    dense1D<unsigned, 8> IDs;
    EXPECT_EQ(remove_degenerated(solids, IDs, true), 1);
    EXPECT_EQ(values(IDs), (U{NONE_ID, 0}));
    EXPECT_EQ(values(solids), (U{1, 2, 3, 4, 5, 6, 7, 8}));

    // A repeated real node is degenerate even among repeated NONE_ID.
    dense2D<unsigned> mixed = matrix<unsigned>(8, 1, {1, 2, 1, 4, NONE_ID, NONE_ID, NONE_ID, NONE_ID});
    EXPECT_EQ(remove_degenerated(mixed, false), 1);
}

TEST(RemoveDegenerated, AllColumnsRemovedLeavesZeroByZero)
{
    dense2D<unsigned> edges = matrix<unsigned>(2, 3, {0, 0, 1, 1, 5, 5});
    EXPECT_EQ(remove_degenerated(edges, false), 3);
    EXPECT_EQ(edges.rows(), 0u);
    EXPECT_EQ(edges.cols(), 0u);
}

TEST(RemoveDegenerated, ColumnsOfAViewAndOfAMergedMesh)
{
    // A view of the first two rows: columns are read and moved through its leading dimension.
    dense2D<unsigned> full = matrix<unsigned>(3, 3, {4, 4, 9, 1, 2, 9, 3, 3, 9});
    dense2D<unsigned> view = full.submatrix(0, 3, 2);
    EXPECT_EQ(remove_degenerated(view, false), 2);
    EXPECT_EQ(values(view), (U{1, 2}));

    // Merging the short edge of a triangle leaves it with a repeated node.
    dense2D<double> pos = matrix<double>(2, 4, {0, 0, 1, 0, 1, 1e-3, 0, 1});
    dense2D<unsigned> tris = matrix<unsigned>(3, 2, {0, 1, 2, 0, 2, 3});
    ASSERT_EQ(merge(pos, tris, 0.01, 1), 1);
    EXPECT_EQ(remove_degenerated(tris, false), 1);
    EXPECT_EQ(values(tris), (U{0, 1, 3}));
}

TEST(RemoveDegenerated, MemoryExhaustion)
{
    dense2D<unsigned> tris = matrix<unsigned>(3, 2, {1, 2, 2, 0, 1, 2});
    dense1D<unsigned, 8> IDs;
    {
        test_alloc::failing_scope guard(0);
        EXPECT_EQ(remove_degenerated(tris, IDs, false), -199);
    }
    {
        test_alloc::failing_scope guard(1);  // the map fits, the scratch column does not
        EXPECT_EQ(remove_degenerated(tris, IDs, false), -199);
    }
    EXPECT_EQ(tris.cols(), 2u);
    EXPECT_EQ(remove_degenerated(tris, IDs, false), 1);
}
