#include "quality/jacobian_matrix.h"
#include "quality/quality_elements.h"
#include "support/failing_alloc.h"
#include "tessarium/quality.h"

#include <gtest/gtest.h>

#include <random>

using namespace qv7;
using quality_elements::arrays;
using quality_elements::element;

// Sum of the shape functions is 1 and of their derivatives 0, anywhere inside the element.
template <class Shape, class P>
void expect_partition_of_unity(P const& point)
{
    double sum = 0.0, derivative_sum[3] = {0, 0, 0};
    for (auto const& shape : elfes::shape_set<Shape>()) {
        sum += shape.value_at(point);
        auto d = shape.derivatives_at(point);
        for (unsigned k = 0; k < d.size(); ++k) derivative_sum[k] += d[k];
    }
    EXPECT_NEAR(sum, 1.0, 1e-15);
    for (double s : derivative_sum) EXPECT_NEAR(s, 0.0, 1e-15);
}

TEST(Jacobians, ShapeFunctionsPartitionUnity)
{
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int trial = 0; trial < 50; ++trial) {
        double u = unit(gen), v = unit(gen) * (1 - u), w = unit(gen) * (1 - u - v), s = 2 * u - 1, t = 2 * v - 1;
        expect_partition_of_unity<elfes::shape_edge2>(s);
        expect_partition_of_unity<elfes::shape_faceT3>(elfes::point2{u, v});
        expect_partition_of_unity<elfes::shape_faceQ4>(elfes::point2{s, t});
        expect_partition_of_unity<elfes::shape_tetra4>(elfes::point3{u, v, w});
        expect_partition_of_unity<elfes::shape_pyramid5>(elfes::point3{s * (1 - w), t * (1 - w), w});
        expect_partition_of_unity<elfes::shape_wedge6>(elfes::point3{u, v, t});
        expect_partition_of_unity<elfes::shape_hexa8>(elfes::point3{s, t, 2 * w - 1});
    }
    // At the apex the rational base functions vanish instead of dividing by zero.
    expect_partition_of_unity<elfes::shape_pyramid5>(elfes::point3{0, 0, 1});
    EXPECT_EQ(elfes::shape_pyramid5(4).value_at({0, 0, 1}), 1.0);
}

TEST(Jacobians, AnalyticLengthsAreasAndVolumes)
{
    struct {
        element e;
        unsigned rows;
        double expected;  // from the closed-form measure of each shape
    } const cases[] = {
        {{ET_EDGE2, {0, 0, 0, 3, 4, 0}}, 3, 2.5},                                       // half the length
        {{ET_FACE_T3, {0, 0, 0, 2, 0, 0, 0, 3, 0}}, 3, 6.0},                            // twice the area
        {{ET_FACE_T3, {0, 0, 0, 0, 3, 0, 2, 0, 0}}, 2, 6.0},                            // no sign in the plane
        {{ET_FACE_Q4, {0, 0, 0, 2, 0, 0, 3, 1, 0, 1, 1, 0}}, 2, 0.5},                   // a quarter of the area
        {{ET_TETRA4, {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}}, 3, 1.0},                    // det(P0-P3, P1-P3, P2-P3)
        {{ET_TETRA4, {-1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}}, 3, -1.0},                  // mirrored
        {{ET_PYRAMID5, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0.5, 0.5, 1}}, 3, 0.25},    // volume 1/3 over 4/3
        {{ET_WEDGE6, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 2, 1, 0, 2, 0, 1, 2}}, 3, 1.0},  // volume 1 over 1
        {quality_elements::ideal()[5], 3, 0.125},                                       // the unit cube
        {{ET_HEXA8, {0, 0, 0, 1, 0, 0, 1, 2, 0, 0, 2, 0, 0, 0, 3, 1, 0, 3, 1, 2, 3, 0, 2, 3}}, 3, 0.75},
    };
    for (auto const& c : cases) {
        dense2D<double> pos;
        dense2D<unsigned> connectM;
        arrays(c.e, c.rows, pos, connectM);
        dense1D<double, 8> jacs;
        ASSERT_EQ(tessarium::jacobians(pos, connectM, c.e.type, jacs), 0);
        ASSERT_EQ(jacs.size(), 1u);
        EXPECT_NEAR(jacs[0], c.expected, 1e-15) << c.e.type;
    }
}

TEST(Jacobians, MixedRowsAsTheirKindAndCodes)
{
    dense2D<double> pos;
    dense2D<unsigned> hexa, mixed, empty;
    arrays(quality_elements::ideal()[5], 3, pos, hexa);
    // The tetrahedron on the unit vectors at the cube's corner 0 (det 1) and the cube itself.
    unsigned const rows[2][8] = {{1, 3, 4, 0, NONE_ID, NONE_ID, NONE_ID, NONE_ID}, {0, 1, 2, 3, 4, 5, 6, 7}};
    mixed.resize(8, 2);
    for (unsigned j = 0; j < 2; ++j)
        for (unsigned i = 0; i < 8; ++i) mixed(i, j) = rows[j][i];
    dense1D<double, 8> jacs;
    ASSERT_EQ(tessarium::jacobians(pos, mixed, ET_SOLID_MIX, jacs), 0);
    EXPECT_EQ(std::vector<double>(jacs.begin(), jacs.end()), (std::vector<double>{1.0, 0.125}));

    EXPECT_EQ(tessarium::jacobians(pos, empty, ET_HEXA8, jacs), 0);
    EXPECT_EQ(jacs.size(), 0u);
    hexa(7, 0) = 8;
    EXPECT_EQ(tessarium::jacobians(pos, hexa, ET_HEXA8, jacs), -2);
    hexa(7, 0) = 7;
    jacs.push_back(3.0);
    EXPECT_EQ(tessarium::jacobians(pos, mixed, ET_EDGE_MIX, jacs), -2);  // 8 rows do not fit
    dense2D<unsigned> hexa20;
    hexa20.resize(20, 1);
    for (unsigned i = 0; i < 20; ++i) hexa20(i, 0) = i % 8;
    EXPECT_EQ(tessarium::jacobians(pos, hexa20, ET_HEXA20, jacs), -3);
    EXPECT_EQ(jacs.size(), 0u);
    test_alloc::failing_scope guard(0);
    dense1D<double, 8> fresh;
    EXPECT_EQ(tessarium::jacobians(pos, hexa, ET_HEXA8, fresh), -199);
}
