#include "connectivity/edge_pairs.h"
#include "connectivity/test_meshes.h"
#include "core/radix_sort.h"
#include "core/set_subtract.h"
#include "support/failing_alloc.h"
#include "tessarium/edges.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace qv7;
using namespace qv7::tessarium;
using namespace test_meshes;

namespace {

// Edges of a grid of a x b x c unit cells along x, y and z; its faces; and the faces normal to z.
std::size_t grid_edges(std::size_t a, std::size_t b, std::size_t c)
{
    return a * (b + 1) * (c + 1) + (a + 1) * b * (c + 1) + (a + 1) * (b + 1) * c;
}
std::size_t faces(std::size_t a, std::size_t b, std::size_t c)
{
    return a * b * (c + 1) + a * (b + 1) * c + (a + 1) * b * c;
}

// Strictly ascending columns (first, second), first < second, each of a length in `lengths`.
void expect_edges(dense2D<unsigned> const& E, mesh const& m, std::vector<double> const& lengths)
{
    for (std::size_t j = 0; j < E.cols(); ++j) {
        ASSERT_LT(E(0, j), E(1, j));
        ASSERT_TRUE(j == 0 || E(0, j - 1) < E(0, j) || (E(0, j - 1) == E(0, j) && E(1, j - 1) < E(1, j)));
        point d = sub(m.pos[E(0, j)], m.pos[E(1, j)]);
        double L = std::sqrt(dot(d, d));
        EXPECT_TRUE(std::any_of(lengths.begin(), lengths.end(), [L](double l) { return std::abs(L - l) < 1e-12; }))
            << L;
    }
}

}  // namespace

TEST(CopyEdges, StructuredMeshesOfEveryKind)
{
    unsigned const a = 3, b = 2, c = 4, cells = a * b * c;
    double const r2 = std::sqrt(2.0), r3 = std::sqrt(3.0);
    std::size_t const hexa = grid_edges(a, b, c), tets = hexa + faces(a, b, c) + cells;
    std::size_t const wedges = hexa + a * b * (c + 1), pyramids = hexa + 8 * cells;
    struct kind {
        split s;
        element_type type;
        unsigned rows;
        std::size_t count;
        std::vector<double> lengths;
    };
    for (kind const& k :
         {kind{HEXA, ET_HEXA8, 8, hexa, {1}}, kind{HEXA, ET_HEXA27, 27, hexa, {1}}, kind{HEXA, ET_HEXA20, 20, 0, {}},
          kind{TETRAS, ET_TETRA4, 4, tets, {1, r2, r3}}, kind{TETRAS, ET_TETRA10, 10, tets, {1, r2, r3}},
          kind{WEDGES, ET_WEDGE15, 15, 0, {}}, kind{WEDGES, ET_SOLID_MIX, 6, wedges, {1, r2}},
          kind{PYRAMIDS, ET_PYRAMID14, 14, pyramids, {1, r3 / 2}}}) {
        mesh m = box(a, b, c, k.s, k.rows);
        dense2D<unsigned> E;
        ASSERT_EQ(copy_edges(m.connect(), k.type, E), 0);
        EXPECT_EQ(E.cols(), k.count) << k.type;
        expect_edges(E, m, k.lengths);
    }
    // Quadrangles with every other one cut into triangles; all triangles; quadrangles of nine rows.
    struct face_kind {
        unsigned cut_every, rows;
        element_type type;
        std::size_t diagonals;
    };
    for (face_kind k : {face_kind{2, 4, ET_FACE_MIX, (a * b + 1) / 2}, face_kind{1, 6, ET_FACE_T6, a * b},
                        face_kind{0, 9, ET_FACE_Q9, 0}}) {
        mesh m = grid(a, b, k.cut_every, k.rows);
        dense2D<unsigned> E;
        ASSERT_EQ(copy_edges(m.connect(), k.type, E), 0);
        EXPECT_EQ(E.cols(), grid_edges(a, b, 0) + k.diagonals) << k.type;
        expect_edges(E, m, {1, r2});
    }
}

TEST(CopyEdges, MixedSolidsAndRangesGiveTheUnion)
{
    // The four splits of one grid: its edges, the face and cell diagonals, the pyramids' centres.
    unsigned const a = 2, b = 3, c = 2, cells = a * b * c;
    mesh all = box(a, b, c, PYRAMIDS, 8);
    std::vector<dense2D<unsigned>> arrays{all.connect()};
    dense1D<int, 8> types(4, ET_SOLID_MIX);
    split const splits[3] = {HEXA, TETRAS, WEDGES};
    for (int s = 0; s < 3; ++s) {
        mesh m = box(a, b, c, splits[s], 8);
        arrays.push_back(m.connect());
        all.elements.insert(all.elements.end(), m.elements.begin(), m.elements.end());
    }
    dense2D<unsigned> mixed, ranged;
    ASSERT_EQ(copy_edges(all.connect(), ET_SOLID_MIX, mixed), 0);
    ASSERT_EQ(copy_edges(arrays.data(), arrays.data() + 4, types, ranged), 0);
    ASSERT_EQ(mixed.cols(), grid_edges(a, b, c) + faces(a, b, c) + cells + 8 * cells);
    ASSERT_EQ(ranged.cols(), mixed.cols());
    EXPECT_TRUE(std::equal(mixed.col(0), mixed.col(0) + 2 * mixed.cols(), ranged.col(0)));
    expect_edges(ranged, all, {1, std::sqrt(2.0), std::sqrt(3.0), std::sqrt(3.0) / 2});
}

TEST(CopyEdges, AppendsAndRefuses)
{
    dense2D<unsigned> C = grid(1, 1, 1, 3).connect(), E, three_rows;  // two triangles sharing 0-3
    E.resize(2, 1, 7u);
    three_rows.resize(3, 1, 0u);
    ASSERT_EQ(copy_edges(C, ET_FACE_T3, E), 0);
    std::vector<unsigned> const expected{7, 7, 0, 1, 0, 2, 0, 3, 1, 3, 2, 3};
    ASSERT_EQ(E.cols(), 6u);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), E.col(0)));
    dense1D<int, 8> types(1, ET_FACE_T3), bad_type(1, 99);
    int const codes[] = {copy_edges(dense2D<unsigned>(), ET_TETRA4, three_rows),
                         copy_edges(C, ET_TETRA4, E),
                         copy_edges(C, ET_FACE_T3, three_rows),
                         copy_edges(&C + 1, &C, types, E),
                         copy_edges(&C, &C, types, E),
                         copy_edges(&C, &C + 1, types, three_rows),
                         copy_edges(&C, &C + 1, bad_type, E),
                         copy_edges(C, element_type(99), E)};
    EXPECT_EQ(std::vector<int>(codes, codes + 8), (std::vector<int>{0, -1, -3, -2, -3, -4, -1, -1}));
    // Without memory for the radix sort's copy (the second allocation) the list is sorted all the
    // same; without memory for the matrix, -199.
    dense2D<unsigned> big = box(8, 8, 8, TETRAS, 4).connect(), sorted, fallback, F;
    ASSERT_EQ(copy_edges(big, ET_TETRA4, sorted), 0);
    test_alloc::fail_at(1);
    ASSERT_EQ(copy_edges(big, ET_TETRA4, fallback), 0);
    test_alloc::reset();
    ASSERT_EQ(fallback.cols(), sorted.cols());
    EXPECT_TRUE(std::equal(sorted.col(0), sorted.col(0) + 2 * sorted.cols(), fallback.col(0)));
    test_alloc::failing_scope fail(1);  // the list of pairs, not the matrix
    EXPECT_EQ(copy_edges(C, ET_FACE_T3, F), -199);
}

TEST(EdgeLists, RemovalSubtractionAndSorting)
{
    mesh m = box(2, 2, 2, TETRAS, 4);
    dense1D<edge_pair, 8> pairs;
    ASSERT_EQ(__get_edges(m.connect(), ET_TETRA4, pairs), 0);
    std::size_t n = pairs.size();
    edge_pair e0 = pairs[0], e5 = pairs[5];  // removed in either order, twice; 0-26 is no edge
    column r0{__first(e0), __second(e0)}, r5{__second(e5), __first(e5)};
    __remove_edges(mesh{{}, {r5, r0, r5, {0, 26}}, 2}.connect(), pairs);
    ASSERT_EQ(pairs.size(), n - 2);
    EXPECT_FALSE(std::binary_search(pairs.begin(), pairs.end(), e0));
    EXPECT_FALSE(std::binary_search(pairs.begin(), pairs.end(), e5));

    using ints = std::vector<int>;
    using row = std::tuple<ints, ints, ints>;  // first range, second range, what is left
    for (auto const& [first, second, left] : {row{{1, 2, 2, 3, 5}, {2, 2, 2, 4}, {1, 3, 5}},
                                              row{{1, 3, 5}, {0, 2, 4, 6}, {1, 3, 5}}, row{{1, 3}, {}, {1, 3}}}) {
        ints v = first;
        v.erase(set_subtract(v.begin(), v.end(), second.begin(), second.end()), v.end());
        EXPECT_EQ(v, left);
    }

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
