// Element kinds, their property tables and the validation of index data.
#pragma once

#include "export.h"
#include "dense2D.h"

#include <cstdint>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

enum element_type : std::int32_t {
    ET_NONE = 0,
    ET_NODE = 1,
    ET_EDGE_MIX = 2,
    ET_EDGE2 = 3,
    ET_EDGE3 = 4,
    ET_FACE_MIX = 5,
    ET_FACE_T3 = 6,
    ET_FACE_Q4 = 7,
    ET_FACE_T6 = 8,
    ET_FACE_Q8 = 9,
    ET_FACE_Q9 = 10,
    ET_SOLID_MIX = 11,
    ET_TETRA4 = 12,
    ET_TETRA10 = 13,
    ET_PYRAMID5 = 14,
    ET_PYRAMID13 = 15,
    ET_PYRAMID14 = 16,
    ET_WEDGE6 = 17,
    ET_WEDGE15 = 18,
    ET_WEDGE18 = 19,
    ET_HEXA8 = 20,
    ET_HEXA20 = 21,
    ET_HEXA27 = 22,
};

constexpr unsigned nbr_element_types = 23;

// No node, no neighbour, no element, no map target.
constexpr unsigned NONE_ID = 0xFFFFFFFFu;

// A mixed type narrowed by the row count of its array: FACE_MIX with 3 rows is FACE_T3,
// SOLID_MIX with 4, 5 or 6 rows is TETRA4, PYRAMID5 or WEDGE6. Every other pair stays.
constexpr element_type __narrow(element_type type, std::size_t rows) noexcept
{
    if (type == ET_FACE_MIX && rows == 3) return ET_FACE_T3;
    if (type == ET_SOLID_MIX) {
        if (rows == 4) return ET_TETRA4;
        if (rows == 5) return ET_PYRAMID5;
        if (rows == 6) return ET_WEDGE6;
    }
    return type;
}

namespace tessarium {

// The library's version literal.
char const* version() noexcept;

// Plain lookups: the argument must be one of the 23 values.
unsigned element_dim(element_type type) noexcept;
unsigned nbr_nodes(element_type type) noexcept;
unsigned nbr_base_nodes(element_type type) noexcept;
unsigned nbr_boundaries(element_type type) noexcept;

// Every entry is below nbr_nodes or NONE_ID. NONE_ID as nbr_nodes accepts anything.
bool check_IDs(dense1D<unsigned, 8> const& IDs, unsigned nbr_nodes) noexcept;
bool check_IDs(dense2D<unsigned> const& connect, unsigned nbr_nodes) noexcept;
// The shape fits the (narrowed) type and every entry is valid for it; NONE_ID as nbr_nodes
// tests the shape alone.
bool check_IDs(dense2D<unsigned> const& connect, element_type type, unsigned nbr_nodes) noexcept;

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
