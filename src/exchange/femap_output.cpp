// Writes a mesh as a FEMAP neutral text file: block 403 with the nodes, block 404 with the
// elements. Numbers take the default stream format: six significant digits in the shorter of
// fixed and exponent notation ("%g").
#include "exchange/femap_tables.h"
#include "exchange/convenience_forms.h"
#include "exchange/group_checks.h"
#include "exchange/groups.h"
#include "exchange/text_sink.h"
#include "tessarium/femap.h"

#include <cstdio>

namespace qv7 {
namespace tessarium {
namespace {

constexpr char const* banner = "*********************************\n";
constexpr char const* block_end = "   -1\n";

// Line 1 is built per element; lines 4 to 7 are always the same.
constexpr char const* record_tail =
    "0.,0.,0.,0,0,0,0,0,0,\n"
    "0.,0.,0.,\n"
    "0.,0.,0.,\n"
    "0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n";

void write_nodes(dense2D<double> const& pos, __text_sink& out)
{
    out.text(banner).text("*********** NODES ***************\n").text(banner).text(block_end).text("403\n");
    for (std::size_t j = 0; j < pos.cols(); ++j) {
        double const* p = pos.col(j);
        double z = pos.rows() == 3 ? p[2] : 0.0;
        out.integer(j + 1).text(",0,0,1,0,0,0,0,0,0,0,");
        out.general(p[0]).put(',').general(p[1]).put(',').general(z).text(",0,\n");
    }
    out.text(block_end);
}

// Slots hold the node index plus 1, except the corners of the 6-node triangle, which are
// written without it.
void write_record(__femap_kind const& kind, std::size_t column, unsigned ID, unsigned const* nodes, __text_sink& out)
{
    unsigned slots[__femap_slot_count] = {};
    for (unsigned i = 0; i < nbr_nodes(kind.type); ++i)
        slots[kind.slots[i]] = nodes[i] + (kind.type == ET_FACE_T6 && i < 3 ? 0 : 1);
    out.integer(column + 1).put(',').integer(ID).text(",1,");
    out.integer(unsigned(kind.type_code)).put(',').integer(unsigned(kind.topology));
    out.text(",1,0,0,0,0,0,0,0,\n");
    for (unsigned s = 0; s < __femap_slot_count; ++s) {
        out.integer(slots[s]).put(',');
        if (s % 10 == 9) out.put('\n');
    }
    out.text(record_tail);
}

void write_group(dense2D<unsigned> const& connectM, __column_range range, element_type group,
                 dense1D<unsigned, 8> const& IDs, __text_sink& out)
{
    for (std::size_t j = range.first; j < range.first + range.count; ++j) {
        unsigned const* column = connectM.col(j);
        // Types without a record, the pyramids of a mixed group among them, are left out.
        if (__femap_kind const* kind = __femap_kind_of_type(__column_type(group, column, connectM.rows())))
            write_record(*kind, j, IDs[j], column, out);
    }
}

}  // namespace

int FEMAP_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                 dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs, dense1D<unsigned, 8> const& IDs)
{
    std::FILE* file = file_name ? std::fopen(file_name, "w") : nullptr;
    int result = 0;
    if (connectM.rows() * connectM.cols() == 0)
        result = 0;
    else if (!file)
        result = -1;
    else
        result = __check_grouped_mesh(pos, connectM, indices, FEs, IDs.size());
    if (file && result == 0 && !connectM.empty()) {
        __text_sink out(file);
        write_nodes(pos, out);
        out.text(banner).text("********* ELEMENTS **************\n").text(banner).text(block_end).text("404\n");
        for (std::size_t g = 0; g < FEs.size(); ++g)
            write_group(connectM, __group_columns(indices, g), static_cast<element_type>(FEs[g]), IDs, out);
        out.text(block_end);
    }
    if (file) std::fclose(file);
    return result;
}

int FEMAP_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE)
{
    return __write_one_matrix(FEMAP_output, file_name, pos, connectM, FE);
}

// The group bounds are the two column counts themselves, not their running sum: the second
// group ends at the column count of connectM2.
int FEMAP_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                 dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2)
{
    return __write_two_matrices(FEMAP_output, false, file_name, pos, connectM1, connectM2, FE1, FE2);
}

}  // namespace tessarium
}  // namespace qv7
