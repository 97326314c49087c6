#include "tool.h"

#include "tessarium/repair.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include <unistd.h>

namespace tool {

using namespace qv7;
using namespace qv7::tessarium;

bool progress::quiet = false;

progress::progress(std::string phase)
    : phase_(std::move(phase)), start_(std::chrono::steady_clock::now()), shown_(!quiet && isatty(2))
{
    if (shown_) std::fprintf(stderr, "%s ...", phase_.c_str());
}

// Quick phases leave no trace; slow ones keep their time.
progress::~progress()
{
    if (!shown_) return;
    double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    if (s < 1.0)
        std::fprintf(stderr, "\r\033[K");
    else
        std::fprintf(stderr, "\r\033[K%s: %.1f s\n", phase_.c_str(), s);
}

int fail(std::string const& what)
{
    std::fprintf(stderr, "tessarium: %s\n", what.c_str());
    return exit_bad_input;
}

int load(std::string const& path, mesh& m)
{
    progress p("reading " + path);
    io_report r = read_mesh(path, m);
    return r ? exit_ok : fail(r.message);
}

int save(std::string const& path, mesh const& m, io_options const& options)
{
    progress p("writing " + path);
    io_report r = write_mesh(path, m, options);
    if (!r) return fail(r.message);
    for (io_count const& c : r.passed_over)
        std::fprintf(stderr, "tessarium: %s: left out %zu %s\n", path.c_str(), c.count, c.what.c_str());
    return exit_ok;
}

std::string format_name(std::string const& path)
{
    static char const* const table[][2] = {{"stl", "STL"},     {"obj", "Wavefront OBJ"}, {"bdf", "NASTRAN"},
                                           {"nas", "NASTRAN"}, {"dat", "NASTRAN"},       {"neu", "FEMAP"},
                                           {"mesh", "Medit"},  {"vtk", "VTK"},           {"case", "EnSight"},
                                           {"msh", "gmsh"},    {"meshb", "Medit"}};
    std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || path.find_first_of('/', dot) != std::string::npos) return "";
    std::string ext = path.substr(dot + 1);
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (auto const& row : table)
        if (ext == row[0]) return row[1];
    return "";
}

// Columns of `values` picked by `old_of_new`.
static dense2D<double> pick_columns(dense2D<double> const& values, std::vector<std::size_t> const& old_of_new)
{
    dense2D<double> out;
    if (!out.resize(values.rows(), old_of_new.size())) return out;
    for (std::size_t j = 0; j < old_of_new.size(); ++j)
        std::copy(values.col(old_of_new[j]), values.col(old_of_new[j]) + values.rows(), out.col(j));
    return out;
}

long drop_unused_nodes(mesh& m)
{
    std::vector<dense2D<unsigned>> connects;
    for (element_block const& b : m.blocks) connects.push_back(b.connect);
    dense1D<unsigned, 8> new_of_old;
    int removed = simplify(m.pos, connects.data(), connects.data() + connects.size(), new_of_old, 0);
    if (removed <= 0) return removed;
    for (std::size_t i = 0; i < connects.size(); ++i) m.blocks[i].connect = connects[i];
    std::vector<std::size_t> old_of_new;
    for (std::size_t i = 0; i < new_of_old.size(); ++i)
        if (new_of_old[i] != NONE_ID) old_of_new.push_back(i);
    if (!m.node_IDs.empty()) {
        dense1D<unsigned, 8> ids(old_of_new.size());
        for (std::size_t j = 0; j < old_of_new.size(); ++j) ids[j] = m.node_IDs[old_of_new[j]];
        m.node_IDs = ids;
    }
    for (mesh_field& f : m.node_fields) f.values = pick_columns(f.values, old_of_new);
    return removed;
}

void keep_elements(mesh& m, std::vector<char> const& keep)
{
    std::vector<std::size_t> kept;  // over all blocks, for the element fields
    std::size_t first = 0;
    std::vector<element_block> blocks;
    for (element_block& b : m.blocks) {
        std::size_t n = b.connect.cols(), k = 0;
        dense1D<unsigned, 8> refs(b.references.empty() ? 0 : n);
        for (std::size_t e = 0; e < n; ++e) {
            if (!keep[first + e]) continue;
            if (k != e) std::copy(b.connect.col(e), b.connect.col(e) + b.connect.rows(), b.connect.col(k));
            if (!b.references.empty()) refs[k] = b.references[e];
            kept.push_back(first + e);
            ++k;
        }
        first += n;
        if (k == 0) continue;
        b.connect.resize(b.connect.rows(), k);
        if (!b.references.empty()) {
            refs.resize(k);
            b.references = refs;
        }
        blocks.push_back(b);
    }
    m.blocks = blocks;
    for (mesh_field& f : m.element_fields) f.values = pick_columns(f.values, kept);
}

bool top_elements(mesh const& m, dense2D<unsigned>& connect, element_type& type)
{
    for (unsigned dim : {3u, 2u}) {
        std::vector<element_block const*> of_dim;
        for (element_block const& b : m.blocks)
            if (element_dim(b.type) == dim && b.connect.cols() != 0) of_dim.push_back(&b);
        if (of_dim.empty()) continue;
        element_type t = of_dim[0]->type;
        bool linear = nbr_nodes(t) == nbr_base_nodes(t);
        if (of_dim.size() == 1 && linear) {
            connect = of_dim[0]->connect;
            type = t;
            return true;
        }
        return to_mixed(m, dim, connect, type) > 0;
    }
    return false;
}

std::string number(double x)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", x);
    return text;
}

}  // namespace tool
