#include "connectivity/elfes.h"
#include "connectivity/nbr_nodes_of_boundaries.h"
#include "connectivity/test_meshes.h"
#include "tessarium/fixed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

using namespace qv7;
using namespace test_meshes;

namespace {

// A column whose global numbers are 10 + local number, padded with NONE_ID.
template <class Elfe>
std::vector<unsigned> local_row(unsigned real_nodes)
{
    std::vector<unsigned> row(Elfe::nbr_rows, NONE);
    for (unsigned k = 0; k < real_nodes; ++k) row[k] = 10 + k;
    return row;
}

// Boundary b as local numbers (global - 10), read through copy_boundary_nodes.
template <class Elfe>
std::vector<unsigned> boundary(unsigned b, std::vector<unsigned> const& row)
{
    unsigned out[4] = {NONE, NONE, NONE, NONE};
    unsigned* end = Elfe::copy_boundary_nodes(b, row.data(), out);
    std::vector<unsigned> local;
    for (unsigned* p = out; p != end; ++p) local.push_back(*p - 10);
    return local;
}

template <class Elfe>
std::vector<std::vector<unsigned>> boundaries(std::vector<unsigned> const& row)
{
    std::vector<std::vector<unsigned>> all;
    for (unsigned b = 0; b < Elfe::nbr_boundaries(row.data()); ++b) all.push_back(boundary<Elfe>(b, row));
    return all;
}

template <class Elfe>
std::vector<std::pair<unsigned, unsigned>> edges(std::vector<unsigned> const& row)
{
    std::vector<std::pair<unsigned, unsigned>> all;
    for (unsigned e = 0; e < Elfe::nbr_edges(row.data()); ++e) {
        unsigned out[2];
        EXPECT_EQ(Elfe::copy_edge_nodes(e, row.data(), out), out + 2);
        all.push_back({out[0] - 10, out[1] - 10});
    }
    return all;
}

template <class Elfe>
std::vector<unsigned> boundary_IDs(unsigned node, std::vector<unsigned> const& row)
{
    unsigned out[6];
    unsigned* end = Elfe::copy_boundary_IDs(node, row.data(), out);
    return std::vector<unsigned>(out, end);
}

using faces_t = std::vector<std::vector<unsigned>>;
using edges_t = std::vector<std::pair<unsigned, unsigned>>;

}  // namespace

TEST(ElementTables, BoundaryNodeOrder)
{
    EXPECT_EQ(boundaries<elfes::edge2>(local_row<elfes::edge2>(2)), (faces_t{{1}, {0}}));
    EXPECT_EQ(boundaries<elfes::faceT3>(local_row<elfes::faceT3>(3)), (faces_t{{1, 2}, {2, 0}, {0, 1}}));
    EXPECT_EQ(boundaries<elfes::faceQ4>(local_row<elfes::faceQ4>(4)), (faces_t{{0, 1}, {1, 2}, {2, 3}, {3, 0}}));
    EXPECT_EQ(boundaries<elfes::tetra4>(local_row<elfes::tetra4>(4)),
              (faces_t{{1, 2, 3}, {2, 0, 3}, {1, 3, 0}, {2, 1, 0}}));
    EXPECT_EQ(boundaries<elfes::pyramid5>(local_row<elfes::pyramid5>(5)),
              (faces_t{{0, 4, 1}, {1, 4, 2}, {2, 4, 3}, {3, 4, 0}, {0, 1, 2, 3}}));
    faces_t wedge{{0, 1, 2}, {3, 5, 4}, {2, 1, 4, 5}, {0, 2, 5, 3}, {1, 0, 3, 4}};
    faces_t hexa{{0, 3, 7, 4}, {1, 5, 6, 2}, {0, 4, 5, 1}, {3, 2, 6, 7}, {0, 1, 2, 3}, {4, 7, 6, 5}};
    EXPECT_EQ(boundaries<elfes::wedge6>(local_row<elfes::wedge6>(6)), wedge);
    EXPECT_EQ(boundaries<elfes::hexa8>(local_row<elfes::hexa8>(8)), hexa);
    // The mixed descriptors read the same lines by the kind of the column.
    EXPECT_EQ(boundaries<elfes::face_mix>(local_row<elfes::face_mix>(3)), (faces_t{{1, 2}, {2, 0}, {0, 1}}));
    EXPECT_EQ(boundaries<elfes::face_mix>(local_row<elfes::face_mix>(4)), (faces_t{{0, 1}, {1, 2}, {2, 3}, {3, 0}}));
    EXPECT_EQ(boundaries<elfes::solid_mix>(local_row<elfes::solid_mix>(6)), wedge);
    EXPECT_EQ(boundaries<elfes::solid_mix>(local_row<elfes::solid_mix>(8)), hexa);
}

TEST(ElementTables, TriangleLeavesFourthSlotAndOutOfRangeWritesNothing)
{
    auto row = local_row<elfes::wedge6>(6);
    unsigned out[4] = {7, 7, 7, 7};
    EXPECT_EQ(elfes::wedge6::copy_boundary_nodes(1, row.data(), out), out + 3);
    EXPECT_EQ(out[3], 7u);
    EXPECT_EQ(elfes::wedge6::copy_boundary_nodes(2, row.data(), out), out + 4);
    EXPECT_EQ(std::vector<unsigned>(out, out + 4), (std::vector<unsigned>{12, 11, 14, 15}));
    EXPECT_EQ(elfes::wedge6::copy_boundary_nodes(5, row.data(), out), out);
    EXPECT_EQ(elfes::pyramid5::copy_boundary_nodes(5, row.data(), out), out);
    EXPECT_EQ(elfes::tetra4::copy_boundary_nodes(4, row.data(), out), out);
    auto tet = local_row<elfes::solid_mix>(4);
    EXPECT_EQ(elfes::solid_mix::copy_boundary_nodes(4, tet.data(), out), out);
    EXPECT_EQ(elfes::solid_mix::copy_edge_nodes(6, tet.data(), out), out);
    auto pyr = local_row<elfes::solid_mix>(5);
    EXPECT_EQ(elfes::solid_mix::copy_edge_nodes(8, pyr.data(), out), out);
    auto wed = local_row<elfes::solid_mix>(6);
    EXPECT_EQ(elfes::solid_mix::copy_edge_nodes(9, wed.data(), out), out);
    EXPECT_EQ(elfes::solid_mix::copy_edge_nodes(8, wed.data(), out), out + 2);
}

TEST(ElementTables, EdgeOrder)
{
    EXPECT_EQ(edges<elfes::edge2>(local_row<elfes::edge2>(2)), (edges_t{{0, 1}}));
    EXPECT_EQ(edges<elfes::faceT3>(local_row<elfes::faceT3>(3)), (edges_t{{1, 2}, {2, 0}, {0, 1}}));
    EXPECT_EQ(edges<elfes::faceQ4>(local_row<elfes::faceQ4>(4)), (edges_t{{0, 1}, {1, 2}, {2, 3}, {3, 0}}));
    edges_t tetra{{1, 2}, {2, 0}, {0, 1}, {3, 0}, {3, 1}, {3, 2}};
    edges_t pyramid{{0, 4}, {1, 4}, {2, 4}, {3, 4}, {0, 1}, {1, 2}, {2, 3}, {3, 0}};
    edges_t wedge{{0, 3}, {1, 4}, {2, 5}, {1, 2}, {2, 0}, {0, 1}, {4, 5}, {5, 3}, {3, 4}};
    edges_t hexa{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6}, {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    EXPECT_EQ(edges<elfes::tetra4>(local_row<elfes::tetra4>(4)), tetra);
    EXPECT_EQ(edges<elfes::pyramid5>(local_row<elfes::pyramid5>(5)), pyramid);
    EXPECT_EQ(edges<elfes::wedge6>(local_row<elfes::wedge6>(6)), wedge);
    EXPECT_EQ(edges<elfes::hexa8>(local_row<elfes::hexa8>(8)), hexa);
    EXPECT_EQ(edges<elfes::solid_mix>(local_row<elfes::solid_mix>(4)), tetra);
    EXPECT_EQ(edges<elfes::solid_mix>(local_row<elfes::solid_mix>(5)), pyramid);
    EXPECT_EQ(edges<elfes::solid_mix>(local_row<elfes::solid_mix>(6)), wedge);
    EXPECT_EQ(edges<elfes::solid_mix>(local_row<elfes::solid_mix>(8)), hexa);
    for (unsigned e = 0; e < 12; ++e) {
        unsigned first, second;
        elfes::hexa8::get_edge_local_node_IDs(e, first, second);
        EXPECT_EQ(std::make_pair(first, second), hexa[e]);
    }
}

// The faces of each solid form a closed surface: every directed side of a face appears once and
// its reverse once, the undirected sides are exactly the edge table, and V - E + F = 2.
template <class Elfe>
void expect_closed_surface(unsigned nodes)
{
    auto row = local_row<Elfe>(nodes);
    std::map<std::pair<unsigned, unsigned>, int> directed;
    for (auto const& f : boundaries<Elfe>(row))
        for (std::size_t k = 0; k < f.size(); ++k) ++directed[{f[k], f[(k + 1) % f.size()]}];
    std::set<std::pair<unsigned, unsigned>> sides;
    for (auto const& [side, count] : directed) {
        EXPECT_EQ(count, 1) << side.first << "-" << side.second;
        EXPECT_EQ(directed.count({side.second, side.first}), 1u) << side.first << "-" << side.second;
        sides.insert(std::minmax(side.first, side.second));
    }
    std::set<std::pair<unsigned, unsigned>> table;
    for (auto const& e : edges<Elfe>(row)) table.insert(std::minmax(e.first, e.second));
    EXPECT_EQ(sides, table);
    EXPECT_EQ(table.size(), Elfe::nbr_edges(row.data()));
    EXPECT_EQ(int(nodes) - int(table.size()) + int(Elfe::nbr_boundaries(row.data())), 2);
}

TEST(ElementTables, SolidFacesCloseAndMatchEdges)
{
    expect_closed_surface<elfes::tetra4>(4);
    expect_closed_surface<elfes::pyramid5>(5);
    expect_closed_surface<elfes::wedge6>(6);
    expect_closed_surface<elfes::hexa8>(8);
    for (unsigned n : {4u, 5u, 6u, 8u}) expect_closed_surface<elfes::solid_mix>(n);
}

// copy_boundary_IDs lists exactly the boundaries that hold the node.
template <class Elfe>
void expect_node_boundaries_consistent(unsigned nodes)
{
    auto row = local_row<Elfe>(nodes);
    auto faces = boundaries<Elfe>(row);
    for (unsigned p = 0; p < nodes; ++p) {
        std::set<unsigned> holding;
        for (unsigned b = 0; b < faces.size(); ++b)
            if (std::count(faces[b].begin(), faces[b].end(), p)) holding.insert(b);
        auto listed = boundary_IDs<Elfe>(10 + p, row);
        EXPECT_EQ(std::set<unsigned>(listed.begin(), listed.end()), holding) << "node " << p;
        EXPECT_EQ(listed.size(), holding.size()) << "node " << p;
    }
    bool node_by_node = std::is_same<Elfe, elfes::tetra4>::value ||
                        (std::is_same<Elfe, elfes::solid_mix>::value && nodes == 4);
    if (!node_by_node) {
        EXPECT_TRUE(boundary_IDs<Elfe>(99, row).empty());
    }
}

TEST(ElementTables, NodeToBoundaryListsAgreeWithBoundaries)
{
    expect_node_boundaries_consistent<elfes::edge2>(2);
    expect_node_boundaries_consistent<elfes::faceT3>(3);
    expect_node_boundaries_consistent<elfes::faceQ4>(4);
    expect_node_boundaries_consistent<elfes::face_mix>(3);
    expect_node_boundaries_consistent<elfes::face_mix>(4);
    expect_node_boundaries_consistent<elfes::tetra4>(4);
    expect_node_boundaries_consistent<elfes::pyramid5>(5);
    expect_node_boundaries_consistent<elfes::wedge6>(6);
    expect_node_boundaries_consistent<elfes::hexa8>(8);
    for (unsigned n : {4u, 5u, 6u, 8u}) expect_node_boundaries_consistent<elfes::solid_mix>(n);
}

TEST(ElementTables, NodeToBoundaryOrder)
{
    using list = std::vector<unsigned>;
    auto t3 = local_row<elfes::faceT3>(3);
    EXPECT_EQ(boundary_IDs<elfes::faceT3>(10, t3), (list{1, 2}));
    EXPECT_EQ(boundary_IDs<elfes::faceT3>(12, t3), (list{0, 1}));
    auto q4 = local_row<elfes::faceQ4>(4);
    EXPECT_EQ(boundary_IDs<elfes::faceQ4>(10, q4), (list{3, 0}));
    EXPECT_EQ(boundary_IDs<elfes::faceQ4>(12, q4), (list{1, 2}));
    auto py = local_row<elfes::pyramid5>(5);
    EXPECT_EQ(boundary_IDs<elfes::pyramid5>(10, py), (list{3, 0, 4}));
    EXPECT_EQ(boundary_IDs<elfes::pyramid5>(14, py), (list{0, 1, 2, 3}));
    auto tet = local_row<elfes::tetra4>(4);
    EXPECT_EQ(boundary_IDs<elfes::tetra4>(12, tet), (list{0, 1, 3}));
    // A tetrahedron tests node by node: an absent node is on all four faces.
    EXPECT_EQ(boundary_IDs<elfes::tetra4>(99, tet), (list{0, 1, 2, 3}));
    auto mixed_tet = local_row<elfes::solid_mix>(4);
    EXPECT_EQ(boundary_IDs<elfes::solid_mix>(99, mixed_tet), (list{0, 1, 2, 3}));

    // The wedge table follows the closed rule a = p/3, b = p - ((p+1)/3)*3 + 3, c = p - ((p+2)/3)*3 + 4.
    auto wedge = local_row<elfes::wedge6>(6);
    for (unsigned p = 0; p < 6; ++p)
        EXPECT_EQ(boundary_IDs<elfes::wedge6>(10 + p, wedge),
                  (list{p / 3, p - ((p + 1) / 3) * 3 + 3, p - ((p + 2) / 3) * 3 + 4}));
    list hexa[8] = {{0, 2, 4}, {1, 2, 4}, {1, 3, 4}, {0, 3, 4}, {0, 2, 5}, {1, 2, 5}, {1, 3, 5}, {0, 3, 5}};
    auto hx = local_row<elfes::hexa8>(8);
    for (unsigned p = 0; p < 8; ++p) {
        EXPECT_EQ(boundary_IDs<elfes::hexa8>(10 + p, hx), hexa[p]);
        unsigned a, b, c;
        elfes::hexa8::get_connected_face_IDs(p, a, b, c);
        EXPECT_EQ((list{a, b, c}), hexa[p]);
    }
    // First match in row order on a column holding a node twice.
    std::vector<unsigned> twice{5, 6, 5};
    EXPECT_EQ(boundary_IDs<elfes::faceT3>(5, twice), (list{1, 2}));
}

TEST(ElementTables, HexaConnectedNodesTurnPositively)
{
    using list = std::vector<unsigned>;
    list expected[8] = {{1, 3, 4}, {2, 0, 5}, {3, 1, 6}, {0, 2, 7}, {7, 5, 0}, {4, 6, 1}, {5, 7, 2}, {6, 4, 3}};
    mesh cube = box(1, 1, 1, 8, add_hexa);
    auto const& c = cube.elements[0];
    auto row = local_row<elfes::hexa8>(8);
    std::set<std::pair<unsigned, unsigned>> undirected;
    for (auto const& e : edges<elfes::hexa8>(row)) undirected.insert(std::minmax(e.first, e.second));
    for (unsigned i = 0; i < 8; ++i) {
        unsigned a, b, d;
        elfes::hexa8::get_connected_local_node_IDs(i, a, b, d);
        EXPECT_EQ((list{a, b, d}), expected[i]);
        for (unsigned n : {a, b, d}) EXPECT_EQ(undirected.count(std::minmax(i, n)), 1u) << i << "-" << n;
        auto P = [&](unsigned k) { return cube.pos[c[k]]; };
        EXPECT_GT(det(P(a) - P(i), P(b) - P(i), P(d) - P(i)), 0.0) << "corner " << i;
    }
}

// On a positive reference solid every boundary is planar, its right-hand normal points into the
// element, and all nodes off the boundary lie strictly on that side.
template <class Elfe>
void expect_inward_normals(mesh const& m)
{
    auto const& c = m.elements[0];
    ASSERT_GT(solid_sign(m, c), 0.0);
    for (unsigned b = 0; b < Elfe::nbr_boundaries(c.data()); ++b) {
        unsigned out[4] = {NONE, NONE, NONE, NONE};
        unsigned* end = Elfe::copy_boundary_nodes(b, c.data(), out);
        std::vector<point> p;
        for (unsigned* q = out; q != end; ++q) p.push_back(m.pos[*q]);
        point n = boundary_normal(p);
        point o = centroid(p);
        for (unsigned v : c) {
            if (v == NONE) continue;
            double side = dot(n, m.pos[v] - o);
            if (std::find(out, end, v) != end)
                EXPECT_NEAR(side, 0.0, 1e-12) << "boundary " << b << " not planar";
            else
                EXPECT_GT(side, 1e-9) << "boundary " << b << " node " << v;
        }
    }
}

TEST(ElementTables, ReferenceSolidsHaveInwardNormals)
{
    mesh tet{{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}}, {{0, 1, 2, 3}}, 4};
    mesh pyr{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}}, {{0, 1, 2, 3, 4}}, 5};
    mesh wed{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}}, {{0, 1, 2, 3, 4, 5}}, 6};
    mesh hex = box(1, 1, 1, 8, add_hexa);
    expect_inward_normals<elfes::tetra4>(tet);
    expect_inward_normals<elfes::pyramid5>(pyr);
    expect_inward_normals<elfes::wedge6>(wed);
    expect_inward_normals<elfes::hexa8>(hex);
    for (mesh* m : {&tet, &pyr, &wed, &hex}) {
        m->elements[0].resize(8, NONE);
        expect_inward_normals<elfes::solid_mix>(*m);
    }
}

TEST(ElementTables, FacesKeepInteriorOnTheLeftOfEachSide)
{
    mesh t = triangle_grid(1, 1), q = quad_grid(1, 1);
    for (mesh const* m : {&t, &q}) {
        auto const& c = m->elements[0];
        for (unsigned b = 0; b < c.size(); ++b) {
            unsigned out[2] = {0, 0};
            if (c.size() == 3)
                elfes::faceT3::copy_boundary_nodes(b, c.data(), out);
            else
                elfes::faceQ4::copy_boundary_nodes(b, c.data(), out);
            std::vector<point> p{m->pos[out[0]], m->pos[out[1]]};
            EXPECT_GT(dot(boundary_normal(p), m->centroid(0) - centroid(p)), 0.0) << "side " << b;
        }
    }
    // On triangles and tetrahedra boundary b is the one opposite node b.
    auto t3 = local_row<elfes::faceT3>(3);
    auto tet = local_row<elfes::tetra4>(4);
    for (unsigned b = 0; b < 3; ++b) {
        auto side = boundary<elfes::faceT3>(b, t3);
        EXPECT_EQ(std::count(side.begin(), side.end(), b), 0);
    }
    for (unsigned b = 0; b < 4; ++b) {
        auto f = boundary<elfes::tetra4>(b, tet);
        EXPECT_EQ(std::count(f.begin(), f.end(), b), 0);
    }
}

TEST(ElementTables, SolidMixKindTests)
{
    std::vector<unsigned> tet{0, 1, 2, 3, NONE, NONE, NONE, NONE};
    std::vector<unsigned> pyr{0, 1, 2, 3, 4, NONE, NONE, NONE};
    std::vector<unsigned> wed{0, 1, 2, 3, 4, 5, NONE, NONE};
    std::vector<unsigned> hex{0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(elfes::solid_mix::kind(tet.data()), elfes::solid_mix::TETRA);
    EXPECT_EQ(elfes::solid_mix::kind(pyr.data()), elfes::solid_mix::PYRAMID);
    EXPECT_EQ(elfes::solid_mix::kind(wed.data()), elfes::solid_mix::WEDGE);
    EXPECT_EQ(elfes::solid_mix::kind(hex.data()), elfes::solid_mix::HEXA);
    EXPECT_EQ(elfes::solid_mix::nbr_boundaries(tet.data()), 4u);
    EXPECT_EQ(elfes::solid_mix::nbr_boundaries(pyr.data()), 5u);
    EXPECT_EQ(elfes::solid_mix::nbr_boundaries(wed.data()), 5u);
    EXPECT_EQ(elfes::solid_mix::nbr_boundaries(hex.data()), 6u);
    EXPECT_EQ(elfes::solid_mix::nbr_edges(tet.data()), 6u);
    EXPECT_EQ(elfes::solid_mix::nbr_edges(pyr.data()), 8u);
    EXPECT_EQ(elfes::solid_mix::nbr_edges(wed.data()), 9u);
    EXPECT_EQ(elfes::solid_mix::nbr_edges(hex.data()), 12u);
    // Rows that are no valid element: the two tests disagree and both stay as they are.
    std::vector<unsigned> three{0, 1, 2, NONE, NONE, NONE, NONE, NONE};
    EXPECT_EQ(elfes::solid_mix::kind(three.data()), elfes::solid_mix::HEXA);
    EXPECT_EQ(elfes::solid_mix::nbr_boundaries(three.data()), 4u);
    std::vector<unsigned> gap{0, 1, 2, 3, 4, NONE, 6, 7};
    EXPECT_EQ(elfes::solid_mix::kind(gap.data()), elfes::solid_mix::PYRAMID);
    EXPECT_EQ(elfes::solid_mix::nbr_boundaries(gap.data()), 5u);
    std::vector<unsigned> hole{0, 1, 2, 3, 4, 5, NONE, 7};
    EXPECT_EQ(elfes::solid_mix::kind(hole.data()), elfes::solid_mix::WEDGE);
    std::vector<unsigned> late{0, 1, 2, 3, 4, 5, 6, NONE};
    EXPECT_EQ(elfes::solid_mix::kind(late.data()), elfes::solid_mix::HEXA);  // row 7 is never read
    EXPECT_EQ(elfes::solid_mix::nbr_boundaries(late.data()), 6u);
}

TEST(ElementTables, TriangleOrientation)
{
    elfes::faceT3::orientation orient;
    unsigned a[3] = {4, 9, 6};
    unsigned rotations[3][3] = {{4, 9, 6}, {9, 6, 4}, {6, 4, 9}};
    unsigned reversed[3][3] = {{4, 6, 9}, {6, 9, 4}, {9, 4, 6}};
    for (auto const& r : rotations) EXPECT_EQ(orient(a, r), 1);
    for (auto const& r : reversed) EXPECT_EQ(orient(a, r), -1);
    unsigned two_shared[3] = {4, 9, 7};
    unsigned other_smallest[3] = {3, 9, 6};
    EXPECT_EQ(orient(a, two_shared), 0);
    EXPECT_EQ(orient(a, other_smallest), 0);
    // Any indexable tuples will do.
    EXPECT_EQ(orient(vector_fixed<unsigned, 3>{{6, 4, 9}}, std::vector<unsigned>{9, 4, 6}), -1);
}

TEST(ElementTables, QuadrangleOrientation)
{
    elfes::faceQ4::orientation orient;
    unsigned a[4] = {5, 6, 7, 8};
    unsigned rotated[4] = {6, 7, 8, 5}, reversed[4] = {8, 7, 6, 5}, crossed[4] = {5, 7, 6, 8};
    unsigned reversed_rotated[4] = {6, 5, 8, 7}, other[4] = {5, 6, 7, 9};
    EXPECT_EQ(orient(a, rotated), 1);
    EXPECT_EQ(orient(a, reversed), -1);
    EXPECT_EQ(orient(a, reversed_rotated), -1);
    EXPECT_EQ(orient(a, crossed), 0);
    EXPECT_EQ(orient(a, other), 0);
}

TEST(ElementTables, BoundaryComparisonsByDescriptor)
{
    unsigned p[1] = {3}, q[1] = {3}, r[1] = {4};
    EXPECT_EQ(elfes::edge2::compare_boundaries(p, q), 1);
    EXPECT_EQ(elfes::edge2::compare_boundaries(p, r), 0);
    unsigned s1[2] = {1, 2}, s2[2] = {2, 1}, s3[2] = {1, 3};
    EXPECT_EQ(elfes::faceT3::compare_boundaries(s1, s1), 1);
    EXPECT_EQ(elfes::faceQ4::compare_boundaries(s1, s2), -1);
    EXPECT_EQ(elfes::face_mix::compare_boundaries(s1, s3), 0);
    // A triangle never equals a quadrangle that holds its three nodes.
    unsigned tri[4] = {1, 2, 3, NONE}, quad[4] = {1, 2, 3, 4}, tri_rev[4] = {3, 2, 1, NONE};
    EXPECT_EQ(elfes::pyramid5::compare_boundaries(tri, quad), 0);
    EXPECT_EQ(elfes::wedge6::compare_boundaries(quad, tri), 0);
    EXPECT_EQ(elfes::solid_mix::compare_boundaries(tri, tri_rev), -1);
    EXPECT_EQ(elfes::solid_mix::compare_boundaries(quad, quad), 1);
    EXPECT_EQ(elfes::hexa8::compare_boundaries(quad, quad), 1);
    EXPECT_EQ(elfes::tetra4::compare_boundaries(tri, tri_rev), -1);
}

TEST(ElementTables, BoundaryRowsByType)
{
    using tessarium::nbr_nodes_of_boundaries;
    unsigned expected[23] = {0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 3, 6, 4, 8, 9, 4, 8, 9, 4, 8, 9};
    for (int t = 0; t < 23; ++t) EXPECT_EQ(nbr_nodes_of_boundaries(element_type(t)), expected[t]) << t;
    EXPECT_EQ(nbr_nodes_of_boundaries(ET_TETRA4), elfes::tetra4::boundary_width);
    EXPECT_EQ(nbr_nodes_of_boundaries(ET_SOLID_MIX), elfes::solid_mix::boundary_width);
}
