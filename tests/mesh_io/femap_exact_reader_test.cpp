// FEMAP neutral files read by read_mesh: blocks closed by their "-1" lines, Fortran exponents,
// empty fields in their place, properties as references; the files of other software counted.
#include "../exchange/exchange_files.h"
#include "tessarium/mesh.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace qv7;
using namespace qv7::tessarium;

namespace {

std::string node(int ID, char const* x, char const* y, char const* z)
{
    return std::to_string(ID) + ",0,0,1,46,0,0,0,0,,0," + x + "," + y + "," + z + ",0,\n";
}

std::string element(int ID, int PID, int topology, std::vector<int> slots)
{
    slots.resize(20, 0);
    std::string record =
        std::to_string(ID) + ",124," + std::to_string(PID) + ",17," + std::to_string(topology) + ",1,0,0,0,0,0,0,\n";
    for (int s = 0; s < 20; ++s) record += std::to_string(slots[s]) + (s == 9 || s == 19 ? ",\n" : ",");
    return record + "0.,0.,0.,\n0.,0.,0.,\n0.,0.,0.,\n0,0,0,0,\n";
}

}  // namespace

TEST(FemapExact, BlocksExponentsAndReferences)
{
    std::string head = "   -1\n   100\n<NULL>\n7.,\n   -1\n";
    std::string nodes = "   -1\n   403\n" + node(11, "2.5D+01", "-1.D-3", "0.0000000000000000D+00") +
                        node(12, "1.", "0.", "0.") + node(13, "0.", "1.", "0.") + node(14, "0.", "0.", "1.") +
                        "   -1\n";
    std::string elements = "   -1\n   404\n" + element(1, 7, 6, {11, 12, 13, 0, 14}) +  // tetrahedron, slot 3 unused
                           element(2, 9, 2, {11, 12, 13}) + element(3, 9, 11, {}) + "   -1\n";
    std::string path = exchange_test::write_file("exact.neu", head + nodes + "$COM between blocks\n" + elements);
    mesh m;
    io_report r = read_mesh(path, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(m.nbr_nodes(), 4u);
    EXPECT_EQ(m.pos(0, 0), 25.0);
    EXPECT_EQ(m.pos(1, 0), -1e-3);
    EXPECT_EQ(std::vector<unsigned>(m.node_IDs.begin(), m.node_IDs.end()), (std::vector<unsigned>{11, 12, 13, 14}));
    ASSERT_EQ(m.blocks.size(), 2u);
    EXPECT_EQ(m.blocks[0].type, ET_TETRA4);
    // The library's tetrahedra turn the other way: its local nodes 0 1 2 3 are 12 11 13 14.
    EXPECT_EQ(std::vector<unsigned>(m.blocks[0].connect.col(0), m.blocks[0].connect.col(0) + 4),
              (std::vector<unsigned>{1, 0, 2, 3}));
    EXPECT_EQ(m.blocks[0].references[0], 7u);
    EXPECT_EQ(m.blocks[1].type, ET_FACE_T3);
    EXPECT_EQ(m.blocks[1].references[0], 9u);
    bool topology_11 = false;
    for (io_count const& c : r.passed_over) topology_11 |= c.what == "element records of topology 11" && c.count == 1;
    EXPECT_TRUE(topology_11);

    struct bad {
        std::string text;
        char const* says;
    };
    for (bad const& b : std::vector<bad>{
             {head + "   -1\n   403\n" + node(1, "0.", "0.", "0."), "data block 403 of line 7 is not closed"},
             {head + nodes + "   -1\n   404\n" + element(1, 7, 2, {11, 12, 15}) + "   -1\n", "uses node 15"},
             {head + nodes + "   -1\n   404\n1,0,1,17,2,\n11,12,13,\n   -1\n", "line 16: element 1: node slot 3"},
             {head + "   -1\n   403\n" + node(1, "0.", "x", "0.") + "   -1\n", "line 8: node 1: coordinate 2"},
             {head, "no data block 403 or 404"}}) {
        io_report refused = read_mesh(exchange_test::write_file("bad.neu", b.text), m);
        EXPECT_EQ(refused.code, io_malformed);
        EXPECT_NE(refused.message.find(b.says), std::string::npos) << refused.message;
    }
}

// Node and element records counted from the block lines alone, against what was read.
TEST(FemapExact, FilesOfOtherSoftwareCounted)
{
    std::string folder = exchange_test::corpus_dir("femap");
    if (folder.empty()) GTEST_SKIP() << "no files of other software on this machine";
    struct file {
        char const* name;
        std::size_t nodes, elements;  // from the block lines
        unsigned first_ID;
        double first[3];  // read off the file
    };
    for (file const& f :
         std::vector<file>{{"pyn_cp2anti.neu", 0, 0, 1001, {8., 0., -5.}}, {"pyn_f16-aero.neu", 0, 0, 0, {}}}) {
        std::ifstream in(folder + f.name);
        std::size_t nodes = 0, element_lines = 0;
        std::string line, block;
        bool opened = false, inside = false;
        while (std::getline(in, line)) {
            std::istringstream words(line);
            std::string word;
            words >> word;
            if (word == "-1") {
                opened = !inside, inside = false;
                continue;
            }
            if (opened) {
                block = word, inside = true, opened = false;
                continue;
            }
            if (inside && block == "403") ++nodes;
            if (inside && block == "404") ++element_lines;
        }
        mesh m;
        io_report r = read_mesh(folder + f.name, m);
        ASSERT_TRUE(r) << r.message;
        EXPECT_EQ(m.nbr_nodes(), nodes) << f.name;
        EXPECT_EQ(m.nbr_elements(), element_lines / 7) << f.name;
        if (f.first_ID) {
            EXPECT_EQ(m.node_IDs[0], f.first_ID);
            for (int k = 0; k < 3; ++k) EXPECT_EQ(m.pos(k, 0), f.first[k]);
        }
    }
    mesh results;
    io_report r = read_mesh(folder + "pyn_all_elem_test_giv_eb.neu", results);
    EXPECT_EQ(r.code, io_malformed);
    EXPECT_NE(r.message.find("holds no mesh"), std::string::npos) << r.message;
}
