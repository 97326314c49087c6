#include "metrics/dichotomic_min.h"
#include "metrics/shock_queue.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

TEST(ShockQueue, EqualPrioritiesLeaveInTheOrderOfTheHeapRules)
{
    // Pushes A 1, B 1, C 2, D 1 give the array C B A D; popping C moves B up and D into its
    // place (an equal child moves up), so B D A follow.
    qv7::__shock_queue q;
    std::string names = "ABCD";
    double priority[] = {1, 1, 2, 1};
    for (unsigned k = 0; k < 4; ++k) ASSERT_TRUE(q.push(priority[k], 0, k, 0));
    std::string popped;
    while (!q.empty()) popped += names[q.pop().words[1]];
    EXPECT_EQ(popped, "CBDA");
    EXPECT_EQ(qv7::__shock_queue::priority_of(1e300), FLT_MAX);
}

struct parabola {
    using domain_type = double;
    using range_type = double;
    double centre;
    int calls = 0;
    double operator()(double t)
    {
        ++calls;
        return (t - centre) * (t - centre);
    }
};

TEST(DichotomicMin, FindsInnerMinimumAndEndMinimum)
{
    for (double centre : {0.3, 0.71, -2.0, 5.0}) {
        parabola f{centre};
        double lo = 0, x = 0, hi = 1, fx = 0;
        qv7::dichotomic_min(lo, x, hi, f, std::less<double>(), 0, 0.001, fx);
        double expected = std::min(1.0, std::max(0.0, centre));
        EXPECT_NEAR(x, expected, 0.001) << centre;
        EXPECT_EQ(fx, (x - centre) * (x - centre));
        EXPECT_LT(f.calls, 40);
    }
}

}  // namespace
