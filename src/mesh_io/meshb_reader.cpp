// Binary Medit files, versions 1 to 4, in either byte order: a code word and the version, then
// keywords by number, each followed by the offset of the next one. Version 1 has 32-bit reals,
// versions 3 and 4 64-bit offsets, version 4 64-bit integers.
#include "mesh_io/byte_reader.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/file_text.h"
#include "mesh_io/medit_solutions.h"

namespace qv7 {
namespace tessarium {
namespace {

enum keyword : std::int32_t { dimension_keyword = 3, vertices_keyword = 4, end_keyword = 54, sol_at_vertices = 62 };

struct meshb {
    std::string const& path;
    io_report& r;
    __byte_reader in;
    std::int32_t version = 0;
    std::size_t dim = 3;

    int fail(std::string const& what)
    {
        return __fail(r, io_malformed, path, "byte " + std::to_string(in.at) + ": " + what);
    }
    std::size_t int_size() const { return version >= 4 ? 8 : 4; }
    std::size_t real_size() const { return version == 1 ? 4 : 8; }
    bool integer(std::int64_t& v)
    {
        if (version >= 4) return in.get(v);
        std::int32_t i;
        return in.get(i) ? (v = i, true) : false;
    }
    bool real(double& v)
    {
        if (version != 1) return in.get(v);
        float f;
        return in.get(f) ? (v = f, true) : false;
    }
    bool offset(std::int64_t& v)
    {
        if (version >= 3) return in.get(v);
        std::int32_t i;
        return in.get(i) ? (v = static_cast<std::uint32_t>(i), true) : false;
    }
    // A count of records of `bytes` bytes each, which the rest of the file must hold.
    bool count(char const* what, std::size_t bytes, std::size_t& n)
    {
        std::int64_t v;
        if (!integer(v) || v < 0) return fail(std::string(what) + ": no count"), false;
        if (static_cast<std::uint64_t>(v) > in.left() / bytes)
            return fail(std::string(what) + ": " + std::to_string(v) + " entries cannot fit in the rest of the file"),
                   false;
        n = static_cast<std::size_t>(v);
        return true;
    }
};

int read_header(meshb& f)
{
    std::int32_t code;
    if (!f.in.get(code) || (code != 1 && code != 0x01000000))
        return __fail(f.r, io_malformed, f.path, "not a binary Medit file: its first word is neither 1 nor 1 swapped");
    f.in.swap = code != 1;
    if (!f.in.get(f.version) || f.version < 1 || f.version > 4) return f.fail("version not 1 to 4");
    return 0;
}

int read_vertices(meshb& f, mesh& m)
{
    std::size_t n;
    if (!f.count("Vertices", f.dim * f.real_size() + f.int_size(), n)) return f.r.code;
    if (!m.pos.resize(f.dim, n)) return __fail(f.r, io_no_memory, f.path, "not enough memory for the vertices");
    for (std::size_t j = 0; j < n; ++j) {
        std::int64_t reference = 0;
        double* x = m.pos.col(j);
        for (std::size_t k = 0; k < f.dim; ++k) f.real(x[k]);
        f.integer(reference);
    }
    return 0;
}

int read_elements(meshb& f, mesh& m, element_type type)
{
    __cell_kind const& kind = __medit_cells[type];
    std::size_t n;
    if (!f.count(kind.name, (kind.count + 1u) * f.int_size(), n)) return f.r.code;
    element_block b;
    b.type = type;
    if (!b.connect.resize(kind.count, n) || !b.references.resize(n))
        return __fail(f.r, io_no_memory, f.path, "not enough memory for the elements");
    for (std::size_t e = 0; e < n; ++e)
        for (unsigned p = 0; p <= kind.count; ++p) {
            std::int64_t v = 0;
            f.integer(v);
            if (v < (p < kind.count ? 1 : 0) || v > 0xFFFFFFFFLL)
                return f.fail(std::string(kind.name) + " " + std::to_string(e + 1) + ": vertex or reference " +
                              std::to_string(v) + " out of range");
            if (p < kind.count)
                b.connect(kind.nodes[p], e) = static_cast<unsigned>(v - 1);
            else
                b.references[e] = static_cast<unsigned>(v);
        }
    if (n) m.blocks.push_back(std::move(b));
    return 0;
}

element_type type_of(std::int32_t code)
{
    for (int type = 0; type < static_cast<int>(nbr_element_types); ++type)
        if (__medit_cells[type].name && __medit_cells[type].code == code) return static_cast<element_type>(type);
    return ET_NONE;
}

int read_solution(meshb& f, std::vector<mesh_field>& fields, std::size_t& vertices)
{
    std::int64_t n = 0, kinds = 0, kind = 0;
    if (!f.integer(n) || !f.integer(kinds) || n < 0 || kinds < 0 ||
        static_cast<std::uint64_t>(kinds) > f.in.left() / f.int_size())
        return f.fail("SolAtVertices: counts of vertices and kinds expected");
    std::vector<std::size_t> components;
    std::size_t numbers = 0;
    for (std::int64_t k = 0; k < kinds; ++k) {
        components.push_back(f.integer(kind) ? __solution_components(kind, f.dim) : 0);
        if (!components.back()) return f.fail("SolAtVertices: kind " + std::to_string(kind) + " is none of 1 to 4");
        numbers += components.back();
    }
    if (static_cast<std::uint64_t>(n) > f.in.left() / (std::max<std::size_t>(numbers, 1) * f.real_size()))
        return f.fail("SolAtVertices: " + std::to_string(n) + " vertices cannot fit in the rest of the file");
    vertices = static_cast<std::size_t>(n);
    std::size_t first = fields.size();
    for (std::size_t c : components) {
        fields.push_back({"sol" + std::to_string(fields.size() + 1), {}});
        if (!fields.back().values.resize(c, vertices))
            return __fail(f.r, io_no_memory, f.path, "not enough memory for the solution");
    }
    for (std::size_t j = 0; j < vertices; ++j)
        for (std::size_t k = first; k < fields.size(); ++k)
            for (std::size_t i = 0; i < fields[k].values.rows(); ++i) f.real(fields[k].values(i, j));
    return 0;
}

// Keywords one by one up to End or the end of the file; `take` reads those it knows and says
// whether it did, the others are passed over through their offsets.
template <class Take>
int read_keywords(meshb& f, Take take)
{
    for (std::int32_t code; f.in.get(code) && code != end_keyword;) {
        std::size_t start = f.in.at - 4;
        std::int64_t next;
        if (!f.offset(next)) return f.fail("keyword " + std::to_string(code) + ": the file ends in its offset");
        int taken = take(code);
        if (taken < 0) return f.r.code;
        if (taken) continue;
        if (next <= static_cast<std::int64_t>(start) || static_cast<std::uint64_t>(next) > f.in.bytes.size())
            return f.fail("keyword " + std::to_string(code) + ": its next offset " + std::to_string(next) +
                          " points backwards or past the end");
        f.in.at = static_cast<std::size_t>(next);
        __pass_over(f.r, "Medit keywords numbered " + std::to_string(code), 1);
    }
    return 0;
}

int read_dimension(meshb& f)
{
    std::int32_t dim;
    if (!f.in.get(dim) || (dim != 2 && dim != 3)) return f.fail("Dimension: not 2 or 3");
    f.dim = static_cast<std::size_t>(dim);
    return 1;
}

}  // namespace

int __read_meshb(std::string const& path, mesh& m, io_report& r)
{
    std::string bytes = __file_text(path);
    meshb f{path, r, {bytes}};
    if (read_header(f) < 0) return r.code;
    bool vertices = false;
    return read_keywords(f, [&](std::int32_t code) {
        if (code == dimension_keyword) return read_dimension(f);
        if (code == vertices_keyword) {
            if (vertices) return f.fail("a second Vertices keyword");
            vertices = true;
            return read_vertices(f, m) < 0 ? -1 : 1;
        }
        if (element_type type = type_of(code)) return read_elements(f, m, type) < 0 ? -1 : 1;
        return 0;
    });
}

int __read_solution_binary(std::string const& path, std::vector<mesh_field>& fields, std::size_t& vertices,
                           io_report& r)
{
    std::string bytes = __file_text(path);
    meshb f{path, r, {bytes}};
    if (read_header(f) < 0) return r.code;
    bool found = false;
    int code = read_keywords(f, [&](std::int32_t keyword) {
        if (keyword == dimension_keyword) return read_dimension(f);
        if (keyword != sol_at_vertices) return 0;
        if (found) return f.fail("a second SolAtVertices keyword");
        found = true;
        return read_solution(f, fields, vertices) < 0 ? -1 : 1;
    });
    if (code < 0) return code;
    if (!found) return __fail(r, io_malformed, path, "no SolAtVertices keyword");
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
