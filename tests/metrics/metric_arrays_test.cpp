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

// Columns: valid, valid, not positive definite, NaN.
dense2D<double> tensors2d() { return matrix<double>(3, 4, {1, 0, 1, 4, 1, 2, 1, 2, 1, NaN, 0, 1}); }
dense2D<double> tensors3d() { return matrix<double>(6, 3, {1, 0, 1, 0, 0, 1, 2, 1, 2, 0, 0, 3, 1, 0, 1, 0, 0, -1}); }

}  // namespace

TEST(MetricArrays, FirstInvalidAndValidity)
{
    auto sizes = list<double>({1, 2, 0, 3});
    EXPECT_EQ(first_invalid_metric(sizes), 2u);
    EXPECT_EQ(first_invalid_metric(list<double>({1, NaN})), 1u);
    EXPECT_EQ(first_invalid_metric(list<double>({1, DBL_LIMIT})), 1u);
    EXPECT_EQ(first_invalid_metric(list({3u, 1u, 2u}), sizes), 2u);
    EXPECT_EQ(first_invalid_metric(list({1u, 4u}), sizes), 1u);  // past the array
    EXPECT_TRUE(are_valid_metrics(list({3u, 0u, 1u}), sizes));
    EXPECT_FALSE(are_valid_metrics(sizes));

    EXPECT_EQ(first_invalid_metric(tensors2d()), 2u);
    EXPECT_EQ(first_invalid_metric(list({1u, 0u, 3u}), tensors2d()), 2u);
    EXPECT_EQ(first_invalid_metric(list({1u, 9u}), tensors2d()), 1u);
    EXPECT_EQ(first_invalid_metric(tensors3d()), 2u);
    EXPECT_TRUE(are_valid_metrics(list({1u, 0u}), tensors3d()));

    dense2D<double> empty, four_rows = matrix<double>(4, 1, {1, 0, 1, 1});
    dense1D<double, 8> no_sizes;
    EXPECT_EQ(first_invalid_metric(no_sizes), 0u);
    EXPECT_TRUE(are_valid_metrics(no_sizes));
    EXPECT_TRUE(are_valid_metrics(empty));
    EXPECT_EQ(first_invalid_metric(four_rows), 0u);
    EXPECT_FALSE(are_valid_metrics(four_rows));
    EXPECT_FALSE(are_valid_metrics(list({0u}), four_rows));

    auto indices = list({7u});
    valid_metrics(tensors2d(), indices);
    valid_metrics(tensors3d(), indices);
    valid_metrics(four_rows, indices);
    EXPECT_EQ(values(indices), (V{7, 0, 1, 0, 1}));
}

TEST(MetricArrays, BoundSizes)
{
    auto sizes = list<double>({0.5, 1, 5, NaN, 3});
    dense1D<unsigned, 8> changed = list({9u});
    EXPECT_EQ(bound_metrics(sizes, 1, 4, changed), 2);
    EXPECT_EQ(values(changed), (V{0, 2}));
    EXPECT_EQ(values(sizes)[2], 4);
    EXPECT_TRUE(std::isnan(values(sizes)[3]));
    // Crossed bounds: below hmin ends at hmin, above it at hmax.
    sizes = list<double>({1, 2.5, 5});
    EXPECT_EQ(bound_metrics(sizes, 3, 2), 3);
    expect_near(values(sizes), {3, 3, 2}, 0);

    // A full `changed` that cannot grow: reported, every entry bounded all the same.
    sizes = list<double>({0.5, 0.5, 0.5, 0.5, 0.5});
    changed.clear_hard();
    EXPECT_EQ(failing_after(0, [&] { return bound_metrics(sizes, 1, 2, changed); }), -199);
    expect_near(values(sizes), {1, 1, 1, 1, 1}, 0);
}

TEST(MetricArrays, BoundTensors)
{
    // I (h = 1) and diag(1/100, 4) (h = 10 and 0.5), clamped into [2, 5].
    auto M = matrix<double>(3, 2, {1, 0, 1, 0.01, 0, 4});
    dense1D<unsigned, 8> changed;
    EXPECT_EQ(bound_metrics(M, 2, 5, changed), 2);
    EXPECT_EQ(values(changed), (V{0, 1}));
    expect_near(values(M), {0.25, 0, 0.25, 0.04, 0, 0.25}, 1e-15);

    auto M3 = matrix<double>(6, 1, {1, 0, 1, 0, 0, 1});
    EXPECT_EQ(bound_metrics(M3, 0.5, 0.8), 1);
    expect_near(values(M3), {1.5625, 0, 1.5625, 0, 0, 1.5625}, 1e-15);
}

TEST(MetricArrays, Conversions)
{
    auto sizes = list<double>({2, -1, 0.5});
    auto T2 = matrix<double>(3, 3, {9, 9, 9, 9, 9, 9, 9, 9, 9});
    EXPECT_EQ(metrics_iso_to_aniso2d(sizes, T2), 0);
    EXPECT_EQ(values(T2), (D{0.25, 0, 0.25, 9, 9, 9, 4, 0, 4}));  // h <= 0 leaves its column
    auto T3 = matrix<double>(6, 1, {9, 9, 9, 9, 9, 9});
    EXPECT_EQ(metrics_iso_to_aniso3d(list<double>({2}), T3), 0);
    EXPECT_EQ(values(T3), (D{0.25, 0, 0.25, 0, 0, 0.25}));

    // b1 = (1, 2, 2), b2 = (0, 3, 4); the second size is not positive and zeroes its column.
    auto bases = matrix<double>(6, 2, {1, 2, 2, 0, 3, 4, 1, 0, 0, 0, 1, 0});
    auto out = matrix<double>(3, 2, {9, 9, 9, 9, 9, 9});
    EXPECT_EQ(metrics_iso_to_aniso2d(list<double>({2, 0}), bases, out), 0);
    EXPECT_EQ(values(out), (D{2.25, 3.5, 6.25, 0, 0, 0}));

    // M3 = [2 1 0; 1 3 0; 0 0 5] and I.
    auto M3 = matrix<double>(6, 2, {2, 1, 3, 0, 0, 5, 1, 0, 1, 0, 0, 1});
    EXPECT_EQ(metrics_aniso3d_to_aniso2d(M3, bases, out), 0);
    EXPECT_EQ(values(out), (D{38, 61, 107, 1, 0, 1}));
}

TEST(MetricArrays, OverwriteInvalid)
{
    auto sizes = list<double>({0, -1, NaN, DBL_LIMIT, 0});
    EXPECT_EQ(overwrite_invalid_metrics(sizes, list<double>({2, 0, 2, 2})), 1);  // shorter fallback
    EXPECT_EQ(values(sizes)[0], 2);
    EXPECT_EQ(values(sizes)[1], -1);
    EXPECT_EQ(values(sizes)[4], 0);

    auto T = tensors2d();
    EXPECT_EQ(overwrite_invalid_metrics(T, list<double>({1, 1, 0.5, -1})), 1);
    auto v = values(T);
    EXPECT_EQ(D(v.begin(), v.begin() + 9), (D{1, 0, 1, 4, 1, 2, 4, 0, 4}));
    EXPECT_TRUE(std::isnan(v[9]));  // no good fallback
    auto F = matrix<double>(3, 4, {5, 0, 5, 5, 0, 5, 0, 0, 0, 3, 0, 3});
    EXPECT_EQ(overwrite_invalid_metrics(T, F), 1);  // column 2 is valid now, its fallback not
    EXPECT_EQ(values(T), (D{1, 0, 1, 4, 1, 2, 4, 0, 4, 3, 0, 3}));
}

TEST(MetricArrays, RefusalsInOrder)
{
    dense1D<double, 8> none, sizes = list<double>({1, 2});
    dense1D<unsigned, 8> changed;
    dense2D<double> empty, T2 = tensors2d(), T3 = tensors3d(), four = matrix<double>(4, 1, {1, 1, 1, 1});
    auto bases = matrix<double>(6, 2, {1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 0});
    struct row {
        char const* what;
        std::function<int()> call;
        int code;
    };
    row table[] = {
        {"sizes: no bound before bad hmin", [&] { return bound_metrics(sizes, 0, DBL_LIMIT); }, 0},
        {"sizes: empty before bad hmin", [&] { return bound_metrics(none, NaN, 1); }, 0},
        {"sizes: hmin", [&] { return bound_metrics(sizes, NaN, NaN); }, -2},
        {"sizes: hmax", [&] { return bound_metrics(sizes, 1, inf, changed); }, -3},
        {"tensors: no bound before rows", [&] { return bound_metrics(four, -1, DBL_LIMIT); }, 0},
        {"tensors: rows before hmin", [&] { return bound_metrics(four, NaN, 1); }, -1},
        {"tensors: hmin", [&] { return bound_metrics(T3, -inf, 1, changed); }, -2},
        {"tensors: hmax", [&] { return bound_metrics(T2, 1, NaN); }, -3},
        {"iso2d: all empty", [&] { return metrics_iso_to_aniso2d(none, empty); }, 0},
        {"iso2d: rows", [&] { return metrics_iso_to_aniso2d(sizes, T3); }, -2},
        {"iso3d: columns", [&] { return metrics_iso_to_aniso3d(list<double>({1, 1, 1, 1}), T3); }, -2},
        {"iso3d: empty sizes", [&] { return metrics_iso_to_aniso3d(none, T3); }, 0},
        {"iso2d bases: all empty", [&] { return metrics_iso_to_aniso2d(none, empty, empty); }, 0},
        {"iso2d bases: empty sizes and bases", [&] { return metrics_iso_to_aniso2d(none, empty, T2); }, -2},
        {"iso2d bases: bases columns", [&] { return metrics_iso_to_aniso2d(list<double>({1}), bases, T2); }, -2},
        {"iso2d bases: output rows", [&] { return metrics_iso_to_aniso2d(sizes, bases, T3); }, -3},
        {"3d to 2d: all empty", [&] { return metrics_aniso3d_to_aniso2d(empty, empty, empty); }, 0},
        {"3d to 2d: tensors rows", [&] { return metrics_aniso3d_to_aniso2d(T2, T2, T2); }, -1},
        {"3d to 2d: bases", [&] { return metrics_aniso3d_to_aniso2d(T3, bases, T2); }, -2},
        {"3d to 2d: output", [&] { return metrics_aniso3d_to_aniso2d(T3.submatrix(0, 2, 6), bases, empty); }, -3},
        {"overwrite 1d: empty", [&] { return overwrite_invalid_metrics(none, sizes); }, 0},
        {"overwrite by sizes: empty", [&] { return overwrite_invalid_metrics(empty, sizes); }, 0},
        {"overwrite by sizes: rows", [&] { return overwrite_invalid_metrics(four, sizes); }, -1},
        {"overwrite by tensors: rows", [&] { return overwrite_invalid_metrics(four, T2); }, -1},
        {"overwrite by tensors: fallback rows", [&] { return overwrite_invalid_metrics(T2, T3); }, -2},
        {"overwrite by tensors: empty fallback", [&] { return overwrite_invalid_metrics(T2, empty); }, -2},
    };
    for (auto& r : table) EXPECT_EQ(r.call(), r.code) << r.what;
    EXPECT_EQ(values(sizes), (D{1, 2}));
}
