// Node graph of about a million tetrahedra: the two-pass build through node-to-element lists
// beside an adjacency built by sorting all directed edge pairs, on lexicographic and on random
// node numbers.
#include "tessarium/graphs.h"

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

dense2D<unsigned> make_box(unsigned n, bool shuffled)
{
    unsigned const p = n + 1;
    std::vector<unsigned> number(std::size_t(p) * p * p);
    std::iota(number.begin(), number.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
    static unsigned const tets[6][4] = {{0, 1, 3, 7}, {0, 5, 1, 7}, {0, 3, 2, 7},
                                        {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 6, 4, 7}};
    dense2D<unsigned> connect;
    connect.resize(4, std::size_t(n) * n * n * 6);
    std::size_t e = 0;
    for (unsigned k = 0; k < n; ++k)
        for (unsigned j = 0; j < n; ++j)
            for (unsigned i = 0; i < n; ++i)
                for (unsigned s = 0; s < 6; ++s, ++e)
                    for (unsigned r = 0; r < 4; ++r) {
                        unsigned c = tets[s][r];
                        connect(r, e) = number[(i + (c & 1)) + p * ((j + (c >> 1 & 1)) + std::size_t(p) * (k + (c >> 2)))];
                    }
    return connect;
}

dense2D<unsigned> const& mesh(bool shuffled)
{
    static dense2D<unsigned> meshes[2];
    if (meshes[shuffled].empty()) meshes[shuffled] = make_box(cubes, shuffled);
    return meshes[shuffled];
}

void BM_node_graph(benchmark::State& state)
{
    auto const& connect = mesh(state.range(0) != 0);
    for (auto _ : state) {
        dense1D<unsigned, 8> offsets, targets;
        qv7::tessarium::get_node_graph(connect, offsets, targets);
        benchmark::DoNotOptimize(targets.data());
    }
}

// Every ordered pair of nodes of each element as one 64-bit key, sorted and made unique, then
// counted into offsets.
void BM_sorted_pairs_graph(benchmark::State& state)
{
    auto const& connect = mesh(state.range(0) != 0);
    for (auto _ : state) {
        std::vector<std::uint64_t> pairs;
        pairs.reserve(connect.cols() * 12);
        for (std::size_t e = 0; e < connect.cols(); ++e)
            for (int a = 0; a < 4; ++a)
                for (int b = 0; b < 4; ++b)
                    if (a != b) pairs.push_back(std::uint64_t(connect(a, e)) << 32 | connect(b, e));
        std::sort(pairs.begin(), pairs.end());
        pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
        std::vector<unsigned> offsets(std::size_t(pairs.back() >> 32) + 2, 0), targets(pairs.size());
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            ++offsets[(pairs[k] >> 32) + 1];
            targets[k] = unsigned(pairs[k]);
        }
        std::partial_sum(offsets.begin(), offsets.end(), offsets.begin());
        benchmark::DoNotOptimize(targets.data());
    }
}

BENCHMARK(BM_node_graph)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_sorted_pairs_graph)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
