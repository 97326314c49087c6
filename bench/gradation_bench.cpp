// Bounding the shock of a random size map on tetrahedral boxes of about 100k, 1M and 4M nodes,
// isotropic and anisotropic, beside a relaxation that sweeps all edges, h_j = min(h_j, h_i + L_ij
// log(1 + bound)), until nothing changes. Counters: queue entries pushed and at most held per
// node, and the peak of resident memory during the call per node (high-water mark reset before).
#include "metrics/H_shock_minimiser.h"
#include "previous_shock_queue.h"
#include "tessarium/gradation.h"
#include "tessarium/graphs.h"
#include "tet_box.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <random>

namespace {

using qv7::dense1D;
using qv7::dense2D;

double const bound = 0.3;

struct box {
    dense2D<double> pos;
    dense2D<unsigned> connect;
    dense1D<double, 8> sizes;
    dense2D<double> tensors;
};

// n^3 cubes of side 1, six tetrahedra each; sizes log-uniform in [0.25, 4], and tensors with
// three such sizes along the axes.
box const& mesh(unsigned n)
{
    static box boxes[3];
    box& b = boxes[n < 100 ? 0 : n < 150 ? 1 : 2];
    if (!b.pos.empty()) return b;
    b.pos = box_positions(n);
    b.connect = tet_box(n, false);
    std::size_t N = b.pos.cols();
    std::mt19937 rng(1);
    std::uniform_real_distribution<double> u(std::log(0.25), std::log(4.0));
    b.sizes = dense1D<double, 8>(N);
    for (double& h : b.sizes) h = std::exp(u(rng));
    b.tensors.resize(6, N, 0.0);
    for (std::size_t v = 0; v < N; ++v)
        for (unsigned d : {0u, 2u, 5u}) b.tensors(d, v) = 1 / std::pow(std::exp(u(rng)), 2);
    return b;
}

long status_kb(char const* field)
{
    FILE* f = std::fopen("/proc/self/status", "r");
    char line[256];
    long kb = 0;
    while (f && std::fgets(line, sizeof line, f))
        if (std::strncmp(line, field, std::strlen(field)) == 0) kb = std::atol(line + std::strlen(field));
    if (f) std::fclose(f);
    return kb;
}

void reset_peak()
{
    FILE* f = std::fopen("/proc/self/clear_refs", "w");
    if (f) std::fputs("5", f), std::fclose(f);
}

template <class Metrics>
void run_exported(benchmark::State& state, Metrics const& start)
{
    box const& b = mesh(unsigned(state.range(0)));
    double peak = 0;
    int changed = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Metrics m;
        m.copy(start);
        long before = status_kb("VmRSS:");
        reset_peak();
        state.ResumeTiming();
        changed = qv7::tessarium::bound_metric_gradations(b.pos, b.connect, qv7::ET_TETRA4, {}, true, 0, bound, m);
        state.PauseTiming();
        peak = std::max(peak, 1024.0 * double(status_kb("VmHWM:") - before));
        state.ResumeTiming();
    }
    double N = double(b.pos.cols());
    state.counters["nodes"] = N;
    state.counters["changed"] = changed;
    state.counters["peak_B_per_node"] = peak / N;
}

void BM_gradation_iso(benchmark::State& state)
{
    run_exported(state, mesh(unsigned(state.range(0))).sizes);
}
void BM_gradation_aniso(benchmark::State& state)
{
    run_exported(state, mesh(unsigned(state.range(0))).tensors);
}

// The same run through the minimiser with a queue of our own, for its counts, on the queue of the
// library or on the previous one: both give the same map, so their times compare the queues.
template <class L, class Queue, class Metrics>
void queue_counts(benchmark::State& state, Metrics const& start)
{
    using manager = typename L::manager_type;
    box const& b = mesh(unsigned(state.range(0)));
    std::size_t N = b.pos.cols();
    Queue queue;
    double peak = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Metrics m;
        m.copy(start);
        long before = status_kb("VmRSS:");
        reset_peak();
        state.ResumeTiming();
        manager mgr(m);
        dense1D<unsigned, 8> offsets, targets, ids(N), status(N, 0u);
        std::iota(ids.begin(), ids.end(), 0u);
        qv7::tessarium::get_node_graph(b.connect, offsets, targets);
        qv7::H_shock_measure<L> measure;
        queue = Queue();
        qv7::H_shock_minimiser<qv7::H_shock_measure<L>, manager>(measure).__bound_metrics(b.pos, offsets, targets, ids,
                                                                                          status, 0, bound, mgr, queue);
        state.PauseTiming();
        peak = std::max(peak, 1024.0 * double(status_kb("VmHWM:") - before));
        state.ResumeTiming();
    }
    state.counters["pushed_per_node"] = double(queue.pushes()) / double(N);
    state.counters["held_per_node"] = double(queue.peak()) / double(N);
    state.counters["peak_B_per_node"] = peak / double(N);
}

using previous = bench_gradation::previous_shock_queue;
void BM_queue_iso(benchmark::State& state)
{
    queue_counts<qv7::length_measure_isotropic<3>, qv7::__shock_queue>(state, mesh(unsigned(state.range(0))).sizes);
}
void BM_queue_aniso(benchmark::State& state)
{
    queue_counts<qv7::length_measure_anisotropic<3>, qv7::__shock_queue>(state, mesh(unsigned(state.range(0))).tensors);
}
void BM_previous_queue_iso(benchmark::State& state)
{
    queue_counts<qv7::length_measure_isotropic<3>, previous>(state, mesh(unsigned(state.range(0))).sizes);
}
void BM_previous_queue_aniso(benchmark::State& state)
{
    queue_counts<qv7::length_measure_anisotropic<3>, previous>(state, mesh(unsigned(state.range(0))).tensors);
}

// Gauss-Seidel sweeps over the node graph, shrinking only, until a sweep changes nothing.
void BM_relaxation_iso(benchmark::State& state)
{
    box const& b = mesh(unsigned(state.range(0)));
    double const step = std::log(1 + bound);
    int sweeps = 0;
    for (auto _ : state) {
        state.PauseTiming();
        dense1D<double, 8> h;
        h.copy(b.sizes);
        state.ResumeTiming();
        dense1D<unsigned, 8> offsets, targets;
        qv7::tessarium::get_node_graph(b.connect, offsets, targets);
        bool changed = true;
        for (sweeps = 0; changed; ++sweeps) {
            changed = false;
            for (std::size_t i = 0; i + 1 < offsets.size(); ++i)
                for (unsigned p = offsets[i]; p < offsets[i + 1]; ++p) {
                    unsigned j = targets[p];
                    double dx = b.pos(0, j) - b.pos(0, i), dy = b.pos(1, j) - b.pos(1, i),
                           dz = b.pos(2, j) - b.pos(2, i);
                    double limit = h[i] + std::sqrt(dx * dx + dy * dy + dz * dz) * step;
                    if (h[j] > limit) h[j] = limit, changed = true;
                }
        }
    }
    state.counters["sweeps"] = sweeps;
}

// 45, 99 and 158 cubes a side: 97,336, 1,000,000 and 4,019,679 nodes.
BENCHMARK(BM_gradation_iso)->Arg(45)->Arg(99)->Unit(benchmark::kSecond);
BENCHMARK(BM_relaxation_iso)->Arg(45)->Arg(99)->Unit(benchmark::kSecond);
BENCHMARK(BM_gradation_aniso)->Arg(45)->Arg(99)->Unit(benchmark::kSecond);
BENCHMARK(BM_previous_queue_iso)->Arg(45)->Arg(99)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_queue_iso)->Arg(45)->Arg(99)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_previous_queue_aniso)->Arg(45)->Arg(99)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_queue_aniso)->Arg(45)->Arg(99)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_gradation_iso)->Name("BM_gradation_iso_4M")->Arg(158)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_gradation_aniso)->Name("BM_gradation_aniso_4M")->Arg(158)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
