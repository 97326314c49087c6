// Writes a mesh as a NASTRAN bulk data deck: grid points in large field, element cards in free
// field with continuation lines, and a dummy material card.
#include "exchange/convenience_forms.h"
#include "exchange/group_checks.h"
#include "exchange/groups.h"
#include "exchange/nastran_tables.h"
#include "exchange/text_sink.h"
#include "tessarium/nastran.h"

#include <algorithm>
#include <cstdio>

namespace qv7 {
namespace tessarium {
namespace {

constexpr char const* deck_head =
    "$ QV7 Tessarium(R) NASTRAN exporter\n"
    "BEGIN BULK\n"
    "$----------------------------------------\n"
    "$ Referenced Material Records -----------\n"
    "$ Material Record :    ------------------\n"
    "$ Description of Material :   -----------\n"
    "MAT1    1       0.                 0.  0.\n"
    "$----------------------------------------\n"
    "$                GRID POINTS             \n"
    "$----------------------------------------\n";

constexpr char const* elements_head =
    "$----------------------------------------\n"
    "$                 ELEMENTS               \n"
    "$----------------------------------------\n";

// Two lines per node, "GRID*   %16d                %16E%16E*C" and "*C      %16E", the ID being
// the column plus 1; a 2-row pos has z = 0.
void write_grids(dense2D<double> const& pos, __text_sink& out)
{
    for (std::size_t j = 0; j < pos.cols(); ++j) {
        double const* p = pos.col(j);
        double z = pos.rows() == 3 ? p[2] : 0.0;
        out.text("GRID*   ").integer(static_cast<int>(j + 1), 16).text("                ");
        out.scientific(p[0], 6, true, 16).scientific(p[1], 6, true, 16).text("*C\n*C      ");
        out.scientific(z, 6, true, 16).put('\n');
    }
}

// The fields of a card run in lines of nine, the name or the "+C" mark being the first.
void write_card(__nastran_card const& card, std::size_t column, unsigned PID, unsigned const* nodes, __text_sink& out)
{
    out.text(card.name).put(',').integer(column + 1).put(',').integer(static_cast<int>(PID));
    int field = 3;
    for (unsigned p = 0; p < card.count; ++p) {
        if (field == 9) {
            out.text(",+C\n+C");
            field = 1;
        }
        out.put(',').integer(static_cast<int>(nodes[card.nodes[p]] + 1));
        ++field;
    }
    out.put('\n');
}

void write_group(dense2D<unsigned> const& connectM, __column_range range, element_type group,
                 dense1D<unsigned, 8> const& PIDs, __text_sink& out)
{
    for (std::size_t j = range.first; j < range.first + range.count; ++j) {
        unsigned const* column = connectM.col(j);
        __nastran_card const& card = __nastran_cards[__column_type(group, column, connectM.rows())];
        if (card.name) write_card(card, j, PIDs[j], column, out);
    }
}

}  // namespace

int NASTRAN_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                   dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs, dense1D<unsigned, 8> const& PIDs)
{
    if (connectM.rows() * connectM.cols() == 0) return 0;
    std::FILE* file = file_name ? std::fopen(file_name, "w") : nullptr;
    if (!file) return -1;
    // A refused mesh leaves the file created, empty and open.
    int refused = __check_grouped_mesh(pos, connectM, indices, FEs, PIDs.size());
    if (refused) return refused;
    {
        __text_sink out(file);
        out.text(deck_head);
        write_grids(pos, out);
        out.text(elements_head);
        for (std::size_t g = 0; g < FEs.size(); ++g)
            write_group(connectM, __group_columns(indices, g), static_cast<element_type>(FEs[g]), PIDs, out);
        out.text("ENDDATA\n");
    }
    std::fclose(file);
    return 0;
}

int NASTRAN_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                   element_type FE)
{
    return __write_one_matrix(NASTRAN_output, file_name, pos, connectM, FE);
}

int NASTRAN_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                   dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2)
{
    return __write_two_matrices(NASTRAN_output, true, file_name, pos, connectM1, connectM2, FE1, FE2);
}

}  // namespace tessarium
}  // namespace qv7
