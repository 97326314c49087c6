// How each format names the element types it holds and in which node order it lists them.
#pragma once

#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {

// A cell of a format: its keyword or card (null when the format has none for the type), its
// numeric code where the format uses one, and nodes[p], the local node at file position p.
struct __cell_kind {
    char const* name;
    unsigned char code;
    unsigned char count;
    unsigned char nodes[20];
};

constexpr __cell_kind __no_cell = {nullptr, 0, 0, {}};

// clang-format off
#define TESSARIUM_IN_ORDER {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}
// The library lists the mid nodes of 6-node triangles and tetrahedra from the edge opposite
// corner 0, the formats from the edge 0-1, and its tetrahedra turn the other way round.
#define TESSARIUM_T6 {0, 1, 2, 5, 3, 4}
#define TESSARIUM_TETRA {0, 2, 1, 3, 5, 4, 6, 7, 9, 8}
// The library's 15-node wedge: corners, the three vertical edges, then bottom and top edges each
// opposite a corner; the formats: corners, bottom edges, then top and vertical (VTK, EnSight)
// or vertical and top (NASTRAN).
//
// The library's wedges turn as VTK's do: the normal of the first triangle points away from the
// second. NASTRAN, FEMAP and Medit turn them the other way round.
constexpr unsigned char __turned_wedge[6] = {0, 2, 1, 3, 5, 4};
#define TESSARIUM_W15_BOTTOM_TOP_VERTICAL {0, 1, 2, 3, 4, 5, 11, 9, 10, 14, 12, 13, 6, 7, 8}
// The 20-node hexahedron: bottom, top, vertical edges (VTK, EnSight, the library), or bottom,
// vertical, top (NASTRAN).
#define TESSARIUM_H20_BOTTOM_VERTICAL_TOP {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15}
// clang-format on

// Indexed by element_type. PYRAMID14, WEDGE18 and HEXA27 are in none of the portable tables: the
// library does not fix the order of their face nodes.
constexpr __cell_kind __vtk_cells[nbr_element_types] = {
    __no_cell,                                                       // ET_NONE
    {"vertex", 1, 1, {0}},                                           // ET_NODE
    __no_cell,                                                       // ET_EDGE_MIX
    {"line", 3, 2, {0, 1}},                                          // ET_EDGE2
    {"quadratic edge", 21, 3, {0, 1, 2}},                            // ET_EDGE3
    __no_cell,                                                       // ET_FACE_MIX
    {"triangle", 5, 3, {0, 1, 2}},                                   // ET_FACE_T3
    {"quad", 9, 4, {0, 1, 2, 3}},                                    // ET_FACE_Q4
    {"quadratic triangle", 22, 6, TESSARIUM_T6},                     // ET_FACE_T6
    {"quadratic quad", 23, 8, TESSARIUM_IN_ORDER},                   // ET_FACE_Q8
    {"biquadratic quad", 28, 9, TESSARIUM_IN_ORDER},                 // ET_FACE_Q9
    __no_cell,                                                       // ET_SOLID_MIX
    {"tetra", 10, 4, TESSARIUM_TETRA},                               // ET_TETRA4
    {"quadratic tetra", 24, 10, TESSARIUM_TETRA},                    // ET_TETRA10
    {"pyramid", 14, 5, TESSARIUM_IN_ORDER},                          // ET_PYRAMID5
    {"quadratic pyramid", 27, 13, TESSARIUM_IN_ORDER},               // ET_PYRAMID13
    __no_cell,                                                       // ET_PYRAMID14
    {"wedge", 13, 6, TESSARIUM_IN_ORDER},                            // ET_WEDGE6
    {"quadratic wedge", 26, 15, TESSARIUM_W15_BOTTOM_TOP_VERTICAL},  // ET_WEDGE15
    __no_cell,                                                       // ET_WEDGE18
    {"hexahedron", 12, 8, TESSARIUM_IN_ORDER},                       // ET_HEXA8
    {"quadratic hexahedron", 25, 20, TESSARIUM_IN_ORDER},            // ET_HEXA20
    __no_cell,                                                       // ET_HEXA27
};

// EnSight lists the mid node of a 3-node bar second, and turns wedges the other way round from
// VTK: the normal of the first triangle points towards the second.
constexpr __cell_kind __ensight_cells[nbr_element_types] = {
    __no_cell,                                                               // ET_NONE
    {"point", 0, 1, {0}},                                                    // ET_NODE
    __no_cell,                                                               // ET_EDGE_MIX
    {"bar2", 0, 2, {0, 1}},                                                  // ET_EDGE2
    {"bar3", 0, 3, {0, 2, 1}},                                               // ET_EDGE3
    __no_cell,                                                               // ET_FACE_MIX
    {"tria3", 0, 3, {0, 1, 2}},                                              // ET_FACE_T3
    {"quad4", 0, 4, {0, 1, 2, 3}},                                           // ET_FACE_Q4
    {"tria6", 0, 6, TESSARIUM_T6},                                           // ET_FACE_T6
    {"quad8", 0, 8, TESSARIUM_IN_ORDER},                                     // ET_FACE_Q8
    __no_cell,                                                               // ET_FACE_Q9
    __no_cell,                                                               // ET_SOLID_MIX
    {"tetra4", 0, 4, TESSARIUM_TETRA},                                       // ET_TETRA4
    {"tetra10", 0, 10, TESSARIUM_TETRA},                                     // ET_TETRA10
    {"pyramid5", 0, 5, TESSARIUM_IN_ORDER},                                  // ET_PYRAMID5
    {"pyramid13", 0, 13, TESSARIUM_IN_ORDER},                                // ET_PYRAMID13
    __no_cell,                                                               // ET_PYRAMID14
    {"penta6", 0, 6, {0, 2, 1, 3, 5, 4}},                                    // ET_WEDGE6
    {"penta15", 0, 15, {0, 2, 1, 3, 5, 4, 10, 9, 11, 13, 12, 14, 6, 8, 7}},  // ET_WEDGE15
    __no_cell,                                                               // ET_WEDGE18
    {"hexa8", 0, 8, TESSARIUM_IN_ORDER},                                     // ET_HEXA8
    {"hexa20", 0, 20, TESSARIUM_IN_ORDER},                                   // ET_HEXA20
    __no_cell,                                                               // ET_HEXA27
};

// CROD rather than CBAR for edges: a bar needs an orientation the mesh does not have.
constexpr __cell_kind __nastran_cells[nbr_element_types] = {
    __no_cell,                                                              // ET_NONE
    __no_cell,                                                              // ET_NODE
    __no_cell,                                                              // ET_EDGE_MIX
    {"CROD", 0, 2, {0, 1}},                                                 // ET_EDGE2
    __no_cell,                                                              // ET_EDGE3
    __no_cell,                                                              // ET_FACE_MIX
    {"CTRIA3", 0, 3, {0, 1, 2}},                                            // ET_FACE_T3
    {"CQUAD4", 0, 4, {0, 1, 2, 3}},                                         // ET_FACE_Q4
    {"CTRIA6", 0, 6, TESSARIUM_T6},                                         // ET_FACE_T6
    {"CQUAD8", 0, 8, TESSARIUM_IN_ORDER},                                   // ET_FACE_Q8
    __no_cell,                                                              // ET_FACE_Q9
    __no_cell,                                                              // ET_SOLID_MIX
    {"CTETRA", 0, 4, TESSARIUM_TETRA},                                      // ET_TETRA4
    {"CTETRA", 0, 10, TESSARIUM_TETRA},                                     // ET_TETRA10
    {"CPYRAM", 0, 5, TESSARIUM_IN_ORDER},                                   // ET_PYRAMID5
    {"CPYRAM", 0, 13, TESSARIUM_IN_ORDER},                                  // ET_PYRAMID13
    __no_cell,                                                              // ET_PYRAMID14
    {"CPENTA", 0, 6, {0, 2, 1, 3, 5, 4}},                                   // ET_WEDGE6
    {"CPENTA", 0, 15, {0, 2, 1, 3, 5, 4, 10, 9, 11, 6, 8, 7, 13, 12, 14}},  // ET_WEDGE15
    __no_cell,                                                              // ET_WEDGE18
    {"CHEXA", 0, 8, TESSARIUM_IN_ORDER},                                    // ET_HEXA8
    {"CHEXA", 0, 20, TESSARIUM_H20_BOTTOM_VERTICAL_TOP},                    // ET_HEXA20
    __no_cell,                                                              // ET_HEXA27
};

// Linear cells only: the higher-order keywords are not read by the common Medit readers.
// The codes are the keyword numbers of binary Medit files.
constexpr __cell_kind __medit_cells[nbr_element_types] = {
    __no_cell,                               // ET_NONE
    __no_cell,                               // ET_NODE
    __no_cell,                               // ET_EDGE_MIX
    {"Edges", 5, 2, {0, 1}},                 // ET_EDGE2
    __no_cell,                               // ET_EDGE3
    __no_cell,                               // ET_FACE_MIX
    {"Triangles", 6, 3, {0, 1, 2}},          // ET_FACE_T3
    {"Quadrilaterals", 7, 4, {0, 1, 2, 3}},  // ET_FACE_Q4
    __no_cell,
    __no_cell,
    __no_cell,
    __no_cell,                                // ET_FACE_T6 .. ET_SOLID_MIX
    {"Tetrahedra", 8, 4, TESSARIUM_TETRA},    // ET_TETRA4
    __no_cell,                                // ET_TETRA10
    {"Pyramids", 49, 5, TESSARIUM_IN_ORDER},  // ET_PYRAMID5
    __no_cell,
    __no_cell,                             // ET_PYRAMID13, ET_PYRAMID14
    {"Prisms", 9, 6, {0, 2, 1, 3, 5, 4}},  // ET_WEDGE6
    __no_cell,
    __no_cell,                                 // ET_WEDGE15, ET_WEDGE18
    {"Hexahedra", 10, 8, TESSARIUM_IN_ORDER},  // ET_HEXA8
    __no_cell,
    __no_cell,  // ET_HEXA20, ET_HEXA27
};

// gmsh numbers its element types; its prisms turn as NASTRAN's do, its 10-node tetrahedra list
// the mid nodes of edges 2-3 and 1-3 in that order, and its 13-node pyramids, 15-node prisms and
// 20-node hexahedra list edges by their lower corner.
constexpr __cell_kind __gmsh_cells[nbr_element_types] = {
    __no_cell,                                                                                         // ET_NONE
    {"point", 15, 1, {0}},                                                                             // ET_NODE
    __no_cell,                                                                                         // ET_EDGE_MIX
    {"line", 1, 2, {0, 1}},                                                                            // ET_EDGE2
    {"line3", 8, 3, {0, 1, 2}},                                                                        // ET_EDGE3
    __no_cell,                                                                                         // ET_FACE_MIX
    {"triangle", 2, 3, {0, 1, 2}},                                                                     // ET_FACE_T3
    {"quadrangle", 3, 4, {0, 1, 2, 3}},                                                                // ET_FACE_Q4
    {"triangle6", 9, 6, TESSARIUM_T6},                                                                 // ET_FACE_T6
    {"quadrangle8", 16, 8, TESSARIUM_IN_ORDER},                                                        // ET_FACE_Q8
    {"quadrangle9", 10, 9, TESSARIUM_IN_ORDER},                                                        // ET_FACE_Q9
    __no_cell,                                                                                         // ET_SOLID_MIX
    {"tetrahedron", 4, 4, TESSARIUM_TETRA},                                                            // ET_TETRA4
    {"tetrahedron10", 11, 10, {0, 2, 1, 3, 5, 4, 6, 7, 8, 9}},                                         // ET_TETRA10
    {"pyramid", 7, 5, TESSARIUM_IN_ORDER},                                                             // ET_PYRAMID5
    {"pyramid13", 19, 13, {0, 1, 2, 3, 4, 5, 8, 9, 6, 10, 7, 11, 12}},                                 // ET_PYRAMID13
    __no_cell,                                                                                         // ET_PYRAMID14
    {"prism", 6, 6, {0, 2, 1, 3, 5, 4}},                                                               // ET_WEDGE6
    {"prism15", 18, 15, {0, 2, 1, 3, 5, 4, 10, 11, 6, 9, 8, 7, 13, 14, 12}},                           // ET_WEDGE15
    __no_cell,                                                                                         // ET_WEDGE18
    {"hexahedron", 5, 8, TESSARIUM_IN_ORDER},                                                          // ET_HEXA8
    {"hexahedron20", 17, 20, {0, 1, 2, 3, 4, 5, 6, 7, 8, 11, 16, 9, 17, 10, 18, 19, 12, 15, 13, 14}},  // ET_HEXA20
    __no_cell,                                                                                         // ET_HEXA27
};

#undef TESSARIUM_IN_ORDER
#undef TESSARIUM_T6
#undef TESSARIUM_TETRA
#undef TESSARIUM_W15_BOTTOM_TOP_VERTICAL
#undef TESSARIUM_H20_BOTTOM_VERTICAL_TOP

}  // namespace tessarium
}  // namespace qv7
