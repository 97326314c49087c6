#include "connectivity/elfes.h"
#include "support/arrays.h"

#include <gtest/gtest.h>

#include <vector>

using namespace qv7;
using elfes::faceT3;
using test_arrays::matrix;

TEST(FaceT3Geometry, SquaredHeights)
{
    unsigned nodes[3] = {0, 1, 2}, repeated[3] = {0, 1, 1};
    dense2D<double> space = matrix<double>(3, {0, 0, 0, 4, 0, 0, 0, 3, 0});
    dense2D<double> plane = matrix<double>(2, {0, 0, 4, 0, 0, 3});
    for (auto const* pos : {&space, &plane}) {
        EXPECT_DOUBLE_EQ(faceT3::sqr_height(*pos, nodes, 0), 5.76);  // 12 / 5 over the hypotenuse
        EXPECT_DOUBLE_EQ(faceT3::sqr_height(*pos, nodes, 1), 16.0);
        EXPECT_DOUBLE_EQ(faceT3::sqr_height(*pos, nodes, 2), 9.0);
    }
    EXPECT_EQ(faceT3::sqr_height(matrix<double>(3, {0, 0, 0, 1, 1, 1, 3, 3, 3}), nodes, 1), 0.0);
    EXPECT_EQ(faceT3::sqr_height(space, repeated, 0), 0.0);  // a zero-length side
}

TEST(FaceT3Geometry, DirectorIsTheRightHandNormal)
{
    dense2D<double> pos = matrix<double>(3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 3, 4, 0, -3});
    auto director = [](dense2D<double> const& p, std::vector<unsigned> nodes) {
        vector_fixed<double, 3> d;
        faceT3::copy_director(p, nodes.data(), d);
        return std::vector<double>{d[0], d[1], d[2]};
    };
    EXPECT_EQ(director(pos, {0, 1, 2}), (std::vector<double>{0, 0, 1}));
    EXPECT_EQ(director(pos, {0, 2, 1}), (std::vector<double>{0, 0, -1}));
    // The longest side first or not, the same vector.
    EXPECT_EQ(director(pos, {0, 2, 4}), (std::vector<double>{-3, 0, -4}));
    EXPECT_EQ(director(pos, {4, 0, 2}), (std::vector<double>{-3, 0, -4}));
    // In the plane z is 0, also for the last node.
    EXPECT_EQ(director(matrix<double>(2, {0, 0, 2, 0, 0, 3}), {1, 2, 0}), (std::vector<double>{0, 0, 6}));
}
