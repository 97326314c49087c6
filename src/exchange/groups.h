// What the mesh writers share: the checks on a range of connectivity groups, and the cutting of
// the groups into blocks of one element type each.
#pragma once

#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {

// One connectivity of one element type, and the group it came from.
struct __block_list {
    dense1D<dense2D<unsigned>, 8> blocks;
    dense1D<int, 8> types;
    dense1D<unsigned, 8> references;
};

// The checks every writer makes on its groups, in this order: -4 when last lies before first,
// -5 when FEs does not hold one type per group, -3 when check_IDs refuses a group against
// node_limit (or its type is no element type at all). 0 when all pass.
int __check_groups(dense2D<unsigned> const* first, dense2D<unsigned> const* last, dense1D<int, 8> const& FEs,
                   unsigned node_limit) noexcept;

// Appends the blocks of every non-empty group, in group order. A mixed group is copied and
// sorted, largest node count first, and each node count with a pure counterpart becomes one block
// (the others are left out); any other group is one block sharing the group's storage. False when
// an array could not be sized.
bool __split_groups(dense2D<unsigned> const* first, dense2D<unsigned> const* last, dense1D<int, 8> const& FEs,
                    __block_list& list);

// The single-group and two-group forms of the writers: `write(first, last, FEs)` on a range made
// of the given matrices (shallow copies) and their types; -199 when the types cannot be stored.
template <class Write>
int __with_groups(dense2D<unsigned> const& connectM, element_type FE, Write write)
{
    dense1D<int, 8> FEs(1, FE);
    if (FEs.empty()) return -199;
    return write(&connectM, &connectM + 1, FEs);
}

template <class Write>
int __with_groups(dense2D<unsigned> const& connectM1, dense2D<unsigned> const& connectM2, element_type FE1,
                  element_type FE2, Write write)
{
    dense2D<unsigned> groups[2] = {connectM1, connectM2};
    dense1D<int, 8> FEs(2, FE1);
    if (FEs.empty()) return -199;
    FEs[1] = FE2;
    return write(groups, groups + 2, FEs);
}

}  // namespace tessarium
}  // namespace qv7
