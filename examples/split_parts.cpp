// Splits a mesh into the pieces that hang together through shared boundaries, and writes the
// skin of each piece to a file of its own: binary STL for triangles, Medit otherwise. A surface
// is its own skin; a solid's skin is its free faces.
//
//   split_parts [input.stl | input.nas [output-prefix]]
//
// An input that does not end in ".stl" is read as a NASTRAN deck of one element type. Without
// arguments it reads the sample beside this source, examples/data/three_parts.stl (a tetrahedron,
// a cube and an octahedron, apart), and writes part0.stl, part1.stl and part2.stl here.
#include <tessarium/tessarium.h>

#include <cctype>
#include <cstdio>
#include <string>

namespace {

using namespace qv7;

std::string sample_path()
{
    std::string source = __FILE__;
    return source.substr(0, source.find_last_of('/') + 1) + "data/three_parts.stl";
}

bool ends_with_stl(std::string const& name)
{
    if (name.size() < 4) return false;
    std::string tail = name.substr(name.size() - 4);
    for (char& c : tail) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return tail == ".stl";
}

int read_mesh(std::string const& input, dense2D<double>& pos, dense2D<unsigned>& connectM, element_type& type)
{
    type = ET_FACE_T3;
    if (ends_with_stl(input)) return tessarium::STL_input(input.c_str(), pos, connectM);
    int code = tessarium::NASTRAN_input(input.c_str(), pos, connectM, type);
    return code < 0 ? code : 0;
}

// Writes one skin; the face type follows from the rows and the element type of the mesh.
int write_skin(std::string const& prefix, dense2D<double> const& pos, dense2D<unsigned> const& skin, element_type type,
               std::string& path)
{
    if (skin.rows() == 3) {
        path = prefix + ".stl";
        return tessarium::STL_output(path.c_str(), pos, skin, false);
    }
    path = prefix + ".mesh";
    bool quadrangles = type == ET_FACE_Q4 || type == ET_HEXA8;
    return tessarium::medit_output(path.c_str(), pos, skin, quadrangles ? ET_FACE_Q4 : ET_FACE_MIX);
}

}  // namespace

int main(int argc, char** argv)
{
    std::string input = argc > 1 ? argv[1] : sample_path();
    std::string prefix = argc > 2 ? argv[2] : "part";

    dense2D<double> pos;
    dense2D<unsigned> connectM, neighbors, skin;
    dense1D<unsigned, 8> offsets, skin_elements;
    element_type type = ET_NONE;
    if (int code = read_mesh(input, pos, connectM, type)) {
        std::fprintf(stderr, "%s: could not be read (%d)\n", input.c_str(), code);
        return 1;
    }
    type = __narrow(type, connectM.rows());
    if (tessarium::element_dim(type) < 2) {
        std::fprintf(stderr, "%s: holds no faces or solids of one type\n", input.c_str());
        return 1;
    }
    // Pieces made contiguous; a solid's skin listed with the element behind each face.
    unsigned stride = 1;
    int code = tessarium::get_neighbors(connectM, type, false, neighbors);
    if (code == 0) code = tessarium::get_subdomains(connectM, neighbors, offsets);
    bool solid = tessarium::element_dim(type) == 3;
    if (code == 0 && solid) code = tessarium::get_mesh_boundaries(connectM, neighbors, type, skin);
    if (code == 0 && solid)
        code = tessarium::get_mesh_bounding_elements(connectM, neighbors, type, skin_elements, stride);
    if (code != 0) {
        std::fprintf(stderr, "%s: connectivity failed (%d)\n", input.c_str(), code);
        return 1;
    }
    std::size_t pieces = offsets.size() - 1;
    std::printf("%s: %zu elements in %zu piece%s\n", input.c_str(), connectM.cols(), pieces, pieces == 1 ? "" : "s");

    bool ok = true;
    for (std::size_t s = 0, face = 0; s < pieces; ++s) {
        unsigned first = offsets[s], end = offsets[s + 1];
        dense2D<unsigned> piece_skin;
        if (solid) {  // free faces come by ascending element, so a piece's faces are a run
            std::size_t begin = face;
            while (face < skin_elements.size() && skin_elements[face] / stride < end) ++face;
            piece_skin.copy(skin.submatrix(begin, face - begin, skin.rows()));
        } else {
            piece_skin.copy(connectM.submatrix(first, end - first, connectM.rows()));
        }
        std::string path;
        int written = write_skin(prefix + std::to_string(s), pos, piece_skin, type, path);
        std::printf("  piece %zu: %u elements, %zu skin faces -> %s%s\n", s, end - first, piece_skin.cols(),
                    path.c_str(), written == 0 ? "" : " (write failed)");
        ok = ok && written == 0;
    }
    return ok ? 0 : 1;
}
