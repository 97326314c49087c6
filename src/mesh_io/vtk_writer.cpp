// Legacy VTK text: full-precision points, each element as one cell of its own kind, references
// and fields as point and cell data.
#include "mesh_io/text_output.h"

namespace qv7 {
namespace tessarium {
namespace {

bool has_references(mesh const& m)
{
    for (element_block const& b : m.blocks)
        if (!b.references.empty() && __vtk_cells[b.type].name) return true;
    return false;
}

void put_field(__text_sink& out, mesh const& m, mesh_field const& f, bool per_element)
{
    std::size_t tuples = per_element ? 0 : f.values.cols();
    if (per_element)
        for (element_block const& b : m.blocks) tuples += __vtk_cells[b.type].name ? b.connect.cols() : 0;
    out.text(f.name.c_str()).put(' ').integer(f.values.rows()).put(' ').integer(tuples).text(" double");
    std::size_t e = 0;
    auto tuple = [&](std::size_t j) {
        for (std::size_t i = 0; i < f.values.rows(); ++i) out.put(i ? ' ' : '\n').shortest(f.values(i, j));
    };
    if (!per_element)
        for (std::size_t j = 0; j < tuples; ++j) tuple(j);
    else
        for (element_block const& b : m.blocks) {
            bool kept = __vtk_cells[b.type].name != nullptr;
            for (std::size_t k = 0; k < b.connect.cols(); ++k, ++e)
                if (kept) tuple(e);
        }
    out.put('\n');
}

}  // namespace

int __write_VTK(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    __count_written(r, m, __in_table<__vtk_cells>);
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    __text_sink out(stream);
    out.text("# vtk DataFile Version 4.2\nwritten by tessarium\nASCII\nDATASET UNSTRUCTURED_GRID\nPOINTS ")
        .integer(m.nbr_nodes())
        .text(" double\n");
    for (std::size_t j = 0; j < m.nbr_nodes(); ++j) __put_point(out, m.pos, j, ' '), out.put('\n');

    std::size_t cells = 0, size = 0;
    for (element_block const& b : m.blocks)
        if (__vtk_cells[b.type].name) cells += b.connect.cols(), size += b.connect.cols() * (b.connect.rows() + 1);
    out.text("CELLS ").integer(cells).put(' ').integer(size).put('\n');
    for (element_block const& b : m.blocks) {
        __cell_kind const& kind = __vtk_cells[b.type];
        if (!kind.name) continue;
        for (std::size_t e = 0; e < b.connect.cols(); ++e) {
            unsigned const* nodes = b.connect.col(e);
            out.integer(kind.count);
            for (unsigned p = 0; p < kind.count; ++p) out.put(' ').integer(nodes[kind.nodes[p]]);
            out.put('\n');
        }
    }
    out.text("CELL_TYPES ").integer(cells).put('\n');
    for (element_block const& b : m.blocks) {
        __cell_kind const& kind = __vtk_cells[b.type];
        if (!kind.name) continue;
        for (std::size_t e = 0; e < b.connect.cols(); ++e) out.integer(kind.code).put('\n');
    }

    bool references = has_references(m);
    std::size_t arrays = m.element_fields.size() + (references ? 1 : 0);
    if (arrays != 0) {
        out.text("CELL_DATA ").integer(cells).text("\nFIELD FieldData ").integer(arrays).put('\n');
        if (references) {
            out.text("reference 1 ").integer(cells).text(" int\n");
            for (element_block const& b : m.blocks)
                if (__vtk_cells[b.type].name)
                    for (std::size_t e = 0; e < b.connect.cols(); ++e) out.integer(__reference(b, e, 0)).put('\n');
        }
        for (mesh_field const& f : m.element_fields) put_field(out, m, f, true);
    }
    if (!m.node_fields.empty()) {
        out.text("POINT_DATA ")
            .integer(m.nbr_nodes())
            .text("\nFIELD FieldData ")
            .integer(m.node_fields.size())
            .put('\n');
        for (mesh_field const& f : m.node_fields) put_field(out, m, f, false);
    }
    if (!m.node_IDs.empty()) __pass_over(r, "node IDs", m.nbr_nodes());
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
