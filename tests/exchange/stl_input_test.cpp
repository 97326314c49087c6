#include "exchange/stl_soup.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/stl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cmath>
#include <cstring>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

struct stl_mesh {
    int code;
    dense2D<double> pos;
    dense2D<unsigned> T3;
};

stl_mesh read(std::string const& path)
{
    stl_mesh m;
    m.pos = matrix<double>(3, {9, 9, 9});  // whatever was there goes
    m.T3 = matrix<unsigned>(3, {0, 0, 0});
    m.code = STL_input(path.c_str(), m.pos, m.T3);
    return m;
}

std::string facet(char const* a, char const* b, char const* c)
{
    return std::string("facet normal 0 0 0\nouter loop\nvertex ") + a + "\nvertex " + b + "\nvertex " + c +
           "\nendloop\nendfacet\n";
}

std::string solid(std::string const& facets) { return "solid t\n" + facets + "endsolid t\n"; }

std::string binary_file(std::int32_t count, std::vector<std::vector<float>> const& facets, std::string header)
{
    header.resize(80, ' ');
    header.append(reinterpret_cast<char const*>(&count), 4);
    for (auto const& f : facets) {
        header.append(12, '\0');
        header.append(reinterpret_cast<char const*>(f.data()), 36);
        header.append(2, '\0');
    }
    return header;
}

// Each corner of each triangle sits where it sat in the original mesh.
void expect_same_corners(stl_mesh const& m, dense2D<double> const& pos, dense2D<unsigned> const& T3)
{
    ASSERT_EQ(m.T3.cols(), T3.cols());
    for (std::size_t j = 0; j < T3.cols(); ++j)
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_EQ(column(m.pos, m.T3(k, j)), column(pos, T3(k, j))) << j << " " << k;
}

}  // namespace

TEST(STLInput, SharedEdgeIsWelded)
{
    // Corners 3 and 5 repeat corners 1 and 2; the first one seen stays, unused nodes go.
    stl_mesh m = read(write_file("edge.stl", solid(facet("0 0 0", "1 0 0", "0 1 0") + facet("1 0 0", "1 1 0", "0 1 0"))));
    ASSERT_EQ(m.code, 0);
    ASSERT_EQ(m.pos.cols(), 4u);
    EXPECT_EQ(column(m.pos, 3), (std::vector<double>{1, 1, 0}));
    ASSERT_EQ(m.T3.cols(), 2u);
    EXPECT_EQ(column(m.T3, 0), (std::vector<unsigned>{0, 1, 2}));
    EXPECT_EQ(column(m.T3, 1), (std::vector<unsigned>{1, 3, 2}));
}

TEST(STLInput, ToleranceFromTheSmallestHeight)
{
    // Legs of 1: the smallest height is 1/sqrt(2), the tolerance 0.05 of it, about 0.035.
    for (auto [shift, nodes] : {std::pair{"0.01", 4u}, std::pair{"0.05", 6u}}) {
        std::string b = std::string("1 ") + shift + " 0", c = std::string(shift) + " 1 0";
        stl_mesh m = read(write_file("near.stl", solid(facet("0 0 0", "1 0 0", "0 1 0") + facet(b.c_str(), "1 1 0", c.c_str()))));
        ASSERT_EQ(m.code, 0);
        EXPECT_EQ(m.pos.cols(), nodes) << shift;
        EXPECT_EQ(m.T3.cols(), 2u);
        // The first seen survives with its coordinates.
        EXPECT_EQ(column(m.pos, m.T3(0, 1)), (std::vector<double>{1, nodes == 4 ? 0.0 : 0.05, 0}));
    }
}

TEST(STLInput, DegenerateFacets)
{
    // With no facet of positive height nothing merges: three nodes per facet.
    stl_mesh flat = read(write_file("flat.stl", solid(facet("0 0 0", "1 0 0", "2 0 0") + facet("0 0 0", "1 0 0", "1 0 0"))));
    ASSERT_EQ(flat.code, 0);
    EXPECT_EQ(flat.pos.cols(), 6u);
    EXPECT_EQ(flat.T3.cols(), 2u);
    EXPECT_EQ(column(flat.T3, 1), (std::vector<unsigned>{3, 4, 5}));
    // Beside a real facet, a facet with a repeated corner collapses and goes; a flat facet with
    // three different corners stays.
    stl_mesh m = read(write_file("mixed.stl", solid(facet("0 0 0", "1 0 0", "0 1 0") + facet("0 0 0", "1 0 0", "1 0 0") +
                                                    facet("0 0 0", "1 0 0", "2 0 0"))));
    ASSERT_EQ(m.code, 0);
    ASSERT_EQ(m.T3.cols(), 2u);
    EXPECT_EQ(column(m.T3, 1), (std::vector<unsigned>{0, 1, 3}));
    EXPECT_EQ(m.pos.cols(), 4u);
}

TEST(STLInput, RoundTripsBothForms)
{
    dense2D<double> pos = matrix<double>(3, {1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1});
    dense2D<unsigned> T3 = matrix<unsigned>(3, {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5});
    for (bool text : {true, false}) {
        std::string path = temp_path("round.stl");
        ASSERT_EQ(STL_output(path.c_str(), pos, T3, text), 0);
        stl_mesh m = read(path);
        ASSERT_EQ(m.code, 0) << text;
        EXPECT_EQ(m.pos.cols(), 6u);
        expect_same_corners(m, pos, T3);
    }
}

TEST(STLInput, BinaryBehindASolidHeader)
{
    std::vector<std::vector<float>> two = {{0, 0, 0, 1, 0, 0, 0, 1, 0}, {1, 0, 0, 1, 1, 0, 0, 1, 0}};
    for (char const* header : {"solid binary", " solid PRO2STL version 1.0", "solid x\nfacet normal 0 0 1\n"}) {
        stl_mesh m = read(write_file("solidbin.stl", binary_file(2, two, header)));
        EXPECT_EQ(m.code, 0) << header;
        EXPECT_EQ(m.pos.cols(), 4u);
        EXPECT_EQ(m.T3.cols(), 2u);
    }
    // Counts of 0 or below give an empty mesh.
    for (std::int32_t count : {0, -5}) {
        stl_mesh m = read(write_file("zero.stl", binary_file(count, two, "binary")));
        EXPECT_EQ(m.code, 0);
        EXPECT_TRUE(m.pos.empty());
        EXPECT_TRUE(m.T3.empty());
    }
}

TEST(STLInput, FailuresLeaveEmptyArrays)
{
    struct failure {
        int code;
        std::string bytes;
    };
    std::vector<std::vector<float>> one = {{0, 0, 0, 1, 0, 0, 0, 1, 0}};
    for (auto const& c : std::vector<failure>{
             {-2, ""},
             {-2, "not an stl file"},
             {-3, binary_file(3, one, "header")},                        // count beyond the file
             {-3, binary_file(INT32_MAX, one, "header")},
             {-3, binary_file(1, one, "header").substr(0, 120)},          // cut short
             {-3, solid(facet("0 0 0", "1 0 0", "0 1 0")) + "\n"},       // text with a blank line at the end
             {-3, "solid t\n" + facet("0 0 0", "1 0 0", "0 1 0")},       // no endsolid
         }) {
        stl_mesh m = read(write_file("bad.stl", c.bytes));
        EXPECT_EQ(m.code, c.code) << c.bytes.size();
        EXPECT_TRUE(m.pos.empty());
        EXPECT_TRUE(m.T3.empty());
    }
    stl_mesh m = read(unopenable());
    EXPECT_EQ(m.code, -1);
    EXPECT_TRUE(m.pos.empty());
}

TEST(STLInput, ExhaustedMemory)
{
    std::string path = write_file("mem.stl", solid(facet("0 0 0", "1 0 0", "0 1 0") + facet("1 0 0", "1 1 0", "0 1 0")));
    long before = test_alloc::live_blocks();
    bool succeeded = false;
    for (std::size_t k = 0; k < 64 && !succeeded; ++k) {
        stl_mesh m;
        {
            test_alloc::failing_scope guard(k);
            m.code = STL_input(path.c_str(), m.pos, m.T3);
        }
        ASSERT_TRUE(m.code == 0 || m.code == -199) << k << ": " << m.code;
        if (m.code == -199) {
            EXPECT_TRUE(m.pos.empty()) << k;
            EXPECT_TRUE(m.T3.empty()) << k;
        }
        succeeded = m.code == 0 && m.T3.cols() == 2 && m.pos.cols() == 4;
    }
    EXPECT_TRUE(succeeded);
    EXPECT_EQ(test_alloc::live_blocks(), before);
}

TEST(STLInput, CorpusFiles)
{
    struct expected {
        char const* name;
        std::size_t facets, nodes;  // nodes 0: not checked
    };
    // Facet counts from the corpus notes; node counts where the shape is known: a closed surface
    // of genus 0 has F / 2 + 2 vertices.
    std::vector<expected> files = {
        {"adm_block_uppercase.stl", 12, 8},      {"as_3DSMaxExport.STL", 2000, 0},
        {"as_sphereWithHole.stl", 285, 0},       {"as_triangle_with_empty_solid.stl", 1, 3},
        {"npstl_CubeInvalidUnicode.stl", 12, 8}, {"npstl_Cube_binary_space_solid_header.stl", 12, 8},
        {"npstl_HalfDonut_binary_solid_header.stl", 288, 0}, {"npstl_Moon_Chinese.stl", 116, 0},
        {"npstl_StarWithEmptyHeader.stl", 68, 0}, {"npstl_rear_case.stl", 18808, 0},
        {"tm_20mm-xyz-cube.stl", 260, 0},        {"tm_7_8ths_cube.stl", 24, 14},
        {"tm_busted.STL", 3878, 0},              {"tm_featuretype.STL", 3476, 0},
        {"tm_multibody.stl", 32, 0},             {"tm_stl_empty_ascii.stl", 0, 0},
        {"tm_two_objects_mixed_case_names.stl", 24, 0},
    };
    if (corpus_dir("stl").empty()) GTEST_SKIP() << "no corpus on this machine";
    for (auto const& f : files) {
        std::string path = corpus_dir("stl") + f.name;
        if (!file_exists(path)) continue;
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

TEST(STLInputMerge, SoupLargerThanOneRunWeldsWhole)
{
    // A strip of 2 x 60000 triangles over 2 x 60001 grid points, corners given one by one; the
    // exact pass works on runs of facets, the tolerance pass joins the runs.
    std::size_t const n = 60000;
    dense2D<double> pos;
    dense2D<unsigned> T3;
    pos.resize(3, 6 * n);
    T3.resize(3, 2 * n);
    auto corner = [&](std::size_t k, double x, double y) {
        pos(0, k) = x, pos(1, k) = y, pos(2, k) = 0.0;
        T3(k % 3, k / 3) = static_cast<unsigned>(k);
    };
    for (std::size_t i = 0, k = 0; i < n; ++i) {
        double x = double(i);
        corner(k++, x, 0), corner(k++, x + 1, 0), corner(k++, x + 1, 1);
        corner(k++, x, 0), corner(k++, x + 1, 1), corner(k++, x, 1);
    }
    ASSERT_EQ(__STL_input_merge(0.05 * std::sqrt(0.5), pos, T3), 0);
    EXPECT_EQ(pos.cols(), 2 * (n + 1));
    ASSERT_EQ(T3.cols(), 2 * n);
    // Node numbers in order of first use: (0,0), (1,0), (1,1), (0,1), (2,0), (2,1), ...
    EXPECT_EQ(column(T3, 0), (std::vector<unsigned>{0, 1, 2}));
    EXPECT_EQ(column(T3, 1), (std::vector<unsigned>{0, 2, 3}));
    EXPECT_EQ(column(T3, 2), (std::vector<unsigned>{1, 4, 5}));
    EXPECT_EQ(column(T3, 2 * n - 1), (std::vector<unsigned>{unsigned(2 * n - 2), unsigned(2 * n + 1), unsigned(2 * n - 1)}));
    EXPECT_EQ(column(pos, 2 * n + 1), (std::vector<double>{double(n), 1, 0}));
}

TEST(STLInputMerge, SliversCollapse)
{
    // The second triangle's tip lies within the tolerance of its base's first end: it collapses.
    dense2D<double> pos = matrix<double>(3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0.01, 0, 0});
    dense2D<unsigned> T3 = matrix<unsigned>(3, {0, 1, 2, 3, 4, 5});
    ASSERT_EQ(__STL_input_merge(0.02, pos, T3), 0);
    ASSERT_EQ(T3.cols(), 1u);
    EXPECT_EQ(column(T3, 0), (std::vector<unsigned>{0, 1, 2}));
    EXPECT_EQ(pos.cols(), 3u);
    // Tolerance 0 merges exact copies only.
    pos = matrix<double>(3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0.01, 0, 0});
    T3 = matrix<unsigned>(3, {0, 1, 2, 3, 4, 5});
    ASSERT_EQ(__STL_input_merge(0.0, pos, T3), 0);
    EXPECT_EQ(column(T3, 1), (std::vector<unsigned>{0, 1, 3}));
    EXPECT_EQ(pos.cols(), 4u);
}
