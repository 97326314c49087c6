// Reads the grid points and element connectivities of a NASTRAN bulk data deck. Nodes keep their
// file numbering (column ID - 1); elements are columns in file order, grouped by type.
#include "exchange/nastran_input.h"

#include "exchange/convenience_forms.h"
#include "exchange/nastran_tables.h"
#include "tessarium/nastran.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace qv7 {
namespace tessarium {
namespace {

// Continuation lines are read into a buffer of this size; a longer one fails the stream.
constexpr std::size_t continuation_size = 256;
constexpr std::size_t max_element_nodes = 20;

element_type card_type(char const* name) noexcept
{
    auto less = [](__nastran_card_name const& c, char const* n) { return std::strcmp(c.name, n) < 0; };
    auto it = std::lower_bound(std::begin(__nastran_card_names), std::end(__nastran_card_names), name, less);
    return it != std::end(__nastran_card_names) && std::strcmp(it->name, name) == 0 ? it->type : ET_NONE;
}

// Second-order types are told from first-order ones by their number of node fields.
element_type promoted(element_type type, std::size_t nodes) noexcept
{
    switch (type) {
    case ET_TETRA4:
        return nodes == 10 ? ET_TETRA10 : type;
    case ET_PYRAMID5:
        return nodes == 13 ? ET_PYRAMID13 : type;
    case ET_WEDGE6:
        return nodes == 15 ? ET_WEDGE15 : type;
    case ET_HEXA8:
        return nodes == 20 ? ET_HEXA20 : type;
    default:
        return type;
    }
}

// ---- grid points ----

// "GRID*" and its second line, 16-character fields. The continuation mark must be there, but
// its text is not compared. A read that finds no line leaves second empty, not as the last card's.
bool scan_large_grid(std::istream& in, char const* line, std::string& second, int& ID, double* xyz)
{
    second.clear();
    std::getline(in, second);
    char name[9] = {}, cp[17] = {}, fields[3][17] = {}, mark = 0;
    if (std::sscanf(line, "%8c%16d%16c%16lf%16lf %c", name, &ID, cp, xyz, xyz + 1, &mark) < 6) return false;
    return std::sscanf(second.c_str(), "%8c%16lf%16c%16c%16c %c", name, xyz + 2, fields[0], fields[1], fields[2],
                       &mark) >= 2;
}

// Comma-separated fields; a blank CP field is retried with a format that skips it.
bool scan_free_grid(char const* line, int& ID, double* xyz)
{
    int CP = 0, CD = 0, PS = 0, SEID = 0, extra = 0;
    if (std::sscanf(line, "GRID ,%d,%d,%lf,%lf,%lf,%d,%d,%d,%d", &ID, &CP, xyz, xyz + 1, xyz + 2, &CD, &PS, &SEID,
                    &extra) >= 5)
        return true;
    return std::sscanf(line, "GRID ,%d, ,%lf,%lf,%lf,%d,%d,%d,%d", &ID, xyz, xyz + 1, xyz + 2, &CD, &PS, &SEID,
                       &extra) >= 4;
}

// 8-character fields. The coordinates go through atof, so a short exponent such as 1.5-3 reads
// as 1.5.
bool scan_small_grid(char const* line, int& ID, double* xyz)
{
    char name[9] = {}, cp[9] = {}, text[3][9] = {}, rest[3][9] = {}, mark = 0;
    if (std::sscanf(line, "%8c%8d%8c%8c%8c%8c%8c%8c%8c %c", name, &ID, cp, text[0], text[1], text[2], rest[0], rest[1],
                    rest[2], &mark) < 6)
        return false;
    for (int k = 0; k < 3; ++k) xyz[k] = std::atof(text[k]);
    return true;
}

// One grid point into pos: 0, -1 for a malformed line or an ID of 0, -199 when pos cannot
// reach the ID.
int read_grid(std::istream& in, std::string const& line, std::string& second, dense2D<double>& pos, std::size_t max_ID)
{
    int ID = 0;
    double xyz[3] = {0.0, 0.0, 0.0};
    bool scanned = line.compare(0, 5, "GRID*") == 0      ? scan_large_grid(in, line.c_str(), second, ID, xyz)
                   : line.find(',') != std::string::npos ? scan_free_grid(line.c_str(), ID, xyz)
                                                         : scan_small_grid(line.c_str(), ID, xyz);
    if (!scanned || ID == 0) return -1;
    std::size_t column = static_cast<unsigned>(ID);
    if (!__reach_node_column(pos, column, max_ID)) return -199;
    std::copy(xyz, xyz + 3, pos.col(column - 1));
    return 0;
}

// ---- element cards ----

// What one physical line of a card gave: its name, its count (integer fields in fixed form,
// tokens in free form) and whether a continuation line follows.
struct card_line {
    char name[9];
    int count;
    bool more;
};

// Fixed form, 8-character fields (or 16 for large field, whose continuation mark is "*").
bool scan_fixed_line(char const* text, bool large, card_line& line, dense1D<unsigned, 8>& fields)
{
    char name[9] = {}, mark = 0;
    int v[8] = {};
    int n = large ? std::sscanf(text, "%8c%16d%16d%16d%16d %c", name, v, v + 1, v + 2, v + 3, &mark)
                  : std::sscanf(text, "%8c%8d%8d%8d%8d%8d%8d%8d%8d %c", name, v, v + 1, v + 2, v + 3, v + 4, v + 5,
                                v + 6, v + 7, &mark);
    line.more = false;
    line.name[0] = '\0';
    if (n < 1) {
        line.count = n;
        return true;
    }
    std::size_t cut = std::strcspn(name, " ");
    std::memcpy(line.name, name, cut);
    line.name[cut] = '\0';
    int max_fields = large ? 4 : 8;
    line.count = std::min(n - 1, max_fields);
    for (int k = 0; k < line.count; ++k)
        if (!fields.push_back(static_cast<unsigned>(v[k]))) return false;
    line.more = n == max_fields + 2 && mark == (large ? '*' : '+');
    return true;
}

// Free form: tokens between commas, of 8 characters at most; a longer one is cut to 8 and ends
// the line. A last token starting with "+" or "*" marks a continuation and is dropped.
bool scan_free_line(char const* text, card_line& line, dense1D<unsigned, 8>& fields)
{
    char token[9] = {};
    int tokens = 0;  // tokens split so far; the last one is still in `token`
    auto take = [&]() {
        if (tokens == 1) {
            std::memcpy(line.name, token, sizeof token);
            return true;
        }
        return fields.push_back(static_cast<unsigned>(std::atoi(token)));
    };
    line.name[0] = '\0';
    for (char const* p = text;;) {
        char const* comma = std::strchr(p, ',');
        std::size_t length = comma ? static_cast<std::size_t>(comma - p) : std::strlen(p);
        if (tokens > 0 && !take()) return false;
        std::size_t kept = std::min<std::size_t>(length, 8);
        std::memcpy(token, p, kept);
        token[kept] = '\0';
        ++tokens;
        if (!comma || length > 8) break;
        p = comma + 1;
    }
    line.more = token[0] == '+' || token[0] == '*';
    line.count = line.more ? tokens - 1 : tokens;
    return line.more || take();
}

bool scan_card_line(char const* text, card_line& line, dense1D<unsigned, 8>& fields)
{
    if (std::strchr(text, ',')) return scan_free_line(text, line, fields);
    return scan_fixed_line(text, std::strchr(text, '*') != nullptr, line, fields);
}

// An element card once its lines are read: fields holds the element ID, the property ID and
// the node fields, in that order.
struct element_card {
    char name[9];
    unsigned PID;
    int total;
};

// Reads the card that starts with `text` and any continuation lines; false when memory ran out.
bool read_card(std::istream& in, char const* text, dense1D<unsigned, 8>& fields, element_card& card)
{
    fields.clear();
    card.name[0] = '\0';
    card.PID = 0;
    card_line line;
    char next[continuation_size];
    int earlier = 0;
    for (bool first = true;; first = false) {
        if (!scan_card_line(text, line, fields)) return false;
        if (line.count < 3) break;
        if (first) {
            std::memcpy(card.name, line.name, sizeof card.name);
            card.PID = fields[1];
        }
        if (!line.more || in.fail()) break;
        in.getline(next, sizeof next);
        earlier += line.count;
        text = next;
    }
    card.total = line.count + earlier;
    return true;
}

// Appends one element, given by its node fields in file order, as a new column.
bool append_element(unsigned const* file_nodes, std::size_t n, element_type type, dense2D<unsigned>& connectM)
{
    unsigned column[max_element_nodes];
    unsigned char const* order = __nastran_read_order(type);
    std::size_t rows = std::max(connectM.rows(), n);
    for (std::size_t i = 0; i < n; ++i) column[i] = file_nodes[order ? order[i] : i] - 1;
    std::fill(column + n, column + rows, NONE_ID);
    std::size_t cols = connectM.cols();
    __reserve_columns(connectM, rows, __power_of_two_ceil(cols + 1));
    if (!connectM.resize(rows, cols + 1, 0u)) return false;
    std::copy(column, column + rows, connectM.col(cols));
    return true;
}

struct element_results {
    dense2D<unsigned>& connectM;
    dense1D<unsigned, 8>& indices;
    dense1D<int, 8>& FEs;
    dense1D<unsigned, 8>& PIDs;
};

// The result code after a card: unchanged for an empty one, its total for one passed over, 0 for
// an accepted one, -199 when memory ran out.
int accept_card(element_card const& card, dense1D<unsigned, 8> const& fields, element_results& out, int code)
{
    if (card.total < 1) return code;
    element_type base = card_type(card.name);
    if (base == ET_NONE) return card.total;
    std::size_t nodes = fields.size() - 2;
    element_type type = promoted(base, nodes);
    if (nodes != nbr_nodes(type)) return card.total;
    std::size_t column = out.connectM.cols();
    if (!append_element(fields.data() + 2, nodes, type, out.connectM)) return -199;
    if (!out.PIDs.push_back(card.PID)) {
        out.connectM.resize(out.connectM.rows(), column);  // in place: one property ID per column
        return -199;
    }
    if (out.FEs.empty()) return out.FEs.push_back(type) ? 0 : -199;
    if (out.FEs[out.FEs.size() - 1] == type) return 0;
    return out.FEs.push_back(type) && out.indices.push_back(static_cast<unsigned>(column)) ? 0 : -199;
}

}  // namespace

int __NASTRAN_input(std::istream& in, dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                    dense1D<int, 8>& FEs, dense1D<unsigned, 8>& PIDs, std::size_t max_ID)
{
    pos.clear();
    connectM.clear();
    dense1D<unsigned, 8> fields;
    __reserve_columns(pos, 3, 256);
    __reserve_columns(connectM, 8, 256);
    if (!indices.push_back(0u)) return -199;

    element_results elements{connectM, indices, FEs, PIDs};
    element_card card;
    std::string line, second;
    bool bulk = false;
    int code = 0;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '$') continue;
        if (!bulk) {
            bulk = line.find("BEGIN BULK") != std::string::npos;
            continue;
        }
        if (line.find("ENDDATA") != std::string::npos) {
            code = 0;
            break;
        }
        if (line.compare(0, 4, "GRID") == 0)
            code = read_grid(in, line, second, pos, max_ID);
        else
            code = read_card(in, line.c_str(), fields, card) ? accept_card(card, fields, elements, code) : -199;
        if (code < 0) break;
    }
    // A line too long for memory ends the reads with badbit set, like the end of the file.
    if (!indices.push_back(static_cast<unsigned>(connectM.cols()))) code = -199;
    if (in.bad()) return -199;
    return bulk ? code : -1;
}

int NASTRAN_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM,
                  dense1D<unsigned, 8>& indices, dense1D<int, 8>& FEs, dense1D<unsigned, 8>& PIDs)
{
    std::ifstream in;
    if (file_name) in.open(file_name);
    __empty_results(pos, connectM, indices, FEs, PIDs);
    if (!in.is_open()) return -1;
    return __NASTRAN_input(in, pos, connectM, indices, FEs, PIDs);
}

int NASTRAN_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM, element_type& FE)
{
    return __read_one_matrix(NASTRAN_input, file_name, pos, connectM, FE);
}

int NASTRAN_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM1,
                  dense2D<unsigned>& connectM2, element_type& FE1, element_type& FE2)
{
    return __read_two_matrices(NASTRAN_input, false, file_name, pos, connectM1, connectM2, FE1, FE2);
}

}  // namespace tessarium
}  // namespace qv7
