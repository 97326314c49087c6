#include "connectivity/edge_pairs.h"
#include "connectivity/test_meshes.h"
#include "core/radix_sort.h"
#include "core/set_subtract.h"
#include "support/failing_alloc.h"
#include "tessarium/edges.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>

using namespace qv7;
using namespace qv7::tessarium;
using namespace test_meshes;

namespace {

// Edges of a grid of a x b x c unit cubes: along x, y and z.
std::size_t grid_edges(std::size_t a, std::size_t b, std::size_t c)
{
    return a * (b + 1) * (c + 1) + (a + 1) * b * (c + 1) + (a + 1) * (b + 1) * c;
}
std::size_t xy_faces(std::size_t a, std::size_t b, std::size_t c) { return a * b * (c + 1); }
std::size_t all_faces(std::size_t a, std::size_t b, std::size_t c)
{
    return xy_faces(a, b, c) + a * (b + 1) * c + (a + 1) * b * c;
}

// Every column is an edge of one of the given lengths, with row 0 below row 1, and the columns
// strictly ascending.
void expect_sorted_edges(dense2D<unsigned> const& E, mesh const& m, std::vector<double> const& lengths)
{
    if (E.empty()) return;
    ASSERT_EQ(E.rows(), 2u);
    for (std::size_t j = 0; j < E.cols(); ++j) {
        ASSERT_LT(E(0, j), E(1, j));
        if (j) {
            ASSERT_TRUE(std::make_pair(E(0, j - 1), E(1, j - 1)) < std::make_pair(E(0, j), E(1, j)));
        }
        point d = sub(m.pos[E(0, j)], m.pos[E(1, j)]);
        double L = std::sqrt(dot(d, d));
        EXPECT_TRUE(std::any_of(lengths.begin(), lengths.end(), [L](double l) { return std::abs(L - l) < 1e-12; }))
            << "edge " << E(0, j) << " " << E(1, j) << " of length " << L;
    }
}

}  // namespace

TEST(CopyEdges, StructuredMeshesOfEveryKind)
{
    unsigned const a = 3, b = 2, c = 4;
    double const r2 = std::sqrt(2.0), r3 = std::sqrt(3.0);
    struct kind {
        split s;
        element_type type;
        unsigned rows;
        std::size_t count;
        std::vector<double> lengths;
    };
    std::size_t const cells = a * b * c, tet_edges = grid_edges(a, b, c) + all_faces(a, b, c) + cells;
    for (kind const& k : {kind{HEXA, ET_HEXA8, 8, grid_edges(a, b, c), {1}},
                          kind{HEXA, ET_SOLID_MIX, 8, grid_edges(a, b, c), {1}},
                          kind{HEXA, ET_HEXA27, 27, grid_edges(a, b, c), {1}},
                          kind{HEXA, ET_HEXA20, 20, 0, {}},
                          kind{TETRAS, ET_TETRA4, 4, tet_edges, {1, r2, r3}},
                          kind{TETRAS, ET_TETRA10, 10, tet_edges, {1, r2, r3}},
                          kind{WEDGES, ET_WEDGE6, 6, grid_edges(a, b, c) + xy_faces(a, b, c), {1, r2}},
                          kind{WEDGES, ET_SOLID_MIX, 6, grid_edges(a, b, c) + xy_faces(a, b, c), {1, r2}},
                          kind{WEDGES, ET_WEDGE15, 15, 0, {}},
                          kind{PYRAMIDS, ET_PYRAMID5, 5, grid_edges(a, b, c) + 8 * cells, {1, r3 / 2}},
                          kind{PYRAMIDS, ET_PYRAMID14, 14, grid_edges(a, b, c) + 8 * cells, {1, r3 / 2}}}) {
        mesh m = box(a, b, c, k.s, k.rows);
        dense2D<unsigned> E;
        ASSERT_EQ(copy_edges(m.connect(), k.type, E), 0) << k.type;
        EXPECT_EQ(E.cols(), k.count) << k.type;
        expect_sorted_edges(E, m, k.lengths);
    }
    // Quadrangles, some cut into triangles; all triangles; and a chain of segments.
    struct face_kind {
        unsigned cut_every, rows;
        element_type type;
        std::size_t cut;
    };
    for (face_kind k : {face_kind{2, 4, ET_FACE_MIX, (a * b + 1) / 2}, face_kind{1, 6, ET_FACE_T6, a * b},
                        face_kind{0, 9, ET_FACE_Q9, 0}}) {
        mesh m = grid(a, b, k.cut_every, k.rows);
        dense2D<unsigned> E;
        ASSERT_EQ(copy_edges(m.connect(), k.type, E), 0);
        EXPECT_EQ(E.cols(), grid_edges(a, b, 0) + k.cut) << k.type;
        expect_sorted_edges(E, m, {1, r2});
    }
    mesh chain{{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {{2, 1, 9}, {0, 1, 9}, {1, 2, 9}}, 3};
    dense2D<unsigned> E;
    ASSERT_EQ(copy_edges(chain.connect(), ET_EDGE3, E), 0);
    EXPECT_EQ(E.cols(), 2u);
    expect_sorted_edges(E, chain, {1});
}

TEST(CopyEdges, MixedSolidsAndRangesGiveTheUnion)
{
    // The four splits of one grid share its edges; the pyramids bring the cell centres.
    unsigned const a = 2, b = 3, c = 2;
    std::size_t const cells = a * b * c;
    std::size_t const expected = grid_edges(a, b, c) + all_faces(a, b, c) + cells + 8 * cells;
    mesh all = box(a, b, c, PYRAMIDS, 8);
    std::vector<dense2D<unsigned>> arrays{all.connect()};
    dense1D<int, 8> types(4);
    types[0] = ET_SOLID_MIX;
    split splits[3] = {HEXA, TETRAS, WEDGES};
    element_type pure[3] = {ET_HEXA8, ET_TETRA4, ET_WEDGE6};
    unsigned rows[3] = {8, 4, 6};
    for (int s = 0; s < 3; ++s) {
        mesh m = box(a, b, c, splits[s], rows[s]);
        arrays.push_back(m.connect());
        types[s + 1] = pure[s];
        for (column col : m.elements) {
            col.resize(8, NONE);
            all.elements.push_back(col);
        }
    }
    dense2D<unsigned> mixed, ranged;
    ASSERT_EQ(copy_edges(all.connect(), ET_SOLID_MIX, mixed), 0);
    EXPECT_EQ(mixed.cols(), expected);
    ASSERT_EQ(copy_edges(arrays.data(), arrays.data() + 4, types, ranged), 0);
    ASSERT_EQ(ranged.cols(), expected);
    EXPECT_TRUE(std::equal(mixed.col(0), mixed.col(0) + 2 * expected, ranged.col(0)));
    expect_sorted_edges(ranged, all, {1, std::sqrt(2.0), std::sqrt(3.0), std::sqrt(3.0) / 2});
}

TEST(CopyEdges, AppendsAndRefuses)
{
    mesh two = grid(1, 1, 1, 3);  // two triangles sharing the side 0-3
    dense2D<unsigned> C = two.connect(), E;
    E.resize(2, 1, 7u);
    ASSERT_EQ(copy_edges(C, ET_FACE_T3, E), 0);
    std::vector<unsigned> expected{7, 7, 0, 1, 0, 2, 0, 3, 1, 3, 2, 3};
    ASSERT_EQ(E.cols(), 6u);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), E.col(0)));

    dense2D<unsigned> three_rows, none;
    three_rows.resize(3, 1, 0u);
    dense1D<int, 8> types(1, ET_FACE_T3), bad_type(1, 99);
    EXPECT_EQ(copy_edges(none, ET_TETRA4, three_rows), 0);
    EXPECT_EQ(copy_edges(C, ET_TETRA4, E), -1);
    EXPECT_EQ(copy_edges(C, ET_FACE_T3, three_rows), -3);
    EXPECT_EQ(copy_edges(&C + 1, &C, types, E), -2);
    EXPECT_EQ(copy_edges(&C, &C, types, E), -3);
    EXPECT_EQ(copy_edges(&C, &C + 1, types, three_rows), -4);
    EXPECT_EQ(copy_edges(&C, &C + 1, bad_type, E), -1);
    EXPECT_EQ(E.cols(), 6u);
    {
        test_alloc::failing_scope fail(1);  // the list of pairs, not the matrix
        dense2D<unsigned> F;
        EXPECT_EQ(copy_edges(C, ET_FACE_T3, F), -199);
    }
}

TEST(EdgeLists, RemovalAndSubtraction)
{
    mesh m = box(2, 2, 2, TETRAS, 4);
    dense1D<edge_pair, 8> pairs;
    ASSERT_EQ(__get_edges(m.connect(), ET_TETRA4, pairs), 0);
    std::size_t n = pairs.size();
    ASSERT_EQ(n, grid_edges(2, 2, 2) + all_faces(2, 2, 2) + 8);
    // Two listed edges, one in reverse order and given twice, and one absent pair.
    edge_pair e0 = pairs[0], e5 = pairs[5];
    mesh excluded{{}, {{__second(e5), __first(e5)}, {__first(e0), __second(e0)}, {__second(e5), __first(e5)},
                       {0, 26}},
                  2};
    __remove_edges(excluded.connect(), pairs);
    ASSERT_EQ(pairs.size(), n - 2);
    EXPECT_FALSE(std::binary_search(pairs.begin(), pairs.end(), e0));
    EXPECT_FALSE(std::binary_search(pairs.begin(), pairs.end(), e5));
    EXPECT_TRUE(std::is_sorted(pairs.begin(), pairs.end()));

    struct row {
        std::vector<int> first, second, left;
    };
    for (row const& r : {row{{1, 2, 2, 3, 5}, {2, 4}, {1, 2, 3, 5}}, row{{1, 2, 2, 3}, {2, 2, 2}, {1, 3}},
                         row{{1, 3, 5}, {0, 2, 4, 6}, {1, 3, 5}}, row{{1, 3}, {}, {1, 3}}, row{{}, {1}, {}}}) {
        std::vector<int> v = r.first;
        v.erase(set_subtract(v.begin(), v.end(), r.second.begin(), r.second.end()), v.end());
        EXPECT_EQ(v, r.left);
    }
}

TEST(EdgeLists, RadixSortMatchesAComparisonSort)
{
    std::mt19937_64 rng(1);
    for (unsigned bits : {1u, 7u, 23u, 40u, 64u}) {
        std::vector<std::uint64_t> keys(20000), expected;
        for (auto& k : keys) k = bits == 64 ? rng() : rng() & ((std::uint64_t(1) << bits) - 1);
        expected = keys;
        std::sort(expected.begin(), expected.end());
        ASSERT_TRUE(radix_sort(keys.data(), keys.size(), bits, [](std::uint64_t k) { return k; }));
        EXPECT_EQ(keys, expected) << bits;
    }
}
