// Distinct nodes and counting sort on a 10M-entry tetrahedral connectivity, beside a plain
// bit-vector pass over the same entries and a comparison sort giving the same order.
#include "tet_box.h"
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
    return tet_box(cubes_per_side, shuffled);
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
