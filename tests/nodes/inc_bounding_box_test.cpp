#include "tessarium/element_type.h"
#include "tessarium/transforms.h"

#include "node_arrays.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace node_arrays;
using qv7::NONE_ID;
using vec2 = qv7::vector_fixed<double, 2>;
using vec3 = qv7::vector_fixed<double, 3>;
namespace ts = qv7::tessarium;

void expect_box(vec3 const& min, vec3 const& max, vec3 const& lo, vec3 const& hi)
{
    for (unsigned k = 0; k < 3; ++k) {
        EXPECT_EQ(min[k], lo[k]) << k;
        EXPECT_EQ(max[k], hi[k]) << k;
    }
}

TEST(IncBoundingBox, AccumulatesAndNeverTakesNaN)
{
    auto pos = matrix<double>(3, 3, {1, 5, -2, 4, std::nan(""), 0, -3, 2, 7});
    vec3 min{{1e300, 1e300, 1e300}}, max{{-1e300, -1e300, -1e300}};
    EXPECT_EQ(ts::inc_bounding_box(pos, list({1u}), min, max), 0);
    expect_box(min, max, vec3{{4, 1e300, 0}}, vec3{{4, -1e300, 0}});
    EXPECT_EQ(ts::inc_bounding_box(pos, min, max), 0);
    expect_box(min, max, vec3{{-3, 2, -2}}, vec3{{4, 5, 7}});

    auto far = matrix<double>(3, 1, {10, 10, 10});
    EXPECT_EQ(ts::inc_bounding_box(far, matrix<unsigned>(2, 1, {NONE_ID, 0}), min, max), 0);
    expect_box(min, max, vec3{{-3, 2, -2}}, vec3{{10, 10, 10}});
}

TEST(IncBoundingBox, RefusalsByForm)
{
    vec2 min{{0, 0}}, max{{1, 1}};
    qv7::dense2D<double> empty;
    EXPECT_EQ(ts::inc_bounding_box(empty, min, max), -1);
    EXPECT_EQ(ts::inc_bounding_box(empty, qv7::dense1D<unsigned, 8>(), min, max), 0);
    EXPECT_EQ(ts::inc_bounding_box(empty, qv7::dense2D<unsigned>(), min, max), 0);

    auto pos3 = matrix<double>(3, 2, {5, 5, 5, 6, 6, 6});
    EXPECT_EQ(ts::inc_bounding_box(pos3, min, max), -1);
    EXPECT_EQ(ts::inc_bounding_box(pos3, list({0u}), min, max), -1);
    EXPECT_EQ(ts::inc_bounding_box(pos3, matrix<unsigned>(1, 1, {0}), min, max), -1);

    auto pos2 = matrix<double>(2, 2, {5, 5, 6, 6});
    EXPECT_EQ(ts::inc_bounding_box(pos2, list({0u, 2u}), min, max), -2);
    EXPECT_EQ(ts::inc_bounding_box(pos2, matrix<unsigned>(1, 2, {1, 2}), min, max), -2);
    EXPECT_EQ(max[0], 1.0);
    EXPECT_EQ(ts::inc_bounding_box(pos2, matrix<unsigned>(1, 2, {1, 0}), min, max), 0);
    EXPECT_EQ(max[1], 6.0);
    EXPECT_EQ(min[0], 0.0);

    auto no_nodes = matrix<double>(2, 0, {});
    EXPECT_EQ(no_nodes.rows(), 0u);
    EXPECT_EQ(ts::inc_bounding_box(no_nodes, min, max), -1);
}

}  // namespace
