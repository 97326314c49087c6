#include "connectivity/elfes.h"
#include "nodes/node_arrays.h"

#include <gtest/gtest.h>

#include <vector>

using namespace qv7;
using namespace qv7::elfes;

TEST(FaceT3Geometry, SquaredHeightsOverEachVertex)
{
    unsigned nodes[3] = {0, 1, 2};
    dense2D<double> space = node_arrays::matrix<double>(3, 3, {0, 0, 0, 4, 0, 0, 0, 3, 0});
    dense2D<double> plane = node_arrays::matrix<double>(2, 3, {0, 0, 4, 0, 0, 3});
    for (auto const* pos : {&space, &plane}) {
        EXPECT_DOUBLE_EQ(faceT3::sqr_height(*pos, nodes, 0), 5.76);  // 12 / 5 over the hypotenuse
        EXPECT_DOUBLE_EQ(faceT3::sqr_height(*pos, nodes, 1), 16.0);
        EXPECT_DOUBLE_EQ(faceT3::sqr_height(*pos, nodes, 2), 9.0);
    }
    // Flat and collapsed triangles have no height; a repeated node gives a zero-length side.
    dense2D<double> flat = node_arrays::matrix<double>(3, 3, {0, 0, 0, 1, 1, 1, 3, 3, 3});
    EXPECT_EQ(faceT3::sqr_height(flat, nodes, 1), 0.0);
    unsigned repeated[3] = {0, 1, 1};
    EXPECT_EQ(faceT3::sqr_height(space, repeated, 0), 0.0);
    EXPECT_EQ(faceT3::sqr_height(space, repeated, 1), 0.0);
}

TEST(FaceT3Geometry, DirectorIsTheRightHandNormal)
{
    // Triangles with normals (0,0,1) and (-0.6,0,-0.8) / 5.
    dense2D<double> pos = node_arrays::matrix<double>(3, 5, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 3, 4, 0, -3});
    vector_fixed<double, 3> d;
    unsigned a[3] = {0, 1, 2}, b[3] = {0, 2, 1}, c[3] = {0, 2, 4}, e[3] = {4, 0, 2};
    faceT3::copy_director(pos, a, d);
    EXPECT_EQ((std::vector<double>{d[0], d[1], d[2]}), (std::vector<double>{0, 0, 1}));
    faceT3::copy_director(pos, b, d);
    EXPECT_EQ((std::vector<double>{d[0], d[1], d[2]}), (std::vector<double>{0, 0, -1}));
    // Long side first or not, the same vector.
    faceT3::copy_director(pos, c, d);
    EXPECT_EQ((std::vector<double>{d[0], d[1], d[2]}), (std::vector<double>{-3, 0, -4}));
    faceT3::copy_director(pos, e, d);
    EXPECT_EQ((std::vector<double>{d[0], d[1], d[2]}), (std::vector<double>{-3, 0, -4}));
    // In the plane z is 0, also for the last node.
    dense2D<double> plane = node_arrays::matrix<double>(2, 3, {0, 0, 2, 0, 0, 3});
    unsigned p[3] = {1, 2, 0};
    faceT3::copy_director(plane, p, d);
    EXPECT_EQ((std::vector<double>{d[0], d[1], d[2]}), (std::vector<double>{0, 0, 6}));
}
