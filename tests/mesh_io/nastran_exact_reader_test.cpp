// NASTRAN decks read by read_mesh: every field form, exponent form and continuation style, true
// node counts, coordinate systems, INCLUDE; the decks of other software counted card by card.
#include "../exchange/exchange_files.h"
#include "mesh_io/number_text.h"
#include "tessarium/mesh.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <dirent.h>
#include <fstream>
#include <map>
#include <sys/stat.h>

using namespace qv7;
using namespace qv7::tessarium;

namespace {

// A fixed-field line: the name in 8 columns, then each field left-justified in `width` columns.
std::string row(std::vector<std::string> const& fields, std::size_t width = 8)
{
    std::string line;
    for (std::size_t k = 0; k < fields.size(); ++k) {
        std::string f = fields[k];
        f.resize(k == 0 ? 8 : width, ' ');
        line += f;
    }
    return line + "\n";
}

std::map<unsigned, std::array<double, 3>> nodes_by_ID(mesh const& m)
{
    std::map<unsigned, std::array<double, 3>> nodes;
    for (std::size_t j = 0; j < m.nbr_nodes(); ++j)
        nodes[m.node_IDs.empty() ? unsigned(j + 1) : m.node_IDs[j]] = {m.pos(0, j), m.pos(1, j), m.pos(2, j)};
    return nodes;
}

std::size_t passed(io_report const& r, std::string const& what)
{
    for (io_count const& c : r.passed_over)
        if (c.what == what) return c.count;
    return 0;
}

}  // namespace

TEST(NastranExact, RealFieldsInEveryForm)
{
    struct real {
        char const* text;
        bool ok;
        double value;
    };
    for (real c : std::vector<real>{{"1.5-3", true, 1.5e-3},
                                    {"-2.+4", true, -2e4},
                                    {"1.D-3", true, 1e-3},
                                    {"2.5D+01", true, 25.0},
                                    {" 73.8 E+3", true, 73.8e3},
                                    {".5", true, 0.5},
                                    {"+3.", true, 3.0},
                                    {"-1.42569-13", true, -1.42569e-13},
                                    {"7", true, 7.0},
                                    {"1.5e-3 ", true, 1.5e-3},
                                    {"", false, 0},
                                    {"1.5.3", false, 0},
                                    {"1-", false, 0},
                                    {"abc", false, 0},
                                    {"--1", false, 0}}) {
        double v = 0.0;
        std::string t = c.text;
        EXPECT_EQ(__parse_real(t.data(), t.data() + t.size(), v), c.ok) << t;
        if (c.ok) {
            EXPECT_EQ(v, c.value) << t;
        }
    }
    std::int64_t i = 0;
    std::string big = " 80000000001 ", bad = "12.";
    EXPECT_TRUE(__parse_integer(big.data(), big.data() + big.size(), i) && i == 80000000001LL);
    EXPECT_FALSE(__parse_integer(bad.data(), bad.data() + bad.size(), i));
}

TEST(NastranExact, EveryFieldFormContinuationAndSystem)
{
    std::string folder = exchange_test::temp_path("nastran_include");
    mkdir(folder.c_str(), 0700);
    mkdir((folder + "/sub").c_str(), 0700);
    std::ofstream(folder + "/sub/more.bdf") << "GRID,9,,0.,0.,9.\nCTRIA3,17,7,1,2,9\n";
    std::string deck =
        // no BEGIN BULK; lower case, a left-justified ID, short exponents
        row({"grid", "1", "", "1.5-3", "-2.+4", "1.D-3"}) +
        row({"GRID", "       2", "       0", "      1.", "      2.", "      3."}) +
        row({"GRID*", "3", "0", "-1.42569-13", "2."}, 16) + row({"*", "3."}, 16) +
        row({"GRID*", "4", "", "1.0", "2.0"}, 16) + row({"*", "4.0"}, 16) +  // blank continuation field
        "GRID,5,,0.,0.,1.\n" + "GRID*,6,,1.,1.,+A\n*A,1.\n" + row({"GRID", "99999999", "1", "1.", "2.", "3."}) +
        // system 1: origin (10,0,0), x1 along y, x3 along z
        row({"CORD2R", "1", "", "10.", "0.", "0.", "10.", "0.", "1.", "+C1"}) + row({"+C1", "10.", "1.", "0."}) +
        "CORD2C,4,1,0.,0.,0.,0.,0.,1.\n,1.,0.,0.\n" + "$ a comment between card and continuation\n" +
        "cord2s,3,,0.,0.,0.,0.,0.,1.,+\n+,1.,0.,0.\n" + "GRID,7,4,1.,90.,5.\n" + "GRID,8,3,2.,90.,90.\n" +
        // systems 5 and 8 by GRID points 5, 6 and 2: x3 from 5 to 6, x1 towards 2
        "CORD1R,5,5,6,2,8,5,6,2\nGRID,20,5,0.,0.,1.4142135623730951\nGRID,21,5,2.1213203435596424,0.,0.\n" +
        "GRID,22,8,0.,0.,1.4142135623730951\n" +
        row({"CTRIA3", "10", "7", "1", "2", "3", "45.", ".1"}) +  // THETA and ZOFFS
        row({"CBAR", "11", "", "1", "2", "0.", "1.", "0."}) +     // blank PID, orientation
        "CTETRA,12,4,1,2,3,4\n" + row({"CHEXA*", "14", "4", "1", "2"}, 16) + row({"*", "3", "4", "5", "6"}, 16) +
        row({"*", "7", "8"}, 16) + row({"CQUAD8", "15", "4", "1", "2", "3", "4"}) +  // no mid-side nodes
        "CPENTA\t16\t4\t1\t2\t3\t4\t5\t6\n" + "PSHELL,7,1,.1\nMAT1,1,2.1+5,,.3\nINCLUDE 'sub/more.bdf'\n" +
        "CTRIA3,18,7,1,2,3\nENDDATA\nGRID,10,,0.,0.,0.\n";
    std::ofstream(folder + "/deck.bdf") << deck;
    mesh m;
    io_report r = read_mesh(folder + "/deck.bdf", m);
    ASSERT_TRUE(r) << r.message;
    std::map<unsigned, std::array<double, 3>> expected = {{1, {1.5e-3, -2e4, 1e-3}},
                                                          {2, {1, 2, 3}},
                                                          {3, {-1.42569e-13, 2, 3}},
                                                          {4, {1, 2, 4}},
                                                          {5, {0, 0, 1}},
                                                          {6, {1, 1, 1}},
                                                          {99999999, {8, 1, 3}},
                                                          {7, {9, 0, 5}},
                                                          {8, {0, 2, 0}},
                                                          {9, {0, 0, 9}},
                                                          {20, {1, 1, 1}},
                                                          {21, {-0.5, 0.5, 3}},
                                                          {22, {1, 1, 1}}};
    std::map<unsigned, std::array<double, 3>> got = nodes_by_ID(m);
    ASSERT_EQ(got.size(), expected.size());
    for (auto const& [ID, x] : expected)
        for (int k = 0; k < 3; ++k) EXPECT_NEAR(got[ID][k], x[k], 1e-12 * (1 + std::fabs(x[k]))) << ID << " " << k;
    EXPECT_EQ(got[1][1], -2e4);
    std::array<std::size_t, nbr_element_types> counts = count_by_type(m);
    EXPECT_EQ(counts[ET_FACE_T3], 3u);
    EXPECT_EQ(counts[ET_EDGE2], 1u);
    EXPECT_EQ(counts[ET_TETRA4], 1u);
    EXPECT_EQ(counts[ET_HEXA8], 1u);
    EXPECT_EQ(counts[ET_FACE_Q4], 1u);
    EXPECT_EQ(counts[ET_WEDGE6], 1u);
    EXPECT_EQ(m.nbr_elements(), 8u);
    EXPECT_EQ(passed(r, "PSHELL cards"), 1u);
    EXPECT_EQ(passed(r, "MAT1 cards"), 1u);
    for (element_block const& b : m.blocks) {
        if (b.type == ET_FACE_T3 || b.type == ET_EDGE2) {
            EXPECT_EQ(b.references[0], b.type == ET_FACE_T3 ? 7u : 0u);
        }
        if (b.type != ET_TETRA4) continue;
        // The library's tetrahedra turn the other way round from the file's order 1 2 3 4.
        auto triple = [](std::array<double, 3> const* x) {
            double a[3], c[3], d[3];
            for (int k = 0; k < 3; ++k) a[k] = x[1][k] - x[0][k], c[k] = x[2][k] - x[0][k], d[k] = x[3][k] - x[0][k];
            return a[0] * (c[1] * d[2] - c[2] * d[1]) - a[1] * (c[0] * d[2] - c[2] * d[0]) +
                   a[2] * (c[0] * d[1] - c[1] * d[0]);
        };
        std::array<double, 3> local[4], file[4] = {expected[1], expected[2], expected[3], expected[4]};
        for (int i = 0; i < 4; ++i)
            local[i] = {m.pos(0, b.connect(i, 0)), m.pos(1, b.connect(i, 0)), m.pos(2, b.connect(i, 0))};
        EXPECT_LT(triple(local) * triple(file), 0.0);
    }
}

// Counts by family from the card names alone, against what was read.
TEST(NastranExact, DecksOfOtherSoftwareCountedCardByCard)
{
    std::string folder = exchange_test::corpus_dir("nastran");
    if (folder.empty()) GTEST_SKIP() << "no decks of other software on this machine";
    std::map<std::string, int> family = {{"CBAR", 0},   {"CBEAM", 0},  {"CBEND", 0},  {"CROD", 0},   {"CONROD", 0},
                                         {"CTUBE", 0},  {"CTRIA3", 1}, {"CTRIAR", 1}, {"CTRIA6", 1}, {"CQUAD4", 2},
                                         {"CQUADR", 2}, {"CQUAD8", 2}, {"CQUAD", 2},  {"CSHEAR", 2}, {"CTETRA", 3},
                                         {"CPYRAM", 4}, {"CPYRA", 4},  {"CPENTA", 5}, {"CHEXA", 6}};
    auto family_of = [](element_type t) {
        switch (t) {
        case ET_EDGE2:
            return 0;
        case ET_FACE_T3:
        case ET_FACE_T6:
            return 1;
        case ET_FACE_Q4:
        case ET_FACE_Q8:
        case ET_FACE_Q9:
            return 2;
        case ET_TETRA4:
        case ET_TETRA10:
            return 3;
        case ET_PYRAMID5:
        case ET_PYRAMID13:
            return 4;
        case ET_WEDGE6:
        case ET_WEDGE15:
            return 5;
        default:
            return 6;
        }
    };
    DIR* dir = opendir(folder.c_str());
    ASSERT_NE(dir, nullptr);
    std::size_t decks = 0;
    while (dirent* entry = readdir(dir)) {
        std::string name = entry->d_name, path = folder + name;
        if (name.size() < 4 || (name.substr(name.size() - 4) != ".bdf" && name.substr(name.size() - 4) != ".dat"))
            continue;
        std::ifstream in(path);
        std::vector<std::string> lines;
        bool bulk = false;
        for (std::string line; std::getline(in, line);) {
            lines.push_back(line);
            for (char& c : line) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            bulk = bulk || (line.rfind("BEGIN", 0) == 0 && line.find("BULK") != std::string::npos);
        }
        std::size_t grids = 0, expected[7] = {}, got[7] = {};
        bool on = !bulk;
        for (std::string const& line : lines) {
            std::string card;
            for (char c : line) {
                if (c == ' ' || c == ',' || c == '*' || c == '\t' || c == '\r') break;
                card += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            }
            if (card == "BEGIN" && line.find("ULK") != std::string::npos) on = true;
            if (!on || card.empty() || card[0] == '$') continue;
            if (card == "ENDDATA") break;
            grids += card == "GRID";
            if (family.count(card)) ++expected[family[card]];
        }
        mesh m;
        io_report r = read_mesh(path, m);
        ASSERT_TRUE(r) << r.message;
        for (element_block const& b : m.blocks) got[family_of(b.type)] += b.connect.cols();
        EXPECT_EQ(m.nbr_nodes(), grids) << name;
        for (int f = 0; f < 7; ++f) EXPECT_EQ(got[f], expected[f]) << name << " family " << f;
        ++decks;
    }
    closedir(dir);
    EXPECT_EQ(decks, 24u);
}

// Nodes read off the decks by hand; the positions in other systems worked out separately.
TEST(NastranExact, DecksOfOtherSoftwareCheckedByHand)
{
    std::string folder = exchange_test::corpus_dir("nastran");
    if (folder.empty()) GTEST_SKIP() << "no decks of other software on this machine";
    struct node {
        char const* deck;
        unsigned ID;
        double x[3];
    };
    std::vector<node> table = {
        // left-justified IDs
        {"pyn_0012_20.bdf", 2, {.038, 10., .0316}},
        // cylindrical system 1: r 50, theta 180 and 202.5 degrees
        {"n95_t01271a.dat", 1, {-50., 0., 0.}},
        {"n95_t01271a.dat", 50, {-46.19397662556434, -19.134171618254484, 30.}},
        // GRID* with an implicit exponent, and a small-field GRID whose fields touch, both in a
        // rectangular system given by short-exponent points
        {"pyn_bend_A1_105.bdf", 11031, {5.684341886080802e-14, 1800.0001515008144, 2.4006550242252084e-20}},
        {"pyn_bend_A1_105.bdf", 11087, {5.684341886080802e-14, 1800.0001515008144, -16.66670000000014}},
        // 16-character fields that touch: "01.2500000000E+022.5000000000E+01"
        {"pyn_model1_sim1-solution_1.bdf", 1, {125., 25., 75.}},
    };
    std::map<std::string, mesh> meshes;
    for (node const& n : table) {
        if (!meshes.count(n.deck)) {
            io_report r = read_mesh(folder + n.deck, meshes[n.deck]);
            ASSERT_TRUE(r) << r.message;
        }
        std::map<unsigned, std::array<double, 3>> got = nodes_by_ID(meshes[n.deck]);
        ASSERT_TRUE(got.count(n.ID)) << n.deck << " " << n.ID;
        for (int k = 0; k < 3; ++k) EXPECT_NEAR(got[n.ID][k], n.x[k], 1e-9) << n.deck << " " << n.ID << " " << k;
    }
    mesh big;
    io_report r = read_mesh(folder + "pyn_sdr11se_s2dclg.bdf", big);
    ASSERT_TRUE(r) << r.message;
    EXPECT_EQ(big.nbr_nodes(), 21u);  // IDs of 11 digits, kept in file order
    EXPECT_TRUE(big.node_IDs.empty());
    EXPECT_EQ(big.pos(1, 1), .1);
}
