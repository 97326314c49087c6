#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <utility>

using namespace qv7;

TEST(Dense1D, SizingConstructorsAllocateAtLeastTwo)
{
    dense1D<unsigned, 8> none(0);
    EXPECT_EQ(none.storage()->data, nullptr);
    EXPECT_EQ(none.storage()->capacity, 0u);
    EXPECT_EQ(none.size(), 0u);

    dense1D<double, 8> one(1);
    EXPECT_EQ(one.size(), 1u);
    EXPECT_GE(one.capacity(), 2u);

    dense1D<int, 8> filled(5, -3);
    ASSERT_EQ(filled.size(), 5u);
    for (int v : filled) EXPECT_EQ(v, -3);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(filled.data()) % 8, 0u);
}

TEST(Dense1D, AppendsDoubleTheCapacity)
{
    // 8-byte elements get exactly what they ask for from an aligned allocator: 2, 4, 8, 16.
    dense1D<double, 8> a;
    std::vector<std::size_t> seen;
    for (int i = 0; i < 16; ++i) {
        ASSERT_TRUE(a.push_back(i));
        if (seen.empty() || seen.back() != a.capacity()) seen.push_back(a.capacity());
    }
    EXPECT_EQ(seen, (std::vector<std::size_t>{2, 4, 8, 16}));
    for (int i = 0; i < 16; ++i) EXPECT_EQ(a[i], i);

    // 4-byte elements keep the alignment slack: a request of n yields n + 1.
    dense1D<unsigned, 8> b;
    b.push_back(7);
    EXPECT_EQ(b.capacity(), 3u);

    ASSERT_TRUE(b.push_back_n(9, 10));
    ASSERT_EQ(b.size(), 11u);
    EXPECT_EQ(b[0], 7u);
    EXPECT_EQ(b[10], 9u);
}

TEST(Dense1D, PushBackOfOwnElementSurvivesGrowth)
{
    dense1D<unsigned, 8> a;
    a.push_back(41);
    a.push_back(42);
    a.push_back(43);
    while (a.size() < a.capacity()) a.push_back(0);
    ASSERT_TRUE(a.push_back(a[1]));  // forces a reallocation
    EXPECT_EQ(a[a.size() - 1], 42u);
}

TEST(Dense1D, SharingAndCopy)
{
    dense1D<unsigned, 8> a(4, 1u);
    dense1D<unsigned, 8> b = a;
    EXPECT_EQ(a.storage(), b.storage());
    EXPECT_EQ(a.storage()->refcount.load(), 2);
    b[0] = 5;
    EXPECT_EQ(a[0], 5u);  // no copy on write

    auto* old_block = a.storage();
    ASSERT_TRUE(b.copy(a));  // same block: b detaches first
    EXPECT_NE(b.storage(), old_block);
    EXPECT_EQ(a.storage(), old_block);
    b[1] = 9;
    EXPECT_EQ(a[1], 1u);
    EXPECT_EQ(b[0], 5u);

    a = a;  // self-assignment keeps the block alive
    EXPECT_EQ(a.storage()->refcount.load(), 1);

    b.clear();
    EXPECT_EQ(b.size(), 0u);
    EXPECT_GE(b.capacity(), 4u);
    b.clear_hard();
    EXPECT_EQ(b.capacity(), 0u);
}

TEST(Dense1D, HandleWithOffsetSeesOnlyWhatLiesBehindIt)
{
    dense1D<unsigned, 8> a(10);
    dense1D<unsigned, 8> tail(a.storage(), 0, 6);
    EXPECT_EQ(tail.capacity(), a.capacity() - 6);
    // A resize that fits keeps the block; one that does not regrows it for every handle.
    ASSERT_TRUE(tail.resize(3));
    EXPECT_EQ(tail.storage(), a.storage());
    tail[0] = 77;
    EXPECT_EQ(a[6], 77u);
    ASSERT_TRUE(tail.resize(100));
    EXPECT_EQ(a.storage(), tail.storage());
    EXPECT_EQ(a[6], 77u);  // kept: first + size of the asking handle
    EXPECT_GE(a.storage()->capacity, 106u);
}

TEST(Dense1D, AllocationFailureIsReportedNotThrown)
{
    long before = test_alloc::live_blocks();
    {
        test_alloc::failing_scope fail;
        dense1D<double, 8> a(100);
        EXPECT_EQ(a.size(), 0u);
        EXPECT_FALSE(a.push_back(1.0));
        EXPECT_FALSE(a.push_back_n(1.0, 3));
        EXPECT_EQ(a.size(), 0u);
        EXPECT_FALSE(a.resize(5));
        EXPECT_EQ(a.size(), 0u);
    }
    dense1D<double, 8> a(4, 2.0);
    dense1D<double, 8> big(50, 1.0);
    {
        test_alloc::failing_scope fail;
        // resize takes what fits and reports false.
        EXPECT_FALSE(a.resize(10));
        EXPECT_EQ(a.size(), a.capacity());
        EXPECT_EQ(a[0], 2.0);
        EXPECT_FALSE(a.copy(big));
    }
    EXPECT_TRUE(a.copy(big));
    EXPECT_EQ(a.size(), 50u);
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
        EXPECT_NE(a.data(), outside);
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
    ASSERT_TRUE(list.push_back(m));
    EXPECT_EQ(m.storage()->refcount.load(), 2);
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(list.push_back(m));  // several regrowths
    EXPECT_EQ(m.storage()->refcount.load(), 22);
    for (std::size_t s = list.size(); s < list.capacity(); ++s) {
        EXPECT_NE(list.storage()->data[s].storage(), nullptr);
        EXPECT_TRUE(list.storage()->data[s].empty());
    }
    EXPECT_EQ(list[20](1, 1), 7u);
    list.clear_hard();
    EXPECT_EQ(m.storage()->refcount.load(), 1);

    // A failed regrowth of handles leaves the array as it was, and leaks nothing.
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

TEST(Dense1D, PairsAreMovedAsWords)
{
    dense1D<std::pair<unsigned long, unsigned long>, 8> a;
    for (unsigned long i = 0; i < 9; ++i) a.push_back({i, 2 * i});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.data()) % 16, 0u);
    EXPECT_EQ(a[8].second, 16u);
}
