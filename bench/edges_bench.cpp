// Edges of about a million tetrahedra: copy_edges beside the plain sort of the same normalised
// 64-bit pairs (std::sort + std::unique, the pairs built beforehand), on lexicographic and on
// shuffled node numbers. Rates are edges extracted per second.
#include "tessarium/edges.h"

#include <benchmark/benchmark.h>

#include <algorithm>
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
    state.counters["edges"] = n;
    state.counters["edges/s"] = benchmark::Counter(double(n), benchmark::Counter::kIsIterationInvariantRate);
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
    state.counters["edges"] = edges.cols();
    state.counters["edges/s"] =
        benchmark::Counter(double(edges.cols()), benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(BM_sort_unique_baseline)->ArgName("shuffled")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_copy_edges)->ArgName("shuffled")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
