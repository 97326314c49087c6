// Files of the writers read back by the readers of other programs, where these are installed.
#include "exchange_files.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <map>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

using counts = std::map<std::string, long>;

bool read_back(char const* reader, std::string const& path, counts& found)
{
    return run_read_script("tests/exchange/read_back.py", reader, path, found);
}

#define READ_BACK_OR_SKIP(reader, path, found) \
    if (!read_back(reader, path, found)) GTEST_SKIP() << reader << " is not installed"

// Each reader of a pair that is installed finds `expected`; skipped when neither is.
void expect_read_back(char const* reader1, char const* reader2, std::string const& path, counts const& expected)
{
    counts found1, found2;
    bool one = read_back(reader1, path, found1), two = read_back(reader2, path, found2);
    if (!one && !two) GTEST_SKIP() << "neither " << reader1 << " nor " << reader2 << " is installed";
    if (one) {
        EXPECT_EQ(found1, expected) << reader1;
    }
    if (two) {
        EXPECT_EQ(found2, expected) << reader2;
    }
}

}  // namespace

// The mixed mesh over cube_and_apex: two tetrahedra, a hexahedron, a pyramid and a wedge, two
// triangles and a quadrangle.
TEST(WritersInterop, MeditReadByMeshioAndGmsh)
{
    std::string path = temp_path("interop.mesh");
    ASSERT_EQ(medit_output(path.c_str(), cube_and_apex(), mixed_solids(), mixed_faces(), ET_SOLID_MIX, ET_FACE_MIX), 0);
    // The pyramid and the wedge come back as (degenerate) hexahedra.
    expect_read_back("meshio", "gmsh", path,
                     {{"points", 9}, {"tetra", 2}, {"hexahedron", 3}, {"triangle", 2}, {"quad", 1}});
}

TEST(WritersInterop, VtkReadByVtkAndMeshio)
{
    std::string path = temp_path("interop.vtk");
    ASSERT_EQ(vtk_output(path.c_str(), cube_and_apex(), mixed_solids(), mixed_faces(), ET_SOLID_MIX, ET_FACE_MIX), 0);
    expect_read_back(
        "vtk", "meshio", path,
        {{"points", 9}, {"tetra", 2}, {"hexahedron", 1}, {"pyramid", 1}, {"wedge", 1}, {"triangle", 2}, {"quad", 1}});
}

TEST(WritersInterop, VtkPolyVertexCellsReadByVtk)
{
    auto pos = coords(3, {0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 2, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 0, 1, 1});
    std::string path = temp_path("interop_quadratic.vtk");
    ASSERT_EQ(vtk_output(path.c_str(), pos, counting(10), ET_TETRA10), 0);
    counts found;
    READ_BACK_OR_SKIP("vtk", path, found);
    EXPECT_EQ(found, (counts{{"points", 10}, {"tetra", 1}, {"polyvertex", 1}}));
}

TEST(WritersInterop, EnsightReadByVtk)
{
    dense2D<unsigned> groups[] = {connect(4, {0, 1, 2, 4, 1, 2, 3, 8}), connect(6, {0, 1, 2, 4, 5, 6}), counting(8),
                                  connect(3, {0, 1, 2, 5, 6, 7}), connect(4, {4, 5, 6, 7})};
    dense1D<int, 8> FEs = list<int>({ET_TETRA4, ET_WEDGE6, ET_HEXA8, ET_FACE_T3, ET_FACE_Q4});
    std::string path = temp_path("interop.geo");
    ASSERT_EQ(ensight_output(path.c_str(), cube_and_apex(), groups, groups + 5, FEs), 0);
    counts found;
    READ_BACK_OR_SKIP("ensight", path, found);
    EXPECT_EQ(found,
              (counts{{"points", 9}, {"tetra", 2}, {"wedge", 1}, {"hexahedron", 1}, {"triangle", 2}, {"quad", 1}}));
}

TEST(WritersInterop, NastranReadByMeshioAndGmsh)
{
    // Two elements of each type, the second one node further on, over 21 nodes that are all used.
    auto write_deck = [](char const* name, std::vector<std::pair<element_type, char const*>> const& types,
                         counts& expected) {
        std::size_t n = types.size();
        dense2D<double> pos;
        pos.resize(3, 21, 0.0);
        for (std::size_t j = 0; j < 21; ++j) pos(0, j) = double(j), pos(1, j) = double(j * j % 7), pos(2, j) = -0.5 * j;
        dense2D<unsigned> M;
        M.resize(20, 2 * n, NONE_ID);
        dense1D<unsigned, 8> indices, PIDs;
        dense1D<int, 8> FEs;
        expected = {{"points", 21}};
        for (std::size_t g = 0; g < n; ++g) {
            indices.push_back(unsigned(2 * g));
            FEs.push_back(types[g].first);
            for (unsigned c = 0; c < 2; ++c) {
                for (unsigned i = 0; i < nbr_nodes(types[g].first); ++i) M(i, 2 * g + c) = i + c;
                PIDs.push_back(unsigned(g + 1));
            }
            expected[types[g].second] += 2;
        }
        indices.push_back(unsigned(2 * n));
        std::string path = temp_path(name);
        EXPECT_EQ(NASTRAN_output(path.c_str(), pos, M, indices, FEs, PIDs), 0);
        return path;
    };
    std::vector<std::pair<element_type, char const*>> types = {
        {ET_EDGE2, "line"},    {ET_FACE_T3, "triangle"}, {ET_FACE_Q4, "quad"},       {ET_FACE_T6, "triangle6"},
        {ET_FACE_Q8, "quad8"}, {ET_TETRA4, "tetra"},     {ET_TETRA10, "tetra10"},    {ET_PYRAMID5, "pyramid"},
        {ET_WEDGE6, "wedge"},  {ET_HEXA8, "hexahedron"}, {ET_HEXA20, "hexahedron20"}};
    counts expected, found;
    std::string path = write_deck("meshio.bdf", types, expected);
    bool meshio = read_back("meshio", path, found);
    if (meshio) {
        EXPECT_EQ(found, expected);
    }
    // This meshio knows no 13-node pyramid and no 15-node wedge; gmsh keeps the corners of the
    // pyramid.
    types.push_back({ET_PYRAMID13, "pyramid"});
    types.push_back({ET_WEDGE15, "wedge15"});
    path = write_deck("gmsh.bdf", types, expected);
    found.clear();
    bool gmsh = read_back("gmsh", path, found);
    if (gmsh) {
        EXPECT_EQ(found, expected);
    }
    if (!meshio && !gmsh) GTEST_SKIP() << "neither meshio nor gmsh is installed";
}
