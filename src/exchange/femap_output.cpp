// Writes a mesh as a FEMAP neutral text file: block 403 with the nodes, block 404 with the
// elements. Numbers take the default stream format: six significant digits in the shorter of
// fixed and exponent notation ("%g").
#include "exchange/femap_tables.h"
#include "exchange/grouped_mesh.h"
#include "exchange/text_output.h"
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

void write_nodes(dense2D<double> const& pos, __text_output& out)
{
    out.put(banner).put("*********** NODES ***************\n").put(banner).put(block_end).put("403\n");
    for (std::size_t j = 0; j < pos.cols(); ++j) {
        double const* p = pos.col(j);
        double z = pos.rows() == 3 ? p[2] : 0.0;
        out.put_integer(j + 1).put(",0,0,1,0,0,0,0,0,0,0,");
        out.print("%g,%g,%g,0,\n", p[0], p[1], z);
    }
    out.put(block_end);
}

// Slots hold the node index plus 1, except the corners of the 6-node triangle, which are
// written without it.
void write_record(__femap_kind const& kind, std::size_t column, unsigned ID, unsigned const* nodes,
                  __text_output& out)
{
    unsigned slots[__femap_slot_count] = {};
    for (unsigned i = 0; i < nbr_nodes(kind.type); ++i)
        slots[kind.slots[i]] = nodes[i] + (kind.type == ET_FACE_T6 && i < 3 ? 0 : 1);
    out.put_integer(column + 1).put(',').put_integer(ID).put(",1,");
    out.put_integer(unsigned(kind.type_code)).put(',').put_integer(unsigned(kind.topology));
    out.put(",1,0,0,0,0,0,0,0,\n");
    for (unsigned s = 0; s < __femap_slot_count; ++s) {
        out.put_integer(slots[s]).put(',');
        if (s % 10 == 9) out.put('\n');
    }
    out.put(record_tail);
}

// The kind of one column of a group; null for what has no record (pyramids of a mixed group).
__femap_kind const* column_kind(element_type group, unsigned const* column, std::size_t rows) noexcept
{
    if (group == ET_FACE_MIX) return __femap_kind_of_type(__face_mix_element(column, rows));
    if (group == ET_SOLID_MIX) return __femap_kind_of_type(__solid_mix_element(column, rows));
    return __femap_kind_of_type(group);
}

void write_group(dense2D<unsigned> const& connectM, __column_range range, element_type group,
                 dense1D<unsigned, 8> const& IDs, __text_output& out)
{
    for (std::size_t j = range.first; j < range.first + range.count; ++j) {
        unsigned const* column = connectM.col(j);
        if (__femap_kind const* kind = column_kind(group, column, connectM.rows()))
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
        __text_output out(file);
        write_nodes(pos, out);
        out.put(banner).put("********* ELEMENTS **************\n").put(banner).put(block_end).put("404\n");
        for (std::size_t g = 0; g < FEs.size(); ++g)
            write_group(connectM, __group_columns(indices, g), static_cast<element_type>(FEs[g]), IDs, out);
        out.put(block_end);
    }
    if (file) std::fclose(file);
    return result;
}

int FEMAP_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                 element_type FE)
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
