#include "connectivity/get_neighbors_matrix.h"
#include "connectivity/test_meshes.h"

#include <gtest/gtest.h>

#include <vector>

using namespace qv7;
using test_meshes::NONE;

namespace {

dense2D<unsigned> columns(unsigned rows, std::vector<std::vector<unsigned>> const& cols)
{
    test_meshes::mesh m{{}, cols, rows};
    return m.connect();
}

std::vector<unsigned> column_of(dense2D<unsigned> const& M, std::size_t j)
{
    return std::vector<unsigned>(M.col(j), M.col(j) + M.rows());
}

// The whole pairing with every boundary forced into one bucket, so that every comparison is made.
template <class Elfe>
dense2D<unsigned> neighbors_in_one_bucket(dense2D<unsigned> const& C, int mode, bool& walked)
{
    using finder_type = boundary_finder<Elfe, dense2D<unsigned>>;
    finder_type finder;
    dense2D<unsigned> N;
    N.resize(Elfe::stride, C.cols(), NONE);
    finder.set_connectivity(&C);
    finder.sieve().resize(Elfe::stride * C.cols(), 1);
    for (std::size_t e = 0; e < C.cols(); ++e) finder.__bdry_insert_aux(e, 0);
    elfe_algo::internal_neighbors_updater<finder_type, dense2D<unsigned>> updater(N);
    elfe_algo::null_neighbors_processor processor;
    walked = elfe_algo::process_boundaries(finder, updater, processor, mode);
    return N;
}

// Three triangles around the side (0, 1): a book of three pages.
dense2D<unsigned> book() { return columns(3, {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}}); }

}  // namespace

TEST(BoundaryFinder, HashIgnoresNodeOrder)
{
    boundary_finder<elfes::hexa8, dense2D<unsigned>> finder;
    finder.sieve().resize(100, 1u << 20);
    using quad = boundary_finder<elfes::hexa8, dense2D<unsigned>>::boundary_type;
    unsigned long h = finder.__hash(quad{{3, 17, 400000, 9}});
    EXPECT_EQ(finder.__hash(quad{{9, 400000, 17, 3}}), h);
    EXPECT_EQ(finder.__hash(quad{{17, 3, 9, 400000}}), h);
    EXPECT_NE(finder.__hash(quad{{3, 17, 400001, 9}}), h);
    // A triangle among quadrangles is hashed with NONE_ID as fourth term: 32-bit FNV offset and
    // prime, terms added in 64 bits.
    boundary_finder<elfes::wedge6, dense2D<unsigned>> wedges;
    wedges.sieve().resize(100, 1u << 20);
    unsigned long H = 0x811C9DC5ul, sum = (5ul ^ H) + (6ul ^ H) + (7ul ^ H) + 0x7EE3623Aul;
    EXPECT_EQ(wedges.__hash(quad{{7, 5, 6, NONE}}), (sum * 16777619ul) & ((1ul << 20) - 1));
}

TEST(BoundaryFinder, InsertsEveryBoundaryOnce)
{
    dense2D<unsigned> C = columns(8, {{0, 1, 2, 3, NONE, NONE, NONE, NONE},
                                      {0, 1, 2, 3, 4, NONE, NONE, NONE},
                                      {0, 1, 2, 3, 4, 5, 6, 7}});
    boundary_finder<elfes::solid_mix, dense2D<unsigned>> finder;
    finder.set_connectivity(&C);
    ASSERT_TRUE(finder.resize(C.cols()));
    for (unsigned e = 0; e < 3; ++e) finder.__bdry_insert_aux(e, 0);
    EXPECT_EQ(finder.sieve().entry_count(), 4u + 5u + 6u);
    finder.__bdry_insert_aux(2, 4);
    EXPECT_EQ(finder.sieve().entry_count(), 17u);
    finder.__bdry_insert_aux(2, 6);
    EXPECT_EQ(finder.sieve().entry_count(), 17u);
}

TEST(BoundaryFinder, ComparesStoredBoundaryWithCurrent)
{
    dense2D<unsigned> C = columns(6, {{0, 1, 2, 3, 4, 5}, {2, 1, 0, 6, 7, 8}, {9, 1, 2, 10, 4, 5}});
    boundary_finder<elfes::wedge6, dense2D<unsigned>> finder;
    finder.set_connectivity(&C);
    finder.load_boundary(0 * 5 + 0);  // (0, 1, 2)
    EXPECT_EQ(finder.boundary_comp_second(1 * 5 + 0), -1);
    EXPECT_EQ(finder.boundary_comp_second(1 * 5 + 2), 0);  // a quadrangle
    finder.load_boundary(0 * 5 + 2);  // (2, 1, 4, 5)
    EXPECT_EQ(finder.boundary_comp_second(2 * 5 + 2), 1);
    auto const& cur = finder.boundary();
    EXPECT_EQ((std::vector<unsigned>{cur[0], cur[1], cur[2], cur[3]}), (std::vector<unsigned>{2, 1, 4, 5}));
    finder.load_boundary(0 * 5 + 1);  // a triangle after a quadrangle: the fourth node is cleared
    EXPECT_EQ(finder.boundary()[3], NONE);
}

TEST(BoundaryFinder, BookOfThreePages)
{
    dense2D<unsigned> C = book(), N;
    // Mode 1: the shared side has no neighbour at all.
    ASSERT_EQ(elfe_algo::get_neighbors_matrix(C, N, 1, elfes::faceT3{}), 0);
    for (unsigned e = 0; e < 3; ++e) EXPECT_EQ(column_of(N, e), std::vector<unsigned>(3, NONE)) << e;
    // Mode 0: the later pages name the first, the first names the last.
    ASSERT_EQ(elfe_algo::get_neighbors_matrix(C, N, 0, elfes::faceT3{}), 0);
    EXPECT_EQ(N(2, 0), 2u);
    EXPECT_EQ(N(2, 1), 0u);
    EXPECT_EQ(N(2, 2), 0u);
    EXPECT_EQ(N(0, 0), NONE);
    // Mode 2 refuses a non-manifold side.
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(C, N, 2, elfes::faceT3{}), -1);
}

TEST(BoundaryFinder, ConsistentOrientationCheck)
{
    dense2D<unsigned> N;
    dense2D<unsigned> good = columns(3, {{0, 1, 2}, {1, 0, 3}});
    ASSERT_EQ(elfe_algo::get_neighbors_matrix(good, N, 2, elfes::faceT3{}), 0);
    EXPECT_EQ(N(2, 0), 1u);
    EXPECT_EQ(N(2, 1), 0u);
    // The second triangle turns the other way: both see the side in the same sense.
    dense2D<unsigned> flipped = columns(3, {{0, 1, 2}, {0, 1, 3}});
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(flipped, N, 2, elfes::faceT3{}), -1);
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(flipped, N, 1, elfes::faceT3{}), 0);
    EXPECT_EQ(N(2, 0), 1u);
    // Ends of edges have no sense: any shared end fails the check.
    dense2D<unsigned> path = columns(2, {{0, 1}, {1, 2}});
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(path, N, 2, elfes::edge2{}), -1);
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(path, N, 1, elfes::edge2{}), 0);
    EXPECT_EQ(column_of(N, 0), (std::vector<unsigned>{1, NONE}));
    EXPECT_EQ(column_of(N, 1), (std::vector<unsigned>{NONE, 0}));
}

TEST(BoundaryFinder, CollisionsInOneBucketChangeNothing)
{
    test_meshes::mesh m = test_meshes::box(2, 2, 1, 4, test_meshes::add_tetras);
    dense2D<unsigned> C = m.connect(), expected;
    ASSERT_EQ(elfe_algo::get_neighbors_matrix(C, expected, 1, elfes::tetra4{}), 0);
    for (int mode : {0, 1, 2}) {
        bool walked = false;
        dense2D<unsigned> N = neighbors_in_one_bucket<elfes::tetra4>(C, mode, walked);
        EXPECT_TRUE(walked);
        for (std::size_t e = 0; e < C.cols(); ++e) EXPECT_EQ(column_of(N, e), column_of(expected, e)) << e;
    }
    // A pyramid triangle on three corners of a hexahedron's quadrangle, in one bucket.
    dense2D<unsigned> S = columns(8, {{0, 1, 2, 3, 4, 5, 6, 7}, {0, 1, 8, 9, 2, NONE, NONE, NONE}});
    bool walked = false;
    dense2D<unsigned> N = neighbors_in_one_bucket<elfes::solid_mix>(S, 0, walked);
    EXPECT_TRUE(walked);
    EXPECT_EQ(column_of(N, 0), std::vector<unsigned>(6, NONE));
    EXPECT_EQ(column_of(N, 1), std::vector<unsigned>(6, NONE));
}

TEST(BoundaryFinder, EmptyMeshWalksOneEmptyBucket)
{
    dense2D<unsigned> C, N;
    boundary_finder<elfes::hexa8, dense2D<unsigned>> finder;
    finder.set_connectivity(&C);
    ASSERT_TRUE(finder.resize(0));
    EXPECT_EQ(finder.sieve().bucket_count(), 1u);
    elfe_algo::internal_neighbors_updater<decltype(finder), dense2D<unsigned>> updater(N);
    elfe_algo::null_neighbors_processor processor;
    EXPECT_TRUE(elfe_algo::process_boundaries(finder, updater, processor, 2));
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(C, N, 1, elfes::hexa8{}), 0);
    EXPECT_TRUE(N.empty());
}

TEST(BoundaryFinder, WrongRowCountIsRefused)
{
    dense2D<unsigned> C = columns(4, {{0, 1, 2, 3}}), N;
    N.resize(2, 2, 5u);
    EXPECT_EQ(elfe_algo::get_neighbors_matrix(C, N, 1, elfes::hexa8{}), -1);
    EXPECT_TRUE(N.empty());
}
