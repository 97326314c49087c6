#include "search/rand_gen.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using qv7::rand_gen;

TEST(RandGen, FollowsTheReferenceStreamAcrossSeveralTwists)
{
    for (unsigned seed : {1u, 5489u, 0xFFFFFFFFu}) {
        rand_gen gen(seed);
        std::mt19937 reference(seed);
        for (int i = 0; i < 3 * 624 + 7; ++i) ASSERT_EQ(gen(), reference()) << "seed " << seed << " draw " << i;
        rand_gen copy(gen);
        unsigned long next = reference();
        EXPECT_EQ(copy(), next);
        EXPECT_EQ(gen(10ul), next % 10);
    }
}

TEST(RandomShuffle, DrawsOncePerPositionButTheLast)
{
    // Seed 1 draws 1791095845 % 3 = 1 and 4282876139 % 2 = 1: swap(0, 1), then swap(1, 2).
    std::vector<char> v{'a', 'b', 'c'};
    rand_gen gen(1);
    qv7::random_shuffle(v.begin(), v.end(), gen);
    EXPECT_EQ(v, (std::vector<char>{'b', 'c', 'a'}));
    qv7::random_shuffle(v.begin(), v.begin() + 1, gen);  // one element: no draw
    std::mt19937 reference(1);
    reference.discard(2);
    EXPECT_EQ(gen(), reference());
}
