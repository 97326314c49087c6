// gmsh meshes of versions 2.2 and 4.1, text or binary: nodes with their tags, elements of the
// types the library has, physical tags as references; other sections and types passed over.
#include "mesh_io/byte_reader.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/element_runs.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "mesh_io/node_index.h"
#include "mesh_io/number_text.h"

#include <charconv>
#include <cstring>
#include <map>
#include <string_view>
#include <vector>

namespace qv7 {
namespace tessarium {
namespace {

// Nodes per element of gmsh's types 1 to 31, to pass over those the library lacks.
constexpr unsigned char node_counts[32] = {0, 2,  3,  4,  4, 8,  6,  5,  3,  6,  9, 10, 27, 18, 14, 1,
                                           8, 20, 15, 13, 9, 10, 12, 15, 15, 21, 4, 5,  6,  20, 35, 56};

struct msh_file {
    std::string const& path;
    io_report& r;
    std::string const& text;
    std::size_t at = 0;
    bool v4 = false, binary = false, swap = false;
    unsigned size_bytes = 8;  // of size_t in binary 4.1 files

    int fail(std::string const& what)
    {
        std::string where = binary ? "byte " + std::to_string(at) : "line " + std::to_string(__line_number(text, at));
        return __fail(r, io_malformed, path, where + ": " + what);
    }
    static bool blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    bool word(std::string_view& w)
    {
        while (at < text.size() && blank(text[at])) ++at;
        std::size_t b = at;
        while (at < text.size() && !blank(text[at])) ++at;
        w = std::string_view(text).substr(b, at - b);
        return at > b;
    }
    void skip_line()
    {
        std::size_t end = text.find('\n', at);
        at = end == std::string::npos ? text.size() : end + 1;
    }
    // Whether n records of `bytes` bytes (binary) or n numbers (text) can be in the rest of the file.
    bool fits(std::uint64_t n, std::size_t bytes) const { return n <= (text.size() - at) / (binary ? bytes : 2); }

    template <class T>
    bool raw(T& v)
    {
        __byte_reader in{text, at, swap};
        if (!in.get(v)) return false;
        at = in.at;
        return true;
    }
    bool text_integer(std::int64_t& v)
    {
        std::string_view w;
        if (!word(w)) return false;
        char const* b = w.data() + (w[0] == '+');
        std::from_chars_result got = std::from_chars(b, w.data() + w.size(), v);
        return got.ec == std::errc() && got.ptr == w.data() + w.size();
    }
    // An int of the binary form, or an integer of the text.
    bool integer(std::int64_t& v)
    {
        if (!binary) return text_integer(v);
        std::int32_t i;
        return raw(i) ? (v = i, true) : false;
    }
    // A size_t of binary 4.1, or a non-negative integer of the text.
    bool size(std::int64_t& v)
    {
        if (!binary) return text_integer(v) && v >= 0;
        if (size_bytes == 4) {
            std::uint32_t u;
            return raw(u) ? (v = u, true) : false;
        }
        std::uint64_t u;
        return raw(u) && u < (std::uint64_t(1) << 62) ? (v = static_cast<std::int64_t>(u), true) : false;
    }
    bool real(double& v)
    {
        if (binary) return raw(v);
        std::string_view w;
        return word(w) && __parse_real(w.data(), w.data() + w.size(), v);
    }
};

struct msh_content {
    bool has_nodes = false, has_references = false;
    __node_index index;
    std::map<std::pair<std::int64_t, std::int64_t>, std::int64_t> physical;  // (dim, entity) -> first physical
    __element_runs runs;
    std::vector<unsigned> references;  // per element record
    element_type types[256] = {};
};

int read_format(msh_file& f)
{
    std::string_view version;
    std::int64_t type, size;
    if (!f.word(version) || !f.text_integer(type) || !f.text_integer(size) || (type != 0 && type != 1))
        return f.fail("$MeshFormat: version, file type and data size expected");
    bool v2 = version.size() >= 2 && version.substr(0, 2) == "2.";
    f.v4 = version == "4.1";
    if (!v2 && !f.v4)
        return __fail(f.r, io_unsupported, f.path, "gmsh version " + std::string(version) + ": 2.x and 4.1 are read");
    if (size != 8 && !(f.v4 && size == 4)) return f.fail("$MeshFormat: data size " + std::to_string(size));
    f.size_bytes = static_cast<unsigned>(size);
    f.binary = type == 1;
    if (f.binary) {
        f.skip_line();
        std::int32_t one;
        if (!f.raw(one)) return f.fail("the file ends in $MeshFormat");
        if (one != 1 && one != 0x01000000) return f.fail("the binary check word is neither 1 nor 1 byte-swapped");
        f.swap = one != 1;
    }
    return 0;
}

int read_entities(msh_file& f, msh_content& c)
{
    std::int64_t counts[4];
    for (std::int64_t& n : counts)
        if (!f.size(n) || !f.fits(static_cast<std::uint64_t>(n), 4)) return f.fail("$Entities: four counts expected");
    for (int dim = 0; dim < 4; ++dim)
        for (std::int64_t k = 0; k < counts[dim]; ++k) {
            std::int64_t tag = 0, physicals = 0, bounding = 0, physical = 0, v = 0;
            double box;
            bool fine = f.integer(tag);
            for (int j = 0; j < (dim ? 6 : 3) && fine; ++j) fine = f.real(box);
            fine = fine && f.size(physicals) && f.fits(static_cast<std::uint64_t>(physicals), 4);
            for (std::int64_t j = 0; j < physicals && fine; ++j) fine = f.integer(v), physical = j ? physical : v;
            if (dim) fine = fine && f.size(bounding) && f.fits(static_cast<std::uint64_t>(bounding), 4);
            for (std::int64_t j = 0; j < bounding && fine; ++j) fine = f.integer(v);
            if (!fine)
                return f.fail("$Entities: entity " + std::to_string(k + 1) + " of dimension " + std::to_string(dim) +
                              " is cut short or malformed");
            if (physicals) c.physical[{dim, tag}] = physical, c.has_references = true;
        }
    return 0;
}

// pos and node_IDs from the tags and coordinates in file order; node_IDs stays empty for 1 to n.
int place_nodes(msh_file& f, msh_content& c, std::vector<std::int64_t> const& tags, std::vector<double> const& xyz,
                mesh& m)
{
    std::vector<char> keep;
    std::size_t n = c.index.build(tags, keep);
    __pass_over(f.r, "nodes repeating a tag", tags.size() - n);
    bool in_order = n == tags.size(), fit = c.index.largest() <= 0xFFFFFFFFLL;
    for (std::size_t j = 0; j < tags.size() && in_order; ++j) in_order = tags[j] == static_cast<std::int64_t>(j + 1);
    if (n > 0xFFFFFFFEu) return f.fail("more nodes than 32-bit columns can number");
    if (!m.pos.resize(3, n) || (!in_order && fit && !m.node_IDs.resize(n)))
        return __fail(f.r, io_no_memory, f.path, "not enough memory for " + std::to_string(n) + " nodes");
    if (!fit) __pass_over(f.r, "node tags above 4294967295 (nodes numbered in file order)", n);
    std::size_t k = 0;
    for (std::size_t j = 0; j < tags.size(); ++j) {
        if (!keep[j]) continue;
        std::copy(xyz.data() + 3 * j, xyz.data() + 3 * j + 3, m.pos.col(k));
        if (!in_order && fit) m.node_IDs[k] = static_cast<unsigned>(tags[j]);
        ++k;
    }
    c.has_nodes = true;
    return 0;
}

int read_nodes(msh_file& f, msh_content& c, mesh& m)
{
    if (c.has_nodes) return f.fail("a second $Nodes section");
    std::int64_t blocks = 1, n;
    if (f.v4) {
        std::int64_t least, most;
        if (!f.size(blocks) || !f.size(n) || !f.size(least) || !f.size(most)) return f.fail("$Nodes: four counts");
    } else {
        if (!f.text_integer(n) || n < 0) return f.fail("$Nodes: a count expected");
        if (f.binary) f.skip_line();
    }
    if (!f.fits(static_cast<std::uint64_t>(n), 28) || !f.fits(static_cast<std::uint64_t>(blocks), 16))
        return f.fail("$Nodes: " + std::to_string(n) + " nodes cannot fit in the rest of the file");
    std::vector<std::int64_t> tags;
    std::vector<double> xyz;
    tags.reserve(static_cast<std::size_t>(n));
    xyz.reserve(3 * static_cast<std::size_t>(n));
    for (std::int64_t b = 0; b < blocks; ++b) {
        std::int64_t dim = 0, entity, parametric = 0, count = n;
        if (f.v4 && (!f.integer(dim) || !f.integer(entity) || !f.integer(parametric) || !f.size(count) ||
                     count > n - static_cast<std::int64_t>(tags.size()) || dim < 0 || dim > 3))
            return f.fail("$Nodes: block " + std::to_string(b + 1) + " is malformed or holds too many nodes");
        std::size_t first = tags.size();
        for (std::int64_t k = 0; k < count; ++k) {
            std::int64_t tag;
            if (!(f.v4 ? f.size(tag) : f.integer(tag))) return f.fail("$Nodes: a node tag is missing");
            tags.push_back(tag);
            if (f.v4) continue;
            double x[3];
            if (!f.real(x[0]) || !f.real(x[1]) || !f.real(x[2])) return f.fail("$Nodes: a coordinate is missing");
            xyz.insert(xyz.end(), x, x + 3);
        }
        for (std::size_t k = first; f.v4 && k < tags.size(); ++k) {
            double x[3], u;
            if (!f.real(x[0]) || !f.real(x[1]) || !f.real(x[2])) return f.fail("$Nodes: a coordinate is missing");
            for (std::int64_t p = 0; parametric && p < dim; ++p)
                if (!f.real(u)) return f.fail("$Nodes: a parametric coordinate is missing");
            xyz.insert(xyz.end(), x, x + 3);
        }
    }
    if (static_cast<std::int64_t>(tags.size()) != n)
        return f.fail("$Nodes: the blocks hold " + std::to_string(tags.size()) + " nodes, not " + std::to_string(n));
    return place_nodes(f, c, tags, xyz, m);
}

// One element of gmsh type `type` whose node tags are in `tags`.
int add_element(msh_file& f, msh_content& c, std::int64_t type, std::int64_t const* tags, unsigned reference)
{
    std::size_t record = c.references.size();
    element_type t = type > 0 && type < 256 ? c.types[type] : ET_NONE;
    if (!t) {
        __pass_over(f.r, "gmsh elements of type " + std::to_string(type), 1);
        return 0;
    }
    unsigned columns[20];
    for (unsigned k = 0, n = __gmsh_cells[t].count; k < n; ++k)
        if ((columns[k] = c.index(tags[k])) == NONE_ID)
            return f.fail("element " + std::to_string(record + 1) + " refers to node tag " + std::to_string(tags[k]) +
                          ", which $Nodes does not hold");
    c.runs.add(t, columns, __gmsh_cells[t].nodes, record);
    c.references.push_back(reference);
    return 0;
}

unsigned as_reference(std::int64_t v)
{
    return v >= 0 && v <= 0xFFFFFFFFLL ? static_cast<unsigned>(v) : 0;
}

int read_elements_2(msh_file& f, msh_content& c)
{
    std::int64_t n, record[96];
    if (!f.text_integer(n) || n < 0 || !f.fits(static_cast<std::uint64_t>(n), 12))
        return f.fail("$Elements: a count that the rest of the file can hold expected");
    if (f.binary) f.skip_line();
    for (std::int64_t done = 0; done < n;) {
        std::int64_t type, follow = 1, tags, id;
        if (f.binary ? !f.integer(type) || !f.integer(follow) || !f.integer(tags)
                     : !f.text_integer(id) || !f.text_integer(type) || !f.text_integer(tags))
            return f.fail("$Elements: element " + std::to_string(done + 1) + " is cut short");
        if (follow < 1 || follow > n - done || tags < 0 || tags > 32)
            return f.fail("$Elements: a malformed element header");
        bool known = type > 0 && type < 32;
        if (!known && f.binary) return f.fail("$Elements: gmsh type " + std::to_string(type) + " of unknown size");
        std::int64_t count = known ? node_counts[type] : 0;
        for (std::int64_t e = 0; e < follow; ++e, ++done) {
            if (!known) {
                f.skip_line();
                __pass_over(f.r, "gmsh elements of type " + std::to_string(type), 1);
                continue;
            }
            std::int64_t fields = tags + count + (f.binary ? 1 : 0);
            for (std::int64_t k = 0; k < fields; ++k)
                if (!f.integer(record[k]))
                    return f.fail("$Elements: element " + std::to_string(done + 1) + " is cut short");
            std::int64_t const* tag = record + (f.binary ? 1 : 0);
            if (tags) c.has_references = true;
            if (add_element(f, c, type, tag + tags, tags ? as_reference(tag[0]) : 0) < 0) return f.r.code;
        }
    }
    return 0;
}

// A binary block of elements of type t in this machine's byte order, straight into its run.
int read_block_in_bulk(msh_file& f, msh_content& c, element_type t, std::size_t count, unsigned reference)
{
    std::size_t nodes = __gmsh_cells[t].count, width = 8 * (nodes + 1), record = c.references.size();
    if (count > (f.text.size() - f.at) / width) return f.fail("$Elements: the file ends inside a block");
    unsigned* out = c.runs.append(t, count, record);
    unsigned char const* order = __gmsh_cells[t].nodes;
    char const* p = f.text.data() + f.at;
    for (std::size_t e = 0; e < count; ++e, p += width)
        for (std::size_t k = 0; k < nodes; ++k) {
            std::int64_t tag;
            std::memcpy(&tag, p + 8 * (k + 1), 8);
            if ((out[e * nodes + order[k]] = c.index(tag)) == NONE_ID)
                return f.fail("element " + std::to_string(record + e + 1) + " refers to node tag " +
                              std::to_string(tag) + ", which $Nodes does not hold");
        }
    c.references.resize(record + count, reference);
    f.at += count * width;
    return 0;
}

int read_elements_4(msh_file& f, msh_content& c)
{
    std::int64_t blocks, n, least, most, record[96];
    if (!f.size(blocks) || !f.size(n) || !f.size(least) || !f.size(most) ||
        !f.fits(static_cast<std::uint64_t>(n), 16) || !f.fits(static_cast<std::uint64_t>(blocks), 20))
        return f.fail("$Elements: four counts that the rest of the file can hold expected");
    for (std::int64_t b = 0, done = 0; b < blocks; ++b) {
        std::int64_t dim, entity, type, count;
        if (!f.integer(dim) || !f.integer(entity) || !f.integer(type) || !f.size(count) || count > n - done)
            return f.fail("$Elements: block " + std::to_string(b + 1) + " is malformed or holds too many elements");
        bool known = type > 0 && type < 32;
        if (!known && f.binary) return f.fail("$Elements: gmsh type " + std::to_string(type) + " of unknown size");
        if (known && c.types[type] && count <= static_cast<std::int64_t>(f.text.size() - f.at))
            c.runs.expect(c.types[type], static_cast<std::size_t>(count));
        auto found = c.physical.find({dim, entity});
        unsigned reference = found == c.physical.end() ? 0 : as_reference(found->second);
        if (f.binary && !f.swap && f.size_bytes == 8 && known && c.types[type]) {
            if (read_block_in_bulk(f, c, c.types[type], static_cast<std::size_t>(count), reference) < 0)
                return f.r.code;
            done += count;
            continue;
        }
        for (std::int64_t e = 0; e < count; ++e, ++done) {
            if (!known) {
                f.skip_line();
                __pass_over(f.r, "gmsh elements of type " + std::to_string(type), 1);
                continue;
            }
            for (std::int64_t k = 0; k <= node_counts[type]; ++k)
                if (!f.size(record[k]))
                    return f.fail("$Elements: element " + std::to_string(done + 1) + " is cut short");
            if (add_element(f, c, type, record + 1, reference) < 0) return f.r.code;
        }
    }
    return 0;
}

// Moves past "$End<name>", which must come next (after blanks) when `next`, else anywhere on.
bool end_of(msh_file& f, std::string const& name, bool next)
{
    std::string end = "$End" + name;
    if (next) {
        while (f.at < f.text.size() && msh_file::blank(f.text[f.at])) ++f.at;
        if (f.text.compare(f.at, end.size(), end) != 0) return false;
        f.at += end.size();
        return true;
    }
    std::size_t found = f.text.find("\n" + end, f.at > 0 ? f.at - 1 : 0);
    if (found == std::string::npos) return false;
    f.at = found + 1 + end.size();
    return true;
}

int read_sections(msh_file& f, msh_content& c, mesh& m)
{
    bool format = false;
    for (;;) {
        while (f.at < f.text.size() && msh_file::blank(f.text[f.at])) ++f.at;
        if (f.at >= f.text.size()) break;
        if (f.text[f.at] != '$') return f.fail("a section such as $Nodes expected");
        std::size_t end = f.text.find_first_of("\r\n", f.at);
        if (end == std::string::npos) end = f.text.size();
        std::string name = f.text.substr(f.at + 1, end - f.at - 1);
        f.skip_line();
        int code = 0;
        if (name == "MeshFormat") {
            code = read_format(f), format = true;
        } else if (!format) {
            return __fail(f.r, io_malformed, f.path, "not a gmsh mesh: no $MeshFormat first");
        } else if (name == "Entities" && f.v4) {
            code = read_entities(f, c);
        } else if (name == "Nodes") {
            code = read_nodes(f, c, m);
        } else if (name == "Elements") {
            if (!c.has_nodes) return f.fail("$Elements before $Nodes");
            code = f.v4 ? read_elements_4(f, c) : read_elements_2(f, c);
        } else {
            if (!end_of(f, name, false)) return f.fail("$" + name + " has no $End" + name);
            __pass_over(f.r, "$" + name + " sections", 1);
            continue;
        }
        if (code < 0) return code;
        if (!end_of(f, name, true)) return f.fail("$End" + name + " expected");
    }
    if (!format) return __fail(f.r, io_malformed, f.path, "not a gmsh mesh: no $MeshFormat first");
    return 0;
}

}  // namespace

int __read_gmsh(std::string const& path, mesh& m, io_report& r)
{
    std::string text = __file_text(path);
    msh_file f{path, r, text};
    msh_content c;
    for (int t = 0; t < static_cast<int>(nbr_element_types); ++t)
        if (__gmsh_cells[t].name) c.types[__gmsh_cells[t].code] = static_cast<element_type>(t);
    if (read_sections(f, c, m) < 0) return r.code;
    if (!c.runs.to_blocks(m)) return __fail(r, io_no_memory, path, "not enough memory for the elements");
    for (std::size_t k = 0; c.has_references && k < c.runs.runs.size(); ++k) {
        std::vector<std::size_t> const& records = c.runs.runs[k].sources;
        if (!m.blocks[k].references.resize(records.size()))
            return __fail(r, io_no_memory, path, "not enough memory for the references");
        for (std::size_t e = 0; e < records.size(); ++e) m.blocks[k].references[e] = c.references[records[e]];
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
