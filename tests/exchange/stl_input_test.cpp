#include "exchange/stl_soup.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/stl.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

struct stl_mesh {
    int code = 0;
    dense2D<double> pos = matrix<double>(3, {9, 9, 9});  // whatever was there goes
    dense2D<unsigned> T3 = matrix<unsigned>(3, {0, 0, 0});
};

stl_mesh read(std::string const& path)
{
    stl_mesh m;
    m.code = STL_input(path.c_str(), m.pos, m.T3);
    return m;
}
stl_mesh read_bytes(std::string const& bytes)
{
    return read(write_file("in.stl", bytes));
}

std::string facet(std::string const& a, std::string const& b, std::string const& c)
{
    return "facet normal 0 0 0\nouter loop\nvertex " + a + "\nvertex " + b + "\nvertex " + c + "\nendloop\nendfacet\n";
}
std::string solid(std::string const& facets)
{
    return "solid t\n" + facets + "endsolid t\n";
}

// Two right triangles with legs of 1 sharing the side (1,0,0)-(0,1,0): the smallest height is
// 1/sqrt(2), the tolerance a twentieth of it, about 0.035.
std::string const first = facet("0 0 0", "1 0 0", "0 1 0"), second = facet("1 0 0", "1 1 0", "0 1 0");

std::string binary_file(std::int32_t count, std::vector<std::vector<float>> const& facets, std::string header)
{
    header.resize(80, ' ');
    header.append(reinterpret_cast<char const*>(&count), 4);
    for (auto const& f : facets) {
        header.append(12, '\0');
        header.append(reinterpret_cast<char const*>(f.data()), 36);
        header.append("\x12\x34", 2);  // an attribute word, colour or not, is ignored
    }
    return header;
}
std::vector<std::vector<float>> const two_binary = {{0, 0, 0, 1, 0, 0, 0, 1, 0}, {1, 0, 0, 1, 1, 0, 0, 1, 0}};

}  // namespace

TEST(STLInput, WeldingResults)
{
    // Corners 3 and 5 repeat 1 and 2: the first seen stays, unused nodes go.
    stl_mesh m = read_bytes(solid(first + second));
    ASSERT_EQ(m.code, 0);
    ASSERT_EQ(m.pos.cols(), 4u);
    EXPECT_EQ(column(m.pos, 3), (std::vector<double>{1, 1, 0}));
    ASSERT_EQ(m.T3.cols(), 2u);
    EXPECT_EQ(column(m.T3, 0), (std::vector<unsigned>{0, 1, 2}));
    EXPECT_EQ(column(m.T3, 1), (std::vector<unsigned>{1, 3, 2}));
    // Within the tolerance the corners weld onto the first seen; beyond it they stay.
    EXPECT_EQ(read_bytes(solid(first + facet("1 0.01 0", "1 1 0", "0.01 1 0"))).pos.cols(), 4u);
    EXPECT_EQ(read_bytes(solid(first + facet("1 0.05 0", "1 1 0", "0.05 1 0"))).pos.cols(), 6u);
    // With no facet of positive height nothing merges: three nodes per facet.
    m = read_bytes(solid(facet("0 0 0", "1 0 0", "2 0 0") + facet("0 0 0", "1 0 0", "1 0 0")));
    ASSERT_EQ(m.code, 0);
    EXPECT_EQ(m.pos.cols(), 6u);
    EXPECT_EQ(column(m.T3, 1), (std::vector<unsigned>{3, 4, 5}));
    // Beside a real facet, one with a repeated corner collapses and goes; a flat one with three
    // different corners stays.
    m = read_bytes(solid(first + facet("0 0 0", "1 0 0", "1 0 0") + facet("0 0 0", "1 0 0", "2 0 0")));
    ASSERT_EQ(m.T3.cols(), 2u);
    EXPECT_EQ(column(m.T3, 1), (std::vector<unsigned>{0, 1, 3}));
    EXPECT_EQ(m.pos.cols(), 4u);
}

TEST(STLInput, TextLayouts)
{
    std::string upper =
        "FACET NORMAL 0 0 1\nOUTER LOOP\nVERTEX 0E+00 0 0\nVERTEX 1 0 0\nVERTEX 0 1.0E0 0\n"
        "ENDLOOP\nENDFACET\n";
    std::string padded = "\tfacet normal 0 0 1" + std::string(254 - 19, ' ') + "\n";  // 254 + LF: fits
    // Capitals, colour lines, CRLF, trailing words, and solids one after the other (an empty one
    // too) make one mesh.
    stl_mesh m = read_bytes("SOLID A\r\ncolor 1 0 0\n" + upper + "endsolid A\r\n  solid B  \nCOLOR 0 1 0\n" + padded +
                            " outer loop\nvertex 1 0 0 x\nvertex 1 1 0\nvertex 0 1 0\n endloop\n endfacet\n"
                            "endsolid\nsolid empty\nendsolid empty\n");
    ASSERT_EQ(m.code, 0);
    EXPECT_EQ(m.pos.cols(), 4u);
    EXPECT_EQ(m.T3.cols(), 2u);
    // NaN and infinite coordinates are read as they are.
    m = read_bytes(solid(first + facet("nan 0 0", "inf 0 0", "0 -INF 1e999")));
    ASSERT_EQ(m.code, 0);
    EXPECT_EQ(m.T3.cols(), 2u);
}

TEST(STLInput, RoundTripsBothForms)
{
    dense2D<double> pos = matrix<double>(3, {1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1});
    dense2D<unsigned> T3 =
        matrix<unsigned>(3, {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5});
    for (bool text : {true, false}) {
        std::string path = temp_path("round.stl");
        ASSERT_EQ(STL_output(path.c_str(), pos, T3, text), 0);
        stl_mesh m = read(path);
        ASSERT_EQ(m.code, 0);
        EXPECT_EQ(m.pos.cols(), 6u);
        ASSERT_EQ(m.T3.cols(), 8u);
        for (std::size_t j = 0; j < 8; ++j)
            for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(column(m.pos, m.T3(k, j)), column(pos, T3(k, j)));
    }
}

TEST(STLInput, BinaryBehindTextThatFails)
{
    for (char const* header : {"solid binary", " solid PRO2STL version 1.0", "solid x\nfacet normal 0 0 1\n"}) {
        stl_mesh m = read_bytes(binary_file(2, two_binary, header));
        EXPECT_EQ(m.code, 0) << header;
        EXPECT_EQ(m.pos.cols(), 4u);
        EXPECT_EQ(m.T3.cols(), 2u);
    }
    EXPECT_EQ(read_bytes(binary_file(2, two_binary, "") + "\n").code, 0);  // bytes behind the facets
    for (std::int32_t count : {0, -5}) {
        stl_mesh m = read_bytes(binary_file(count, two_binary, "binary"));
        EXPECT_EQ(m.code, 0);
        EXPECT_TRUE(m.pos.empty() && m.T3.empty());
    }
}

TEST(STLInput, FailuresLeaveEmptyArrays)
{
    std::string one = binary_file(1, two_binary, "header");
    std::string long_line = "facet normal 0 0 1" + std::string(255 - 18, ' ') + "\n";  // its LF comes alone
    for (auto const& [code, bytes] : std::vector<std::pair<int, std::string>>{
             {-2, ""},
             {-2, "neither text nor binary"},
             {-3, one.substr(0, 83)},
             {-3, one.substr(0, 131)},                    // a facet cut short
             {-3, binary_file(3, two_binary, "header")},  // counts beyond the file
             {-3, binary_file(INT32_MAX, two_binary, "header")},
             {-3, solid(first) + "\n"},  // a blank line after "endsolid"
             {-3, "solid t\n" + first},  // no "endsolid"
             // Malformed text too short for a binary header: the fallback has the last word.
             {-2, solid(first).substr(0, 8) + "color 1 1 1\n"},  // colour as the last line
             {-2, solid("facet normal 0 0 1\nouter\n")},
             {-3, "solid t\n" + long_line + first.substr(first.find("outer")) + "endsolid\n"},
             {-3, solid(facet("0 0 0", "1 0", "0 1 0"))},
             {-3, solid(facet("0 0 0", "1 0 0", "x 1 0"))},
             {-3, solid("facet 0 0 1\n" + first.substr(first.find("outer")))},
         }) {
        stl_mesh m = read_bytes(bytes);
        EXPECT_EQ(m.code, code) << bytes;
        EXPECT_TRUE(m.pos.empty() && m.T3.empty()) << bytes;
    }
    stl_mesh m = read(unwritable_path());
    EXPECT_EQ(m.code, -1);
    EXPECT_TRUE(m.pos.empty() && m.T3.empty());
}

TEST(STLInput, NothingIsReservedForALyingCount)
{
    std::string path = write_file("lying.stl", binary_file(INT32_MAX, two_binary, ""));
    std::FILE* file = std::fopen(path.c_str(), "rb");
    dense2D<double> pos;
    __STL_soup soup(pos);
    EXPECT_EQ(__STL_read_binary(file, soup), -3);
    std::fclose(file);
    EXPECT_LE(pos.capacity(), 3u * 96u);  // the two facets, or the first growth step
}

TEST(STLInput, ExhaustedMemory)
{
    std::string path = write_file("mem.stl", solid(first + second));
    long before = test_alloc::live_blocks();
    bool succeeded = false;
    for (std::size_t k = 0; k < 64 && !succeeded; ++k) {
        stl_mesh m;
        m.pos.clear();
        {
            test_alloc::failing_scope guard(k);
            m.code = STL_input(path.c_str(), m.pos, m.T3);
        }
        ASSERT_TRUE(m.code == 0 || m.code == -199) << k << ": " << m.code;
        if (m.code == -199) {
            EXPECT_TRUE(m.pos.empty() && m.T3.empty()) << k;
        }
        succeeded = m.code == 0 && m.T3.cols() == 2 && m.pos.cols() == 4;
    }
    EXPECT_TRUE(succeeded);
    EXPECT_EQ(test_alloc::live_blocks(), before);
}

TEST(STLInput, SoupLargerThanOneRunWeldsWhole)
{
    // A strip of 2 x 60000 right triangles: the exact pass works on runs of 100000 facets, the
    // tolerance pass joins the runs. Nodes are numbered in order of first use: (0,0), (1,0),
    // (1,1), (0,1), (2,0), (2,1), ...
    std::size_t const n = 60000;
    dense2D<double> pos;
    dense2D<unsigned> T3;
    pos.resize(3, 6 * n, 0.0);
    T3.resize(3, 2 * n);
    double const corners[6][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {0, 1}};
    for (std::size_t k = 0; k < 6 * n; ++k) {
        pos(0, k) = double(k / 6) + corners[k % 6][0];
        pos(1, k) = corners[k % 6][1];
        T3(k % 3, k / 3) = static_cast<unsigned>(k);
    }
    ASSERT_EQ(__STL_input_merge(0.05 * std::sqrt(0.5), pos, T3), 0);
    EXPECT_EQ(pos.cols(), 2 * (n + 1));
    ASSERT_EQ(T3.cols(), 2 * n);
    EXPECT_EQ(column(T3, 2), (std::vector<unsigned>{1, 4, 5}));
    unsigned const last = unsigned(2 * n);
    EXPECT_EQ(column(T3, 2 * n - 1), (std::vector<unsigned>{last - 2, last + 1, last - 1}));
    EXPECT_EQ(column(pos, 2 * n + 1), (std::vector<double>{double(n), 1, 0}));
}

TEST(STLInput, CorpusFiles)
{
    // Facet counts from the corpus notes; node counts where the shape is known (a closed surface
    // of genus 0 has F / 2 + 2 vertices), 0 where it is not.
    struct expected {
        char const* name;
        std::size_t facets, nodes;
    };
    if (corpus_dir("stl").empty()) GTEST_SKIP() << "no corpus on this machine";
    for (auto const& f : std::vector<expected>{{"adm_block_uppercase.stl", 12, 8},
                                               {"as_3DSMaxExport.STL", 2000, 0},
                                               {"as_sphereWithHole.stl", 285, 0},
                                               {"as_triangle_with_empty_solid.stl", 1, 3},
                                               {"npstl_CubeInvalidUnicode.stl", 12, 8},
                                               {"npstl_Cube_binary_space_solid_header.stl", 12, 8},
                                               {"npstl_HalfDonut_binary_solid_header.stl", 288, 0},
                                               {"npstl_Moon_Chinese.stl", 116, 0},
                                               {"npstl_StarWithEmptyHeader.stl", 68, 0},
                                               {"npstl_rear_case.stl", 18808, 0},
                                               {"tm_20mm-xyz-cube.stl", 260, 0},
                                               {"tm_7_8ths_cube.stl", 24, 14},
                                               {"tm_busted.STL", 3878, 0},
                                               {"tm_featuretype.STL", 3476, 0},
                                               {"tm_multibody.stl", 32, 0},
                                               {"tm_stl_empty_ascii.stl", 0, 0},
                                               {"tm_two_objects_mixed_case_names.stl", 24, 0}}) {
        std::string path = corpus_dir("stl") + f.name;
        if (!exists(path)) continue;
        stl_mesh m = read(path);
        ASSERT_EQ(m.code, 0) << f.name;
        // Welding may drop collapsed facets, never add any.
        EXPECT_LE(m.T3.cols(), f.facets) << f.name;
        EXPECT_GE(m.T3.cols(), f.facets * 9 / 10) << f.name;
        EXPECT_LE(m.pos.cols(), 3 * m.T3.cols()) << f.name;
        if (f.nodes) {
            EXPECT_EQ(m.pos.cols(), f.nodes) << f.name;
        }
    }
}
