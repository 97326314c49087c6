// Files read_mesh refuses and meshes write_mesh refuses: a negative code, a message naming the
// file and what was wrong, the mesh left empty, no file left behind.
#include "../exchange/exchange_files.h"
#include "mesh_files.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace mesh_io_test;
using exchange_test::temp_path;
using exchange_test::write_file;

namespace {

std::string binary_stl(std::uint32_t facets, std::size_t bytes)
{
    std::string text(84, '\0');
    std::memcpy(&text[80], &facets, 4);
    return text + std::string(bytes, '\0');
}

std::string const stl_text =
    "solid t\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n"
    "endloop\nendfacet\n";
std::string const vtk_head = "# vtk DataFile Version 4.2\nt\nASCII\nDATASET ";
std::string const msh_head = "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n";
std::string const deck = "BEGIN BULK\nGRID,1,,0.,0.,0.\nGRID,2,,1.,0.,0.\nGRID,3,,0.,1.,0.\nCTRIA3,1,1,1,2,3\n";

// Names in a folder.
std::size_t entries(std::string const& folder)
{
    std::size_t n = 0;
    if (DIR* d = opendir(folder.c_str())) {
        while (readdir(d)) ++n;
        closedir(d);
    }
    return n;
}

}  // namespace

TEST(MeshBadFiles, RefusedWithAMessageAndAnEmptyMesh)
{
    std::string folder = temp_path("folder.bdf");
    mkdir(folder.c_str(), 0700);
    struct bad {
        std::string path;
        int code;
        char const* says;
    };
    std::vector<bad> table = {
        {temp_path("missing.bdf"), io_cannot_open, "No such file"},
        {folder, io_cannot_open, "is a folder"},
        {write_file("unknown.xyz", deck), io_unsupported, "unknown extension"},
        {write_file("not.msh", "$Nodes\n0\n$EndNodes\n"), io_malformed, "not a gmsh mesh"},
        {write_file("v40.msh", "$MeshFormat\n4 0 8\n$EndMeshFormat\n"), io_unsupported, "gmsh version 4: 2.x and"},
        {write_file("lost.msh", msh_head + "$Nodes\n1\n1 0 0 0\n$EndNodes\n$Elements\n1\n1 15 0 9\n$EndElements\n"),
         io_malformed, "line 10: element 1 refers to node tag 9, which $Nodes does not hold"},
        {write_file("huge.msh", msh_head + "$Nodes\n123456789\n1 0 0 0\n"), io_malformed, "123456789 nodes cannot fit"},
        {write_file("text.meshb", "MeshVersionFormatted 2\n"), io_malformed, "not a binary Medit file"},
        {write_file("huge.meshb", std::string("\1\0\0\0\2\0\0\0\4\0\0\0\0\0\0\0\0\0\0\x40", 20)), io_malformed,
         "byte 20: Vertices: 1073741824 entries cannot fit"},
        {write_file("no_reader.case", "FORMAT\n"), io_unsupported, "no reader for this format yet"},
        {write_file("not.vtk", "# vtk\n"), io_malformed, "not a legacy VTK file"},
        {write_file("image.vtk", vtk_head + "STRUCTURED_POINTS\n"), io_unsupported, "only UNSTRUCTURED_GRID and"},
        {write_file("cut.vtk", vtk_head + "POLYDATA\nPOINTS 2 double\n0 0 0 1 1"), io_malformed,
         "line 5: 2 points cannot fit"},
        {write_file("far.vtk", vtk_head + "POLYDATA\nPOINTS 1 double\n0 0 0\nLINES 1 3\n2 0 1\n"), io_malformed,
         "cell 1 refers to point 1, but there are 1 points"},
        {write_file("huge.vtk", "# vtk DataFile Version 4.2\nt\nBINARY\nDATASET POLYDATA\nPOINTS 99999999 float\n"),
         io_malformed, "99999999 points cannot fit"},
        {write_file("empty.stl", ""), io_malformed, "is empty"},
        {write_file("cut.stl", binary_stl(4, 120)), io_malformed, "binary STL cut short: its 4 facets need 284 bytes"},
        {write_file("cut_text.stl", stl_text), io_malformed, "\"endsolid\""},
        {write_file("lost_node.bdf", deck + "CTRIA3,2,1,1,2,4\n"), io_malformed,
         "element 2 uses node 4, which no GRID card defines"},
        {write_file("bad_grid.bdf", "$ deck\nBEGIN BULK\nGRID,1,,0.,0.,0.\nGRID,0,,1.,0.,0.\nENDDATA\n"), io_malformed,
         "line 4: GRID without a valid ID"},
        {write_file("bad_real.bdf", "GRID    1               1.5.3\n"), io_malformed,
         "line 1: GRID coordinate 1 is not a number"},
        {write_file("bad_corner.bdf", deck + "CTRIA3,2,1,1,,3\n"), io_malformed,
         "line 6: CTRIA3 2: corner node 2 is blank"},
        {write_file("lost_system.bdf", "GRID,1,7,0.,0.,0.\n"), io_malformed, "GRID 1 is given in system 7, which no"},
        {write_file("cycle.bdf", "CORD1R,3,1,2,3\nGRID,1,3,0.,0.,0.\nGRID,2,,1.,0.,0.\nGRID,3,,0.,1.,0.\n"),
         io_malformed, "system 3 is defined through itself"},
        {write_file("lost_include.bdf", "INCLUDE 'nowhere.bdf'\n"), io_malformed, "nowhere.bdf\" cannot be read"},
        {write_file("obj.stl", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"), io_malformed, "not STL"},
        {write_file("stl.bdf", stl_text + "endsolid t\n"), io_malformed, "not a NASTRAN deck"},
        {write_file("deck.obj", deck + "ENDDATA\n"), io_malformed, "no \"v\" line"},
        {write_file("stl.neu", stl_text), io_malformed, "not a FEMAP neutral file"},
        {write_file("bad_face.obj", "v 0 0 0\nv 1 0 0\nf 1 2 3\n"), io_malformed,
         "element 1 (FACE_T3) refers to node 3, but there are 2 nodes"},
        {write_file("bad_vertex.obj", "v 0 0\n"), io_malformed, "line 1: a vertex needs three numbers"},
        {write_file("bad_relative.obj", "v 0 0 0\nv 1 0 0\nf -1 -2 -3\n"), io_malformed,
         "line 3: vertex -3 does not exist (2 so far)"},
    };
    for (bad const& b : table) {
        mesh m = every_type();
        io_report r = read_mesh(b.path, m);
        EXPECT_EQ(r.code, b.code) << b.path << ": " << r.message;
        EXPECT_EQ(r.message.rfind(b.path + ": ", 0), 0u) << r.message;
        EXPECT_NE(r.message.find(b.says), std::string::npos) << r.message;
        EXPECT_TRUE(m.empty() && m.blocks.empty()) << b.path;
    }
}

TEST(MeshBadFiles, RefusedMeshesLeaveNoFile)
{
    std::string folder = temp_path("out");
    mkdir(folder.c_str(), 0700);
    std::size_t before = entries(folder);
    mesh far = every_type();
    far.blocks[3].connect(0, 0) = static_cast<unsigned>(far.nbr_nodes());
    mesh flat = every_type();
    flat.pos.resize(4, flat.nbr_nodes());
    mesh short_field = every_type();
    short_field.node_fields.push_back({"T", dense2D<double>()});
    struct bad {
        mesh const* m;
        std::string file;
        int code;
        char const* says;
    };
    std::vector<bad> table = {
        {&far, "far.vtk", io_bad_mesh, "element 4 (FACE_T3) refers to node 177, but there are 176 nodes"},
        {&flat, "flat.bdf", io_bad_mesh, "pos has 4 rows"},
        {&short_field, "field.mesh", io_bad_mesh, "field \"T\" has 0 columns for 176 nodes"},
        {&flat, "flat.xyz", io_unsupported, "unknown extension"},
    };
    for (bad const& b : table) {
        std::string path = folder + "/" + b.file;
        io_report r = write_mesh(path, *b.m);
        EXPECT_EQ(r.code, b.code) << r.message;
        EXPECT_NE(r.message.find(b.says), std::string::npos) << r.message;
    }
    io_report r = write_mesh(folder + "/missing/m.vtk", every_type());
    EXPECT_EQ(r.code, io_cannot_open) << r.message;
    EXPECT_EQ(entries(folder), before);
}

TEST(MeshBadFiles, FullDiskReportedAndNoFileLeft)
{
    std::string folder = temp_path("full");
    mkdir(folder.c_str(), 0700);
    std::size_t before = entries(folder);
    // A file size limit stands in for a full disk: writes past it fail.
    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 1000;
    auto previous = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    io_report r = write_mesh(folder + "/big.vtk", every_type());
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previous);
    EXPECT_EQ(r.code, io_write_failed) << r.message;
    EXPECT_NE(r.message.find("could not all be written"), std::string::npos) << r.message;
    EXPECT_EQ(entries(folder), before);
}

TEST(MeshBadFiles, FilesOfOtherSoftwareReadWholeOrRefused)
{
    for (char const* format : {"nastran", "femap", "stl", "obj"}) {
        std::string folder = exchange_test::corpus_dir(format);
        if (folder.empty()) GTEST_SKIP() << "no files of other software on this machine";
        DIR* d = opendir(folder.c_str());
        ASSERT_NE(d, nullptr);
        while (dirent* entry = readdir(d)) {
            if (entry->d_name[0] == '.') continue;
            std::string path = folder + entry->d_name;
            mesh m;
            io_report r = read_mesh(path, m);
            if (!r) {
                EXPECT_TRUE(m.empty()) << path;
                EXPECT_EQ(r.message.rfind(path + ": ", 0), 0u) << r.message;
                continue;
            }
            EXPECT_EQ(r.elements, m.nbr_elements());
            for (element_block const& b : m.blocks)
                EXPECT_TRUE(check_IDs(b.connect, b.type, static_cast<unsigned>(m.nbr_nodes()))) << path;
        }
        closedir(d);
    }
}
