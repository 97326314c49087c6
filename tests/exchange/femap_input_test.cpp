#include "exchange/femap_input.h"
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
using W = std::vector<std::string>;

namespace {

constexpr unsigned X = NONE_ID;

using neutral = exchange_test::grouped_read;

neutral read_neutral(std::string const& text)
{
    neutral f;
    std::istringstream in(text);
    f.result = __FEMAP_input(in, f.pos, f.connectM, f.indices, f.FEs, f.per_element);
    return f;
}

std::string node_line(int ID, char const* xyz) { return std::to_string(ID) + ",0,0,1,0,0,0,0,0,0,0," + xyz + ",0,\n"; }

// An element record: line 1 with the value and the topology, the two slot lines, four more.
std::string record(int value, int topology, std::string const& slots1, std::string const& slots2 = "0,0,0,0,0,0,0,0,0,0,")
{
    return "9," + std::to_string(value) + ",1,25," + std::to_string(topology) + ",1,0,0,0,0,0,0,0,\n" + slots1 +
           "\n" + slots2 + "\n0.,0.,0.,0,0,0,0,0,0,\n0.,0.,0.,\n0.,0.,0.,\n0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n";
}

std::vector<double> node(neutral const& f, std::size_t j) { return column(f.pos, j); }

}  // namespace

TEST(FemapInput, LineHelpers)
{
    W words = {"old", "old", "old", "old", "old", "old"};
    __get_words(" 1, a b ,,x,", words);
    EXPECT_EQ(words, W({" 1", " a b ", "x"}));
    __get_words("", words);
    EXPECT_TRUE(words.empty());
    std::string text = " 4\t0 3 \r";
    EXPECT_EQ(__remove_spaces(text), "4\t03\r");
    std::istringstream in("a\nb\nc\nd");
    __skip_lines(in, 2);
    std::string line;
    std::getline(in, line);
    EXPECT_EQ(line, "c");
    __skip_lines(in, 5);
    EXPECT_FALSE(std::getline(in, line));
}

TEST(FemapInput, FileWithoutBlocksGivesEmptyResults)
{
    neutral f = read_neutral("   -1\n   100\n<NULL>\n4030\n   -1\n");
    EXPECT_EQ(f.result, 0);
    EXPECT_TRUE(f.pos.empty() && f.connectM.empty() && f.FEs.empty());
    EXPECT_EQ(values(f.indices), V({0, 0}));
}

TEST(FemapInput, NodeRecordsFollowTheirIDs)
{
    // Headers are found with any blanks around or inside; a tab is no blank. An empty field
    // shifts the coordinates one place to the front.
    neutral f = read_neutral("\t403\n 4 0 3  \n" + node_line(1, "1.5,-2,3e2") + node_line(3, "7.,8.,9.") +
                             "3,0,0,1,0,0,0,0,0,0,,5.,6.,7.,0,\n" + "4,0,0\n");
    EXPECT_EQ(f.result, 0);
    ASSERT_EQ(f.pos.cols(), 4u);
    EXPECT_EQ(node(f, 0), std::vector<double>({1.5, -2.0, 300.0}));
    EXPECT_EQ(node(f, 1), std::vector<double>({0.0, 0.0, 0.0}));
    EXPECT_EQ(node(f, 2), std::vector<double>({6.0, 7.0, 0.0}));
    EXPECT_EQ(node(f, 3), std::vector<double>({0.0, 0.0, 0.0}));  // fields missing: read as empty
}

TEST(FemapInput, NodeBlockStopsAtItsClosingLine)
{
    // The closing "   -1" is read as a node record of ID -1: a node matrix cannot grow to it.
    std::string text = "   -1\n   403\n" + node_line(1, "1.,1.,1.") + node_line(2, "2.,2.,2.") + "   -1\n   -1\n" +
                       "   404\n" + record(1, 2, "1,2,3,0,0,0,0,0,0,0,") + "   -1\n";
    neutral f = read_neutral(text);
    EXPECT_EQ(f.result, -199);
    EXPECT_EQ(f.pos.cols(), 2u);
    EXPECT_TRUE(f.connectM.empty() && f.FEs.empty());
    EXPECT_EQ(values(f.indices), V({0, 0}));

    neutral zero = read_neutral("403\n" + node_line(2, "2.,2.,2.") + node_line(0, "1.,1.,1.") + node_line(3, "3.,3.,3."));
    EXPECT_EQ(zero.result, -102);
    EXPECT_EQ(zero.pos.cols(), 2u);
    EXPECT_EQ(values(zero.indices), V({0, 0}));
    EXPECT_EQ(read_neutral("403\n" + node_line(100000000, "1.,1.,1.")).result, -199);
    EXPECT_EQ(read_neutral("403\n" + node_line(-2147483647 - 1, "1.,1.,1.")).result, -199);
}

TEST(FemapInput, ElementRecordsSlotsAndPadding)
{
    neutral f = read_neutral("404\n" + record(11, 2, "1,2,3,0,0,0,0,0,0,0,") +                    // T3
                             record(12, 4, "1,2,3,4,0,0,0,0,0,0,") +                                 // Q4
                             record(13, 6, "5,6,7,0,8,0,0,0,0,0,") +                                 // TETRA4
                             record(14, 3, "1,2,3,4,5,6,0,0,0,0,") +                                 // T6
                             record(15, 10, "1,2,3,0,4,0,0,0,5,6,", "7,0,8,9,10,0,0,0,0,0,") +      // TETRA10
                             record(16, 7, "1,2,3,0,4,5,6,0,0,0,") +                                 // WEDGE6
                             record(17, 2, "1,2,3,0,0,0,0,0,0,0,"));
    ASSERT_EQ(f.result, 0);
    ASSERT_EQ(f.connectM.rows(), 10u);
    ASSERT_EQ(f.connectM.cols(), 7u);
    EXPECT_EQ(column(f.connectM, 0), V({0, 1, 2, X, X, X, X, X, X, X}));  // earlier columns get NONE_ID too
    EXPECT_EQ(column(f.connectM, 2), V({5, 4, 6, 7, X, X, X, X, X, X}));
    EXPECT_EQ(column(f.connectM, 3), V({0, 1, 2, 4, 5, 3, X, X, X, X}));
    EXPECT_EQ(column(f.connectM, 4), V({0, 2, 1, 3, 5, 4, 6, 7, 9, 8}));
    EXPECT_EQ(column(f.connectM, 5), V({0, 1, 2, 3, 4, 5, X, X, X, X}));
    EXPECT_EQ(column(f.connectM, 6), V({0, 1, 2, X, X, X, X, X, X, X}));
    EXPECT_EQ(values(f.per_element), V({11, 12, 13, 14, 15, 16, 17}));
    EXPECT_EQ(values(f.FEs), std::vector<int>({ET_FACE_T3, ET_FACE_Q4, ET_TETRA4, ET_FACE_T6, ET_TETRA10,
                                               ET_WEDGE6, ET_FACE_T3}));
    EXPECT_EQ(values(f.indices), V({0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(FemapInput, SkippedTopologiesAndTheGroupMismatch)
{
    // A skipped record after a read one opens a group of type 0 at the last element read; the
    // next record opens its group with no start of its own, even when it is skipped too.
    std::string quad = "1,2,3,4,0,0,0,0,0,0,";
    neutral f = read_neutral("404\n" + record(1, 4, quad) + record(2, 11, quad) + record(3, 4, quad) +
                             record(4, 2, "1,2,3,") + record(5, 13, quad) + record(6, -1, quad));
    ASSERT_EQ(f.result, 0);
    EXPECT_EQ(f.connectM.cols(), 3u);
    EXPECT_EQ(values(f.per_element), V({1, 3, 4}));
    EXPECT_EQ(values(f.FEs), std::vector<int>({ET_FACE_Q4, ET_NONE, ET_FACE_Q4, ET_FACE_T3, ET_NONE, ET_NONE}));
    EXPECT_EQ(values(f.indices), V({0, 0, 2, 2, 3}));
}

TEST(FemapInput, ShortRecordLinesReadMissingFieldsAsEmpty)
{
    // The closing line of the element block is one more record: topology 0, an edge whose two
    // slot lines are whatever follows, here nothing.
    neutral f = read_neutral("404\n" + record(7, 0, "4,5") + "   -1\n");
    ASSERT_EQ(f.result, 0);
    EXPECT_EQ(values(f.FEs), std::vector<int>({ET_EDGE2}));
    ASSERT_EQ(f.connectM.cols(), 2u);
    EXPECT_EQ(column(f.connectM, 0), V({3, 4}));
    EXPECT_EQ(column(f.connectM, 1), V({X, X}));
    EXPECT_EQ(values(f.per_element), V({7, 0}));
}

TEST(FemapInput, FailedGrowthGivesMinus199)
{
    std::string nodes = "403\n", elements = "404\n";
    for (int k = 1; k <= 300; ++k) nodes += node_line(k, "1.,2.,3.");
    for (int k = 1; k <= 50; ++k) elements += record(k, k % 2 ? 6 : 2, "1,2,3,0,4,");
    long blocks = test_alloc::live_blocks();
    for (std::string const& text : {nodes, elements}) {
        int failures = 0;
        for (std::size_t successes = 0;; ++successes) {
            neutral f;
            std::istringstream in(text);
            {
                test_alloc::failing_scope guard(successes);
                f.result = __FEMAP_input(in, f.pos, f.connectM, f.indices, f.FEs, f.per_element);
            }
            if (f.result == 0) {
                EXPECT_EQ(f.pos.cols() + f.connectM.cols(), text == nodes ? 300u : 50u);
                break;
            }
            ASSERT_EQ(f.result, -199) << successes;
            EXPECT_EQ(f.per_element.size(), f.connectM.cols());
            ++failures;
        }
        EXPECT_GT(failures, 3);
    }
    EXPECT_EQ(test_alloc::live_blocks(), blocks);
}

TEST(FemapInput, FileFormsAndTheirViews)
{
    using exchange_test::write_file;
    dense2D<double> pos;
    dense2D<unsigned> connectM;
    dense1D<unsigned, 8> indices = exchange_test::array<unsigned>({4}), IDs;
    dense1D<int, 8> FEs;
    EXPECT_EQ(FEMAP_input(exchange_test::temp_path("none/x.neu").c_str(), pos, connectM, indices, FEs, IDs), -1);
    EXPECT_TRUE(indices.empty());

    std::string text = "404\n" + record(1, 2, "1,2,3,") + record(2, 2, "2,3,4,") + record(3, 4, "1,2,3,4,") +
                       record(4, 6, "1,2,3,0,4,");
    std::string path = write_file("three.neu", text);
    element_type FE = ET_HEXA8;
    EXPECT_EQ(FEMAP_input(path.c_str(), pos, connectM, FE), 0);
    EXPECT_EQ(FE, ET_NONE);
    std::string tris = write_file("tris.neu", "404\n" + record(1, 2, "1,2,3,"));
    EXPECT_EQ(FEMAP_input(tris.c_str(), pos, connectM, FE), 0);
    EXPECT_EQ(FE, ET_FACE_T3);

    // The first view keeps all rows of the connectivity, the second those of its type.
    dense2D<unsigned> M1, M2;
    element_type FE1 = ET_NONE, FE2 = ET_NONE;
    EXPECT_EQ(FEMAP_input(path.c_str(), pos, M1, M2, FE1, FE2), 0);
    EXPECT_EQ(FE1, ET_FACE_T3);
    EXPECT_EQ(FE2, ET_FACE_Q4);
    ASSERT_EQ(M1.rows(), 4u);
    ASSERT_EQ(M1.cols(), 2u);
    EXPECT_EQ(column(M1, 1), V({1, 2, 3, X}));
    ASSERT_EQ(M2.rows(), 4u);
    EXPECT_EQ(M2.cols(), 1u);
    std::string nodes_only = write_file("nodes.neu", "403\n" + node_line(1, "1.,1.,1."));
    EXPECT_EQ(FEMAP_input(nodes_only.c_str(), pos, M1, M2, FE1, FE2), 0);
    EXPECT_EQ(FE1, ET_FACE_T3);  // no group: both left as they were
    EXPECT_EQ(M1.cols(), 2u);
}

TEST(FemapInput, FilesOfOtherSoftware)
{
    std::string dir = exchange_test::corpus_dir("femap");
    if (dir.empty()) GTEST_SKIP() << "no corpus on this machine";
    auto read = [&](char const* name) {
        neutral f;
        f.result = FEMAP_input((dir + name).c_str(), f.pos, f.connectM, f.indices, f.FEs, f.per_element);
        return f;
    };
    neutral results = read("pyn_all_elem_test_giv_eb.neu");  // results only
    EXPECT_EQ(results.result, 0);
    EXPECT_TRUE(results.pos.empty() && results.connectM.empty());
    // Both meshes stop at the closing line of their first node block: 1394 nodes, largest ID
    // 8518, coordinates with Fortran D exponents, which atof reads up to the D.
    for (char const* name : {"pyn_cp2anti.neu", "pyn_f16-aero.neu"}) {
        neutral f = read(name);
        EXPECT_EQ(f.result, -199) << name;
        ASSERT_EQ(f.pos.cols(), 8518u) << name;
        EXPECT_EQ(node(f, 1000), std::vector<double>({8.0, 0.0, -5.0})) << name;
        EXPECT_TRUE(f.connectM.empty()) << name;
        EXPECT_EQ(values(f.indices), V({0, 0})) << name;
    }
}
