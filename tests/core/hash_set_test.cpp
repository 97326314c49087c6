#include "core/hash_set.h"

#include <gtest/gtest.h>

#include <random>
#include <unordered_set>
#include <vector>

namespace {

// Dense keys share pages, strided ones take a page each; a mixed insert/erase stream checks that
// removing an emptied page never loses a page that sits behind it in its probe run.
TEST(HashSet, RandomInsertEraseAgreesWithStandardSet)
{
    std::mt19937 gen(7);
    for (unsigned stride : {1u, 3u, 64u, 1u << 20}) {
        qv7::hash_set<unsigned> s;
        std::unordered_set<unsigned> ref;
        for (int step = 0; step < 60000; ++step) {
            unsigned key = gen() % 500 == 0 ? 0xFFFFFFFFu : (gen() % 5000) * stride;
            if (gen() % 3 == 0)
                ASSERT_EQ(s.erase(key), ref.erase(key) == 1) << stride;
            else
                ASSERT_EQ(s.insert(key), ref.insert(key).second) << stride;
        }
        ASSERT_EQ(s.size(), ref.size());
        for (unsigned k = 0; k < 5000; ++k) ASSERT_EQ(s.contains(k * stride), ref.count(k * stride) == 1);
        s.clear();
        std::vector<unsigned> again{3, 9, 3, 0xFFFFFFFFu};
        std::copy(again.begin(), again.end(), qv7::hash_inserter(s));
        EXPECT_EQ(s.size(), 3u);
    }
}

}  // namespace
