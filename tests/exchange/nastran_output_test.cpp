#include "exchange_files.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

constexpr unsigned X = NONE_ID;

char const* const deck_head =
    "$ QV7 Tessarium(R) NASTRAN exporter\n"
    "BEGIN BULK\n"
    "$----------------------------------------\n"
    "$ Referenced Material Records -----------\n"
    "$ Material Record :    ------------------\n"
    "$ Description of Material :   -----------\n"
    "MAT1    1       0.                 0.  0.\n"
    "$----------------------------------------\n"
    "$                GRID POINTS             \n"
    "$----------------------------------------\n";
char const* const elements_head =
    "$----------------------------------------\n"
    "$                 ELEMENTS               \n"
    "$----------------------------------------\n";

// The element cards of a written deck.
std::string cards(std::string const& path)
{
    std::string text = contents(path);
    std::size_t begin = text.find(elements_head), end = text.rfind("ENDDATA\n");
    if (begin == std::string::npos || end == std::string::npos) return "<no deck>";
    begin += std::string(elements_head).size();
    return text.substr(begin, end - begin);
}

std::string cards_of(element_type type, std::size_t rows)
{
    std::string path = temp_path("cards.bdf");
    EXPECT_EQ(NASTRAN_output(path.c_str(), points(27), counting(rows), type), 0);
    return cards(path);
}

}  // namespace

TEST(NastranOutput, WholeDeckOfOneTriangle)
{
    dense2D<double> pos = matrix<double>(3, {0.0, 0.0, 0.0, 1.5, 0.0, 0.0, 123456.789, -2.0, 1e-7});
    dense2D<unsigned> tri = matrix<unsigned>(3, {0, 1, 2});
    std::string path = temp_path("triangle.bdf");
    ASSERT_EQ(NASTRAN_output(path.c_str(), pos, tri, ET_FACE_T3), 0);
    EXPECT_EQ(contents(path), std::string(deck_head) +
                                  "GRID*                  1                    0.000000E+00    0.000000E+00*C\n"
                                  "*C          0.000000E+00\n"
                                  "GRID*                  2                    1.500000E+00    0.000000E+00*C\n"
                                  "*C          0.000000E+00\n"
                                  "GRID*                  3                    1.234568E+05   -2.000000E+00*C\n"
                                  "*C          1.000000E-07\n" +
                                  elements_head + "CTRIA3,1,1,1,2,3\nENDDATA\n");
    // Two-row coordinates get 0 for z.
    ASSERT_EQ(NASTRAN_output(path.c_str(), matrix<double>(2, {-1.0, 2.0}), matrix<unsigned>(1, {0}), ET_NODE), 0);
    EXPECT_NE(contents(path).find("GRID*                  1                   -1.000000E+00    2.000000E+00*C\n"
                                  "*C          0.000000E+00\n"),
              std::string::npos);
}

TEST(NastranOutput, EveryCardReadsBack)
{
    // Each element holds its local rows as nodes; read back, it must come out the same, the
    // types beyond the cards' node counts as the type of the nodes kept. The reader's order of
    // the 15-node wedge is not the writer's: its card is checked as text.
    struct written {
        element_type type, read;
    } const table[] = {{ET_EDGE2, ET_EDGE2},         {ET_EDGE3, ET_EDGE2},         {ET_FACE_T3, ET_FACE_T3},
                       {ET_FACE_Q4, ET_FACE_Q4},     {ET_FACE_T6, ET_FACE_T6},     {ET_FACE_Q8, ET_FACE_Q8},
                       {ET_TETRA4, ET_TETRA4},       {ET_TETRA10, ET_TETRA10},     {ET_PYRAMID5, ET_PYRAMID5},
                       {ET_PYRAMID13, ET_PYRAMID13}, {ET_PYRAMID14, ET_PYRAMID13}, {ET_WEDGE6, ET_WEDGE6},
                       {ET_HEXA8, ET_HEXA8},         {ET_HEXA20, ET_HEXA20},       {ET_HEXA27, ET_HEXA20}};
    std::string path = temp_path("cards.bdf");
    for (written const& w : table) {
        ASSERT_EQ(NASTRAN_output(path.c_str(), points(27), counting(nbr_nodes(w.type)), w.type), 0) << w.type;
        dense2D<double> pos;
        dense2D<unsigned> C;
        element_type FE = ET_NONE;
        EXPECT_GE(NASTRAN_input(path.c_str(), pos, C, FE), 0) << w.type;
        EXPECT_EQ(FE, w.read) << w.type;
        EXPECT_EQ(values(C), values(counting(nbr_nodes(w.read)))) << w.type;
    }
    EXPECT_EQ(cards_of(ET_NODE, 1), "");
    EXPECT_EQ(cards_of(ET_WEDGE18, 18), "CPENTA,1,1,1,2,3,4,5,6,+C\n+C,12,10,11,7,8,9,15,13,+C\n+C,14\n");
}

TEST(NastranOutput, GroupsMixedColumnsAndPropertyIDs)
{
    dense2D<unsigned> M = matrix<unsigned>(8, {0, 1, 2, X, X, X, X, X,    // triangle of a face group
                                               0, 1, 2, 3, X, X, X, X,    // quadrilateral
                                               4, X, X, X, X, X, X, X,    // a node: no card
                                               0, 1, 2, 3, X, X, X, X,    // tetrahedron
                                               0, 1, 2, 3, 4, X, X, X,    // pyramid
                                               0, 1, 2, 3, 4, 5, X, X,    // wedge
                                               0, 1, 2, 3, 4, 5, 6, 7});  // hexahedron
    dense1D<unsigned, 8> indices = list<unsigned>({0, 2, 3, 7});
    dense1D<int, 8> FEs = list<int>({ET_FACE_MIX, ET_NODE, ET_SOLID_MIX});
    dense1D<unsigned, 8> PIDs = list<unsigned>({10, 11, 12, 13, 14, 15, 16});
    std::string path = temp_path("groups.bdf");
    ASSERT_EQ(NASTRAN_output(path.c_str(), points(8), M, indices, FEs, PIDs), 0);
    EXPECT_EQ(cards(path),
              "CTRIA3,1,10,1,2,3\nCQUAD4,2,11,1,2,3,4\nCTETRA,4,13,1,3,2,4\nCPYRAM,5,14,1,2,3,4,5\n"
              "CPENTA,6,15,1,2,3,4,5,6\nCHEXA,7,16,1,2,3,4,5,6,+C\n+C,7,8\n");

    // Two matrices: property IDs 1 and 2, columns numbered on.
    ASSERT_EQ(NASTRAN_output(path.c_str(), points(4), matrix<unsigned>(3, {0, 1, 2}),
                             matrix<unsigned>(4, {0, 1, 2, 3, 3, 2, 1, 0}), ET_FACE_T3, ET_FACE_Q4),
              0);
    EXPECT_EQ(cards(path), "CTRIA3,1,1,1,2,3\nCQUAD4,2,2,1,2,3,4\nCQUAD4,3,2,4,3,2,1\n");

    // Reversed bounds make an empty group.
    ASSERT_EQ(NASTRAN_output(path.c_str(), points(3), counting(3, 2), list<unsigned>({0, 2, 1}),
                             list<int>({ET_FACE_T3, ET_FACE_T3}), list<unsigned>({1, 1})),
              0);
    EXPECT_EQ(cards(path), "CTRIA3,1,1,1,2,3\nCTRIA3,2,1,4,5,6\n");
}
