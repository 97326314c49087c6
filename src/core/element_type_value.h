// Whether an int read from a caller's array names one of the element types.
#pragma once

#include "tessarium/element_type.h"

namespace qv7 {

constexpr bool __is_element_type(int value) noexcept
{
    return value >= ET_NONE && value <= ET_HEXA27;
}

}  // namespace qv7
