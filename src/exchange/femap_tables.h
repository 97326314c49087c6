// The element kinds of FEMAP neutral files: type and topology codes, and the node slots of the
// record's two slot lines.
#pragma once

#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {

struct __femap_kind {
    element_type type;
    unsigned char type_code;
    unsigned char topology;
    unsigned char slots[20];  // slots[i]: the slot that holds local node i
};

constexpr unsigned char __femap_slot_count = 20;

// The types that have a record.
constexpr __femap_kind __femap_kinds[] = {
    {ET_NODE, 10, 9, {0}},
    {ET_EDGE2, 5, 0, {0, 1}},
    {ET_EDGE3, 8, 1, {0, 1, 2}},
    {ET_FACE_T3, 17, 2, {0, 1, 2}},
    {ET_FACE_Q4, 17, 4, {0, 1, 2, 3}},
    {ET_FACE_T6, 18, 3, {0, 1, 2, 4, 5, 3}},
    {ET_FACE_Q8, 18, 5, {0, 1, 2, 3, 4, 5, 6, 7}},
    {ET_TETRA4, 25, 6, {1, 0, 2, 4}},
    {ET_TETRA10, 25, 10, {0, 2, 1, 4, 9, 8, 10, 12, 14, 13}},
    {ET_WEDGE6, 25, 7, {0, 1, 2, 4, 5, 6}},
    {ET_HEXA8, 25, 8, {0, 1, 2, 3, 4, 5, 6, 7}},
    {ET_HEXA20, 26, 12, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}},
};

// The kind of an element type or of a topology code; null for those without one.
inline __femap_kind const* __femap_kind_of_type(element_type type) noexcept
{
    for (__femap_kind const& kind : __femap_kinds)
        if (kind.type == type) return &kind;
    return nullptr;
}
inline __femap_kind const* __femap_kind_of_topology(unsigned topology) noexcept
{
    for (__femap_kind const& kind : __femap_kinds)
        if (kind.topology == topology) return &kind;
    return nullptr;
}

}  // namespace tessarium
}  // namespace qv7
