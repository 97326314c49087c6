#include "exchange_files.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

constexpr unsigned X = NONE_ID;

char const* const banner = "*********************************\n";
char const* const record_tail = "0.,0.,0.,0,0,0,0,0,0,\n0.,0.,0.,\n0.,0.,0.,\n0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n";
char const* const zero_slots = "0,0,0,0,0,0,0,0,0,0,\n";

// The element block of a written file, from its first record to the closing line.
std::string records(std::string const& path)
{
    std::string text = contents(path);
    std::size_t begin = text.find("   -1\n404\n");
    if (begin == std::string::npos) return "<no block>";
    return text.substr(begin + 10, text.size() - begin - 10 - 6);
}

std::string records_of(element_type type, std::size_t rows)
{
    std::string path = temp_path("records.neu");
    EXPECT_EQ(FEMAP_output(path.c_str(), points(27), counting(rows), type), 0);
    return records(path);
}

std::string first_line(std::string const& block)
{
    return block.substr(0, block.find('\n') + 1);
}

std::size_t record_count(std::string const& block)
{
    return std::count(block.begin(), block.end(), '\n') / 7;
}

}  // namespace

TEST(FemapOutput, WholeFileOfOneTriangle)
{
    dense2D<double> pos = matrix<double>(3, {0.0, 0.0, 0.0, 1.5, -2.0, 1234567.0, 1e-5, 0.0001, 123456.0});
    std::string path = temp_path("triangle.neu");
    ASSERT_EQ(FEMAP_output(path.c_str(), pos, matrix<unsigned>(3, {0, 1, 2}), ET_FACE_T3), 0);
    EXPECT_EQ(contents(path), std::string(banner) + "*********** NODES ***************\n" + banner +
                                  "   -1\n403\n"
                                  "1,0,0,1,0,0,0,0,0,0,0,0,0,0,0,\n"
                                  "2,0,0,1,0,0,0,0,0,0,0,1.5,-2,1.23457e+06,0,\n"
                                  "3,0,0,1,0,0,0,0,0,0,0,1e-05,0.0001,123456,0,\n"
                                  "   -1\n" +
                                  banner + "********* ELEMENTS **************\n" + banner +
                                  "   -1\n404\n"
                                  "1,1,1,17,2,1,0,0,0,0,0,0,0,\n"
                                  "1,2,3,0,0,0,0,0,0,0,\n" +
                                  zero_slots + record_tail + "   -1\n");
    // Two-row coordinates get 0 for z.
    ASSERT_EQ(FEMAP_output(path.c_str(), matrix<double>(2, {-1.0, 2.5}), matrix<unsigned>(1, {0}), ET_NODE), 0);
    EXPECT_NE(contents(path).find("403\n1,0,0,1,0,0,0,0,0,0,0,-1,2.5,0,0,\n   -1\n"), std::string::npos);
}

TEST(FemapOutput, CodesAndSlotsOfEachType)
{
    struct expected {
        element_type type;
        char const* line1;
        char const* slots;
    };
    expected const table[] = {
        {ET_NODE, "1,1,1,10,9,1,0,0,0,0,0,0,0,\n", "1,0,0,0,0,0,0,0,0,0,\n0,0,0,0,0,0,0,0,0,0,\n"},
        {ET_EDGE3, "1,1,1,8,1,1,0,0,0,0,0,0,0,\n", "1,2,3,0,0,0,0,0,0,0,\n0,0,0,0,0,0,0,0,0,0,\n"},
        {ET_FACE_T6, "1,1,1,18,3,1,0,0,0,0,0,0,0,\n", "0,1,2,6,4,5,0,0,0,0,\n0,0,0,0,0,0,0,0,0,0,\n"},
        {ET_FACE_Q8, "1,1,1,18,5,1,0,0,0,0,0,0,0,\n", "1,2,3,4,5,6,7,8,0,0,\n0,0,0,0,0,0,0,0,0,0,\n"},
        {ET_TETRA4, "1,1,1,25,6,1,0,0,0,0,0,0,0,\n", "2,1,3,0,4,0,0,0,0,0,\n0,0,0,0,0,0,0,0,0,0,\n"},
        {ET_TETRA10, "1,1,1,25,10,1,0,0,0,0,0,0,0,\n", "1,3,2,0,4,0,0,0,6,5,\n7,0,8,10,9,0,0,0,0,0,\n"},
        {ET_WEDGE6, "1,1,1,25,7,1,0,0,0,0,0,0,0,\n", "1,2,3,0,4,5,6,0,0,0,\n0,0,0,0,0,0,0,0,0,0,\n"},
        {ET_HEXA8, "1,1,1,25,8,1,0,0,0,0,0,0,0,\n", "1,2,3,4,5,6,7,8,0,0,\n0,0,0,0,0,0,0,0,0,0,\n"},
        {ET_HEXA20, "1,1,1,26,12,1,0,0,0,0,0,0,0,\n", "1,2,3,4,5,6,7,8,9,10,\n11,12,13,14,15,16,17,18,19,20,\n"},
    };
    for (expected const& e : table)
        EXPECT_EQ(records_of(e.type, nbr_nodes(e.type)), std::string(e.line1) + e.slots + record_tail) << e.type;
    for (element_type left_out : {ET_FACE_Q9, ET_PYRAMID5, ET_PYRAMID13, ET_WEDGE15, ET_HEXA27})
        EXPECT_EQ(records_of(left_out, nbr_nodes(left_out)), "") << left_out;
}

TEST(FemapOutput, MixedGroupsLeaveOutPyramidsAndKeepTheNumbering)
{
    dense2D<unsigned> M = matrix<unsigned>(8, {0, 1, 2, 3, X, X, X, X,    // tetrahedron
                                               0, 1, 2, 3, 4, X, X, X,    // pyramid: left out
                                               0, 1, 2, 3, 4, 5, 6, 7});  // hexahedron
    std::string path = temp_path("mixed.neu");
    ASSERT_EQ(FEMAP_output(path.c_str(), points(8), M, list<unsigned>({0, 3}), list<int>({ET_SOLID_MIX}),
                           list<unsigned>({5, 6, 7})),
              0);
    std::string block = records(path);
    EXPECT_EQ(first_line(block), "1,5,1,25,6,1,0,0,0,0,0,0,0,\n");
    EXPECT_NE(block.find("\n3,7,1,25,8,1,0,0,0,0,0,0,0,\n"), std::string::npos);
    EXPECT_EQ(record_count(block), 2u);

    dense2D<unsigned> faces = matrix<unsigned>(4, {0, 1, 2, X, 0, 1, 2, 3});
    ASSERT_EQ(FEMAP_output(path.c_str(), points(4), faces, ET_FACE_MIX), 0);
    block = records(path);
    EXPECT_EQ(first_line(block), "1,1,1,17,2,1,0,0,0,0,0,0,0,\n");
    EXPECT_NE(block.find("\n2,1,1,17,4,1,0,0,0,0,0,0,0,\n1,2,3,4,0,"), std::string::npos);
}

TEST(FemapOutput, TwoMatricesTakeTheColumnCountsAsBounds)
{
    std::string path = temp_path("two.neu");
    dense2D<unsigned> tris = counting(3, 2), quads = counting(4, 3);
    ASSERT_EQ(FEMAP_output(path.c_str(), points(12), tris, quads, ET_FACE_T3, ET_FACE_Q4), 0);
    std::string block = records(path);
    EXPECT_EQ(first_line(block), "1,1,1,17,2,1,0,0,0,0,0,0,0,\n");
    EXPECT_NE(block.find("\n2,1,1,17,2,1,"), std::string::npos);
    EXPECT_NE(block.find("\n3,2,1,17,4,1,0,0,0,0,0,0,0,\n1,2,3,4,0,"), std::string::npos);  // (0, 2, 3)
    EXPECT_EQ(record_count(block), 3u);
    ASSERT_EQ(FEMAP_output(path.c_str(), points(12), quads, tris, ET_FACE_Q4, ET_FACE_T3), 0);
    block = records(path);
    EXPECT_EQ(record_count(block), 3u);  // (0, 3, 2): no triangle at all
    EXPECT_EQ(block.find("17,2,1"), std::string::npos);
}
