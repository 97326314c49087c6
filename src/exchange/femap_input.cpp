// Reads nodes (block 403) and elements (block 404) from a FEMAP neutral text file. Nodes keep
// their numbering (column ID - 1); elements are columns in file order, grouped by type.
#include "exchange/femap_input.h"

#include "exchange/femap_tables.h"
#include "exchange/convenience_forms.h"
#include "tessarium/array_ops.h"
#include "tessarium/femap.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <new>

namespace qv7 {
namespace tessarium {
namespace {

// Field k of a record line; a line too short for it gives an empty field.
char const* field(std::vector<std::string> const& words, std::size_t k) noexcept
{
    return k < words.size() ? words[k].c_str() : "";
}

// What the element records have built so far.
struct element_state {
    dense2D<unsigned>& connectM;
    dense1D<unsigned, 8>& indices;
    dense1D<int, 8>& FEs;
    dense1D<unsigned, 8>& IDs;
    unsigned count;        // elements read
    element_type current;  // type of the open group, ET_NONE before the first record
    std::string line;      // scratch for the slot lines
    std::vector<std::string> words;
};

// Node record: ID in field 0, coordinates in fields 11 to 13.
int read_node(std::vector<std::string> const& words, dense2D<double>& pos, std::size_t max_ID)
{
    int ID = std::atoi(field(words, 0));
    if (ID == 0) return -102;
    if (ID < 0 || !__reach_node_column(pos, static_cast<std::size_t>(ID), max_ID)) return -199;
    double* p = pos.col(static_cast<std::size_t>(ID) - 1);
    for (std::size_t k = 0; k < 3; ++k) p[k] = std::atof(field(words, 11 + k));
    return 0;
}

// The ten slots of one slot line.
void read_slots(std::istream& in, element_state& s, int* slots)
{
    std::getline(in, s.line);
    __get_words(s.line, s.words);
    for (std::size_t k = 0; k < 10; ++k) slots[k] = std::atoi(field(s.words, k));
}

// Appends the element of a record, given its kind; false when memory ran out.
bool append_element(std::istream& in, __femap_kind const& kind, element_state& s)
{
    int slots[__femap_slot_count];
    read_slots(in, s, slots);
    read_slots(in, s, slots + 10);
    std::size_t N = nbr_nodes(kind.type);
    if (N > s.connectM.rows()) s.connectM.resize(N, s.connectM.cols(), NONE_ID);
    unsigned column[__femap_slot_count];
    std::size_t rows = std::max(N, s.connectM.rows());
    for (std::size_t i = 0; i < N; ++i) column[i] = static_cast<unsigned>(slots[kind.slots[i]]) - 1;
    std::fill(column + N, column + rows, NONE_ID);
    return matvec::__push_back(column, rows, s.connectM);
}

// A type that differs from the open group's opens a new group. Its start is the index of the
// last element read, also when this record was skipped; the group after a skipped record is
// opened with no start of its own.
bool track_group(element_type type, element_state& s)
{
    if (s.current == ET_NONE) {
        s.current = type;
        return s.FEs.push_back(type);
    }
    if (type == s.current) return true;
    s.current = type;
    return s.FEs.push_back(type) && s.indices.push_back(s.count - 1);
}

// Element record: seven lines, the first of them in words. Topology codes past 12 (negative ones
// included) and 11 are skipped, and count as type ET_NONE for the groups.
int read_element(std::istream& in, std::vector<std::string> const& words, element_state& s)
{
    unsigned value = static_cast<unsigned>(std::atoi(field(words, 1)));
    unsigned topology = static_cast<unsigned>(std::atoi(field(words, 4)));
    __femap_kind const* kind = topology > 12 || topology == 11 ? nullptr : __femap_kind_of_topology(topology);
    if (!kind) {
        __skip_lines(in, 6);
        return track_group(ET_NONE, s) ? 0 : -199;
    }
    if (!append_element(in, *kind, s)) return -199;
    __skip_lines(in, 4);
    if (!s.IDs.push_back(value)) {
        s.connectM.resize(s.connectM.rows(), s.connectM.cols() - 1);  // in place: one ID per column
        return -199;
    }
    ++s.count;
    return track_group(kind->type, s) ? 0 : -199;
}

// Reads records until the end of the file or a failure.
int read_blocks(std::istream& in, dense2D<double>& pos, element_state& s, std::size_t max_ID)
{
    std::string line, bare;
    std::vector<std::string> words;
    int block = 0;
    while (std::getline(in, line)) {
        bare = line;
        __remove_spaces(bare);
        if (block == 0) {
            if (bare == "403" || bare == "404") block = bare == "403" ? 403 : 404;
            continue;
        }
        // A block never closes: its closing "   -1" line is read as one more record.
        __get_words(line, words);
        int result = block == 403 ? read_node(words, pos, max_ID) : read_element(in, words, s);
        if (result < 0) return result;
    }
    return 0;
}

}  // namespace

void __get_words(std::string const& line, std::vector<std::string>& words)
{
    std::size_t n = 0;
    for (std::size_t begin = 0; begin <= line.size();) {
        std::size_t end = std::min(line.find(',', begin), line.size());
        if (end > begin) {
            if (n < words.size())
                words[n].assign(line, begin, end - begin);
            else
                words.emplace_back(line, begin, end - begin);
            ++n;
        }
        begin = end + 1;
    }
    words.resize(n);
}

void __skip_lines(std::istream& in, unsigned n)
{
    for (unsigned k = 0; k < n; ++k) in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
}

std::string& __remove_spaces(std::string& text)
{
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

int __FEMAP_input(std::istream& in, dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                  dense1D<int, 8>& FEs, dense1D<unsigned, 8>& IDs, std::size_t max_ID)
{
    pos.clear();
    connectM.clear();
    if (!indices.push_back(0u)) return -199;
    element_state state{connectM, indices, FEs, IDs, 0, ET_NONE, {}, {}};
    int result;
    try {
        result = read_blocks(in, pos, state, max_ID);
    } catch (std::bad_alloc const&) {
        result = -199;  // a line or its fields too large for memory
    }
    // A line too long for memory ends the reads with badbit set, like the end of the file.
    if (!indices.push_back(state.count) || in.bad()) result = -199;
    return result;
}

int FEMAP_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                dense1D<int, 8>& FEs, dense1D<unsigned, 8>& IDs)
{
    std::ifstream in;
    if (file_name) in.open(file_name);
    __empty_results(pos, connectM, indices, FEs, IDs);
    if (!in.is_open()) return -1;
    return __FEMAP_input(in, pos, connectM, indices, FEs, IDs);
}

int FEMAP_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM, element_type& FE)
{
    return __read_one_matrix(FEMAP_input, file_name, pos, connectM, FE);
}

// The first view keeps all rows of the connectivity, the second only those of its type.
int FEMAP_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM1, dense2D<unsigned>& connectM2,
                element_type& FE1, element_type& FE2)
{
    return __read_two_matrices(FEMAP_input, true, file_name, pos, connectM1, connectM2, FE1, FE2);
}

}  // namespace tessarium
}  // namespace qv7
