#include "connectivity/test_meshes.h"
#include "support/failing_alloc.h"
#include "tessarium/array_ops.h"
#include "tessarium/connectivity.h"
#include "tessarium/transforms.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace qv7;
using namespace qv7::tessarium;
using namespace test_meshes;
using list = std::vector<unsigned>;

namespace {

list as_list(dense1D<unsigned, 8> const& v)
{
    return list(v.begin(), v.end());
}
list flat(dense2D<unsigned> const& M)
{
    return list(M.col(0), M.col(0) + M.rows() * M.cols());
}
dense2D<unsigned> neighbors_of(dense2D<unsigned> const& C, element_type type)
{
    dense2D<unsigned> N;
    EXPECT_EQ(get_neighbors(C, type, false, N), 0);
    return N;
}

// Three disjoint copies of a box of 24 tetrahedra, dealt out in turn: piece c holds elements 3 k + c.
dense2D<unsigned> three_interleaved_pieces()
{
    dense2D<unsigned> one = box(2, 2, 1, TETRAS, 4).connect(), pieces[3], dealt;
    dense2D<double> pos;
    pos.resize(3, 18, 0.0);
    for (auto& piece : pieces) EXPECT_EQ(copy_mesh(pos, piece, one), 0);
    for (unsigned e = 0; e < one.cols(); ++e)
        for (auto& piece : pieces) EXPECT_TRUE(matmat::push_back(piece, e, dealt));
    return dealt;
}

}  // namespace

TEST(Subdomains, PiecesInOrderAndReordered)
{
    dense2D<unsigned> C = three_interleaved_pieces(), N = neighbors_of(C, ET_TETRA4), R = C, RN = N;
    dense1D<unsigned, 8> indices, offsets;
    ASSERT_EQ(get_subdomains(N, indices, offsets), 0);
    EXPECT_EQ(as_list(offsets), (list{0, 24, 48, 72}));
    for (unsigned s = 0; s < 3; ++s) {
        EXPECT_EQ(indices[offsets[s]], s);
        for (unsigned i = offsets[s]; i < offsets[s + 1]; ++i) EXPECT_EQ(indices[i] % 3, s);
    }
    // Reordered: the columns in that order, the neighbours those found afresh.
    ASSERT_EQ(get_subdomains(R, RN, offsets), 0);
    EXPECT_EQ(as_list(offsets), (list{0, 24, 48, 72}));
    for (unsigned i = 0; i < R.cols(); ++i)
        EXPECT_EQ(list(R.col(i), R.col(i) + 4), list(C.col(indices[i]), C.col(indices[i]) + 4));
    EXPECT_EQ(flat(RN), flat(neighbors_of(R, ET_TETRA4)));
}

TEST(Subdomains, BreadthFirstAndSmallCases)
{
    dense1D<unsigned, 8> indices, offsets;
    // Quadrangles 0 1 2 below 3 4 5; sides bottom, right, top, left.
    ASSERT_EQ(get_subdomains(neighbors_of(grid(3, 2, 0, 4).connect(), ET_FACE_Q4), indices, offsets), 0);
    EXPECT_TRUE(as_list(indices) == (list{0, 1, 3, 2, 4, 5}) && as_list(offsets) == (list{0, 6}));
    dense2D<unsigned> two = mesh{{}, {{0, 1, 2}, {3, 4, 5}}, 3}.connect();
    ASSERT_EQ(get_subdomains(neighbors_of(two, ET_FACE_T3), indices, offsets), 0);
    EXPECT_TRUE(as_list(offsets) == (list{0, 1, 2}) && as_list(indices) == (list{0, 1}));
    ASSERT_EQ(get_subdomains(dense2D<unsigned>(), indices, offsets), 0);
    EXPECT_TRUE(as_list(offsets) == list{0} && indices.empty());
    dense2D<unsigned> far = mesh{{}, {{NONE, 7, 1}, {0, NONE, NONE}, {9, NONE, 5}}, 3}.connect();  // 7, 9, 5: none
    ASSERT_EQ(get_subdomains(far, indices, offsets), 0);
    EXPECT_TRUE(as_list(offsets) == (list{0, 2, 3}) && as_list(indices) == (list{0, 1, 2}));
    // Column counts that differ are refused before anything changes.
    dense2D<unsigned> N = far, C = two;
    EXPECT_EQ(get_subdomains(C, N, offsets), -2);
    EXPECT_TRUE(flat(C) == flat(two) && flat(N) == flat(far));
}

TEST(Subdomains, ReorderingUnderFailingMemory)
{
    dense2D<unsigned> C0 = three_interleaved_pieces(), N0 = neighbors_of(C0, ET_TETRA4);
    int kept = 0, cleared = 0;
    for (std::size_t k = 0; k < 12; ++k) {
        dense2D<unsigned> C, N;
        dense1D<unsigned, 8> offsets;
        ASSERT_TRUE(C.copy(C0) && N.copy(N0));
        test_alloc::fail_at(k);
        int code = get_subdomains(C, N, offsets);
        test_alloc::reset();
        if (code == 0) continue;
        ASSERT_EQ(code, -199);
        if (flat(C) == flat(C0) && flat(N) == flat(N0))
            ++kept;  // failed while finding the pieces
        else if (C.empty() && N.empty() && offsets.empty())
            ++cleared;  // failed while reordering
        else
            ADD_FAILURE() << "half-done arrays after failure " << k;
    }
    EXPECT_TRUE(kept > 0 && cleared > 0);
}

TEST(ColorsBoundaries, InterfacesOfColours)
{
    for (auto [s, type, rows] : {std::tuple{HEXA, ET_HEXA8, 8u},
                                 {TETRAS, ET_TETRA4, 4u},
                                 {WEDGES, ET_SOLID_MIX, 8u},
                                 {PYRAMIDS, ET_PYRAMID5, 5u}}) {
        mesh m = box(2, 3, 2, s, rows);
        dense2D<unsigned> C = m.connect(), N = neighbors_of(C, type), skin, one, halves, both;
        dense1D<unsigned, 8> grey(C.cols(), 3u), by_x(C.cols());
        for (unsigned e = 0; e < C.cols(); ++e) by_x[e] = mean(m.points(m.elements[e]))[0] > 1;
        ASSERT_EQ(get_mesh_boundaries(C, N, type, skin) | get_colors_boundaries(C, N, grey, type, true, one), 0);
        EXPECT_EQ(flat(one), flat(skin));
        // Cut at x = 1: the 3 x 2 squares of the plane (halved by the tetrahedra), once or twice.
        ASSERT_EQ(get_colors_boundaries(C, N, by_x, type, false, halves), 0);
        ASSERT_EQ(get_colors_boundaries(C, N, by_x, type, true, both), 0);
        std::size_t cut = s == TETRAS ? 12 : 6;
        EXPECT_TRUE(halves.cols() == skin.cols() + cut && both.cols() == skin.cols() + 2 * cut);
    }
}

TEST(ColorsBoundaries, CodesInStepOrderAndMemory)
{
    dense2D<unsigned> C = box(1, 1, 1, TETRAS, 4).connect(), N = neighbors_of(C, ET_TETRA4), B, B2, C10, N10;
    dense1D<unsigned, 8> colors(C.cols(), 0u), two(2, 0u);
    B2.resize(2, 1, 0u);
    C10.resize(10, 1, 0u);
    N10.resize(4, 1, NONE);
    EXPECT_EQ(get_colors_boundaries(dense2D<unsigned>(), N, colors, ET_TETRA4, false, B), 0);
    EXPECT_EQ(get_colors_boundaries(C, N, colors, ET_HEXA8, false, B2), -1);
    EXPECT_EQ(get_colors_boundaries(C, B2, two, ET_TETRA4, false, B2), -2);
    EXPECT_EQ(get_colors_boundaries(C, N.submatrix(0, 5, 4), two, ET_TETRA4, false, B2), -2);  // a column short
    EXPECT_EQ(get_colors_boundaries(C, N, two, ET_TETRA4, false, B2), -3);
    EXPECT_EQ(get_colors_boundaries(C, N, colors, ET_TETRA4, false, B2), -5);
    EXPECT_EQ(get_colors_boundaries(C10, N10, dense1D<unsigned, 8>(1, 0u), ET_TETRA10, false, B), -4);
    test_alloc::failing_scope guard;
    EXPECT_EQ(get_colors_boundaries(C, N, colors, ET_TETRA4, false, B), -199);
}
