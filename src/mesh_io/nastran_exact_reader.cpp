// NASTRAN decks read card by card: grid points in the coordinate systems their CP names, element
// cards by the position of their node fields, nodes kept by ID in a compact array.
#include "mesh_io/cell_kinds.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "mesh_io/nastran_deck_lines.h"
#include "mesh_io/node_index.h"
#include "mesh_io/number_text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>

namespace qv7 {
namespace tessarium {
namespace {

// An element card: where its nodes start, how many corners it has, and the mid-side (and
// centre) nodes that may follow, all of them or none.
struct element_card {
    char const* name;
    unsigned char first_node, corners, mids, centre;
    element_type linear, quadratic, full;
};

constexpr element_card element_cards[] = {
    {"CBAR", 3, 2, 0, 0, ET_EDGE2, ET_NONE, ET_NONE},
    {"CBEAM", 3, 2, 0, 0, ET_EDGE2, ET_NONE, ET_NONE},
    {"CBEND", 3, 2, 0, 0, ET_EDGE2, ET_NONE, ET_NONE},
    {"CHEXA", 3, 8, 12, 0, ET_HEXA8, ET_HEXA20, ET_NONE},
    {"CONROD", 2, 2, 0, 0, ET_EDGE2, ET_NONE, ET_NONE},
    {"CPENTA", 3, 6, 9, 0, ET_WEDGE6, ET_WEDGE15, ET_NONE},
    {"CPYRA", 3, 5, 8, 0, ET_PYRAMID5, ET_PYRAMID13, ET_NONE},
    {"CPYRAM", 3, 5, 8, 0, ET_PYRAMID5, ET_PYRAMID13, ET_NONE},
    {"CQUAD", 3, 4, 4, 1, ET_FACE_Q4, ET_FACE_Q8, ET_FACE_Q9},
    {"CQUAD4", 3, 4, 0, 0, ET_FACE_Q4, ET_NONE, ET_NONE},
    {"CQUAD8", 3, 4, 4, 0, ET_FACE_Q4, ET_FACE_Q8, ET_NONE},
    {"CQUADR", 3, 4, 0, 0, ET_FACE_Q4, ET_NONE, ET_NONE},
    {"CROD", 3, 2, 0, 0, ET_EDGE2, ET_NONE, ET_NONE},
    {"CSHEAR", 3, 4, 0, 0, ET_FACE_Q4, ET_NONE, ET_NONE},
    {"CTETRA", 3, 4, 6, 0, ET_TETRA4, ET_TETRA10, ET_NONE},
    {"CTRIA3", 3, 3, 0, 0, ET_FACE_T3, ET_NONE, ET_NONE},
    {"CTRIA6", 3, 3, 3, 0, ET_FACE_T3, ET_FACE_T6, ET_NONE},
    {"CTRIAR", 3, 3, 0, 0, ET_FACE_T3, ET_NONE, ET_NONE},
    {"CTUBE", 3, 2, 0, 0, ET_EDGE2, ET_NONE, ET_NONE},
};

element_card const* find_element_card(std::string const& name)
{
    for (element_card const& c : element_cards)
        if (name == c.name) return &c;
    return nullptr;
}

// The file position of each local node; CQUAD's nine nodes are in the library's order.
unsigned char const* file_order(element_type type)
{
    static constexpr unsigned char in_order[20] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,
                                                   10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    return type == ET_FACE_Q9 ? in_order : __nastran_cells[type].nodes;
}

struct grid {
    std::int64_t ID, CP;
    double x[3];
};

// A coordinate system: its kind (R, C or S), its origin and axes in the basic system.
struct frame {
    char kind;
    std::int64_t reference;
    double A[3], B[3], C[3];  // as given, in the reference system
    std::int64_t grids[3];    // A, B and C as GRID points (CORD1 cards); 0 for points given as numbers
    double origin[3], axes[3][3];
    int state;  // 0 not yet placed, 1 being placed, 2 placed
};

struct elements_of_type {
    std::vector<std::int64_t> nodes, IDs;
    std::vector<unsigned> PIDs;
};

struct reader {
    std::string const& path;
    io_report& r;
    std::vector<grid> grids;
    std::map<std::int64_t, frame> frames;
    elements_of_type elements[nbr_element_types];
    std::vector<element_type> type_order;

    int fail(__nastran_card const& card, std::string const& what)
    {
        std::string where = card.file && *card.file != path ? *card.file + ", line " : "line ";
        return __fail(r, io_malformed, path, where + std::to_string(card.line) + ": " + card.name + " " + what);
    }
};

bool integer_field(__nastran_card const& card, std::size_t k, std::int64_t& v, std::int64_t blank)
{
    std::string_view f = card.field(k);
    if (f.find_first_not_of(' ') == std::string_view::npos) return v = blank, true;
    return __parse_integer(f.data(), f.data() + f.size(), v);
}

bool real_field(__nastran_card const& card, std::size_t k, double& v)
{
    std::string_view f = card.field(k);
    char const* b = f.data();
    char const* e = b + f.size();
    __trim(b, e);
    if (b == e) return v = 0.0, true;
    return __parse_real(b, e, v);
}

int read_grid(reader& d, __nastran_card const& card)
{
    grid g;
    if (!integer_field(card, 1, g.ID, 0) || g.ID <= 0) return d.fail(card, "without a valid ID");
    if (!integer_field(card, 2, g.CP, 0) || g.CP < 0) return d.fail(card, "with a CP field that is not a system ID");
    for (int k = 0; k < 3; ++k)
        if (!real_field(card, 3 + k, g.x[k]))
            return d.fail(card, "coordinate " + std::to_string(k + 1) + " is not a number");
    d.grids.push_back(g);
    return 0;
}

int add_frame(reader& d, __nastran_card const& card, std::int64_t ID, frame const& f)
{
    if (!d.frames.emplace(ID, f).second) return d.fail(card, "defines system " + std::to_string(ID) + " again");
    return 0;
}

// CORD2R/C/S: a system, its reference system and three points; CORD1R/C/S: one or two systems of
// three GRID points each.
int read_frame(reader& d, __nastran_card const& card)
{
    frame f{card.name[5], 0, {}, {}, {}, {}, {}, {}, 0};
    std::int64_t ID;
    if (card.name[4] == '1') {
        for (int s = 0; s < 2; ++s) {
            if (!integer_field(card, 1 + 4 * s, ID, 0) || ID < 0 || (s == 0 && ID == 0))
                return d.fail(card, "without a valid system ID");
            if (ID == 0) break;
            for (int p = 0; p < 3; ++p)
                if (!integer_field(card, 2 + 4 * s + p, f.grids[p], 0) || f.grids[p] <= 0)
                    return d.fail(card, std::to_string(ID) + ": GRID point " + std::to_string(p + 1) + " is not an ID");
            if (add_frame(d, card, ID, f) < 0) return d.r.code;
        }
        return 0;
    }
    if (!integer_field(card, 1, ID, 0) || ID <= 0) return d.fail(card, "without a valid system ID");
    if (!integer_field(card, 2, f.reference, 0) || f.reference < 0) return d.fail(card, "with an invalid RID");
    double* points[3] = {f.A, f.B, f.C};
    for (int p = 0; p < 3; ++p)
        for (int k = 0; k < 3; ++k)
            if (!real_field(card, 3 + 3 * p + k, points[p][k]))
                return d.fail(card, "with a point field that is not a number");
    return add_frame(d, card, ID, f);
}

int read_element(reader& d, __nastran_card const& card, element_card const& c)
{
    std::int64_t ID, PID = 0, node[21];
    unsigned total = c.corners + c.mids + c.centre, given_mids = 0;
    if (!integer_field(card, 1, ID, 0) || ID <= 0) return d.fail(card, "without a valid element ID");
    if (c.first_node == 3 && (!integer_field(card, 2, PID, 0) || PID < 0 || PID > 0xFFFFFFFE))
        return d.fail(card, std::to_string(ID) + ": the property ID is not a number");
    for (unsigned k = 0; k < total; ++k) {
        if (!integer_field(card, c.first_node + k, node[k], 0) || node[k] < 0)
            return d.fail(card, std::to_string(ID) + ": node field " + std::to_string(k + 1) + " is not a node ID");
        if (k < c.corners && node[k] == 0)
            return d.fail(card, std::to_string(ID) + ": corner node " + std::to_string(k + 1) + " is blank");
        if (k >= c.corners && k < c.corners + c.mids && node[k] != 0) ++given_mids;
    }
    bool centre = c.centre && node[total - 1] != 0;
    element_type type = given_mids != c.mids ? c.linear : centre ? c.full : given_mids ? c.quadratic : c.linear;
    if (given_mids != 0 && given_mids != c.mids)  // edges partly curved: the corners alone are kept
        __pass_over(d.r, card.name + " cards with some mid-side nodes blank, read by their corners", 1);
    elements_of_type& e = d.elements[type];
    if (e.IDs.empty()) d.type_order.push_back(type);
    e.IDs.push_back(ID);
    e.PIDs.push_back(static_cast<unsigned>(PID));
    unsigned n = nbr_nodes(type);
    e.nodes.insert(e.nodes.end(), node, node + n);
    return 0;
}

enum class card_kind { grid, frame, include, element, begin, other };

card_kind kind_of(std::string const& name, element_card const*& element)
{
    element = nullptr;
    if (name == "GRID") return card_kind::grid;
    if (name.size() == 6 && name.compare(0, 4, "CORD") == 0 && (name[4] == '1' || name[4] == '2') &&
        (name[5] == 'R' || name[5] == 'C' || name[5] == 'S'))
        return card_kind::frame;
    if (name == "INCLUDE") return card_kind::include;
    if ((element = find_element_card(name))) return card_kind::element;
    return name.compare(0, 5, "BEGIN") == 0 ? card_kind::begin : card_kind::other;
}

int read_cards(reader& d, std::string text)
{
    __nastran_deck deck(d.path, std::move(text));
    __nastran_card card;
    // Decks list cards of one kind in long runs: the last name's kind is kept.
    std::string last_name;
    card_kind kind = card_kind::other;
    element_card const* element = nullptr;
    while (deck.next(card)) {
        if (card.name != last_name) last_name = card.name, kind = kind_of(card.name, element);
        int code = 0;
        switch (kind) {
        case card_kind::grid:
            code = read_grid(d, card);
            break;
        case card_kind::frame:
            code = read_frame(d, card);
            break;
        case card_kind::element:
            code = read_element(d, card, *element);
            break;
        case card_kind::include: {
            std::string why;
            if (!deck.include(card, why)) return d.fail(card, why);
            break;
        }
        case card_kind::begin:
            break;
        case card_kind::other:
            __pass_over(d.r, card.name + " cards", 1);
            break;
        }
        if (code < 0) return code;
    }
    __pass_over(d.r, "continuation lines without a card", deck.stray_continuations());
    return 0;
}

// ---- coordinate systems ----

void sub(double const* a, double const* b, double* c)
{
    for (int k = 0; k < 3; ++k) c[k] = a[k] - b[k];
}

bool normalise(double* v)
{
    double n = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (!(n > 0.0)) return false;
    for (int k = 0; k < 3; ++k) v[k] /= n;
    return true;
}

// A point given in the frame's own coordinates, in the basic system.
void to_basic(frame const& f, double const* u, double* x)
{
    double p[3] = {u[0], u[1], u[2]};
    double const degree = std::acos(-1.0) / 180.0;
    if (f.kind == 'C') {
        p[0] = u[0] * std::cos(u[1] * degree);
        p[1] = u[0] * std::sin(u[1] * degree);
    } else if (f.kind == 'S') {
        p[0] = u[0] * std::sin(u[1] * degree) * std::cos(u[2] * degree);
        p[1] = u[0] * std::sin(u[1] * degree) * std::sin(u[2] * degree);
        p[2] = u[0] * std::cos(u[1] * degree);
    }
    for (int k = 0; k < 3; ++k) x[k] = f.origin[k] + f.axes[0][k] * p[0] + f.axes[1][k] * p[1] + f.axes[2][k] * p[2];
}

std::string place(reader& d, __node_index const& index, std::int64_t ID, frame& f);

// The position of a GRID point in the basic system, placing its system first. An error text, or empty.
std::string basic_position(reader& d, __node_index const& index, grid const& g, double* x)
{
    if (g.CP == 0) return std::copy(g.x, g.x + 3, x), std::string();
    auto it = d.frames.find(g.CP);
    if (it == d.frames.end())
        return "GRID " + std::to_string(g.ID) + " is given in system " + std::to_string(g.CP) +
               ", which no CORD1R, CORD1C, CORD1S, CORD2R, CORD2C or CORD2S card defines";
    std::string why = place(d, index, g.CP, it->second);
    if (why.empty()) to_basic(it->second, g.x, x);
    return why;
}

// Places a frame, and first the system or the GRID points its points are given in. An error
// text, or empty.
std::string place(reader& d, __node_index const& index, std::int64_t ID, frame& f)
{
    if (f.state == 2) return {};
    if (f.state == 1) return "system " + std::to_string(ID) + " is defined through itself";
    f.state = 1;
    double A[3], B[3], C[3];
    std::copy(f.A, f.A + 3, A), std::copy(f.B, f.B + 3, B), std::copy(f.C, f.C + 3, C);
    if (f.grids[0] != 0) {
        double* points[3] = {A, B, C};
        for (int p = 0; p < 3; ++p) {
            unsigned column = index(f.grids[p]);
            if (column == NONE_ID)
                return "system " + std::to_string(ID) + " is given by GRID " + std::to_string(f.grids[p]) +
                       ", which no GRID card defines";
            std::string why = basic_position(d, index, d.grids[column], points[p]);
            if (!why.empty()) return why;
        }
    } else if (f.reference != 0) {
        auto it = d.frames.find(f.reference);
        if (it == d.frames.end())
            return "system " + std::to_string(ID) + " refers to system " + std::to_string(f.reference) +
                   ", which no CORD2R, CORD2C or CORD2S card defines";
        std::string why = place(d, index, f.reference, it->second);
        if (!why.empty()) return why;
        to_basic(it->second, f.A, A), to_basic(it->second, f.B, B), to_basic(it->second, f.C, C);
    }
    double* e1 = f.axes[0];
    double* e2 = f.axes[1];
    double* e3 = f.axes[2];
    sub(B, A, e3);
    sub(C, A, e1);
    double along = e1[0] * e3[0] + e1[1] * e3[1] + e1[2] * e3[2];
    bool ok = normalise(e3);
    along = ok ? e1[0] * e3[0] + e1[1] * e3[1] + e1[2] * e3[2] : along;
    for (int k = 0; k < 3; ++k) e1[k] -= along * e3[k];
    if (!ok || !normalise(e1)) return "system " + std::to_string(ID) + " has points A, B and C on one line";
    e2[0] = e3[1] * e1[2] - e3[2] * e1[1];
    e2[1] = e3[2] * e1[0] - e3[0] * e1[2];
    e2[2] = e3[0] * e1[1] - e3[1] * e1[0];
    std::copy(A, A + 3, f.origin);
    f.state = 2;
    return {};
}

// ---- the mesh ----

// Fills pos and node_IDs, and the index; a repeated ID keeps its first GRID card.
int place_nodes(reader& d, mesh& m, __node_index& index)
{
    std::vector<grid>& grids = d.grids;
    std::size_t n = grids.size();
    std::vector<std::int64_t> IDs(n);
    std::vector<char> keep;
    for (std::size_t j = 0; j < n; ++j) IDs[j] = grids[j].ID;
    index.build(IDs, keep);
    std::size_t kept = 0;
    for (std::size_t j = 0; j < n; ++j)
        if (keep[j]) grids[kept++] = grids[j];
    grids.resize(kept);
    __pass_over(d.r, "GRID cards repeating a node ID", n - grids.size());
    n = grids.size();
    if (n > 0xFFFFFFFEu) return __fail(d.r, io_malformed, d.path, "more nodes than 32-bit columns can number");
    bool IDs_fit = index.largest() <= 0xFFFFFFFFLL;
    if (!m.pos.resize(3, n) || (IDs_fit && !m.node_IDs.resize(n)))
        return __fail(d.r, io_no_memory, d.path, "not enough memory for " + std::to_string(n) + " nodes");
    if (!IDs_fit) __pass_over(d.r, "node IDs above 4294967295 (nodes numbered in file order)", n);
    for (std::size_t j = 0; j < n; ++j) {
        grid const& g = grids[j];
        std::string why = basic_position(d, index, g, m.pos.col(j));
        if (!why.empty()) return __fail(d.r, io_malformed, d.path, why);
        if (IDs_fit) m.node_IDs[j] = static_cast<unsigned>(g.ID);
    }
    return 0;
}

int place_elements(reader& d, mesh& m, __node_index const& index)
{
    for (element_type type : d.type_order) {
        elements_of_type& e = d.elements[type];
        unsigned n = nbr_nodes(type);
        unsigned char const* order = file_order(type);
        std::size_t count = e.IDs.size();
        element_block b;
        b.type = type;
        if (!b.connect.resize(n, count) || !b.references.resize(count))
            return __fail(d.r, io_no_memory, d.path, "not enough memory for the elements");
        for (std::size_t j = 0; j < count; ++j) {
            std::int64_t const* nodes = e.nodes.data() + j * n;
            for (unsigned p = 0; p < n; ++p) {
                unsigned column = index(nodes[p]);
                if (column == NONE_ID)
                    return __fail(d.r, io_malformed, d.path,
                                  "element " + std::to_string(e.IDs[j]) + " uses node " + std::to_string(nodes[p]) +
                                      ", which no GRID card defines");
                b.connect(order[p], j) = column;
            }
            b.references[j] = e.PIDs[j];
        }
        e = elements_of_type();
        m.blocks.push_back(b);
    }
    return 0;
}

}  // namespace

int __read_NASTRAN_exact(std::string const& path, mesh& m, io_report& r)
{
    std::string text = __file_text(path);
    if (text.empty()) return __fail(r, io_cannot_open, path, "cannot be read");
    reader d{path, r, {}, {}, {}, {}};
    int code = read_cards(d, std::move(text));
    if (code < 0) return code;
    if (d.grids.empty() && d.type_order.empty())
        return __fail(r, io_malformed, path, "no GRID or element card: not a NASTRAN deck");
    __node_index index;
    code = place_nodes(d, m, index);
    if (code < 0) return code;
    return place_elements(d, m, index);
}

}  // namespace tessarium
}  // namespace qv7
