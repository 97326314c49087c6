// EnSight Gold text: a case file and its geometry, one part holding every node once, with
// full-precision coordinates, and one section per element kind.
#include "mesh_io/text_output.h"

namespace qv7 {
namespace tessarium {
namespace {

std::string geometry_path(std::string const& case_path)
{
    return case_path.substr(0, case_path.find_last_of('.')) + ".geo";
}

std::string file_name(std::string const& path)
{
    return path.substr(path.find_last_of('/') + 1);
}

}  // namespace

int __write_ensight(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    __count_written(r, m, __in_table<__ensight_cells>);
    __pass_over_fields(r, m);
    for (element_block const& b : m.blocks) __pass_over(r, "references", b.references.size());
    std::string geometry = geometry_path(path);
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    {
        __text_sink out(stream);
        out.text("FORMAT\ntype: ensight gold\n\nGEOMETRY\nmodel: ").text(file_name(geometry).c_str()).put('\n');
    }
    stream = files.open(geometry, r);
    if (!stream) return r.code;
    __text_sink out(stream);
    out.text("written by tessarium\nEnSight Gold geometry\nnode id ").text(m.node_IDs.empty() ? "off" : "given");
    out.text("\nelement id off\npart\n1\nmesh\ncoordinates\n").integer(m.nbr_nodes()).put('\n');
    for (std::size_t j = 0; j < m.node_IDs.size(); ++j) out.integer(m.node_IDs[j]).put('\n');
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j) out.shortest(i < m.pos.rows() ? m.pos(i, j) : 0.0).put('\n');
    for (unsigned type = 0; type < nbr_element_types; ++type) {
        __cell_kind const& kind = __ensight_cells[type];
        std::size_t count = 0;
        for (element_block const& b : m.blocks) count += b.type == static_cast<int>(type) ? b.connect.cols() : 0;
        if (!kind.name || count == 0) continue;
        out.text(kind.name).put('\n').integer(count).put('\n');
        for (element_block const& b : m.blocks) {
            if (b.type != static_cast<int>(type)) continue;
            for (std::size_t e = 0; e < b.connect.cols(); ++e) {
                unsigned const* nodes = b.connect.col(e);
                for (unsigned p = 0; p < kind.count; ++p) {
                    if (p) out.put(' ');
                    out.integer(nodes[kind.nodes[p]] + 1u);
                }
                out.put('\n');
            }
        }
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
