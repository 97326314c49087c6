#include "tessarium/dense2D.h"
#include "tessarium/dynamic_array.h"

#include "support/failing_alloc.h"

#include <gtest/gtest.h>

using namespace qv7;

namespace {

dense2D<unsigned> numbered(std::size_t rows, std::size_t cols)
{
    dense2D<unsigned> m;
    m.resize(rows, cols);
    for (std::size_t j = 0; j < cols; ++j)
        for (std::size_t i = 0; i < rows; ++i) m(i, j) = unsigned(10 * j + i);
    return m;
}

}  // namespace

TEST(Dense2D, EmptyShapesAreZeroByZeroAndKeepTheirStorage)
{
    dense2D<double> m;
    ASSERT_TRUE(m.resize(3, 0));
    EXPECT_EQ(m.rows() + m.cols() + m.ld(), 0u);
    ASSERT_TRUE(m.resize(4, 5));
    auto* block = m.storage();
    ASSERT_TRUE(m.resize(0, 7));
    EXPECT_EQ(m.rows() + m.cols() + m.ld() + m.size(), 0u);
    ASSERT_TRUE(m.resize(2, 3));  // reuses the storage with the new leading dimension
    EXPECT_EQ(m.storage(), block);
    EXPECT_EQ(m.ld(), 2u);
}

TEST(Dense2D, InPlaceAndReallocatingResize)
{
    dense2D<unsigned> m = numbered(4, 3);
    dense2D<unsigned> shared = m;
    ASSERT_TRUE(m.resize(2, 3));  // in place: ld stays, a sharing handle sees writes
    EXPECT_EQ(m.ld(), 4u);
    m(0, 0) = 500;
    EXPECT_EQ(shared(0, 0), 500u);
    ASSERT_TRUE(m.resize(4, 2));  // the hidden rows come back with their values
    EXPECT_EQ(m(3, 1), 13u);

    ASSERT_TRUE(m.resize(5, 2));  // past ld: new block, ld = rows, overlap kept
    EXPECT_NE(m.storage(), shared.storage());
    EXPECT_EQ(m.ld(), 5u);
    EXPECT_EQ(m(3, 1), 13u);
    m(0, 0) = 1;
    EXPECT_EQ(shared(0, 0), 500u);
    EXPECT_EQ(shared.cols(), 3u);
}

TEST(Dense2D, ResizeWithFillSetsOnlyNewElements)
{
    dense2D<unsigned> m = numbered(2, 2);
    ASSERT_TRUE(m.resize(3, 4, 99u));
    for (std::size_t j = 0; j < 4; ++j)
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_EQ(m(i, j), (i < 2 && j < 2) ? unsigned(10 * j + i) : 99u) << i << "," << j;
    // Rows shown again after an in-place shrink are new to this call and get the fill.
    dense2D<unsigned> n = numbered(4, 2);
    n.resize(2, 2);
    ASSERT_TRUE(n.resize(4, 2, 5u));
    EXPECT_EQ(n(3, 1), 5u);
    EXPECT_EQ(n(1, 1), 11u);
    // More rows and fewer columns at once: only the kept column is filled, nothing beyond it.
    dense2D<unsigned> w = numbered(2, 3);
    ASSERT_TRUE(w.resize(4, 1, 7u));
    EXPECT_EQ(w(0, 0), 0u);
    EXPECT_EQ(w(3, 0), 7u);
}

TEST(Dense2D, CopyOnSharedBlockGivesIndependentArrays)
{
    dense2D<unsigned> src = numbered(4, 3);
    src.resize(2, 3);  // ld 4 > rows 2: the copy walks columns
    dense2D<unsigned> dst = src;
    auto* block = src.storage();
    ASSERT_TRUE(dst.copy(src));
    EXPECT_EQ(src.storage(), block);
    EXPECT_EQ(dst.ld(), 2u);
    EXPECT_EQ(dst(1, 2), 21u);
    dst(1, 2) = 0;
    EXPECT_EQ(src(1, 2), 21u);
}

TEST(Dense2D, ViewsWriteThroughAndSeeOnlyBehindTheirFirst)
{
    dense2D<unsigned> m = numbered(3, 5);
    dense2D<unsigned> v = m.submatrix(1, 3, 2);
    EXPECT_EQ(v.ld(), 3u);
    EXPECT_EQ(v.size(), 8u);
    EXPECT_EQ(v(1, 2), 31u);
    v(0, 0) = 1000;
    EXPECT_EQ(m(0, 1), 1000u);

    // The last columns of a full block: a view has no room for more columns than it shows.
    dense2D<unsigned> tail = m.submatrix(3, 2, 3);
    EXPECT_LT(tail.capacity() / tail.ld(), 3u);

    dense2D<unsigned> none = m.submatrix(2, 0, 3);
    EXPECT_EQ(none.rows() + none.cols() + none.ld() + none.size(), 0u);
    EXPECT_EQ(m.storage()->refcount.load(), 4);
    EXPECT_EQ(m.submatrix(1, 2, 3).flat()[5], 22u);
}

TEST(Dense2D, FailedReallocationLeavesMatrixUnchanged)
{
    dense2D<double> m;
    m.resize(2, 2, 1.5);
    long before = test_alloc::live_blocks();
    {
        test_alloc::failing_scope fail;
        EXPECT_FALSE(m.resize(20, 20, 0.0));
        dense2D<double> other;
        EXPECT_FALSE(other.copy(m));
    }
    EXPECT_EQ(m.cols(), 2u);
    EXPECT_EQ(m(1, 1), 1.5);
    EXPECT_EQ(test_alloc::live_blocks(), before);
    EXPECT_FALSE(m.resize(std::size_t(1) << 40, std::size_t(1) << 40));  // overflowing shape
}

TEST(DynamicArray, AppendsRecordsWithDoublingColumns)
{
    dynamic_array<unsigned, 3> slots;
    for (unsigned s = 0; s < 20; ++s) {
        unsigned record[3] = {s, s + 1, s + 2};
        ASSERT_TRUE(slots.__construct(s, record));
    }
    EXPECT_EQ(slots.size(), 20u);
    EXPECT_EQ(slots[19][2], 21u);
    EXPECT_EQ(slots[7][0], 7u);

    unsigned record[3] = {1, 2, 3};
    test_alloc::failing_scope fail;
    while (slots.items.capacity() / 3 > slots.size()) ASSERT_TRUE(slots.__construct(slots.size(), record));
    EXPECT_FALSE(slots.__construct(slots.size(), record));
}
