// Medit meshes in text form: keywords, each followed by its count and its entries; vertices with
// their reference, elements of the linear kinds with theirs. Other keywords are passed over by
// skipping their entries when their size is known, else refused.
#include "mesh_io/cell_kinds.h"
#include "mesh_io/medit_text.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "mesh_io/number_text.h"

#include <cstring>
#include <string_view>

namespace qv7 {
namespace tessarium {
namespace {

// Keywords whose entries the reader passes over, with their numbers per entry.
struct skipped_keyword {
    char const* name;
    unsigned numbers;
};
constexpr skipped_keyword skipped[] = {{"Corners", 1},          {"RequiredVertices", 1},  {"Ridges", 1},
                                       {"RequiredEdges", 1},    {"Normals", 3},           {"Tangents", 3},
                                       {"NormalAtVertices", 2}, {"TangentAtVertices", 2}, {"RequiredTriangles", 1}};

int read_vertices(__medit_text& t, mesh& m, unsigned dim)
{
    std::size_t n;
    if (!t.count("Vertices", dim + 1, n)) return t.r.code;
    if (!m.pos.resize(dim, n)) return __fail(t.r, io_no_memory, t.path, "not enough memory for the vertices");
    for (std::size_t j = 0; j < n; ++j) {
        std::int64_t reference;
        for (unsigned k = 0; k < dim; ++k)
            if (!t.real(m.pos(k, j))) return t.fail("vertex " + std::to_string(j + 1) + ": a coordinate is missing");
        if (!t.integer(reference)) return t.fail("vertex " + std::to_string(j + 1) + ": the reference is missing");
    }
    return 0;
}

int read_elements(__medit_text& t, mesh& m, element_type type)
{
    __cell_kind const& kind = __medit_cells[type];
    std::size_t n;
    if (!t.count(kind.name, kind.count + 1u, n)) return t.r.code;
    element_block b;
    b.type = type;
    if (!b.connect.resize(kind.count, n) || !b.references.resize(n))
        return __fail(t.r, io_no_memory, t.path, "not enough memory for the elements");
    for (std::size_t e = 0; e < n; ++e) {
        std::int64_t v;
        for (unsigned p = 0; p <= kind.count; ++p) {
            if (!t.integer(v) || v < (p < kind.count ? 1 : 0) || v > 0xFFFFFFFFLL)
                return t.fail(std::string(kind.name) + " " + std::to_string(e + 1) +
                              ": a vertex or the reference is missing");
            if (p < kind.count)
                b.connect(kind.nodes[p], e) = static_cast<unsigned>(v - 1);
            else
                b.references[e] = static_cast<unsigned>(v);
        }
    }
    if (n) m.blocks.push_back(b);
    return 0;
}

element_type type_of_keyword(std::string_view keyword)
{
    for (int type = 0; type < static_cast<int>(nbr_element_types); ++type)
        if (__medit_cells[type].name && keyword == __medit_cells[type].name) return static_cast<element_type>(type);
    return ET_NONE;
}

}  // namespace

int __read_medit(std::string const& path, mesh& m, io_report& r)
{
    std::string text = __file_text(path);
    __medit_text t{path, r, text, 0};
    std::string_view w;
    std::int64_t dim = 3;
    bool version = false, vertices = false;
    while (t.word(w)) {
        if (w == "End") break;
        if (w == "MeshVersionFormatted") {
            std::int64_t v;
            if (!t.integer(v) || v < 1 || v > 4) return t.fail("MeshVersionFormatted: not 1 to 4");
            version = true;
        } else if (!version) {
            return __fail(r, io_malformed, path, "not a Medit mesh: no MeshVersionFormatted at the start");
        } else if (w == "Dimension") {
            if (!t.integer(dim) || (dim != 2 && dim != 3)) return t.fail("Dimension: not 2 or 3");
        } else if (w == "Vertices") {
            if (vertices) return t.fail("a second Vertices keyword");
            if (read_vertices(t, m, static_cast<unsigned>(dim)) < 0) return r.code;
            vertices = true;
        } else if (element_type type = type_of_keyword(w)) {
            if (read_elements(t, m, type) < 0) return r.code;
        } else {
            std::string keyword(w);
            unsigned numbers = 0;
            for (skipped_keyword const& s : skipped)
                if (w == s.name) numbers = s.numbers;
            if (w == "Normals" || w == "Tangents") numbers = static_cast<unsigned>(dim);
            std::size_t n;
            if (numbers == 0) return t.fail("unknown keyword \"" + keyword + "\"");
            if (!t.count(keyword, numbers, n)) return r.code;
            for (std::size_t k = 0; k < n * numbers; ++k)
                if (!t.word(w)) return t.fail("the file ends inside the entries of " + keyword);
            __pass_over(r, keyword + " entries", n);
        }
    }
    if (!version) return __fail(r, io_malformed, path, "not a Medit mesh: no MeshVersionFormatted at the start");
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
