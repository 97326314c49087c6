#include "exchange/writer_files.h"
#include "support/failing_alloc.h"
#include "tessarium/element_type.h"
#include "tessarium/sort_elfes.h"

#include <gtest/gtest.h>

#include <vector>

using namespace qv7;
using namespace qv7::tessarium;
using writer_files::connect;

namespace {

constexpr unsigned N = NONE_ID;

std::vector<unsigned> values(dense1D<unsigned, 8> const& a) { return std::vector<unsigned>(a.begin(), a.end()); }

std::vector<unsigned> column(dense2D<unsigned> const& M, std::size_t j)
{
    return std::vector<unsigned>(M.col(j), M.col(j) + M.rows());
}

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
    auto M = connect(4, {1, 2, 3, N, 1, 2, 3, 4, 5, 6, 7, N});
    sorted s(M);
    EXPECT_EQ(s.code, 0);
    ASSERT_EQ(M.cols(), 3u);
    EXPECT_EQ(column(M, 0), (std::vector<unsigned>{1, 2, 3, 4}));
    EXPECT_EQ(column(M, 1), (std::vector<unsigned>{1, 2, 3, N}));
    EXPECT_EQ(column(M, 2), (std::vector<unsigned>{5, 6, 7, N}));
    EXPECT_EQ(values(s.sizes), (std::vector<unsigned>{4, 3}));
    EXPECT_EQ(values(s.ends), (std::vector<unsigned>{1, 3}));
    EXPECT_EQ(values(s.new_indices), (std::vector<unsigned>{1, 0, 2}));
}

TEST(FeTypeSorter, OrderedMatrixStaysInPlace)
{
    auto M = connect(3, {0, 1, 2, 3, 4, 5, 6, 7, N, 8, N, N});
    unsigned const* storage = M.col(0);
    sorted s(M);
    EXPECT_EQ(M.col(0), storage);
    EXPECT_EQ(values(s.new_indices), (std::vector<unsigned>{0, 1, 2, 3}));
    EXPECT_EQ(values(s.sizes), (std::vector<unsigned>{3, 2, 1}));
    EXPECT_EQ(values(s.ends), (std::vector<unsigned>{2, 3, 4}));
    EXPECT_EQ(column(M, 2), (std::vector<unsigned>{6, 7, N}));
}

TEST(FeTypeSorter, ManyGroupsInterleaved)
{
    // Solids of 4, 8, 5, 6 and again 4 and 8 nodes.
    auto M = connect(8, {0, 1, 2, 3, N, N, N, N,  //
                         10, 11, 12, 13, 14, 15, 16, 17,  //
                         20, 21, 22, 23, 24, N, N, N,  //
                         30, 31, 32, 33, 34, 35, N, N,  //
                         40, 41, 42, 43, N, N, N, N,  //
                         50, 51, 52, 53, 54, 55, 56, 57});
    sorted s(M);
    EXPECT_EQ(values(s.sizes), (std::vector<unsigned>{8, 6, 5, 4}));
    EXPECT_EQ(values(s.ends), (std::vector<unsigned>{2, 3, 4, 6}));
    EXPECT_EQ(values(s.new_indices), (std::vector<unsigned>{4, 0, 3, 2, 5, 1}));
    std::vector<unsigned> firsts;
    for (std::size_t j = 0; j < M.cols(); ++j) firsts.push_back(M(0, j));
    EXPECT_EQ(firsts, (std::vector<unsigned>{10, 50, 30, 20, 0, 40}));
    for (std::size_t j = 0; j < M.cols(); ++j) EXPECT_EQ(M(1, j), M(0, j) + 1);
}

TEST(FeTypeSorter, EmptyColumnsAreDropped)
{
    auto M = connect(3, {N, 1, 2, 4, 5, 6, N, N, N});
    sorted s(M);
    EXPECT_EQ(M.cols(), 1u);
    EXPECT_EQ(M.rows(), 3u);
    EXPECT_EQ(column(M, 0), (std::vector<unsigned>{4, 5, 6}));
    EXPECT_EQ(values(s.new_indices), (std::vector<unsigned>{N, 0, N}));
    EXPECT_EQ(values(s.sizes), (std::vector<unsigned>{3}));
    EXPECT_EQ(values(s.ends), (std::vector<unsigned>{1}));
}

TEST(FeTypeSorter, NothingValidGivesOneEmptyGroup)
{
    auto none = connect(2, {N, 3, N, N});
    sorted s(none);
    EXPECT_EQ(s.code, 0);
    EXPECT_EQ(none.cols(), 0u);
    EXPECT_EQ(values(s.sizes), (std::vector<unsigned>{0}));
    EXPECT_EQ(values(s.ends), (std::vector<unsigned>{0}));
    EXPECT_EQ(values(s.new_indices), (std::vector<unsigned>{N, N}));

    dense2D<unsigned> empty;
    sorted e(empty);
    EXPECT_EQ(values(e.sizes), (std::vector<unsigned>{0}));
    EXPECT_EQ(values(e.ends), (std::vector<unsigned>{0}));
    EXPECT_TRUE(e.new_indices.empty());
}

TEST(FeTypeSorter, EntriesBelowTheFirstNoneIdAreCarriedUnread)
{
    // (1 N 3) counts one node and keeps its 3; the tallest element has 2 of 3 rows.
    auto M = connect(3, {1, N, 3, 4, 5, N});
    sorted s(M);
    EXPECT_EQ(values(s.sizes), (std::vector<unsigned>{2, 1}));
    EXPECT_EQ(M.rows(), 3u);
    EXPECT_EQ(column(M, 0), (std::vector<unsigned>{4, 5, N}));
    EXPECT_EQ(column(M, 1), (std::vector<unsigned>{1, N, 3}));
}

TEST(FeTypeSorter, SortsAViewInItsParentStorage)
{
    auto parent = connect(4, {9, 9, 9, 9, 1, 2, N, N, 3, 4, 5, 6, 9, 9, 9, 9});
    auto view = parent.submatrix(1, 2, 3);  // rows 0..2 of columns 1 and 2
    sorted s(view);
    EXPECT_EQ(values(s.sizes), (std::vector<unsigned>{3, 2}));
    EXPECT_EQ(column(parent, 1), (std::vector<unsigned>{3, 4, 5, N}));
    EXPECT_EQ(column(parent, 2), (std::vector<unsigned>{1, 2, N, 6}));
    EXPECT_EQ(column(parent, 3), (std::vector<unsigned>{9, 9, 9, 9}));
}

TEST(FeTypeSorter, CompanionColumnsMoveAndEntriesAreRenumbered)
{
    auto M = connect(3, {0, 1, N, N, N, N, 2, 3, 4, 5, 6, N});
    // Neighbours of the four elements, by initial element number.
    auto nb = connect(2, {2, 1, 0, N, 3, 0, 1, 2});
    sorted s(M, nb);
    EXPECT_EQ(s.code, 0);
    // Element 2 has three nodes, elements 0 and 3 two, element 1 none.
    EXPECT_EQ(values(s.new_indices), (std::vector<unsigned>{1, N, 0, 2}));
    ASSERT_EQ(nb.cols(), 3u);
    // Now initial elements 2 (3, 0), 0 (2, 1) and 3 (1, 2), with entries renumbered.
    EXPECT_EQ(column(nb, 0), (std::vector<unsigned>{2, 1}));
    EXPECT_EQ(column(nb, 1), (std::vector<unsigned>{0, N}));
    EXPECT_EQ(column(nb, 2), (std::vector<unsigned>{N, 0}));
}

TEST(FeTypeSorter, CompanionWithOtherColumnCountIsRefused)
{
    auto M = connect(2, {0, 1, 2, N});
    auto nb = connect(1, {0, 1, 1});
    dense1D<unsigned, 8> sizes, ends, new_indices;
    EXPECT_EQ(sort_elfes(M, nb, sizes, ends, new_indices), -1);
    EXPECT_EQ(column(M, 1), (std::vector<unsigned>{2, N}));
    EXPECT_EQ(nb.cols(), 3u);
}

TEST(FeTypeSorter, FailedAllocationLeavesMatrixUntouched)
{
    auto M = connect(2, {0, N, 1, 2});
    dense1D<unsigned, 8> sizes, ends, new_indices;
    test_alloc::failing_scope guard(0);
    EXPECT_EQ(sort_elfes(M, sizes, ends, new_indices), -199);
    EXPECT_TRUE(sizes.empty());
    EXPECT_EQ(column(M, 0), (std::vector<unsigned>{0, N}));
}
