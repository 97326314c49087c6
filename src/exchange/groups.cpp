#include "exchange/groups.h"

#include "exchange/fe_type_sorter.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

bool append_block(dense2D<unsigned> const& block, element_type type, unsigned reference, __block_list& list)
{
    return list.blocks.push_back(block) && list.types.push_back(type) && list.references.push_back(reference);
}

bool append_mixed(dense2D<unsigned> const& group, element_type mixed, unsigned reference, __block_list& list)
{
    dense2D<unsigned> sorted, no_neighbours;
    if (!sorted.copy(group)) return false;
    dense1D<unsigned, 8> sizes, ends, new_indices;
    fe_type_sorter(sorted, no_neighbours).run(sizes, ends, new_indices);
    if (sizes.empty()) return false;
    for (std::size_t g = 0, begin = 0; g < sizes.size(); begin = ends[g++]) {
        if (ends[g] == begin) continue;
        dense2D<unsigned> block = sorted.submatrix(begin, ends[g] - begin, sizes[g]);
        if (!append_block(block, __column_type(mixed, block.col(0), block.rows()), reference, list)) return false;
    }
    return true;
}

}  // namespace

bool __is_element_type(int FE) noexcept
{
    return FE >= ET_NONE && FE <= ET_HEXA27;
}

element_type __column_type(element_type group, unsigned const* column, std::size_t rows) noexcept
{
    auto missing = [&](std::size_t row) { return row >= rows || column[row] == NONE_ID; };
    switch (group) {
    case ET_FACE_MIX:
        return missing(3) ? ET_FACE_T3 : ET_FACE_Q4;
    case ET_SOLID_MIX:
        if (missing(4)) return ET_TETRA4;
        if (missing(5)) return ET_PYRAMID5;
        return missing(6) ? ET_WEDGE6 : ET_HEXA8;
    default:
        return group;
    }
}

bool __split_groups(dense2D<unsigned> const* first, dense2D<unsigned> const* last, dense1D<int, 8> const& FEs,
                    __block_list& list)
{
    for (std::size_t i = 0; first + i != last; ++i) {
        dense2D<unsigned> const& group = first[i];
        if (group.empty()) continue;
        element_type type = __narrow(element_type(FEs[i]), group.rows());
        unsigned reference = static_cast<unsigned>(i);
        bool ok = type == ET_SOLID_MIX || type == ET_FACE_MIX ? append_mixed(group, type, reference, list)
                                                              : append_block(group, type, reference, list);
        if (!ok) return false;
    }
    return true;
}

__column_range __group_columns(dense1D<unsigned, 8> const& indices, std::size_t g) noexcept
{
    std::size_t first = indices[g], last = indices[g + 1];
    return {first, last > first ? last - first : 0};
}

dense2D<unsigned> __group_view(dense2D<unsigned> const& M, dense1D<unsigned, 8> const& indices, std::size_t g,
                               std::size_t rows)
{
    __column_range range = __group_columns(indices, g);
    std::size_t first = std::min(range.first, M.cols());
    std::size_t count = std::min(range.count, M.cols() - first);
    return M.submatrix(first, count, std::min(rows, M.rows()));
}

}  // namespace tessarium
}  // namespace qv7
