#include "connectivity/test_meshes.h"
#include "tessarium/edges.h"
#include "tessarium/metric_measures.h"
#include "tessarium/metrics.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace qv7;
using namespace qv7::tessarium;
using namespace test_meshes;

namespace {

struct sized_mesh {
    mesh m;
    dense2D<double> pos;
    dense2D<unsigned> connect;
    dense1D<double, 8> sizes;
    dense2D<double> tensors;  // I / h^2

    // Sizes growing along x and y: h = 0.5 + 0.3 x + 0.2 y.
    sized_mesh(mesh mm, unsigned dim) : m(std::move(mm)), connect(m.connect())
    {
        std::size_t n = m.pos.size();
        pos.resize(dim, n);
        sizes.resize(n);
        tensors.resize(dim == 2 ? 3 : 6, n, 0.0);
        for (std::size_t i = 0; i < n; ++i) {
            for (unsigned k = 0; k < dim; ++k) pos(k, i) = m.pos[i][k];
            sizes[i] = 0.5 + 0.3 * m.pos[i][0] + 0.2 * m.pos[i][1];
            for (unsigned k = 0; k < dim; ++k) tensors(k * (k + 1) / 2 + k, i) = 1 / (sizes[i] * sizes[i]);
        }
    }
    double distance(unsigned a, unsigned b) const
    {
        point d = sub(m.pos[a], m.pos[b]);
        return std::sqrt(dot(d, d));
    }
    // The metric length L (h_b - h_a) / (h_b h_a log(h_b / h_a)) of a linear size, by the plain logarithm.
    double metric_length(unsigned a, unsigned b) const
    {
        double ha = sizes[a], hb = sizes[b];
        return ha == hb ? distance(a, b) / ha : distance(a, b) * std::log(hb / ha) / (hb - ha);
    }
};

dense2D<unsigned> edges_of(dense2D<unsigned> const& C, element_type type)
{
    dense2D<unsigned> E;
    EXPECT_EQ(copy_edges(C, type, E), 0);
    return E;
}

}  // namespace

TEST(EdgeQualities, EveryEdgeOnceWithItsMetricLength)
{
    struct kind {
        mesh m;
        unsigned dim;
        element_type type;
    };
    for (kind const& k : {kind{box(3, 2, 2, TETRAS, 4), 3, ET_TETRA4}, kind{grid(4, 3, 2, 4), 2, ET_FACE_MIX}}) {
        sized_mesh s(k.m, k.dim);
        dense2D<unsigned> E = edges_of(s.connect, k.type), none;
        double expected = 0;
        for (std::size_t j = 0; j < E.cols(); ++j) expected += s.metric_length(E(0, j), E(1, j));
        misc::histogram iso, aniso;
        ASSERT_EQ(edge_qualities(s.pos, s.connect, k.type, s.sizes, iso, none), int(E.cols()));
        ASSERT_EQ(edge_qualities(s.pos, s.connect, k.type, s.tensors, aniso, none), int(E.cols()));
        EXPECT_EQ(iso.count(), E.cols());
        EXPECT_NEAR(iso.sum(), expected, 1e-6 * expected);  // the series of the mean is good to 2e-7
        EXPECT_NEAR(aniso.sum(), iso.sum(), 1e-12 * expected);
        EXPECT_NEAR(aniso.min(), iso.min(), 1e-12);
        EXPECT_NEAR(aniso.max(), iso.max(), 1e-12);
    }
}

TEST(EdgeQualities, ExcludedEdgesAndBadMetricsAreLeftOut)
{
    sized_mesh s(box(2, 2, 2, HEXA, 8), 3);  // 54 edges; the corner nodes 0 and 26 have 3 each
    dense2D<unsigned> none, excluded = mesh{{}, {{1, 0}, {0, 3}, {1, 0}, {0, 26}}, 2}.connect();
    misc::histogram hist;
    ASSERT_EQ(edge_qualities(s.pos, s.connect, ET_HEXA8, s.sizes, hist, excluded), 52);
    EXPECT_EQ(hist.count(), 52u);

    s.sizes[0] = 0.0;  // invalid, as its tensor
    std::fill(s.tensors.col(0), s.tensors.col(0) + 6, 0.0);
    dense1D<double, 8> short_sizes;  // no metric for node 26
    short_sizes.copy(s.sizes);
    short_sizes.resize(26);
    dense2D<double> short_tensors = s.tensors.submatrix(0, 26, 6), three_rows;
    three_rows.resize(3, 27, 1.0);
    dense2D<unsigned> const* run = &s.connect;
    dense1D<int, 8> types(1, ET_HEXA8);
    struct call {
        int result;
        std::size_t measured;
    };
    auto with = [&](auto const& metrics, bool ranged) {
        misc::histogram h;
        int r = ranged ? edge_qualities(s.pos, run, run + 1, types, metrics, h, none)
                       : edge_qualities(s.pos, s.connect, ET_HEXA8, metrics, h, none);
        return call{r, h.count()};
    };
    for (bool ranged : {false, true}) {
        int code = ranged ? -5 : -4;
        for (call c : {with(s.sizes, ranged), with(s.tensors, ranged)}) {
            EXPECT_EQ(c.result, code);
            EXPECT_EQ(c.measured, 51u);
        }
        for (call c : {with(short_sizes, ranged), with(short_tensors, ranged)}) {
            EXPECT_EQ(c.result, code);
            EXPECT_EQ(c.measured, 48u);
        }
        call c = with(three_rows, ranged);
        EXPECT_EQ(c.result, code);
        EXPECT_EQ(c.measured, 0u);
    }
}

TEST(EdgeQualities, RefusalsInOrder)
{
    sized_mesh s(grid(2, 2, 0, 4), 2);
    dense2D<unsigned> none, empty, bad_excluded = mesh{{}, {{0, 9}}, 2}.connect();
    dense2D<double> four_rows;
    four_rows.resize(4, 9, 0.0);
    misc::histogram h;
    dense1D<int, 8> types(1, ET_FACE_Q4), two_types(2, ET_FACE_Q4), bad_type(1, -3);
    dense2D<unsigned> bad = s.connect;
    bad.copy(s.connect);
    bad(2, 1) = 9;
    dense2D<unsigned> const* run = &s.connect;
    EXPECT_EQ(edge_qualities(four_rows, empty, ET_FACE_Q4, s.sizes, h, none), -1);
    EXPECT_EQ(edge_qualities(s.pos, empty, ET_FACE_Q4, s.sizes, h, none), 0);
    EXPECT_EQ(edge_qualities(four_rows, run, run, types, s.sizes, h, none), 0);
    EXPECT_EQ(edge_qualities(four_rows, run, run + 1, types, s.sizes, h, none), -1);
    EXPECT_EQ(edge_qualities(s.pos, run, run + 1, two_types, s.sizes, h, none), -4);
    EXPECT_EQ(edge_qualities(s.pos, run, run + 1, bad_type, s.sizes, h, none), -2);
    EXPECT_EQ(edge_qualities(s.pos, bad, ET_FACE_Q4, s.tensors, h, none), -2);
    EXPECT_EQ(edge_qualities(s.pos, s.connect, ET_FACE_Q4, s.sizes, h, bad_excluded), -6);
    EXPECT_EQ(edge_qualities(s.pos, run, run + 1, types, s.sizes, h, bad_excluded), -7);
    EXPECT_EQ(h.count(), 0u);

    double q = -1;
    EXPECT_EQ(edge_quality(1, 1, 1, q), 0);
    EXPECT_EQ(q, 1.0);
    EXPECT_EQ(edge_quality(3, 1, std::exp(1.0), q), 0);
    EXPECT_NEAR(q, 3 / (std::exp(1.0) - 1), 1e-14);
    EXPECT_EQ(edge_quality(1, 0, 1, q), -2);
    EXPECT_EQ(edge_quality(1, 1, 0, q), -3);
}

TEST(HShock, LargestShockAtEachNodeOverCalls)
{
    sized_mesh s(box(2, 3, 2, WEDGES, 6), 3);
    dense2D<unsigned> E = edges_of(s.connect, ET_WEDGE6);
    std::vector<double> expected(s.sizes.size(), 0.0);
    for (std::size_t j = 0; j < E.cols(); ++j) {
        unsigned a = E(0, j), b = E(1, j);
        double shock = std::exp(std::fabs(s.sizes[b] - s.sizes[a]) / s.distance(a, b)) - 1;
        expected[a] = std::max(expected[a], shock);
        expected[b] = std::max(expected[b], shock);
    }
    dense1D<double, 8> iso, aniso(3, 5.0);  // aniso starts with a larger value at nodes 0 to 2
    ASSERT_EQ(H_shock(s.pos, E, s.sizes, iso), 0);
    ASSERT_EQ(H_shock(s.pos, E, s.tensors, aniso), 0);
    ASSERT_EQ(iso.size(), expected.size());
    ASSERT_EQ(aniso.size(), expected.size());
    for (std::size_t n = 0; n < expected.size(); ++n) {
        EXPECT_NEAR(iso[n], expected[n], 1e-6 * expected[n]);
        EXPECT_NEAR(aniso[n], n < 3 ? 5.0 : iso[n], 1e-9 * iso[n]);
    }
    // A second call with flat sizes keeps the first maxima; a jump beyond exp(700) gives DBL_LIMIT.
    dense1D<double, 8> kept;
    kept.copy(iso);
    for (double& h : s.sizes) h = 1.0;
    ASSERT_EQ(H_shock(s.pos, E, s.sizes, iso), 0);
    EXPECT_TRUE(std::equal(iso.begin(), iso.end(), kept.begin()));
    s.sizes[0] = 1000.0;
    ASSERT_EQ(H_shock(s.pos, E, s.sizes, iso), 0);
    EXPECT_EQ(iso[0], DBL_LIMIT);
    EXPECT_EQ(iso[1], DBL_LIMIT);

    // Refusals; an edge without a metric at an end is left out.
    dense2D<double> one_row;
    one_row.resize(1, s.pos.cols(), 0.0);
    dense2D<unsigned> none, bad = mesh{{}, {{0, unsigned(s.pos.cols())}}, 2}.connect();
    dense1D<double, 8> vals, two_sizes(2, 1.0);
    EXPECT_EQ(H_shock(one_row, none, s.sizes, vals), 0);
    EXPECT_EQ(H_shock(one_row, E, s.sizes, vals), -1);
    EXPECT_EQ(H_shock(s.pos, bad, s.sizes, vals), -2);
    EXPECT_TRUE(vals.empty());
    ASSERT_EQ(H_shock(s.pos, E, two_sizes, vals), 0);
    EXPECT_EQ(vals.size(), s.pos.cols());
    EXPECT_TRUE(std::all_of(vals.begin(), vals.end(), [](double v) { return v == 0.0; }));
}
