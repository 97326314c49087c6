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

// A mesh with sizes h = 0.5 + 0.3 x + 0.2 y at its nodes, as sizes and as tensors I / h^2.
struct sized_mesh {
    mesh m;
    dense2D<double> pos, tensors;
    dense2D<unsigned> connect, edges;
    dense1D<double, 8> sizes;

    sized_mesh(mesh mm, unsigned dim, element_type type) : m(std::move(mm)), connect(m.connect())
    {
        std::size_t n = m.pos.size();
        pos.resize(dim, n);
        sizes.resize(n);
        tensors.resize(dim * (dim + 1) / 2, n, 0.0);
        for (std::size_t i = 0; i < n; ++i) {
            sizes[i] = 0.5 + 0.3 * m.pos[i][0] + 0.2 * m.pos[i][1];
            for (unsigned k = 0; k < dim; ++k) {
                pos(k, i) = m.pos[i][k];
                tensors(k * (k + 3) / 2, i) = 1 / (sizes[i] * sizes[i]);
            }
        }
        copy_edges(connect, type, edges);
    }
    double distance(unsigned a, unsigned b) const
    {
        point d = sub(m.pos[a], m.pos[b]);
        return std::sqrt(dot(d, d));
    }
};

}  // namespace

TEST(EdgeQualities, EveryEdgeOnceWithItsMetricLength)
{
    for (auto const& [mm, dim, type] :
         {std::tuple{box(3, 2, 2, TETRAS, 4), 3u, ET_TETRA4}, std::tuple{grid(4, 3, 2, 4), 2u, ET_FACE_MIX}}) {
        sized_mesh s(mm, dim, type);
        double expected = 0;  // L log(h_b / h_a) / (h_b - h_a) for sizes varying linearly
        for (std::size_t j = 0; j < s.edges.cols(); ++j) {
            unsigned a = s.edges(0, j), b = s.edges(1, j);
            double ha = s.sizes[a], hb = s.sizes[b], L = s.distance(a, b);
            expected += ha == hb ? L / ha : L * std::log(hb / ha) / (hb - ha);
        }
        misc::histogram iso, aniso;
        dense2D<unsigned> none;
        ASSERT_EQ(edge_qualities(s.pos, s.connect, type, s.sizes, iso, none), int(s.edges.cols()));
        ASSERT_EQ(edge_qualities(s.pos, s.connect, type, s.tensors, aniso, none), int(s.edges.cols()));
        EXPECT_EQ(iso.count(), s.edges.cols());
        EXPECT_NEAR(iso.sum(), expected, 1e-6 * expected);  // the series of the mean is good to 2e-7
        EXPECT_NEAR(aniso.sum(), iso.sum(), 1e-12 * expected);
    }
}

TEST(EdgeQualities, ExcludedEdgesBadMetricsAndRefusals)
{
    sized_mesh s(box(2, 2, 2, HEXA, 8), 3, ET_HEXA8);  // 54 edges; corner nodes 0 and 26 have 3 each
    dense2D<unsigned> none, excluded = mesh{{}, {{1, 0}, {0, 3}, {1, 0}, {0, 26}}, 2}.connect();
    misc::histogram hist;
    EXPECT_EQ(edge_qualities(s.pos, s.connect, ET_HEXA8, s.sizes, hist, excluded), 52);
    EXPECT_EQ(hist.count(), 52u);
    // Node 0 invalid; node 26 beyond the shortened arrays; no tensor at all in three rows.
    s.sizes[0] = 0.0;
    std::fill(s.tensors.col(0), s.tensors.col(0) + 6, 0.0);
    dense1D<double, 8> short_sizes;
    short_sizes.copy(s.sizes);
    short_sizes.resize(26);
    dense2D<double> short_tensors = s.tensors.submatrix(0, 26, 6), three_rows;
    three_rows.resize(3, 27, 1.0);
    dense2D<unsigned> const* run = &s.connect;
    dense1D<int, 8> types(1, ET_HEXA8);
    for (bool ranged : {false, true}) {
        auto measured = [&](auto const& metrics, std::size_t count) {
            misc::histogram h;
            int r = ranged ? edge_qualities(s.pos, run, run + 1, types, metrics, h, none)
                           : edge_qualities(s.pos, s.connect, ET_HEXA8, metrics, h, none);
            EXPECT_EQ(r, ranged ? -5 : -4);
            EXPECT_EQ(h.count(), count);
        };
        measured(s.sizes, 51), measured(s.tensors, 51), measured(short_sizes, 48), measured(short_tensors, 48);
        measured(three_rows, 0);
    }
    dense2D<unsigned> bad = mesh{{}, {{0, 27}}, 2}.connect(), empty;
    dense2D<double> four_rows;
    four_rows.resize(4, 27, 0.0);
    dense1D<int, 8> two_types(2, ET_HEXA8), bad_type(1, -3);
    int const codes[] = {edge_qualities(four_rows, empty, ET_HEXA8, s.sizes, hist, none),
                         edge_qualities(s.pos, empty, ET_HEXA8, s.sizes, hist, none),
                         edge_qualities(four_rows, run, run, types, s.sizes, hist, none),
                         edge_qualities(s.pos, run, run + 1, two_types, s.sizes, hist, none),
                         edge_qualities(s.pos, run, run + 1, bad_type, s.sizes, hist, none),
                         edge_qualities(s.pos, bad, ET_EDGE2, s.tensors, hist, none),
                         edge_qualities(s.pos, s.connect, ET_HEXA8, s.sizes, hist, bad),
                         edge_qualities(s.pos, run, run + 1, types, s.sizes, hist, bad)};
    EXPECT_EQ(std::vector<int>(codes, codes + 8), (std::vector<int>{-1, 0, 0, -4, -2, -2, -6, -7}));
    EXPECT_EQ(hist.count(), 52u);
    double q = -1;
    EXPECT_EQ(edge_quality(3, 1, std::exp(1.0), q), 0);
    EXPECT_NEAR(q, 3 / (std::exp(1.0) - 1), 1e-14);
    EXPECT_EQ(edge_quality(1, 0, 1, q) * 10 + edge_quality(1, 1, 0, q), -23);
}

TEST(HShock, LargestShockAtEachNodeOverCalls)
{
    sized_mesh s(box(2, 3, 2, WEDGES, 6), 3, ET_WEDGE6);
    std::vector<double> expected(s.sizes.size(), 0.0);
    for (std::size_t j = 0; j < s.edges.cols(); ++j) {
        unsigned a = s.edges(0, j), b = s.edges(1, j);
        double shock = std::exp(std::fabs(s.sizes[b] - s.sizes[a]) / s.distance(a, b)) - 1;
        expected[a] = std::max(expected[a], shock);
        expected[b] = std::max(expected[b], shock);
    }
    dense1D<double, 8> iso, aniso(3, 5.0), kept;  // aniso starts above every shock at nodes 0 to 2
    ASSERT_EQ(H_shock(s.pos, s.edges, s.sizes, iso), 0);
    ASSERT_EQ(H_shock(s.pos, s.edges, s.tensors, aniso), 0);
    ASSERT_TRUE(iso.size() == expected.size() && aniso.size() == expected.size());
    for (std::size_t n = 0; n < expected.size(); ++n) {
        EXPECT_NEAR(iso[n], expected[n], 1e-6 * expected[n]);
        EXPECT_NEAR(aniso[n], n < 3 ? 5.0 : iso[n], 1e-9 * iso[n]);
    }
    // Flat sizes keep the first maxima; a jump beyond exp(700) gives DBL_LIMIT.
    kept.copy(iso);
    std::fill(s.sizes.begin(), s.sizes.end(), 1.0);
    ASSERT_EQ(H_shock(s.pos, s.edges, s.sizes, iso), 0);
    EXPECT_TRUE(std::equal(iso.begin(), iso.end(), kept.begin()));
    s.sizes[0] = 1000.0;
    ASSERT_EQ(H_shock(s.pos, s.edges, s.sizes, iso), 0);
    EXPECT_TRUE(iso[0] == DBL_LIMIT && iso[1] == DBL_LIMIT);
    // Refusals; edges without a metric at an end are left out.
    dense2D<double> one_row;
    one_row.resize(1, s.pos.cols(), 0.0);
    dense2D<unsigned> none, bad = mesh{{}, {{0, unsigned(s.pos.cols())}}, 2}.connect();
    dense1D<double, 8> vals, two_sizes(2, 1.0);
    EXPECT_EQ(H_shock(one_row, none, s.sizes, vals), 0);
    EXPECT_EQ(H_shock(one_row, s.edges, s.sizes, vals), -1);
    EXPECT_EQ(H_shock(s.pos, bad, s.sizes, vals), -2);
    EXPECT_TRUE(vals.empty());
    ASSERT_EQ(H_shock(s.pos, s.edges, two_sizes, vals), 0);
    EXPECT_EQ(std::count(vals.begin(), vals.end(), 0.0), long(s.pos.cols()));
}
