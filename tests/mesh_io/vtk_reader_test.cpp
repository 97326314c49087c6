// Legacy VTK files read into the mesh value: the cell kinds the library lacks, both cell layouts,
// big-endian binary data, data arrays following their cells, and files of other programs.
#include "../exchange/exchange_files.h"
#include "mesh_files.h"
#include "mesh_io/mesh_io.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace mesh_io_test;
using exchange_test::temp_path;
using exchange_test::write_file;

namespace {

std::vector<unsigned> nodes_of(element_block const& b, std::size_t e)
{
    return std::vector<unsigned>(b.connect.col(e), b.connect.col(e) + b.connect.rows());
}

std::vector<double> row_of(mesh_field const& f, std::size_t i)
{
    std::vector<double> v;
    for (std::size_t j = 0; j < f.values.cols(); ++j) v.push_back(f.values(i, j));
    return v;
}

// Big-endian bytes of a number, as BINARY files hold them.
template <class T>
std::string be(T value)
{
    char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    return std::string(std::rbegin(bytes), std::rend(bytes));
}

}  // namespace

// A pentagon becomes a fan of three triangles, a pixel a quadrangle with its last two points
// swapped, a poly-line two edges; a polyhedron (42) is passed over, and every piece keeps the data
// of its cell.
TEST(VtkReader, CellsTheLibraryLacksAndTheirData)
{
    std::string path = write_file("kinds.vtk",
                                  "# vtk DataFile Version 3.0\nkinds\nASCII\nDATASET UNSTRUCTURED_GRID\n"
                                  "POINTS 6 float\n0 0 0 1 0 0 2 1 0 1 2 0 0 1 0 5 5 5\n"
                                  "CELLS 4 21\n5 0 1 2 3 4\n4 0 1 4 3\n3 5 0 1\n5 0 1 2 3 4\n"
                                  "CELL_TYPES 4\n7 8 4 42\n"
                                  "CELL_DATA 4\nSCALARS q int 1\nLOOKUP_TABLE default\n10 20 30 40\n"
                                  "FIELD FieldData 2\nreference 1 4 int\n7 8 9 6\nv 2 4 double\n1 2 3 4 5 6 7 8\n"
                                  "POINT_DATA 6\nVECTORS u double\n0 0 0 1 0 0 2 0 0 3 0 0 4 0 0 5 0.5 0\n");
    mesh m;
    io_report r = read_mesh(path, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(m.blocks.size(), 3u);
    EXPECT_EQ(m.blocks[0].type, ET_FACE_T3);
    EXPECT_EQ(nodes_of(m.blocks[0], 0), (std::vector<unsigned>{0, 1, 2}));
    EXPECT_EQ(nodes_of(m.blocks[0], 2), (std::vector<unsigned>{0, 3, 4}));
    EXPECT_EQ(m.blocks[1].type, ET_FACE_Q4);
    EXPECT_EQ(nodes_of(m.blocks[1], 0), (std::vector<unsigned>{0, 1, 3, 4}));
    EXPECT_EQ(m.blocks[2].type, ET_EDGE2);
    EXPECT_EQ(nodes_of(m.blocks[2], 1), (std::vector<unsigned>{0, 1}));
    EXPECT_EQ(std::vector<unsigned>(m.blocks[0].references.begin(), m.blocks[0].references.end()),
              (std::vector<unsigned>{7, 7, 7}));
    EXPECT_EQ(m.blocks[2].references[1], 9u);
    ASSERT_EQ(m.element_fields.size(), 2u);
    EXPECT_EQ(row_of(m.element_fields[0], 0), (std::vector<double>{10, 10, 10, 20, 30, 30}));
    EXPECT_EQ(row_of(m.element_fields[1], 1), (std::vector<double>{2, 2, 2, 4, 6, 6}));
    ASSERT_EQ(m.node_fields.size(), 1u);
    EXPECT_EQ(row_of(m.node_fields[0], 1), (std::vector<double>{0, 0, 0, 0, 0, 0.5}));
    std::map<std::string, std::size_t> passed;
    for (io_count const& c : r.passed_over) passed[c.what] = c.count;
    EXPECT_EQ(passed["cells of VTK type 42"], 1u);
    EXPECT_EQ(passed["polygons of more than 4 points, cut into fans of triangles"], 1u);
}

// Polydata in binary with the offsets layout: a strip of five points gives three triangles that
// all turn the same way; a float point's bits come back as that float.
TEST(VtkReader, BinaryStripsInOffsetsLayout)
{
    std::string points, offsets, connectivity, scalars;
    for (int k = 0; k < 5; ++k) {
        points += be(float(k / 2)) + be(float(k % 2)) + be(0.1f);
        connectivity += be(std::int64_t(k));
        scalars += be(1.5 * k);
    }
    offsets = be(std::int64_t(0)) + be(std::int64_t(5));
    std::string path = write_file("strip.vtk",
                                  "# vtk DataFile Version 5.1\nstrip\nBINARY\nDATASET POLYDATA\n"
                                  "POINTS 5 float\n" +
                                      points + "\nTRIANGLE_STRIPS 2 5\nOFFSETS vtktypeint64\n" + offsets +
                                      "\nCONNECTIVITY vtktypeint64\n" + connectivity +
                                      "\nPOINT_DATA 5\nSCALARS s double\nLOOKUP_TABLE default\n" + scalars + "\n");
    mesh m;
    io_report r = read_mesh(path, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(m.blocks.size(), 1u);
    element_block const& b = m.blocks[0];
    ASSERT_EQ(b.connect.cols(), 3u);
    EXPECT_EQ(nodes_of(b, 0), (std::vector<unsigned>{0, 1, 2}));
    EXPECT_EQ(nodes_of(b, 1), (std::vector<unsigned>{2, 1, 3}));
    EXPECT_EQ(nodes_of(b, 2), (std::vector<unsigned>{2, 3, 4}));
    EXPECT_EQ(m.pos(2, 4), double(0.1f));
    EXPECT_EQ(row_of(m.node_fields.at(0), 0), (std::vector<double>{0, 1.5, 3, 4.5, 6}));
}

// Files that meshio and VTK write, in text and binary, read with the counts and coordinates the
// writer reports.
TEST(VtkReader, FilesOfOtherPrograms)
{
    int written = 0;
    for (char const* writer : {"meshio-ascii", "meshio-binary", "vtk-ascii", "vtk-binary"}) {
        SCOPED_TRACE(writer);
        std::string path = temp_path(std::string("peer_") + writer + ".vtk");
        std::map<std::string, long> found;
        if (!exchange_test::run_read_script("tests/mesh_io/write_with_peers.py", writer, path, found)) continue;
        ++written;
        mesh m;
        io_report r = read_mesh(path, m);
        ASSERT_TRUE(r) << r.message;
        EXPECT_EQ(static_cast<long>(m.nbr_nodes()), found["points"]);
        EXPECT_EQ(static_cast<long>(m.nbr_elements()), static_cast<long>(found.size()) - 2);
        double sum = 0;
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j) sum += m.pos(0, j) + m.pos(1, j) + m.pos(2, j);
        EXPECT_NEAR(sum, found["sum_milli"] / 1000.0, 1e-3);
        auto counts = count_by_type(m);
        for (element_type t :
             {ET_EDGE2, ET_FACE_T3, ET_FACE_Q4, ET_FACE_T6, ET_TETRA4, ET_TETRA10, ET_PYRAMID5, ET_WEDGE6, ET_HEXA8})
            EXPECT_EQ(counts[t], 1u) << __type_name(t);
    }
    if (!written) GTEST_SKIP() << "neither meshio nor VTK is installed";
}
