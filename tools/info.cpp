// info: what a mesh file holds, as text or JSON.
#include "tool.h"

#include "tessarium/connectivity.h"
#include "tessarium/repair.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>

namespace tool {

using namespace qv7;
using namespace qv7::tessarium;

namespace {

double const relative_tolerance = 1e-6;

struct block_references {
    element_type type;
    std::size_t distinct;
    std::vector<unsigned> first;  // the smallest few
};

struct summary {
    std::string file, format;
    io_report read;
    std::size_t nodes = 0, by_type[nbr_element_types] = {};
    bool has_box = false;
    double lo[3] = {}, hi[3] = {};
    std::vector<block_references> references;
    std::size_t unused = 0, duplicates_exact = 0, duplicates_close = 0;
    double tolerance = 0.0;
    unsigned boundary_dim = 0;  // 0 without faces or solids
    std::size_t free = 0, non_manifold = 0, pieces = 0;
    quality_summary quality;
};

// Real boundaries of column e: all rows of a pure type, those of the kind the nodes tell in a
// padded mixed column.
unsigned boundaries_of(dense2D<unsigned> const& connect, element_type type, std::size_t e)
{
    if (type != ET_SOLID_MIX && type != ET_FACE_MIX) return nbr_boundaries(type);
    unsigned n = 0;
    for (std::size_t i = 0; i < connect.rows(); ++i) n += connect(i, e) != NONE_ID;
    static unsigned const solid[9] = {0, 0, 0, 0, 4, 5, 5, 0, 6};
    return type == ET_FACE_MIX ? n : solid[std::min(n, 8u)];
}

// Boundaries without a neighbour, and those whose neighbour does not name them back.
void count_sides(dense2D<unsigned> const& connect, element_type type, dense2D<unsigned> const& neighbors,
                 std::size_t& lone, std::size_t& one_way)
{
    lone = one_way = 0;
    for (std::size_t e = 0; e < neighbors.cols(); ++e)
        for (unsigned b = 0, nb = boundaries_of(connect, type, e); b < nb; ++b) {
            unsigned n = neighbors(b, e);
            if (n == NONE_ID) {
                ++lone;
                continue;
            }
            unsigned const* back = neighbors.col(n);
            one_way += std::find(back, back + neighbors.rows(), static_cast<unsigned>(e)) == back + neighbors.rows();
        }
}

// Free and non-manifold boundaries, and pieces, of the highest-dimension elements. A boundary
// shared by k > 2 elements has no neighbour in the plain neighbours, while the non-manifold form
// pairs the first and last of them and points the k - 2 others one way at the first.
int boundaries(mesh const& m, summary& s)
{
    dense2D<unsigned> connect, neighbors;
    element_type type;
    if (!top_elements(m, connect, type)) return 0;
    progress p("finding boundaries");
    s.boundary_dim = element_dim(type) - 1;
    if (get_neighbors(connect, type, false, neighbors) < 0) return -199;
    std::size_t lone, one_way;
    count_sides(connect, type, neighbors, lone, one_way);
    s.free = lone;
    if (lone != 0) {
        if (get_neighbors(connect, type, true, neighbors) < 0) return -199;
        std::size_t shared = lone;
        count_sides(connect, type, neighbors, lone, one_way);
        s.free = lone;
        s.non_manifold = (shared - lone - one_way) / 2;
    }
    dense1D<unsigned, 8> indices, offsets;
    if (get_subdomains(neighbors, indices, offsets) < 0) return -199;
    s.pieces = offsets.size() == 0 ? 0 : offsets.size() - 1;
    return 0;
}

int nodes(mesh const& m, summary& s)
{
    progress p("looking for unused and duplicate nodes");
    std::vector<char> used(m.nbr_nodes(), 0);
    for (element_block const& b : m.blocks)
        for (std::size_t e = 0; e < b.connect.cols(); ++e)
            for (std::size_t i = 0; i < b.connect.rows(); ++i)
                if (b.connect(i, e) < used.size()) used[b.connect(i, e)] = 1;
    s.unused = static_cast<std::size_t>(std::count(used.begin(), used.end(), 0));
    s.tolerance = relative_tolerance * diagonal(m);
    // Coincident nodes are neighbours once sorted by coordinates; close ones need the search.
    std::size_t rows = m.pos.rows();
    std::vector<unsigned> order;  // finite nodes only, for a strict order
    order.reserve(m.nbr_nodes());
    for (std::size_t j = 0; j < m.nbr_nodes(); ++j)
        if (std::all_of(m.pos.col(j), m.pos.col(j) + rows, [](double x) { return std::isfinite(x); }))
            order.push_back(static_cast<unsigned>(j));
    auto less = [&](unsigned a, unsigned b) {
        return std::lexicographical_compare(m.pos.col(a), m.pos.col(a) + rows, m.pos.col(b), m.pos.col(b) + rows);
    };
    std::sort(order.begin(), order.end(), less);
    for (std::size_t k = 1; k < order.size(); ++k) s.duplicates_exact += !less(order[k - 1], order[k]);
    dense2D<double> pos;
    if (!pos.copy(m.pos)) return -199;
    int close = merge(pos, s.tolerance);
    if (close < 0) return -199;
    s.duplicates_close = static_cast<std::size_t>(close);
    return 0;
}

int summarize_file(std::string const& path, summary& s)
{
    s.file = path;
    s.format = format_name(path);
    mesh m;
    {
        progress p("reading " + path);
        s.read = read_mesh(path, m);
    }
    if (!s.read) return fail(s.read.message);
    s.nodes = m.nbr_nodes();
    auto counts = count_by_type(m);
    std::copy(counts.begin(), counts.end(), s.by_type);
    s.has_box = bounding_box(m, s.lo, s.hi);
    for (element_block const& b : m.blocks) {
        if (b.references.empty()) continue;
        std::set<unsigned> distinct(b.references.begin(), b.references.end());
        block_references r{b.type, distinct.size(), {}};
        for (auto it = distinct.begin(); it != distinct.end() && r.first.size() < 8; ++it) r.first.push_back(*it);
        s.references.push_back(r);
    }
    std::vector<dense1D<double, 8>> q;
    if (nodes(m, s) < 0 || boundaries(m, s) < 0 || measure_quality(m, q) < 0)
        return fail(path + ": not enough memory to look at the mesh");
    s.quality = summarize(q);
    return exit_ok;
}

void print_text(summary const& s)
{
    std::printf("%s: %s, %zu nodes, %zu elements\n", s.file.c_str(), s.format.c_str(), s.read.nodes, s.read.elements);
    for (unsigned t = 0; t < nbr_element_types; ++t)
        if (s.by_type[t] != 0) std::printf("  %-20s %zu\n", type_name(static_cast<element_type>(t)), s.by_type[t]);
    if (s.has_box)
        std::printf("  bounding box         [%s, %s] x [%s, %s] x [%s, %s]\n", number(s.lo[0]).c_str(),
                    number(s.hi[0]).c_str(), number(s.lo[1]).c_str(), number(s.hi[1]).c_str(), number(s.lo[2]).c_str(),
                    number(s.hi[2]).c_str());
    for (block_references const& r : s.references) {
        std::printf("  references of %s: %zu distinct:", type_name(r.type), r.distinct);
        for (unsigned v : r.first) std::printf(" %u", v);
        std::printf("%s\n", r.distinct > r.first.size() ? " ..." : "");
    }
    std::printf("  unused nodes         %zu\n", s.unused);
    std::printf("  duplicate nodes      %zu coincident, %zu within %s\n", s.duplicates_exact, s.duplicates_close,
                number(s.tolerance).c_str());
    if (s.boundary_dim != 0) {
        char const* kind = s.boundary_dim == 2 ? "faces" : "edges";
        std::printf("  free %s           %zu\n", kind, s.free);
        std::printf("  non-manifold %s   %zu\n", kind, s.non_manifold);
        std::printf("  connected pieces     %zu\n", s.pieces);
    }
    if (s.quality.measured != 0) {
        std::printf("  inverted elements    %zu\n", s.quality.inverted);
        std::printf("  quality              min %s, mean %s\n", number(s.quality.min).c_str(),
                    number(s.quality.mean).c_str());
        for (std::size_t k = 0; k < 11; ++k)
            if (s.quality.bins[k] != 0) std::printf("    %-8s %zu\n", bin_label(k), s.quality.bins[k]);
    }
    for (io_count const& c : s.read.passed_over)
        std::printf("  passed over          %zu %s\n", c.count, c.what.c_str());
}

std::string quoted(std::string const& text)
{
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\u%04x", c);
            out += esc;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

void print_json(summary const& s)
{
    std::printf("{\"file\": %s, \"format\": %s, \"nodes\": %zu, \"elements\": %zu,\n", quoted(s.file).c_str(),
                quoted(s.format).c_str(), s.read.nodes, s.read.elements);
    std::printf(" \"types\": {");
    char const* sep = "";
    for (unsigned t = 0; t < nbr_element_types; ++t)
        if (s.by_type[t] != 0) {
            std::printf("%s%s: %zu", sep, quoted(type_name(static_cast<element_type>(t))).c_str(), s.by_type[t]);
            sep = ", ";
        }
    std::printf("},\n");
    if (s.has_box)
        std::printf(" \"bounding_box\": {\"min\": [%.17g, %.17g, %.17g], \"max\": [%.17g, %.17g, %.17g]},\n", s.lo[0],
                    s.lo[1], s.lo[2], s.hi[0], s.hi[1], s.hi[2]);
    std::printf(" \"references\": [");
    sep = "";
    for (block_references const& r : s.references) {
        std::printf("%s{\"type\": %s, \"distinct\": %zu, \"first\": [", sep, quoted(type_name(r.type)).c_str(),
                    r.distinct);
        for (std::size_t k = 0; k < r.first.size(); ++k) std::printf("%s%u", k ? ", " : "", r.first[k]);
        std::printf("]}");
        sep = ", ";
    }
    std::printf(
        "],\n \"unused_nodes\": %zu, \"duplicate_nodes\": {\"coincident\": %zu, \"within_tolerance\": %zu, "
        "\"tolerance\": %.17g},\n",
        s.unused, s.duplicates_exact, s.duplicates_close, s.tolerance);
    if (s.boundary_dim != 0) {
        char const* kind = s.boundary_dim == 2 ? "faces" : "edges";
        std::printf(" \"free_%s\": %zu, \"non_manifold_%s\": %zu, \"pieces\": %zu,\n", kind, s.free, kind,
                    s.non_manifold, s.pieces);
    }
    if (s.quality.measured != 0) {
        std::printf(" \"inverted\": %zu, \"quality\": {\"min\": %.17g, \"mean\": %.17g, \"histogram\": {",
                    s.quality.inverted, s.quality.min, s.quality.mean);
        for (std::size_t k = 0; k < 11; ++k)
            std::printf("%s\"%s\": %zu", k ? ", " : "", bin_label(k), s.quality.bins[k]);
        std::printf("}},\n");
    }
    std::printf(" \"passed_over\": {");
    for (std::size_t k = 0; k < s.read.passed_over.size(); ++k)
        std::printf("%s%s: %zu", k ? ", " : "", quoted(s.read.passed_over[k].what).c_str(),
                    s.read.passed_over[k].count);
    std::printf("}}");
}

}  // namespace

void add_info(CLI::App& app, runner& run)
{
    struct options {
        std::vector<std::string> files;
        bool json = false;
    };
    auto o = std::make_shared<options>();
    CLI::App* c = app.add_subcommand(
        "info",
        "What mesh files hold: counts, box, references, duplicate and unused nodes, free and non-manifold "
        "boundaries, pieces, quality");
    c->add_option("FILE", o->files, "Mesh files to read")->required();
    c->add_flag("--json", o->json, "One JSON object per file (an array for several files)");
    c->footer("Example: tessarium info --json part.stl\n");
    c->callback([&run, o] {
        run = [o]() -> int {
            int result = exit_ok;
            bool array = o->json && o->files.size() > 1;
            if (array) std::printf("[");
            char const* sep = "";
            for (std::string const& path : o->files) {
                summary s;
                if (int code = summarize_file(path, s)) {
                    result = code;
                    continue;
                }
                if (o->json) {
                    std::printf("%s", sep);
                    print_json(s);
                    sep = ",\n";
                } else {
                    print_text(s);
                }
            }
            if (array) std::printf("]");
            if (o->json) std::printf("\n");
            return result;
        };
    });
}

}  // namespace tool
