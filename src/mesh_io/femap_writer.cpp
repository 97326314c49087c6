// FEMAP neutral file: a header block, nodes (block 403) with full-precision coordinates and
// elements (block 404) with the reference as colour and property.
#include "exchange/femap_tables.h"
#include "mesh_io/text_output.h"

namespace qv7 {
namespace tessarium {
namespace {

bool has_record(element_type type)
{
    return __femap_kind_of_type(type) != nullptr;
}

}  // namespace

int __write_FEMAP(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    __count_written(r, m, has_record);
    __pass_over_fields(r, m);
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    __text_sink out(stream);
    out.text("   -1\n   100\nwritten by tessarium\n4.41,\n   -1\n   -1\n   403\n");
    for (std::size_t j = 0; j < m.nbr_nodes(); ++j) {
        out.integer(__node_number(m, j)).text(",0,0,1,46,0,0,0,0,0,0,");
        __put_point(out, m.pos, j, ',');
        out.text(",0,\n");
    }
    out.text("   -1\n   -1\n   404\n");
    std::size_t ID = 0;
    for (element_block const& b : m.blocks) {
        __femap_kind const* kind = __femap_kind_of_type(b.type);
        if (!kind) continue;
        for (std::size_t e = 0; e < b.connect.cols(); ++e) {
            unsigned slots[__femap_slot_count] = {};
            for (unsigned i = 0; i < b.connect.rows(); ++i) {
                unsigned local = b.type == ET_WEDGE6 ? __turned_wedge[i] : i;
                slots[kind->slots[i]] = __node_number(m, b.connect(local, e));
            }
            unsigned reference = __reference(b, e, 1);
            out.integer(++ID).put(',').integer(reference).put(',').integer(reference).put(',');
            out.integer(kind->type_code).put(',').integer(kind->topology).text(",1,0,0,0,0,0,0,0,\n");
            for (unsigned s = 0; s < __femap_slot_count; ++s)
                out.integer(slots[s]).text(s == 9 || s == 19 ? ",\n" : ",");
            out.text("0.,0.,0.,0,0,0,0,0,0,\n0.,0.,0.,\n0.,0.,0.,\n0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n");
        }
    }
    out.text("   -1\n");
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
