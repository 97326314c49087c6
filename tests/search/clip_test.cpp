#include "tessarium/repair.h"

#include "nodes/node_arrays.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

using namespace node_arrays;
using qv7::dense2D;
using qv7::tessarium::clip;
using v3 = qv7::vector_fixed<double, 3>;

namespace {

// Nodes 0..4 at x = -1, 0, 1, 2, 3, other coordinates 0.
dense2D<double> row_of_nodes(unsigned rows)
{
    dense2D<double> pos;
    pos.resize(rows, 5, 0.0);
    for (unsigned j = 0; j < 5; ++j) pos(0, j) = j - 1.0;
    return pos;
}

}  // namespace

TEST(Clip, KeepsWholeElementsStrictlyOnThePositiveSideAndAppends)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> edges = matrix<unsigned>(2, 4, {2, 3, 1, 2, 0, 1, 4, 3});
    for (double length : {1.0, 1000.0}) {
        dense2D<unsigned> out;
        EXPECT_EQ(clip(pos, edges, v3{0, 7, 7}, v3{length, 0, 0}, out), 0);
        EXPECT_EQ(values(out), (V{2, 3, 4, 3}));  // the edge touching the plane at node 1 is dropped
    }
    dense2D<unsigned> out = matrix<unsigned>(2, 1, {9, 9});
    EXPECT_EQ(clip(pos, edges, v3{0.5, 0, 0}, v3{-1, 0, 0}, out), 0);
    EXPECT_EQ(values(out), (V{9, 9, 0, 1}));

    // Mixed columns are judged on their real nodes; a 2-row matrix lies at z = 0.
    dense2D<double> flat = row_of_nodes(2);
    dense2D<unsigned> faces = matrix<unsigned>(4, 3, {2, 3, 4, NONE_ID, 2, 3, 4, 0, NONE_ID, 0, 0, 0});
    dense2D<unsigned> above;
    EXPECT_EQ(clip(flat, faces, v3{1.5, 0, -1}, v3{1, 0, 1}, above), 0);  // x + z > 0.5
    EXPECT_EQ(values(above), (V{2, 3, 4, NONE_ID, NONE_ID, 0, 0, 0}));
}

TEST(Clip, RefusalsInOrderLeaveOutAlone)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> edges = matrix<unsigned>(2, 1, {2, 3}), wrong = matrix<unsigned>(2, 1, {NONE_ID, 5}), none;
    dense2D<unsigned> out = matrix<unsigned>(4, 1, {1, 1, 1, 1});
    EXPECT_EQ(clip(pos, none, v3{0, 0, 0}, v3{0, 0, 0}, out), 0);
    EXPECT_EQ(clip(pos, wrong, v3{0, 0, 0}, v3{0, 0, 0}, out), -2);
    EXPECT_EQ(clip(pos, edges, v3{0, 0, 0}, v3{1e-13, 0, 0}, out), -4);
    EXPECT_EQ(clip(pos, edges, v3{0, 0, 0}, v3{1, 0, 0}, out), -5);
    EXPECT_EQ(values(out), (V{1, 1, 1, 1}));
}

TEST(Clip, MemoryExhaustionKeepsOldColumns)
{
    dense2D<double> pos = row_of_nodes(3);
    dense2D<unsigned> edges = matrix<unsigned>(2, 2, {2, 3, 3, 4});
    bool refused = false;
    for (std::size_t k = 0; k < 4; ++k) {
        dense2D<unsigned> out = matrix<unsigned>(2, 1, {8, 8});
        int result;
        {
            test_alloc::failing_scope guard(k);
            result = clip(pos, edges, v3{0, 0, 0}, v3{1, 0, 0}, out);
        }
        refused = refused || result == -199;
        EXPECT_EQ(values(out), result == -199 ? (V{8, 8}) : (V{8, 8, 2, 3, 3, 4}));
    }
    EXPECT_TRUE(refused);
}
