// The element cards of NASTRAN decks: names, node counts and node orders, read and written.
#pragma once

#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {

// A card name as the reader finds it, and the type it stands for before promotion.
struct __nastran_card_name {
    char const* name;
    element_type type;
};

// Sorted by name. The names without the leading C are taken too.
constexpr __nastran_card_name __nastran_card_names[] = {
    {"BAR", ET_EDGE2},      {"BEAM", ET_EDGE2},     {"CBAR", ET_EDGE2},     {"CBEAM", ET_EDGE2},
    {"CHEXA", ET_HEXA8},    {"CPENTA", ET_WEDGE6},  {"CPYRA", ET_PYRAMID5}, {"CPYRAM", ET_PYRAMID5},
    {"CQUAD4", ET_FACE_Q4}, {"CQUAD8", ET_FACE_Q8}, {"CROD", ET_EDGE2},     {"CTETRA", ET_TETRA4},
    {"CTRIA3", ET_FACE_T3}, {"CTRIA6", ET_FACE_T6}, {"HEXA", ET_HEXA8},     {"PENTA", ET_WEDGE6},
    {"PYRA", ET_PYRAMID5},  {"PYRAM", ET_PYRAMID5}, {"QUAD4", ET_FACE_Q4},  {"QUAD8", ET_FACE_Q8},
    {"ROD", ET_EDGE2},      {"TETRA", ET_TETRA4},   {"TRIA3", ET_FACE_T3},  {"TRIA6", ET_FACE_T6},
};

// The card a type is written as: nodes[p] is the local node in file position p.
struct __nastran_card {
    char const* name;  // null: the type has no card
    unsigned char count;
    unsigned char nodes[20];
};

// Indexed by element_type. The mixed types are written element by element as pure ones.
constexpr __nastran_card __nastran_cards[nbr_element_types] = {
    {nullptr, 0, {}},                                                                       // ET_NONE
    {nullptr, 0, {}},                                                                       // ET_NODE
    {nullptr, 0, {}},                                                                       // ET_EDGE_MIX
    {"CBAR", 2, {0, 1}},                                                                    // ET_EDGE2
    {"CBAR", 2, {0, 1}},                                                                    // ET_EDGE3
    {nullptr, 0, {}},                                                                       // ET_FACE_MIX
    {"CTRIA3", 3, {0, 1, 2}},                                                               // ET_FACE_T3
    {"CQUAD4", 4, {0, 1, 2, 3}},                                                            // ET_FACE_Q4
    {"CTRIA6", 6, {0, 1, 2, 5, 3, 4}},                                                      // ET_FACE_T6
    {"CQUAD8", 8, {0, 1, 2, 3, 4, 5, 6, 7}},                                                // ET_FACE_Q8
    {"CQUAD8", 9, {0, 1, 2, 3, 4, 5, 6, 7, 8}},                                             // ET_FACE_Q9
    {nullptr, 0, {}},                                                                       // ET_SOLID_MIX
    {"CTETRA", 4, {0, 2, 1, 3}},                                                            // ET_TETRA4
    {"CTETRA", 10, {0, 2, 1, 3, 5, 4, 6, 7, 9, 8}},                                         // ET_TETRA10
    {"CPYRAM", 5, {0, 1, 2, 3, 4}},                                                         // ET_PYRAMID5
    {"CPYRAM", 13, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},                             // ET_PYRAMID13
    {"CPYRAM", 13, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},                             // ET_PYRAMID14
    {"CPENTA", 6, {0, 1, 2, 3, 4, 5}},                                                      // ET_WEDGE6
    {"CPENTA", 15, {0, 1, 2, 3, 4, 5, 11, 9, 10, 6, 7, 8, 14, 12, 13}},                     // ET_WEDGE15
    {"CPENTA", 15, {0, 1, 2, 3, 4, 5, 11, 9, 10, 6, 7, 8, 14, 12, 13}},                     // ET_WEDGE18
    {"CHEXA", 8, {0, 1, 2, 3, 4, 5, 6, 7}},                                                 // ET_HEXA8
    {"CHEXA", 20, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15}},  // ET_HEXA20
    {"CHEXA", 20, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15}},  // ET_HEXA27
};

// The file position each local node is read from, for the types whose order differs from the
// file's; null keeps the file order. The tetrahedra and the 20-node hexahedron read back what is
// written, the 6-node triangle reads the inverse, the 15-node wedge reads the written list again.
constexpr unsigned char __nastran_read_T6[] = {0, 1, 2, 4, 5, 3};

inline unsigned char const* __nastran_read_order(element_type type) noexcept
{
    switch (type) {
    case ET_FACE_T6:
        return __nastran_read_T6;
    case ET_TETRA4:
    case ET_TETRA10:
    case ET_WEDGE15:
    case ET_HEXA20:
        return __nastran_cards[type].nodes;
    default:
        return nullptr;
    }
}

}  // namespace tessarium
}  // namespace qv7
