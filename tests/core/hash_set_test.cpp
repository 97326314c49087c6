#include "core/hash_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <unordered_set>
#include <vector>

namespace {

using qv7::hash_map;
using qv7::hash_set;

TEST(HashSet, InsertReportsNewnessAndAllOnesIsAKeyLikeAnyOther)
{
    hash_set<unsigned> s;
    EXPECT_TRUE(s.insert(4));
    EXPECT_FALSE(s.insert(4));
    EXPECT_FALSE(s.contains(0xFFFFFFFFu));
    EXPECT_TRUE(s.insert(0xFFFFFFFFu));
    EXPECT_FALSE(s.insert(0xFFFFFFFFu));
    EXPECT_EQ(s.size(), 2u);
    EXPECT_TRUE(s.erase(0xFFFFFFFFu));
    EXPECT_FALSE(s.contains(0xFFFFFFFFu));
    EXPECT_EQ(s.size(), 1u);
    EXPECT_FALSE(s.erase(5));
}

// Strided keys crowd the same offsets within runs; a mixed insert/erase stream checks that
// backward-shift deletion never loses a key that sits behind the erased one.
TEST(HashSet, RandomInsertEraseAgreesWithStandardSet)
{
    std::mt19937 gen(7);
    for (unsigned stride : {1u, 16u, 1u << 20}) {
        hash_set<unsigned> s;
        std::unordered_set<unsigned> ref;
        for (int step = 0; step < 60000; ++step) {
            unsigned key = (gen() % 5000) * stride;
            if (gen() % 3 == 0) {
                ASSERT_EQ(s.erase(key), ref.erase(key) == 1) << stride;
            } else {
                ASSERT_EQ(s.insert(key), ref.insert(key).second) << stride;
            }
        }
        ASSERT_EQ(s.size(), ref.size());
        for (unsigned k = 0; k < 5000; ++k) ASSERT_EQ(s.contains(k * stride), ref.count(k * stride) == 1);
    }
}

TEST(HashSet, ClearEmptiesAndTheSetStaysUsable)
{
    hash_set<unsigned> s;
    for (unsigned k = 0; k < 1000; ++k) s.insert(k * 7);
    s.insert(0xFFFFFFFFu);
    s.clear();
    EXPECT_EQ(s.size(), 0u);
    EXPECT_FALSE(s.contains(7));
    EXPECT_FALSE(s.contains(0xFFFFFFFFu));
    EXPECT_TRUE(s.insert(7));
    s.reserve(100000);
    EXPECT_TRUE(s.contains(7));
}

TEST(HashSet, InsertIteratorFeedsTheSet)
{
    hash_set<unsigned> s;
    std::vector<unsigned> v{3, 9, 3, 0xFFFFFFFFu, 9};
    std::copy(v.begin(), v.end(), qv7::hash_inserter(s));
    EXPECT_EQ(s.size(), 3u);
    EXPECT_TRUE(s.contains(3) && s.contains(9) && s.contains(0xFFFFFFFFu));
}

TEST(HashMap, SixtyFourBitKeysKeepTheLastAssignedValue)
{
    hash_map<std::uint64_t, unsigned> m;
    std::uint64_t all_ones = ~std::uint64_t(0);
    EXPECT_EQ(m.find(all_ones), nullptr);
    EXPECT_TRUE(m.insert_or_assign(all_ones, 1));
    EXPECT_FALSE(m.insert_or_assign(all_ones, 2));
    for (std::uint64_t k = 0; k < 3000; ++k) m.insert_or_assign(k << 33, unsigned(k));
    for (std::uint64_t k = 0; k < 3000; ++k) {
        ASSERT_NE(m.find(k << 33), nullptr);
        ASSERT_EQ(*m.find(k << 33), unsigned(k));
    }
    EXPECT_EQ(*m.find(all_ones), 2u);
    EXPECT_EQ(m.find(1), nullptr);
    EXPECT_EQ(m.size(), 3001u);
}

}  // namespace
