#include "connectivity/test_meshes.h"
#include "support/failing_alloc.h"
#include "tessarium/connectivity.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace qv7::tessarium;
using namespace test_meshes;
using lists = std::vector<column>;

namespace {

dense2D<unsigned> columns(unsigned rows, lists const& cols)
{
    return mesh{{}, cols, rows}.connect();
}
lists as_lists(dense2D<unsigned> const& M)
{
    lists out;
    for (std::size_t j = 0; j < M.cols(); ++j) out.emplace_back(M.col(j), M.col(j) + M.rows());
    return out;
}
column as_list(dense1D<unsigned, 8> const& v)
{
    return column(v.begin(), v.end());
}
dense2D<unsigned> neighbors_of(dense2D<unsigned> const& C, element_type type)
{
    dense2D<unsigned> N;
    EXPECT_EQ(get_neighbors(C, type, false, N), 0);
    return N;
}

}  // namespace

TEST(MeshBoundaries, SkinOfABoxFacesInwards)
{
    struct kind {
        split s;
        element_type type;
        unsigned rows;
    };
    for (kind k : {kind{HEXA, ET_HEXA8, 8}, kind{TETRAS, ET_TETRA4, 4}, kind{WEDGES, ET_WEDGE6, 6},
                   kind{PYRAMIDS, ET_PYRAMID5, 5}}) {
        element_type type = k.type;
        mesh m = box(2, 3, 2, k.s, k.rows);
        dense2D<unsigned> C = m.connect(), N = neighbors_of(C, type), B, all;
        ASSERT_EQ(get_mesh_boundaries(C, N, type, B), 0);
        for (column face : as_lists(B)) {  // inward normals on the skin
            face.erase(std::remove(face.begin(), face.end(), NONE), face.end());
            EXPECT_GT(dot(boundary_normal(m.points(face)), sub({1, 1.5, 1}, mean(m.points(face)))), 0.0);
        }
        // The IDs of the free boundaries name the same columns among all boundaries.
        dense1D<unsigned, 8> ids;
        unsigned stride = 0;
        ASSERT_EQ(get_mesh_bounding_elements(C, N, type, ids, stride), 0);
        ASSERT_EQ(get_element_boundaries(C, type, all), 0);
        ASSERT_EQ(all.cols(), C.cols() * stride);
        ASSERT_EQ(ids.size(), B.cols());
        for (std::size_t k = 0; k < ids.size(); ++k) EXPECT_EQ(as_lists(B)[k], as_lists(all)[ids[k]]);
    }
}

TEST(MeshBoundaries, MixedRowsAndAppending)
{
    // A triangle and a quadrangle sharing the side (1, 2): the triangle has no fourth side.
    dense2D<unsigned> F = columns(4, {{0, 1, 2, NONE}, {1, 3, 4, 2}}), N = neighbors_of(F, ET_FACE_MIX);
    dense2D<unsigned> B = columns(2, {{7, 8}});
    ASSERT_EQ(get_mesh_boundaries(F, N, ET_FACE_MIX, B), 0);
    EXPECT_EQ(as_lists(B), (lists{{7, 8}, {2, 0}, {0, 1}, {1, 3}, {3, 4}, {4, 2}}));
    dense1D<unsigned, 8> ids(1, 42u);
    unsigned stride = 0;
    ASSERT_EQ(get_mesh_bounding_elements(F, N, ET_FACE_MIX, ids, stride), 0);
    EXPECT_EQ(as_list(ids), (column{42, 1, 2, 4, 5, 6}));
    // A tetrahedron under a wedge: triangles hold NONE_ID in the fourth row.
    dense2D<unsigned> S = columns(8, {{0, 1, 2, 6, NONE, NONE, NONE, NONE}, {0, 1, 2, 3, 4, 5, NONE, NONE}}), all;
    ASSERT_EQ(get_element_boundaries(S, ET_SOLID_MIX, all), 0);
    EXPECT_EQ(as_lists(all), (lists{{1, 2, 6, NONE},
                                    {2, 0, 6, NONE},
                                    {1, 6, 0, NONE},
                                    {2, 1, 0, NONE},
                                    {0, 1, 2, NONE},
                                    {3, 5, 4, NONE},
                                    {2, 1, 4, 5},
                                    {0, 2, 5, 3},
                                    {1, 0, 3, 4}}));
    dense2D<unsigned> SN = neighbors_of(S, ET_SOLID_MIX), SB;
    ASSERT_EQ(get_mesh_boundaries(S, SN, ET_SOLID_MIX, SB), 0);
    ASSERT_EQ(get_mesh_boundaries(S, SN, ET_SOLID_MIX, SB), 0);  // twice: the list twice
    EXPECT_EQ(SB.cols(), 14u);
}

TEST(MeshBoundaries, CodesInOrderOfTheChecks)
{
    dense2D<unsigned> C = columns(3, {{0, 1, 2}, {2, 1, 3}}), N = neighbors_of(C, ET_FACE_T3), B, empty;
    dense2D<unsigned> rows3 = columns(3, {{0, 0, 0}}), cols1 = columns(3, {{NONE, NONE, 1}});
    dense2D<unsigned> rows4 = columns(4, {{NONE, NONE, 1, NONE}, {NONE, NONE, 0, NONE}});
    dense2D<unsigned> bad_id = columns(3, {{NONE, NONE, 2}, {NONE, NONE, 0}});
    dense2D<unsigned> T10 = columns(10, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}),
                      T10N = columns(4, {{NONE, NONE, NONE, NONE}});
    EXPECT_EQ(get_mesh_boundaries(empty, N, ET_HEXA8, B), 0);
    EXPECT_EQ(get_mesh_boundaries(C, N, ET_FACE_Q4, rows3), -1);
    EXPECT_EQ(get_mesh_boundaries(C, cols1, ET_FACE_T3, rows3), -2);
    EXPECT_EQ(get_mesh_boundaries(C, rows4, ET_FACE_T3, B), -2);
    EXPECT_EQ(get_mesh_boundaries(C, bad_id, ET_FACE_T3, B), -2);
    EXPECT_EQ(get_mesh_boundaries(C, N, ET_FACE_T3, rows3), -4);
    EXPECT_EQ(get_mesh_boundaries(T10, T10N, ET_TETRA10, B), -3);
    EXPECT_EQ(get_mesh_boundaries(T10, T10N, ET_TETRA10, rows3), -4);
    dense1D<unsigned, 8> ids;
    unsigned stride = 9;
    EXPECT_EQ(get_mesh_bounding_elements(empty, N, ET_FACE_T3, ids, stride), 0);
    EXPECT_EQ(stride, 0u);
    EXPECT_EQ(get_mesh_bounding_elements(C, N, ET_TETRA4, ids, stride), -1);
    EXPECT_EQ(get_mesh_bounding_elements(T10, T10N, ET_TETRA10, ids, stride), -2);
    EXPECT_EQ(stride, 4u);
    EXPECT_EQ(get_mesh_bounding_elements(C, cols1, ET_FACE_T3, ids, stride), -2);
    EXPECT_EQ(get_mesh_bounding_elements(C, rows4, ET_FACE_T3, ids, stride), -2);
    EXPECT_EQ(get_mesh_bounding_elements(C, bad_id, ET_FACE_T3, ids, stride), 0);  // shape only
    EXPECT_EQ(as_list(ids), (column{0, 1, 3, 4}));
    EXPECT_EQ(get_element_boundaries(empty, ET_NONE, B), 0);
    EXPECT_EQ(get_element_boundaries(C, ET_HEXA8, B), -1);
    EXPECT_EQ(get_element_boundaries(T10, ET_TETRA10, B), -2);
    EXPECT_EQ(get_element_boundaries(C, ET_FACE_T3, rows3), -2);
    EXPECT_TRUE(B.empty());
}

TEST(MeshBoundaries, OutOfMemory)
{
    dense2D<unsigned> C = box(2, 2, 2, HEXA, 8).connect(), N = neighbors_of(C, ET_HEXA8), B, all;
    dense1D<unsigned, 8> ids;
    unsigned stride;
    long live = test_alloc::live_blocks();
    {
        test_alloc::failing_scope guard(0);
        EXPECT_EQ(get_mesh_boundaries(C, N, ET_HEXA8, B), -199);
        EXPECT_EQ(get_element_boundaries(C, ET_HEXA8, all), -199);
        EXPECT_EQ(get_mesh_bounding_elements(C, N, ET_HEXA8, ids, stride), -199);
    }
    {
        dense2D<unsigned> partial;
        test_alloc::failing_scope guard(2);
        EXPECT_EQ(get_mesh_boundaries(C, N, ET_HEXA8, partial), -199);
        EXPECT_EQ(partial.cols(), 8u);  // what was appended before stays
    }
    EXPECT_EQ(test_alloc::live_blocks(), live);
}

TEST(Ancestors, LastElementWinsAndAFilledListMasks)
{
    dense2D<unsigned> C = columns(4, {{0, 1, 2, NONE}, {2, 3, 5, 1}, {6, 2, 7, NONE}});
    dense1D<unsigned, 8> fresh, block(4, 9u), filled = block, untouched(2, 9u);
    filled.resize(3);  // the fourth entry of the block lies beyond the list
    ASSERT_EQ(get_ancestors(C, fresh), 0);
    EXPECT_EQ(as_list(fresh), (column{0, 1, 2, 1, NONE, 1, 2, 2}));
    ASSERT_EQ(get_ancestors(columns(3, {{0, 1, 2}, {1, 3, 6}}), filled), 0);
    EXPECT_EQ(as_list(block), (column{0, 1, 0, 9}));
    dense2D<unsigned> empty;
    ASSERT_EQ(get_ancestors(empty, untouched), 0);
    EXPECT_EQ(as_list(untouched), (column{9, 9}));
    dense1D<unsigned, 8> none;
    test_alloc::failing_scope guard(0);
    EXPECT_EQ(get_ancestors(C, none), -199);
    EXPECT_TRUE(none.empty());
}
