// Wavefront OBJ through the format function; normals and texture coordinates given for every
// vertex become the node fields "normal" and "texture".
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "tessarium/wavefront_obj.h"

#include <sstream>

namespace qv7 {
namespace tessarium {
namespace {

void keep_per_node(mesh& m, char const* name, dense2D<double> const& values, char const* keyword, io_report& r)
{
    if (values.empty()) return;
    if (values.cols() == m.nbr_nodes())
        m.node_fields.push_back({name, values});
    else
        __pass_over(r, std::string(keyword) + " lines (not one per vertex)", values.cols());
}

void add_block(mesh& m, element_type type, dense2D<unsigned> const& connect)
{
    if (connect.cols() == 0) return;
    element_block b;
    b.type = type;
    b.connect = connect;
    m.blocks.push_back(b);
}

// What the format function passes over without a word: lines of other keywords, and faces of
// other than three or four vertices.
void count_passed_over(std::string const& path, io_report& r)
{
    std::istringstream in(__file_text(path));
    std::string line, keyword, vertex;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        if (!(words >> keyword) || keyword == "v" || keyword == "vn" || keyword == "vt" || keyword[0] == '#') continue;
        if (keyword != "f") {
            __pass_over(r, "\"" + keyword + "\" lines", 1);
            continue;
        }
        std::size_t n = 0;
        while (words >> vertex) ++n;
        if (n != 3 && n != 4) __pass_over(r, "faces of " + std::to_string(n) + " vertices", 1);
    }
}

}  // namespace

int __read_OBJ(std::string const& path, mesh& m, io_report& r)
{
    dense2D<double> normals, textures;
    dense2D<unsigned> T3, Q4;
    int code = WavefrontOBJ_input(path.c_str(), m.pos, normals, textures, T3, Q4);
    if (code == -199) return __fail(r, io_no_memory, path, "not enough memory for the vertices and faces");
    if (code < 0) return __fail(r, io_malformed, path, "a \"v\", \"vn\", \"vt\" or \"f\" line is malformed");
    if (m.pos.cols() == 0) return __fail(r, io_malformed, path, "no \"v\" line: not a Wavefront OBJ file");
    count_passed_over(path, r);
    keep_per_node(m, "normal", normals, "vn", r);
    keep_per_node(m, "texture", textures, "vt", r);
    add_block(m, ET_FACE_T3, T3);
    add_block(m, ET_FACE_Q4, Q4);
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
