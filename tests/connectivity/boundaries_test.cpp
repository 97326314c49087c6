#include "connectivity/test_meshes.h"
#include "support/failing_alloc.h"
#include "tessarium/connectivity.h"

#include <gtest/gtest.h>

#include <map>

using namespace qv7;
using namespace qv7::tessarium;
using namespace test_meshes;

namespace {

dense2D<unsigned> columns(unsigned rows, std::vector<std::vector<unsigned>> const& cols)
{
    return mesh{{}, cols, rows}.connect();
}

std::vector<std::vector<unsigned>> as_columns(dense2D<unsigned> const& M)
{
    std::vector<std::vector<unsigned>> out;
    for (std::size_t j = 0; j < M.cols(); ++j) out.emplace_back(M.col(j), M.col(j) + M.rows());
    return out;
}

std::vector<unsigned> as_list(dense1D<unsigned, 8> const& v) { return std::vector<unsigned>(v.begin(), v.end()); }

dense2D<unsigned> neighbors_of(dense2D<unsigned> const& C, element_type type)
{
    dense2D<unsigned> N;
    EXPECT_EQ(get_neighbors(C, type, false, N), 0);
    return N;
}

// The free boundaries of a box: a closed surface whose every directed side comes once with its
// reverse once, with normals pointing into the box.
void expect_closed_inward_skin(mesh const& m, dense2D<unsigned> const& B)
{
    std::map<std::pair<unsigned, unsigned>, int> sides;
    point centre{0, 0, 0};
    for (auto const& p : m.pos) centre = centre + p;
    centre = scaled(centre, 1.0 / m.pos.size());
    for (auto const& face : as_columns(B)) {
        std::vector<unsigned> nodes;
        for (unsigned v : face)
            if (v != NONE) nodes.push_back(v);
        std::vector<point> p;
        for (unsigned v : nodes) p.push_back(m.pos[v]);
        EXPECT_GT(dot(boundary_normal(p), centre - centroid(p)), 0.0);
        for (std::size_t k = 0; k < nodes.size(); ++k) ++sides[{nodes[k], nodes[(k + 1) % nodes.size()]}];
    }
    for (auto const& [side, count] : sides) {
        EXPECT_EQ(count, 1);
        EXPECT_EQ(sides.count({side.second, side.first}), 1u) << side.first << "-" << side.second;
    }
}

}  // namespace

TEST(MeshBoundaries, SingleHexahedron)
{
    dense2D<unsigned> C = columns(8, {{10, 11, 12, 13, 14, 15, 16, 17}}), B;
    dense2D<unsigned> N = neighbors_of(C, ET_HEXA8);
    EXPECT_EQ(as_columns(N), (std::vector<std::vector<unsigned>>{std::vector<unsigned>(6, NONE)}));
    std::vector<std::vector<unsigned>> faces{{10, 13, 17, 14}, {11, 15, 16, 12}, {10, 14, 15, 11},
                                             {13, 12, 16, 17}, {10, 11, 12, 13}, {14, 17, 16, 15}};
    ASSERT_EQ(get_mesh_boundaries(C, N, ET_HEXA8, B), 0);
    EXPECT_EQ(as_columns(B), faces);
    dense2D<unsigned> all;
    ASSERT_EQ(get_element_boundaries(C, ET_HEXA8, all), 0);
    EXPECT_EQ(as_columns(all), faces);
    dense1D<unsigned, 8> ids;
    unsigned stride = 99;
    ASSERT_EQ(get_mesh_bounding_elements(C, N, ET_HEXA8, ids, stride), 0);
    EXPECT_EQ(stride, 6u);
    EXPECT_EQ(as_list(ids), (std::vector<unsigned>{0, 1, 2, 3, 4, 5}));
}

TEST(MeshBoundaries, SkinsOfBoxes)
{
    struct box_case {
        mesh m;
        element_type type;
        std::size_t free;
    } cases[] = {{box(3, 2, 2, 8, add_hexa), ET_HEXA8, 2 * (6 + 4 + 6)},
                 {box(2, 2, 3, 4, add_tetras), ET_TETRA4, 4 * (4 + 6 + 6)},
                 {box(2, 3, 1, 6, add_wedges), ET_WEDGE6, 4 * 6 + 2 * (3 + 2)},
                 {box(2, 1, 2, 5, add_pyramids), ET_PYRAMID5, 2 * (2 + 2 + 4)}};
    for (auto const& c : cases) {
        dense2D<unsigned> C = c.m.connect(), N = neighbors_of(C, c.type), B;
        ASSERT_EQ(get_mesh_boundaries(C, N, c.type, B), 0);
        EXPECT_EQ(B.cols(), c.free) << c.type;
        expect_closed_inward_skin(c.m, B);
        // The IDs name the same boundaries, in the same order.
        dense1D<unsigned, 8> ids;
        unsigned stride = 0;
        ASSERT_EQ(get_mesh_bounding_elements(C, N, c.type, ids, stride), 0);
        ASSERT_EQ(ids.size(), B.cols());
        dense2D<unsigned> all;
        ASSERT_EQ(get_element_boundaries(C, c.type, all), 0);
        ASSERT_EQ(all.cols(), C.cols() * stride);
        for (std::size_t k = 0; k < ids.size(); ++k)
            EXPECT_TRUE(std::equal(B.col(k), B.col(k) + B.rows(), all.col(ids[k]))) << k;
    }
}

TEST(MeshBoundaries, MixedArraysSkipSpareRows)
{
    // A triangle and a quadrangle sharing the side (1, 2).
    dense2D<unsigned> F = columns(4, {{0, 1, 2, NONE}, {1, 3, 4, 2}}), B;
    dense2D<unsigned> N = neighbors_of(F, ET_FACE_MIX);
    ASSERT_EQ(get_mesh_boundaries(F, N, ET_FACE_MIX, B), 0);
    EXPECT_EQ(as_columns(B), (std::vector<std::vector<unsigned>>{{2, 0}, {0, 1}, {1, 3}, {3, 4}, {4, 2}}));
    dense1D<unsigned, 8> ids;
    unsigned stride = 0;
    ASSERT_EQ(get_mesh_bounding_elements(F, N, ET_FACE_MIX, ids, stride), 0);
    EXPECT_EQ(stride, 4u);
    EXPECT_EQ(as_list(ids), (std::vector<unsigned>{1, 2, 4, 5, 6}));
    dense2D<unsigned> all;
    ASSERT_EQ(get_element_boundaries(F, ET_FACE_MIX, all), 0);
    EXPECT_EQ(all.cols(), 7u);

    // A tetrahedron under a wedge's bottom: triangles carry NONE_ID in the fourth row.
    dense2D<unsigned> S = columns(8, {{0, 1, 2, 6, NONE, NONE, NONE, NONE}, {0, 1, 2, 3, 4, 5, NONE, NONE}}), SB;
    dense2D<unsigned> SN = neighbors_of(S, ET_SOLID_MIX);
    EXPECT_EQ(SN(3, 0), 1u);
    EXPECT_EQ(SN(0, 1), 0u);
    ASSERT_EQ(get_mesh_boundaries(S, SN, ET_SOLID_MIX, SB), 0);
    EXPECT_EQ(as_columns(SB), (std::vector<std::vector<unsigned>>{{1, 2, 6, NONE},
                                                                  {2, 0, 6, NONE},
                                                                  {1, 6, 0, NONE},
                                                                  {3, 5, 4, NONE},
                                                                  {2, 1, 4, 5},
                                                                  {0, 2, 5, 3},
                                                                  {1, 0, 3, 4}}));
}

TEST(MeshBoundaries, ResultsAreAppended)
{
    dense2D<unsigned> C = columns(3, {{0, 1, 2}, {2, 1, 3}}), N = neighbors_of(C, ET_FACE_T3);
    dense2D<unsigned> B = columns(2, {{7, 8}});
    ASSERT_EQ(get_mesh_boundaries(C, N, ET_FACE_T3, B), 0);
    ASSERT_EQ(get_mesh_boundaries(C, N, ET_FACE_T3, B), 0);
    EXPECT_EQ(as_columns(B), (std::vector<std::vector<unsigned>>{
                                 {7, 8}, {2, 0}, {0, 1}, {1, 3}, {3, 2}, {2, 0}, {0, 1}, {1, 3}, {3, 2}}));
    dense1D<unsigned, 8> ids(1, 42u);
    unsigned stride = 0;
    ASSERT_EQ(get_mesh_bounding_elements(C, N, ET_FACE_T3, ids, stride), 0);
    EXPECT_EQ(as_list(ids), (std::vector<unsigned>{42, 1, 2, 3, 4}));
    dense2D<unsigned> all = columns(2, {{9, 9}});
    ASSERT_EQ(get_element_boundaries(C, ET_FACE_T3, all), 0);
    // The shared side comes once per element, each in its own sense.
    EXPECT_EQ(as_columns(all),
              (std::vector<std::vector<unsigned>>{{9, 9}, {1, 2}, {2, 0}, {0, 1}, {1, 3}, {3, 2}, {2, 1}}));
}

TEST(MeshBoundaries, CodesInOrderOfTheChecks)
{
    dense2D<unsigned> C = columns(3, {{0, 1, 2}, {2, 1, 3}}), N = neighbors_of(C, ET_FACE_T3), B, empty;
    dense2D<unsigned> three_rows = columns(3, {{0, 0, 0}});  // wrong rows for sides
    EXPECT_EQ(get_mesh_boundaries(empty, N, ET_HEXA8, B), 0);
    EXPECT_EQ(get_mesh_boundaries(C, N, ET_FACE_Q4, three_rows), -1);
    EXPECT_EQ(get_mesh_boundaries(C, N, ET_FACE_MIX, B), 0);  // three rows: triangles
    dense2D<unsigned> short_cols = columns(3, {{NONE, NONE, 1}});
    dense2D<unsigned> four_rows = columns(4, {{NONE, NONE, 1, NONE}, {NONE, NONE, 0, NONE}});
    dense2D<unsigned> bad_id = columns(3, {{NONE, NONE, 2}, {NONE, NONE, 0}});
    EXPECT_EQ(get_mesh_boundaries(C, short_cols, ET_FACE_T3, three_rows), -2);
    EXPECT_EQ(get_mesh_boundaries(C, four_rows, ET_FACE_T3, B), -2);
    EXPECT_EQ(get_mesh_boundaries(C, bad_id, ET_FACE_T3, B), -2);
    EXPECT_EQ(get_mesh_boundaries(C, N, ET_FACE_T3, three_rows), -4);
    dense2D<unsigned> T10 = columns(10, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}});
    dense2D<unsigned> T10N = columns(4, {{NONE, NONE, NONE, NONE}});
    EXPECT_EQ(get_mesh_boundaries(T10, T10N, ET_TETRA10, empty), -3);
    dense2D<unsigned> six = columns(6, {{0, 0, 0, 0, 0, 0}});
    EXPECT_EQ(get_mesh_boundaries(T10, T10N, ET_TETRA10, six), -3);
    EXPECT_EQ(get_mesh_boundaries(T10, T10N, ET_TETRA10, three_rows), -4);

    dense1D<unsigned, 8> ids;
    unsigned stride = 77;
    EXPECT_EQ(get_mesh_bounding_elements(empty, N, ET_FACE_T3, ids, stride), 0);
    EXPECT_EQ(stride, 0u);
    stride = 77;
    EXPECT_EQ(get_mesh_bounding_elements(C, N, ET_TETRA4, ids, stride), -1);
    EXPECT_EQ(stride, 0u);
    EXPECT_EQ(get_mesh_bounding_elements(T10, T10N, ET_TETRA10, ids, stride), -2);
    EXPECT_EQ(stride, 4u);
    EXPECT_EQ(get_mesh_bounding_elements(C, short_cols, ET_FACE_T3, ids, stride), -2);
    EXPECT_EQ(get_mesh_bounding_elements(C, four_rows, ET_FACE_T3, ids, stride), -2);
    // Only the shape of the neighbours is examined here.
    EXPECT_EQ(get_mesh_bounding_elements(C, bad_id, ET_FACE_T3, ids, stride), 0);
    EXPECT_EQ(as_list(ids), (std::vector<unsigned>{0, 1, 3, 4}));

    dense2D<unsigned> all;
    EXPECT_EQ(get_element_boundaries(empty, ET_NONE, all), 0);
    EXPECT_EQ(get_element_boundaries(C, ET_HEXA8, all), -1);
    EXPECT_EQ(get_element_boundaries(T10, ET_TETRA10, all), -2);
    EXPECT_EQ(get_element_boundaries(C, ET_FACE_T3, three_rows), -2);
    EXPECT_TRUE(all.empty());
}

TEST(MeshBoundaries, OutOfMemory)
{
    mesh m = box(2, 2, 2, 8, add_hexa);
    dense2D<unsigned> C = m.connect(), N = neighbors_of(C, ET_HEXA8);
    long live = test_alloc::live_blocks();
    {
        dense2D<unsigned> B, all;
        dense1D<unsigned, 8> ids;
        unsigned stride;
        test_alloc::failing_scope guard(0);
        EXPECT_EQ(get_mesh_boundaries(C, N, ET_HEXA8, B), -199);
        EXPECT_EQ(get_element_boundaries(C, ET_HEXA8, all), -199);
        EXPECT_EQ(get_mesh_bounding_elements(C, N, ET_HEXA8, ids, stride), -199);
    }
    {
        dense2D<unsigned> B;
        test_alloc::failing_scope guard(2);
        EXPECT_EQ(get_mesh_boundaries(C, N, ET_HEXA8, B), -199);
        EXPECT_GT(B.cols(), 0u);  // what was appended before stays
    }
    EXPECT_EQ(test_alloc::live_blocks(), live);
}

TEST(Ancestors, LastElementWins)
{
    dense2D<unsigned> C = columns(4, {{0, 1, 2, NONE}, {2, 3, 4, 1}, {5, 2, 6, NONE}});
    dense1D<unsigned, 8> anc;
    ASSERT_EQ(get_ancestors(C, anc), 0);
    EXPECT_EQ(as_list(anc), (std::vector<unsigned>{0, 1, 2, 1, 1, 2, 2}));
    // Unused numbers stay NONE_ID.
    dense2D<unsigned> gap = columns(2, {{0, 3}});
    dense1D<unsigned, 8> fresh;
    ASSERT_EQ(get_ancestors(gap, fresh), 0);
    EXPECT_EQ(as_list(fresh), (std::vector<unsigned>{0, NONE, NONE, 0}));
}

TEST(Ancestors, FilledListIsMaskAndDefault)
{
    dense2D<unsigned> C = columns(3, {{0, 1, 5}, {1, 2, 6}});
    dense1D<unsigned, 8> anc(4, 9u);
    ASSERT_EQ(get_ancestors(C, anc), 0);
    EXPECT_EQ(as_list(anc), (std::vector<unsigned>{0, 1, 1, 9}));
    dense2D<unsigned> empty;
    ASSERT_EQ(get_ancestors(empty, anc), 0);
    EXPECT_EQ(anc.size(), 4u);
    dense1D<unsigned, 8> none;
    ASSERT_EQ(get_ancestors(empty, none), 0);
    EXPECT_TRUE(none.empty());
    test_alloc::failing_scope guard(0);
    EXPECT_EQ(get_ancestors(C, none), -199);
    EXPECT_TRUE(none.empty());
}
