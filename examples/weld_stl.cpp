// From a triangle soup to a clean mesh: reads an STL file (text or binary), which welds the
// triangles into a connected surface, reports what it found and writes the mesh back as binary
// STL, Wavefront OBJ and Medit.
//
//   weld_stl [input.stl [output-prefix]]
//
// Without arguments it reads the sample shipped beside this source, examples/data/cube.stl, and
// writes welded.stl, welded.obj and welded.mesh in the current folder.
#include <tessarium/tessarium.h>

#include <cstdio>
#include <string>

namespace {

std::string sample_path()
{
    std::string source = __FILE__;
    return source.substr(0, source.find_last_of('/') + 1) + "data/cube.stl";
}

bool report(char const* what, std::string const& path, int code)
{
    if (code == 0)
        std::printf("  wrote %-5s %s\n", what, path.c_str());
    else
        std::fprintf(stderr, "  %s writer returned %d for %s\n", what, code, path.c_str());
    return code == 0;
}

}  // namespace

int main(int argc, char** argv)
{
    using namespace qv7;
    std::string input = argc > 1 ? argv[1] : sample_path();
    std::string prefix = argc > 2 ? argv[2] : "welded";

    dense2D<double> pos;
    dense2D<unsigned> triangles;
    int code = tessarium::STL_input(input.c_str(), pos, triangles);
    if (code != 0) {
        std::fprintf(stderr, "%s: STL_input returned %d\n", input.c_str(), code);
        return 1;
    }
    std::size_t corners = 3 * triangles.cols();
    std::printf("%s\n", input.c_str());
    std::printf("  nodes      %zu\n", pos.cols());
    std::printf("  triangles  %zu\n", triangles.cols());
    std::printf("  welded     %zu triangle corners into %zu nodes (%zu copies merged)\n", corners, pos.cols(),
                corners - pos.cols());

    bool ok = report("STL", prefix + ".stl", tessarium::STL_output((prefix + ".stl").c_str(), pos, triangles, false));
    ok = report("OBJ", prefix + ".obj",
                tessarium::WavefrontOBJ_output((prefix + ".obj").c_str(), pos, triangles, ET_FACE_T3)) &&
         ok;
    ok = report("Medit", prefix + ".mesh",
                tessarium::medit_output((prefix + ".mesh").c_str(), pos, triangles, ET_FACE_T3)) &&
         ok;
    return ok ? 0 : 1;
}
