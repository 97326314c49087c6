// Files of the writers read back by the readers of other programs, where these are installed.
#include "tessarium/ensight.h"
#include "tessarium/medit.h"
#include "tessarium/vtk.h"

#include "exchange/writer_files.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <sstream>
#include <sys/wait.h>

using namespace qv7;
using namespace qv7::tessarium;
using namespace writer_files;

namespace {

using counts = std::map<std::string, long>;

// A block of 3 x 3 x 3 cubes cut into hexahedra, wedges, pyramids and tetrahedra, with its bottom
// faces as quadrangles and triangles. The expected counts are kept as the elements are made.
struct mixed_block {
    static constexpr unsigned k = 3;
    dense2D<double> pos;
    dense2D<unsigned> solids, faces;  // mixed, 8 and 4 rows
    dense2D<unsigned> by_type[5];     // tetrahedra, wedges, hexahedra, triangles, quadrangles
    counts expected;

    static unsigned node(unsigned i, unsigned j, unsigned l) { return i + (k + 1) * (j + (k + 1) * l); }

    void add(std::vector<unsigned> nodes, char const* name, dense2D<unsigned>& mixed, std::size_t rows)
    {
        std::size_t count = nodes.size();
        nodes.resize(rows, NONE_ID);
        mixed.resize(rows, mixed.cols() + 1);
        std::copy(nodes.begin(), nodes.end(), mixed.col(mixed.cols() - 1));
        ++expected[name];
        int slot = count == 4 && rows == 8 ? 0 : count == 6 ? 1 : count == 8 ? 2 : count == 3 ? 3 : count == 4 ? 4 : -1;
        if (slot < 0) return;
        dense2D<unsigned>& pure = by_type[slot];
        pure.resize(count, pure.cols() + 1);
        std::copy(nodes.begin(), nodes.begin() + count, pure.col(pure.cols() - 1));
    }

    mixed_block()
    {
        pos.resize(3, (k + 1) * (k + 1) * (k + 1));
        for (unsigned l = 0; l <= k; ++l)
            for (unsigned j = 0; j <= k; ++j)
                for (unsigned i = 0; i <= k; ++i) {
                    double* x = pos.col(node(i, j, l));
                    x[0] = i, x[1] = j * 1.5, x[2] = l * 0.25;
                }
        unsigned q = 0;
        for (unsigned l = 0; l < k; ++l)
            for (unsigned j = 0; j < k; ++j)
                for (unsigned i = 0; i < k; ++i, ++q) {
                    unsigned c[8] = {node(i, j, l),     node(i + 1, j, l),     node(i + 1, j + 1, l),
                                     node(i, j + 1, l), node(i, j, l + 1),     node(i + 1, j, l + 1),
                                     node(i + 1, j + 1, l + 1), node(i, j + 1, l + 1)};
                    switch (q % 4) {
                    case 0: add({c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7]}, "hexahedron", solids, 8); break;
                    case 1:
                        add({c[0], c[1], c[2], c[4], c[5], c[6]}, "wedge", solids, 8);
                        add({c[0], c[2], c[3], c[4], c[6], c[7]}, "wedge", solids, 8);
                        break;
                    case 2:
                        add({c[0], c[1], c[2], c[3], c[6]}, "pyramid", solids, 8);
                        add({c[0], c[4], c[5], c[6]}, "tetra", solids, 8);
                        add({c[0], c[6], c[7], c[4]}, "tetra", solids, 8);
                        break;
                    default:
                        add({c[0], c[1], c[3], c[4]}, "tetra", solids, 8);
                        add({c[1], c[2], c[3], c[6]}, "tetra", solids, 8);
                        add({c[1], c[4], c[5], c[6]}, "tetra", solids, 8);
                        add({c[3], c[6], c[7], c[4]}, "tetra", solids, 8);
                        add({c[1], c[3], c[4], c[6]}, "tetra", solids, 8);
                    }
                }
        for (unsigned j = 0, s = 0; j < k; ++j)
            for (unsigned i = 0; i < k; ++i, ++s) {
                unsigned a = node(i, j, 0), b = node(i + 1, j, 0), c = node(i + 1, j + 1, 0), d = node(i, j + 1, 0);
                if (s % 2 == 0) {
                    add({a, b, c, d}, "quad", faces, 4);
                } else {
                    add({a, b, c}, "triangle", faces, 4);
                    add({a, c, d}, "triangle", faces, 4);
                }
            }
        expected["points"] = static_cast<long>(pos.cols());
    }
};

// Runs the reading script on a file; false when the reader is not installed.
bool read_back(char const* reader, std::string const& path, counts& found)
{
    std::string command = std::string("/usr/bin/python3 ") + TESSARIUM_SOURCE_DIR + "/tests/exchange/read_back.py " +
                          reader + " '" + path + "' 2>&1";
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return false;
    std::string output;
    std::array<char, 256> chunk;
    while (std::fgets(chunk.data(), chunk.size(), pipe)) output += chunk.data();
    int status = pclose(pipe);
    if (!WIFEXITED(status) || WEXITSTATUS(status) == 77 || WEXITSTATUS(status) == 127) return false;
    EXPECT_EQ(WEXITSTATUS(status), 0) << output;
    std::istringstream lines(output);
    std::string name;
    long n;
    while (lines >> name >> n) found[name] = n;
    return true;
}

#define READ_BACK_OR_SKIP(reader, path, found) \
    if (!read_back(reader, path, found)) GTEST_SKIP() << reader << " is not installed"

}  // namespace

TEST(WritersInterop, MeditReadByMeshioAndGmsh)
{
    mixed_block mesh;
    std::string path = temp_path("interop.mesh");
    ASSERT_EQ(medit_output(path.c_str(), mesh.pos, mesh.solids, mesh.faces, ET_SOLID_MIX, ET_FACE_MIX), 0);
    // Pyramids and wedges come back as (degenerate) hexahedra.
    counts expected = {{"points", mesh.expected["points"]},
                       {"tetra", mesh.expected["tetra"]},
                       {"hexahedron", mesh.expected["hexahedron"] + mesh.expected["wedge"] + mesh.expected["pyramid"]},
                       {"triangle", mesh.expected["triangle"]},
                       {"quad", mesh.expected["quad"]}};
    counts by_meshio, by_gmsh;
    bool meshio = read_back("meshio", path, by_meshio);
    bool gmsh = read_back("gmsh", path, by_gmsh);
    if (!meshio && !gmsh) GTEST_SKIP() << "neither meshio nor gmsh is installed";
    if (meshio) { EXPECT_EQ(by_meshio, expected); }
    if (gmsh) { EXPECT_EQ(by_gmsh, expected); }
}

TEST(WritersInterop, VtkReadByVtkAndMeshio)
{
    mixed_block mesh;
    std::string path = temp_path("interop.vtk");
    ASSERT_EQ(vtk_output(path.c_str(), mesh.pos, mesh.solids, mesh.faces, ET_SOLID_MIX, ET_FACE_MIX), 0);
    counts by_vtk, by_meshio;
    bool vtk = read_back("vtk", path, by_vtk);
    bool meshio = read_back("meshio", path, by_meshio);
    if (!vtk && !meshio) GTEST_SKIP() << "neither VTK nor meshio is installed";
    if (vtk) { EXPECT_EQ(by_vtk, mesh.expected); }
    if (meshio) { EXPECT_EQ(by_meshio, mesh.expected); }
}

TEST(WritersInterop, VtkPolyVertexCellsReadByVtk)
{
    auto pos = coords(3, {0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 2, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 0, 1, 1});
    auto tet10 = connect(10, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    std::string path = temp_path("interop_quadratic.vtk");
    ASSERT_EQ(vtk_output(path.c_str(), pos, tet10, ET_TETRA10), 0);
    counts found;
    READ_BACK_OR_SKIP("vtk", path, found);
    EXPECT_EQ(found, (counts{{"points", 10}, {"tetra", 1}, {"polyvertex", 1}}));
}

TEST(WritersInterop, EnsightReadByVtk)
{
    mixed_block mesh;
    std::string path = temp_path("interop.geo");
    dense1D<int, 8> FEs;
    for (element_type t : {ET_TETRA4, ET_WEDGE6, ET_HEXA8, ET_FACE_T3, ET_FACE_Q4}) FEs.push_back(t);
    ASSERT_EQ(ensight_output(path.c_str(), mesh.pos, mesh.by_type, mesh.by_type + 5, FEs), 0);
    counts found;
    READ_BACK_OR_SKIP("ensight", path, found);
    counts expected = mesh.expected;
    expected.erase("pyramid");  // no EnSight element
    EXPECT_EQ(found, expected);
}
