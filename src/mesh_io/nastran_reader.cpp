// NASTRAN decks through the format function; each group of elements becomes a block that views
// the connectivity it read, with the property IDs as references.
#include "exchange/nastran_input.h"
#include "exchange/nastran_tables.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "tessarium/nastran.h"

#include <sstream>

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

}  // namespace

int __read_NASTRAN(std::string const& path, mesh& m, io_report& r)
{
    dense2D<unsigned> connectM;
    dense1D<unsigned, 8> indices, PIDs;
    dense1D<int, 8> FEs;
    int code = NASTRAN_input(path.c_str(), m.pos, connectM, indices, FEs, PIDs);
    if (code < 0) return explain_failure(path, r);
    if (__file_text(path, 4096).find("ENDDATA") == std::string::npos)
        return __fail(r, io_malformed, path, "no ENDDATA line at the end: the deck seems cut short");
    for (std::size_t g = 0; g < FEs.size(); ++g) {
        element_block b;
        b.type = static_cast<element_type>(FEs[g]);
        std::size_t first = indices[g], count = indices[g + 1] - first;
        b.connect = connectM.submatrix(first, count, nbr_nodes(b.type));
        b.references = dense1D<unsigned, 8>(PIDs.storage(), count, PIDs.first() + first);
        if (__nastran_cells[b.type].name) to_written_order(b.type, b.connect);
        m.blocks.push_back(b);
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
