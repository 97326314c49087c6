// Medit text mesh, one section per keyword, and its keyword solution file of node fields.
#include "mesh_io/medit_solutions.h"
#include "mesh_io/text_output.h"

namespace qv7 {
namespace tessarium {
namespace {

// Sections in the order the keywords are usually listed.
constexpr element_type section_order[] = {ET_EDGE2,    ET_FACE_T3, ET_FACE_Q4, ET_TETRA4,
                                          ET_PYRAMID5, ET_WEDGE6,  ET_HEXA8};

void put_header(__text_sink& out, std::size_t dim)
{
    out.text("MeshVersionFormatted 2\n\nDimension ").integer(dim).text("\n\n");
}

// The .sol beside a .mesh.
std::string solution_path(std::string const& path)
{
    std::size_t dot = path.find_last_of('.');
    return path.substr(0, dot) + ".sol";
}

int write_solution(__output_files& files, std::string const& path, mesh const& m, io_report& r)
{
    std::size_t dim = m.pos.rows() == 2 ? 2 : 3;
    std::vector<mesh_field const*> kept;
    for (mesh_field const& f : m.node_fields) {
        if (__solution_kind(f.values.rows(), dim))
            kept.push_back(&f);
        else
            __pass_over(r, "node field " + f.name, 1);
    }
    __pass_over_fields(r, m.element_fields, "element");
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    __text_sink out(stream);
    put_header(out, dim);
    if (!kept.empty()) {
        out.text("SolAtVertices\n").integer(m.nbr_nodes()).put('\n').integer(kept.size());
        for (mesh_field const* f : kept) out.put(' ').integer(__solution_kind(f->values.rows(), dim));
        out.put('\n');
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j) {
            char separator = 0;
            for (mesh_field const* f : kept)
                for (std::size_t i = 0; i < f->values.rows(); ++i, separator = ' ') {
                    if (separator) out.put(separator);
                    out.shortest(f->values(i, j));
                }
            out.put('\n');
        }
        out.put('\n');
    }
    out.text("End\n");
    return 0;
}

}  // namespace

int __write_medit(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    __count_written(r, m, __in_table<__medit_cells>);
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    {
        __text_sink out(stream);
        std::size_t dim = m.pos.rows() == 2 ? 2 : 3;
        put_header(out, dim);
        out.text("Vertices\n").integer(m.nbr_nodes()).put('\n');
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j) {
            for (std::size_t i = 0; i < dim; ++i) out.shortest(m.pos(i, j)).put(' ');
            out.text("0\n");
        }
        for (element_type type : section_order) {
            __cell_kind const& kind = __medit_cells[type];
            std::size_t count = 0;
            for (element_block const& b : m.blocks) count += b.type == type ? b.connect.cols() : 0;
            if (count == 0) continue;
            out.put('\n').text(kind.name).put('\n').integer(count).put('\n');
            for (element_block const& b : m.blocks) {
                if (b.type != type) continue;
                for (std::size_t e = 0; e < b.connect.cols(); ++e) {
                    unsigned const* nodes = b.connect.col(e);
                    for (unsigned p = 0; p < kind.count; ++p) out.integer(nodes[kind.nodes[p]] + 1u).put(' ');
                    out.integer(__reference(b, e, 0)).put('\n');
                }
            }
        }
        out.text("\nEnd\n");
    }
    if (!m.node_IDs.empty()) __pass_over(r, "node IDs", m.nbr_nodes());
    if (m.node_fields.empty()) {
        __pass_over_fields(r, m.element_fields, "element");
        return 0;
    }
    return write_solution(files, solution_path(path), m, r);
}

int __write_medit_sol(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    if (m.node_fields.empty()) return __fail(r, io_bad_mesh, path, "no node field to write");
    r.nodes = m.nbr_nodes();
    return write_solution(files, path, m, r);
}

}  // namespace tessarium
}  // namespace qv7
