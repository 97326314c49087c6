// The local topology of the linear element shapes: how the nodes of one element are numbered,
// which boundaries and edges it has, in which node order, and which boundaries meet at a node.
//
// A descriptor is stateless. Its operations take `row`, a pointer to the first node of one column
// of a connectivity array, and write into caller storage `out`, returning the pointer past what
// they wrote. Every table below is the single copy of its data: the mixed descriptors and all
// element-wise families read these.
//
// Members shared by the nine descriptors:
//   nbr_rows        rows of a connectivity column
//   stride          boundaries of the widest kind; the divisor of a boundary ID and the rows of a
//                   neighbours array
//   boundary_width  nodes of the widest boundary; the rows of a boundaries array
//   max_edges       edges of the widest kind
//   nbr_boundaries(row), nbr_edges(row)        counts for the kind of this column
//   copy_boundary_nodes(b, row, out)           nodes of boundary b, in table order
//   copy_edge_nodes(e, row, out)               the pair (first, second) of edge e
//   copy_boundary_IDs(node, row, out)          local boundaries holding a global node
//   compare_boundaries(a, b)                   1 same boundary same sense, -1 opposite sense, 0 other
#pragma once

#include "tessarium/element_type.h"
#include "tessarium/fixed.h"

#include <algorithm>
#include <cstdint>

namespace qv7 {
namespace elfes {

// Position of the first smallest of n values.
template <class Tuple>
unsigned __smallest_position(Tuple const& t, unsigned n) noexcept
{
    unsigned p = 0;
    for (unsigned i = 1; i < n; ++i)
        if (t[i] < t[p]) p = i;
    return p;
}

// Local position of a global node among the first n rows, n when absent.
inline unsigned __local_position(unsigned node, unsigned const* row, unsigned n) noexcept
{
    for (unsigned i = 0; i < n; ++i)
        if (row[i] == node) return i;
    return n;
}

// Writes row[local[k]] for each of the n local numbers.
template <class Local>
unsigned* __copy_local(Local const* local, unsigned n, unsigned const* row, unsigned* out) noexcept
{
    for (unsigned k = 0; k < n; ++k) *out++ = row[local[k]];
    return out;
}

// The pair (first, second) of edge e from a table of local pairs.
template <unsigned NE>
unsigned* __copy_edge(unsigned char const (&edges)[NE][2], unsigned e, unsigned const* row, unsigned* out) noexcept
{
    if (e >= NE) return out;
    return __copy_local(edges[e], 2, row, out);
}

// Two sides (a0, a1) and (c0, c1): 1 when equal, -1 when reversed, 0 otherwise.
inline int __side_comparison(unsigned const* a, unsigned const* c) noexcept
{
    if (a[0] == c[0] && a[1] == c[1]) return 1;
    if (a[0] == c[1] && a[1] == c[0]) return -1;
    return 0;
}

struct edge2 {
    static constexpr unsigned nbr_rows = 2, stride = 2, boundary_width = 1, max_edges = 1;
    // Boundary b is the end opposite node b.
    static constexpr unsigned char BOUNDARIES[2] = {1, 0};
    static constexpr unsigned char EDGES[1][2] = {{0, 1}};

    static unsigned nbr_boundaries(unsigned const*) noexcept { return 2; }
    static unsigned nbr_edges(unsigned const*) noexcept { return 1; }

    static unsigned* copy_boundary_nodes(unsigned b, unsigned const* row, unsigned* out) noexcept
    {
        if (b > 1) return out;
        *out++ = row[BOUNDARIES[b]];
        return out;
    }
    static unsigned* copy_edge_nodes(unsigned e, unsigned const* row, unsigned* out) noexcept
    {
        return __copy_edge(EDGES, e, row, out);
    }
    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        unsigned p = __local_position(node, row, 2);
        if (p == 2) return out;
        *out++ = BOUNDARIES[p];
        return out;
    }
    // An end has no sense: equal nodes are the same boundary.
    static int compare_boundaries(unsigned const* a, unsigned const* c) noexcept { return a[0] == c[0] ? 1 : 0; }
};

// What faces share: their edges are their sides, and sides compare by the side test.
template <class Face>
struct __face_sides {
    static unsigned nbr_edges(unsigned const* row) noexcept { return Face::nbr_boundaries(row); }
    static unsigned* copy_edge_nodes(unsigned e, unsigned const* row, unsigned* out) noexcept
    {
        return Face::copy_boundary_nodes(e, row, out);
    }
    static int compare_boundaries(unsigned const* a, unsigned const* c) noexcept { return __side_comparison(a, c); }
};

struct faceT3 : __face_sides<faceT3> {
    static constexpr unsigned nbr_rows = 3, stride = 3, boundary_width = 2, max_edges = 3;
    // Side b runs from CYCLIC[b] to CYCLIC[b + 1]; it is the side opposite node b.
    static constexpr unsigned char CYCLIC[4] = {1, 2, 0, 1};

    static unsigned nbr_boundaries(unsigned const*) noexcept { return 3; }

    static unsigned* copy_boundary_nodes(unsigned b, unsigned const* row, unsigned* out) noexcept
    {
        if (b > 2) return out;
        return __copy_local(CYCLIC + b, 2, row, out);
    }
    // Node p lies on the sides CYCLIC[p] and CYCLIC[p + 1].
    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        unsigned p = __local_position(node, row, 3);
        if (p == 3) return out;
        *out++ = CYCLIC[p];
        *out++ = CYCLIC[p + 1];
        return out;
    }

    // Geometry of the triangle of three nodes of pos. A 2-row pos lies in the plane z = 0;
    // nothing is read past a column.
    // Squared height over vertex i, measured from the nearer end of the opposite side.
    static double sqr_height(dense2D<double> const& pos, unsigned const* nodes, unsigned i) noexcept;
    // The unnormalised normal (P1 - P0) x (P2 - P0), formed from the shorter sides.
    static void copy_director(dense2D<double> const& pos, unsigned const* nodes,
                              vector_fixed<double, 3>& director) noexcept;

    // Shape quality, 2 sqrt(3) inradius over longest side: 1 equilateral, 0 flat, negative for a
    // clockwise triangle of a 2-row pos. Defined with the quality code.
    static double geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept;

    // Two triples of nodes: 1 for the same triangle turning the same way, -1 turning the other
    // way, 0 for different triangles. Anchored at the smallest node, so the start does not matter.
    struct orientation {
        template <class A, class B>
        int operator()(A const& a, B const& b) const noexcept
        {
            unsigned pa = __smallest_position(a, 3), pb = __smallest_position(b, 3);
            if (a[pa] != b[pb]) return 0;
            unsigned a1 = a[(pa + 1) % 3], a2 = a[(pa + 2) % 3];
            unsigned b1 = b[(pb + 1) % 3], b2 = b[(pb + 2) % 3];
            if (a1 == b1 && a2 == b2) return 1;
            if (a1 == b2 && a2 == b1) return -1;
            return 0;
        }
    };
};

struct faceQ4 : __face_sides<faceQ4> {
    static constexpr unsigned nbr_rows = 4, stride = 4, boundary_width = 2, max_edges = 4;
    // Side b runs from node b to node CYCLIC[b].
    static constexpr unsigned char CYCLIC[4] = {1, 2, 3, 0};

    static unsigned nbr_boundaries(unsigned const*) noexcept { return 4; }

    static unsigned* copy_boundary_nodes(unsigned b, unsigned const* row, unsigned* out) noexcept
    {
        if (b > 3) return out;
        *out++ = row[b];
        *out++ = row[CYCLIC[b]];
        return out;
    }
    // Node p ends side p - 1 and starts side p.
    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        unsigned p = __local_position(node, row, 4);
        if (p == 4) return out;
        *out++ = (p + 3) % 4;
        *out++ = p;
        return out;
    }

    // Shape quality from the worst corner: signed in the plane, times the warp factor in space.
    static double __geometric_quality(dense2D<double> const& coords, unsigned const* nodes,
                                      fixed_size_tag<2u>) noexcept;
    static double __geometric_quality(dense2D<double> const& coords, unsigned const* nodes,
                                      fixed_size_tag<3u>) noexcept;
    // 1 for a planar quadrangle, falling to 0 as opposite corner normals turn apart.
    template <class Coords>
    static double __warp_quality(Coords const& coords, unsigned const* nodes, fixed_size_tag<3u>) noexcept;

    // As faceT3::orientation on quadruples; the same four nodes with other diagonals differ.
    struct orientation {
        template <class A, class B>
        int operator()(A const& a, B const& b) const noexcept
        {
            unsigned pa = __smallest_position(a, 4), pb = __smallest_position(b, 4);
            if (a[pa] != b[pb]) return 0;
            if (a[(pa + 2) % 4] != b[(pb + 2) % 4]) return 0;
            unsigned a1 = a[(pa + 1) % 4], a3 = a[(pa + 3) % 4];
            unsigned b1 = b[(pb + 1) % 4], b3 = b[(pb + 3) % 4];
            if (a1 == b1 && a3 == b3) return 1;
            if (a1 == b3 && a3 == b1) return -1;
            return 0;
        }
    };
};

// Triangles and quadrangles in four rows; a triangle has NONE_ID in row 3.
struct face_mix : __face_sides<face_mix> {
    static constexpr unsigned nbr_rows = 4, stride = 4, boundary_width = 2, max_edges = 4;

    static bool is_quadrangle(unsigned const* row) noexcept { return row[3] != NONE_ID; }
    static unsigned nbr_boundaries(unsigned const* row) noexcept { return is_quadrangle(row) ? 4 : 3; }

    static unsigned* copy_boundary_nodes(unsigned b, unsigned const* row, unsigned* out) noexcept
    {
        return is_quadrangle(row) ? faceQ4::copy_boundary_nodes(b, row, out) : faceT3::copy_boundary_nodes(b, row, out);
    }
    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        return is_quadrangle(row) ? faceQ4::copy_boundary_IDs(node, row, out)
                                  : faceT3::copy_boundary_IDs(node, row, out);
    }
};

// Faces of solids with triangles and quadrangles: a triangle has NONE_ID as fourth node and never
// equals a quadrangle, even when three of their nodes coincide.
inline int __compare_mixed_faces(unsigned const* a, unsigned const* c) noexcept
{
    bool quad_a = a[3] != NONE_ID, quad_c = c[3] != NONE_ID;
    if (quad_a && quad_c) return faceQ4::orientation()(a, c);
    if (quad_a != quad_c) return 0;
    return faceT3::orientation()(a, c);
}

// Boundary b of a solid whose faces are stored as columns: FACES[k][b] is node k of boundary b,
// NONE_ID as fourth node for a triangle.
template <unsigned NB>
unsigned* __copy_face(unsigned const (&faces)[4][NB], unsigned b, unsigned const* row, unsigned* out) noexcept
{
    if (b >= NB) return out;
    unsigned n = faces[3][b] == NONE_ID ? 3 : 4;
    for (unsigned k = 0; k < n; ++k) *out++ = row[faces[k][b]];
    return out;
}

struct tetra4 {
    static constexpr unsigned nbr_rows = 4, stride = 4, boundary_width = 3, max_edges = 6;
    // Face b is opposite node b.
    static constexpr std::uint16_t F[4][3] = {{1, 2, 3}, {2, 0, 3}, {1, 3, 0}, {2, 1, 0}};
    static constexpr unsigned char EDGES[6][2] = {{1, 2}, {2, 0}, {0, 1}, {3, 0}, {3, 1}, {3, 2}};

    static unsigned nbr_boundaries(unsigned const*) noexcept { return 4; }
    static unsigned nbr_edges(unsigned const*) noexcept { return 6; }

    static unsigned* copy_boundary_nodes(unsigned b, unsigned const* row, unsigned* out) noexcept
    {
        if (b > 3) return out;
        return __copy_local(F[b], 3, row, out);
    }
    static unsigned* copy_edge_nodes(unsigned e, unsigned const* row, unsigned* out) noexcept
    {
        return __copy_edge(EDGES, e, row, out);
    }
    // Every face whose opposite node is another node holds it. Tested node by node, so a node
    // that the element lacks yields all four faces.
    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        for (unsigned b = 0; b < 4; ++b)
            if (row[b] != node) *out++ = b;
        return out;
    }
    static int compare_boundaries(unsigned const* a, unsigned const* c) noexcept { return faceT3::orientation()(a, c); }

    // Shape quality, 2 sqrt(6) inradius over longest edge, with its sign decided over the even
    // node orders when the first evaluation is in doubt. `apex` stands for node 3.
    template <class Coords>
    static double geometric_quality(Coords const& coords, unsigned const* nodes) noexcept;
    template <class Coords>
    static double geometric_quality(Coords const& coords, unsigned const* nodes,
                                    vector_fixed<double, 3> const& apex) noexcept;
    // One evaluation on the edge vectors from a node; `unsure` when cancellation may have hit.
    static double __geometric_quality1(matrix_fixed<double, 3, 3> const& M, bool& unsure) noexcept;
    // Edge vectors of even permutation `index` (0 to 11) of the three nodes and `origin`.
    template <class Coords>
    static void get_loc_coordinates(Coords const& coords, unsigned const* nodes, vector_fixed<double, 3> const& origin,
                                    unsigned index, matrix_fixed<double, 3, 3>& M) noexcept;
};

// What pyramids, wedges and hexahedra share: faces kept as FACES columns, edges as EDGES pairs,
// the same counts in every column.
template <class Solid>
struct __tabled_solid {
    static unsigned nbr_boundaries(unsigned const*) noexcept { return Solid::stride; }
    static unsigned nbr_edges(unsigned const*) noexcept { return Solid::max_edges; }
    static unsigned* copy_boundary_nodes(unsigned b, unsigned const* row, unsigned* out) noexcept
    {
        return __copy_face(Solid::FACES, b, row, out);
    }
    static unsigned* copy_edge_nodes(unsigned e, unsigned const* row, unsigned* out) noexcept
    {
        return __copy_edge(Solid::EDGES, e, row, out);
    }
};

// The faces that hold a node, from a table of three faces per local node.
template <unsigned NN>
unsigned* __copy_node_faces(unsigned char const (&node_faces)[NN][3], unsigned node, unsigned const* row,
                            unsigned* out) noexcept
{
    unsigned p = __local_position(node, row, NN);
    if (p == NN) return out;
    return std::copy(node_faces[p], node_faces[p] + 3, out);
}

struct pyramid5 : __tabled_solid<pyramid5> {
    static constexpr unsigned nbr_rows = 5, stride = 5, boundary_width = 4, max_edges = 8;
    // Four triangles around the apex 4, then the base.
    static constexpr unsigned FACES[4][5] = {
        {0, 1, 2, 3, 0}, {4, 4, 4, 4, 1}, {1, 2, 3, 0, 2}, {NONE_ID, NONE_ID, NONE_ID, NONE_ID, 3}};
    static constexpr unsigned char EDGES[8][2] = {{0, 4}, {1, 4}, {2, 4}, {3, 4}, {0, 1}, {1, 2}, {2, 3}, {3, 0}};

    // A base node p lies on the triangles p - 1 and p and on the base; the apex on all triangles.
    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        unsigned p = __local_position(node, row, 5);
        if (p == 5) return out;
        if (p == 4) {
            for (unsigned b = 0; b < 4; ++b) *out++ = b;
            return out;
        }
        *out++ = (p + 3) % 4;
        *out++ = p;
        *out++ = 4;
        return out;
    }
    static int compare_boundaries(unsigned const* a, unsigned const* c) noexcept { return __compare_mixed_faces(a, c); }

    // Shape quality from the smallest base corner extent, times the base warp in `warp`.
    template <class Coords>
    static double geometric_quality(Coords const& coords, unsigned const* nodes, double& warp) noexcept;
    template <class Coords>
    static double __geometric_quality1(Coords const& coords, unsigned const* nodes) noexcept;
    template <class Coords>
    static double __min_tet_extent(Coords const& coords, unsigned const* nodes) noexcept;
};

struct wedge6 : __tabled_solid<wedge6> {
    static constexpr unsigned nbr_rows = 6, stride = 5, boundary_width = 4, max_edges = 9;
    // Two triangles (bottom 0 1 2, top 3 4 5), then three quadrangles.
    static constexpr unsigned FACES[4][5] = {
        {0, 3, 2, 0, 1}, {1, 5, 1, 2, 0}, {2, 4, 4, 5, 3}, {NONE_ID, NONE_ID, 5, 3, 4}};
    static constexpr unsigned char EDGES[9][2] = {{0, 3}, {1, 4}, {2, 5}, {1, 2}, {2, 0},
                                                  {0, 1}, {4, 5}, {5, 3}, {3, 4}};
    static constexpr unsigned char NODE_FACES[6][3] = {{0, 3, 4}, {0, 4, 2}, {0, 2, 3},
                                                       {1, 3, 4}, {1, 4, 2}, {1, 2, 3}};

    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        return __copy_node_faces(NODE_FACES, node, row, out);
    }
    static int compare_boundaries(unsigned const* a, unsigned const* c) noexcept { return __compare_mixed_faces(a, c); }

    // Shape quality from the worst corner, or from the split into face pyramids around the
    // centroid when that is worse; `warp` is the worst face warp.
    static double geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept;
    static double sum_sqr_sides(dense2D<double> const& coords, unsigned const* nodes) noexcept;
    static double min_split_quality(dense2D<double> const& coords, unsigned const* nodes, double& warp) noexcept;
};

struct hexa8 : __tabled_solid<hexa8> {
    static constexpr unsigned nbr_rows = 8, stride = 6, boundary_width = 4, max_edges = 12;
    static constexpr unsigned FACES[4][6] = {
        {0, 1, 0, 3, 0, 4}, {3, 5, 4, 2, 1, 7}, {7, 6, 5, 6, 2, 6}, {4, 2, 1, 7, 3, 5}};
    static constexpr unsigned char EDGES[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                                   {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    static constexpr unsigned char NODE_FACES[8][3] = {{0, 2, 4}, {1, 2, 4}, {1, 3, 4}, {0, 3, 4},
                                                       {0, 2, 5}, {1, 2, 5}, {1, 3, 5}, {0, 3, 5}};
    // The three nodes joined to a node by an edge.
    static constexpr unsigned char NODE_NODES[8][3] = {{1, 3, 4}, {2, 0, 5}, {3, 1, 6}, {0, 2, 7},
                                                       {7, 5, 0}, {4, 6, 1}, {5, 7, 2}, {6, 4, 3}};

    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        return __copy_node_faces(NODE_FACES, node, row, out);
    }
    static int compare_boundaries(unsigned const* a, unsigned const* c) noexcept { return faceQ4::orientation()(a, c); }

    static void get_edge_local_node_IDs(unsigned edge, unsigned& first, unsigned& second) noexcept
    {
        first = EDGES[edge][0];
        second = EDGES[edge][1];
    }
    static void get_connected_face_IDs(unsigned node, unsigned& a, unsigned& b, unsigned& c) noexcept
    {
        a = NODE_FACES[node][0];
        b = NODE_FACES[node][1];
        c = NODE_FACES[node][2];
    }
    static void get_connected_local_node_IDs(unsigned node, unsigned& a, unsigned& b, unsigned& c) noexcept
    {
        a = NODE_NODES[node][0];
        b = NODE_NODES[node][1];
        c = NODE_NODES[node][2];
    }

    // As wedge6: the worst corner, or the split around the centroid when that is worse.
    static double geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept;
    static double sum_sqr_sides(dense2D<double> const& coords, unsigned const* nodes) noexcept;
    static double min_split_quality(dense2D<double> const& coords, unsigned const* nodes, double& warp) noexcept;
    static double __min_tet_extent(dense2D<double> const& coords, unsigned const* nodes) noexcept;
    static double __tet_extent(dense2D<double> const& coords, unsigned const* nodes, unsigned corner) noexcept;
};

// Tetrahedra, pyramids, wedges and hexahedra in eight rows; a shorter solid fills its spare rows
// with NONE_ID and its kind is read from where they stand.
struct solid_mix {
    static constexpr unsigned nbr_rows = 8, stride = 6, boundary_width = 4, max_edges = 12;

    enum kind_type { TETRA, PYRAMID, WEDGE, HEXA };

    // The kind by which the tables are read. Rows 3, 4 and 5 all NONE_ID is no valid element; it
    // falls through to the hexahedron on purpose.
    static kind_type kind(unsigned const* row) noexcept
    {
        if (row[3] != NONE_ID && row[4] == NONE_ID) return TETRA;
        if (row[3] == NONE_ID && row[4] == NONE_ID && row[5] == NONE_ID) return HEXA;
        if (row[5] == NONE_ID) return PYRAMID;
        if (row[6] == NONE_ID) return WEDGE;
        return HEXA;
    }
    // The shorter test used where only the count matters; both agree on valid elements.
    static unsigned nbr_boundaries(unsigned const* row) noexcept
    {
        if (row[4] == NONE_ID) return 4;
        if (row[5] != NONE_ID && row[6] != NONE_ID) return 6;
        return 5;
    }
    static unsigned nbr_edges(unsigned const* row) noexcept
    {
        if (row[4] == NONE_ID) return 6;
        if (row[5] == NONE_ID) return 8;
        return row[6] != NONE_ID ? 12 : 9;
    }

    static unsigned* copy_boundary_nodes(unsigned b, unsigned const* row, unsigned* out) noexcept
    {
        switch (kind(row)) {
        case TETRA:
            return tetra4::copy_boundary_nodes(b, row, out);
        case PYRAMID:
            return pyramid5::copy_boundary_nodes(b, row, out);
        case WEDGE:
            return wedge6::copy_boundary_nodes(b, row, out);
        default:
            return hexa8::copy_boundary_nodes(b, row, out);
        }
    }
    static unsigned* copy_edge_nodes(unsigned e, unsigned const* row, unsigned* out) noexcept
    {
        switch (kind(row)) {
        case TETRA:
            return tetra4::copy_edge_nodes(e, row, out);
        case PYRAMID:
            return pyramid5::copy_edge_nodes(e, row, out);
        case WEDGE:
            return wedge6::copy_edge_nodes(e, row, out);
        default:
            return hexa8::copy_edge_nodes(e, row, out);
        }
    }
    static unsigned* copy_boundary_IDs(unsigned node, unsigned const* row, unsigned* out) noexcept
    {
        switch (kind(row)) {
        case TETRA:
            return tetra4::copy_boundary_IDs(node, row, out);
        case PYRAMID:
            return pyramid5::copy_boundary_IDs(node, row, out);
        case WEDGE:
            return wedge6::copy_boundary_IDs(node, row, out);
        default:
            return hexa8::copy_boundary_IDs(node, row, out);
        }
    }
    static int compare_boundaries(unsigned const* a, unsigned const* c) noexcept { return __compare_mixed_faces(a, c); }

    // The quality of the column's kind.
    static double geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept;
};

}  // namespace elfes
}  // namespace qv7
