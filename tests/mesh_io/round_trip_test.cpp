// write_mesh then read_mesh, for the formats that have a reader, and the mesh value's helpers.
#include "../exchange/exchange_files.h"
#include "mesh_files.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/mesh_io.h"
#include "tessarium/nastran.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>

using namespace mesh_io_test;
using exchange_test::temp_path;

namespace {

// Bit for bit.
bool same_bits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void expect_same_nodes(mesh const& read, mesh const& written)
{
    ASSERT_EQ(read.nbr_nodes(), written.nbr_nodes());
    ASSERT_EQ(read.pos.rows(), 3u);
    for (std::size_t j = 0; j < written.nbr_nodes(); ++j)
        for (std::size_t i = 0; i < 3; ++i)
            ASSERT_TRUE(same_bits(read.pos(i, j), written.pos(i, j))) << "node " << j << " row " << i;
}

// Same blocks, same nodes in the same local order, same references.
void expect_same_blocks(mesh const& read, mesh const& written, bool references)
{
    ASSERT_EQ(read.blocks.size(), written.blocks.size());
    for (std::size_t k = 0; k < written.blocks.size(); ++k) {
        element_block const &a = read.blocks[k], &b = written.blocks[k];
        ASSERT_EQ(a.type, b.type) << "block " << k;
        ASSERT_EQ(a.connect.cols(), b.connect.cols());
        for (std::size_t e = 0; e < b.connect.cols(); ++e) {
            for (std::size_t i = 0; i < b.connect.rows(); ++i)
                EXPECT_EQ(a.connect(i, e), b.connect(i, e)) << __type_name(b.type) << " node " << i;
            if (references) {
                EXPECT_EQ(a.references[e], b.references[e]) << __type_name(b.type);
            }
        }
    }
}

bool nastran_type(element_type t)
{
    return t != ET_NODE && t != ET_EDGE3 && t != ET_FACE_Q9 && t != ET_PYRAMID14 && t != ET_WEDGE18 && t != ET_HEXA27;
}
bool femap_type(element_type t)
{
    return t == ET_NODE || t == ET_EDGE2 || t == ET_EDGE3 || t == ET_FACE_T3 || t == ET_FACE_Q4 || t == ET_FACE_T6 ||
           t == ET_FACE_Q8 || t == ET_TETRA4 || t == ET_TETRA10 || t == ET_WEDGE6 || t == ET_HEXA8 || t == ET_HEXA20;
}
bool obj_type(element_type t)
{
    return t == ET_FACE_T3 || t == ET_FACE_Q4;
}
bool vtk_type(element_type t)
{
    return __vtk_cells[t].name != nullptr;
}
bool medit_type(element_type t)
{
    return t == ET_EDGE2 || t == ET_FACE_T3 || t == ET_FACE_Q4 || t == ET_TETRA4 || t == ET_PYRAMID5 ||
           t == ET_WEDGE6 || t == ET_HEXA8;
}

}  // namespace

TEST(MeshRoundTrip, NumberedFormatsKeepEveryTypeTheyHold)
{
    struct format {
        char const* extension;
        bool (*keeps)(element_type);
    };
    for (format f : {format{".bdf", nastran_type}, format{".neu", femap_type}, format{".obj", obj_type},
                     format{".mesh", medit_type}, format{".vtk", vtk_type}, format{".meshb", medit_type}}) {
        mesh written = every_type(), read;
        std::string path = temp_path(std::string("every_type") + f.extension);
        io_report w = write_mesh(path, written);
        ASSERT_TRUE(w) << w.message;
        mesh kept = only(written, f.keeps);
        EXPECT_EQ(w.elements, kept.nbr_elements()) << f.extension;
        std::size_t skipped = 0;
        for (io_count const& c : w.passed_over) skipped += c.what.find("elements") != std::string::npos ? c.count : 0;
        EXPECT_EQ(skipped, written.nbr_elements() - kept.nbr_elements()) << f.extension;

        io_report r = read_mesh(path, read);
        ASSERT_TRUE(r) << r.message;
        SCOPED_TRACE(f.extension);
        expect_same_nodes(read, written);
        expect_same_blocks(read, kept, f.keeps != obj_type);
    }
}

TEST(MeshRoundTrip, StlKeepsTrianglesBitForBitWithTheirTurn)
{
    mesh written = every_type();
    for (bool binary : {false, true}) {
        std::string path = temp_path(binary ? "binary.stl" : "text.stl");
        io_options options;
        options.binary = binary;
        ASSERT_TRUE(write_mesh(path, written, options));
        mesh read;
        io_report r = read_mesh(path, read);
        ASSERT_TRUE(r) << r.message;
        ASSERT_EQ(count_by_type(read)[ET_FACE_T3], 1u);
        unsigned const* a = read.blocks[0].connect.col(0);
        unsigned const* b = only(written, obj_type).blocks[0].connect.col(0);
        for (int k = 0; k < 3; ++k)
            for (int i = 0; i < 3; ++i) {
                double w = written.pos(i, b[k]);
                EXPECT_TRUE(same_bits(read.pos(i, a[k]), binary ? double(float(w)) : w)) << k << " " << i;
            }
    }
}

TEST(MeshRoundTrip, FaithfulOptionWritesTheFormatFunctionsBytes)
{
    mesh m = only(every_type(), [](element_type t) { return t == ET_TETRA4 || t == ET_HEXA8; });
    std::string ours = temp_path("faithful.bdf"), theirs = temp_path("direct.bdf");
    io_options faithful;
    faithful.faithful = true;
    ASSERT_TRUE(write_mesh(ours, m, faithful));
    dense2D<unsigned> connectM;
    connectM.resize(8, 2, NONE_ID);
    std::copy(m.blocks[0].connect.col(0), m.blocks[0].connect.col(0) + 4, connectM.col(0));
    std::copy(m.blocks[1].connect.col(0), m.blocks[1].connect.col(0) + 8, connectM.col(1));
    ASSERT_EQ(NASTRAN_output(theirs.c_str(), m.pos, connectM, exchange_test::array<unsigned>({0, 1, 2}),
                             exchange_test::array<int>({ET_TETRA4, ET_HEXA8}),
                             exchange_test::array<unsigned>({m.blocks[0].references[0], m.blocks[1].references[0]})),
              0);
    EXPECT_EQ(exchange_test::contents(ours), exchange_test::contents(theirs));
}

TEST(MeshValue, CountsBoxAndMixedForms)
{
    mesh m = every_type();
    auto counts = count_by_type(m);
    EXPECT_EQ(counts[ET_TETRA10], 1u);
    EXPECT_EQ(counts[ET_SOLID_MIX], 0u);
    double lo[3], hi[3];
    ASSERT_TRUE(bounding_box(m, lo, hi));
    // The node at x = 2 and the hexahedra's far corners at x = 2 * 22 + 1, all moved by a third.
    EXPECT_DOUBLE_EQ(lo[0], 2.0 + 1.0 / 3.0);
    EXPECT_DOUBLE_EQ(hi[0], 45.0 + 1.0 / 3.0);
    EXPECT_DOUBLE_EQ(hi[2], 1.0 + 1.0 / 3.0);
    EXPECT_FALSE(bounding_box(mesh(), lo, hi));

    dense2D<unsigned> solids, faces;
    element_type FE;
    // Solids: 2 tetrahedra, 3 pyramids, 3 wedges, 3 hexahedra; faces: 2 triangles, 3 quadrangles.
    ASSERT_EQ(to_mixed(m, 3, solids, FE), 11);
    EXPECT_EQ(FE, ET_SOLID_MIX);
    ASSERT_EQ(to_mixed(m, 2, faces, FE), 5);
    EXPECT_EQ(to_mixed(m, 1, faces, FE), -1);
    EXPECT_TRUE(check_IDs(solids, ET_SOLID_MIX, static_cast<unsigned>(m.nbr_nodes())));

    mesh back;
    back.pos = m.pos;
    ASSERT_EQ(add_mixed(back, solids, ET_SOLID_MIX), 11);
    std::map<element_type, std::set<std::vector<unsigned>>> from_mixed, corners;
    for (element_block const& b : back.blocks)
        for (std::size_t e = 0; e < b.connect.cols(); ++e)
            from_mixed[b.type].insert(std::vector<unsigned>(b.connect.col(e), b.connect.col(e) + b.connect.rows()));
    for (element_block const& b : m.blocks) {
        if (element_dim(b.type) != 3) continue;
        element_type corner = b.type <= ET_TETRA10     ? ET_TETRA4
                              : b.type <= ET_PYRAMID14 ? ET_PYRAMID5
                              : b.type <= ET_WEDGE18   ? ET_WEDGE6
                                                       : ET_HEXA8;
        corners[corner].insert(std::vector<unsigned>(b.connect.col(0), b.connect.col(0) + nbr_nodes(corner)));
    }
    EXPECT_EQ(from_mixed, corners);
    EXPECT_EQ(add_mixed(back, solids, ET_HEXA8), -3);  // a shape check_IDs refuses
}

TEST(MeshRoundTrip, MeditSolutionBesideTheMeshInKeywordForm)
{
    mesh m;
    m.pos = exchange_test::coords(2, {0, 0, 1, 0});
    m.node_fields.push_back({"h", exchange_test::coords(1, {0.5, 0.25})});
    m.node_fields.push_back({"u", exchange_test::coords(2, {1, 2, 3, 4})});
    m.node_fields.push_back({"odd", exchange_test::coords(5, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0})});
    std::string path = temp_path("with_fields.mesh");
    io_report r = write_mesh(path, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(r.passed_over.size(), 1u);
    EXPECT_EQ(r.passed_over[0].what, "node field odd");
    std::string sol = path.substr(0, path.size() - 5) + ".sol";
    EXPECT_EQ(exchange_test::contents(sol),
              "MeshVersionFormatted 2\n\nDimension 2\n\nSolAtVertices\n2\n2 1 2\n0.5 1 2\n0.25 3 4\n\nEnd\n");
    EXPECT_EQ(exchange_test::contents(path),
              "MeshVersionFormatted 2\n\nDimension 2\n\nVertices\n2\n0 0 0\n1 0 0\n\nEnd\n");
}

TEST(MeshRoundTrip, NastranCardsPassedOverAreCountedByName)
{
    std::string path =
        exchange_test::write_file("passed_over.bdf",
                                  "$ head\nBEGIN BULK\nMAT1,1\nPSHELL,1\nPSHELL,2\nGRID,1,,0.,0.,0.\nGRID,2,,1.,0.,0.\n"
                                  "GRID,3,,0.,1.,0.\nCTRIA3,1,1,1,2,3\nCTRIA3,2,1,1,2\nENDDATA\nFORCE,9\n");
    mesh m;
    io_options faithful;
    faithful.faithful = true;
    io_report r = read_mesh(path, m, faithful);
    ASSERT_TRUE(r) << r.message;
    EXPECT_EQ(r.elements, 1u);
    std::vector<std::pair<std::string, std::size_t>> passed;
    for (io_count const& c : r.passed_over) passed.push_back({c.what, c.count});
    EXPECT_EQ(
        passed,
        (std::vector<std::pair<std::string, std::size_t>>{
            {"MAT1 cards", 1}, {"PSHELL cards", 2}, {"element cards of another node count or in large field", 1}}));
}
