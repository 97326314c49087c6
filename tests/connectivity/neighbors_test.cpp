#include "connectivity/elfes.h"
#include "connectivity/test_meshes.h"
#include "support/failing_alloc.h"
#include "tessarium/connectivity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

using namespace qv7;
using namespace test_meshes;
using qv7::tessarium::get_neighbors;

namespace {

// The real nodes of boundary b of column e, read with the descriptor.
template <class Elfe>
std::vector<unsigned> nodes_of(dense2D<unsigned> const& C, std::size_t e, unsigned b)
{
    unsigned out[4] = {NONE, NONE, NONE, NONE};
    unsigned* end = Elfe::copy_boundary_nodes(b, C.col(e), out);
    return std::vector<unsigned>(out, end);
}

std::vector<unsigned> sorted(std::vector<unsigned> v)
{
    std::sort(v.begin(), v.end());
    return v;
}

// A point of the mesh's bounding box surface?
bool on_hull(mesh const& m, point const& p)
{
    for (int k = 0; k < 3; ++k) {
        double lo = 1e300, hi = -1e300;
        for (auto const& q : m.pos) lo = std::min(lo, q[k]), hi = std::max(hi, q[k]);
        if (hi > lo && (std::abs(p[k] - lo) < 1e-9 || std::abs(p[k] - hi) < 1e-9)) return true;
    }
    return false;
}

// The neighbours of a structured mesh judged by geometry: every boundary's right-hand normal
// points into its element; a boundary with a neighbour is interior, and the neighbour holds the
// same nodes on exactly one boundary, seen the other way, naming this element back; a boundary
// without one lies on the hull. Returns the number of free boundaries.
template <class Elfe>
unsigned check_neighbors(mesh const& m, dense2D<unsigned> const& C, dense2D<unsigned> const& N)
{
    EXPECT_EQ(N.rows(), Elfe::stride);
    EXPECT_EQ(N.cols(), C.cols());
    unsigned free = 0;
    for (std::size_t e = 0; e < C.cols(); ++e) {
        for (unsigned b = 0; b < Elfe::nbr_boundaries(C.col(e)); ++b) {
            auto nodes = nodes_of<Elfe>(C, e, b);
            std::vector<point> p;
            for (unsigned v : nodes) p.push_back(m.pos[v]);
            point normal = boundary_normal(p), middle = centroid(p);
            EXPECT_GT(dot(normal, m.centroid(e) - middle), 1e-9) << "element " << e << " boundary " << b;
            unsigned n = N(b, e);
            if (n == NONE) {
                ++free;
                EXPECT_TRUE(on_hull(m, middle)) << "element " << e << " boundary " << b << " has no neighbour";
                continue;
            }
            EXPECT_FALSE(on_hull(m, middle)) << "element " << e << " boundary " << b;
            EXPECT_NE(n, e);
            if (n >= C.cols()) {
                ADD_FAILURE() << "neighbour " << n << " out of range";
                continue;
            }
            unsigned found = 0;
            for (unsigned c = 0; c < Elfe::nbr_boundaries(C.col(n)); ++c) {
                auto other = nodes_of<Elfe>(C, n, c);
                if (sorted(other) != sorted(nodes)) continue;
                ++found;
                EXPECT_EQ(N(c, n), e);
                std::vector<point> q;
                for (unsigned v : other) q.push_back(m.pos[v]);
                EXPECT_LT(dot(boundary_normal(q), normal), 0.0);
            }
            EXPECT_EQ(found, 1u) << "element " << e << " boundary " << b;
        }
    }
    return free;
}

template <class Elfe>
void expect_structured(mesh const& m, element_type type, unsigned free_boundaries)
{
    dense2D<unsigned> C = m.connect(), N, chained;
    ASSERT_EQ(get_neighbors(C, type, false, N), 0);
    EXPECT_EQ(check_neighbors<Elfe>(m, C, N), free_boundaries);
    // A manifold mesh has no boundary shared by three: both modes agree.
    ASSERT_EQ(get_neighbors(C, type, true, chained), 0);
    ASSERT_EQ(chained.cols(), N.cols());
    for (std::size_t e = 0; e < N.cols(); ++e)
        EXPECT_TRUE(std::equal(N.col(e), N.col(e) + N.rows(), chained.col(e))) << e;
}

// Renumbers the nodes at random and shuffles the elements.
mesh shuffled(mesh m, unsigned seed)
{
    std::mt19937 rng(seed);
    std::vector<unsigned> perm(m.pos.size());
    std::iota(perm.begin(), perm.end(), 0u);
    std::shuffle(perm.begin(), perm.end(), rng);
    std::vector<point> pos(m.pos.size());
    for (std::size_t v = 0; v < perm.size(); ++v) pos[perm[v]] = m.pos[v];
    m.pos = pos;
    for (auto& c : m.elements)
        for (auto& v : c)
            if (v != NONE) v = perm[v];
    std::shuffle(m.elements.begin(), m.elements.end(), rng);
    return m;
}

// Cubes along x: hexahedra, pairs of wedges, and six pyramids of which the bottom one is cut
// into two tetrahedra. Two cubes across y, one high. All in eight rows.
mesh mixed_solids()
{
    grid g{3, 2, 1};
    mesh m{grid_points(g), {}, 8};
    for (unsigned j = 0; j < 2; ++j) {
        add_hexa(m, cube_corners(g, 0, j, 0));
        add_wedges(m, cube_corners(g, 1, j, 0));
        add_pyramids(m, cube_corners(g, 2, j, 0));
        column bottom = m.elements.end()[-6];
        m.elements.erase(m.elements.end() - 6);
        add_tetra(m, {bottom[0], bottom[1], bottom[2], bottom[4]});
        add_tetra(m, {bottom[0], bottom[2], bottom[3], bottom[4]});
    }
    for (auto& c : m.elements) c.resize(8, NONE);
    return m;
}

// A grid of quadrangles in four rows with every third one cut into two triangles.
mesh mixed_faces(unsigned nx, unsigned ny)
{
    mesh q = quad_grid(nx, ny), m{q.pos, {}, 4};
    for (std::size_t e = 0; e < q.elements.size(); ++e) {
        auto const& c = q.elements[e];
        if (e % 3 == 0) {
            m.add({c[0], c[1], c[2], NONE});
            m.add({c[0], c[2], c[3], NONE});
        } else {
            m.add(c);
        }
    }
    return m;
}

dense2D<unsigned> columns(unsigned rows, std::vector<std::vector<unsigned>> const& cols)
{
    return mesh{{}, cols, rows}.connect();
}

}  // namespace

TEST(Neighbors, StructuredFaces)
{
    expect_structured<elfes::faceQ4>(quad_grid(5, 3), ET_FACE_Q4, 2 * (5 + 3));
    expect_structured<elfes::faceT3>(triangle_grid(4, 6), ET_FACE_T3, 2 * (4 + 6));
    expect_structured<elfes::face_mix>(mixed_faces(5, 4), ET_FACE_MIX, 2 * (5 + 4));
    // Three rows with the mixed type are triangles.
    expect_structured<elfes::faceT3>(triangle_grid(3, 2), ET_FACE_MIX, 2 * (3 + 2));
}

TEST(Neighbors, StructuredSolids)
{
    unsigned nx = 3, ny = 4, nz = 2;
    unsigned xy = nx * ny, yz = ny * nz, zx = nz * nx;
    expect_structured<elfes::hexa8>(box(nx, ny, nz, 8, add_hexa), ET_HEXA8, 2 * (xy + yz + zx));
    expect_structured<elfes::tetra4>(box(nx, ny, nz, 4, add_tetras), ET_TETRA4, 4 * (xy + yz + zx));
    expect_structured<elfes::wedge6>(box(nx, ny, nz, 6, add_wedges), ET_WEDGE6, 4 * xy + 2 * (yz + zx));
    expect_structured<elfes::pyramid5>(box(nx, ny, nz, 5, add_pyramids), ET_PYRAMID5, 2 * (xy + yz + zx));
    // The mixed type with fewer rows is the pure kind.
    expect_structured<elfes::pyramid5>(box(1, 1, 2, 5, add_pyramids), ET_SOLID_MIX, 2 * (1 + 2 + 2));
}

TEST(Neighbors, MixedSolids)
{
    // Per cube row: hexahedron 4 free faces, wedges 2 + 2 triangles and 1 quadrangle, pyramids
    // with the cut bottom 2 triangles and 3 quadrangles.
    expect_structured<elfes::solid_mix>(mixed_solids(), ET_SOLID_MIX, 2 * (4 + 5 + 5));
}

TEST(Neighbors, AnyNumberingAndElementOrder)
{
    expect_structured<elfes::tetra4>(shuffled(box(3, 3, 3, 4, add_tetras), 7), ET_TETRA4, 4 * 27);
    expect_structured<elfes::hexa8>(shuffled(box(4, 2, 3, 8, add_hexa), 8), ET_HEXA8, 2 * (8 + 6 + 12));
    expect_structured<elfes::solid_mix>(shuffled(mixed_solids(), 9), ET_SOLID_MIX, 28);
    expect_structured<elfes::face_mix>(shuffled(mixed_faces(6, 5), 10), ET_FACE_MIX, 22);
}

TEST(Neighbors, EdgesInAChainAndAStar)
{
    dense2D<unsigned> chain = columns(2, {{0, 1}, {1, 2}, {2, 3}}), N;
    ASSERT_EQ(get_neighbors(chain, ET_EDGE2, false, N), 0);
    // Boundary 0 is the end at node 1, boundary 1 the end at node 0.
    EXPECT_EQ(std::vector<unsigned>(N.col(0), N.col(0) + 6), (std::vector<unsigned>{1, NONE, 2, 0, NONE, 1}));
    dense2D<unsigned> star = columns(2, {{0, 9}, {1, 9}, {2, 9}});
    ASSERT_EQ(get_neighbors(star, ET_EDGE2, false, N), 0);
    EXPECT_EQ(std::vector<unsigned>(N.col(0), N.col(0) + 6), std::vector<unsigned>(6, NONE));
    ASSERT_EQ(get_neighbors(star, ET_EDGE2, true, N), 0);
    EXPECT_EQ(std::vector<unsigned>(N.col(0), N.col(0) + 6), (std::vector<unsigned>{2, NONE, 0, NONE, 0, NONE}));
}

TEST(Neighbors, SenseDoesNotMatter)
{
    // The shared face as (1,2,3) and as (3,1,2), then as (1,2,3) and (1,3,2).
    dense2D<unsigned> N;
    dense2D<unsigned> rotated = columns(4, {{0, 1, 2, 3}, {4, 3, 1, 2}});
    dense2D<unsigned> reversed = columns(4, {{0, 1, 2, 3}, {4, 1, 3, 2}});
    for (auto const* C : {&rotated, &reversed}) {
        ASSERT_EQ(get_neighbors(*C, ET_TETRA4, false, N), 0);
        EXPECT_EQ(N(0, 0), 1u);
        EXPECT_EQ(N(0, 1), 0u);
        EXPECT_EQ(std::count(N.col(0), N.col(0) + 8, NONE), 6);
    }
}

TEST(Neighbors, DegenerateElementIsItsOwnNeighbour)
{
    dense2D<unsigned> C = columns(4, {{0, 1, 2, 2}}), N;
    ASSERT_EQ(get_neighbors(C, ET_TETRA4, false, N), 0);
    // Faces 2 (1,2,0) and 3 (2,1,0) are one triangle.
    EXPECT_EQ(std::vector<unsigned>(N.col(0), N.col(0) + 4), (std::vector<unsigned>{NONE, NONE, 0, 0}));
}

TEST(Neighbors, PyramidTriangleDoesNotMatchHexaQuadrangle)
{
    // The pyramid's face 0 is (0, 2, 1): the first three corners of the hexahedron's face 4, reversed.
    dense2D<unsigned> C = columns(8, {{0, 1, 2, 3, 4, 5, 6, 7}, {0, 1, 8, 9, 2, NONE, NONE, NONE}}), N;
    ASSERT_EQ(get_neighbors(C, ET_SOLID_MIX, true, N), 0);
    EXPECT_EQ(std::count(N.col(0), N.col(0) + 12, NONE), 12);
}

TEST(Neighbors, FaceMixTriangleKeepsSpareRow)
{
    dense2D<unsigned> C = columns(4, {{0, 1, 2, NONE}, {1, 3, 4, 2}}), N;
    ASSERT_EQ(get_neighbors(C, ET_FACE_MIX, false, N), 0);
    ASSERT_EQ(N.rows(), 4u);
    EXPECT_EQ(std::vector<unsigned>(N.col(0), N.col(0) + 8), (std::vector<unsigned>{1, NONE, NONE, NONE,  //
                                                                                     NONE, NONE, NONE, 0}));
    dense2D<unsigned> T = columns(3, {{0, 1, 2}, {2, 1, 3}});
    ASSERT_EQ(get_neighbors(T, ET_FACE_MIX, false, N), 0);
    EXPECT_EQ(N.rows(), 3u);
}

TEST(Neighbors, Codes)
{
    dense2D<unsigned> N, empty;
    N.resize(3, 3, 7u);
    EXPECT_EQ(get_neighbors(empty, ET_TETRA4, false, N), 0);
    EXPECT_TRUE(N.empty());
    N.resize(3, 3, 7u);
    EXPECT_EQ(get_neighbors(columns(5, {{0, 1, 2, 3, 4}}), ET_TETRA4, false, N), -1);
    EXPECT_TRUE(N.empty());
    // Bad shapes of mixed arrays fail the check; IDs are not bounded here.
    EXPECT_EQ(get_neighbors(columns(7, {{0, 1, 2, 3, 4, 5, 6}}), ET_SOLID_MIX, false, N), -1);
    EXPECT_EQ(get_neighbors(columns(4, {{0, 1, 2, 3}}), ET_NONE, false, N), -1);
    EXPECT_EQ(get_neighbors(columns(10, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}), ET_TETRA10, false, N), -2);
    EXPECT_EQ(get_neighbors(columns(2, {{0, 1}}), ET_EDGE_MIX, false, N), -2);
    EXPECT_EQ(get_neighbors(columns(1, {{0}}), ET_NODE, false, N), -2);
    EXPECT_EQ(get_neighbors(columns(3, {{0, 1, 2}}), ET_EDGE3, false, N), -2);
    EXPECT_TRUE(N.empty());
}

TEST(Neighbors, OutOfMemory)
{
    mesh m = box(4, 4, 4, 4, add_tetras);
    dense2D<unsigned> C = m.connect(), expected;
    ASSERT_EQ(get_neighbors(C, ET_TETRA4, false, expected), 0);
    long live = test_alloc::live_blocks();
    // No block for the neighbours, then none for the table.
    for (std::size_t k = 0; k < 3; ++k) {
        dense2D<unsigned> N;
        test_alloc::failing_scope guard(k);
        EXPECT_EQ(get_neighbors(C, ET_TETRA4, false, N), -199) << k;
    }
    // Later failures lose overflow entries without a report: fewer pairs, never a wrong one.
    bool lost = false;
    for (std::size_t k = 3; k < 40; ++k) {
        dense2D<unsigned> N;
        int code;
        {
            test_alloc::failing_scope guard(k);
            code = get_neighbors(C, ET_TETRA4, false, N);
        }
        ASSERT_EQ(code, 0) << k;
        for (std::size_t e = 0; e < C.cols(); ++e)
            for (unsigned b = 0; b < 4; ++b) {
                EXPECT_TRUE(N(b, e) == expected(b, e) || N(b, e) == NONE);
                lost = lost || N(b, e) != expected(b, e);
            }
    }
    EXPECT_TRUE(lost);
    EXPECT_EQ(test_alloc::live_blocks(), live);
}
