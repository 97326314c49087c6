#include "mesh_io/mesh_io.h"

#include <cctype>

namespace qv7 {
namespace tessarium {
namespace {

// A reader of EnSight files would go in its row's read column.
constexpr __format_entry formats[] = {
    {"STL", {".stl"}, __read_STL, __write_STL, __write_STL_faithful},
    {"Wavefront OBJ", {".obj"}, __read_OBJ_exact, __write_OBJ, __write_OBJ_faithful, __read_OBJ},
    {"NASTRAN",
     {".bdf", ".nas", ".dat"},
     __read_NASTRAN_exact,
     __write_NASTRAN,
     __write_NASTRAN_faithful,
     __read_NASTRAN},
    {"FEMAP neutral", {".neu"}, __read_FEMAP_exact, __write_FEMAP, __write_FEMAP_faithful, __read_FEMAP},
    {"Medit", {".mesh"}, __read_medit, __write_medit, __write_medit_faithful},
    {"Medit binary", {".meshb"}, __read_meshb, __write_meshb, nullptr},
    {"Medit solution", {".sol"}, __refuse_solution_as_mesh, __write_medit_sol, __write_medit_sol_faithful},
    {"VTK legacy", {".vtk"}, __read_VTK, __write_VTK, __write_VTK_faithful},
    {"EnSight", {".case"}, nullptr, __write_ensight, __write_ensight_faithful},
    {"gmsh", {".msh"}, __read_gmsh, __write_gmsh, nullptr},
};

}  // namespace

__format_entry const* __format_of(std::string const& path)
{
    std::size_t dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] != '.') return nullptr;
    std::string extension = path.substr(dot);
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (__format_entry const& f : formats)
        for (char const* e : f.extensions)
            if (e && extension == e) return &f;
    return nullptr;
}

}  // namespace tessarium
}  // namespace qv7
