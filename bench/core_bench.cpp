// check_IDs over a 10M-entry connectivity and matvec::push_back of 10M columns, each beside a
// plain std::vector loop doing the same work.
#include <tessarium/tessarium.h>

#include <benchmark/benchmark.h>

#include <array>
#include <vector>

using namespace qv7;

namespace {

constexpr std::size_t entries = 10'000'000;
constexpr unsigned nodes = 2'000'000;

dense2D<unsigned> tetrahedra()
{
    dense2D<unsigned> connect;
    connect.resize(4, entries / 4);
    unsigned* p = connect.col(0);
    for (std::size_t k = 0; k < entries; ++k) p[k] = unsigned((k * 2654435761u) % nodes);
    return connect;
}

void check_IDs_typed(benchmark::State& state)
{
    dense2D<unsigned> connect = tetrahedra();
    for (auto _ : state) benchmark::DoNotOptimize(tessarium::check_IDs(connect, ET_TETRA4, nodes));
    state.SetItemsProcessed(state.iterations() * entries);
}

void check_IDs_untyped(benchmark::State& state)
{
    dense2D<unsigned> connect = tetrahedra();
    for (auto _ : state) benchmark::DoNotOptimize(tessarium::check_IDs(connect, nodes));
    state.SetItemsProcessed(state.iterations() * entries);
}

void baseline_vector_scan(benchmark::State& state)
{
    dense2D<unsigned> connect = tetrahedra();
    std::vector<unsigned> v(connect.col(0), connect.col(0) + entries);
    for (auto _ : state) {
        bool ok = true;
        for (unsigned x : v)
            if (x >= nodes) {
                ok = false;
                break;
            }
        benchmark::DoNotOptimize(ok);
    }
    state.SetItemsProcessed(state.iterations() * entries);
}

void matvec_push_back(benchmark::State& state)
{
    for (auto _ : state) {
        dense2D<unsigned> M;
        for (unsigned j = 0; j < entries; ++j) matvec::push_back(vector_fixed<unsigned, 3>{j, j + 1, j + 2}, M);
        benchmark::DoNotOptimize(M.col(0));
    }
    state.SetItemsProcessed(state.iterations() * entries);
}

void baseline_vector_push_back(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<std::array<unsigned, 3>> v;
        for (unsigned j = 0; j < entries; ++j) v.push_back({j, j + 1, j + 2});
        benchmark::DoNotOptimize(v.data());
    }
    state.SetItemsProcessed(state.iterations() * entries);
}

}  // namespace

BENCHMARK(check_IDs_typed)->Unit(benchmark::kMillisecond);
BENCHMARK(check_IDs_untyped)->Unit(benchmark::kMillisecond);
BENCHMARK(baseline_vector_scan)->Unit(benchmark::kMillisecond);
BENCHMARK(matvec_push_back)->Unit(benchmark::kMillisecond);
BENCHMARK(baseline_vector_push_back)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
