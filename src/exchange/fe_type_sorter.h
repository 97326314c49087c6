// Rearranges the columns of a mixed connectivity so that elements of equal node count stand
// together, largest count first.
#pragma once

#include "tessarium/dense2D.h"

namespace qv7 {
namespace tessarium {

class fe_type_sorter {
public:
    // An empty neighbours matrix means there is no companion to carry along.
    fe_type_sorter(dense2D<unsigned>& connectivity, dense2D<unsigned>& neighbours) noexcept
        : connectivity(connectivity), neighbours(neighbours)
    {
    }

    // Sorts the columns and renumbers the companion's element entries. Group g holds sizes[g]
    // valid nodes and covers the columns up to ends[g]; new_indices maps each initial column to
    // its place, NONE_ID for a dropped (empty) column.
    void run(dense1D<unsigned, 8>& sizes, dense1D<unsigned, 8>& ends, dense1D<unsigned, 8>& new_indices);

    void __sort_elements(dense1D<unsigned, 8>& new_indices, dense1D<unsigned, 8>& old_indices,
                         dense1D<unsigned, 8>& sizes, dense1D<unsigned, 8>& ends);

    // Entries from the top of a column up to its first NONE_ID.
    unsigned __valid_nodes(unsigned long column) const noexcept;
    unsigned __valid_nodes(unsigned const* column) const noexcept;

    void __swap_cols(unsigned long i, unsigned long j, dense1D<unsigned, 8>& work);
    void __swap_cols(unsigned* a, unsigned* b, dense1D<unsigned, 8>& work, unsigned long n);

private:
    dense2D<unsigned>& connectivity;
    dense2D<unsigned>& neighbours;
};

}  // namespace tessarium
}  // namespace qv7
