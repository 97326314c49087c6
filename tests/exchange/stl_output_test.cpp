#include "exchange_files.h"
#include "tessarium/stl.h"

#include <gtest/gtest.h>

#include <cstdint>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

// Bytes of a binary STL put together from the format's layout.
std::string binary_stl(std::uint32_t count, std::vector<std::vector<float>> const& facets)
{
    std::string bytes = std::string("QV7 STL Binary") + std::string(66, '\0');
    bytes.append(reinterpret_cast<char const*>(&count), 4);
    for (auto const& f : facets) {
        bytes.append(reinterpret_cast<char const*>(f.data()), 48);
        bytes.append(2, '\0');
    }
    return bytes;
}

// Facets with normals (-0, 0, 1), (0, -1, 0), (-0.6, 0, -0.8) and a degenerate one.
dense2D<double> const pos = matrix<double>(3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 3, 4, 0, -3});
dense2D<unsigned> const triangles = matrix<unsigned>(3, {0, 1, 2, 0, 1, 3, 0, 2, 4, 1, 1, 1});

}  // namespace

TEST(STLOutput, Text)
{
    std::string path = temp_path("out.stl");
    ASSERT_EQ(STL_output(path.c_str(), pos, triangles.submatrix(2, 2, 3), true), 0);
    EXPECT_EQ(contents(path),
              "solid QV7\n"
              "   facet normal -6.000000e-01 0.000000e+00 -8.000000e-01\n      outer loop\n"
              "         vertex 0.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 0.000000e+00 1.000000e+00 0.000000e+00\n"
              "         vertex 4.000000e+00 0.000000e+00 -3.000000e+00\n      endloop\n   endfacet\n"
              "   facet normal 0.000000e+00 0.000000e+00 0.000000e+00\n      outer loop\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n      endloop\n   endfacet\n"
              "endsolid QV7\n");
    ASSERT_EQ(STL_output(path.c_str(), pos, dense2D<unsigned>(), true), 0);
    EXPECT_EQ(contents(path), "solid QV7\nendsolid QV7\n");
}

TEST(STLOutput, Binary)
{
    std::string path = temp_path("out_b.stl");
    ASSERT_EQ(STL_output(path.c_str(), pos, triangles, false), 0);
    // The first normal is (P0 - P2) x (P1 - P0), whose x is (-1) * 0 - 0 * 0: a negative zero.
    EXPECT_EQ(contents(path),
              binary_stl(4, {{-0.0f, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0},
                             {0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 3},
                             {float(-3 * (1.0 / 5)), 0, float(-4 * (1.0 / 5)), 0, 0, 0, 0, 1, 0, 4, 0, -3},
                             {0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0}}));
    ASSERT_EQ(STL_output(path.c_str(), pos, dense2D<unsigned>(), false), 0);
    EXPECT_EQ(contents(path), binary_stl(0, {}));
    // A 2-row pos gets z = 0; the last node is read from its own column only.
    ASSERT_EQ(STL_output(path.c_str(), matrix<double>(2, {0, 0, 2, 0, 0, 3}), matrix<unsigned>(3, {1, 2, 0}), false),
              0);
    EXPECT_EQ(contents(path), binary_stl(1, {{0, 0, 1, 2, 0, 0, 0, 3, 0, 0, 0, 0}}));
}

TEST(STLOutput, Refusals)
{
    EXPECT_EQ(STL_output(unwritable_path().c_str(), pos, triangles, true), -1);
    for (auto const& [code, nodes, T3] : std::vector<std::tuple<int, dense2D<double>, dense2D<unsigned>>>{
             {-2, dense2D<double>(), triangles},
             {-2, matrix<double>(1, {0, 1, 2}), matrix<unsigned>(3, {0, 1, 2})},
             {-3, pos, matrix<unsigned>(3, {0, 1, 5})},
             {-3, pos, matrix<unsigned>(4, {0, 1, 2, 3})}}) {
        for (bool text : {true, false}) {
            std::string path = write_file("refused.stl", "old contents");
            EXPECT_EQ(STL_output(path.c_str(), nodes, T3, text), code);
            EXPECT_EQ(contents(path), "");  // created, truncated, left open
        }
    }
    if (exists("/dev/full")) {
        dense2D<unsigned> many;
        many.resize(3, 2000, 0u);
        EXPECT_EQ(STL_output("/dev/full", pos, many, true), -1);
        EXPECT_EQ(STL_output("/dev/full", pos, many, false), -1);
    }
}
