// The element types that have a descriptor, and the switch that picks it.
#pragma once

#include "connectivity/elfes.h"
#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {

// Calls family(descriptor) for a narrowed type with a descriptor; any other type gives `unsupported`.
template <class Family>
int __with_elfe(element_type type, int unsupported, Family&& family)
{
    switch (type) {
    case ET_EDGE2:
        return family(elfes::edge2{});
    case ET_FACE_MIX:
        return family(elfes::face_mix{});
    case ET_FACE_T3:
        return family(elfes::faceT3{});
    case ET_FACE_Q4:
        return family(elfes::faceQ4{});
    case ET_SOLID_MIX:
        return family(elfes::solid_mix{});
    case ET_TETRA4:
        return family(elfes::tetra4{});
    case ET_PYRAMID5:
        return family(elfes::pyramid5{});
    case ET_WEDGE6:
        return family(elfes::wedge6{});
    case ET_HEXA8:
        return family(elfes::hexa8{});
    default:
        return unsupported;
    }
}

}  // namespace tessarium
}  // namespace qv7
