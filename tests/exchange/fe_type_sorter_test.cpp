#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"
#include "tessarium/sort_elfes.h"

#include <gtest/gtest.h>

#include <vector>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

constexpr unsigned N = NONE_ID;

struct sorted {
    dense1D<unsigned, 8> sizes, ends, new_indices;
    int code;
    sorted(dense2D<unsigned>& M) { code = sort_elfes(M, sizes, ends, new_indices); }
    sorted(dense2D<unsigned>& M, dense2D<unsigned>& neighbours)
    {
        code = sort_elfes(M, neighbours, sizes, ends, new_indices);
    }
};

}  // namespace

TEST(FeTypeSorter, GroupsByDescendingNodeCountStably)
{
    // Solids of 4, 8, 5, 6 and again 4 and 8 nodes; rows 0 and 1 of each column hold c and c + 1.
    auto M = connect(8, {0,  1,  2,  3,  N,  N,  N,  N,   //
                         10, 11, 12, 13, 14, 15, 16, 17,  //
                         20, 21, 22, 23, 24, N,  N,  N,   //
                         30, 31, 32, 33, 34, 35, N,  N,   //
                         40, 41, 42, 43, N,  N,  N,  N,   //
                         50, 51, 52, 53, 54, 55, 56, 57});
    sorted s(M);
    EXPECT_EQ(s.code, 0);
    EXPECT_EQ(values(s.sizes), V({8, 6, 5, 4}));
    EXPECT_EQ(values(s.ends), V({2, 3, 4, 6}));
    EXPECT_EQ(values(s.new_indices), V({4, 0, 3, 2, 5, 1}));
    EXPECT_EQ(column(M, 3), V({20, 21, 22, 23, 24, N, N, N}));
    for (std::size_t j = 0; j < M.cols(); ++j) EXPECT_EQ(M(1, j), M(0, j) + 1);
    V firsts;
    for (std::size_t j = 0; j < M.cols(); ++j) firsts.push_back(M(0, j));
    EXPECT_EQ(firsts, V({10, 50, 30, 20, 0, 40}));

    // Already in order: the storage stays where it is.
    auto ordered = connect(3, {0, 1, 2, 3, 4, 5, 6, 7, N, 8, N, N});
    unsigned const* storage = ordered.col(0);
    sorted o(ordered);
    EXPECT_EQ(ordered.col(0), storage);
    EXPECT_EQ(values(o.new_indices), V({0, 1, 2, 3}));
    EXPECT_EQ(values(o.sizes), V({3, 2, 1}));
    EXPECT_EQ(values(o.ends), V({2, 3, 4}));
    EXPECT_EQ(column(ordered, 2), V({6, 7, N}));
}

TEST(FeTypeSorter, EmptyColumnsAreDroppedAndLaterEntriesCarriedUnread)
{
    auto M = connect(3, {N, 1, 2, 4, 5, 6, N, N, N});
    sorted s(M);
    EXPECT_EQ(M.rows() * 10 + M.cols(), 31u);
    EXPECT_EQ(column(M, 0), V({4, 5, 6}));
    EXPECT_EQ(values(s.new_indices), V({N, 0, N}));
    EXPECT_EQ(values(s.sizes), V({3}));
    EXPECT_EQ(values(s.ends), V({1}));

    // Nothing valid, or nothing at all: one empty group.
    auto none = connect(2, {N, 3, N, N});
    dense2D<unsigned> empty;
    sorted n(none), e(empty);
    EXPECT_EQ(n.code, 0);
    EXPECT_EQ(none.cols(), 0u);
    EXPECT_EQ(values(n.new_indices), V({N, N}));
    EXPECT_TRUE(e.new_indices.empty());
    for (sorted const* r : {&n, &e}) {
        EXPECT_EQ(values(r->sizes), V({0}));
        EXPECT_EQ(values(r->ends), V({0}));
    }

    // (1 N 3) counts one node and keeps its 3; the tallest element has 2 of 3 rows.
    auto gap = connect(3, {1, N, 3, 4, 5, N});
    sorted g(gap);
    EXPECT_EQ(values(g.sizes), V({2, 1}));
    EXPECT_EQ(gap.rows(), 3u);
    EXPECT_EQ(column(gap, 0), V({4, 5, N}));
    EXPECT_EQ(column(gap, 1), V({1, N, 3}));
}

TEST(FeTypeSorter, SortsAViewInItsParentStorage)
{
    auto parent = connect(4, {9, 9, 9, 9, 1, 2, N, N, 3, 4, 5, 6, 9, 9, 9, 9});
    auto view = parent.submatrix(1, 2, 3);  // rows 0..2 of columns 1 and 2
    sorted s(view);
    EXPECT_EQ(values(s.sizes), V({3, 2}));
    EXPECT_EQ(column(parent, 1), V({3, 4, 5, N}));
    EXPECT_EQ(column(parent, 2), V({1, 2, N, 6}));
    EXPECT_EQ(column(parent, 3), V({9, 9, 9, 9}));
}

TEST(FeTypeSorter, CompanionColumnsMoveAndEntriesAreRenumbered)
{
    auto M = connect(3, {0, 1, N, N, N, N, 2, 3, 4, 5, 6, N});
    // Neighbours of the four elements, by initial element number.
    auto nb = connect(2, {2, 1, 0, N, 3, 0, 1, 2});
    sorted s(M, nb);
    EXPECT_EQ(s.code, 0);
    // Element 2 has three nodes, elements 0 and 3 two, element 1 none.
    EXPECT_EQ(values(s.new_indices), V({1, N, 0, 2}));
    ASSERT_EQ(nb.cols(), 3u);
    // Now initial elements 2 (3, 0), 0 (2, 1) and 3 (1, 2), with entries renumbered.
    EXPECT_EQ(column(nb, 0), V({2, 1}));
    EXPECT_EQ(column(nb, 1), V({0, N}));
    EXPECT_EQ(column(nb, 2), V({N, 0}));

    // A companion of another column count is refused, and nothing moves.
    auto two = connect(2, {0, 1, 2, N});
    auto three = connect(1, {0, 1, 1});
    EXPECT_EQ(sorted(two, three).code, -1);
    EXPECT_EQ(column(two, 1), V({2, N}));
    EXPECT_EQ(three.cols(), 3u);
}

TEST(FeTypeSorter, FailedAllocationLeavesMatrixUntouched)
{
    auto M = connect(2, {0, N, 1, 2});
    dense1D<unsigned, 8> sizes, ends, new_indices;
    test_alloc::failing_scope guard(0);
    EXPECT_EQ(sort_elfes(M, sizes, ends, new_indices), -199);
    EXPECT_TRUE(sizes.empty());
    EXPECT_EQ(column(M, 0), V({0, N}));
}
