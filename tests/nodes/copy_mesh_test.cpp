// copy_mesh in its plain and pattern forms, and copy_sym_mesh.
#include "tessarium/transforms.h"

#include "node_arrays.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace node_arrays;
using vec2 = qv7::vector_fixed<double, 2>;
using vec3 = qv7::vector_fixed<double, 3>;
namespace ts = qv7::tessarium;

TEST(CopyMesh, CopiesUsedNodesInFirstSeenOrderAndKeepsMixedEnds)
{
    auto pos = nodes(5, 2);
    auto connect = matrix<unsigned>(4, 2, {3, 1, 2, NONE_ID, 1, 0, 2, 99});
    qv7::dense2D<unsigned> connectM = matrix<unsigned>(1, 1, {42});
    EXPECT_EQ(ts::copy_mesh(pos, connectM, connect), 0);
    EXPECT_EQ(values(pos.submatrix(5, 4, 2)), (D{3, 30, 1, 10, 2, 20, 0, 0}));
    // 99 names no node: it is neither copied nor renumbered.
    EXPECT_EQ(values(connectM), (V{5, 6, 7, NONE_ID, 6, 8, 7, 99}));

    EXPECT_EQ(ts::copy_mesh(pos, connect, connect), 0);  // target and source are one
    EXPECT_EQ(values(connect), (V{9, 10, 11, NONE_ID, 10, 12, 11, 99}));
}

// A 2 x 5 grid of nodes, (j % 5, j / 5), in four quadrangles.
struct Pattern : ::testing::Test {
    qv7::dense2D<double> pos;
    qv7::dense2D<unsigned> quads = matrix<unsigned>(4, 4, {0, 1, 6, 5, 1, 2, 7, 6, 2, 3, 8, 7, 3, 4, 9, 8});
    void SetUp() override
    {
        pos.resize(2, 10);
        for (unsigned j = 0; j < 10; ++j) pos(0, j) = j % 5, pos(1, j) = j / 5;
    }
};

TEST_F(Pattern, AppendsOneRotatedAndMovedBlockPerCopy)
{
    auto connectM = matrix<unsigned>(4, 1, {7, 7, 7, 7});
    EXPECT_EQ(ts::copy_mesh(pos, connectM, vec2{{10, 0}}, vec2{{0, 0}}, M_PI / 2, 3, quads), 0);
    ASSERT_EQ(pos.cols(), 40u);
    ASSERT_EQ(connectM.cols(), 13u);
    // First-seen order of the nodes: 0 1 6 5 2 7 3 8 4 9; copy k starts at node 10 k, so quad
    // (3, 4, 9, 8) of copy 3 is (30 + 6, 30 + 8, 30 + 9, 30 + 7).
    EXPECT_EQ(values(connectM.submatrix(12, 1, 4)), (V{36, 38, 39, 37}));
    // Node 1 at (1, 0): a quarter turn and 10 across in copy 1, half a turn and 20 in copy 2.
    EXPECT_NEAR(pos(0, 11), 10.0, 1e-14);
    EXPECT_NEAR(pos(1, 11), 1.0, 1e-14);
    EXPECT_NEAR(pos(0, 21), 19.0, 1e-14);
    EXPECT_NEAR(pos(1, 21), 0.0, 1e-14);
}

TEST_F(Pattern, SourceSharedWithTargetIsCopiedAsItWas)
{
    qv7::dense2D<unsigned> both = quads;
    EXPECT_EQ(ts::copy_mesh(pos, both, vec2{{5, 0}}, vec2{{0, 0}}, 0.0, 2, both), 0);
    EXPECT_EQ(both.cols(), 12u);
    EXPECT_EQ(values(both.submatrix(8, 1, 4)), (V{20, 21, 22, 23}));
    EXPECT_EQ(pos(0, 29), 14.0);
}

TEST_F(Pattern, ThreeDimensionalPatternAndEarlyReturns)
{
    qv7::dense2D<unsigned> connectM;
    vec3 up{{0, 0, 1}}, origin{{0, 0, 0}}, quarter{{0, 0, M_PI / 2}};
    EXPECT_EQ(ts::copy_mesh(pos, connectM, up, origin, quarter, 0, quads), 0);
    EXPECT_EQ(pos.cols(), 10u);
    EXPECT_EQ(ts::copy_mesh(pos, connectM, up, origin, quarter, 2, quads), 0);
    ASSERT_EQ(pos.cols(), 30u);
    EXPECT_EQ(connectM.cols(), 8u);
    EXPECT_NEAR(pos(0, 21), -1.0, 1e-14);
    EXPECT_NEAR(pos(1, 21), 0.0, 1e-14);
    EXPECT_NEAR(pos(2, 21), 2.0, 1e-14);
}

TEST(CopySymMesh, MirrorsTheCopiesAndKeepsTheirNodeOrder)
{
    auto pos = matrix<double>(2, 3, {3, 4, 0, 0, 1, 5});
    qv7::dense2D<unsigned> out;
    EXPECT_EQ(ts::copy_sym_mesh(pos, out, vec2{{1, 5}}, vec2{{2, 0}}, matrix<unsigned>(3, 1, {0, 1, 2})), 0);
    EXPECT_EQ(values(pos.submatrix(3, 3, 2)), (D{-1, 4, 2, 0, 1, 5}));
    EXPECT_EQ(values(out), (V{3, 4, 5}));
    // A plane through the origin with normal (1, 1, 0); the 2-row set gains z = 0.
    auto flat = matrix<double>(2, 1, {1, 0});
    EXPECT_EQ(ts::copy_sym_mesh(flat, out, vec3{{0, 0, 0}}, vec3{{1, 1, 0}}, matrix<unsigned>(1, 1, {0})), 0);
    ASSERT_EQ(flat.rows(), 3u);
    EXPECT_NEAR(flat(0, 1), 0.0, 1e-15);
    EXPECT_NEAR(flat(1, 1), -1.0, 1e-15);
}

TEST(CopySymMesh, ZeroNormalIsRefusedBeforeAnythingChanges)
{
    auto pos = matrix<double>(2, 1, {1, 2});
    auto single = matrix<unsigned>(1, 1, {0});
    qv7::dense2D<unsigned> out = matrix<unsigned>(1, 1, {5});
    EXPECT_EQ(ts::copy_sym_mesh(pos, out, vec3{{0, 0, 0}}, vec3{{0, 0, 0}}, single), -4);
    EXPECT_EQ(pos.rows() * pos.cols(), 2u);
    EXPECT_EQ(values(out), (V{5}));
    qv7::dense2D<double> empty;
    EXPECT_EQ(ts::copy_sym_mesh(empty, out, vec2{{0, 0}}, vec2{{0, 0}}, single), 0);
    test_alloc::failing_scope guard(0);
    EXPECT_EQ(ts::copy_sym_mesh(pos, out, vec2{{0, 0}}, vec2{{1, 0}}, single), -199);
}

}  // namespace
