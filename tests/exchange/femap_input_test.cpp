#include "exchange/femap_input.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

constexpr unsigned X = NONE_ID;
using neutral = grouped_read;

neutral read_neutral(std::string const& text)
{
    return read_text(__FEMAP_input, text);
}

std::string node_line(int ID, char const* xyz)
{
    return std::to_string(ID) + ",0,0,1,0,0,0,0,0,0,0," + xyz + ",0,\n";
}

// An element record: line 1 with the value and the topology, the two slot lines, four more.
std::string record(int value, int topology, std::string const& slots1, std::string const& slots2 = "0,")
{
    return "9," + std::to_string(value) + ",1,25," + std::to_string(topology) + ",1,0,0,0,0,0,0,0,\n" + slots1 + "\n" +
           slots2 + "\n0.,0.,0.,0,0,0,0,0,0,\n0.,0.,0.,\n0.,0.,0.,\n0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n";
}

}  // namespace

TEST(FemapInput, NodeRecordsFollowTheirIDs)
{
    neutral none = read_neutral("   -1\n   100\n<NULL>\n4030\n\t403\n   -1\n");
    EXPECT_EQ(none.result, 0);
    EXPECT_TRUE(none.pos.empty() && none.connectM.empty() && none.FEs.empty());
    EXPECT_EQ(values(none.indices), V({0, 0}));

    // A header is found with blanks anywhere around it (a tab is no blank). An empty field moves
    // the coordinates one place to the front; missing fields read as empty.
    neutral f = read_neutral(" 4 0 3  \n" + node_line(1, "1.5,-2,3e2") + node_line(3, "7.,8.,9.") +
                             "3,0,0,1,0,0,0,0,0,0,,5.,6.,7.,0,\n4,0,0\n");
    EXPECT_EQ(f.result, 0);
    ASSERT_EQ(f.pos.cols(), 4u);
    EXPECT_EQ(column(f.pos, 0), P({1.5, -2.0, 300.0}));
    EXPECT_EQ(column(f.pos, 1), P({0.0, 0.0, 0.0}));
    EXPECT_EQ(column(f.pos, 2), P({6.0, 7.0, 0.0}));
    EXPECT_EQ(column(f.pos, 3), P({0.0, 0.0, 0.0}));
}

TEST(FemapInput, NodeFailuresKeepWhatWasRead)
{
    // A block never closes: its "   -1" line is a node of ID -1, which pos cannot grow to.
    neutral f = read_neutral("   -1\n   403\n" + node_line(1, "1.,1.,1.") + node_line(2, "2.,2.,2.") +
                             "   -1\n   -1\n   404\n" + record(1, 2, "1,2,3,") + "   -1\n");
    EXPECT_EQ(f.result, -199);
    EXPECT_EQ(f.pos.cols(), 2u);
    EXPECT_TRUE(f.connectM.empty() && f.FEs.empty());
    EXPECT_EQ(values(f.indices), V({0, 0}));
    neutral zero =
        read_neutral("403\n" + node_line(2, "2.,2.,2.") + node_line(0, "1.,1.,1.") + node_line(3, "3.,3.,3."));
    EXPECT_EQ(zero.result, -102);
    EXPECT_EQ(zero.pos.cols(), 2u);
    EXPECT_EQ(read_neutral("403\n" + node_line(100000000, "1.,1.,1.")).result, -199);
    EXPECT_EQ(read_neutral("403\n" + node_line(-2147483647 - 1, "1.,1.,1.")).result, -199);
}

TEST(FemapInput, ElementSlotsPaddingAndGroups)
{
    neutral f = read_neutral("404\n" + record(11, 2, "1,2,3,") + record(12, 4, "1,2,3,4,") +
                             record(13, 6, "5,6,7,0,8,") + record(14, 3, "1,2,3,4,5,6,") +
                             record(15, 10, "1,2,3,0,4,0,0,0,5,6,", "7,0,8,9,10,") + record(16, 7, "1,2,3,0,4,5,6,"));
    ASSERT_EQ(f.result, 0);
    ASSERT_EQ(f.connectM.rows() * 10 + f.connectM.cols(), 106u);
    EXPECT_EQ(column(f.connectM, 0), V({0, 1, 2, X, X, X, X, X, X, X}));  // earlier columns get NONE_ID
    EXPECT_EQ(column(f.connectM, 2), V({5, 4, 6, 7, X, X, X, X, X, X}));
    EXPECT_EQ(column(f.connectM, 3), V({0, 1, 2, 4, 5, 3, X, X, X, X}));
    EXPECT_EQ(column(f.connectM, 4), V({0, 2, 1, 3, 5, 4, 6, 7, 9, 8}));
    EXPECT_EQ(column(f.connectM, 5), V({0, 1, 2, 3, 4, 5, X, X, X, X}));
    EXPECT_EQ(values(f.per_element), V({11, 12, 13, 14, 15, 16}));
    EXPECT_EQ(values(f.FEs), T({ET_FACE_T3, ET_FACE_Q4, ET_TETRA4, ET_FACE_T6, ET_TETRA10, ET_WEDGE6}));
    EXPECT_EQ(values(f.indices), V({0, 1, 2, 3, 4, 5, 6}));
}

TEST(FemapInput, SkippedTopologiesAndTheGroupMismatch)
{
    // A skipped record after a read one opens a group of type 0 at the last element read; the
    // record after it opens its group with no start of its own, even when skipped too. The
    // closing line is one more record, an edge whose slot lines are missing.
    std::string quad = "1,2,3,4,";
    neutral f =
        read_neutral("404\n" + record(1, 4, quad) + record(2, 11, quad) + record(3, 4, quad) + record(4, 2, "1,2,3,") +
                     record(5, 13, quad) + record(6, -1, quad) + record(7, 0, "4,5") + "   -1\n");
    ASSERT_EQ(f.result, 0);
    EXPECT_EQ(values(f.per_element), V({1, 3, 4, 7, 0}));
    EXPECT_EQ(values(f.FEs), T({ET_FACE_Q4, ET_NONE, ET_FACE_Q4, ET_FACE_T3, ET_NONE, ET_NONE, ET_EDGE2}));
    EXPECT_EQ(values(f.indices), V({0, 0, 2, 2, 5}));
    EXPECT_EQ(column(f.connectM, 3), V({3, 4, X, X}));
    EXPECT_EQ(column(f.connectM, 4), V({X, X, X, X}));
}

TEST(FemapInput, FailedGrowthGivesMinus199)
{
    std::string nodes = "403\n", elements = "404\n";
    for (int k = 1; k <= 300; ++k) nodes += node_line(k, "1.,2.,3.");
    for (int k = 1; k <= 50; ++k) elements += record(k, k % 2 ? 6 : 2, "1,2,3,0,4,");
    long blocks = test_alloc::live_blocks();
    for (std::string const& text : {nodes, elements}) {
        std::size_t read = 0;
        EXPECT_GT(failed_runs_before_success([&] {
                      neutral f = read_neutral(text);
                      EXPECT_EQ(f.per_element.size(), f.connectM.cols());
                      read = f.pos.cols() + f.connectM.cols();
                      return f.result;
                  }),
                  3u);
        EXPECT_EQ(read, text == nodes ? 300u : 50u);
    }
    EXPECT_EQ(test_alloc::live_blocks(), blocks);
}

TEST(FemapInput, FileFormsAndTheirViews)
{
    dense2D<double> pos;
    dense2D<unsigned> M, M1, M2;
    dense1D<unsigned, 8> indices = list<unsigned>({4}), IDs;
    dense1D<int, 8> FEs;
    EXPECT_EQ(FEMAP_input(temp_path("none/x.neu").c_str(), pos, M, indices, FEs, IDs), -1);
    EXPECT_TRUE(indices.empty());

    std::string path = write_file("three.neu", "404\n" + record(1, 2, "1,2,3,") + record(2, 2, "2,3,4,") +
                                                   record(3, 4, "1,2,3,4,") + record(4, 6, "1,2,3,0,4,"));
    element_type FE = ET_HEXA8, FE1 = ET_NONE, FE2 = ET_NONE;
    EXPECT_EQ(FEMAP_input(path.c_str(), pos, M, FE), 0);
    EXPECT_EQ(FE, ET_NONE);
    EXPECT_EQ(FEMAP_input(write_file("tris.neu", "404\n" + record(1, 2, "1,2,3,")).c_str(), pos, M, FE), 0);
    EXPECT_EQ(FE, ET_FACE_T3);

    // The first view keeps all rows of the connectivity, the second those of its type.
    EXPECT_EQ(FEMAP_input(path.c_str(), pos, M1, M2, FE1, FE2), 0);
    EXPECT_EQ(FE1 * 100 + FE2, ET_FACE_T3 * 100 + ET_FACE_Q4);
    ASSERT_EQ(M1.rows() * 10 + M1.cols(), 42u);
    EXPECT_EQ(column(M1, 1), V({1, 2, 3, X}));
    EXPECT_EQ(M2.rows() * 10 + M2.cols(), 41u);
    EXPECT_EQ(FEMAP_input(write_file("nodes.neu", "403\n" + node_line(1, "1.,1.,1.")).c_str(), pos, M1, M2, FE1, FE2),
              0);
    EXPECT_EQ(FE1 * 10 + M1.cols(), ET_FACE_T3 * 10 + 2);  // no group: left as they were
}

TEST(FemapInput, FilesOfOtherSoftware)
{
    std::string dir = corpus_dir("femap");
    if (dir.empty()) GTEST_SKIP() << "no corpus on this machine";
    auto read = [&](char const* name) { return read_path(FEMAP_input, dir + name); };
    neutral results = read("pyn_all_elem_test_giv_eb.neu");  // results only
    EXPECT_EQ(results.result, 0);
    EXPECT_TRUE(results.pos.empty() && results.connectM.empty());
    // Both meshes stop at the closing line of their first node block: 1394 nodes, largest ID
    // 8518, coordinates with Fortran D exponents, which atof reads up to the D.
    for (char const* name : {"pyn_cp2anti.neu", "pyn_f16-aero.neu"}) {
        neutral f = read(name);
        EXPECT_EQ(f.result, -199) << name;
        ASSERT_EQ(f.pos.cols(), 8518u) << name;
        EXPECT_EQ(column(f.pos, 1000), P({8.0, 0.0, -5.0})) << name;
        EXPECT_EQ(values(f.indices), V({0, 0})) << name;
    }
}
