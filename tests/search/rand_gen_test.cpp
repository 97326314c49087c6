#include "search/rand_gen.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using qv7::rand_gen;

TEST(RandGen, FollowsTheReferenceStreamAcrossSeveralTwists)
{
    rand_gen one(1);
    EXPECT_EQ(one(), 1791095845u);
    EXPECT_EQ(one(), 4282876139u);
    EXPECT_EQ(one(), 3093770124u);
    std::mt19937 fourth(1);
    fourth.discard(3);
    EXPECT_EQ(one(10ul), fourth() % 10);
    for (unsigned seed : {1u, 5489u, 0xFFFFFFFFu}) {
        rand_gen gen(seed);
        std::mt19937 reference(seed);
        for (int i = 0; i < 3 * 624 + 7; ++i) ASSERT_EQ(gen(), reference()) << "seed " << seed << " draw " << i;
        rand_gen copy(gen);
        ASSERT_EQ(copy(), reference());
    }
}

TEST(RandomShuffle, DrawsOncePerPositionButTheLast)
{
    // Draws 1791095845 % 3 = 1 and 4282876139 % 2 = 1: swap(0, 1), then swap(1, 2).
    std::vector<char> v{'a', 'b', 'c'};
    rand_gen gen(1);
    qv7::random_shuffle(v.begin(), v.end(), gen);
    EXPECT_EQ(v, (std::vector<char>{'b', 'c', 'a'}));
    EXPECT_EQ(gen(), 3093770124u);
    qv7::random_shuffle(v.begin(), v.begin() + 1, gen);  // one element: no draw
    std::mt19937 reference(1);
    reference.discard(3);
    EXPECT_EQ(gen(), reference());
}
