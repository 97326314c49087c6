// clip, remove_degenerated and simplify.
#include "tessarium/repair.h"

#include "support/arrays.h"

#include <gtest/gtest.h>

using namespace test_arrays;
using qv7::dense2D;
using IDs = qv7::dense1D<unsigned, 8>;
using v3 = qv7::vector_fixed<double, 3>;
namespace ts = qv7::tessarium;

// Nodes 0..4 at x = -1, 0, 1, 2, 3, other coordinates 0.
dense2D<double> const row3 = matrix<double>(3, {-1, 0, 0, 0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0});
dense2D<double> const row2 = matrix<double>(2, {-1, 0, 0, 0, 1, 0, 2, 0, 3, 0});

TEST(Clip, KeepsWholeElementsStrictlyOnThePositiveSideAndAppends)
{
    dense2D<double> const& pos = row3;
    dense2D<unsigned> edges = matrix<unsigned>(2, {2, 3, 1, 2, 0, 1, 4, 3});
    for (double length : {1e-6, 1000.0}) {
        dense2D<unsigned> out;
        EXPECT_EQ(ts::clip(pos, edges, v3{{0, 7, 7}}, v3{{length, 0, 0}}, out), 0);
        EXPECT_EQ(values(out), (V{2, 3, 4, 3}));  // the edge touching the plane at node 1 is dropped
    }
    dense2D<unsigned> out = matrix<unsigned>(2, {9, 9});
    EXPECT_EQ(ts::clip(pos, edges, v3{{0.5, 0, 0}}, v3{{-1, 0, 0}}, out), 0);
    EXPECT_EQ(values(out), (V{9, 9, 0, 1}));

    // Mixed columns are judged on their real nodes; a 2-row matrix lies at z = 0.
    dense2D<unsigned> faces = matrix<unsigned>(4, {2, 3, 4, NONE_ID, 2, 3, 4, 0, NONE_ID, 0, 0, 0});
    dense2D<unsigned> above;
    EXPECT_EQ(ts::clip(row2, faces, v3{{1.5, 0, -1}}, v3{{1, 0, 1}}, above), 0);  // x + z > 0.5
    EXPECT_EQ(values(above), (V{2, 3, 4, NONE_ID, NONE_ID, 0, 0, 0}));

    // Refusals in order, leaving out alone.
    dense2D<unsigned> wrong = matrix<unsigned>(2, {NONE_ID, 5}), none;
    EXPECT_EQ(ts::clip(pos, none, v3{}, v3{}, above), 0);
    EXPECT_EQ(ts::clip(pos, wrong, v3{}, v3{}, above), -2);
    EXPECT_EQ(ts::clip(pos, edges, v3{}, v3{{1e-13, 0, 0}}, above), -4);
    EXPECT_EQ(ts::clip(pos, edges, v3{}, v3{{1, 0, 0}}, above), -5);
    EXPECT_EQ(above.cols(), 2u);
}

TEST(RemoveDegenerated, RepeatedNodesAnywhereAndNoneRepeatsOnlyWhenStrict)
{
    dense2D<unsigned> tris = matrix<unsigned>(3, {1, 2, 2, 0, 1, 2, 7, 3, 7, 4, 5, 6, 3, 3, 3});
    IDs map;
    EXPECT_EQ(ts::remove_degenerated(tris, map, false), 3);
    EXPECT_EQ(values(tris), (V{0, 1, 2, 4, 5, 6}));  // order kept
    EXPECT_EQ(values(map), (V{NONE_ID, 0, NONE_ID, 1, NONE_ID}));
    dense2D<unsigned> none;
    EXPECT_EQ(ts::remove_degenerated(none, map, true), 0);
    EXPECT_EQ(map.size(), 0u);
    // Through a view of the first two rows, whose leading dimension is 3.
    dense2D<unsigned> full = matrix<unsigned>(3, {4, 4, 9, 1, 2, 9, 3, 3, 9});
    dense2D<unsigned> view = full.submatrix(0, 3, 2);
    EXPECT_EQ(ts::remove_degenerated(view, false), 2);
    EXPECT_EQ(values(view), (V{1, 2}));

    // Mixed arrays end shorter elements with several NONE_ID; a single one never repeats.
    dense2D<unsigned> face = matrix<unsigned>(4, {1, 2, 3, NONE_ID});
    EXPECT_EQ(ts::remove_degenerated(face, true), 0);
    dense2D<unsigned> solids = matrix<unsigned>(8, {1, 2, 3, 4, NONE_ID, NONE_ID, NONE_ID, NONE_ID,  //
                                                    1, 2, 3, 4, 5,       6,       7,       8,        //
                                                    1, 2, 1, 4, NONE_ID, NONE_ID, NONE_ID, NONE_ID});
    EXPECT_EQ(ts::remove_degenerated(solids, map, false), 1);
    EXPECT_EQ(values(map), (V{0, 1, NONE_ID}));
    EXPECT_EQ(ts::remove_degenerated(solids, map, true), 1);
    EXPECT_EQ(values(map), (V{NONE_ID, 0}));
}

TEST(Simplify, UnusedNodesGoAndTheOthersMoveDownPastTheKeptOnes)
{
    dense2D<double> pos = matrix<double>(2, {0, 0, 1, 10, 2, 20, 3, 30, 4, 40, 5, 50});
    dense2D<unsigned> tris = matrix<unsigned>(3, {1, 2, 4, 4, 2, NONE_ID});
    IDs map;
    EXPECT_EQ(ts::simplify(pos, tris, map, 0), 3);
    EXPECT_EQ(values(map), (V{NONE_ID, 0, 1, NONE_ID, 2, NONE_ID}));
    EXPECT_EQ(values(pos), (D{1, 10, 2, 20, 4, 40}));
    EXPECT_EQ(values(tris), (V{0, 1, 2, 2, 1, NONE_ID}));

    // The first nbr_kept nodes stay, used or not; two connectivities are renumbered together.
    dense2D<unsigned> pair[2] = {matrix<unsigned>(2, {2, 2}), matrix<unsigned>(1, {2})}, &edges = pair[0];
    EXPECT_EQ(ts::simplify(pos, pair, pair + 2, map, 1), 1);
    EXPECT_EQ(values(map), (V{0, NONE_ID, 1}));
    EXPECT_EQ(values(pos), (D{1, 10, 4, 40}));
    EXPECT_EQ(values(edges), (V{1, 1}));
    EXPECT_EQ(values(pair[1]), (V{1}));
    EXPECT_EQ(ts::simplify(pos, edges, map, 2), 0);  // nothing can go: the map stays empty
    EXPECT_EQ(map.size(), 0u);

    dense2D<unsigned> good = matrix<unsigned>(2, {1, 0}), bad = matrix<unsigned>(2, {0, 2});
    map = list({7u});
    EXPECT_EQ(ts::simplify(pos, good, bad, 0), -2);
    EXPECT_EQ(ts::simplify(pos, &good + 1, &good, map, 0), -3);
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(ts::simplify(pos, &good, &good, map, 0), 0);
    EXPECT_EQ(values(pos), (D{1, 10, 4, 40}));
}

TEST(Repair, ExhaustedMemoryChangesNothing)
{
    for (std::size_t k = 0; k < 4; ++k) {
        dense2D<unsigned> out = matrix<unsigned>(2, {8, 8}), edges = matrix<unsigned>(2, {2, 3, 3, 4});
        int clipped = failing_after(k, [&] { return ts::clip(row3, edges, v3{}, v3{{1, 0, 0}}, out); });
        EXPECT_EQ(values(out), clipped == -199 ? (V{8, 8}) : (V{8, 8, 2, 3, 3, 4}));

        dense2D<unsigned> tris = matrix<unsigned>(3, {1, 2, 2, 0, 1, 2});
        IDs map;
        int removed = failing_after(k, [&] { return ts::remove_degenerated(tris, map, false); });
        EXPECT_EQ(values(tris), removed == -199 ? (V{1, 2, 2, 0, 1, 2}) : (V{0, 1, 2}));

        dense2D<double> nodes = matrix<double>(2, {0, 0, 1, 1, 2, 2});
        dense2D<unsigned> used = matrix<unsigned>(2, {2, 0});
        int simplified = failing_after(k, [&] { return ts::simplify(nodes, used, map, 0); });
        EXPECT_EQ(values(nodes), simplified == -199 ? (D{0, 0, 1, 1, 2, 2}) : (D{0, 0, 2, 2}));
        EXPECT_EQ(values(used), simplified == -199 ? (V{2, 0}) : (V{1, 0}));
        EXPECT_TRUE(k > 0 || (clipped == -199 && removed == -199 && simplified == -199));
    }
}
