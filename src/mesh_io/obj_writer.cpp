// Wavefront OBJ: full-precision vertices, triangles and quadrangles, with the node fields named
// "normal" (3 rows) and "texture" (2 rows) as vertex normals and texture coordinates.
#include "mesh_io/text_output.h"

namespace qv7 {
namespace tessarium {
namespace {

bool faces_only(element_type type)
{
    return type == ET_FACE_T3 || type == ET_FACE_Q4;
}

mesh_field const* field_named(mesh const& m, char const* name, std::size_t rows)
{
    for (mesh_field const& f : m.node_fields)
        if (f.name == name && f.values.rows() == rows) return &f;
    return nullptr;
}

}  // namespace

int __write_OBJ(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    __count_written(r, m, faces_only);
    mesh_field const* normals = field_named(m, "normal", 3);
    mesh_field const* textures = field_named(m, "texture", 2);
    for (mesh_field const& f : m.node_fields)
        if (&f != normals && &f != textures) __pass_over(r, "node field " + f.name, 1);
    __pass_over_fields(r, m.element_fields, "element");
    __pass_over_numbers(r, m);
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    __text_sink out(stream);
    out.text("# written by tessarium\n");
    for (std::size_t j = 0; j < m.nbr_nodes(); ++j) out.text("v "), __put_point(out, m.pos, j, ' '), out.put('\n');
    if (textures)
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j)
            out.text("vt ").shortest(textures->values(0, j)).put(' ').shortest(textures->values(1, j)).put('\n');
    if (normals)
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j)
            out.text("vn ")
                .shortest(normals->values(0, j))
                .put(' ')
                .shortest(normals->values(1, j))
                .put(' ')
                .shortest(normals->values(2, j))
                .put('\n');
    for (element_block const& b : m.blocks) {
        if (!faces_only(b.type)) continue;
        for (std::size_t e = 0; e < b.connect.cols(); ++e) {
            out.put('f');
            for (std::size_t i = 0; i < b.connect.rows(); ++i) {
                unsigned v = b.connect(i, e) + 1;
                out.put(' ').integer(v);
                if (textures) out.put('/').integer(v);
                if (normals) out.text(textures ? "/" : "//").integer(v);
            }
            out.put('\n');
        }
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
