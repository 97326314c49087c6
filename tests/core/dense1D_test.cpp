#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include "support/failing_alloc.h"

#include <gtest/gtest.h>

using namespace qv7;

TEST(Dense1D, SizingAndDoublingGrowth)
{
    dense1D<unsigned, 8> none(0);
    EXPECT_EQ(none.storage()->data, nullptr);
    EXPECT_EQ(none.storage()->capacity, 0u);
    EXPECT_GE((dense1D<double, 8>(1).capacity()), 2u);

    // 8-byte elements get exactly what they ask for from an aligned allocator: 2, 4, 8, 16.
    dense1D<double, 8> a;
    std::vector<std::size_t> seen;
    for (int i = 0; i < 16; ++i) {
        ASSERT_TRUE(a.push_back(i));
        if (seen.empty() || seen.back() != a.capacity()) seen.push_back(a.capacity());
    }
    EXPECT_EQ(seen, (std::vector<std::size_t>{2, 4, 8, 16}));
    ASSERT_TRUE(a.push_back(a[3]));  // an element of the array itself, across a regrowth
    EXPECT_EQ(a[16], 3.0);

    // 4-byte elements keep the alignment slack: a request of n yields n + 1.
    dense1D<unsigned, 8> b(3, 7u);
    EXPECT_EQ(b.capacity(), 4u);
    ASSERT_TRUE(b.push_back_n(9, 10));
    EXPECT_EQ(b.size(), 13u);
    EXPECT_EQ(b[2], 7u);
    EXPECT_EQ(b[12], 9u);
}

TEST(Dense1D, SharingCopyAndOffsetHandles)
{
    dense1D<unsigned, 8> a(4, 1u);
    dense1D<unsigned, 8> b = a;
    b[0] = 5;
    EXPECT_EQ(a[0], 5u);  // shared, no copy on write
    auto* old_block = a.storage();
    ASSERT_TRUE(b.copy(a));  // same block: b detaches first
    EXPECT_EQ(a.storage(), old_block);
    b[1] = 9;
    EXPECT_EQ(a[1], 1u);
    a = a;
    EXPECT_EQ(a.storage()->refcount.load(), 1);

    // A handle with an offset sees only what lies behind its first element; its regrowth keeps
    // first + size elements for every handle on the block.
    dense1D<unsigned, 8> c(10);
    dense1D<unsigned, 8> tail(c.storage(), 0, 6);
    EXPECT_EQ(tail.capacity(), c.capacity() - 6);
    ASSERT_TRUE(tail.resize(3));
    tail[0] = 77;
    ASSERT_TRUE(tail.resize(100));
    EXPECT_EQ(c.storage(), tail.storage());
    EXPECT_EQ(c[6], 77u);

    b.clear_hard();
    EXPECT_EQ(b.capacity(), 0u);
}

TEST(Dense1D, AllocationFailureIsReportedNotThrown)
{
    long before = test_alloc::live_blocks();
    dense1D<double, 8> a(4, 2.0), big(50, 1.0);
    {
        test_alloc::failing_scope fail;
        EXPECT_EQ((dense1D<double, 8>(100).size()), 0u);
        EXPECT_FALSE(a.resize(10));  // takes what fits
        EXPECT_EQ(a.size(), a.capacity());
        EXPECT_EQ(a[0], 2.0);
        a.resize(4);
        EXPECT_FALSE(a.push_back_n(1.0, 20));
        EXPECT_EQ(a.size(), 4u);
        EXPECT_FALSE(a.copy(big));
    }
    EXPECT_TRUE(a.copy(big));
    a.clear_hard();
    big.clear_hard();
    EXPECT_EQ(test_alloc::live_blocks(), before);
}

TEST(Dense1D, BlockThatDoesNotOwnItsStorageIsNeverFreed)
{
    static unsigned outside[4] = {1, 2, 3, 4};
    long before = test_alloc::live_blocks();
    {
        dense1D<unsigned, 8> a;
        a.storage()->data = outside;
        a.storage()->capacity = 4;
        a.storage()->shift = vector_num<unsigned, 8>::not_owned;
        a.__set_size(4);
        ASSERT_TRUE(a.push_back(5));  // grows away from the outside array without freeing it
        EXPECT_EQ(a[0], 1u);
        EXPECT_EQ(a[4], 5u);
    }
    EXPECT_EQ(outside[3], 4u);
    EXPECT_EQ(test_alloc::live_blocks(), before);
}

TEST(Dense1D, ArrayOfMatricesKeepsLiveHandlesInEverySlot)
{
    dense1D<dense2D<unsigned>, 8> list;
    dense2D<unsigned> m;
    m.resize(2, 2, 7u);
    for (int i = 0; i < 21; ++i) ASSERT_TRUE(list.push_back(m));  // several regrowths
    EXPECT_EQ(m.storage()->refcount.load(), 22);
    for (std::size_t s = list.size(); s < list.capacity(); ++s) EXPECT_TRUE(list.storage()->data[s].empty());
    EXPECT_EQ(list[20](1, 1), 7u);
    list.clear_hard();
    EXPECT_EQ(m.storage()->refcount.load(), 1);

    long before = test_alloc::live_blocks();
    {
        dense1D<dense2D<unsigned>, 8> few;
        few.push_back(m);
        test_alloc::failing_scope fail;
        while (few.size() < few.capacity()) few.push_back(m);
        EXPECT_FALSE(few.push_back(m));
        EXPECT_EQ(few[0].storage(), m.storage());
    }
    EXPECT_EQ(test_alloc::live_blocks(), before);
}
