#include "nodes/node_arrays.h"
#include "tessarium/metrics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

using namespace qv7;
using namespace qv7::tessarium;
using namespace node_arrays;

namespace {

// Mean of the lengths of the listed edges at each node, each edge counted once per listing.
D arithmetic_means(dense2D<double> const& pos, std::vector<std::pair<unsigned, unsigned>> const& edges)
{
    D sum(pos.cols(), 0), count(pos.cols(), 0);
    for (auto [a, b] : edges) {
        double s = 0;
        for (std::size_t i = 0; i < pos.rows(); ++i) s += (pos(i, a) - pos(i, b)) * (pos(i, a) - pos(i, b));
        for (unsigned n : {a, b}) sum[n] += std::sqrt(s), count[n] += 1;
    }
    for (std::size_t k = 0; k < sum.size(); ++k) sum[k] /= count[k];
    return sum;
}

dense2D<double> jittered(std::vector<std::array<double, 3>> const& corners)
{
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> jitter(-0.1, 0.1);
    dense2D<double> pos;
    pos.resize(3, corners.size());
    for (std::size_t j = 0; j < corners.size(); ++j)
        for (int i = 0; i < 3; ++i) pos(i, j) = corners[j][i] + jitter(gen);
    return pos;
}

}  // namespace

TEST(MetricsGenIso, PowerMeansOnA345Triangle)
{
    // Node 0 joins the sides 3 and 4, node 1 the sides 3 and 5, node 2 the sides 4 and 5.
    auto pos = matrix<double>(2, 3, {0, 0, 3, 0, 0, 4});
    auto tri = matrix<unsigned>(3, 1, {0, 1, 2});
    struct row {
        double power;
        D want;
    } table[] = {
        {0, {3, 3, 4}},
        {DBL_LIMIT, {4, 5, 5}},
        {1, {3.5, 4, 4.5}},
        {2, {std::sqrt(12.5), std::sqrt(17), std::sqrt(20.5)}},
    };
    for (auto& r : table) {
        dense1D<double, 8> metrics;
        ASSERT_EQ(metrics_gen_iso(pos, tri, ET_FACE_T3, metrics, r.power), 0);
        expect_near(values(metrics), r.want, 1e-15);
    }
    // Through the mixed type, and narrowed by rows.
    dense1D<double, 8> metrics;
    ASSERT_EQ(metrics_gen_iso(pos, matrix<unsigned>(4, 1, {0, 1, 2, NONE_ID}), ET_FACE_MIX, metrics, 1), 0);
    expect_near(values(metrics), {3.5, 4, 4.5}, 1e-15);
    ASSERT_EQ(metrics_gen_iso(pos, tri, ET_FACE_MIX, metrics, 0), 0);
    expect_near(values(metrics), {3, 3, 4}, 0);
}

TEST(MetricsGenIso, EdgeVisitsSkipsAndKeptEntries)
{
    // A unit square as one quadrangle, then as two triangles: the diagonal is visited twice.
    auto pos = matrix<double>(2, 4, {0, 0, 1, 0, 1, 1, 0, 1});
    dense1D<double, 8> metrics;
    ASSERT_EQ(metrics_gen_iso(pos, matrix<unsigned>(4, 1, {0, 1, 2, 3}), ET_FACE_Q4, metrics, 1), 0);
    expect_near(values(metrics), {1, 1, 1, 1});
    ASSERT_EQ(metrics_gen_iso(pos, matrix<unsigned>(3, 2, {0, 1, 2, 0, 2, 3}), ET_FACE_T3, metrics, 1), 0);
    double s = std::sqrt(2.0);
    expect_near(values(metrics), {(2 + 2 * s) / 4, 1, (2 + 2 * s) / 4, 1});

    // Nodes 0 and 1 coincide: their edge counts nowhere. Node 3 is untouched, entry 4 lies past
    // the nodes.
    pos = matrix<double>(2, 4, {0, 0, 0, 0, 3, 4, 7, 7});
    metrics = list<double>({9, 9, 9, 9, 9});
    ASSERT_EQ(metrics_gen_iso(pos, matrix<unsigned>(3, 1, {0, 1, 2}), ET_FACE_T3, metrics, 1), 0);
    expect_near(values(metrics), {5, 5, 5, 9, 9});
    metrics = list<double>({9});
    ASSERT_EQ(metrics_gen_iso(pos, matrix<unsigned>(2, 1, {1, 2}), ET_EDGE2, metrics, 0), 0);
    expect_near(values(metrics), {9, 5, 5, 0});
}

TEST(MetricsGenIso, SolidsUseTheirEdges)
{
    using E = std::vector<std::pair<unsigned, unsigned>>;
    auto pos = jittered({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}});
    E hexa{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6}, {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    // Wedge: triangles 0 1 3 and 4 5 7 joined by verticals. Pyramid: base 0 1 2 3, apex 4.
    E wedge{{0, 1}, {1, 3}, {3, 0}, {4, 5}, {5, 7}, {7, 4}, {0, 4}, {1, 5}, {3, 7}};
    E pyramid{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 4}, {1, 4}, {2, 4}, {3, 4}};
    E tetra{{0, 1}, {0, 2}, {0, 4}, {1, 2}, {1, 4}, {2, 4}};
    auto N = NONE_ID;
    struct row {
        element_type type;
        dense2D<unsigned> connect;
        E edges;
    } table[] = {
        {ET_HEXA8, matrix<unsigned>(8, 1, {0, 1, 2, 3, 4, 5, 6, 7}), hexa},
        {ET_SOLID_MIX, matrix<unsigned>(8, 1, {0, 1, 2, 3, 4, 5, 6, 7}), hexa},
        {ET_WEDGE6, matrix<unsigned>(6, 1, {0, 1, 3, 4, 5, 7}), wedge},
        {ET_SOLID_MIX, matrix<unsigned>(8, 1, {0, 1, 3, 4, 5, 7, N, N}), wedge},
        {ET_PYRAMID5, matrix<unsigned>(5, 1, {0, 1, 2, 3, 4}), pyramid},
        {ET_SOLID_MIX, matrix<unsigned>(8, 1, {0, 1, 2, 3, 4, N, N, N}), pyramid},
        {ET_SOLID_MIX, matrix<unsigned>(4, 1, {0, 1, 2, 4}), tetra},
        {ET_SOLID_MIX, matrix<unsigned>(8, 1, {0, 1, 2, 4, N, N, N, N}), tetra},
    };
    for (auto& r : table) {
        dense1D<double, 8> metrics(8, 0.0);
        ASSERT_EQ(metrics_gen_iso(pos, r.connect, r.type, metrics, 1), 0);
        D want = arithmetic_means(pos, r.edges), got = values(metrics);
        for (std::size_t k = 0; k < 8; ++k)
            if (!std::isnan(want[k])) {
                EXPECT_NEAR(got[k], want[k], 1e-14) << r.type << " node " << k;
            }
    }
}

TEST(MetricsGenIso, RefusalsInOrder)
{
    auto pos2 = matrix<double>(2, 4, {0, 0, 1, 0, 0, 1, 1, 1});
    auto pos3 = matrix<double>(3, 4, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
    auto tet = matrix<unsigned>(4, 1, {0, 1, 2, 3});
    auto tet10 = matrix<unsigned>(10, 1, {0, 1, 2, 3, 0, 1, 2, 3, 0, 1});
    dense2D<unsigned> empty;
    auto metrics = list<double>({7});
    struct row {
        char const* what;
        std::function<int()> call;
        int code;
    } table[] = {
        {"empty connectivity", [&] { return metrics_gen_iso(pos2, empty, ET_NONE, metrics, -1); }, 0},
        {"dimension before indices", [&] { return metrics_gen_iso(pos2, tet10, ET_TETRA4, metrics, -1); }, -1},
        {"indices before power", [&] { return metrics_gen_iso(pos2, matrix<unsigned>(2, 1, {0, 4}), ET_EDGE2, metrics, -1); }, -2},
        {"shape for the type", [&] { return metrics_gen_iso(pos3, tet, ET_HEXA8, metrics, 1); }, -2},
        {"negative power", [&] { return metrics_gen_iso(pos3, tet, ET_SOLID_MIX, metrics, -0.5); }, -5},
        {"NaN power", [&] { return metrics_gen_iso(pos3, tet, ET_TETRA4, metrics, std::nan("")); }, -5},
        {"value outside the types", [&] { return metrics_gen_iso(pos3, tet, element_type(99), metrics, 1); }, -3},
        {"metrics cannot grow", [&] { return failing_after(0, [&] { return metrics_gen_iso(pos3, tet, ET_TETRA4, metrics, 1); }); }, -199},
    };
    for (auto& r : table) {
        EXPECT_EQ(r.call(), r.code) << r.what;
        EXPECT_EQ(values(metrics), (D{7})) << r.what;
    }
    EXPECT_EQ(failing_after(1, [&] { return metrics_gen_iso(pos3, tet, ET_TETRA4, metrics, 1); }), -199);  // work array
    metrics = list<double>({7});
    // Quadratic elements are refused after the growth of the map.
    EXPECT_EQ(metrics_gen_iso(pos3, tet10, ET_TETRA10, metrics, 1), -3);
    EXPECT_EQ(values(metrics), (D{7, 0, 0, 0}));
}
