#include "exchange/nastran_input.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

constexpr unsigned X = NONE_ID;
using deck = grouped_read;

deck read_deck(std::string const& text, std::size_t max_ID = __max_node_ID)
{
    return read_text(__NASTRAN_input, text, max_ID);
}

}  // namespace

TEST(NastranInput, BeginBulkStartsTheReading)
{
    deck none = read_deck("GRID,1,0,1.,2.,3.\nCTRIA3,1,1,1,1,1\nENDDATA\n");
    EXPECT_EQ(none.result, -1);
    EXPECT_TRUE(none.pos.empty());
    deck empty = read_deck("CEND\nBEGIN BULK\nENDDATA\nGRID,1,0,1.,2.,3.\n");
    EXPECT_EQ(empty.result, 0);
    EXPECT_TRUE(empty.pos.empty() && empty.connectM.empty() && empty.FEs.empty());
    EXPECT_EQ(values(none.indices), V({0, 0}));
    EXPECT_EQ(values(empty.indices), V({0, 0}));
}

TEST(NastranInput, GridPointsInSmallLargeAndFreeField)
{
    // Small-field coordinates go through atof: a short exponent such as 1.5-3 reads as 1.5. A
    // blank small-field ID is no blank: the scan takes the next number (the CP field) and shifts
    // the rest. IDs 1 to 5 and 7: column 5 stays 0; a repeated ID overwrites.
    deck d = read_deck(
        "BEGIN BULK\n$ comment\n"
        "GRID           1       0     1.0     2.0     3.0\n"
        "GRID           2       0   1.5-3  2.5+10 -1.25-1\n"
        "GRID*                  3                    4.000000E+00   -5.500000E-01*C\n"
        "*C          6.250000E+02\n"
        "GRID,4,0,7.,8.,9.\nGRID,5,,-1.,-2.,-3.\nGRID ,1,0,1e2,2e-1,3.5,0\n"
        "GRID                   7     1.0     2.0     3.0     4.0\nENDDATA\n");
    ASSERT_EQ(d.result, 0);
    ASSERT_EQ(d.pos.cols(), 7u);
    EXPECT_EQ(column(d.pos, 0), P({100.0, 0.2, 3.5}));
    EXPECT_EQ(column(d.pos, 1), P({1.5, 2.5, -1.25}));
    EXPECT_EQ(column(d.pos, 2), P({4.0, -0.55, 625.0}));
    EXPECT_EQ(column(d.pos, 3), P({7.0, 8.0, 9.0}));
    EXPECT_EQ(column(d.pos, 4), P({-1.0, -2.0, -3.0}));
    EXPECT_EQ(column(d.pos, 5), P({0.0, 0.0, 0.0}));
    EXPECT_EQ(column(d.pos, 6), P({2.0, 3.0, 4.0}));
}

TEST(NastranInput, ElementCardsInEachFieldFormatWithContinuations)
{
    // Small field, free field, small field with "+" continuation, large field with "*", a large
    // field card whose name holds the star (passed over), free field with "+C".
    deck d = read_deck(
        "BEGIN BULK\n"
        "CTETRA        10       3       1       2       3       4\n"
        "CQUAD4,11,4,1,2,3,4\n"
        "CHEXA         12       5       1       2       3       4       5       6+H1\n"
        "+H1            7       8\n"
        "CQUAD4                13               6               1               2*Q\n"
        "*Q                     3               4\n"
        "CTRIA3*               14               1               1               2*T\n"
        "*T                     3\n"
        "CHEXA,15,7,1,2,3,4,5,6,+C\n+C,7,8\nENDDATA\n");
    ASSERT_EQ(d.result, 0);
    ASSERT_EQ(d.connectM.rows(), 8u);
    ASSERT_EQ(d.connectM.cols(), 5u);
    // The tetrahedron is turned over. Earlier columns get 0 in the rows a taller element adds, a
    // later shorter element NONE_ID.
    EXPECT_EQ(column(d.connectM, 0), V({0, 2, 1, 3, 0, 0, 0, 0}));
    EXPECT_EQ(column(d.connectM, 1), V({0, 1, 2, 3, 0, 0, 0, 0}));
    EXPECT_EQ(column(d.connectM, 2), V({0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(column(d.connectM, 3), V({0, 1, 2, 3, X, X, X, X}));
    EXPECT_EQ(column(d.connectM, 4), column(d.connectM, 2));
    EXPECT_EQ(values(d.FEs), T({ET_TETRA4, ET_FACE_Q4, ET_HEXA8, ET_FACE_Q4, ET_HEXA8}));
    EXPECT_EQ(values(d.indices), V({0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(values(d.per_element), V({3, 4, 5, 6, 7}));
}

TEST(NastranInput, CardNamesPromotionsAndNodeOrders)
{
    std::pair<char const*, element_type> const names[] = {
        {"BAR", ET_EDGE2},      {"BEAM", ET_EDGE2},       {"ROD", ET_EDGE2},      {"CBAR", ET_EDGE2},
        {"CBEAM", ET_EDGE2},    {"CROD", ET_EDGE2},       {"TRIA3", ET_FACE_T3},  {"CTRIA3", ET_FACE_T3},
        {"TRIA6", ET_FACE_T6},  {"CTRIA6", ET_FACE_T6},   {"QUAD4", ET_FACE_Q4},  {"CQUAD4", ET_FACE_Q4},
        {"QUAD8", ET_FACE_Q8},  {"CQUAD8", ET_FACE_Q8},   {"TETRA", ET_TETRA4},   {"CTETRA", ET_TETRA4},
        {"PYRA", ET_PYRAMID5},  {"PYRAM", ET_PYRAMID5},   {"CPYRA", ET_PYRAMID5}, {"CPYRAM", ET_PYRAMID5},
        {"PENTA", ET_WEDGE6},   {"CPENTA", ET_WEDGE6},    {"HEXA", ET_HEXA8},     {"CHEXA", ET_HEXA8},
        {"CTETRA", ET_TETRA10}, {"CPYRAM", ET_PYRAMID13}, {"CPENTA", ET_WEDGE15}, {"CHEXA", ET_HEXA20},
    };
    std::string text = "BEGIN BULK\n";
    for (auto const& [name, type] : names) {  // each node field k holds k, six to a line
        text += std::string(name) + ",1,1";
        for (unsigned k = 1; k <= nbr_nodes(type); ++k) text += (k % 8 == 7 ? ",+\n+," : ",") + std::to_string(k);
        text += "\n";
    }
    // Dropped: a 5-node tetrahedron, a bar with its orientation, other case, a trailing blank.
    deck d = read_deck(text + "CTETRA,1,1,1,2,3,4,5\nCBAR,2,1,1,2,0.,1.,0.\nctria3,1,1,1,2,3\nCTRIA3 ,1,1,1,2,3\n");
    std::vector<int> types;  // the type of each column, from the groups
    for (std::size_t g = 0; g < d.FEs.size(); ++g) types.resize(d.indices[g + 1], d.FEs[g]);
    ASSERT_EQ(types.size(), 28u);
    for (std::size_t j = 0; j < 28; ++j) EXPECT_EQ(types[j], names[j].second) << names[j].first;
    auto head = [&](std::size_t j, std::size_t n) { return V(d.connectM.col(j), d.connectM.col(j) + n); };
    EXPECT_EQ(head(9, 6), V({0, 1, 2, 4, 5, 3}));
    EXPECT_EQ(head(24, 10), V({0, 2, 1, 3, 5, 4, 6, 7, 9, 8}));
    EXPECT_EQ(head(25, 13), V({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(head(26, 15), V({0, 1, 2, 3, 4, 5, 11, 9, 10, 6, 7, 8, 14, 12, 13}));
    EXPECT_EQ(head(27, 20), V({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15}));
    EXPECT_EQ(d.result, 6);  // the last card passed over, with 6 tokens and no ENDDATA behind it
}

TEST(NastranInput, GroupsPaddingAndEmptyFields)
{
    deck d = read_deck("BEGIN BULK\nCQUAD4,1,1,1,2,3,4\nCQUAD4,2,1,1,2,3,4\nCTRIA3,3,2,1,,3\nCQUAD4,4,3,1,2,3,4\n");
    ASSERT_EQ(d.result, 0);
    EXPECT_EQ(values(d.FEs), T({ET_FACE_Q4, ET_FACE_T3, ET_FACE_Q4}));
    EXPECT_EQ(values(d.indices), V({0, 2, 3, 4}));
    EXPECT_EQ(values(d.per_element), V({1, 1, 2, 3}));
    EXPECT_EQ(column(d.connectM, 2), V({0, X, 2, X}));  // an empty field is node 0, so NONE_ID
}

TEST(NastranInput, ResultAfterAPassedOverLastCard)
{
    // CBUSH counts 5 on its first line (not its continuation mark) and 3 on the second.
    std::string cards = "BEGIN BULK\nCTRIA3,1,1,1,2,3\nCBUSH,2,1,2,3,+\n+,4,5\n";
    EXPECT_EQ(read_deck(cards).result, 8);
    EXPECT_EQ(read_deck(cards + "$ comment\n").result, 8);
    EXPECT_EQ(read_deck(cards + "CTRIA3,3,1,1,2,3\n").result, 0);
    EXPECT_EQ(read_deck(cards + "GRID,1,0,0.,0.,0.\n").result, 0);
    // A missing continuation line reads as nothing, counted -1; 6 nodes make no hexahedron.
    EXPECT_EQ(read_deck("BEGIN BULK\nCHEXA,1,1,1,2,3,4,5,6,+C\n").result, 8);
}

TEST(NastranInput, BadGridsStopTheReadingAndKeepWhatCameBefore)
{
    std::string before = "BEGIN BULK\nGRID,1,0,1.,1.,1.\nCTRIA3,1,1,1,1,1\n";
    std::pair<char const*, int> const bad[] = {
        {"GRID,0,0,2.,2.,2.\n", -1},
        {"GRID\n", -1},
        {"GRID,x,0,2.,2.,2.\n", -1},
        {"GRID*                  2    1.0    2.0*C\n*C      3.0\n", -1},                // fields missing
        {"GRID*                  2                 1.0             2.0*C\n$ z\n", -1},  // line 2 as it comes
        {"GRID*                  2                 1.0             2.0*C", -1},         // empty line 2
        {"GRID*         2147483648                    1.000000E+00    2.000000E+00*C\n*C          3.0\n", -199},
        {"GRID,100000000,0,2.,2.,2.\n", -199},  // nine digits
        {"GRID,99999999999,0,2.,2.,2.\n", -199},
        {"GRID,-5,0,2.,2.,2.\n", -199},
    };
    long blocks = test_alloc::live_blocks();
    for (auto const& [line, code] : bad) {
        deck d = read_deck(before + line + "\nCTRIA3,2,1,1,1,1\nENDDATA\n");
        EXPECT_EQ(d.result, code) << line;
        EXPECT_EQ(d.pos.cols(), 1u) << line;
        EXPECT_LT(d.pos.capacity(), 4096u) << line;  // nothing asked for the huge IDs
        EXPECT_EQ(values(d.indices), V({0, 1})) << line;
        EXPECT_EQ(values(d.FEs), T({ET_FACE_T3})) << line;
    }
    EXPECT_EQ(test_alloc::live_blocks(), blocks);
    EXPECT_EQ(read_deck("BEGIN BULK\nGRID,1000,0,1.,1.,1.\n", 1000).pos.cols(), 1000u);
    EXPECT_EQ(read_deck("BEGIN BULK\nGRID,1001,0,1.,1.,1.\n", 1000).result, -199);
}

TEST(NastranInput, FailedGrowthGivesMinus199)
{
    std::string text = "BEGIN BULK\n";
    for (int k = 1; k <= 300; ++k) text += "GRID," + std::to_string(k) + ",0,1.,2.,3.\nCTRIA3,1,1,1,2,3\n";
    long blocks = test_alloc::live_blocks();
    EXPECT_GT(failed_runs_before_success([&] {
                  deck d = read_deck(text);
                  EXPECT_EQ(d.per_element.size(), d.connectM.cols());
                  return d.result;
              }),
              3u);
    EXPECT_EQ(test_alloc::live_blocks(), blocks);
    // Growth by doubling, not per card.
    test_alloc::reset();
    EXPECT_EQ(read_deck(text + text.substr(11) + text.substr(11)).connectM.cols(), 900u);
    EXPECT_LT(test_alloc::requests(), 60u);
}

TEST(NastranInput, HostileLinesAreSurvived)
{
    // A continuation line longer than 255 characters fails the stream: its first 255 characters
    // still count, nothing after it is read.
    std::string commas = "CTRIA3,1,1";
    for (int k = 0; k < 100000; ++k) commas += ",1";
    deck d = read_deck("BEGIN BULK\n" + commas + "\n" + std::string(100000, 'x') + "\nCTRIA3,2,1,1,2,3\r\n" +
                       std::string(1, '\0') + "\n,,,,\n*\n+\nCHEXA,1,1,1,2,3,4,5,6,+C\n+C,7,8" + std::string(300, ' ') +
                       "\nGRID,1,0,1.,2.,3.\nENDDATA\n");
    EXPECT_EQ(d.result, 0);
    ASSERT_EQ(d.connectM.cols(), 2u);
    EXPECT_EQ(column(d.connectM, 0), V({0, 1, 2, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(d.pos.empty());
}

TEST(NastranInput, FileFormsAndTheirViews)
{
    dense2D<double> pos;
    dense2D<unsigned> M = matrix<unsigned>(1, {7}), M1, M2;
    dense1D<unsigned, 8> indices = list<unsigned>({1, 2}), PIDs;
    dense1D<int, 8> FEs;
    EXPECT_EQ(NASTRAN_input(temp_path("no/such.bdf").c_str(), pos, M, indices, FEs, PIDs), -1);
    EXPECT_TRUE(M.empty() && indices.empty());

    // One matrix: FE only for one group.
    element_type FE = ET_HEXA8, FE1 = ET_NONE, FE2 = ET_NONE;
    std::string mixed = write_file("mixed.bdf",
                                   "BEGIN BULK\nCTRIA3,1,1,1,2,3\nCTRIA3,2,1,2,3,4\n"
                                   "CQUAD4,3,1,1,2,3,4\nCTETRA,4,1,1,2,3,4\n");
    EXPECT_EQ(NASTRAN_input(mixed.c_str(), pos, M, FE), 0);
    EXPECT_EQ(FE, ET_NONE);
    EXPECT_EQ(NASTRAN_input(write_file("t.bdf", "BEGIN BULK\nCTRIA3,2,1,1,2,3\n").c_str(), pos, M, FE), 0);
    EXPECT_EQ(FE, ET_FACE_T3);

    // Two matrices: the first two groups, each with the rows of its type; the third is dropped.
    EXPECT_EQ(NASTRAN_input(mixed.c_str(), pos, M1, M2, FE1, FE2), 0);
    EXPECT_EQ(FE1, ET_FACE_T3);
    EXPECT_EQ(FE2, ET_FACE_Q4);
    ASSERT_EQ(M1.rows() * 10 + M1.cols(), 32u);
    EXPECT_EQ(column(M1, 1), V({1, 2, 3}));
    ASSERT_EQ(M2.rows() * 10 + M2.cols(), 41u);
    // No element at all: matrices and types stay as they were.
    std::string empty = write_file("empty.bdf", "BEGIN BULK\nGRID,1,0,1.,2.,3.\nENDDATA\n");
    EXPECT_EQ(NASTRAN_input(empty.c_str(), pos, M1, M2, FE1, FE2), 0);
    EXPECT_EQ(FE1 * 100 + FE2, ET_FACE_T3 * 100 + ET_FACE_Q4);
    EXPECT_EQ(M1.cols() + M2.cols(), 3u);
}

TEST(NastranInput, DecksOfOtherSoftware)
{
    std::string dir = corpus_dir("nastran");
    if (dir.empty()) GTEST_SKIP() << "no corpus on this machine";
    auto read = [&](std::string const& name) { return read_path(NASTRAN_input, dir + name); };
    auto count_of = [](deck const& d, element_type type) {
        std::size_t n = 0;
        for (std::size_t g = 0; g < d.FEs.size(); ++g) n += d.FEs[g] == type ? d.indices[g + 1] - d.indices[g] : 0;
        return n;
    };
    for (auto const& entry : std::filesystem::directory_iterator(dir)) {
        deck d = read(entry.path().filename().string());
        ASSERT_GE(d.indices.size(), 2u) << entry.path();
        EXPECT_EQ(d.indices[d.indices.size() - 1], d.connectM.cols()) << entry.path();
        EXPECT_EQ(d.per_element.size(), d.connectM.cols()) << entry.path();
    }
    EXPECT_EQ(read("pyn_pbarl_bar.bdf").result, -1);  // fragments with no "BEGIN BULK"
    EXPECT_EQ(read("pyn_sample_model_hypermesh.inc").result, -1);
    EXPECT_EQ(read("pyn_sdr11se_s2dclg.bdf").result, -199);  // 11-digit large-field IDs

    deck bending = read("pyn_solid_bending.bdf");  // 72 grid points, 186 one-line CTETRA
    EXPECT_EQ(bending.result, 0);
    EXPECT_EQ(bending.pos.cols(), 72u);
    EXPECT_EQ(count_of(bending, ET_TETRA4), 186u);
    EXPECT_EQ(column(bending.connectM, 0), V({7, 66, 12, 32}));  // "CTETRA 1 1 8 13 67 33"

    // GRID* pairs; 436 one-line CTETRA; CHEXA of 8 and 20 nodes, 64 each; CPYRAM of 5 and 13
    // nodes, 16 each, and 16 whose first line ends in a blank field before its mark: the number
    // scan skips the blanks, fails on the mark, and these read as 5-node pyramids.
    deck contact = read("pyn_model1_sim1-solution_1.bdf");
    EXPECT_EQ(contact.result, 0);
    EXPECT_EQ(count_of(contact, ET_TETRA4), 436u);
    EXPECT_EQ(count_of(contact, ET_HEXA8) * 1000 + count_of(contact, ET_HEXA20), 64064u);
    EXPECT_EQ(count_of(contact, ET_PYRAMID5) * 1000 + count_of(contact, ET_PYRAMID13), 32016u);

    deck quadratic = read("pyn_rs321h.bdf");  // CHEXA of 20 nodes over 3 lines, CQUAD8 over 2
    EXPECT_EQ(count_of(quadratic, ET_HEXA20) * 1000 + count_of(quadratic, ET_FACE_Q8), 24024u);
}
