#include "exchange/nastran_input.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace qv7;
using namespace qv7::tessarium;
using exchange_test::column;
using exchange_test::values;
using V = std::vector<unsigned>;

namespace {

constexpr unsigned X = NONE_ID;

using deck = exchange_test::grouped_read;

deck read_deck(std::string const& text, std::size_t max_ID = __max_node_ID)
{
    deck d;
    std::istringstream in(text);
    d.result = __NASTRAN_input(in, d.pos, d.connectM, d.indices, d.FEs, d.per_element, max_ID);
    return d;
}

std::vector<double> node(deck const& d, std::size_t j) { return column(d.pos, j); }

}  // namespace

TEST(NastranInput, BulkSectionWithoutCardsGivesEmptyResults)
{
    deck d = read_deck("ID test\nCEND\nBEGIN BULK\nENDDATA\n");
    EXPECT_EQ(d.result, 0);
    EXPECT_TRUE(d.pos.empty());
    EXPECT_TRUE(d.connectM.empty());
    EXPECT_EQ(values(d.indices), V({0, 0}));
    EXPECT_TRUE(d.FEs.empty());
}

TEST(NastranInput, NothingIsReadWithoutBeginBulk)
{
    deck d = read_deck("GRID,1,0,1.,2.,3.\nCTRIA3,1,1,1,1,1\nENDDATA\n");
    EXPECT_EQ(d.result, -1);
    EXPECT_TRUE(d.pos.empty());
    EXPECT_EQ(values(d.indices), V({0, 0}));
}

TEST(NastranInput, GridPointsInSmallLargeAndFreeField)
{
    deck d = read_deck(
        "BEGIN BULK\n"
        "$ small field, then its short exponents: atof stops at the exponent's sign\n"
        "GRID    "
        "       1       0     1.0     2.0     3.0\n"
        "GRID    "
        "       2       0   1.5-3  2.5+10 -1.25-1\n"
        "GRID*   "
        "               3                    4.000000E+00   -5.500000E-01*C\n"
        "*C      "
        "    6.250000E+02\n"
        "GRID,4,0,7.,8.,9.\n"
        "GRID,5,,-1.,-2.,-3.\n"
        "GRID ,6,0,1e2,2e-1,3.5,0\n"
        "ENDDATA\n");
    ASSERT_EQ(d.result, 0);
    ASSERT_EQ(d.pos.rows(), 3u);
    ASSERT_EQ(d.pos.cols(), 6u);
    EXPECT_EQ(node(d, 0), std::vector<double>({1.0, 2.0, 3.0}));
    EXPECT_EQ(node(d, 1), std::vector<double>({1.5, 2.5, -1.25}));
    EXPECT_EQ(node(d, 2), std::vector<double>({4.0, -0.55, 625.0}));
    EXPECT_EQ(node(d, 3), std::vector<double>({7.0, 8.0, 9.0}));
    EXPECT_EQ(node(d, 4), std::vector<double>({-1.0, -2.0, -3.0}));
    EXPECT_EQ(node(d, 5), std::vector<double>({100.0, 0.2, 3.5}));
}

TEST(NastranInput, NodeColumnsFollowTheIDs)
{
    // IDs 1, 2, 5: columns 2 and 3 stay 0; a repeated ID overwrites. A blank small-field ID is
    // no blank: the scan takes the next number, here the CP field, and shifts the rest.
    deck d = read_deck(
        "BEGIN BULK\nGRID,1,0,1.,1.,1.\nGRID,2,0,2.,2.,2.\nGRID,5,0,5.,5.,5.\nGRID,2,0,9.,9.,9.\n"
        "GRID    "
        "               7     1.0     2.0     3.0     4.0\n"
        "ENDDATA\n");
    ASSERT_EQ(d.result, 0);
    ASSERT_EQ(d.pos.cols(), 7u);
    EXPECT_EQ(node(d, 1), std::vector<double>({9.0, 9.0, 9.0}));
    EXPECT_EQ(node(d, 2), std::vector<double>({0.0, 0.0, 0.0}));
    EXPECT_EQ(node(d, 3), std::vector<double>({0.0, 0.0, 0.0}));
    EXPECT_EQ(node(d, 4), std::vector<double>({5.0, 5.0, 5.0}));
    EXPECT_EQ(node(d, 6), std::vector<double>({2.0, 3.0, 4.0}));
}

TEST(NastranInput, ElementCardsInEachFieldFormatWithContinuations)
{
    deck d = read_deck(
        "BEGIN BULK\n"
        "CTETRA  "
        "      10       3       1       2       3       4\n"
        "CQUAD4,11,4,1,2,3,4\n"
        "CHEXA   "
        "      12       5       1       2       3       4       5       6+H1\n"
        "+H1     "
        "       7       8\n"
        "CQUAD4  "
        "              13               6               1               2*Q\n"
        "*Q      "
        "               3               4\n"
        "CTRIA3* "
        "              14               1               1               2*T\n"
        "*T      "
        "               3\n"
        "CHEXA,15,7,1,2,3,4,5,6,+C\n"
        "+C,7,8\n"
        "ENDDATA\n");
    ASSERT_EQ(d.result, 0);
    ASSERT_EQ(d.connectM.rows(), 8u);
    ASSERT_EQ(d.connectM.cols(), 5u);
    // The tetrahedron is turned over; earlier columns get 0 in the rows a taller element adds,
    // a later shorter element gets NONE_ID. The large-field card named with a star is passed over.
    EXPECT_EQ(column(d.connectM, 0), V({0, 2, 1, 3, 0, 0, 0, 0}));
    EXPECT_EQ(column(d.connectM, 1), V({0, 1, 2, 3, 0, 0, 0, 0}));
    EXPECT_EQ(column(d.connectM, 2), V({0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(column(d.connectM, 3), V({0, 1, 2, 3, X, X, X, X}));
    EXPECT_EQ(column(d.connectM, 4), V({0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(values(d.FEs), std::vector<int>({ET_TETRA4, ET_FACE_Q4, ET_HEXA8, ET_FACE_Q4, ET_HEXA8}));
    EXPECT_EQ(values(d.indices), V({0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(values(d.per_element), V({3, 4, 5, 6, 7}));
}

TEST(NastranInput, EveryCardNameWithAndWithoutC)
{
    struct named {
        char const* name;
        element_type type;
    };
    named const table[] = {
        {"BAR", ET_EDGE2},      {"BEAM", ET_EDGE2},     {"ROD", ET_EDGE2},       {"CBAR", ET_EDGE2},
        {"CBEAM", ET_EDGE2},    {"CROD", ET_EDGE2},     {"TRIA3", ET_FACE_T3},   {"CTRIA3", ET_FACE_T3},
        {"TRIA6", ET_FACE_T6},  {"CTRIA6", ET_FACE_T6}, {"QUAD4", ET_FACE_Q4},   {"CQUAD4", ET_FACE_Q4},
        {"QUAD8", ET_FACE_Q8},  {"CQUAD8", ET_FACE_Q8}, {"TETRA", ET_TETRA4},    {"CTETRA", ET_TETRA4},
        {"PYRA", ET_PYRAMID5},  {"PYRAM", ET_PYRAMID5}, {"CPYRA", ET_PYRAMID5},  {"CPYRAM", ET_PYRAMID5},
        {"PENTA", ET_WEDGE6},   {"CPENTA", ET_WEDGE6},  {"HEXA", ET_HEXA8},      {"CHEXA", ET_HEXA8},
    };
    for (named const& card : table) {
        std::string text = "BEGIN BULK\n" + std::string(card.name) + ",1,1";
        for (unsigned k = 1; k <= nbr_nodes(card.type); ++k) text += (k == 7 ? ",+\n+," : ",") + std::to_string(k);
        deck d = read_deck(text + "\nENDDATA\n");
        ASSERT_EQ(d.FEs.size(), 1u) << card.name;
        EXPECT_EQ(d.FEs[0], card.type) << card.name;
    }
    // Names are matched whole and with their case.
    deck d = read_deck("BEGIN BULK\nctria3,1,1,1,2,3\nCTRIA3 ,2,1,1,2,3\nCTRIA,3,1,1,2,3\nENDDATA\n");
    EXPECT_TRUE(d.connectM.empty());
}

TEST(NastranInput, PromotionsAndNodeOrders)
{
    deck d = read_deck(
        "BEGIN BULK\n"
        "CTRIA6,1,1,1,2,3,4,5,6\n"
        "CTETRA,2,1,1,2,3,4,5,6,+C\n+C,7,8,9,10\n"
        "CPYRAM,3,1,1,2,3,4,5,6,+C\n+C,7,8,9,10,11,12,13\n"
        "CPENTA,4,1,1,2,3,4,5,6,+C\n+C,7,8,9,10,11,12,13,14,+C\n+C,15\n"
        "CHEXA,5,1,1,2,3,4,5,6,+C\n+C,7,8,9,10,11,12,13,14,+C\n+C,15,16,17,18,19,20\n"
        "ENDDATA\n");
    ASSERT_EQ(d.result, 0);
    EXPECT_EQ(values(d.FEs), std::vector<int>({ET_FACE_T6, ET_TETRA10, ET_PYRAMID13, ET_WEDGE15, ET_HEXA20}));
    auto head = [&](std::size_t j, std::size_t n) {
        V c = column(d.connectM, j);
        return V(c.begin(), c.begin() + n);
    };
    EXPECT_EQ(head(0, 6), V({0, 1, 2, 4, 5, 3}));
    EXPECT_EQ(head(1, 10), V({0, 2, 1, 3, 5, 4, 6, 7, 9, 8}));
    EXPECT_EQ(head(2, 13), V({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(head(3, 15), V({0, 1, 2, 3, 4, 5, 11, 9, 10, 6, 7, 8, 14, 12, 13}));
    EXPECT_EQ(head(4, 20), V({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15}));
}

TEST(NastranInput, CardsOfAnotherNodeCountArePassedOver)
{
    // A 5-node tetrahedron, a bar with its orientation vector, and a card too short for a name.
    deck d = read_deck(
        "BEGIN BULK\nCTETRA,1,1,1,2,3,4,5\nCBAR,2,1,1,2,0.,1.,0.\nCQUAD4,3\nCTRIA3,4,1,1,,3\nENDDATA\n");
    ASSERT_EQ(d.result, 0);
    ASSERT_EQ(d.connectM.cols(), 1u);
    EXPECT_EQ(column(d.connectM, 0), V({0, X, 2}));  // the empty field is node 0, so NONE_ID
}

TEST(NastranInput, GroupsAreRunsOfOneType)
{
    deck d = read_deck(
        "BEGIN BULK\nCQUAD4,1,1,1,2,3,4\nCQUAD4,2,1,1,2,3,4\nCTRIA3,3,2,1,2,3\nCQUAD4,4,3,1,2,3,4\nENDDATA\n");
    ASSERT_EQ(d.result, 0);
    EXPECT_EQ(values(d.FEs), std::vector<int>({ET_FACE_Q4, ET_FACE_T3, ET_FACE_Q4}));
    EXPECT_EQ(values(d.indices), V({0, 2, 3, 4}));
    EXPECT_EQ(values(d.per_element), V({1, 1, 2, 3}));
    EXPECT_EQ(column(d.connectM, 2), V({0, 1, 2, X}));
}

TEST(NastranInput, DeckEndingAfterAPassedOverCardGivesItsFieldCount)
{
    // CBUSH: 5 on its first line (its continuation mark is not counted), 3 on the second.
    std::string cards = "BEGIN BULK\nCTRIA3,1,1,1,2,3\nCBUSH,2,1,2,3,+\n+,4,5\n";
    EXPECT_EQ(read_deck(cards).result, 8);
    EXPECT_EQ(read_deck(cards + "$ comment\n").result, 8);
    EXPECT_EQ(read_deck(cards + "CTRIA3,3,1,1,2,3\n").result, 0);
    EXPECT_EQ(read_deck(cards + "GRID,1,0,0.,0.,0.\n").result, 0);
    EXPECT_EQ(read_deck(cards + "ENDDATA\n").result, 0);
    // A missing continuation line: the read of nothing counts -1, and 6 nodes make no hexahedron.
    deck d = read_deck("BEGIN BULK\nCHEXA,1,1,1,2,3,4,5,6,+C\n");
    EXPECT_EQ(d.result, 8);
    EXPECT_TRUE(d.connectM.empty());
}

TEST(NastranInput, MalformedGridsStopTheReadingAndKeepWhatCameBefore)
{
    std::string before = "BEGIN BULK\nGRID,1,0,1.,1.,1.\nCTRIA3,1,1,1,1,1\n";
    char const* bad[] = {
        "GRID,0,0,2.,2.,2.\n",                                                  // ID 0
        "GRID\n",                                                               // too short
        "GRID,x,0,2.,2.,2.\n",                                                  // no ID
        "GRID*                  2    1.0    2.0*C\n*C      3.0\n",              // fields missing
        "GRID*                  2                 1.0             2.0*C\n$ z\n",  // no z
    };
    for (char const* line : bad) {
        deck d = read_deck(before + line + "CTRIA3,2,1,1,1,1\nENDDATA\n");
        EXPECT_EQ(d.result, -1) << line;
        EXPECT_EQ(d.pos.cols(), 1u) << line;
        EXPECT_EQ(d.connectM.cols(), 1u) << line;
        EXPECT_EQ(values(d.indices), V({0, 1})) << line;
        EXPECT_EQ(values(d.FEs), std::vector<int>({ET_FACE_T3})) << line;
    }
    // The second line of a pair is taken as it comes, even when the deck ends before it.
    deck d = read_deck(before + "GRID*                  2                 1.0             2.0*C");
    EXPECT_EQ(d.result, -1);
}

TEST(NastranInput, HugeOrNegativeIDsFailWithoutTakingMemory)
{
    std::string before = "BEGIN BULK\nGRID,1,0,1.,1.,1.\nCTRIA3,1,1,1,1,1\n";
    char const* bad[] = {
        "GRID*         2147483648                    1.000000E+00    2.000000E+00*C\n*C          3.0\n",
        "GRID,100000000,0,2.,2.,2.\n",
        "GRID,-5,0,2.,2.,2.\n",
        "GRID,99999999999,0,2.,2.,2.\n",
    };
    for (char const* line : bad) {
        long blocks = test_alloc::live_blocks();
        {
            deck d = read_deck(before + line + "ENDDATA\n");
            EXPECT_EQ(d.result, -199) << line;
            EXPECT_EQ(d.pos.cols(), 1u) << line;
            EXPECT_EQ(values(d.indices), V({0, 1})) << line;
            EXPECT_LT(d.pos.capacity(), 4096u) << line;
        }
        EXPECT_EQ(test_alloc::live_blocks(), blocks);
    }
    EXPECT_EQ(read_deck("BEGIN BULK\nGRID,1000,0,1.,1.,1.\n", 1000).pos.cols(), 1000u);
    EXPECT_EQ(read_deck("BEGIN BULK\nGRID,1001,0,1.,1.,1.\n", 1000).result, -199);
}

TEST(NastranInput, FailedGrowthGivesMinus199AndKeepsTheIndicesClosed)
{
    std::string text = "BEGIN BULK\n";
    for (int k = 1; k <= 300; ++k) text += "GRID," + std::to_string(k) + ",0,1.,2.,3.\n";
    for (int k = 1; k <= 300; ++k) text += "CTRIA3," + std::to_string(k) + ",1,1,2,3\n";
    text += "ENDDATA\n";
    long blocks = test_alloc::live_blocks();
    int failures = 0;
    for (std::size_t successes = 0;; ++successes) {
        deck d;
        std::istringstream in(text);
        {
            test_alloc::failing_scope guard(successes);
            d.result = __NASTRAN_input(in, d.pos, d.connectM, d.indices, d.FEs, d.per_element);
        }
        if (d.result == 0) {
            EXPECT_EQ(d.connectM.cols(), 300u);
            break;
        }
        ASSERT_EQ(d.result, -199) << successes;
        EXPECT_EQ(d.per_element.size(), d.connectM.cols());
        ++failures;
        if (!d.indices.empty() && d.indices[d.indices.size() - 1] != 0) {
            EXPECT_EQ(d.indices[d.indices.size() - 1], d.connectM.cols());
        }
    }
    EXPECT_GT(failures, 3);
    EXPECT_EQ(test_alloc::live_blocks(), blocks);
}

TEST(NastranInput, OverlongContinuationLineEndsTheReading)
{
    std::string text = "BEGIN BULK\nCHEXA,1,1,1,2,3,4,5,6,+C\n+C,7,8" + std::string(300, ' ') +
                       "\nGRID,1,0,1.,2.,3.\nENDDATA\n";
    deck d = read_deck(text);
    EXPECT_EQ(d.result, 0);
    EXPECT_EQ(d.connectM.cols(), 1u);  // the card's first 255 characters are still read
    EXPECT_TRUE(d.pos.empty());        // nothing after it is
}

TEST(NastranInput, HostileLinesAreSurvived)
{
    std::string commas = "CTRIA3,1,1";
    for (int k = 0; k < 100000; ++k) commas += ",1";
    deck d = read_deck("BEGIN BULK\n" + commas + "\n" + std::string(100000, 'x') + "\nCTRIA3,2,1,1,2,3\r\n" +
                       std::string(1, '\0') + "\n,,,,\n*\n+\nGRID*\nENDDATA\n");
    EXPECT_EQ(d.result, -1);  // the lone "GRID*" line
    ASSERT_EQ(d.connectM.cols(), 1u);
    EXPECT_EQ(column(d.connectM, 0), V({0, 1, 2}));
}

TEST(NastranInput, FileFormsAndTheirViews)
{
    using exchange_test::write_file;
    dense2D<double> pos;
    dense2D<unsigned> connectM = exchange_test::matrix<unsigned>(1, {7});
    dense1D<unsigned, 8> indices = exchange_test::array<unsigned>({1, 2}), PIDs;
    dense1D<int, 8> FEs = exchange_test::array<int>({1});
    EXPECT_EQ(NASTRAN_input(exchange_test::temp_path("missing/none.bdf").c_str(), pos, connectM, indices, FEs, PIDs),
              -1);
    EXPECT_TRUE(connectM.empty() && indices.empty() && FEs.empty());

    // One matrix: quadrilaterals then triangles pad with NONE_ID, the other way round with 0.
    element_type FE = ET_HEXA8;
    std::string quads_first = write_file("qt.bdf", "BEGIN BULK\nCQUAD4,1,1,1,2,3,4\nCTRIA3,2,1,1,2,3\nENDDATA\n");
    EXPECT_EQ(NASTRAN_input(quads_first.c_str(), pos, connectM, FE), 0);
    EXPECT_EQ(FE, ET_NONE);
    EXPECT_EQ(column(connectM, 1), V({0, 1, 2, X}));
    std::string tris_first = write_file("tq.bdf", "BEGIN BULK\nCTRIA3,2,1,1,2,3\nCQUAD4,1,1,1,2,3,4\nENDDATA\n");
    EXPECT_EQ(NASTRAN_input(tris_first.c_str(), pos, connectM, FE), 0);
    EXPECT_EQ(column(connectM, 0), V({0, 1, 2, 0}));
    std::string tris = write_file("t.bdf", "BEGIN BULK\nCTRIA3,2,1,1,2,3\n");
    EXPECT_EQ(NASTRAN_input(tris.c_str(), pos, connectM, FE), 0);
    EXPECT_EQ(FE, ET_FACE_T3);

    // Two matrices: the first two groups, each with the rows of its type; the third is dropped.
    std::string three = write_file("three.bdf",
                                   "BEGIN BULK\nCTRIA3,1,1,1,2,3\nCTRIA3,2,1,2,3,4\nCQUAD4,3,1,1,2,3,4\n"
                                   "CTETRA,4,1,1,2,3,4\nENDDATA\n");
    dense2D<unsigned> M1, M2;
    element_type FE1 = ET_NONE, FE2 = ET_NONE;
    EXPECT_EQ(NASTRAN_input(three.c_str(), pos, M1, M2, FE1, FE2), 0);
    EXPECT_EQ(FE1, ET_FACE_T3);
    EXPECT_EQ(FE2, ET_FACE_Q4);
    ASSERT_EQ(M1.rows(), 3u);
    ASSERT_EQ(M1.cols(), 2u);
    EXPECT_EQ(column(M1, 1), V({1, 2, 3}));
    ASSERT_EQ(M2.rows(), 4u);
    ASSERT_EQ(M2.cols(), 1u);
    EXPECT_EQ(column(M2, 0), V({0, 1, 2, 3}));

    // No element at all: the two matrices and types stay as they were.
    std::string empty = write_file("empty.bdf", "BEGIN BULK\nGRID,1,0,1.,2.,3.\nENDDATA\n");
    EXPECT_EQ(NASTRAN_input(empty.c_str(), pos, M1, M2, FE1, FE2), 0);
    EXPECT_EQ(FE1, ET_FACE_T3);
    EXPECT_EQ(FE2, ET_FACE_Q4);
    EXPECT_EQ(M1.cols(), 2u);
    EXPECT_EQ(M2.cols(), 1u);
    EXPECT_EQ(pos.cols(), 1u);
}

TEST(NastranInput, DecksOfOtherSoftware)
{
    std::string dir = exchange_test::corpus_dir("nastran");
    if (dir.empty()) GTEST_SKIP() << "no corpus on this machine";
    auto read = [&](char const* name) {
        deck d;
        d.result = NASTRAN_input((dir + name).c_str(), d.pos, d.connectM, d.indices, d.FEs, d.per_element);
        return d;
    };
    auto count_of = [](deck const& d, element_type type) {
        std::size_t n = 0;
        for (std::size_t g = 0; g < d.FEs.size(); ++g)
            if (d.FEs[g] == type) n += d.indices[g + 1] - d.indices[g];
        return n;
    };
    char const* names[] = {
        "mys_bar_tube_dollar.bdf", "mys_cquad4_bad_quality.bdf", "mys_missing_continuation.bdf",
        "n95_t01211a.dat", "n95_t01271a.dat", "pyn_0012_20.bdf", "pyn_9zk6b5uuo.bdf",
        "pyn_ISat_Launch_Sm_Rgd.dat", "pyn_api3.bdf", "pyn_axisymmetric_model.bdf", "pyn_bend_A1_105.bdf",
        "pyn_cantilevered_plate_3D.bdf", "pyn_cc508a.bdf", "pyn_cqrcc128a.bdf", "pyn_ctetra10.bdf",
        "pyn_d173.bdf", "pyn_ehbus69.bdf", "pyn_model1_sim1-solution_1.bdf", "pyn_pbarl_bar.bdf",
        "pyn_plate_py.dat", "pyn_rs321h.bdf", "pyn_s200tpgdsobj2e.dat", "pyn_sample_model_hypermesh.inc",
        "pyn_sdr11se_s2dclg.bdf", "pyn_solid_bending.bdf",
    };
    for (char const* name : names) {
        deck d = read(name);
        ASSERT_GE(d.indices.size(), 2u) << name;
        EXPECT_EQ(d.indices[d.indices.size() - 1], d.connectM.cols()) << name;
        EXPECT_EQ(d.per_element.size(), d.connectM.cols()) << name;
        if (!d.FEs.empty()) {
            EXPECT_EQ(d.FEs.size() + 1, d.indices.size()) << name;
        }
    }
    // Bulk fragments with no "BEGIN BULK".
    EXPECT_EQ(read("pyn_pbarl_bar.bdf").result, -1);
    EXPECT_EQ(read("pyn_sample_model_hypermesh.inc").result, -1);
    // 11-digit large-field IDs are beyond what a node matrix is grown for.
    EXPECT_EQ(read("pyn_sdr11se_s2dclg.bdf").result, -199);

    deck bending = read("pyn_solid_bending.bdf");  // 72 grid points, 186 CTETRA
    EXPECT_EQ(bending.result, 0);
    EXPECT_EQ(bending.pos.cols(), 72u);
    EXPECT_EQ(values(bending.FEs), std::vector<int>({ET_TETRA4}));
    ASSERT_EQ(bending.connectM.cols(), 186u);
    EXPECT_EQ(column(bending.connectM, 0), V({7, 66, 12, 32}));  // "CTETRA 1 1 8 13 67 33"

    // GRID* pairs throughout. 436 CTETRA cards of one line; CHEXA cards of 8 and of 20 nodes, 64
    // each; CPYRAM cards of 5 and of 13 nodes, 16 each, and 16 more whose first line ends in a
    // blank field before its mark: the number scan skips the blanks, meets the mark and fails, so
    // those read as 5-node pyramids and their continuation lines as cards of their own.
    deck contact = read("pyn_model1_sim1-solution_1.bdf");
    EXPECT_EQ(contact.result, 0);
    EXPECT_EQ(count_of(contact, ET_TETRA4), 436u);
    EXPECT_EQ(count_of(contact, ET_HEXA8), 64u);
    EXPECT_EQ(count_of(contact, ET_HEXA20), 64u);
    EXPECT_EQ(count_of(contact, ET_PYRAMID5), 32u);
    EXPECT_EQ(count_of(contact, ET_PYRAMID13), 16u);
    EXPECT_LE(contact.connectM.cols(), 1502u);

    deck quadratic = read("pyn_rs321h.bdf");  // CHEXA of 20 nodes over 3 lines, CQUAD8 over 2
    EXPECT_EQ(count_of(quadratic, ET_HEXA20), 24u);
    EXPECT_EQ(count_of(quadratic, ET_FACE_Q8), 24u);
}

TEST(NastranInput, ArraysGrowByDoublingNotPerCard)
{
    std::string text = "BEGIN BULK\n";
    for (int k = 1; k <= 50000; ++k) text += "GRID," + std::to_string(k) + ",0,1.,2.,3.\n";
    for (int k = 1; k <= 50000; ++k) text += "CTETRA," + std::to_string(k) + ",1,1,2,3,4\n";
    test_alloc::reset();
    deck d = read_deck(text + "ENDDATA\n");
    EXPECT_EQ(d.connectM.cols(), 50000u);
    EXPECT_LT(test_alloc::requests(), 120u);  // about log2(50000) per growing array
}
