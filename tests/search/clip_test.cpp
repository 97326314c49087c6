#include "tessarium/repair.h"

#include "nodes/node_arrays.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

using namespace node_arrays;
using qv7::dense2D;
using qv7::NONE_ID;
using qv7::tessarium::clip;
using v3 = qv7::vector_fixed<double, 3>;
using U = std::vector<unsigned>;

namespace {

// Nodes 0..4 at x = -1, 0, 1, 2, 3 (y = z = 0).
dense2D<double> row_of_nodes(unsigned rows)
{
    dense2D<double> pos;
    pos.resize(rows, 5, 0.0);
    for (unsigned j = 0; j < 5; ++j) pos(0, j) = j - 1.0;
    return pos;
}

}  // namespace

TEST(Clip, KeepsElementsStrictlyOnThePositiveSide)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> edges = matrix<unsigned>(2, 4, {2, 3, 1, 2, 0, 2, 4, 3});
    dense2D<unsigned> out;
    EXPECT_EQ(clip(pos, edges, v3{0, 0, 0}, v3{1, 0, 0}, out), 0);
    EXPECT_EQ(values(out), (U{2, 3, 4, 3}));  // the edge touching the plane at node 1 is dropped

    for (double length : {1.0, 1000.0}) {
        dense2D<unsigned> again;
        EXPECT_EQ(clip(pos, edges, v3{0.5, 7, 7}, v3{length, 0, 0}, again), 0);
        EXPECT_EQ(values(again), (U{2, 3, 4, 3}));
    }
    dense2D<unsigned> reversed;
    EXPECT_EQ(clip(pos, edges, v3{0.5, 0, 0}, v3{-1, 0, 0}, reversed), 0);
    EXPECT_EQ(reversed.cols(), 0u);
}

TEST(Clip, AppendsToWhatOutHolds)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> edges = matrix<unsigned>(2, 2, {0, 1, 3, 4});
    dense2D<unsigned> out = matrix<unsigned>(2, 1, {9, 9});
    EXPECT_EQ(clip(pos, edges, v3{0, 0, 0}, v3{1, 0, 0}, out), 0);
    EXPECT_EQ(clip(pos, edges, v3{0.5, 0, 0}, v3{-1, 0, 0}, out), 0);
    EXPECT_EQ(values(out), (U{9, 9, 3, 4, 0, 1}));
}

TEST(Clip, MixedColumnsAreJudgedOnTheirRealNodes)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> faces = matrix<unsigned>(4, 3, {2, 3, 4, NONE_ID, 2, 3, 4, 0, NONE_ID, NONE_ID, NONE_ID, NONE_ID});
    dense2D<unsigned> out;
    EXPECT_EQ(clip(pos, faces, v3{0, 0, 0}, v3{1, 0, 0}, out), 0);
    EXPECT_EQ(values(out), (U{2, 3, 4, NONE_ID, NONE_ID, NONE_ID, NONE_ID, NONE_ID}));
}

TEST(Clip, TwoRowCoordinatesLieAtZEqualZero)
{
    dense2D<double> pos = row_of_nodes(2);
    dense2D<unsigned> points = matrix<unsigned>(1, 5, {0, 1, 2, 3, 4});
    dense2D<unsigned> out;
    EXPECT_EQ(clip(pos, points, v3{0, 0, -1}, v3{0, 0, 1}, out), 0);  // z = 0 is above z = -1
    EXPECT_EQ(out.cols(), 5u);
    dense2D<unsigned> tilted;
    EXPECT_EQ(clip(pos, points, v3{1.5, 0, 100}, v3{1, 0, 1}, tilted), 0);  // x - 1.5 + z - 100 > 0: none
    EXPECT_EQ(tilted.cols(), 0u);
}

TEST(Clip, RefusalsInOrderLeaveOutAlone)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> edges = matrix<unsigned>(2, 1, {2, 3}), wrong = matrix<unsigned>(2, 1, {2, 5}), none;
    dense2D<unsigned> out = matrix<unsigned>(4, 1, {1, 1, 1, 1});
    EXPECT_EQ(clip(pos, none, v3{0, 0, 0}, v3{0, 0, 0}, out), 0);
    EXPECT_EQ(clip(pos, wrong, v3{0, 0, 0}, v3{0, 0, 0}, out), -2);
    EXPECT_EQ(clip(pos, edges, v3{0, 0, 0}, v3{0, 0, 0}, out), -4);
    EXPECT_EQ(clip(pos, edges, v3{0, 0, 0}, v3{1e-13, 0, 0}, out), -4);
    EXPECT_EQ(clip(pos, edges, v3{0, 0, 0}, v3{1, 0, 0}, out), -5);
    EXPECT_EQ(values(out), (U{1, 1, 1, 1}));
    dense2D<unsigned> with_none = matrix<unsigned>(2, 1, {NONE_ID, 7});
    EXPECT_EQ(clip(pos, with_none, v3{0, 0, 0}, v3{1, 0, 0}, out), -2);
    dense2D<unsigned> leading_none = matrix<unsigned>(2, 1, {NONE_ID, NONE_ID});
    dense2D<unsigned> fresh;
    EXPECT_EQ(clip(pos, leading_none, v3{0, 0, 0}, v3{1, 0, 0}, fresh), 0);
    EXPECT_EQ(values(fresh), (U{NONE_ID, NONE_ID}));
}

TEST(Clip, MemoryExhaustion)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> edges = matrix<unsigned>(2, 2, {2, 3, 3, 4});
    dense2D<unsigned> out = matrix<unsigned>(2, 1, {8, 8});
    bool refused = false;
    for (std::size_t k = 0; k < 4; ++k) {
        dense2D<unsigned> target;
        target.copy(out);
        int result;
        {
            test_alloc::failing_scope guard(k);
            result = clip(pos, edges, v3{0, 0, 0}, v3{1, 0, 0}, target);
        }
        if (result == -199) {
            refused = true;
            EXPECT_EQ(values(target), (U{8, 8}));
        } else {
            EXPECT_EQ(values(target), (U{8, 8, 2, 3, 3, 4}));
        }
    }
    EXPECT_TRUE(refused);
}
