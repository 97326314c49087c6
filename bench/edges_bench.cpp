// Edges of about a million tetrahedra: copy_edges, edge_qualities and H_shock beside the plain sort
// of the same normalised 64-bit pairs (std::sort + std::unique, the pairs built beforehand), on
// lexicographic and on shuffled node numbers. Sizes grow along the box; the tensors have three
// different sizes along axes that turn over the box. Rates are edges per second.
#include "tessarium/edges.h"
#include "tessarium/metric_measures.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <random>
#include <vector>

namespace {

using qv7::dense1D;
using qv7::dense2D;

constexpr unsigned cubes = 55;  // 6 tetrahedra per cube: 998,250 elements

// A box of n^3 unit cubes, each cut into six tetrahedra around its diagonal, with coordinates.
struct tet_box {
    dense2D<double> pos;
    dense2D<unsigned> connect;
    dense1D<double, 8> sizes;
    dense2D<double> tensors;
    dense2D<unsigned> edges;

    tet_box(unsigned n, bool shuffled)
    {
        unsigned const p = n + 1;
        std::vector<unsigned> number(std::size_t(p) * p * p);
        std::iota(number.begin(), number.end(), 0u);
        if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
        pos.resize(3, number.size());
        for (unsigned k = 0; k < p; ++k)
            for (unsigned j = 0; j < p; ++j)
                for (unsigned i = 0; i < p; ++i) {
                    double* x = pos.col(number[i + p * (j + std::size_t(p) * k)]);
                    x[0] = i, x[1] = j, x[2] = k;
                }
        // Corners by bits x + 2y + 4z.
        static unsigned const tets[6][4] = {{0, 1, 3, 7}, {0, 5, 1, 7}, {0, 3, 2, 7},
                                            {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 6, 4, 7}};
        connect.resize(4, std::size_t(n) * n * n * 6);
        std::size_t e = 0;
        for (unsigned k = 0; k < n; ++k)
            for (unsigned j = 0; j < n; ++j)
                for (unsigned i = 0; i < n; ++i)
                    for (auto const& t : tets) {
                        for (unsigned r = 0; r < 4; ++r) {
                            unsigned c = t[r];
                            std::size_t x = i + (c & 1), y = j + (c >> 1 & 1), z = k + (c >> 2);
                            connect(r, e) = number[x + p * (y + std::size_t(p) * z)];
                        }
                        ++e;
                    }
        sizes.resize(pos.cols());
        tensors.resize(6, pos.cols());
        for (std::size_t i = 0; i < pos.cols(); ++i) {
            double const* x = pos.col(i);
            sizes[i] = 0.5 + 0.02 * x[0] + 0.01 * x[1] + 0.03 * x[2];
            double t = 0.05 * x[2], u = 0.03 * x[0], eig[3] = {1, 4, 2};
            // R^t diag(eig / h^2) R, R a turn by t about z after a turn by u about x.
            double R[3][3] = {{std::cos(t), -std::sin(t) * std::cos(u), std::sin(t) * std::sin(u)},
                              {std::sin(t), std::cos(t) * std::cos(u), -std::cos(t) * std::sin(u)},
                              {0, std::sin(u), std::cos(u)}};
            double* M = tensors.col(i);
            for (unsigned c = 0, k = 0; c < 3; ++c)
                for (unsigned r = 0; r <= c; ++r, ++k) {
                    M[k] = 0;
                    for (unsigned q = 0; q < 3; ++q) M[k] += R[q][r] * eig[q] * R[q][c] / (sizes[i] * sizes[i]);
                }
        }
        qv7::tessarium::copy_edges(connect, qv7::ET_TETRA4, edges);
    }
};

tet_box const& mesh(bool shuffled)
{
    static tet_box boxes[2] = {tet_box(cubes, false), tet_box(cubes, true)};
    return boxes[shuffled];
}

std::vector<std::uint64_t> normalised_pairs(dense2D<unsigned> const& C)
{
    static unsigned const local[6][2] = {{1, 2}, {2, 0}, {0, 1}, {3, 0}, {3, 1}, {3, 2}};
    std::vector<std::uint64_t> pairs;
    pairs.reserve(C.cols() * 6);
    for (std::size_t e = 0; e < C.cols(); ++e)
        for (auto const& l : local) {
            std::uint64_t a = C(l[0], e), b = C(l[1], e);
            pairs.push_back(a < b ? a << 32 | b : b << 32 | a);
        }
    return pairs;
}

void set_edge_rate(benchmark::State& state, std::size_t edges)
{
    state.counters["edges"] = edges;
    state.counters["edges/s"] = benchmark::Counter(double(edges), benchmark::Counter::kIsIterationInvariantRate);
}

void BM_sort_unique_baseline(benchmark::State& state)
{
    std::vector<std::uint64_t> const pairs = normalised_pairs(mesh(state.range(0)).connect);
    std::vector<std::uint64_t> work;
    std::size_t n = 0;
    for (auto _ : state) {
        state.PauseTiming();
        work = pairs;
        state.ResumeTiming();
        std::sort(work.begin(), work.end());
        n = std::unique(work.begin(), work.end()) - work.begin();
        benchmark::DoNotOptimize(work.data());
    }
    set_edge_rate(state, n);
}

void BM_copy_edges(benchmark::State& state)
{
    dense2D<unsigned> const& C = mesh(state.range(0)).connect;
    dense2D<unsigned> edges;
    for (auto _ : state) {
        edges.clear();
        qv7::tessarium::copy_edges(C, qv7::ET_TETRA4, edges);
        benchmark::DoNotOptimize(edges.data());
    }
    set_edge_rate(state, edges.cols());
}

void BM_edge_qualities(benchmark::State& state)
{
    tet_box const& box = mesh(state.range(0));
    dense2D<unsigned> none;
    int edges = 0;
    for (auto _ : state) {
        qv7::misc::histogram hist;
        edges = state.range(1)
                    ? qv7::tessarium::edge_qualities(box.pos, box.connect, qv7::ET_TETRA4, box.tensors, hist, none)
                    : qv7::tessarium::edge_qualities(box.pos, box.connect, qv7::ET_TETRA4, box.sizes, hist, none);
        benchmark::DoNotOptimize(hist.sum());
    }
    set_edge_rate(state, edges);
}

void BM_H_shock(benchmark::State& state)
{
    tet_box const& box = mesh(state.range(0));
    dense1D<double, 8> vals;
    for (auto _ : state) {
        vals.clear();
        if (state.range(1))
            qv7::tessarium::H_shock(box.pos, box.edges, box.tensors, vals);
        else
            qv7::tessarium::H_shock(box.pos, box.edges, box.sizes, vals);
        benchmark::DoNotOptimize(vals.data());
    }
    set_edge_rate(state, box.edges.cols());
}

}  // namespace

BENCHMARK(BM_sort_unique_baseline)->ArgName("shuffled")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_copy_edges)->ArgName("shuffled")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_edge_qualities)
    ->ArgNames({"shuffled", "tensors"})
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_H_shock)->ArgNames({"shuffled", "tensors"})->ArgsProduct({{0, 1}, {0, 1}})->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
