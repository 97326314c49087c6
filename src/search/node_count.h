// The node count of a coordinate matrix as the bound that index checks take.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

namespace qv7 {

// NONE_ID, the largest bound, accepts every number a 32-bit index can hold.
inline unsigned __node_count(dense2D<double> const& pos) noexcept
{
    return pos.cols() < NONE_ID ? static_cast<unsigned>(pos.cols()) : NONE_ID;
}

}  // namespace qv7
