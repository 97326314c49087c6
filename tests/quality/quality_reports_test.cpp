#include "quality/quality_elements.h"
#include "support/failing_alloc.h"
#include "tessarium/quality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace qv7;

namespace {

// The ideal elements, moved off their ideal shape, side by side in one coordinate array, each as
// a column of `faces` or `solids` with NONE_ID in its spare rows, and the quality each gets alone.
struct mixed_mesh {
    dense2D<double> pos;
    dense2D<unsigned> faces, solids;
    std::vector<double> face_q, solid_q;

    mixed_mesh()
    {
        std::vector<double> xyz;
        for (auto e : quality_elements::ideal()) {
            for (std::size_t k = 0; k < e.xyz.size(); ++k) e.xyz[k] += 0.1 * std::sin(double(k));
            bool face = e.type == ET_FACE_T3 || e.type == ET_FACE_Q4;
            dense2D<unsigned>& mixed = face ? faces : solids;
            unsigned first = static_cast<unsigned>(xyz.size() / 3), n = static_cast<unsigned>(e.xyz.size() / 3);
            xyz.insert(xyz.end(), e.xyz.begin(), e.xyz.end());
            unsigned rows = face ? 4 : 8;
            mixed.resize(rows, mixed.cols() + 1);
            for (unsigned i = 0; i < rows; ++i) mixed(i, mixed.cols() - 1) = i < n ? first + i : NONE_ID;
            // The quality of the element alone, measured as its pure type.
            dense2D<double> p;
            dense2D<unsigned> c;
            quality_elements::arrays(e, 3, p, c);
            dense1D<double, 8> q;
            tessarium::shape_qualities(p, c, e.type, q);
            (face ? face_q : solid_q).push_back(q[0]);
        }
        pos.resize(3, xyz.size() / 3);
        std::copy(xyz.begin(), xyz.end(), pos.data());
    }
};

std::vector<double> values(dense1D<double, 8> const& a)
{
    return std::vector<double>(a.begin(), a.end());
}

}  // namespace

TEST(QualityReports, MixedColumnsAreMeasuredAsTheirKind)
{
    mixed_mesh mesh;
    dense1D<double, 8> q;
    ASSERT_EQ(tessarium::shape_qualities(mesh.pos, mesh.faces, ET_FACE_MIX, q), 0);
    EXPECT_EQ(values(q), mesh.face_q);
    ASSERT_EQ(tessarium::shape_qualities(mesh.pos, mesh.solids, ET_SOLID_MIX, q), 0);
    EXPECT_EQ(values(q), mesh.solid_q);
}

TEST(QualityReports, MinQualityFindsTheFirstWorst)
{
    mixed_mesh mesh;
    double q_min;
    unsigned e_min;
    // The unit cube is exactly 1: nothing strictly below the start.
    dense2D<double> cube_pos;
    dense2D<unsigned> cube;
    quality_elements::arrays(quality_elements::ideal()[5], 3, cube_pos, cube);
    ASSERT_EQ(tessarium::min_quality(cube_pos, cube, ET_HEXA8, q_min, e_min), 0);
    EXPECT_EQ(q_min, 1.0);
    EXPECT_EQ(e_min, NONE_ID);
    // Turn the wedge over (swap its triangles): it becomes the worst, and stays so when repeated.
    dense2D<unsigned> solids;
    solids.resize(8, 5);
    for (unsigned j = 0; j < 5; ++j)
        for (unsigned i = 0; i < 8; ++i) solids(i, j) = mesh.solids(i, j == 4 ? 2 : j);
    for (unsigned j : {2u, 4u})
        for (unsigned i = 0; i < 3; ++i) std::swap(solids(i, j), solids(i + 3, j));
    dense1D<double, 8> q;
    ASSERT_EQ(tessarium::shape_qualities(mesh.pos, solids, ET_SOLID_MIX, q), 0);
    ASSERT_LT(q[2], 0.0);
    ASSERT_EQ(tessarium::min_quality(mesh.pos, solids, ET_SOLID_MIX, q_min, e_min), 0);
    EXPECT_EQ(q_min, q[2]);
    EXPECT_EQ(e_min, 2u);
    // Edges are 1 without a look at the coordinates.
    dense2D<unsigned> edges = mesh.faces.submatrix(0, 2, 2);
    ASSERT_EQ(tessarium::shape_qualities(mesh.pos, edges, ET_EDGE2, q), 0);
    EXPECT_EQ(values(q), (std::vector<double>{1.0, 1.0}));
    ASSERT_EQ(tessarium::min_quality(mesh.pos, edges, ET_EDGE2, q_min, e_min), 0);
    EXPECT_EQ(e_min, NONE_ID);
}

TEST(QualityReports, RefusalCodes)
{
    mixed_mesh mesh;
    dense1D<double, 8> q;
    double q_min = 0;
    unsigned e_min = 0;
    dense2D<unsigned> empty, six;
    EXPECT_EQ(tessarium::shape_qualities(mesh.pos, empty, ET_TETRA4, q), 0);
    EXPECT_EQ(tessarium::min_quality(mesh.pos, empty, ET_TETRA4, q_min, e_min), 0);
    EXPECT_EQ(q_min, 1.0);
    EXPECT_EQ(e_min, NONE_ID);
    six.resize(6, 1);
    for (unsigned i = 0; i < 6; ++i) six(i, 0) = i;
    q.push_back(0.5);
    EXPECT_EQ(tessarium::shape_qualities(mesh.pos, six, ET_FACE_T6, q), -3);
    EXPECT_EQ(q.size(), 0u);
    EXPECT_EQ(tessarium::min_quality(mesh.pos, six, ET_FACE_T6, q_min, e_min), -3);
    EXPECT_EQ(tessarium::min_quality(mesh.pos, six.submatrix(0, 1, 2), ET_EDGE_MIX, q_min, e_min), -3);
    EXPECT_EQ(e_min, NONE_ID);
    six(5, 0) = static_cast<unsigned>(mesh.pos.cols());
    EXPECT_EQ(tessarium::shape_qualities(mesh.pos, six, ET_FACE_T6, q), -2);
    EXPECT_EQ(tessarium::min_quality(mesh.pos, six, ET_FACE_T6, q_min, e_min), -2);
    test_alloc::failing_scope guard(0);
    dense1D<double, 8> fresh;
    EXPECT_EQ(tessarium::shape_qualities(mesh.pos, mesh.solids, ET_SOLID_MIX, fresh), -199);
}
