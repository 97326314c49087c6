// NASTRAN bulk data in free-field form: grids with full-precision coordinates, one card per
// element with continuation lines of eight fields, property IDs from the references.
#include "mesh_io/text_output.h"

namespace qv7 {
namespace tessarium {
namespace {

// An ID field holds eight digits.
constexpr std::size_t largest_ID = 99999999;

bool IDs_fit(std::string const& path, mesh const& m, io_report& r)
{
    std::size_t elements = m.nbr_elements();
    if (m.node_IDs.empty() ? m.nbr_nodes() > largest_ID : false)
        return __fail(r, io_bad_mesh, path, "more than 99999999 nodes do not fit a NASTRAN ID field"), false;
    for (std::size_t j = 0; j < m.node_IDs.size(); ++j)
        if (m.node_IDs[j] > largest_ID)
            return __fail(r, io_bad_mesh, path, __ordinal("node", j) + " has an ID of more than eight digits"), false;
    if (elements > largest_ID)
        return __fail(r, io_bad_mesh, path, "more than 99999999 elements do not fit a NASTRAN ID field"), false;
    for (element_block const& b : m.blocks)
        for (unsigned reference : b.references)
            if (reference > largest_ID)
                return __fail(r, io_bad_mesh, path, "a reference of more than eight digits is no property ID"), false;
    return true;
}

}  // namespace

int __write_NASTRAN(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    if (!IDs_fit(path, m, r)) return r.code;
    __count_written(r, m, __in_table<__nastran_cells>);
    __pass_over_fields(r, m);
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    __text_sink out(stream);
    out.text("$ written by tessarium\nBEGIN BULK\n");
    for (std::size_t j = 0; j < m.nbr_nodes(); ++j) {
        out.text("GRID,").integer(__node_number(m, j)).text(",,");
        __put_point(out, m.pos, j, ',');
        out.put('\n');
    }
    std::size_t ID = 0;
    for (element_block const& b : m.blocks) {
        __cell_kind const& kind = __nastran_cells[b.type];
        if (!kind.name) continue;
        for (std::size_t e = 0; e < b.connect.cols(); ++e) {
            unsigned const* nodes = b.connect.col(e);
            out.text(kind.name).put(',').integer(++ID).put(',').integer(__reference(b, e, 1));
            // Nine fields a line, the first holding the name or the continuation mark.
            unsigned field = 3;
            for (unsigned p = 0; p < kind.count; ++p, ++field) {
                if (field == 9) out.text(",+\n+"), field = 1;
                out.put(',').integer(__node_number(m, nodes[kind.nodes[p]]));
            }
            out.put('\n');
        }
    }
    out.text("ENDDATA\n");
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
