#include "metrics/dichotomic_min.h"
#include "metrics/shock_queue.h"
#include "support/failing_alloc.h"

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

#include "connectivity/test_meshes.h"
#include "tessarium/gradation.h"
#include "tessarium/metrics.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

using qv7::dense1D;
using qv7::dense2D;
using qv7::NONE_ID;
using qv7::tessarium::bound_metric_gradations;
using qv7::tessarium::bound_metric_variations;

dense2D<double> positions(std::vector<test_meshes::point> const& p, unsigned rows = 3)
{
    dense2D<double> pos;
    pos.resize(rows, p.size());
    for (std::size_t v = 0; v < p.size(); ++v)
        for (unsigned k = 0; k < rows; ++k) pos(k, v) = p[v][k];
    return pos;
}

dense2D<unsigned> edges(std::vector<std::pair<unsigned, unsigned>> const& e)
{
    dense2D<unsigned> c;
    c.resize(2, e.size());
    for (std::size_t k = 0; k < e.size(); ++k) c(0, k) = e[k].first, c(1, k) = e[k].second;
    return c;
}

dense1D<double, 8> sizes(std::vector<double> const& h)
{
    dense1D<double, 8> a(h.size());
    std::copy(h.begin(), h.end(), a.begin());
    return a;
}

dense1D<unsigned, 8> nodes(std::vector<unsigned> const& v)
{
    dense1D<unsigned, 8> a(v.size());
    std::copy(v.begin(), v.end(), a.begin());
    return a;
}

double distance(dense2D<double> const& pos, unsigned a, unsigned b)
{
    double s = 0;
    for (unsigned k = 0; k < pos.rows(); ++k) s += (pos(k, a) - pos(k, b)) * (pos(k, a) - pos(k, b));
    return std::sqrt(s);
}

TEST(BoundMetricVariations, TwoNodesMoveTheEndTheHeapGivesFirst)
{
    // Sizes 1 and 4 at distance 1, bound 1: t0 = 1 - 1/3, so a moved end lands at distance 1 of the other.
    auto pos = positions({{0, 0, 0}, {1, 0, 0}});
    struct row {
        int direction;
        double h0, h1;
    };
    for (row r : {row{0, 3, 4}, row{1, 3, 4}, row{-1, 1, 2}}) {
        auto h = sizes({1, 4});
        EXPECT_EQ(bound_metric_variations(pos, edges({{0, 1}}), qv7::ET_EDGE2, {}, true, r.direction, 1.0, h), 1);
        EXPECT_NEAR(h[0], r.h0, 1e-15) << r.direction;
        EXPECT_NEAR(h[1], r.h1, 1e-15) << r.direction;
    }
}

TEST(BoundMetricVariations, FrozenNeighbourLimitsTheMove)
{
    // Node 0 frozen at 1, node 1 free at 3 (variation 2 to node 0), node 2 free at 3.5, bound 1.
    // Node 1 can only shrink towards 0; the search over t in [0, 1/2] brings it to 2 within 0.001
    // in t, then node 2 follows to 1 above it.
    auto pos = positions({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    auto h = sizes({1, 3, 3.5});
    EXPECT_EQ(bound_metric_variations(pos, edges({{0, 1}, {1, 2}}), qv7::ET_EDGE2, nodes({0}), true, 0, 1.0, h), 2);
    EXPECT_EQ(h[0], 1);
    EXPECT_GE(h[1], 2 - 1e-12);
    EXPECT_LE(h[1], 2.002);
    EXPECT_NEAR(h[2] - h[1], 1, 1e-12);

    // Without excess towards the frozen node, the free node next to it is left alone.
    h = sizes({1, 1, 4});
    EXPECT_EQ(bound_metric_variations(pos, edges({{0, 1}, {1, 2}}), qv7::ET_EDGE2, nodes({0}), true, 0, 1.0, h), 1);
    EXPECT_EQ(h[1], 1);
    EXPECT_NEAR(h[2], 2, 1e-15);
}

TEST(BoundMetricGradations, RefusalsInOrder)
{
    auto pos = positions({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    auto tri = test_meshes::mesh{{}, {{0, 1, 2}}, 3}.connect();
    dense2D<double> pos5, pos4, tensors2;
    pos5.resize(5, 3, 0.0);
    pos4.resize(4, 3, 0.0);
    tensors2.resize(3, 3, 1.0);
    auto bad = test_meshes::mesh{{}, {{0, 1, 7}}, 3}.connect();
    auto h = sizes({1, 2, 3});
    auto short_h = sizes({1, 2});
    double inf = qv7::DBL_LIMIT;
    auto run = [&](dense2D<double> const& p, dense2D<unsigned> const& c, dense1D<unsigned, 8> const& list, double bound,
                   dense1D<double, 8>& m) {
        return bound_metric_gradations(p, c, qv7::ET_FACE_T3, list, true, 0, bound, m);
    };
    EXPECT_EQ(run(pos5, tri, {}, inf, h), 0);
    EXPECT_EQ(run(pos5, dense2D<unsigned>(), {}, -1, h), 0);
    EXPECT_EQ(run(pos4, tri, {}, 0.5, h), -1);
    EXPECT_EQ(run(pos, bad, {}, -1, h), -2);
    EXPECT_EQ(run(pos, tri, nodes({1, NONE_ID}), -1, h), -4);
    EXPECT_EQ(run(pos, tri, nodes({3}), -1, h), -4);
    EXPECT_EQ(run(pos, tri, {}, -1, h), -7);
    EXPECT_EQ(run(pos, tri, {}, 0.5, short_h), -8);
    EXPECT_EQ(bound_metric_gradations(pos, tri, qv7::ET_FACE_T3, {}, true, 0, 0.5, tensors2), -8);
    EXPECT_EQ(bound_metric_variations(pos, tri, qv7::ET_FACE_T3, {}, true, 0, 0.5, tensors2), -8);
}

// A tetrahedral box of 6 x 5 x 4 cubes with random sizes between 0.05 and 20.
struct random_box {
    test_meshes::mesh m = test_meshes::box(6, 5, 4, test_meshes::TETRAS, 4);
    dense2D<double> pos = positions(m.pos);
    dense2D<unsigned> connect = m.connect();
    dense1D<double, 8> h;
    explicit random_box(unsigned seed)
    {
        std::mt19937 rng(seed);
        std::uniform_real_distribution<double> u(std::log(0.05), std::log(20.0));
        h = dense1D<double, 8>(m.pos.size());
        for (double& x : h) x = std::exp(u(rng));
    }
    // Node pairs of the elements, each once.
    std::vector<std::pair<unsigned, unsigned>> pairs() const
    {
        std::vector<std::pair<unsigned, unsigned>> p;
        for (auto const& e : m.elements)
            for (unsigned a : e)
                for (unsigned b : e)
                    if (a < b) p.push_back({a, b});
        std::sort(p.begin(), p.end());
        p.erase(std::unique(p.begin(), p.end()), p.end());
        return p;
    }
};

TEST(BoundMetricGradations, EdgesEndWithinTheBoundExceptRefusedPairs)
{
    // Isotropic shock of sizes a, b over L is exp(|a - b| / L) - 1. An edge may stay above the bound
    // only when the attempts from both ends are refused at the final sizes: t0 not above 0.001,
    // a sense against the one the node took, or a change below the factor 1.000000000001.
    double const bound = 0.4;
    for (unsigned seed : {1u, 2u, 3u}) {
        random_box b(seed);
        dense1D<double, 8> start;
        start.copy(b.h);
        int changed = bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, 0, bound, b.h);
        ASSERT_GT(changed, 0);
        int moved = 0;
        for (std::size_t v = 0; v < b.h.size(); ++v) moved += b.h[v] != start[v];
        EXPECT_EQ(moved, changed);

        auto refused = [&](unsigned i, unsigned j) {
            double L = distance(b.pos, i, j), hi = b.h[i], hj = b.h[j];
            int d = hj > hi ? 1 : -1, sense = b.h[i] > start[i] ? 1 : b.h[i] < start[i] ? -1 : 0;
            double t0 = hj != hi ? std::max(0.0, 1 - L / std::abs(hj - hi) * std::log(1 + bound)) : 0;
            if (!(t0 > 0.001) || (sense != 0 && sense != d)) return true;
            double h = (hj - hi) * t0 + hi;
            return std::max(h, hi) / std::min(h, hi) <= 1.000000000001;
        };
        int above = 0, above_before = 0;
        for (auto [i, j] : b.pairs()) {
            double L = distance(b.pos, i, j), shock = std::exp(std::abs(b.h[i] - b.h[j]) / L) - 1;
            above_before += std::exp(std::abs(start[i] - start[j]) / L) - 1 > bound;
            if (shock <= bound * (1 + 1e-9)) continue;
            ++above;
            EXPECT_TRUE(refused(i, j) && refused(j, i)) << i << " " << j << " " << shock;
        }
        EXPECT_LT(above, above_before / 4);
    }
}

TEST(BoundMetricGradations, OneSidedRunsMoveSizesOneWayOnly)
{
    for (int direction : {1, -1}) {
        random_box b(5);
        dense1D<double, 8> start;
        start.copy(b.h);
        EXPECT_GT(bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, direction, 0.3, b.h), 0);
        for (std::size_t v = 0; v < b.h.size(); ++v) EXPECT_GE(direction * (b.h[v] - start[v]), 0) << v;
    }
}

TEST(BoundMetricGradations, MapsLeftAloneBitForBit)
{
    random_box b(9);
    // All nodes frozen; then a constant map, which meets any bound.
    dense1D<double, 8> start;
    start.copy(b.h);
    EXPECT_EQ(bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, false, 0, 0.1, b.h), 0);
    EXPECT_EQ(std::memcmp(start.data(), b.h.data(), b.h.size() * sizeof(double)), 0);
    for (double& x : b.h) x = 0.7;
    start.copy(b.h);
    dense2D<double> tensors;
    tensors.resize(6, b.h.size(), 0.0);
    for (std::size_t v = 0; v < b.h.size(); ++v) tensors(0, v) = tensors(2, v) = tensors(5, v) = 2.0;
    dense2D<double> tensors_start;
    tensors_start.copy(tensors);
    EXPECT_EQ(bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, 0, 0.0, b.h), 0);
    EXPECT_EQ(bound_metric_variations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, 0, 0.0, b.h), 0);
    EXPECT_EQ(bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, 0, 0.0, tensors), 0);
    EXPECT_EQ(std::memcmp(start.data(), b.h.data(), b.h.size() * sizeof(double)), 0);
    EXPECT_EQ(std::memcmp(tensors_start.data(), tensors.data(), tensors.size() * sizeof(double)), 0);
}

TEST(BoundMetricGradations, AdversarialMapsEnd)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (int kind = 0; kind < 3; ++kind) {
        random_box b(4);
        for (std::size_t v = 0; v < b.h.size(); ++v) b.h[v] = kind == 1 ? (v % 2 ? 1e150 : 1e-150) : 1.0;
        if (kind == 2) b.h[17] = nan;
        dense2D<double> tensors;
        tensors.resize(6, b.h.size(), 0.0);
        for (std::size_t v = 0; v < b.h.size(); ++v)
            tensors(0, v) = tensors(2, v) = tensors(5, v) = 1 / (b.h[v] * b.h[v]);
        for (int direction : {0, 1, -1}) {
            dense1D<double, 8> h;
            h.copy(b.h);
            EXPECT_GE(bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, direction, 0.2, h), 0);
            EXPECT_GE(bound_metric_variations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, direction, 0.2, h), 0);
            dense2D<double> M;
            M.copy(tensors);
            EXPECT_GE(bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, direction, 0.2, M), 0);
            EXPECT_GE(bound_metric_variations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, direction, 0.2, M), 0);
        }
    }
}

TEST(BoundMetricGradations, FailedAllocationsEndCleanlyAndRunsReproduce)
{
    random_box b(6);
    dense1D<double, 8> reference;
    reference.copy(b.h);
    int expected = bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, 0, 0.3, reference);
    int rc = -199;
    for (std::size_t k = 0; rc == -199 && k < 40; ++k) {
        dense1D<double, 8> h;
        h.copy(b.h);
        test_alloc::fail_at(k);
        rc = bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, 0, 0.3, h);
        test_alloc::reset();
        if (rc != -199) {
            EXPECT_EQ(rc, expected);
            EXPECT_EQ(std::memcmp(h.data(), reference.data(), h.size() * sizeof(double)), 0);
        }
    }
    EXPECT_GT(rc, 0);
}

}  // namespace
