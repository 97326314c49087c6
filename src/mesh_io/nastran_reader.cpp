// NASTRAN decks through the format function; each group of elements becomes a block that views
// the connectivity it read, with the property IDs as references.
#include "exchange/nastran_input.h"
#include "exchange/nastran_tables.h"
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
    if (code == -199) return __fail(r, io_no_memory, path, "not enough memory for the nodes and elements");
    std::streamoff stop = in.tellg();
    if (stop < 0) return __fail(r, io_malformed, path, "no BEGIN BULK line: not a NASTRAN bulk data deck");
    std::size_t line = __line_number(text, static_cast<std::size_t>(stop));
    return __fail(r, io_malformed, path,
                  "line " + std::to_string(line) + ": malformed GRID card or grid ID 0: \"" + __line_at(text, line) + "\"");
}

// The reader lists the mid nodes of 15-node wedges in the order it writes them; the local order
// is the written list applied twice more.
void fix_wedge15(dense2D<unsigned>& M)
{
    unsigned char const* w = __nastran_cards[ET_WEDGE15].nodes;
    unsigned char inverse[15];
    for (unsigned p = 0; p < 15; ++p) inverse[w[p]] = static_cast<unsigned char>(p);
    for (std::size_t e = 0; e < M.cols(); ++e) {
        unsigned read[15], *column = M.col(e);
        std::copy(column, column + 15, read);
        for (unsigned j = 0; j < 15; ++j) column[j] = read[inverse[inverse[j]]];
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
        if (b.type == ET_WEDGE15) fix_wedge15(b.connect);
        m.blocks.push_back(b);
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
