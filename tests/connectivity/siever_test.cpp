#include "connectivity/siever.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <vector>

using qv7::siever;

namespace {

std::vector<unsigned long> chain(siever& s, unsigned long bucket)
{
    std::vector<unsigned long> values;
    for (std::size_t pos = siever::head(bucket); pos != siever::chain_end; pos = siever::next(s.slots(), pos))
        values.push_back(s.slots()[pos]);
    return values;
}

}  // namespace

TEST(Siever, ResizeRoundsBucketsToPowersOfTwo)
{
    siever s;
    ASSERT_TRUE(s.resize(0, 0));
    EXPECT_EQ(s.bucket_count(), 1u);
    EXPECT_EQ(s.mask(), 0u);
    ASSERT_TRUE(s.resize(10, 1));
    EXPECT_EQ(s.bucket_count(), 1u);
    ASSERT_TRUE(s.resize(10, 33));
    EXPECT_EQ(s.bucket_count(), 64u);
    EXPECT_EQ(s.mask(), 63u);
    EXPECT_EQ(s.entry_count(), 0u);
    for (unsigned long b = 0; b < 64; ++b) EXPECT_EQ(chain(s, b), std::vector<unsigned long>{siever::vacant});
    // Room for the expected entries as pairs, or for the heads if there are more buckets.
    ASSERT_TRUE(s.resize(1000, 16));
    EXPECT_GE(s.memory(), 2000 * sizeof(unsigned long));
    ASSERT_TRUE(s.resize(10, 4096));
    EXPECT_GE(s.memory(), 8192 * sizeof(unsigned long));
}

TEST(Siever, ChainsKeepInsertionOrderAcrossGrowth)
{
    siever s;
    ASSERT_TRUE(s.resize(2, 4));
    std::vector<unsigned long> in_bucket1, in_bucket3;
    for (unsigned long v = 0; v < 200; ++v) {
        unsigned long bucket = v % 3 == 0 ? 1 : 3;
        ASSERT_TRUE(s.insert(bucket, v));
        (bucket == 1 ? in_bucket1 : in_bucket3).push_back(v);
    }
    EXPECT_EQ(s.entry_count(), 200u);
    EXPECT_EQ(chain(s, 1), in_bucket1);
    EXPECT_EQ(chain(s, 3), in_bucket3);
    EXPECT_EQ(chain(s, 0), std::vector<unsigned long>{siever::vacant});
    // Links are distances in array elements: value 2 went to the first pair behind the four heads
    // (element 8), value 3 to the next one.
    EXPECT_EQ(s.slots()[siever::head(3) + 1], 8u - siever::head(3));
    EXPECT_EQ(s.slots()[siever::head(1) + 1], 10u - siever::head(1));
}

TEST(Siever, FailuresAreReported)
{
    siever s;
    {
        test_alloc::failing_scope none(0);
        EXPECT_FALSE(s.resize(100000, 200000));
    }
    EXPECT_EQ(s.bucket_count(), 0u);
    ASSERT_TRUE(s.resize(1, 2));
    ASSERT_TRUE(s.insert(0, 7));
    ASSERT_TRUE(s.insert(0, 8));
    bool dropped = false;
    {
        test_alloc::failing_scope none(0);
        for (unsigned long v = 9; v < 20 && !dropped; ++v) dropped = !s.insert(0, v);
    }
    ASSERT_TRUE(dropped);
    std::vector<unsigned long> kept = chain(s, 0);
    EXPECT_EQ(kept.size(), s.entry_count());
    EXPECT_EQ(kept[0], 7u);
    EXPECT_EQ(kept[1], 8u);
}

TEST(Siever, NextPrime)
{
    EXPECT_EQ(qv7::next_prime(0), 53u);
    EXPECT_EQ(qv7::next_prime(53), 53u);
    EXPECT_EQ(qv7::next_prime(54), 97u);
    EXPECT_EQ(qv7::next_prime(786434), 1572869u);
    EXPECT_EQ(qv7::next_prime(4294967291ul), 4294967291u);
    EXPECT_EQ(qv7::next_prime(1ul << 40), 4294967291u);
}
