// Binary Medit meshes in this machine's byte order: version 2 (32-bit offsets) while the file
// stays below 2 GiB, else version 3; doubles, so that coordinates read back to the bit. Node
// fields go to a binary solution beside it.
#include "mesh_io/medit_solutions.h"
#include "mesh_io/text_output.h"

namespace qv7 {
namespace tessarium {
namespace {

constexpr element_type keyword_order[] = {ET_EDGE2,    ET_FACE_T3, ET_FACE_Q4, ET_TETRA4,
                                          ET_PYRAMID5, ET_WEDGE6,  ET_HEXA8};

// Keywords with the offset of the next one, which the sizes of their data fix in advance.
class meshb_sink {
public:
    meshb_sink(__text_sink& out, bool long_offsets) : out_(out), long_(long_offsets) {}
    template <class T>
    meshb_sink& put(T v)
    {
        out_.text(reinterpret_cast<char const*>(&v), sizeof v);
        at_ += sizeof v;
        return *this;
    }
    // A keyword whose data take `bytes` bytes after its offset.
    meshb_sink& keyword(std::int32_t code, std::uint64_t bytes)
    {
        put(code);
        std::uint64_t next = at_ + (long_ ? 8 : 4) + bytes;
        return long_ ? put(static_cast<std::int64_t>(next)) : put(static_cast<std::int32_t>(next));
    }

private:
    __text_sink& out_;
    bool long_;
    std::uint64_t at_ = 0;
};

void put_header(meshb_sink& out, std::size_t dim, bool long_offsets)
{
    out.put(std::int32_t(1)).put(std::int32_t(long_offsets ? 3 : 2));
    out.keyword(3, 4).put(static_cast<std::int32_t>(dim));
}

int write_solution(__output_files& files, std::string const& path, mesh const& m, io_report& r)
{
    std::size_t dim = m.pos.rows() == 2 ? 2 : 3, numbers = 0;
    std::vector<mesh_field const*> kept;
    for (mesh_field const& f : m.node_fields)
        if (__solution_kind(f.values.rows(), dim))
            kept.push_back(&f), numbers += f.values.rows();
        else
            __pass_over(r, "node field " + f.name, 1);
    if (kept.empty()) return 0;
    std::uint64_t bytes = 8 + 4 * kept.size() + 8 * numbers * m.nbr_nodes();
    bool long_offsets = bytes > (1u << 30);
    std::FILE* stream = files.open(path.substr(0, path.find_last_of('.')) + ".solb", r);
    if (!stream) return r.code;
    __text_sink text(stream);
    meshb_sink out(text, long_offsets);
    put_header(out, dim, long_offsets);
    out.keyword(62, bytes).put(static_cast<std::int32_t>(m.nbr_nodes())).put(static_cast<std::int32_t>(kept.size()));
    for (mesh_field const* f : kept) out.put(static_cast<std::int32_t>(__solution_kind(f->values.rows(), dim)));
    for (std::size_t j = 0; j < m.nbr_nodes(); ++j)
        for (mesh_field const* f : kept)
            for (std::size_t i = 0; i < f->values.rows(); ++i) out.put(f->values(i, j));
    out.keyword(54, 0);
    return 0;
}

}  // namespace

int __write_meshb(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    __count_written(r, m, __in_table<__medit_cells>);
    __pass_over_fields(r, m.element_fields, "element");
    __pass_over(r, "node IDs", m.node_IDs.size());
    if (m.nbr_nodes() > 0x7FFFFFFFu) return __fail(r, io_bad_mesh, path, "more nodes than a Medit file can count");
    std::size_t dim = m.pos.rows() == 2 ? 2 : 3;
    std::uint64_t total = 8 + 20 + 12 + m.nbr_nodes() * (8 * dim + 4);
    for (element_block const& b : m.blocks) total += 12 + b.connect.cols() * 4 * (b.connect.rows() + 1);
    bool long_offsets = total > 0x7FFFFFFFu;
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    {
        __text_sink text(stream);
        meshb_sink out(text, long_offsets);
        put_header(out, dim, long_offsets);
        out.keyword(4, 4 + m.nbr_nodes() * (8 * dim + 4)).put(static_cast<std::int32_t>(m.nbr_nodes()));
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j) {
            for (std::size_t i = 0; i < dim; ++i) out.put(m.pos(i, j));
            out.put(std::int32_t(0));
        }
        for (element_type type : keyword_order) {
            __cell_kind const& kind = __medit_cells[type];
            std::size_t n = 0;
            for (element_block const& b : m.blocks) n += b.type == type ? b.connect.cols() : 0;
            if (n == 0) continue;
            out.keyword(kind.code, 4 + n * 4 * (kind.count + 1)).put(static_cast<std::int32_t>(n));
            for (element_block const& b : m.blocks) {
                if (b.type != type) continue;
                for (std::size_t e = 0; e < b.connect.cols(); ++e) {
                    for (unsigned p = 0; p < kind.count; ++p)
                        out.put(static_cast<std::int32_t>(b.connect(kind.nodes[p], e) + 1));
                    out.put(static_cast<std::int32_t>(__reference(b, e, 0)));
                }
            }
        }
        out.keyword(54, 0);
    }
    return write_solution(files, path, m, r);
}

}  // namespace tessarium
}  // namespace qv7
