#include "exchange/groups.h"

#include "exchange/fe_type_sorter.h"

namespace qv7 {
namespace tessarium {
namespace {

bool is_element_type(int type) noexcept { return type >= ET_NONE && type <= ET_HEXA27; }

// The pure type of the members of a mixed group that have `nodes` nodes, ET_NONE if none.
element_type mixed_member(element_type mixed, unsigned nodes) noexcept
{
    if (mixed == ET_FACE_MIX) {
        switch (nodes) {
        case 3: return ET_FACE_T3;
        case 4: return ET_FACE_Q4;
        default: return ET_NONE;
        }
    }
    switch (nodes) {
    case 4: return ET_TETRA4;
    case 5: return ET_PYRAMID5;
    case 6: return ET_WEDGE6;
    case 8: return ET_HEXA8;
    default: return ET_NONE;
    }
}

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
        element_type type = mixed_member(mixed, sizes[g]);
        if (type == ET_NONE || ends[g] == begin) continue;
        if (!append_block(sorted.submatrix(begin, ends[g] - begin, sizes[g]), type, reference, list)) return false;
    }
    return true;
}

}  // namespace

int __check_groups(dense2D<unsigned> const* first, dense2D<unsigned> const* last, dense1D<int, 8> const& FEs,
                   unsigned node_limit) noexcept
{
    if (last < first) return -4;
    std::size_t count = static_cast<std::size_t>(last - first);
    if (FEs.size() != count) return -5;
    for (std::size_t i = 0; i < count; ++i) {
        if (first[i].empty()) continue;
        if (!is_element_type(FEs[i]) || !check_IDs(first[i], element_type(FEs[i]), node_limit)) return -3;
    }
    return 0;
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

}  // namespace tessarium
}  // namespace qv7
