#include "connectivity/elfes.h"
#include "connectivity/nbr_nodes_of_boundaries.h"
#include "connectivity/test_meshes.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

using namespace qv7;
using namespace test_meshes;
using lists = std::vector<std::vector<unsigned>>;

namespace {

// A column of `n` real nodes numbered 10 + local number.
template <class Elfe>
column local_row(unsigned n)
{
    column row(Elfe::nbr_rows, NONE);
    for (unsigned k = 0; k < n; ++k) row[k] = 10 + k;
    return row;
}

// Boundaries, or edges, of a column as lists of local numbers, read with the descriptor.
template <class Elfe, bool Edges = false>
lists local_lists(column const& row)
{
    lists all;
    unsigned count = Edges ? Elfe::nbr_edges(row.data()) : Elfe::nbr_boundaries(row.data());
    for (unsigned b = 0; b < count; ++b) {
        unsigned out[4];
        unsigned* end =
            Edges ? Elfe::copy_edge_nodes(b, row.data(), out) : Elfe::copy_boundary_nodes(b, row.data(), out);
        all.emplace_back(out, end);
        for (unsigned& v : all.back()) v -= 10;
    }
    return all;
}

template <class Elfe>
column boundary_IDs(unsigned node, column const& row)
{
    unsigned out[6];
    return column(out, Elfe::copy_boundary_IDs(node, row.data(), out));
}

// The faces of a solid close around it: each directed side comes once and reversed once, the
// sides are the edge table, and V - E + F = 2.
template <class Elfe>
void expect_closed(unsigned n)
{
    lists faces = local_lists<Elfe>(local_row<Elfe>(n));
    std::map<std::pair<unsigned, unsigned>, int> sides;
    for (auto const& f : faces)
        for (std::size_t k = 0; k < f.size(); ++k) ++sides[{f[k], f[(k + 1) % f.size()]}];
    std::set<std::pair<unsigned, unsigned>> undirected, edges;
    for (auto const& [s, count] : sides) {
        EXPECT_EQ(count + sides.count({s.second, s.first}), 2u) << s.first << "-" << s.second;
        undirected.insert(std::minmax(s.first, s.second));
    }
    for (auto const& e : local_lists<Elfe, true>(local_row<Elfe>(n))) edges.insert(std::minmax(e[0], e[1]));
    EXPECT_EQ(undirected, edges);
    EXPECT_EQ(n - edges.size() + faces.size(), 2u);
}

}  // namespace

TEST(ElementTables, NodeOrderOfBoundaries)
{
    EXPECT_EQ(local_lists<elfes::edge2>(local_row<elfes::edge2>(2)), (lists{{1}, {0}}));
    EXPECT_EQ(local_lists<elfes::face_mix>(local_row<elfes::face_mix>(3)), (lists{{1, 2}, {2, 0}, {0, 1}}));
    EXPECT_EQ(local_lists<elfes::face_mix>(local_row<elfes::face_mix>(4)), (lists{{0, 1}, {1, 2}, {2, 3}, {3, 0}}));
    lists tetra{{1, 2, 3}, {2, 0, 3}, {1, 3, 0}, {2, 1, 0}};
    lists pyramid{{0, 4, 1}, {1, 4, 2}, {2, 4, 3}, {3, 4, 0}, {0, 1, 2, 3}};
    lists wedge{{0, 1, 2}, {3, 5, 4}, {2, 1, 4, 5}, {0, 2, 5, 3}, {1, 0, 3, 4}};
    lists hexa{{0, 3, 7, 4}, {1, 5, 6, 2}, {0, 4, 5, 1}, {3, 2, 6, 7}, {0, 1, 2, 3}, {4, 7, 6, 5}};
    EXPECT_EQ(local_lists<elfes::tetra4>(local_row<elfes::tetra4>(4)), tetra);
    EXPECT_EQ(local_lists<elfes::pyramid5>(local_row<elfes::pyramid5>(5)), pyramid);
    EXPECT_EQ(local_lists<elfes::wedge6>(local_row<elfes::wedge6>(6)), wedge);
    EXPECT_EQ(local_lists<elfes::hexa8>(local_row<elfes::hexa8>(8)), hexa);
    EXPECT_EQ(local_lists<elfes::solid_mix>(local_row<elfes::solid_mix>(5)), pyramid);
    // A triangle leaves the fourth slot alone; a boundary or edge beyond the kind writes nothing.
    column row = local_row<elfes::solid_mix>(6);
    unsigned out[4] = {7, 7, 7, 7};
    EXPECT_EQ(elfes::solid_mix::copy_boundary_nodes(1, row.data(), out), out + 3);
    EXPECT_EQ(out[3], 7u);
    EXPECT_EQ(elfes::solid_mix::copy_boundary_nodes(5, row.data(), out), out);
    EXPECT_EQ(elfes::solid_mix::copy_edge_nodes(9, row.data(), out), out);
    EXPECT_EQ(elfes::tetra4::copy_boundary_nodes(4, row.data(), out), out);
}

TEST(ElementTables, SolidsAreClosedByTheirFaces)
{
    expect_closed<elfes::tetra4>(4);
    expect_closed<elfes::pyramid5>(5);
    expect_closed<elfes::wedge6>(6);
    expect_closed<elfes::hexa8>(8);
    for (unsigned n : {4u, 5u, 6u, 8u}) expect_closed<elfes::solid_mix>(n);
}

TEST(ElementTables, BoundariesAtANodeInTableOrder)
{
    EXPECT_EQ(boundary_IDs<elfes::faceT3>(10, local_row<elfes::faceT3>(3)), (column{1, 2}));
    EXPECT_EQ(boundary_IDs<elfes::faceQ4>(10, local_row<elfes::faceQ4>(4)), (column{3, 0}));
    EXPECT_EQ(boundary_IDs<elfes::pyramid5>(10, local_row<elfes::pyramid5>(5)), (column{3, 0, 4}));
    EXPECT_EQ(boundary_IDs<elfes::pyramid5>(14, local_row<elfes::pyramid5>(5)), (column{0, 1, 2, 3}));
    // Tetrahedra test node by node: a node that the element lacks is on all four faces.
    EXPECT_EQ(boundary_IDs<elfes::tetra4>(99, local_row<elfes::tetra4>(4)), (column{0, 1, 2, 3}));
    EXPECT_EQ(boundary_IDs<elfes::solid_mix>(99, local_row<elfes::solid_mix>(4)), (column{0, 1, 2, 3}));
    EXPECT_EQ(boundary_IDs<elfes::faceT3>(5, column{5, 6, 5}), (column{1, 2}));  // first match
    for (unsigned p = 0; p < 6; ++p)
        EXPECT_EQ(boundary_IDs<elfes::wedge6>(10 + p, local_row<elfes::wedge6>(6)),
                  (column{p / 3, p - ((p + 1) / 3) * 3 + 3, p - ((p + 2) / 3) * 3 + 4}));
    lists hexa{{0, 2, 4}, {1, 2, 4}, {1, 3, 4}, {0, 3, 4}, {0, 2, 5}, {1, 2, 5}, {1, 3, 5}, {0, 3, 5}};
    lists joined{{1, 3, 4}, {2, 0, 5}, {3, 1, 6}, {0, 2, 7}, {7, 5, 0}, {4, 6, 1}, {5, 7, 2}, {6, 4, 3}};
    for (unsigned p = 0; p < 8; ++p) {
        EXPECT_EQ(boundary_IDs<elfes::hexa8>(10 + p, local_row<elfes::hexa8>(8)), hexa[p]);
        unsigned a, b, c;
        elfes::hexa8::get_connected_local_node_IDs(p, a, b, c);
        EXPECT_EQ((column{a, b, c}), joined[p]);
    }
}

TEST(ElementTables, Orientation)
{
    elfes::faceT3::orientation t3;
    elfes::faceQ4::orientation q4;
    unsigned a[3] = {4, 9, 6}, rot[3] = {6, 4, 9}, odd[3] = {9, 4, 6}, two_shared[3] = {4, 9, 7};
    EXPECT_EQ((std::vector<int>{t3(a, rot), t3(a, odd), t3(a, two_shared)}), (std::vector<int>{1, -1, 0}));
    unsigned q[4] = {5, 6, 7, 8}, qrot[4] = {6, 7, 8, 5}, qrev[4] = {8, 7, 6, 5}, diagonal[4] = {5, 7, 6, 8};
    EXPECT_EQ((std::vector<int>{q4(q, qrot), q4(q, qrev), q4(q, diagonal)}), (std::vector<int>{1, -1, 0}));
    unsigned tri[4] = {5, 6, 7, NONE};  // never equal to a quadrangle holding its nodes
    EXPECT_EQ(elfes::solid_mix::compare_boundaries(q, tri) | elfes::wedge6::compare_boundaries(tri, q), 0);
}

TEST(ElementTables, SolidMixRowTests)
{
    auto kind = [](column c) { return elfes::solid_mix::kind(c.data()); };
    auto count = [](column c) { return elfes::solid_mix::nbr_boundaries(c.data()); };
    EXPECT_EQ(kind({0, 1, 2, 3, NONE, NONE, NONE, NONE}), elfes::solid_mix::TETRA);
    EXPECT_EQ(kind({0, 1, 2, 3, 4, NONE, NONE, NONE}), elfes::solid_mix::PYRAMID);
    EXPECT_EQ(kind({0, 1, 2, 3, 4, 5, NONE, NONE}), elfes::solid_mix::WEDGE);
    EXPECT_EQ(kind({0, 1, 2, 3, 4, 5, 6, NONE}), elfes::solid_mix::HEXA);  // row 7 is never read
    // On rows that are no valid element the two tests disagree, as they should.
    EXPECT_EQ(kind({0, 1, 2, NONE, NONE, NONE, NONE, NONE}), elfes::solid_mix::HEXA);
    EXPECT_EQ(count({0, 1, 2, NONE, NONE, NONE, NONE, NONE}), 4u);
    EXPECT_EQ(kind({0, 1, 2, 3, 4, 5, NONE, 7}), elfes::solid_mix::WEDGE);
    EXPECT_EQ(count({0, 1, 2, 3, 4, NONE, 6, 7}), 5u);
    unsigned widths[23] = {0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 3, 6, 4, 8, 9, 4, 8, 9, 4, 8, 9};
    for (int t = 0; t < 23; ++t) EXPECT_EQ(tessarium::nbr_nodes_of_boundaries(element_type(t)), widths[t]);
}
