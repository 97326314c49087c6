// gmsh files: our own written and read back, those gmsh and meshio write, and one by hand.
#include "../exchange/exchange_files.h"
#include "mesh_files.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/mesh_io.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace mesh_io_test;
using exchange_test::temp_path;
using exchange_test::write_file;

namespace {

std::vector<unsigned> column(element_block const& b, std::size_t e)
{
    return std::vector<unsigned>(b.connect.col(e), b.connect.col(e) + b.connect.rows());
}

}  // namespace

// Node IDs, coordinates to the bit, every type gmsh holds, references as physical tags.
TEST(MshFiles, WrittenAndReadBackBitForBit)
{
    mesh written = only(every_type(), [](element_type t) { return __gmsh_cells[t].name != nullptr; });
    written.node_IDs.resize(written.nbr_nodes());
    for (std::size_t j = 0; j < written.nbr_nodes(); ++j) written.node_IDs[j] = static_cast<unsigned>(7 * j + 3);
    for (bool binary : {false, true}) {
        SCOPED_TRACE(binary ? "binary" : "text");
        std::string path = temp_path(binary ? "binary.msh" : "text.msh");
        io_options options;
        options.binary = binary;
        ASSERT_TRUE(write_mesh(path, written, options));
        mesh read;
        io_report r = read_mesh(path, read);
        ASSERT_TRUE(r) << r.message;
        ASSERT_EQ(read.nbr_nodes(), written.nbr_nodes());
        EXPECT_EQ(std::memcmp(read.pos.col(0), written.pos.col(0), 3 * sizeof(double) * written.nbr_nodes()), 0);
        EXPECT_TRUE(
            std::equal(read.node_IDs.begin(), read.node_IDs.end(), written.node_IDs.begin(), written.node_IDs.end()));
        ASSERT_EQ(read.blocks.size(), written.blocks.size());
        for (std::size_t k = 0; k < written.blocks.size(); ++k) {
            element_block const &a = read.blocks[k], &b = written.blocks[k];
            ASSERT_EQ(a.type, b.type);
            EXPECT_EQ(column(a, 0), column(b, 0)) << __type_name(b.type);
            EXPECT_EQ(a.references[0], b.references[0]) << __type_name(b.type);
        }
    }
}

TEST(MshFiles, FilesOfGmshAndMeshio)
{
    int written = 0;
    for (char const* writer :
         {"gmsh22-ascii", "gmsh22-binary", "gmsh41-ascii", "gmsh41-binary", "meshio22-ascii", "meshio22-binary"}) {
        SCOPED_TRACE(writer);
        std::string path = temp_path(std::string("peer_") + writer + ".msh");
        std::map<std::string, long> found;
        if (!exchange_test::run_read_script("tests/mesh_io/write_with_peers.py", writer, path, found)) continue;
        ++written;
        mesh m;
        io_report r = read_mesh(path, m);
        ASSERT_TRUE(r) << r.message;
        EXPECT_EQ(static_cast<long>(m.nbr_nodes()), found["points"]);
        double sum = 0;
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j) sum += m.pos(0, j) + m.pos(1, j) + m.pos(2, j);
        EXPECT_NEAR(sum, found["sum_milli"] / 1000.0, 1e-3);
        auto counts = count_by_type(m);
        for (element_type t :
             {ET_EDGE2, ET_FACE_T3, ET_FACE_Q4, ET_FACE_T6, ET_TETRA4, ET_TETRA10, ET_PYRAMID5, ET_WEDGE6, ET_HEXA8})
            EXPECT_EQ(counts[t], 1u) << __type_name(t);
    }
    if (!written) GTEST_SKIP() << "neither gmsh nor meshio is installed";
}

// gmsh's prism turns the other way round from the library's wedge, and its tetrahedron too; the
// first tag of a 2.2 element is its physical group; a 4-node edge and a comment are passed over.
TEST(MshFiles, HandWrittenVersion22)
{
    std::string path = write_file("hand.msh",
                                  "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$Comments\nnot $Nodes\n$EndComments\n"
                                  "$Nodes\n7\n10 0 0 0\n20 1 0 0\n30 0 1 0\n40 0 0 1\n50 1 0 1\n60 0 1 1\n70 9 9 9\n"
                                  "$EndNodes\n$Elements\n3\n1 6 2 5 1 10 20 30 40 50 60\n2 4 2 8 2 10 20 30 40\n"
                                  "3 26 2 0 0 10 20 30 40\n$EndElements\n");
    mesh m;
    io_report r = read_mesh(path, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(m.blocks.size(), 2u);
    EXPECT_EQ(m.blocks[0].type, ET_WEDGE6);
    EXPECT_EQ(column(m.blocks[0], 0), (std::vector<unsigned>{0, 2, 1, 3, 5, 4}));
    EXPECT_EQ(m.blocks[1].type, ET_TETRA4);
    EXPECT_EQ(column(m.blocks[1], 0), (std::vector<unsigned>{0, 2, 1, 3}));
    EXPECT_EQ(m.blocks[0].references[0], 5u);
    EXPECT_EQ(m.blocks[1].references[0], 8u);
    EXPECT_EQ(std::vector<unsigned>(m.node_IDs.begin(), m.node_IDs.end()),
              (std::vector<unsigned>{10, 20, 30, 40, 50, 60, 70}));
    EXPECT_EQ(m.pos(2, 5), 1.0);
    std::map<std::string, std::size_t> passed;
    for (io_count const& c : r.passed_over) passed[c.what] = c.count;
    EXPECT_EQ(passed, (std::map<std::string, std::size_t>{{"$Comments sections", 1}, {"gmsh elements of type 26", 1}}));
}
