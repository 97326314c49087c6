// Merging close nodes and closest-node queries on 1M points, each beside a plain uniform-grid
// implementation of the same task.
#include "tessarium/node_detector.h"
#include "tessarium/repair.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

using qv7::dense1D;
using qv7::dense2D;

namespace {

constexpr unsigned n_points = 1000000;
constexpr double tol = 1e-3;

// 90% uniform points in the unit cube, 10% copies of earlier ones moved by less than tol.
dense2D<double> const& cloud()
{
    static dense2D<double> pos = [] {
        dense2D<double> p;
        p.resize(3, n_points);
        std::mt19937_64 rng(42);
        std::uniform_real_distribution<double> u(0.0, 1.0), jitter(-tol / 3, tol / 3);
        for (unsigned j = 0; j < n_points; ++j) {
            if (j > 10 && rng() % 10 == 0) {
                unsigned from = rng() % j;
                for (int k = 0; k < 3; ++k) p(k, j) = p(k, from) + jitter(rng);
            } else {
                for (int k = 0; k < 3; ++k) p(k, j) = u(rng);
            }
        }
        return p;
    }();
    return pos;
}

// The same points numbered along a Morton curve, as a mesh generator's numbering keeps
// neighbouring nodes close in memory.
dense2D<double> const& ordered_cloud()
{
    static dense2D<double> pos = [] {
        dense2D<double> const& src = cloud();
        auto spread = [](std::uint64_t v) {
            std::uint64_t r = 0;
            for (int b = 0; b < 20; ++b) r |= ((v >> b) & 1) << (3 * b);
            return r;
        };
        std::vector<std::pair<std::uint64_t, unsigned>> keyed(n_points);
        for (unsigned j = 0; j < n_points; ++j) {
            std::uint64_t code = 0;
            for (int k = 0; k < 3; ++k) code |= spread(std::uint64_t(std::min(src(k, j), 1.0) * ((1 << 20) - 1))) << k;
            keyed[j] = {code, j};
        }
        std::sort(keyed.begin(), keyed.end());
        dense2D<double> p;
        p.resize(3, n_points);
        for (unsigned j = 0; j < n_points; ++j)
            for (int k = 0; k < 3; ++k) p(k, j) = src(k, keyed[j].second);
        return p;
    }();
    return pos;
}

// Cells of a uniform grid, as sorted 63-bit keys with the nodes of each cell contiguous.
struct grid {
    double origin[3], inv_h;
    std::vector<std::uint64_t> keys;  // distinct cell keys, sorted
    std::vector<unsigned> start;      // nodes of cell c: order[start[c] .. start[c + 1])
    std::vector<unsigned> order;

    static std::uint64_t key(std::int64_t x, std::int64_t y, std::int64_t z)
    {
        return (std::uint64_t(x) << 42) | (std::uint64_t(y) << 21) | std::uint64_t(z);
    }
    std::int64_t cell(double c, int k) const { return std::int64_t((c - origin[k]) * inv_h); }

    grid(dense2D<double> const& pos, double h)
    {
        std::size_t n = pos.cols();
        for (int k = 0; k < 3; ++k) {
            origin[k] = pos(k, 0);
            for (std::size_t j = 0; j < n; ++j) origin[k] = std::min(origin[k], pos(k, j));
            origin[k] -= h;  // keeps every neighbour index non-negative
        }
        inv_h = 1.0 / h;
        std::vector<std::pair<std::uint64_t, unsigned>> tagged(n);
        for (std::size_t j = 0; j < n; ++j)
            tagged[j] = {key(cell(pos(0, j), 0), cell(pos(1, j), 1), cell(pos(2, j), 2)), unsigned(j)};
        std::sort(tagged.begin(), tagged.end());
        order.resize(n);
        for (std::size_t j = 0; j < n; ++j) {
            if (j == 0 || tagged[j].first != tagged[j - 1].first) {
                keys.push_back(tagged[j].first);
                start.push_back(unsigned(j));
            }
            order[j] = tagged[j].second;
        }
        start.push_back(unsigned(n));
    }

    // Calls f(node) for every node in the cells x0..x1, y0..y1, z0..z1.
    template <class F>
    void visit(std::int64_t const lo[3], std::int64_t const hi[3], F&& f) const
    {
        for (std::int64_t x = lo[0]; x <= hi[0]; ++x)
            for (std::int64_t y = lo[1]; y <= hi[1]; ++y) {
                auto it = std::lower_bound(keys.begin(), keys.end(), key(x, y, lo[2]));
                for (; it != keys.end() && *it <= key(x, y, hi[2]); ++it) {
                    std::size_t c = it - keys.begin();
                    for (unsigned s = start[c]; s < start[c + 1]; ++s) f(order[s]);
                }
            }
    }
};

double squared(dense2D<double> const& pos, unsigned a, double const* p)
{
    double q = 0;
    for (int k = 0; k < 3; ++k) q += (pos(k, a) - p[k]) * (pos(k, a) - p[k]);
    return q;
}

// The same map as merge(pos, merged, tol): each node onto the lowest-numbered other node within
// tol, then along the map while the number falls.
std::vector<unsigned> grid_merge(dense2D<double> const& pos)
{
    grid g(pos, tol);
    std::size_t n = pos.cols();
    std::vector<unsigned> merged(n);
    for (std::size_t i = 0; i < n; ++i) {
        double const* p = pos.col(i);
        std::int64_t lo[3], hi[3];
        for (int k = 0; k < 3; ++k) {
            lo[k] = g.cell(p[k] - tol, k);
            hi[k] = g.cell(p[k] + tol, k);
        }
        unsigned best = unsigned(i);
        g.visit(lo, hi, [&](unsigned c) {
            if (c != i && (best == i || c < best) && squared(pos, c, p) <= tol * tol) best = c;
        });
        merged[i] = best;
    }
    for (std::size_t i = 0; i < n; ++i) {
        unsigned w = unsigned(i), cur = unsigned(i), best = ~0u;
        for (;;) {
            w = cur;
            cur = merged[w];
            if (cur == w || !(cur < best)) break;
            best = cur;
        }
        merged[i] = w;
    }
    return merged;
}

// Closest node by rings of grid cells of about one node each.
struct grid_closest {
    grid g;
    double h;
    dense2D<double> const& pos;
    grid_closest(dense2D<double> const& p, double cell) : g(p, cell), h(cell), pos(p) {}

    unsigned operator()(double const* p) const
    {
        unsigned best = ~0u;
        double best_q = INFINITY;
        std::int64_t centre[3];
        for (int k = 0; k < 3; ++k) centre[k] = g.cell(p[k], k);
        for (std::int64_t r = 0;; ++r) {
            std::int64_t lo[3], hi[3];
            for (int k = 0; k < 3; ++k) {
                lo[k] = std::max<std::int64_t>(centre[k] - r, 0);
                hi[k] = centre[k] + r;
            }
            g.visit(lo, hi, [&](unsigned c) {
                double q = squared(pos, c, p);
                if (q < best_q) best_q = q, best = c;
            });
            // Everything within r cells is seen: stop once the best is closer than that.
            if (best != ~0u && std::sqrt(best_q) <= r * h) return best;
        }
    }
};

std::vector<double> queries()
{
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    std::vector<double> q(3 * n_points);
    for (double& v : q) v = u(rng);
    return q;
}

void BM_merge(benchmark::State& state)
{
    dense2D<double> pos;
    dense1D<unsigned, 8> merged;
    int count = 0;
    for (auto _ : state) {
        state.PauseTiming();
        pos.copy(cloud());
        state.ResumeTiming();
        count = qv7::tessarium::merge(pos, merged, tol);
        benchmark::DoNotOptimize(count);
    }
    state.counters["merged"] = count;
    std::vector<unsigned> expected = grid_merge(cloud());
    if (!std::equal(expected.begin(), expected.end(), merged.begin())) {
        std::fprintf(stderr, "merge and the grid baseline disagree\n");
        std::abort();
    }
}

void BM_merge_grid_baseline(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(grid_merge(cloud()).data());
}

// state.range(0): 0 for random numbering, 1 for Morton numbering.
dense2D<double> const& points(benchmark::State const& state)
{
    return state.range(0) ? ordered_cloud() : cloud();
}

void BM_detector_build_and_query(benchmark::State& state)
{
    std::vector<double> q = queries();
    for (auto _ : state) {
        qv7::tessarium::node_detector nd(points(state));
        unsigned sum = 0;
        for (unsigned i = 0; i < n_points; ++i)
            sum += nd.find_closest(qv7::vector_fixed<double, 3>{q[3 * i], q[3 * i + 1], q[3 * i + 2]});
        benchmark::DoNotOptimize(sum);
    }
}

void BM_detector_grid_baseline(benchmark::State& state)
{
    std::vector<double> q = queries();
    for (auto _ : state) {
        grid_closest closest(points(state), 1.0 / 100);
        unsigned sum = 0;
        for (unsigned i = 0; i < n_points; ++i) sum += closest(&q[3 * i]);
        benchmark::DoNotOptimize(sum);
    }
}

}  // namespace

// One pass of each, five times over: medians are quoted.
#define SEARCH_BENCHMARK(f) \
    BENCHMARK(f)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)->ReportAggregatesOnly(true)
SEARCH_BENCHMARK(BM_merge);
SEARCH_BENCHMARK(BM_merge_grid_baseline);
SEARCH_BENCHMARK(BM_detector_build_and_query)->Arg(0)->Arg(1);
SEARCH_BENCHMARK(BM_detector_grid_baseline)->Arg(0)->Arg(1);
BENCHMARK_MAIN();
