#include "search/rand_gen.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using qv7::rand_gen;

TEST(RandGen, FirstDrawsOfSeedOne)
{
    rand_gen gen(1);
    EXPECT_EQ(gen(), 1791095845u);
    EXPECT_EQ(gen(), 4282876139u);
    EXPECT_EQ(gen(), 3093770124u);
}

TEST(RandGen, FollowsTheReferenceStreamAcrossSeveralTwists)
{
    for (unsigned seed : {1u, 5489u, 0u, 0xFFFFFFFFu}) {
        rand_gen gen(seed);
        std::mt19937 reference(seed);
        for (int i = 0; i < 3 * 624 + 7; ++i) ASSERT_EQ(gen(), reference()) << "seed " << seed << " draw " << i;
    }
}

TEST(RandGen, BoundedDrawIsTheDrawModuloTheBound)
{
    rand_gen gen(1);
    EXPECT_EQ(gen(1000ul), 1791095845ul % 1000);
    EXPECT_EQ(gen(7ul), 4282876139ul % 7);
}

TEST(RandGen, CopyContinuesFromTheSamePlace)
{
    rand_gen a(1);
    for (int i = 0; i < 700; ++i) a();
    rand_gen b(a);
    rand_gen c(9);
    c = a;
    for (int i = 0; i < 1000; ++i) {
        std::uint32_t x = a();
        ASSERT_EQ(b(), x);
        ASSERT_EQ(c(), x);
    }
}

TEST(RandomShuffle, ThreeElementsWithSeedOne)
{
    // Draws 1791095845 % 3 = 1 and 4282876139 % 2 = 1: swap(0, 1), then swap(1, 2).
    std::vector<char> v{'a', 'b', 'c'};
    rand_gen gen(1);
    qv7::random_shuffle(v.begin(), v.end(), gen);
    EXPECT_EQ(v, (std::vector<char>{'b', 'c', 'a'}));
}

TEST(RandomShuffle, DrawsForEveryPositionButTheLast)
{
    std::vector<int> v(10);
    rand_gen gen(1), counter(1);
    qv7::random_shuffle(v.begin(), v.end(), gen);
    for (int i = 0; i < 9; ++i) counter();
    EXPECT_EQ(gen(), counter());
}

TEST(RandomShuffle, ShortRangesAreLeftAloneWithoutDrawing)
{
    std::vector<int> v{42};
    rand_gen gen(1);
    qv7::random_shuffle(v.begin(), v.end(), gen);
    qv7::random_shuffle(v.begin(), v.begin(), gen);
    EXPECT_EQ(v[0], 42);
    EXPECT_EQ(gen(), 1791095845u);
}
