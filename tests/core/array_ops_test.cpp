#include "tessarium/array_ops.h"

#include "support/failing_alloc.h"

#include <gtest/gtest.h>

using namespace qv7;

TEST(MatvecPushBack, GrowsByColumnsAndRefusesOtherLengths)
{
    dense2D<unsigned> M;
    ASSERT_TRUE(matvec::push_back(vector_fixed<unsigned, 3>{1, 2, 3}, M));
    EXPECT_EQ(M.rows(), 3u);
    EXPECT_EQ(M.cols(), 1u);
    EXPECT_GE(M.capacity() / M.ld(), 4u);
    EXPECT_FALSE(matvec::push_back(vector_fixed<unsigned, 2>{1, 2}, M));
    EXPECT_FALSE(matvec::push_back(dense1D<unsigned, 8>(), M));
    EXPECT_EQ(M.cols(), 1u);

    std::size_t reallocations = 0;
    auto* block = M.storage();
    for (unsigned j = 1; j < 1000; ++j) {
        ASSERT_TRUE(matvec::push_back(vector_fixed<unsigned, 3>{j, j + 1, j + 2}, M));
        if (M.storage() != block) ++reallocations, block = M.storage();
    }
    EXPECT_LE(reallocations, 10u);  // amortised by doubling
    EXPECT_EQ(M(2, 999), 1001u);
    EXPECT_EQ(M(0, 0), 1u);

    dense2D<double> E;
    EXPECT_TRUE(matvec::push_back(dense1D<double, 8>(), E));
    EXPECT_TRUE(E.empty());
    dense1D<double, 8> v(2, 0.5);
    ASSERT_TRUE(matvec::push_back(v, E));
    EXPECT_EQ(E(1, 0), 0.5);

    test_alloc::failing_scope fail;
    while (M.cols() < M.capacity() / M.ld()) ASSERT_TRUE(matvec::push_back(vector_fixed<unsigned, 3>{}, M));
    std::size_t cols = M.cols();
    EXPECT_FALSE(matvec::push_back(vector_fixed<unsigned, 3>{}, M));
    EXPECT_EQ(M.cols(), cols);
}

TEST(MatmatPushBack, AppendsColumnsInEveryForm)
{
    dense2D<unsigned> A;
    A.resize(2, 3);
    for (unsigned j = 0; j < 3; ++j) A(0, j) = j, A(1, j) = 10 + j;

    dense2D<unsigned> B;
    ASSERT_TRUE(matmat::push_back(A, B));
    ASSERT_TRUE(matmat::push_back(A, 1, B));
    dense1D<unsigned, 8> pick;
    pick.push_back(2);
    pick.push_back(0);
    ASSERT_TRUE(matmat::push_back(A, pick, B));
    ASSERT_EQ(B.cols(), 6u);
    unsigned const expected_row0[6] = {0, 1, 2, 1, 2, 0};
    for (unsigned j = 0; j < 6; ++j) {
        EXPECT_EQ(B(0, j), expected_row0[j]);
        EXPECT_EQ(B(1, j), 10 + expected_row0[j]);
    }

    ASSERT_TRUE(matmat::push_back(B, B));  // appending a matrix to itself
    EXPECT_EQ(B.cols(), 12u);
    EXPECT_EQ(B(1, 11), 10u);

    // Empty index list: nothing added, but the rows are raised to those of A.
    dense2D<unsigned> tall;
    tall.resize(3, 1, 7u);
    ASSERT_TRUE(matmat::push_back(tall, dense1D<unsigned, 8>(), A));
    EXPECT_EQ(A.rows(), 3u);
    EXPECT_EQ(A.cols(), 3u);
    EXPECT_EQ(A(1, 2), 12u);

    // A view with fewer rows than ld goes column by column.
    dense2D<unsigned> top = B.submatrix(0, 3, 1);
    dense2D<unsigned> C;
    ASSERT_TRUE(matmat::push_back(top, C));
    EXPECT_EQ(C.rows(), 1u);
    EXPECT_EQ(C(0, 2), 2u);
}

TEST(VecvecPushBack, AppendsAndKeepsTheOddFailure)
{
    dense1D<unsigned, 8> a(3, 1u), b(2, 2u);
    ASSERT_TRUE(vecvec::push_back(b, a));
    ASSERT_EQ(a.size(), 5u);
    EXPECT_EQ(a[4], 2u);
    ASSERT_TRUE(vecvec::push_back(a, a));
    EXPECT_EQ(a.size(), 10u);
    EXPECT_EQ(a[9], 2u);

    // The generous enlargement fails, the exact sizing that follows succeeds: the size grows,
    // nothing is copied, and the result is false.
    dense1D<unsigned long, 8> x(2, 1ul), y(40, 3ul);
    test_alloc::fail_at(0);
    EXPECT_FALSE(vecvec::push_back(y, x));
    test_alloc::reset();
    EXPECT_EQ(x.size(), 42u);
    EXPECT_EQ(x[0], 1ul);
}

TEST(MatscalAddAndRank2, HonourLeadingDimensionAndSegmentLength)
{
    dense2D<unsigned> M;
    M.resize(3, 2, 5u);
    M(2, 1) = 0xFFFFFFFFu;
    M.resize(2, 2);  // ld 3: the hidden row must not change
    matscal::add(1u, M);
    M.resize(3, 2);
    EXPECT_EQ(M(1, 1), 6u);
    EXPECT_EQ(M(2, 1), 0xFFFFFFFFu);
    matscal::add(1u, M);
    EXPECT_EQ(M(2, 1), 0u);  // wraps

    dense2D<double> pos;  // a 2D node feeding a 3-row matrix leaves the last row alone
    pos.resize(2, 1, 2.0);
    matrix_fixed<double, 3, 2> J{};
    matvec::rank2(0.5, pos.segment(0), vector_fixed<double, 2>{1.0, -2.0}, J);
    EXPECT_EQ(J(1, 0), 1.0);
    EXPECT_EQ(J(0, 1), -2.0);
    EXPECT_EQ(J(2, 0) + J(2, 1), 0.0);
}
