// NASTRAN decks through the format function; each group of elements becomes a block that views
// the connectivity it read, with the property IDs as references.
#include "exchange/nastran_input.h"
#include "exchange/nastran_tables.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "tessarium/nastran.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qv7 {
namespace tessarium {
namespace {

// Where the reading stopped: it is read again from memory to learn the line.
int explain_failure(std::string const& path, io_report& r)
{
    std::string text = __file_text(path);
    std::istringstream in(text);
    dense2D<double> pos;
    dense2D<unsigned> connectM;
    dense1D<unsigned, 8> indices, PIDs;
    dense1D<int, 8> FEs;
    int code = __NASTRAN_input(in, pos, connectM, indices, FEs, PIDs);
    std::streamoff stop = in.tellg();
    if (stop < 0) return __fail(r, io_malformed, path, "no BEGIN BULK line: not a NASTRAN bulk data deck");
    std::size_t line = __line_number(text, static_cast<std::size_t>(stop));
    std::string where = "line " + std::to_string(line) + ": ";
    if (code == -199)
        return __fail(r, io_no_memory, path, where + "a grid ID above 99999999, or not enough memory for it");
    return __fail(r, io_malformed, path, where + "malformed GRID card or grid ID 0: \"" + __line_at(text, line) + "\"");
}

// The format function reads local node i from file position read[i] (or i), the portable writer
// puts local node written[p] at position p; the local order of what that writer wrote is
// undone here. The writer turns wedges over and moves the mid nodes of 15-node wedges, which
// the function reads with the list it writes.
void to_written_order(element_type type, dense2D<unsigned>& M)
{
    __cell_kind const& kind = __nastran_cells[type];
    unsigned char const* read = __nastran_read_order(type);
    unsigned n = kind.count, from[20], position_of_local[20], read_at[20];
    bool same = true;
    for (unsigned i = 0; i < n; ++i) position_of_local[kind.nodes[i]] = i, read_at[read ? read[i] : i] = i;
    for (unsigned j = 0; j < n; ++j) from[j] = read_at[position_of_local[j]], same = same && from[j] == j;
    if (same || M.rows() != n) return;
    unsigned column[20];
    for (std::size_t e = 0; e < M.cols(); ++e) {
        std::copy(M.col(e), M.col(e) + n, column);
        for (unsigned j = 0; j < n; ++j) M(j, e) = column[from[j]];
    }
}

bool is_element_card(std::string const& name)
{
    auto less = [](__nastran_card_name const& c, std::string const& n) { return n.compare(c.name) > 0; };
    auto it = std::lower_bound(std::begin(__nastran_card_names), std::end(__nastran_card_names), name, less);
    return it != std::end(__nastran_card_names) && name == it->name;
}

// The length of the name a card line begins with: up to 8 characters before a comma, a blank or
// a star.
bool ends_name(char c)
{
    return c == ',' || c == ' ' || c == '*' || c == '\t' || c == '\r';
}

std::size_t name_length(char const* line, std::size_t length)
{
    std::size_t n = 0;
    while (n < length && n < 8 && !ends_name(line[n])) ++n;
    return n;
}

// Card names by how the format function takes them; the last one is remembered, since decks
// list cards of one kind in long runs.
struct card_tally {
    enum kind { grid, element, other, end };
    std::string last;
    kind last_kind = other;
    std::size_t element_cards = 0;

    kind take(char const* line, std::size_t length, io_report& r)
    {
        std::size_t n = last.size();
        bool same = n != 0 && n <= length && (n == length || n == 8 || ends_name(line[n])) &&
                    std::memcmp(line, last.data(), n) == 0;
        if (!same) {
            last.assign(line, name_length(line, length));
            last_kind = last == "GRID" ? grid : last == "ENDDATA" ? end : is_element_card(last) ? element : other;
        }
        if (last_kind == element) ++element_cards;
        if (last_kind == other) __pass_over(r, last + " cards", 1);
        return last_kind;
    }
};

// Counts the cards of the bulk section the format function passes over, by name, and the element
// cards it does not take (another node count, the large-field form); false when the deck has no
// ENDDATA line. The file is mapped, not read again; only the start of each line is looked at.
bool count_passed_over(std::string const& path, std::size_t elements_read, io_report& r)
{
    int fd = open(path.c_str(), O_RDONLY);
    if (fd < 0) return false;
    struct stat status;
    bool sized = fstat(fd, &status) == 0 && status.st_size > 0;
    std::size_t size = sized ? static_cast<std::size_t>(status.st_size) : 0;
    void* map = sized ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0) : MAP_FAILED;
    close(fd);
    if (map == MAP_FAILED) return false;
    char const* text = static_cast<char const*>(map);
    std::size_t at = 0;
    bool bulk = false, ended = false;
    card_tally tally;
    while (at < size && !ended) {
        char const* line = text + at;
        char const* feed = static_cast<char const*>(std::memchr(line, '\n', size - at));
        std::size_t length = feed ? static_cast<std::size_t>(feed - line) : size - at;
        at += length + 1;
        if (!bulk)
            bulk = std::string(line, length).find("BEGIN BULK") != std::string::npos;
        else if (length != 0 && std::isalpha(static_cast<unsigned char>(line[0])))
            ended = tally.take(line, length, r) == card_tally::end;
    }
    munmap(map, size);
    if (tally.element_cards > elements_read)
        __pass_over(r, "element cards of another node count or in large field", tally.element_cards - elements_read);
    return ended;
}

}  // namespace

int __read_NASTRAN(std::string const& path, mesh& m, io_report& r)
{
    dense2D<unsigned> connectM;
    dense1D<unsigned, 8> indices, PIDs;
    dense1D<int, 8> FEs;
    int code = NASTRAN_input(path.c_str(), m.pos, connectM, indices, FEs, PIDs);
    if (code < 0) return explain_failure(path, r);
    for (std::size_t g = 0; g < FEs.size(); ++g) {
        element_block b;
        b.type = static_cast<element_type>(FEs[g]);
        std::size_t first = indices[g], count = indices[g + 1] - first;
        b.connect = connectM.submatrix(first, count, nbr_nodes(b.type));
        b.references = dense1D<unsigned, 8>(PIDs.storage(), count, PIDs.first() + first);
        if (__nastran_cells[b.type].name) to_written_order(b.type, b.connect);
        m.blocks.push_back(b);
    }
    if (!count_passed_over(path, connectM.cols(), r))
        return __fail(r, io_malformed, path, "no ENDDATA line: the deck seems cut short");
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
