// Node graph of about a million tetrahedra: the two-pass build through node-to-element lists
// beside an adjacency built by sorting all directed edge pairs, on lexicographic and on random
// node numbers.
#include "tessarium/graphs.h"
#include "tet_box.h"

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

dense2D<unsigned> const& mesh(bool shuffled)
{
    static dense2D<unsigned> meshes[2];
    if (meshes[shuffled].empty()) meshes[shuffled] = tet_box(cubes, shuffled);
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
