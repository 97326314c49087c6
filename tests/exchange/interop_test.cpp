// Files written here, loaded by other people's readers when they are installed.
#include "exchange_files.h"
#include "tessarium/stl.h"
#include "tessarium/wavefront_obj.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

// Runs a Python snippet with the system interpreter on a path; its standard output, or "" when
// the interpreter is missing. The snippet prints "missing" when its module cannot be imported.
std::string python(std::string const& module, std::string const& body, std::string const& path)
{
    if (!file_exists("/usr/bin/python3")) return "";
    std::string script = "import sys, warnings\nwarnings.simplefilter('ignore')\ntry:\n    import " + module +
                         "\nexcept Exception:\n    print('missing'); sys.exit(0)\n" + body;
    std::string script_path = write_file("interop.py", script);
    std::string command = "/usr/bin/python3 " + script_path + " " + path + " 2>/dev/null";
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return "";
    std::string out;
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe)) out += buffer;
    pclose(pipe);
    return out;
}

// A closed octahedron: 6 nodes, 8 triangles.
void octahedron(dense2D<double>& pos, dense2D<unsigned>& T3)
{
    pos = matrix<double>(3, {1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1});
    T3 = matrix<unsigned>(3, {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5});
}

}  // namespace

TEST(Interop, NumpyStlLoadsBothForms)
{
    dense2D<double> pos;
    dense2D<unsigned> T3;
    octahedron(pos, T3);
    for (bool text : {true, false}) {
        std::string path = temp_path(text ? "interop_t.stl" : "interop_b.stl");
        ASSERT_EQ(STL_output(path.c_str(), pos, T3, text), 0);
        std::string out = python("stl.mesh",
                                 "m = stl.mesh.Mesh.from_file(sys.argv[1])\n"
                                 "print(len(m.vectors), float(m.vectors[0][1][1]), float(m.normals[0][2]))\n",
                                 path);
        if (out.empty() || out == "missing\n") GTEST_SKIP() << "numpy-stl is not installed";
        // Second vertex of the first facet is node 2 = (0, 1, 0); its normal has z > 0.
        double y = 0, nz = 0;
        int facets = 0;
        ASSERT_EQ(std::sscanf(out.c_str(), "%d %lf %lf", &facets, &y, &nz), 3) << out;
        EXPECT_EQ(facets, 8);
        EXPECT_EQ(y, 1.0);
        EXPECT_GT(nz, 0.0);
    }
}

TEST(Interop, MeshioLoadsStlAndObj)
{
    dense2D<double> pos, none;
    dense2D<unsigned> T3, Q4 = matrix<unsigned>(4, {0, 2, 1, 3});
    octahedron(pos, T3);
    std::string stl = temp_path("interop_m.stl"), obj = temp_path("interop_m.obj");
    ASSERT_EQ(STL_output(stl.c_str(), pos, T3, false), 0);
    ASSERT_EQ(WavefrontOBJ_output(obj.c_str(), pos, none, none, T3, Q4), 0);
    std::string count = "m = meshio.read(sys.argv[1])\n"
                        "print(len(m.points), sum(len(c.data) for c in m.cells if c.type == 'triangle'),"
                        " sum(len(c.data) for c in m.cells if c.type == 'quad'))\n";
    std::string from_stl = python("meshio", count, stl);
    if (from_stl.empty() || from_stl == "missing\n") GTEST_SKIP() << "meshio is not installed";
    int points = 0, triangles = 0, quads = 0;
    ASSERT_EQ(std::sscanf(from_stl.c_str(), "%d %d %d", &points, &triangles, &quads), 3) << from_stl;
    EXPECT_EQ(triangles, 8);
    ASSERT_EQ(std::sscanf(python("meshio", count, obj).c_str(), "%d %d %d", &points, &triangles, &quads), 3);
    EXPECT_EQ(points, 6);
    EXPECT_EQ(triangles, 8);
    EXPECT_EQ(quads, 1);
}
