#include "connectivity/get_neighbors_matrix.h"
#include "connectivity/test_meshes.h"
#include "tessarium/connectivity.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace test_meshes;
using tessarium::get_neighbors;

namespace {

dense2D<unsigned> columns(unsigned rows, std::vector<column> const& cols)
{
    return mesh{{}, cols, rows}.connect();
}
column flat(dense2D<unsigned> const& M)
{
    return column(M.col(0), M.col(0) + M.rows() * M.cols());
}

template <class Elfe>
std::vector<point> boundary_points(mesh const& m, dense2D<unsigned> const& C, std::size_t e, unsigned b, column& nodes)
{
    unsigned out[4];
    nodes.assign(out, Elfe::copy_boundary_nodes(b, C.col(e), out));
    std::sort(nodes.begin(), nodes.end());
    return m.points(column(out, out + nodes.size()));
}

bool on_hull(mesh const& m, point const& p)
{
    for (int k = 0; k < 3; ++k) {
        auto [lo, hi] = std::minmax_element(m.pos.begin(), m.pos.end(), [k](point a, point b) { return a[k] < b[k]; });
        if ((*hi)[k] > (*lo)[k] && (p[k] == (*lo)[k] || p[k] == (*hi)[k])) return true;
    }
    return false;
}

// Judges the neighbours of a structured mesh by geometry alone: every boundary's normal points
// into its element; a free boundary lies on the hull; any other is inside, and the neighbour
// holds the same nodes on exactly one boundary, seen the other way, that names this element
// back. Both modes must agree on such a mesh. Returns the number of free boundaries.
template <class Elfe>
unsigned judged_free_boundaries(mesh const& m, element_type type)
{
    dense2D<unsigned> C = m.connect(), N, chained;
    EXPECT_EQ(get_neighbors(C, type, false, N), 0);
    EXPECT_EQ(get_neighbors(C, type, true, chained), 0);
    EXPECT_EQ(flat(N), flat(chained));
    EXPECT_EQ(N.rows() * N.cols(), Elfe::stride * C.cols());
    unsigned free = 0;
    column nodes, other;
    for (std::size_t e = 0; e < C.cols(); ++e)
        for (unsigned b = 0; b < Elfe::nbr_boundaries(C.col(e)); ++b) {
            auto p = boundary_points<Elfe>(m, C, e, b, nodes);
            point normal = boundary_normal(p), o = mean(p);
            EXPECT_GT(dot(normal, sub(mean(m.points(m.elements[e])), o)), 1e-9) << e << "," << b;
            unsigned n = N(b, e);
            EXPECT_EQ(n == NONE, on_hull(m, o)) << e << "," << b;
            if (n == NONE || n >= C.cols()) {
                free += n == NONE;
                continue;
            }
            unsigned found = 0;
            for (unsigned c = 0; c < Elfe::nbr_boundaries(C.col(n)); ++c) {
                auto q = boundary_points<Elfe>(m, C, n, c, other);
                if (other != nodes) continue;
                ++found;
                EXPECT_EQ(N(c, n), e);
                EXPECT_LT(dot(boundary_normal(q), normal), 0.0);
            }
            EXPECT_EQ(found, 1u) << e << "," << b;
        }
    return free;
}

// Cubes in a row of three, two rows deep: hexahedra, pairs of wedges, and six pyramids with the
// bottom one cut into two tetrahedra. Free: 4 + 5 + 5 boundaries per row.
mesh solid_blocks()
{
    mesh m = grid_nodes(3, 2, 1, 8);
    for (unsigned j = 0; j < 2; ++j) {
        add_cube(m, cube(3, 2, 0, j, 0), HEXA);
        add_cube(m, cube(3, 2, 1, j, 0), WEDGES);
        add_cube(m, cube(3, 2, 2, j, 0), PYRAMIDS);
        column bottom = m.elements.end()[-6];
        m.elements.erase(m.elements.end() - 6);
        m.add({bottom[0], bottom[1], bottom[2], bottom[4]});
        m.add({bottom[0], bottom[2], bottom[3], bottom[4]});
    }
    for (auto& c : m.elements) c.resize(8, NONE);
    return m;
}

}  // namespace

TEST(Neighbors, StructuredMeshesByGeometry)
{
    EXPECT_EQ(judged_free_boundaries<elfes::faceQ4>(grid(5, 3, 0, 4), ET_FACE_Q4), 2u * (5 + 3));
    EXPECT_EQ(judged_free_boundaries<elfes::faceT3>(grid(4, 6, 1, 3), ET_FACE_MIX), 2u * (4 + 6));
    EXPECT_EQ(judged_free_boundaries<elfes::face_mix>(grid(5, 4, 3, 4), ET_FACE_MIX), 2u * (5 + 4));
    unsigned nx = 3, ny = 4, nz = 2, faces = nx * ny + ny * nz + nz * nx;
    EXPECT_EQ(judged_free_boundaries<elfes::hexa8>(box(nx, ny, nz, HEXA, 8), ET_HEXA8), 2 * faces);
    EXPECT_EQ(judged_free_boundaries<elfes::tetra4>(box(nx, ny, nz, TETRAS, 4), ET_TETRA4), 4 * faces);
    EXPECT_EQ(judged_free_boundaries<elfes::wedge6>(box(nx, ny, nz, WEDGES, 6), ET_WEDGE6), 2 * faces + 2 * nx * ny);
    EXPECT_EQ(judged_free_boundaries<elfes::pyramid5>(box(nx, ny, nz, PYRAMIDS, 5), ET_SOLID_MIX), 2 * faces);
    EXPECT_EQ(judged_free_boundaries<elfes::solid_mix>(solid_blocks(), ET_SOLID_MIX), 28u);
}

TEST(Neighbors, SharedByMoreThanTwo)
{
    // A book of three pages around the side (0, 1), and a star of three edges at node 9.
    dense2D<unsigned> book = columns(3, {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}}), star = columns(2, {{0, 9}, {1, 9}, {2, 9}}),
                      N;
    ASSERT_EQ(get_neighbors(book, ET_FACE_T3, false, N), 0);
    EXPECT_EQ(flat(N), column(9, NONE));
    ASSERT_EQ(get_neighbors(book, ET_FACE_T3, true, N), 0);  // later pages name the first, the first the last
    EXPECT_EQ(flat(N), (column{NONE, NONE, 2, NONE, NONE, 0, NONE, NONE, 0}));
    ASSERT_EQ(get_neighbors(star, ET_EDGE2, true, N), 0);
    EXPECT_EQ(flat(N), (column{2, NONE, 0, NONE, 0, NONE}));
    dense2D<unsigned> chain = columns(2, {{0, 1}, {1, 2}});
    ASSERT_EQ(get_neighbors(chain, ET_EDGE2, false, N), 0);
    EXPECT_EQ(flat(N), (column{1, NONE, NONE, 0}));  // boundary 0 is the end at node 1
    // The check of a consistently oriented manifold: opposite senses pass, anything else fails.
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(book, N, 2, elfes::faceT3{}), -1);
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(chain, N, 2, elfes::edge2{}), -1);
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(columns(3, {{0, 1, 2}, {0, 1, 3}}), N, 2, elfes::faceT3{}), -1);
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(columns(3, {{0, 1, 2}, {1, 0, 3}}), N, 2, elfes::faceT3{}), 0);
    EXPECT_EQ(N(2, 0), 1u);
}

TEST(Neighbors, MatchingIgnoresStartAndSense)
{
    dense2D<unsigned> N;
    for (column other : {column{4, 3, 1, 2}, column{4, 1, 3, 2}}) {
        ASSERT_EQ(get_neighbors(columns(4, {{0, 1, 2, 3}, other}), ET_TETRA4, false, N), 0);
        EXPECT_EQ(flat(N), (column{1, NONE, NONE, NONE, 0, NONE, NONE, NONE}));
    }
    // Two faces of a degenerate tetrahedron are one triangle: it is its own neighbour there.
    ASSERT_EQ(get_neighbors(columns(4, {{0, 1, 2, 2}}), ET_TETRA4, false, N), 0);
    EXPECT_EQ(flat(N), (column{NONE, NONE, 0, 0}));
    // A triangle next to a quadrangle in four rows: the spare row stays empty.
    ASSERT_EQ(get_neighbors(columns(4, {{0, 1, 2, NONE}, {1, 3, 4, 2}}), ET_FACE_MIX, false, N), 0);
    EXPECT_EQ(flat(N), (column{1, NONE, NONE, NONE, NONE, NONE, NONE, 0}));
}

TEST(Neighbors, Codes)
{
    EXPECT_EQ(next_prime(54), 97u);  // beside the sieve, used by nobody
    EXPECT_EQ(next_prime(1ul << 40), 4294967291u);
    dense2D<unsigned> N, empty;
    N.resize(3, 3, 7u);
    EXPECT_EQ(get_neighbors(empty, ET_TETRA4, false, N), 0);
    EXPECT_TRUE(N.empty());
    N.resize(3, 3, 7u);
    EXPECT_EQ(get_neighbors(columns(5, {{0, 1, 2, 3, 4}}), ET_TETRA4, false, N), -1);
    EXPECT_TRUE(N.empty());
    EXPECT_EQ(get_neighbors(columns(7, {{0, 1, 2, 3, 4, 5, 6}}), ET_SOLID_MIX, false, N), -1);
    EXPECT_EQ(get_neighbors(columns(10, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}), ET_TETRA10, false, N), -2);
    EXPECT_EQ(get_neighbors(columns(2, {{0, 1}}), ET_EDGE_MIX, false, N), -2);
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(columns(4, {{0, 1, 2, 3}}), N, 1, elfes::hexa8{}), -1);
}
