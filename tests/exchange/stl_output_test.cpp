#include "exchange_files.h"
#include "tessarium/stl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

// Bytes of a binary STL put together from the format's layout.
struct binary_stl {
    std::string bytes;
    explicit binary_stl(std::uint32_t count)
    {
        bytes = std::string("QV7 STL Binary") + std::string(66, '\0');
        append(&count, 4);
    }
    void append(void const* p, std::size_t n) { bytes.append(static_cast<char const*>(p), n); }
    void facet(std::initializer_list<float> twelve)
    {
        for (float x : twelve) append(&x, 4);
        bytes.append(2, '\0');
    }
};

// Triangles with normals (0,0,1), (0,-1,0) and (-0.6,0,-0.8); the fourth is degenerate.
dense2D<double> nodes3() { return matrix<double>(3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 3, 4, 0, -3}); }
dense2D<unsigned> triangles() { return matrix<unsigned>(3, {0, 1, 2, 0, 1, 3, 0, 2, 4, 1, 1, 1}); }

}  // namespace

TEST(STLOutput, TextGolden)
{
    std::string path = temp_path("out.stl");
    ASSERT_EQ(STL_output(path.c_str(), nodes3(), triangles(), true), 0);
    // The first normal is (P0 - P2) x (P1 - P0), whose x is (-1) * 0 - 0 * 0: a negative zero.
    EXPECT_EQ(read_file(path),
              "solid QV7\n"
              "   facet normal -0.000000e+00 0.000000e+00 1.000000e+00\n"
              "      outer loop\n"
              "         vertex 0.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 0.000000e+00 1.000000e+00 0.000000e+00\n"
              "      endloop\n"
              "   endfacet\n"
              "   facet normal 0.000000e+00 -1.000000e+00 0.000000e+00\n"
              "      outer loop\n"
              "         vertex 0.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 0.000000e+00 0.000000e+00 3.000000e+00\n"
              "      endloop\n"
              "   endfacet\n"
              "   facet normal -6.000000e-01 0.000000e+00 -8.000000e-01\n"
              "      outer loop\n"
              "         vertex 0.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 0.000000e+00 1.000000e+00 0.000000e+00\n"
              "         vertex 4.000000e+00 0.000000e+00 -3.000000e+00\n"
              "      endloop\n"
              "   endfacet\n"
              "   facet normal 0.000000e+00 0.000000e+00 0.000000e+00\n"
              "      outer loop\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 1.000000e+00 0.000000e+00 0.000000e+00\n"
              "      endloop\n"
              "   endfacet\n"
              "endsolid QV7\n");
}

TEST(STLOutput, BinaryGolden)
{
    std::string path = temp_path("out_b.stl");
    ASSERT_EQ(STL_output(path.c_str(), nodes3(), triangles(), false), 0);
    binary_stl expected(4);
    expected.facet({-0.0f, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0});
    expected.facet({0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 3});
    expected.facet({float(-3 * (1.0 / 5)), 0, float(-4 * (1.0 / 5)), 0, 0, 0, 0, 1, 0, 4, 0, -3});
    expected.facet({0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0});
    EXPECT_EQ(read_file(path), expected.bytes);
}

TEST(STLOutput, NoTrianglesAndPlanarNodes)
{
    std::string path = temp_path("none.stl");
    dense2D<double> pos = nodes3();
    ASSERT_EQ(STL_output(path.c_str(), pos, dense2D<unsigned>(), true), 0);
    EXPECT_EQ(read_file(path), "solid QV7\nendsolid QV7\n");
    ASSERT_EQ(STL_output(path.c_str(), pos, dense2D<unsigned>(), false), 0);
    EXPECT_EQ(read_file(path), binary_stl(0).bytes);

    // A 2-row pos gets z = 0; the last node is read from its own column only.
    dense2D<double> plane = matrix<double>(2, {0, 0, 2, 0, 0, 3});
    ASSERT_EQ(STL_output(path.c_str(), plane, matrix<unsigned>(3, {1, 2, 0}), false), 0);
    binary_stl flat(1);
    flat.facet({0, 0, 1, 2, 0, 0, 0, 3, 0, 0, 0, 0});
    EXPECT_EQ(read_file(path), flat.bytes);
}

TEST(STLOutput, RefusalsInOrder)
{
    EXPECT_EQ(STL_output(unopenable().c_str(), dense2D<double>(), dense2D<unsigned>(), true), -1);
    dense2D<double> pos = nodes3();
    struct refusal {
        int code;
        dense2D<double> pos;
        dense2D<unsigned> T3;
    };
    for (auto const& c : std::vector<refusal>{
             {-2, dense2D<double>(), triangles()},
             {-2, matrix<double>(1, {0, 1, 2}), matrix<unsigned>(3, {0, 1, 2})},
             {-3, pos, matrix<unsigned>(3, {0, 1, 5})},
             {-3, pos, matrix<unsigned>(4, {0, 1, 2, 3})},
         }) {
        for (bool text : {true, false}) {
            std::string path = write_file("refused.stl", "old contents");
            EXPECT_EQ(STL_output(path.c_str(), c.pos, c.T3, text), c.code);
            EXPECT_EQ(read_file(path), "");  // created, truncated, left open
        }
    }
}

TEST(STLOutput, FailedWriteIsReported)
{
    if (!file_exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    dense2D<double> pos = nodes3();
    dense2D<unsigned> many;
    many.resize(3, 2000, 0u);
    EXPECT_EQ(STL_output("/dev/full", pos, many, true), -1);
    EXPECT_EQ(STL_output("/dev/full", pos, many, false), -1);
}
