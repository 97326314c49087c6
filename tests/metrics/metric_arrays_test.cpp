#include "nodes/node_arrays.h"
#include "tessarium/metrics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

using namespace qv7;
using namespace qv7::tessarium;
using namespace node_arrays;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

}  // namespace

TEST(MetricArrays, ResultsOnBadInputInOrder)
{
    dense1D<double, 8> none, sizes = list<double>({1, 2}), kept = list<double>({7});
    dense1D<unsigned, 8> changed;
    // 2D columns: valid, valid, not positive definite, NaN. 3D: valid, valid, NaN, infinite.
    auto T2 = matrix<double>(3, 4, {1, 0, 1, 4, 1, 2, 1, 2, 1, NaN, 0, 1});
    auto T3 = matrix<double>(6, 4, {1, 0, 1, 0, 0, 1, 2, 1, 2, 0, 0, 3, 1, 0, 1, NaN, 0, 1, 1, 0, 1, 0, 0, inf});
    dense2D<double> empty, four = matrix<double>(4, 1, {1, 1, 1, 1});
    auto bases = matrix<double>(6, 2, {1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 0});
    auto pos2 = matrix<double>(2, 4, {0, 0, 1, 0, 0, 1, 1, 1});
    auto pos3 = matrix<double>(3, 4, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
    auto tet = matrix<unsigned>(4, 1, {0, 1, 2, 3});
    auto tet10 = matrix<unsigned>(10, 1, {0, 1, 2, 3, 0, 1, 2, 3, 0, 1});
    auto gen = [&](dense2D<double> const& pos, dense2D<unsigned> const& connect, element_type type, double power) {
        return [=, &kept] { return metrics_gen_iso(pos, connect, type, kept, power); };
    };
    symmetric_fixed<double, 3> nan3{NaN};
    struct row {
        std::function<long()> call;
        long result;
    } table[] = {
        {[&] {
             return first_invalid_metric(list<double>({1, 2, 0, NaN}));
         },
         2},
        {[&] {
             return first_invalid_metric(list<double>({1, DBL_LIMIT}));
         },
         1},
        {[&] {
             return first_invalid_metric(list({1u, 4u}), sizes);
         },
         1},  // past the array
        {[&] {
             return first_invalid_metric(list({1u, 0u, 3u}), T2);
         },
         2},
        {[&] { return first_invalid_metric(T3); }, 2},
        {[&] {
             return first_invalid_metric(list({1u, 3u}), T3);
         },
         1},
        {[&] { return first_invalid_metric(none) + are_valid_metrics(none) * 10 + are_valid_metrics(empty) * 100; },
         110},
        {[&] { return first_invalid_metric(four) + are_valid_metrics(four) + are_valid_metrics(list({0u}), four); }, 0},
        {[&] { return bound_metric(nan3, 0, DBL_LIMIT); }, 0},
        {[&] { return bound_metric(nan3, NaN, 1); }, -2},
        {[&] { return bound_metric(nan3, 1, -inf); }, -3},
        {[&] { return bound_metrics(sizes, 0, DBL_LIMIT); }, 0},
        {[&] { return bound_metrics(none, NaN, 1); }, 0},
        {[&] { return bound_metrics(sizes, NaN, NaN); }, -2},
        {[&] { return bound_metrics(sizes, 1, inf, changed); }, -3},
        {[&] { return bound_metrics(four, -1, DBL_LIMIT); }, 0},
        {[&] { return bound_metrics(four, NaN, 1); }, -1},
        {[&] { return bound_metrics(T3, -inf, 1, changed); }, -2},
        {[&] { return bound_metrics(T2, 1, NaN); }, -3},
        {[&] { return metrics_iso_to_aniso2d(none, empty); }, 0},
        {[&] { return metrics_iso_to_aniso2d(sizes, T3); }, -2},
        {[&] {
             return metrics_iso_to_aniso3d(list<double>({1, 1, 1, 1, 1}), T3);
         },
         -2},
        {[&] { return metrics_iso_to_aniso3d(none, T3); }, 0},
        {[&] { return metrics_iso_to_aniso2d(none, empty, empty); }, 0},
        {[&] { return metrics_iso_to_aniso2d(none, empty, T2); }, -2},
        {[&] { return metrics_iso_to_aniso2d(list<double>({1}), bases, T2); }, -2},
        {[&] { return metrics_iso_to_aniso2d(sizes, bases, T3); }, -3},
        {[&] { return metrics_aniso3d_to_aniso2d(empty, empty, empty); }, 0},
        {[&] { return metrics_aniso3d_to_aniso2d(T2, T2, T2); }, -1},
        {[&] { return metrics_aniso3d_to_aniso2d(T3, bases, T2); }, -2},
        {[&] { return metrics_aniso3d_to_aniso2d(T3.submatrix(0, 2, 6), bases, empty); }, -3},
        {[&] { return overwrite_invalid_metrics(empty, sizes); }, 0},
        {[&] { return overwrite_invalid_metrics(four, sizes); }, -1},
        {[&] { return overwrite_invalid_metrics(four, T2); }, -1},
        {[&] { return overwrite_invalid_metrics(T2, T3); }, -2},
        {[&] { return overwrite_invalid_metrics(T2, empty); }, -2},
        {gen(pos2, dense2D<unsigned>(), ET_NONE, -1), 0},
        {gen(pos2, tet10, ET_TETRA4, -1), -1},
        {gen(pos2, matrix<unsigned>(2, 1, {0, 4}), ET_EDGE2, -1), -2},
        {gen(pos3, tet, ET_HEXA8, 1), -2},
        {gen(pos3, tet, ET_SOLID_MIX, -0.5), -5},
        {gen(pos3, tet, ET_TETRA4, NaN), -5},
        {gen(pos3, tet, element_type(99), 1), -3},
        {[&] { return failing_after(0, gen(pos3, tet, ET_TETRA4, 1)); }, -199},
    };
    for (auto& r : table) EXPECT_EQ(r.call(), r.result) << "row " << &r - table;
    EXPECT_EQ(values(sizes), (D{1, 2}));
    EXPECT_EQ(values(kept), (D{7}));
    EXPECT_EQ(failing_after(1, gen(pos3, tet, ET_TETRA4, 1)), -199);  // the work array
    kept = list<double>({7});
    EXPECT_EQ(metrics_gen_iso(pos3, tet10, ET_TETRA10, kept, 1), -3);  // after the growth of the map
    EXPECT_EQ(values(kept), (D{7, 0, 0, 0}));
}

TEST(MetricArrays, PowerMeansOnA345Triangle)
{
    // Node 0 joins the sides 3 and 4, node 1 the sides 3 and 5, node 2 the sides 4 and 5.
    auto pos = matrix<double>(2, 3, {0, 0, 3, 0, 0, 4});
    struct row {
        dense2D<unsigned> connect;
        element_type type;
        double power;
        D want;
    } table[] = {
        {matrix<unsigned>(3, 1, {0, 1, 2}), ET_FACE_T3, 0, {3, 3, 4}},
        {matrix<unsigned>(3, 1, {0, 1, 2}), ET_FACE_T3, DBL_LIMIT, {4, 5, 5}},
        {matrix<unsigned>(3, 1, {0, 1, 2}), ET_FACE_MIX, 1, {3.5, 4, 4.5}},
        {matrix<unsigned>(4, 1, {0, 1, 2, NONE_ID}), ET_FACE_MIX, 2, {std::sqrt(12.5), std::sqrt(17), std::sqrt(20.5)}},
    };
    for (auto& r : table) {
        dense1D<double, 8> metrics;
        ASSERT_EQ(metrics_gen_iso(pos, r.connect, r.type, metrics, r.power), 0);
        expect_near(values(metrics), r.want, 1e-15);
    }
    // Node 1 moved onto node 0: that edge counts nowhere. The entry past the nodes stays.
    pos(0, 1) = 0;
    auto metrics = list<double>({9, 9, 9, 9});
    ASSERT_EQ(metrics_gen_iso(pos, table[0].connect, ET_FACE_T3, metrics, 1), 0);
    expect_near(values(metrics), {4, 4, 4, 9}, 1e-15);
}

TEST(MetricArrays, BoundsConversionsAndRepair)
{
    auto sizes = list<double>({0.5, 1, 5, NaN, 3});
    dense1D<unsigned, 8> changed = list({9u});
    EXPECT_EQ(bound_metrics(sizes, 1, 4, changed), 2);
    EXPECT_EQ(values(changed), (V{0, 2}));
    EXPECT_EQ(values(sizes)[2], 4);
    sizes = list<double>({1, 2.5, 5});
    EXPECT_EQ(bound_metrics(sizes, 3, 2), 3);  // crossed: below hmin to hmin, above it to hmax
    EXPECT_EQ(values(sizes), (D{3, 3, 2}));
    // I (h = 1) and diag(1/100, 4) (h = 10 and 0.5) into [2, 5].
    auto M = matrix<double>(3, 2, {1, 0, 1, 0.01, 0, 4});
    EXPECT_EQ(bound_metrics(M, 2, 5, changed), 2);
    expect_near(values(M), {0.25, 0, 0.25, 0.04, 0, 0.25}, 1e-15);

    auto T3 = matrix<double>(6, 2, {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9});
    EXPECT_EQ(metrics_iso_to_aniso3d(list<double>({2, -1}), T3), 0);
    EXPECT_EQ(values(T3), (D{0.25, 0, 0.25, 0, 0, 0.25, 9, 9, 9, 9, 9, 9}));  // h <= 0 leaves its column
    // b1 = (1, 2, 2), b2 = (0, 3, 4): b1.b1 = 9, b1.b2 = 14, b2.b2 = 25. A size 0 zeroes its column.
    auto bases = matrix<double>(6, 2, {1, 2, 2, 0, 3, 4, 1, 0, 0, 0, 1, 0});
    auto out = matrix<double>(3, 2, {9, 9, 9, 9, 9, 9});
    EXPECT_EQ(metrics_iso_to_aniso2d(list<double>({2, 0}), bases, out), 0);
    EXPECT_EQ(values(out), (D{2.25, 3.5, 6.25, 0, 0, 0}));
    // [2 1 0; 1 3 0; 0 0 5] b1 = (4, 7, 10), b2 = (3, 9, 20); then I.
    auto M3 = matrix<double>(6, 2, {2, 1, 3, 0, 0, 5, 1, 0, 1, 0, 0, 1});
    EXPECT_EQ(metrics_aniso3d_to_aniso2d(M3, bases, out), 0);
    EXPECT_EQ(values(out), (D{38, 61, 107, 1, 0, 1}));

    sizes = list<double>({0, -1, NaN, 0});
    EXPECT_EQ(overwrite_invalid_metrics(sizes, list<double>({2, 0, 2})), 1);  // NaN stays, entry 3 not covered
    EXPECT_EQ(values(sizes)[0], 2);
    auto T = matrix<double>(3, 3, {1, 0, 1, 1, 1, 1, 1, 0, NaN});
    EXPECT_EQ(overwrite_invalid_metrics(T, list<double>({1, 0.5, -1})), 1);
    EXPECT_EQ(overwrite_invalid_metrics(T, matrix<double>(3, 3, {5, 0, 5, 0, 0, 0, 3, 0, 3})), 1);
    EXPECT_EQ(values(T), (D{1, 0, 1, 4, 0, 4, 3, 0, 3}));
}
