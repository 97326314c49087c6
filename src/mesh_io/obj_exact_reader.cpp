// Wavefront OBJ read line by line: faces of any size (beyond four corners cut into a fan of
// triangles), relative indices, lines as edges, "o" and "g" groups as references; normals and
// texture coordinates given for every vertex become the node fields "normal" and "texture".
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "mesh_io/number_text.h"

#include <string_view>
#include <vector>

namespace qv7 {
namespace tessarium {
namespace {

struct obj_block {
    element_type type;
    std::vector<unsigned> nodes, groups;
};

struct obj_reader {
    obj_reader(std::string const& file, io_report& report) : path(file), r(report) {}
    std::string const& path;
    io_report& r;
    std::size_t line = 0;
    std::vector<double> xyz, normals, textures;
    std::vector<std::string> group_names;
    unsigned group = 0;
    obj_block edges{ET_EDGE2, {}, {}}, triangles{ET_FACE_T3, {}, {}}, quadrangles{ET_FACE_Q4, {}, {}};
    std::vector<unsigned> corners;

    int fail(std::string const& what)
    {
        return __fail(r, io_malformed, path, "line " + std::to_string(line) + ": " + what);
    }
};

bool next_word(std::string_view& rest, std::string_view& word)
{
    std::size_t b = rest.find_first_not_of(" \t\r");
    if (b == std::string_view::npos) return false;
    std::size_t e = rest.find_first_of(" \t\r", b);
    if (e == std::string_view::npos) e = rest.size();
    word = rest.substr(b, e - b);
    rest.remove_prefix(e);
    return true;
}

// At least `least` and at most `most` reals into values; what follows is passed over (colours).
bool reals(std::string_view rest, std::size_t least, std::size_t most, std::vector<double>& values)
{
    std::string_view word;
    std::size_t n = 0;
    for (; n < most && next_word(rest, word); ++n) {
        double v;
        if (!__parse_real(word.data(), word.data() + word.size(), v)) return false;
        values.push_back(v);
    }
    for (; n < most && n >= least; ++n) values.push_back(0.0);
    return n >= least;
}

// The vertex of a face or line word ("7", "7/2", "7//3", "-1/-1"), as a zero-based column.
int vertex(obj_reader& d, std::string_view word, unsigned& column)
{
    std::size_t slash = word.find('/');
    std::string_view index = word.substr(0, slash);
    std::int64_t k;
    if (!__parse_integer(index.data(), index.data() + index.size(), k))
        return d.fail("\"" + std::string(word) + "\" is not a vertex index");
    // A relative index counts back from the last vertex so far; a vertex given later may be
    // named by its number, which is checked once all are read.
    std::int64_t count = static_cast<std::int64_t>(d.xyz.size() / 3);
    std::int64_t at = k < 0 ? count + k : k - 1;
    if (k == 0 || at < 0 || at >= 0xFFFFFFFFLL)
        return d.fail("vertex " + std::to_string(k) + " does not exist (" + std::to_string(count) + " so far)");
    column = static_cast<unsigned>(at);
    return 0;
}

void add(obj_block& b, unsigned const* nodes, unsigned n, unsigned group)
{
    b.nodes.insert(b.nodes.end(), nodes, nodes + n);
    b.groups.push_back(group);
}

int read_polygon(obj_reader& d, std::string_view rest, bool face)
{
    d.corners.clear();
    std::string_view word;
    while (next_word(rest, word)) {
        unsigned column;
        if (vertex(d, word, column) < 0) return d.r.code;
        d.corners.push_back(column);
    }
    std::size_t n = d.corners.size();
    unsigned const* c = d.corners.data();
    if (n < (face ? 3u : 2u))
        return d.fail(face ? "a face of fewer than 3 vertices" : "a line of fewer than 2 vertices");
    if (!face) {
        for (std::size_t k = 0; k + 1 < n; ++k) add(d.edges, c + k, 2, d.group);
        return 0;
    }
    if (n == 3) return add(d.triangles, c, 3, d.group), 0;
    if (n == 4) return add(d.quadrangles, c, 4, d.group), 0;
    for (std::size_t k = 1; k + 1 < n; ++k) {
        unsigned fan[3] = {c[0], c[k], c[k + 1]};
        add(d.triangles, fan, 3, d.group);
    }
    __pass_over(d.r, "faces of more than 4 vertices, cut into fans of triangles", 1);
    return 0;
}

int read_line(obj_reader& d, std::string_view text)
{
    std::size_t hash = text.find('#');
    if (hash != std::string_view::npos) text = text.substr(0, hash);
    std::string_view keyword, rest = text;
    if (!next_word(rest, keyword)) return 0;
    if (keyword == "v") return reals(rest, 3, 3, d.xyz) ? 0 : d.fail("a vertex needs three numbers");
    if (keyword == "vn") return reals(rest, 3, 3, d.normals) ? 0 : d.fail("a normal needs three numbers");
    if (keyword == "vt") return reals(rest, 1, 2, d.textures) ? 0 : d.fail("a texture coordinate needs a number");
    if (keyword == "f" || keyword == "l") return read_polygon(d, rest, keyword == "f");
    if (keyword == "o" || keyword == "g") {
        std::size_t b = rest.find_first_not_of(" \t"), e = rest.find_last_not_of(" \t\r");
        std::string name(b == std::string_view::npos ? std::string_view() : rest.substr(b, e - b + 1));
        d.group = 0;
        for (std::size_t k = 0; k < d.group_names.size() && !d.group; ++k)
            if (d.group_names[k] == name) d.group = static_cast<unsigned>(k + 1);
        if (!d.group && !name.empty())
            d.group_names.push_back(name), d.group = static_cast<unsigned>(d.group_names.size());
        return 0;
    }
    __pass_over(d.r, "\"" + std::string(keyword) + "\" lines", 1);
    return 0;
}

// Values with `rows` per vertex as a node field, when there is one for each vertex.
void keep_per_node(mesh& m, char const* name, std::vector<double> const& values, std::size_t rows, char const* keyword,
                   io_report& r)
{
    std::size_t count = values.size() / rows;
    if (count == 0) return;
    if (count != m.nbr_nodes()) {
        __pass_over(r, std::string(keyword) + " lines (not one per vertex)", count);
        return;
    }
    mesh_field f{name, {}};
    if (!f.values.resize(rows, count)) return;
    std::copy(values.begin(), values.end(), f.values.data());
    m.node_fields.push_back(f);
}

int add_block(obj_reader& d, mesh& m, obj_block const& from)
{
    std::size_t n = nbr_nodes(from.type), count = from.groups.size();
    if (count == 0) return 0;
    element_block b;
    b.type = from.type;
    if (!b.connect.resize(n, count) || (!d.group_names.empty() && !b.references.resize(count)))
        return __fail(d.r, io_no_memory, d.path, "not enough memory for the elements");
    std::copy(from.nodes.begin(), from.nodes.end(), b.connect.data());
    if (!d.group_names.empty()) std::copy(from.groups.begin(), from.groups.end(), b.references.data());
    m.blocks.push_back(b);
    return 0;
}

}  // namespace

int __read_OBJ_exact(std::string const& path, mesh& m, io_report& r)
{
    std::string text = __file_text(path);
    obj_reader d(path, r);
    std::string joined;  // a line continued by a final backslash
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();  // the last line needs no line feed
        std::string_view line(text.data() + at, end - at);
        at = end + 1;
        ++d.line;
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
        if (!line.empty() && line.back() == '\\') {
            joined.append(line.data(), line.size() - 1).push_back(' ');
            continue;
        }
        if (!joined.empty()) line = joined.append(line);
        int code = read_line(d, line);
        joined.clear();
        if (code < 0) return code;
    }
    std::size_t n = d.xyz.size() / 3;
    if (n == 0) return __fail(r, io_malformed, path, "no \"v\" line: not a Wavefront OBJ file");
    if (n > 0xFFFFFFFEu) return __fail(r, io_malformed, path, "more vertices than 32-bit columns can number");
    if (!m.pos.resize(3, n)) return __fail(r, io_no_memory, path, "not enough memory for the vertices");
    std::copy(d.xyz.begin(), d.xyz.end(), m.pos.data());
    keep_per_node(m, "normal", d.normals, 3, "vn", r);
    keep_per_node(m, "texture", d.textures, 2, "vt", r);
    for (obj_block const* b : {&d.edges, &d.triangles, &d.quadrangles})
        if (add_block(d, m, *b) < 0) return r.code;
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
