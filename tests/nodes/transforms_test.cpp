// translate, rotate and zoom.
#include "tessarium/element_type.h"
#include "tessarium/transforms.h"

#include "node_arrays.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace node_arrays;
using qv7::NONE_ID;
using vec2 = qv7::vector_fixed<double, 2>;
using vec3 = qv7::vector_fixed<double, 3>;
using D = std::vector<double>;
namespace ts = qv7::tessarium;

qv7::dense2D<double> line_of_nodes(std::size_t n)
{
    qv7::dense2D<double> pos;
    pos.resize(1, n);
    for (std::size_t j = 0; j < n; ++j) pos(0, j) = double(j);
    return pos;
}

TEST(Translate, EarlyReturnsLeaveTheSetUngrown)
{
    qv7::dense2D<double> empty;
    EXPECT_EQ(ts::translate(empty, vec2{{1, 1}}), 0);
    EXPECT_EQ(ts::translate(empty, vec3{{1, 1, 1}}, list({0u})), 0);
    EXPECT_EQ(empty.rows(), 0u);
    EXPECT_EQ(empty.cols(), 0u);

    auto pos = line_of_nodes(3);
    EXPECT_EQ(ts::translate(pos, vec2{{0, 0}}), 0);
    EXPECT_EQ(ts::translate(pos, vec3{{0, -0.0, 0}}), 0);
    EXPECT_EQ(ts::translate(pos, vec2{{1, 1}}, qv7::dense1D<unsigned, 8>()), 0);
    EXPECT_EQ(ts::translate(pos, vec2{{1, 1}}, qv7::dense2D<unsigned>()), 0);
    EXPECT_EQ(pos.rows(), 1u);
    EXPECT_EQ(values(pos), (D{0, 1, 2}));
}

TEST(Translate, GrowsToItsDimensionAndLeavesHigherRowsAlone)
{
    auto pos = line_of_nodes(5);
    EXPECT_EQ(ts::translate(pos, vec2{{1, 0}}), 5);
    ASSERT_EQ(pos.rows(), 2u);
    EXPECT_EQ(values(pos), (D{1, 0, 2, 0, 3, 0, 4, 0, 5, 0}));

    EXPECT_EQ(ts::translate(pos, vec3{{0, 0, 2}}), 5);
    ASSERT_EQ(pos.rows(), 3u);
    EXPECT_EQ(pos(2, 4), 2.0);

    EXPECT_EQ(ts::translate(pos, vec2{{0, 1}}), 5);
    EXPECT_EQ(pos.rows(), 3u);
    EXPECT_EQ(pos(1, 0), 1.0);
    EXPECT_EQ(pos(2, 0), 2.0);

    // A NaN component is not zero: the set moves.
    EXPECT_EQ(ts::translate(pos, vec2{{std::nan(""), 0}}), 5);
    EXPECT_TRUE(std::isnan(pos(0, 3)));
}

TEST(Translate, ListsCountEachOccurrenceAndSkipWhatIsOutside)
{
    auto pos = line_of_nodes(3);
    EXPECT_EQ(ts::translate(pos, vec2{{1, 2}}, list({0u, 0u, 7u, NONE_ID})), 2);
    EXPECT_EQ(values(pos), (D{2, 4, 1, 0, 2, 0}));
}

TEST(Translate, ConnectivityMovesEachNodeOnce)
{
    auto pos = line_of_nodes(4);
    auto connect = matrix<unsigned>(3, 2, {0, 1, 2, 2, 1, NONE_ID});
    EXPECT_EQ(ts::translate(pos, vec3{{1, 1, 1}}, connect), 3);
    EXPECT_EQ(values(pos), (D{1, 1, 1, 2, 1, 1, 3, 1, 1, 3, 0, 0}));
}

TEST(Rotate2D, TurnsFromXTowardsYAboutTheCentre)
{
    auto pos = matrix<double>(2, 2, {2, 1, 1, 3});
    EXPECT_EQ(ts::rotate(pos, vec2{{1, 1}}, M_PI / 2), 2);
    EXPECT_NEAR(pos(0, 0), 1.0, 1e-15);
    EXPECT_NEAR(pos(1, 0), 2.0, 1e-15);
    EXPECT_NEAR(pos(0, 1), -1.0, 1e-15);
    EXPECT_NEAR(pos(1, 1), 1.0, 1e-15);
}

TEST(Rotate2D, FullTurnOnlyRoundsAndZeroAngleDoesNothing)
{
    auto pos = matrix<double>(3, 2, {2, 1, 7, -4, 3, 8});
    EXPECT_EQ(ts::rotate(pos, vec2{{0.5, 0.5}}, 2 * M_PI), 2);
    D expected{2, 1, 7, -4, 3, 8};
    for (std::size_t k = 0; k < 6; ++k) EXPECT_NEAR(values(pos)[k], expected[k], 1e-14);
    EXPECT_EQ(pos(2, 1), 8.0);

    auto line = line_of_nodes(2);
    EXPECT_EQ(ts::rotate(line, vec2{{0, 0}}, 0.0), 0);
    EXPECT_EQ(ts::rotate(line, vec2{{0, 0}}, 0.0, list({1u})), 0);
    EXPECT_EQ(line.rows(), 1u);
}

TEST(Rotate2D, ListFormsGrowBeforeLookingAtTheList)
{
    auto pos = line_of_nodes(2);
    EXPECT_EQ(ts::rotate(pos, vec2{{0, 0}}, 1.0, qv7::dense1D<unsigned, 8>()), 0);
    EXPECT_EQ(pos.rows(), 2u);
    auto pos3 = line_of_nodes(2);
    EXPECT_EQ(ts::rotate(pos3, vec3{{0, 0, 0}}, vec3{{0, 0, 1}}, qv7::dense2D<unsigned>()), 0);
    EXPECT_EQ(pos3.rows(), 3u);
    EXPECT_EQ(values(pos3), (D{0, 0, 0, 1, 0, 0}));

    auto listed = line_of_nodes(3);
    EXPECT_EQ(ts::rotate(listed, vec2{{0, 0}}, M_PI, list({2u, 9u, 2u})), 2);
    EXPECT_NEAR(listed(0, 2), 2.0, 1e-14);
    EXPECT_EQ(listed(0, 1), 1.0);
}

// Rodrigues' formula for a unit axis k: v cos a + (k x v) sin a + k (k . v)(1 - cos a).
vec3 turned(vec3 v, vec3 k, double a)
{
    double c = std::cos(a), s = std::sin(a), kv = k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    vec3 kxv{{k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2], k[0] * v[1] - k[1] * v[0]}};
    vec3 out;
    for (unsigned i = 0; i < 3; ++i) out[i] = v[i] * c + kxv[i] * s + k[i] * kv * (1 - c);
    return out;
}

TEST(Rotate3D, TurnsAboutTheAxisThroughTheCentre)
{
    auto pos = matrix<double>(3, 2, {2, 0, 5, 1, 1, 1});
    EXPECT_EQ(ts::rotate(pos, vec3{{1, 0, 0}}, vec3{{0, 0, M_PI / 2}}), 2);
    EXPECT_NEAR(pos(0, 0), 1.0, 1e-15);
    EXPECT_NEAR(pos(1, 0), 1.0, 1e-15);
    EXPECT_EQ(pos(2, 0), 5.0);

    double a = 2.2, n = std::sqrt(1 + 4 + 9.0);
    vec3 axis{{1 / n, -2 / n, 3 / n}}, C{{0.5, -1, 2}}, p{{3, 1, -2}};
    auto q = matrix<double>(2, 1, {p[0], p[1]});
    EXPECT_EQ(ts::rotate(q, C, vec3{{a * axis[0], a * axis[1], a * axis[2]}}, list({0u})), 1);
    ASSERT_EQ(q.rows(), 3u);
    vec3 expected = turned(vec3{{p[0] - C[0], p[1] - C[1], 0 - C[2]}}, axis, a);
    for (unsigned i = 0; i < 3; ++i) EXPECT_NEAR(q(i, 0), expected[i] + C[i], 1e-14);
}

TEST(Zoom, CountsOnlyInTheAllNodeForm)
{
    auto pos = matrix<double>(2, 4, {0, 0, 1, 0, 1, 1, 0, 1});
    qv7::dense2D<double> copy;
    copy.copy(pos);
    EXPECT_EQ(ts::zoom(pos, vec2{{0.5, 0.5}}, 2.0), 4);
    EXPECT_EQ(values(pos), (D{-0.5, -0.5, 1.5, -0.5, 1.5, 1.5, -0.5, 1.5}));
    EXPECT_EQ(ts::zoom(copy, vec2{{0.5, 0.5}}, 2.0, list({0u, 1u, 2u, 3u})), 0);
    EXPECT_EQ(values(copy), values(pos));

    auto connect = matrix<unsigned>(2, 1, {3, 1});
    EXPECT_EQ(ts::zoom(copy, vec2{{0.5, 0.5}}, 0.0, connect), 0);
    EXPECT_EQ(values(copy), (D{-0.5, -0.5, 0.5, 0.5, 1.5, 1.5, 0.5, 0.5}));
}

TEST(Zoom, UnitFactorDoesNothingAndNegativeFactorsMirror)
{
    auto pos = line_of_nodes(3);
    EXPECT_EQ(ts::zoom(pos, vec3{{9, 9, 9}}, 1.0), 0);
    EXPECT_EQ(ts::zoom(pos, vec3{{9, 9, 9}}, 1.0, list({0u})), 0);
    EXPECT_EQ(ts::zoom(pos, vec2{{9, 9}}, 1.0, matrix<unsigned>(1, 1, {0})), 0);
    EXPECT_EQ(pos.rows(), 1u);

    EXPECT_EQ(ts::zoom(pos, vec3{{1, 0, 1}}, -1.0), 3);
    EXPECT_EQ(values(pos), (D{2, 0, 2, 1, 0, 2, 0, 0, 2}));
}

}  // namespace
