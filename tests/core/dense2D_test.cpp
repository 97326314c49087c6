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

TEST(Dense2D, EmptyShapesAreAlwaysZeroByZero)
{
    dense2D<double> m;
    ASSERT_TRUE(m.resize(3, 0));
    EXPECT_EQ(m.rows(), 0u);
    EXPECT_EQ(m.cols(), 0u);
    EXPECT_EQ(m.ld(), 0u);

    ASSERT_TRUE(m.resize(4, 5));
    std::size_t capacity = m.capacity();
    auto* block = m.storage();
    ASSERT_TRUE(m.resize(0, 7));
    EXPECT_EQ(m.rows() + m.cols() + m.ld() + m.size(), 0u);
    EXPECT_EQ(m.storage(), block);
    EXPECT_EQ(m.capacity(), capacity);
    ASSERT_TRUE(m.resize(2, 3));  // reuses the storage with the new leading dimension
    EXPECT_EQ(m.storage(), block);
    EXPECT_EQ(m.ld(), 2u);
    EXPECT_EQ(m.size(), 6u);
}

TEST(Dense2D, InPlaceResizeKeepsLeadingDimensionAndValues)
{
    dense2D<unsigned> m = numbered(4, 3);
    auto* block = m.storage();
    ASSERT_TRUE(m.resize(2, 3));
    EXPECT_EQ(m.storage(), block);
    EXPECT_EQ(m.ld(), 4u);
    EXPECT_EQ(m.size(), 12u);
    EXPECT_EQ(m(1, 2), 21u);
    ASSERT_TRUE(m.resize(4, 2));  // rows come back with their old values
    EXPECT_EQ(m(3, 1), 13u);
    EXPECT_EQ(m(3, 0), 3u);

    // Growing past the leading dimension reallocates with ld = rows and keeps the overlap.
    ASSERT_TRUE(m.resize(5, 2));
    EXPECT_NE(m.storage(), block);
    EXPECT_EQ(m.ld(), 5u);
    EXPECT_EQ(m(3, 1), 13u);
    EXPECT_EQ(m(0, 1), 10u);
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
}

TEST(Dense2D, SharedHandlesFollowInPlaceButNotReallocatingResize)
{
    dense2D<unsigned> b = numbered(3, 3);
    dense2D<unsigned> a = b;
    a.resize(3, 2);  // in place
    a(0, 0) = 500;
    EXPECT_EQ(b(0, 0), 500u);

    a.resize(6, 6);  // reallocates: b keeps the old block and contents
    a(0, 0) = 1;
    EXPECT_EQ(b(0, 0), 500u);
    EXPECT_EQ(b.cols(), 3u);
    EXPECT_EQ(b.storage()->refcount.load(), 1);
}

TEST(Dense2D, CopyOnSharedBlockGivesIndependentArrays)
{
    dense2D<unsigned> src = numbered(4, 3);
    src.resize(2, 3);  // ld 4 > rows 2: the copy walks columns
    dense2D<unsigned> dst = src;
    auto* block = src.storage();
    ASSERT_TRUE(dst.copy(src));
    EXPECT_EQ(src.storage(), block);
    EXPECT_NE(dst.storage(), block);
    EXPECT_EQ(dst.ld(), 2u);
    EXPECT_EQ(dst(1, 2), 21u);
    dst(1, 2) = 0;
    EXPECT_EQ(src(1, 2), 21u);

    dense2D<unsigned> empty;
    ASSERT_TRUE(dst.copy(empty));
    EXPECT_TRUE(dst.empty());
}

TEST(Dense2D, ViewsWriteThroughAndSeeOnlyBehindTheirFirst)
{
    dense2D<unsigned> m = numbered(3, 5);
    dense2D<unsigned> v = m.submatrix(1, 3, 2);
    EXPECT_EQ(v.rows(), 2u);
    EXPECT_EQ(v.cols(), 3u);
    EXPECT_EQ(v.ld(), 3u);
    EXPECT_EQ(v.size(), 8u);
    EXPECT_EQ(v(1, 2), 31u);
    v(0, 0) = 1000;
    EXPECT_EQ(m(0, 1), 1000u);

    // The last columns of a full block: a view has no room for more columns than it shows.
    dense2D<unsigned> tail = m.submatrix(3, 2, 3);
    EXPECT_EQ(tail.capacity(), m.storage()->capacity - 9);
    EXPECT_LT(tail.capacity() / tail.ld(), 3u);

    dense2D<unsigned> none = m.submatrix(2, 0, 3);
    EXPECT_EQ(none.rows() + none.cols() + none.ld() + none.size(), 0u);
    EXPECT_EQ(m.storage()->refcount.load(), 4);

    // A full-height view is flat: its elements are one run.
    dense1D<unsigned, 8> flat = m.submatrix(1, 2, 3).flat();
    EXPECT_EQ(flat.size(), 6u);
    EXPECT_EQ(flat[5], 22u);
}

TEST(Dense2D, FailedReallocationLeavesMatrixUnchanged)
{
    dense2D<double> m;
    m.resize(2, 2, 1.5);
    long before = test_alloc::live_blocks();
    {
        test_alloc::failing_scope fail;
        EXPECT_FALSE(m.resize(20, 20));
        EXPECT_FALSE(m.resize(20, 20, 0.0));
        dense2D<double> other;
        EXPECT_FALSE(other.copy(m));
    }
    EXPECT_EQ(m.rows(), 2u);
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
        if (s == 0) {
            EXPECT_GE(slots.items.capacity() / 3, 8u);
        }
    }
    EXPECT_EQ(slots.size(), 20u);
    EXPECT_EQ(slots.items.rows(), 3u);
    EXPECT_EQ(slots[19][2], 21u);
    EXPECT_EQ(slots[7][0], 7u);
    EXPECT_TRUE(slots.free_slots.empty());

    unsigned record[3] = {1, 2, 3};
    test_alloc::failing_scope fail;
    while (slots.items.capacity() / 3 > slots.size()) ASSERT_TRUE(slots.__construct(slots.size(), record));
    EXPECT_FALSE(slots.__construct(slots.size(), record));
}
