// gmsh 4.1 meshes, text or binary: one entity per dimension and reference, the reference as its
// physical tag; nodes under their IDs; each run of equal references in a block as one element
// block, so that elements keep their order.
#include "mesh_io/text_output.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

// Numbers as text separated by blanks, one record a line, or as the bytes of their binary types.
class msh_sink {
public:
    msh_sink(__text_sink& out, bool binary) : out_(out), binary_(binary) {}
    msh_sink& i32(std::int64_t v) { return item(static_cast<std::int32_t>(v)); }
    msh_sink& size(std::uint64_t v) { return item(v); }
    msh_sink& real(double v)
    {
        if (binary_) return bytes(v);
        separate();
        out_.shortest(v);
        return *this;
    }
    void end_line()
    {
        if (!binary_) out_.put('\n');
        first_ = true;
    }

private:
    template <class T>
    msh_sink& item(T v)
    {
        if (binary_) return bytes(v);
        separate();
        out_.integer(v);
        return *this;
    }
    template <class T>
    msh_sink& bytes(T v)
    {
        out_.text(reinterpret_cast<char const*>(&v), sizeof v);
        return *this;
    }
    void separate()
    {
        if (!first_) out_.put(' ');
        first_ = false;
    }
    __text_sink& out_;
    bool binary_, first_ = true;
};

struct entity {
    unsigned dim, reference;
};

// Entities in order of first use; the tag of an entity is its rank among those of its dimension.
struct entity_list {
    std::vector<entity> all;
    int tag(unsigned dim, unsigned reference)
    {
        int rank = 0;
        for (entity const& e : all)
            if (e.dim == dim) {
                ++rank;
                if (e.reference == reference) return rank;
            }
        all.push_back({dim, reference});
        return rank + 1;
    }
};

// Calls run(block, first, end, dim) for each run of elements of equal reference in the blocks gmsh keeps.
template <class Run>
void for_each_run(mesh const& m, Run run)
{
    for (element_block const& b : m.blocks) {
        if (!__gmsh_cells[b.type].name) continue;
        std::size_t n = b.connect.cols();
        for (std::size_t first = 0, end; first < n; first = end) {
            end = first + 1;
            while (end < n && __reference(b, end, 0) == __reference(b, first, 0)) ++end;
            run(b, first, end, element_dim(b.type));
        }
    }
}

// With references, every entity has a physical tag, 0 included: readers that gather physical tags
// block by block expect them on all blocks or none.
void put_entities(msh_sink& out, entity_list const& entities, bool tagged, double const (&lo)[3], double const (&hi)[3])
{
    for (unsigned dim = 0; dim < 4; ++dim)
        out.size(static_cast<std::uint64_t>(
            std::count_if(entities.all.begin(), entities.all.end(), [&](entity const& e) { return e.dim == dim; })));
    out.end_line();
    for (unsigned dim = 0; dim < 4; ++dim) {
        int tag = 0;
        for (entity const& e : entities.all) {
            if (e.dim != dim) continue;
            out.i32(++tag);
            for (int i = 0; i < 3; ++i) out.real(lo[i]);
            for (int i = 0; dim && i < 3; ++i) out.real(hi[i]);
            out.size(tagged ? 1 : 0);
            if (tagged) out.i32(e.reference);
            if (dim) out.size(0);
            out.end_line();
        }
    }
}

}  // namespace

int __write_gmsh(__output_files& files, std::string const& path, mesh const& m, io_options const& options, io_report& r)
{
    __count_written(r, m, __in_table<__gmsh_cells>);
    __pass_over_fields(r, m);
    entity_list entities;
    std::size_t runs = 0;
    unsigned nodes_dim = 0;
    for_each_run(m, [&](element_block const& b, std::size_t first, std::size_t, unsigned dim) {
        entities.tag(dim, __reference(b, first, 0));
        nodes_dim = std::max(nodes_dim, dim);
        ++runs;
    });
    int nodes_tag = entities.tag(nodes_dim, 0);  // the entity holding every node
    double lo[3] = {0, 0, 0}, hi[3] = {0, 0, 0};
    bounding_box(m, lo, hi);

    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    __text_sink text(stream);
    bool binary = options.binary;
    msh_sink out(text, binary);
    // Binary data runs from the line after a section's name to a line feed before its end.
    auto section = [&](char const* ends, char const* begins) {
        if (binary && *ends) text.put('\n');
        text.text(ends).text(begins);
    };
    text.text(binary ? "$MeshFormat\n4.1 1 8\n" : "$MeshFormat\n4.1 0 8\n");
    if (binary) out.i32(1);
    section("$EndMeshFormat\n", "$Entities\n");
    bool tagged = std::any_of(m.blocks.begin(), m.blocks.end(), [](element_block const& b) {
        return !b.references.empty() && __gmsh_cells[b.type].name;
    });
    put_entities(out, entities, tagged, lo, hi);

    std::size_t n = m.nbr_nodes();
    unsigned least = n ? __node_number(m, 0) : 0, most = least;
    for (std::size_t j = 0; j < n; ++j)
        least = std::min(least, __node_number(m, j)), most = std::max(most, __node_number(m, j));
    section("$EndEntities\n", "$Nodes\n");
    out.size(1).size(n).size(least).size(most).end_line();
    out.i32(nodes_dim).i32(nodes_tag).i32(0).size(n).end_line();
    for (std::size_t j = 0; j < n; ++j) out.size(__node_number(m, j)).end_line();
    for (std::size_t j = 0; j < n; ++j) {
        double const* p = m.pos.col(j);
        out.real(p[0]).real(p[1]).real(m.pos.rows() == 3 ? p[2] : 0.0).end_line();
    }

    std::size_t elements = r.elements, tag = 0;
    section("$EndNodes\n", "$Elements\n");
    out.size(runs).size(elements).size(elements ? 1 : 0).size(elements).end_line();
    for_each_run(m, [&](element_block const& b, std::size_t first, std::size_t end, unsigned dim) {
        __cell_kind const& kind = __gmsh_cells[b.type];
        out.i32(dim).i32(entities.tag(dim, __reference(b, first, 0))).i32(kind.code).size(end - first).end_line();
        for (std::size_t e = first; e < end; ++e) {
            unsigned const* nodes = b.connect.col(e);
            out.size(++tag);
            for (unsigned p = 0; p < kind.count; ++p) out.size(__node_number(m, nodes[kind.nodes[p]]));
            out.end_line();
        }
    });
    section("$EndElements\n", "");
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
