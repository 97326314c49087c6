// Medit meshes in text form read by read_mesh: comments, keywords passed over, 2D vertices, and
// counts that the file cannot hold refused before anything is allocated.
#include "../exchange/exchange_files.h"
#include "tessarium/mesh.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace qv7::tessarium;

TEST(MeditReader, KeywordsCommentsAndRefusals)
{
    std::string path = exchange_test::write_file(
        "hand.mesh",
        "MeshVersionFormatted 2 # a comment\nDimension\n2\nVertices\n3\n0 0 1\n1.5e0 0 2\n0 1 3\n"
        "Corners 1 1\nTriangles 1\n1 2 3 7\nEdges 2 1 2 4 2 3 5\nEnd\n");
    mesh m;
    io_report r = read_mesh(path, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(m.pos.rows(), 2u);
    EXPECT_EQ(m.pos(0, 1), 1.5);
    ASSERT_EQ(m.blocks.size(), 2u);
    EXPECT_EQ(m.blocks[0].type, ET_FACE_T3);
    EXPECT_EQ(m.blocks[0].references[0], 7u);
    EXPECT_EQ(std::vector<unsigned>(m.blocks[1].connect.col(1), m.blocks[1].connect.col(1) + 2),
              (std::vector<unsigned>{1, 2}));
    ASSERT_EQ(r.passed_over.size(), 1u);
    EXPECT_EQ(r.passed_over[0].what, "Corners entries");

    struct bad {
        char const* text;
        char const* says;
    };
    for (bad b : std::vector<bad>{
             {"MeshVersionFormatted 2\nDimension 3\nVertices 99999999999\n0 0 0 0\n", "99999999999 entries cannot fit"},
             {"MeshVersionFormatted 2\nDimension 3\nVertices 2\n0 0 0 0\n0 0 x 1\n", "vertex 2"},
             {"MeshVersionFormatted 2\nFrogs 1\n", "unknown keyword \"Frogs\""},
             {"Dimension 3\n", "no MeshVersionFormatted"},
             {"MeshVersionFormatted 2\nDimension 3\nVertices 1\n0 0 0 0\nTriangles 1\n1 1 2 x\n",
              "Triangles 1: a vertex or the reference is missing"}}) {
        io_report refused = read_mesh(exchange_test::write_file("bad.mesh", b.text), m);
        EXPECT_EQ(refused.code, io_malformed);
        EXPECT_NE(refused.message.find(b.says), std::string::npos) << refused.message;
    }
}
