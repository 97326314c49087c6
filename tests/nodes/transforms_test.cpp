// translate, rotate, zoom and inc_bounding_box.
#include "tessarium/transforms.h"

#include "node_arrays.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace node_arrays;
using vec2 = qv7::vector_fixed<double, 2>;
using vec3 = qv7::vector_fixed<double, 3>;
namespace ts = qv7::tessarium;

qv7::dense2D<double> line_of_nodes(std::size_t n) { return nodes(n, 1); }

void expect_near(std::vector<double> const& got, std::vector<double> const& want)
{
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t k = 0; k < got.size(); ++k) EXPECT_NEAR(got[k], want[k], 1e-14) << k;
}

TEST(Translate, GrowsToItsDimensionUnlessItReturnsEarly)
{
    qv7::dense2D<double> empty;
    EXPECT_EQ(ts::translate(empty, vec3{{1, 1, 1}}, list({0u})), 0);
    EXPECT_EQ(empty.rows(), 0u);
    auto pos = line_of_nodes(5);
    EXPECT_EQ(ts::translate(pos, vec3{{0, -0.0, 0}}), 0);
    EXPECT_EQ(ts::translate(pos, vec2{{1, 1}}, qv7::dense2D<unsigned>()), 0);
    EXPECT_EQ(pos.rows(), 1u);
    EXPECT_EQ(ts::translate(pos, vec2{{1, 0}}), 5);
    EXPECT_EQ(values(pos), (D{1, 0, 2, 0, 3, 0, 4, 0, 5, 0}));
    EXPECT_EQ(ts::translate(pos, vec3{{0, 0, 2}}), 5);
    EXPECT_EQ(ts::translate(pos, vec2{{0, 1}}), 5);  // leaves z alone
    EXPECT_EQ(values(pos.submatrix(4, 1, 3)), (D{5, 1, 2}));
    EXPECT_EQ(ts::translate(pos, vec2{{std::nan(""), 0}}), 5);  // NaN is not zero
}

TEST(Translate, ListsCountEachOccurrenceAndConnectivitiesEachNode)
{
    auto pos = line_of_nodes(3);
    EXPECT_EQ(ts::translate(pos, vec2{{1, 2}}, list({0u, 0u, 7u, NONE_ID})), 2);
    EXPECT_EQ(values(pos), (D{2, 4, 1, 0, 2, 0}));
    EXPECT_EQ(ts::translate(pos, vec2{{1, 1}}, matrix<unsigned>(3, 2, {0, 1, 1, 2, 1, NONE_ID})), 3);
    EXPECT_EQ(values(pos), (D{3, 5, 2, 1, 3, 1}));
}

TEST(Rotate2D, TurnsFromXTowardsYAndAFullTurnOnlyRounds)
{
    auto pos = matrix<double>(3, 2, {2, 1, 7, 1, 3, 8});
    EXPECT_EQ(ts::rotate(pos, vec2{{1, 1}}, M_PI / 2), 2);
    expect_near(values(pos), D{1, 2, 7, -1, 1, 8});
    EXPECT_EQ(ts::rotate(pos, vec2{{0.5, 0.5}}, 2 * M_PI), 2);
    expect_near(values(pos), D{1, 2, 7, -1, 1, 8});
    EXPECT_EQ(ts::rotate(pos, vec2{{0, 0}}, 0.0), 0);
}

TEST(Rotate, ListFormsGrowBeforeLookingAtTheList)
{
    auto pos = line_of_nodes(2);
    EXPECT_EQ(ts::rotate(pos, vec2{{0, 0}}, 1.0, qv7::dense1D<unsigned, 8>()), 0);
    EXPECT_EQ(pos.rows(), 2u);
    auto pos3 = line_of_nodes(2);
    EXPECT_EQ(ts::rotate(pos3, vec3{{0, 0, 0}}, vec3{{0, 0, 1}}, qv7::dense2D<unsigned>()), 0);
    EXPECT_EQ(values(pos3), (D{0, 0, 0, 1, 0, 0}));
    auto listed = line_of_nodes(3);
    EXPECT_EQ(ts::rotate(listed, vec2{{0, 0}}, M_PI, list({2u, 9u, 2u})), 2);
    expect_near(values(listed), D{0, 0, 1, 0, 2, 0});
}

TEST(Rotate3D, MatchesRodriguesAboutAnAxisThroughTheCentre)
{
    double a = 2.2, n = std::sqrt(14.0);
    double k[3] = {1 / n, -2 / n, 3 / n}, C[3] = {0.5, -1, 2}, d[3] = {3 - 0.5, 1 + 1, 0 - 2};
    // v cos a + (k x v) sin a + k (k . v)(1 - cos a), with v = p - C.
    double kv = k[0] * d[0] + k[1] * d[1] + k[2] * d[2];
    double kxv[3] = {k[1] * d[2] - k[2] * d[1], k[2] * d[0] - k[0] * d[2], k[0] * d[1] - k[1] * d[0]};
    D want(3);
    for (int i = 0; i < 3; ++i) want[i] = d[i] * std::cos(a) + kxv[i] * std::sin(a) + k[i] * kv * (1 - std::cos(a)) + C[i];

    auto q = matrix<double>(2, 1, {3, 1});
    EXPECT_EQ(ts::rotate(q, vec3{{C[0], C[1], C[2]}}, vec3{{a * k[0], a * k[1], a * k[2]}}, list({0u})), 1);
    expect_near(values(q), want);
}

TEST(Zoom, CountsOnlyInTheAllNodeFormAndMirrorsBelowZero)
{
    auto pos = matrix<double>(2, 4, {0, 0, 1, 0, 1, 1, 0, 1});
    qv7::dense2D<double> copy;
    copy.copy(pos);
    EXPECT_EQ(ts::zoom(pos, vec2{{0.5, 0.5}}, 1.0), 0);
    EXPECT_EQ(ts::zoom(pos, vec2{{0.5, 0.5}}, 2.0), 4);
    EXPECT_EQ(values(pos), (D{-0.5, -0.5, 1.5, -0.5, 1.5, 1.5, -0.5, 1.5}));
    EXPECT_EQ(ts::zoom(copy, vec2{{0.5, 0.5}}, 2.0, list({0u, 1u, 2u, 3u})), 0);
    EXPECT_EQ(values(copy), values(pos));
    EXPECT_EQ(ts::zoom(copy, vec2{{0.5, 0.5}}, 0.0, matrix<unsigned>(2, 1, {3, 1})), 0);
    EXPECT_EQ(values(copy), (D{-0.5, -0.5, 0.5, 0.5, 1.5, 1.5, 0.5, 0.5}));
    auto line = line_of_nodes(3);
    EXPECT_EQ(ts::zoom(line, vec3{{1, 0, 1}}, -1.0), 3);
    EXPECT_EQ(values(line), (D{2, 0, 2, 1, 0, 2, 0, 0, 2}));
}

TEST(IncBoundingBox, AccumulatesNeverTakesNaNAndRefusesByForm)
{
    auto pos = matrix<double>(3, 3, {1, 5, -2, 4, std::nan(""), 0, -3, 2, 7});
    vec3 min{{1e300, 1e300, 1e300}}, max{{-1e300, -1e300, -1e300}};
    EXPECT_EQ(ts::inc_bounding_box(pos, list({1u}), min, max), 0);
    EXPECT_EQ(min[1], 1e300);
    EXPECT_EQ(ts::inc_bounding_box(pos, min, max), 0);
    EXPECT_EQ(ts::inc_bounding_box(matrix<double>(3, 1, {10, 10, 10}), matrix<unsigned>(2, 1, {NONE_ID, 0}), min, max), 0);
    EXPECT_EQ(D(min.v, min.v + 3), (D{-3, 2, -2}));
    EXPECT_EQ(D(max.v, max.v + 3), (D{10, 10, 10}));

    vec2 lo{{0, 0}}, hi{{1, 1}};
    qv7::dense2D<double> empty;
    EXPECT_EQ(ts::inc_bounding_box(empty, lo, hi), -1);
    EXPECT_EQ(ts::inc_bounding_box(empty, qv7::dense2D<unsigned>(), lo, hi), 0);
    EXPECT_EQ(ts::inc_bounding_box(pos, lo, hi), -1);
    EXPECT_EQ(ts::inc_bounding_box(pos, matrix<unsigned>(1, 1, {0}), lo, hi), -1);
    EXPECT_EQ(ts::inc_bounding_box(matrix<double>(2, 2, {5, 5, 6, 6}), list({0u, 2u}), lo, hi), -2);
    EXPECT_EQ(hi[0], 1.0);
}

}  // namespace
