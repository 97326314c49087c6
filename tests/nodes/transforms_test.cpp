// translate, rotate, zoom, inc_bounding_box, copy_mesh and copy_sym_mesh.
#include "tessarium/transforms.h"

#include "support/arrays.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using namespace test_arrays;
using vec2 = qv7::vector_fixed<double, 2>;
using vec3 = qv7::vector_fixed<double, 3>;
using pos_type = qv7::dense2D<double>;
namespace ts = qv7::tessarium;

struct move_case {
    std::function<int(pos_type&)> move;
    int moved;
    D after;
};

TEST(Transforms, MoveCountAndGrowToTheirDimension)
{
    // A third of a turn about (1, 1, 1) takes x to y, y to z and z to x.
    double const a = 2 * M_PI / 3 / std::sqrt(3.0);
    auto const tris = matrix<unsigned>(3, {0, 1, 1, 2, 1, NONE_ID});
    qv7::dense2D<unsigned> const none;
    // Each case starts from the nodes (0, 0), (1, 0), (2, 1). A list moves each occurrence and
    // skips numbers beyond the nodes; a connectivity moves each node once.
    move_case const cases[] = {
        {[](pos_type& p) {
             return ts::translate(p, vec3{{0, -0.0, 0}});
         },
         0,
         {0, 0, 1, 0, 2, 1}},
        {[&](pos_type& p) {
             return ts::translate(p, vec3{{1, 1, 1}}, none);
         },
         0,
         {0, 0, 1, 0, 2, 1}},
        {[](pos_type& p) {
             return ts::translate(p, vec2{{1, 2}}, list({0u, 0u, 7u, NONE_ID}));
         },
         2,
         {2, 4, 1, 0, 2, 1}},
        {[&](pos_type& p) {
             return ts::translate(p, vec2{{1, 1}}, tris);
         },
         3,
         {1, 1, 2, 1, 3, 2}},
        {[](pos_type& p) {
             return ts::translate(p, vec3{{0, 0, 2}});
         },
         3,
         {0, 0, 2, 1, 0, 2, 2, 1, 2}},
        {[](pos_type& p) {
             return ts::rotate(p, vec2{{1, 1}}, M_PI / 2);
         },
         3,
         {2, 0, 2, 1, 1, 2}},
        {[](pos_type& p) {
             return ts::rotate(p, vec2{{0, 0}}, 0.0);
         },
         0,
         {0, 0, 1, 0, 2, 1}},
        {[&](pos_type& p) {
             return ts::rotate(p, vec3{{0.5, -1, 2}}, vec3{{a, a, a}}, list({2u}));
         },
         1,
         {0, 0, 0, 1, 0, 0, -1.5, 0.5, 4}},
        // The list forms of rotate grow the node set before they look at the list.
        {[&](pos_type& p) {
             return ts::rotate(p, vec3{}, vec3{{0, 0, 1}}, none);
         },
         0,
         {0, 0, 0, 1, 0, 0, 2, 1, 0}},
        {[](pos_type& p) {
             return ts::rotate(p, vec2{{0, 0}}, M_PI, list({2u, 9u, 2u}));
         },
         2,
         {0, 0, 1, 0, 2, 1}},
        {[](pos_type& p) {
             return ts::zoom(p, vec2{{1, 0}}, 1.0);
         },
         0,
         {0, 0, 1, 0, 2, 1}},
        {[](pos_type& p) {
             return ts::zoom(p, vec2{{1, 0}}, 2.0);
         },
         3,
         {-1, 0, 1, 0, 3, 2}},
        // Only the all-node form of zoom reports a count.
        {[](pos_type& p) {
             return ts::zoom(p, vec2{{1, 0}}, 0.0, list({2u, 0u}));
         },
         0,
         {1, 0, 1, 0, 1, 0}},
        {[](pos_type& p) {
             return ts::zoom(p, vec3{{1, 0, 1}}, -1.0);
         },
         3,
         {2, 0, 2, 1, 0, 2, 0, -1, 2}},
    };
    for (move_case const& c : cases) {
        SCOPED_TRACE(&c - cases);
        pos_type pos = matrix<double>(2, {0, 0, 1, 0, 2, 1});
        EXPECT_EQ(c.move(pos), c.moved);
        expect_near(values(pos), c.after);
    }
}

TEST(IncBoundingBox, AccumulatesNeverTakesNaNAndRefusesByForm)
{
    auto pos = matrix<double>(3, {1, 5, -2, 4, std::nan(""), 0, -3, 2, 7});
    vec3 min{{1e300, 1e300, 1e300}}, max{{-1e300, -1e300, -1e300}};
    EXPECT_EQ(ts::inc_bounding_box(pos, list({1u}), min, max), 0);
    EXPECT_TRUE(min[1] == 1e300 && max[1] == -1e300);  // the NaN of node 1 is not taken
    EXPECT_EQ(ts::inc_bounding_box(pos, min, max), 0);
    EXPECT_EQ(ts::inc_bounding_box(matrix<double>(3, {10, 10, 10}), matrix<unsigned>(2, {NONE_ID, 0}), min, max), 0);
    EXPECT_EQ(D(min.v, min.v + 3), (D{-3, 2, -2}));
    EXPECT_EQ(D(max.v, max.v + 3), (D{10, 10, 10}));

    vec2 lo{{0, 0}}, hi{{1, 1}};
    pos_type empty;
    EXPECT_EQ(ts::inc_bounding_box(empty, lo, hi), -1);
    EXPECT_EQ(ts::inc_bounding_box(empty, qv7::dense2D<unsigned>(), lo, hi), 0);
    EXPECT_EQ(ts::inc_bounding_box(pos, lo, hi), -1);
    EXPECT_EQ(ts::inc_bounding_box(pos, matrix<unsigned>(1, {0}), lo, hi), -1);
    EXPECT_EQ(ts::inc_bounding_box(matrix<double>(2, {5, 5, 6, 6}), list({0u, 2u}), lo, hi), -2);
    EXPECT_EQ(hi[0], 1.0);
}

TEST(CopyMesh, CopiesUsedNodesInFirstSeenOrderAndKeepsMixedEnds)
{
    auto pos = matrix<double>(2, {0, 0, 1, 10, 2, 20, 3, 30, 4, 40});
    auto connect = matrix<unsigned>(4, {3, 1, 2, NONE_ID, 1, 0, 2, 99});
    qv7::dense2D<unsigned> connectM = matrix<unsigned>(1, {42});
    EXPECT_EQ(ts::copy_mesh(pos, connectM, connect), 0);
    EXPECT_EQ(values(pos.submatrix(5, 4, 2)), (D{3, 30, 1, 10, 2, 20, 0, 0}));
    // 99 names no node: it is neither copied nor renumbered.
    EXPECT_EQ(values(connectM), (V{5, 6, 7, NONE_ID, 6, 8, 7, 99}));
    EXPECT_EQ(ts::copy_mesh(pos, connect, connect), 0);  // target and source are one
    EXPECT_EQ(values(connect), (V{9, 10, 11, NONE_ID, 10, 12, 11, 99}));
}

TEST(CopyMesh, PatternsAppendOneTurnedAndMovedBlockPerCopy)
{
    // A 2 x 5 grid of nodes (j % 5, j / 5) under four quadrangles.
    pos_type pos;
    pos.resize(2, 10);
    for (unsigned j = 0; j < 10; ++j) pos(0, j) = j % 5, pos(1, j) = j / 5;
    auto const quads = matrix<unsigned>(4, {0, 1, 6, 5, 1, 2, 7, 6, 2, 3, 8, 7, 3, 4, 9, 8});
    qv7::dense2D<unsigned> flat = quads, solid;
    // The source shares its block with the target and is still copied as it was.
    EXPECT_EQ(ts::copy_mesh(pos, flat, vec2{{10, 0}}, vec2{{0, 0}}, M_PI / 2, 3, flat), 0);
    ASSERT_EQ(pos.cols(), 40u);
    ASSERT_EQ(flat.cols(), 16u);
    // First-seen order of the nodes: 0 1 6 5 2 7 3 8 4 9; copy k starts at node 10 k, so quad
    // (3, 4, 9, 8) of copy 3 is (30 + 6, 30 + 8, 30 + 9, 30 + 7).
    EXPECT_EQ(values(flat.submatrix(15, 1, 4)), (V{36, 38, 39, 37}));
    // Node 1 at (1, 0): a quarter turn and 10 across in copy 1, half a turn and 20 in copy 2.
    expect_near(values(pos.submatrix(11, 1, 2)), D{10, 1});
    expect_near(values(pos.submatrix(21, 1, 2)), D{19, 0});

    vec3 up{{0, 0, 1}}, origin{{0, 0, 0}}, quarter{{0, 0, M_PI / 2}};
    EXPECT_EQ(ts::copy_mesh(pos, solid, up, origin, quarter, 0, quads), 0);
    EXPECT_EQ(ts::copy_mesh(pos, solid, up, origin, quarter, 2, quads), 0);
    ASSERT_EQ(pos.cols(), 60u);
    EXPECT_EQ(solid.cols(), 8u);
    expect_near(values(pos.submatrix(51, 1, 3)), D{-1, 0, 2});
}

TEST(CopySymMesh, MirrorsTheCopiesKeepingTheirNodeOrder)
{
    auto pos = matrix<double>(2, {3, 4, 0, 0, 1, 5});
    auto single = matrix<unsigned>(1, {0});
    qv7::dense2D<unsigned> out;
    EXPECT_EQ(ts::copy_sym_mesh(pos, out, vec2{{1, 5}}, vec2{{2, 0}}, matrix<unsigned>(3, {0, 1, 2})), 0);
    EXPECT_EQ(values(pos.submatrix(3, 3, 2)), (D{-1, 4, 2, 0, 1, 5}));
    EXPECT_EQ(values(out), (V{3, 4, 5}));
    // A plane through the origin with normal (1, 1, 0); the 2-row set gains z = 0.
    auto flat = matrix<double>(2, {1, 0});
    EXPECT_EQ(ts::copy_sym_mesh(flat, out, vec3{{0, 0, 0}}, vec3{{1, 1, 0}}, single), 0);
    expect_near(values(flat), D{1, 0, 0, 0, -1, 0}, 1e-15);

    // A zero normal changes nothing, but an empty node set is not even looked at.
    EXPECT_EQ(ts::copy_sym_mesh(pos, out, vec3{{0, 0, 0}}, vec3{{0, 0, 0}}, single), -4);
    EXPECT_EQ(pos.rows() * pos.cols(), 12u);
    EXPECT_EQ(values(out), (V{1}));
    pos_type empty;
    EXPECT_EQ(ts::copy_sym_mesh(empty, out, vec2{{0, 0}}, vec2{{0, 0}}, single), 0);
    test_alloc::failing_scope guard(0);
    EXPECT_EQ(ts::copy_sym_mesh(pos, out, vec2{{0, 0}}, vec2{{1, 0}}, single), -199);
}

}  // namespace
