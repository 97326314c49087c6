// Medit solutions read as node fields of a mesh read before: text (.sol) or binary (.solb).
#include "mesh_io/file_text.h"
#include "mesh_io/medit_solutions.h"
#include "mesh_io/medit_text.h"

#include <cctype>
#include <cerrno>
#include <cstring>
#include <new>

namespace qv7 {
namespace tessarium {
namespace {

bool has_extension(std::string const& path, char const* extension)
{
    std::size_t n = std::strlen(extension);
    if (path.size() < n) return false;
    for (std::size_t k = 0; k < n; ++k)
        if (std::tolower(static_cast<unsigned char>(path[path.size() - n + k])) != extension[k]) return false;
    return true;
}

}  // namespace

int __read_solution_text(std::string const& path, std::vector<mesh_field>& fields, std::size_t& vertices, io_report& r)
{
    std::string text = __file_text(path);
    __medit_text t{path, r, text, 0};
    std::string_view w;
    std::int64_t dim = 3, kinds, kind;
    bool found = false;
    while (t.word(w) && w != "End") {
        if (w == "MeshVersionFormatted") {
            if (!t.integer(kind)) return t.fail("MeshVersionFormatted: no version");
        } else if (w == "Dimension") {
            if (!t.integer(dim) || (dim != 2 && dim != 3)) return t.fail("Dimension: not 2 or 3");
        } else if (w == "SolAtVertices" && !found) {
            std::size_t n;
            if (!t.count(w, 1, n) || !t.integer(kinds) || kinds < 0 || kinds > 64)
                return t.fail("SolAtVertices: counts of vertices and kinds expected");
            std::size_t first = fields.size(), numbers = 0;
            for (std::int64_t k = 0; k < kinds; ++k) {
                std::size_t c = t.integer(kind) ? __solution_components(kind, static_cast<std::size_t>(dim)) : 0;
                if (!c) return t.fail("SolAtVertices: a kind that is none of 1 to 4");
                fields.push_back({"sol" + std::to_string(fields.size() + 1), {}});
                if (!fields.back().values.resize(c, n))
                    return __fail(r, io_no_memory, path, "not enough memory for the solution");
                numbers += c;
            }
            if (numbers && n > (text.size() - t.at) / (2 * numbers))
                return t.fail(std::to_string(n) + " vertices cannot fit in the rest of the file");
            for (std::size_t j = 0; j < n; ++j)
                for (std::size_t k = first; k < fields.size(); ++k)
                    for (std::size_t i = 0; i < fields[k].values.rows(); ++i)
                        if (!t.real(fields[k].values(i, j)))
                            return t.fail("SolAtVertices: value " + std::to_string(i + 1) + " of vertex " +
                                          std::to_string(j + 1) + " is missing");
            vertices = n;
            found = true;
        } else {
            return t.fail("unknown keyword \"" + std::string(w) + "\"");
        }
    }
    if (!found) return __fail(r, io_malformed, path, "no SolAtVertices keyword");
    return 0;
}

io_report read_fields(char const* path, mesh& m, io_options const&)
{
    io_report r;
    std::string file = path ? path : "";
    std::vector<mesh_field> fields;
    std::size_t vertices = 0;
    bool binary = has_extension(file, ".solb");
    if (file.empty()) {
        __fail(r, io_cannot_open, "(no name)", "no file name given");
    } else if (!binary && !has_extension(file, ".sol")) {
        __fail(r, io_unsupported, file, "not a Medit solution (.sol or .solb)");
    } else if (std::FILE* probe = std::fopen(file.c_str(), "rb")) {
        std::fclose(probe);
        try {
            (binary ? __read_solution_binary : __read_solution_text)(file, fields, vertices, r);
        } catch (std::bad_alloc const&) {
            __fail(r, io_no_memory, file, "not enough memory to read it");
        }
        if (r.code >= 0 && vertices != m.nbr_nodes())
            __fail(r, io_malformed, file,
                   "holds values at " + std::to_string(vertices) + " vertices for a mesh of " +
                       std::to_string(m.nbr_nodes()) + " nodes");
    } else {
        __fail(r, io_cannot_open, file, std::string("cannot be opened (") + std::strerror(errno) + ")");
    }
    if (r.code < 0) return r;
    for (mesh_field& f : fields) m.node_fields.push_back(std::move(f));
    r.nodes = vertices;
    return r;
}

int __refuse_solution_as_mesh(std::string const& path, mesh&, io_report& r)
{
    return __fail(r, io_unsupported, path, "a solution holds no mesh: read it with read_fields after its mesh");
}

}  // namespace tessarium
}  // namespace qv7
