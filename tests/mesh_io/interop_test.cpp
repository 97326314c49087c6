// The portable writers' files read by other programs, where these are installed: equal counts,
// the right cell kinds, positive volumes in each reader's own order, mid nodes on their edges.
#include "../exchange/exchange_files.h"
#include "mesh_files.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace mesh_io_test;
using exchange_test::temp_path;

namespace {

using counts = std::map<std::string, long>;

// The kind names of meshio, which the script uses for every reader.
char const* kind_name(element_type type)
{
    switch (type) {
    case ET_NODE:
        return "vertex";
    case ET_EDGE2:
        return "line";
    case ET_EDGE3:
        return "line3";
    case ET_FACE_T3:
        return "triangle";
    case ET_FACE_Q4:
        return "quad";
    case ET_FACE_T6:
        return "triangle6";
    case ET_FACE_Q8:
        return "quad8";
    case ET_FACE_Q9:
        return "quad9";
    case ET_TETRA4:
        return "tetra";
    case ET_TETRA10:
        return "tetra10";
    case ET_PYRAMID5:
        return "pyramid";
    case ET_PYRAMID13:
        return "pyramid13";
    case ET_WEDGE6:
        return "wedge";
    case ET_WEDGE15:
        return "wedge15";
    case ET_HEXA8:
        return "hexahedron";
    case ET_HEXA20:
        return "hexahedron20";
    default:
        return "none";
    }
}

counts expected(mesh const& m, long points)
{
    counts c{{"points", points}};
    for (element_block const& b : m.blocks) c[kind_name(b.type)] += static_cast<long>(b.connect.cols());
    return c;
}

struct case_ {
    char const* file;
    char const* reader;
    std::vector<element_type> left_out;     // by the writer: the format has no such cell
    std::vector<element_type> cannot_read;  // by the reader; not written
    bool all_nodes;                         // the reader keeps nodes no element uses
};

bool among(std::vector<element_type> const& types, element_type t)
{
    return std::find(types.begin(), types.end(), t) != types.end();
}

}  // namespace

TEST(MeshInterop, PortableFilesReadByOtherPrograms)
{
    std::vector<element_type> no_vtk = {ET_PYRAMID14, ET_WEDGE18, ET_HEXA27};
    std::vector<element_type> higher = {ET_NODE,      ET_EDGE3,     ET_FACE_T6, ET_FACE_Q8, ET_FACE_Q9, ET_TETRA10,
                                        ET_PYRAMID13, ET_PYRAMID14, ET_WEDGE15, ET_WEDGE18, ET_HEXA20,  ET_HEXA27};
    std::vector<element_type> no_nastran = {ET_NODE, ET_EDGE3, ET_FACE_Q9, ET_PYRAMID14, ET_WEDGE18, ET_HEXA27};
    std::vector<element_type> no_ensight = {ET_FACE_Q9, ET_PYRAMID14, ET_WEDGE18, ET_HEXA27};
    std::vector<element_type> but_triangles, but_faces;
    for (int t = ET_NODE; t <= ET_HEXA27; ++t) {
        if (t != ET_FACE_T3) but_triangles.push_back(static_cast<element_type>(t));
        if (t != ET_FACE_T3 && t != ET_FACE_Q4) but_faces.push_back(static_cast<element_type>(t));
    }
    // This meshio knows neither 13-node pyramids nor 15-node wedges; gmsh's Medit reader takes no
    // pyramids or prisms and keeps only the nodes elements use.
    std::vector<element_type> meshio_gaps = {ET_PYRAMID13, ET_WEDGE15};
    std::vector<case_> cases = {
        {".vtk", "vtk", no_vtk, {}, true},
        {".vtk", "meshio", no_vtk, meshio_gaps, true},
        {".mesh", "meshio", higher, {}, true},
        {".mesh", "gmsh", higher, {ET_PYRAMID5, ET_WEDGE6}, false},
        {".bdf", "meshio", no_nastran, meshio_gaps, true},
        {".case", "vtk", no_ensight, {}, true},
        {".msh", "gmsh", no_vtk, {}, true},
        {".msh", "meshio", no_vtk, meshio_gaps, true},
        {".obj", "vtk", but_faces, {}, true},
        {".obj", "meshio", but_faces, {}, true},
        {".stl", "numpy-stl", but_triangles, {}, false},
        {".stl", "vtk", but_triangles, {}, false},
        {".stl", "meshio", but_triangles, {}, false},
    };
    int read = 0;
    for (case_ const& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " read by " + c.reader);
        mesh written = only(every_type(), [&](element_type t) { return !among(c.cannot_read, t); });
        std::string path = temp_path(std::string("interop_") + c.reader + c.file);
        io_report w = write_mesh(path, written);
        ASSERT_TRUE(w) << w.message;
        counts found;
        if (!exchange_test::run_read_script("tests/mesh_io/read_volumes.py", c.reader, path, found)) continue;
        ++read;
        for (auto it = found.begin(); it != found.end();)  // the data arrays have their own test
            it = it->first.find("_data_") != std::string::npos ? found.erase(it) : std::next(it);
        mesh kept = only(written, [&](element_type t) { return !among(c.left_out, t); });
        long used = 0;  // every element has nodes of its own
        for (element_block const& b : kept.blocks) used += static_cast<long>(b.connect.size());
        EXPECT_EQ(found, expected(kept, c.all_nodes ? static_cast<long>(written.nbr_nodes()) : used));
    }
    if (read == 0) GTEST_SKIP() << "none of meshio, VTK, gmsh and numpy-stl is installed";
}

TEST(MeshInterop, VtkFieldsAndReferencesReadByMeshio)
{
    mesh m = only(every_type(), [](element_type t) { return t == ET_TETRA4 || t == ET_HEXA8; });
    m.node_fields.push_back({"T", dense2D<double>()});
    m.node_fields.back().values.resize(1, m.nbr_nodes(), 0.5);
    m.element_fields.push_back({"stress", dense2D<double>()});
    m.element_fields.back().values.resize(6, 2, 1e-300);
    std::string path = temp_path("fields.vtk");
    ASSERT_TRUE(write_mesh(path, m));
    counts found;
    if (!exchange_test::run_read_script("tests/mesh_io/read_volumes.py", "meshio", path, found))
        GTEST_SKIP() << "meshio is not installed";
    counts want = expected(m, static_cast<long>(m.nbr_nodes()));
    want.insert({{"point_data_T", 1}, {"cell_data_stress", 6}, {"cell_data_reference", 1}});
    EXPECT_EQ(found, want);
}
