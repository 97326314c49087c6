// Files written here, loaded by other people's readers where they are installed.
#include "exchange_files.h"
#include "tessarium/stl.h"
#include "tessarium/wavefront_obj.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

// Output of a Python snippet run by the system interpreter on a path; "" when the interpreter or
// the module is missing.
std::string python(std::string const& module, std::string const& body, std::string const& path)
{
    std::string script = write_file("interop.py",
                                    "import sys, warnings\nwarnings.simplefilter('ignore')\n"
                                    "try:\n    import " +
                                        module +
                                        "\nexcept Exception:\n"
                                        "    sys.exit(0)\n" +
                                        body);
    std::FILE* pipe = popen(("/usr/bin/python3 " + script + " " + path + " 2>/dev/null").c_str(), "r");
    if (!pipe) return "";
    std::string out;
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe)) out += buffer;
    pclose(pipe);
    return out;
}

}  // namespace

TEST(Interop, OtherReadersLoadOurFiles)
{
    // A closed octahedron, and a quadrilateral over four of its nodes for the OBJ file.
    dense2D<double> pos = matrix<double>(3, {1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1}), none;
    dense2D<unsigned> T3 =
        matrix<unsigned>(3, {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5});
    std::string text = temp_path("i_t.stl"), binary = temp_path("i_b.stl"), obj = temp_path("i.obj");
    ASSERT_EQ(STL_output(text.c_str(), pos, T3, true), 0);
    ASSERT_EQ(STL_output(binary.c_str(), pos, T3, false), 0);
    ASSERT_EQ(WavefrontOBJ_output(obj.c_str(), pos, none, none, T3, matrix<unsigned>(4, {0, 2, 1, 3})), 0);

    // numpy-stl: facet count, second vertex of the first facet (node 2), z of its normal.
    std::string numpy_stl =
        "m = stl.mesh.Mesh.from_file(sys.argv[1])\n"
        "print(len(m.vectors), float(m.vectors[0][1][1]), float(m.normals[0][2]) > 0)\n";
    std::string meshio =
        "m = meshio.read(sys.argv[1])\nprint(len(m.points), *[sum(len(c.data) for c in m.cells "
        "if c.type == t) for t in ('triangle', 'quad')])\n";
    int checked = 0;
    for (auto const& [module, body, path, expected] :
         std::vector<std::tuple<char const*, std::string, std::string, char const*>>{
             {"stl.mesh", numpy_stl, text, "8 1.0 True\n"},
             {"stl.mesh", numpy_stl, binary, "8 1.0 True\n"},
             {"meshio", meshio, obj, "6 8 1\n"}}) {
        std::string out = python(module, body, path);
        if (out.empty()) continue;
        EXPECT_EQ(out, expected) << module << " " << path;
        ++checked;
    }
    // meshio reads the binary STL too: 8 triangles, whatever it makes of the points.
    std::string stl_by_meshio = python("meshio", meshio, binary);
    if (!stl_by_meshio.empty()) {
        EXPECT_EQ(stl_by_meshio.substr(stl_by_meshio.find(' ')), " 8 0\n");
    }
    if (checked == 0) GTEST_SKIP() << "neither numpy-stl nor meshio is installed";
}
