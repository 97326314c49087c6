#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {
namespace {

struct element_row {
    unsigned dim, nodes, base_nodes, boundaries;
};

constexpr element_row element_table[nbr_element_types] = {
    {0, 0, 0, 0},   // ET_NONE
    {0, 1, 1, 0},   // ET_NODE
    {1, 2, 2, 2},   // ET_EDGE_MIX
    {1, 2, 2, 2},   // ET_EDGE2
    {1, 3, 2, 2},   // ET_EDGE3
    {2, 4, 4, 4},   // ET_FACE_MIX
    {2, 3, 3, 3},   // ET_FACE_T3
    {2, 4, 4, 4},   // ET_FACE_Q4
    {2, 6, 3, 3},   // ET_FACE_T6
    {2, 8, 4, 4},   // ET_FACE_Q8
    {2, 9, 4, 4},   // ET_FACE_Q9
    {3, 8, 8, 6},   // ET_SOLID_MIX
    {3, 4, 4, 4},   // ET_TETRA4
    {3, 10, 4, 4},  // ET_TETRA10
    {3, 5, 5, 5},   // ET_PYRAMID5
    {3, 13, 5, 5},  // ET_PYRAMID13
    {3, 14, 5, 5},  // ET_PYRAMID14
    {3, 6, 6, 5},   // ET_WEDGE6
    {3, 15, 6, 5},  // ET_WEDGE15
    {3, 18, 6, 5},  // ET_WEDGE18
    {3, 8, 8, 6},   // ET_HEXA8
    {3, 20, 8, 6},  // ET_HEXA20
    {3, 27, 8, 6},  // ET_HEXA27
};

}  // namespace

char const* version() noexcept
{
    return "4.8.0.0";
}

unsigned element_dim(element_type type) noexcept
{
    return element_table[type].dim;
}
unsigned nbr_nodes(element_type type) noexcept
{
    return element_table[type].nodes;
}
unsigned nbr_base_nodes(element_type type) noexcept
{
    return element_table[type].base_nodes;
}
unsigned nbr_boundaries(element_type type) noexcept
{
    return element_table[type].boundaries;
}

}  // namespace tessarium
}  // namespace qv7
