// FEMAP neutral files read block by block: each block opened by a "-1" line and its number and
// closed by a "-1" line; nodes of block 403 kept by ID, elements of block 404 by their topology,
// their property ID as reference. Reals may carry Fortran exponents (1.5D+01).
#include "exchange/femap_tables.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "mesh_io/node_index.h"
#include "mesh_io/number_text.h"

#include <string_view>
#include <vector>

namespace qv7 {
namespace tessarium {
namespace {

constexpr std::size_t element_record_lines = 7;

struct femap_reader {
    femap_reader(std::string const& file, io_report& report) : path(file), r(report) {}
    std::string const& path;
    io_report& r;
    std::string_view text;
    std::size_t at = 0, line = 0;
    std::vector<std::int64_t> node_IDs;
    std::vector<double> xyz;
    struct elements {
        std::vector<std::int64_t> nodes;
        std::vector<unsigned> PIDs;
    } by_type[nbr_element_types];
    std::vector<element_type> type_order;
    std::vector<std::string_view> fields;

    bool next(std::string_view& l)
    {
        if (at >= text.size()) return false;
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) end = text.size();
        l = text.substr(at, end - at);
        at = end + 1;
        ++line;
        return true;
    }
    int fail(std::string const& what)
    {
        return __fail(r, io_malformed, path, "line " + std::to_string(line) + ": " + what);
    }
};

std::string_view trimmed(std::string_view s)
{
    std::size_t b = s.find_first_not_of(" \t\r"), e = s.find_last_not_of(" \t\r");
    return b == std::string_view::npos ? std::string_view() : s.substr(b, e - b + 1);
}

// The comma-separated fields of a line, empty ones kept in their place.
void split(std::string_view line, std::vector<std::string_view>& fields)
{
    fields.clear();
    for (std::size_t at = 0;;) {
        std::size_t comma = line.find(',', at);
        fields.push_back(
            trimmed(line.substr(at, comma == std::string_view::npos ? std::string_view::npos : comma - at)));
        if (comma == std::string_view::npos) break;
        at = comma + 1;
    }
}

bool integer(std::vector<std::string_view> const& fields, std::size_t k, std::int64_t& v)
{
    return k < fields.size() && __parse_integer(fields[k].data(), fields[k].data() + fields[k].size(), v);
}

int read_node(femap_reader& d, std::string_view l)
{
    split(l, d.fields);
    std::int64_t ID;
    if (!integer(d.fields, 0, ID) || ID <= 0) return d.fail("a node record without a valid ID");
    for (std::size_t k = 11; k < 14; ++k) {
        double v;
        if (k >= d.fields.size() || !__parse_real(d.fields[k].data(), d.fields[k].data() + d.fields[k].size(), v))
            return d.fail("node " + std::to_string(ID) + ": coordinate " + std::to_string(k - 10) + " is not a number");
        d.xyz.push_back(v);
    }
    d.node_IDs.push_back(ID);
    return 0;
}

int read_element(femap_reader& d, std::string_view first)
{
    split(first, d.fields);
    std::int64_t ID, PID, topology;
    if (!integer(d.fields, 0, ID) || !integer(d.fields, 2, PID) || !integer(d.fields, 4, topology) || PID < 0 ||
        PID > 0xFFFFFFFELL)
        return d.fail("an element record without ID, property and topology");
    std::int64_t slots[__femap_slot_count] = {};
    std::string_view l;
    for (std::size_t k = 1; k < element_record_lines; ++k) {
        if (!d.next(l) || trimmed(l) == "-1")
            return d.fail("element " + std::to_string(ID) + ": the record is cut short");
        if (k > 2) continue;
        split(l, d.fields);
        for (std::size_t s = 0; s < 10; ++s)
            if (!integer(d.fields, s, slots[10 * (k - 1) + s]))
                return d.fail("element " + std::to_string(ID) + ": node slot " + std::to_string(10 * (k - 1) + s) +
                              " is not a node ID");
    }
    __femap_kind const* kind = topology >= 0 && topology != 11 ? __femap_kind_of_topology(unsigned(topology)) : nullptr;
    if (!kind) {
        __pass_over(d.r, "element records of topology " + std::to_string(topology), 1);
        return 0;
    }
    femap_reader::elements& e = d.by_type[kind->type];
    if (e.PIDs.empty()) d.type_order.push_back(kind->type);
    unsigned n = nbr_nodes(kind->type);
    std::int64_t local[20];
    for (unsigned i = 0; i < n; ++i) local[kind->type == ET_WEDGE6 ? __turned_wedge[i] : i] = slots[kind->slots[i]];
    e.nodes.insert(e.nodes.end(), local, local + n);
    e.PIDs.push_back(static_cast<unsigned>(PID));
    return 0;
}

int read_blocks(femap_reader& d)
{
    std::string_view l;
    bool any = false, mesh_blocks = false;
    while (d.next(l)) {
        if (trimmed(l) != "-1") {
            if (!trimmed(l).empty()) __pass_over(d.r, "lines outside the data blocks", 1);
            continue;
        }
        std::string_view number;
        while (number.empty() && d.next(l)) number = trimmed(l);
        if (number.empty()) break;
        any = true;
        bool nodes = number == "403", elements = number == "404";
        mesh_blocks = mesh_blocks || nodes || elements;
        if (!nodes && !elements) __pass_over(d.r, "data block " + std::string(number), 1);
        std::size_t opened = d.line;
        for (bool closed = false; !closed;) {
            if (!d.next(l))
                return __fail(d.r, io_malformed, d.path,
                              "data block " + std::string(number) + " of line " + std::to_string(opened) +
                                  " is not closed by a \"-1\" line: the file seems cut short");
            if (trimmed(l) == "-1")
                closed = true;
            else if (trimmed(l).empty() || !(nodes || elements))
                continue;
            else if ((nodes ? read_node(d, l) : read_element(d, l)) < 0)
                return d.r.code;
        }
    }
    if (!any)
        return __fail(d.r, io_malformed, d.path, "not a FEMAP neutral file: no data block opened by a \"-1\" line");
    if (!mesh_blocks) return __fail(d.r, io_malformed, d.path, "no data block 403 or 404: the file holds no mesh");
    return 0;
}

}  // namespace

int __read_FEMAP_exact(std::string const& path, mesh& m, io_report& r)
{
    std::string text = __file_text(path);
    femap_reader d(path, r);
    d.text = text;
    if (read_blocks(d) < 0) return r.code;
    __node_index index;
    std::vector<char> keep;
    std::size_t n = index.build(d.node_IDs, keep);
    __pass_over(r, "node records repeating an ID", d.node_IDs.size() - n);
    bool IDs_fit = index.largest() <= 0xFFFFFFFFLL;
    if (n > 0xFFFFFFFEu) return __fail(r, io_malformed, path, "more nodes than 32-bit columns can number");
    if (!m.pos.resize(3, n) || (IDs_fit && !m.node_IDs.resize(n)))
        return __fail(r, io_no_memory, path, "not enough memory for " + std::to_string(n) + " nodes");
    if (!IDs_fit) __pass_over(r, "node IDs above 4294967295 (nodes numbered in file order)", n);
    for (std::size_t j = 0, c = 0; j < keep.size(); ++j) {
        if (!keep[j]) continue;
        std::copy(d.xyz.begin() + 3 * j, d.xyz.begin() + 3 * j + 3, m.pos.col(c));
        if (IDs_fit) m.node_IDs[c] = static_cast<unsigned>(d.node_IDs[j]);
        ++c;
    }
    for (element_type type : d.type_order) {
        femap_reader::elements const& e = d.by_type[type];
        std::size_t rows = nbr_nodes(type), count = e.PIDs.size();
        element_block b;
        b.type = type;
        if (!b.connect.resize(rows, count) || !b.references.resize(count))
            return __fail(r, io_no_memory, path, "not enough memory for the elements");
        for (std::size_t k = 0; k < rows * count; ++k) {
            unsigned column = index(e.nodes[k]);
            if (column == NONE_ID)
                return __fail(r, io_malformed, path,
                              std::string(__type_name(type)) + " element " + std::to_string(k / rows + 1) +
                                  " of block 404 uses node " + std::to_string(e.nodes[k]) + ", which block 403 lacks");
            b.connect.data()[k] = column;
        }
        std::copy(e.PIDs.begin(), e.PIDs.end(), b.references.data());
        m.blocks.push_back(b);
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
