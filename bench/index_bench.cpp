// Distinct nodes and counting sort on a 10M-entry tetrahedral connectivity, beside a plain
// bit-vector pass over the same entries and a comparison sort giving the same order.
#include "tessarium/index_utilities.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <vector>

namespace {

using IDs = qv7::dense1D<unsigned, 8>;
constexpr unsigned cubes_per_side = 75;  // 6 tetrahedra per cube: 10.1M entries, 439k nodes

// Tetrahedra of a structured cube grid; node numbers lexicographic or, if shuffled, random.
qv7::dense2D<unsigned> make_tetra_mesh(bool shuffled)
{
    unsigned const n = cubes_per_side, p = n + 1;
    std::vector<unsigned> number(std::size_t(p) * p * p);
    std::iota(number.begin(), number.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
    static unsigned const tets[6][4] = {{0, 1, 3, 7}, {0, 1, 5, 7}, {0, 2, 3, 7},
                                        {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 4, 6, 7}};
    qv7::dense2D<unsigned> connect;
    connect.resize(4, std::size_t(n) * n * n * 6);
    std::size_t e = 0;
    for (unsigned k = 0; k < n; ++k)
        for (unsigned j = 0; j < n; ++j)
            for (unsigned i = 0; i < n; ++i)
                for (auto const& tet : tets) {
                    for (unsigned r = 0; r < 4; ++r) {
                        unsigned c = tet[r];
                        std::size_t node = (i + (c & 1)) + p * ((j + (c >> 1 & 1)) + std::size_t(p) * (k + (c >> 2)));
                        connect(r, e) = number[node];
                    }
                    ++e;
                }
    return connect;
}

qv7::dense2D<unsigned> const& mesh(bool shuffled)
{
    static qv7::dense2D<unsigned> natural = make_tetra_mesh(false), random = make_tetra_mesh(true);
    return shuffled ? random : natural;
}

// The same result as unique_indices with a bit per possible node number.
void bit_vector_unique(qv7::dense2D<unsigned> const& connect, IDs& out)
{
    unsigned const* v = connect.col(0);
    std::size_t n = connect.rows() * connect.cols();
    unsigned m = *std::max_element(v, v + n);
    std::vector<std::uint64_t> bits(std::size_t(m) / 64 + 1, 0);
    for (std::size_t i = 0; i < n; ++i) {
        std::uint64_t mask = std::uint64_t(1) << (v[i] & 63);
        std::uint64_t& word = bits[v[i] >> 6];
        if (!(word & mask)) {
            word |= mask;
            out.push_back(v[i]);
        }
    }
}

void BM_unique_indices(benchmark::State& state)
{
    auto const& connect = mesh(state.range(0));
    for (auto _ : state) {
        IDs out;
        qv7::tessarium::unique_indices(out, connect);
        benchmark::DoNotOptimize(out.data());
    }
}

void BM_bit_vector_unique(benchmark::State& state)
{
    auto const& connect = mesh(state.range(0));
    for (auto _ : state) {
        IDs out;
        bit_vector_unique(connect, out);
        benchmark::DoNotOptimize(out.data());
    }
}

void BM_get_sorted_order(benchmark::State& state)
{
    IDs values = mesh(state.range(0)).flat();
    for (auto _ : state) {
        IDs order, offsets;
        qv7::tessarium::get_sorted_order(values, order, offsets);
        benchmark::DoNotOptimize(order.data());
    }
}

// The same with outputs whose storage is reused from call to call, as in a loop of a caller.
void BM_get_sorted_order_reused(benchmark::State& state)
{
    IDs values = mesh(state.range(0)).flat();
    IDs order, offsets;
    for (auto _ : state) {
        qv7::tessarium::get_sorted_order(values, order, offsets);
        benchmark::DoNotOptimize(order.data());
    }
}

// What a comparison sort costs for the same order: positions sorted stably by value.
void BM_stable_sort_order(benchmark::State& state)
{
    IDs values = mesh(state.range(0)).flat();
    for (auto _ : state) {
        std::vector<unsigned> order(values.size());
        std::iota(order.begin(), order.end(), 0u);
        std::stable_sort(order.begin(), order.end(), [&](unsigned a, unsigned b) { return values[a] < values[b]; });
        benchmark::DoNotOptimize(order.data());
    }
}

void configure(benchmark::internal::Benchmark* b)
{
    b->ArgName("shuffled")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly(true);
}

BENCHMARK(BM_unique_indices)->Apply(configure);
BENCHMARK(BM_bit_vector_unique)->Apply(configure);
BENCHMARK(BM_get_sorted_order)->Apply(configure);
BENCHMARK(BM_get_sorted_order_reused)->Apply(configure);
BENCHMARK(BM_stable_sort_order)->Apply(configure);

}  // namespace

BENCHMARK_MAIN();
