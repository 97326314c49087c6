// Pieces and skins of about one and four million tetrahedra: get_subdomains (both forms) and
// get_elements_on_boundaries on the mesh's skin, beside get_neighbors on the same mesh, which the
// others take as given.
#include "box_mesh.h"
#include "tessarium/connectivity.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

using qv7::dense1D;
using qv7::dense2D;
using qv7::ET_TETRA4;
namespace ts = qv7::tessarium;

// 6 n^3 tetrahedra: 998,250 for n = 55, 3,950,532 for n = 87.
struct prepared {
    dense2D<unsigned> connect, neighbors, skin;
    dense1D<unsigned, 8> ancestors;
};

prepared const& mesh(unsigned n)
{
    static std::map<unsigned, prepared> meshes;
    prepared& m = meshes[n];
    if (!m.connect.empty()) return m;
    m.connect = make_box(n, true, false);
    if (ts::get_neighbors(m.connect, ET_TETRA4, false, m.neighbors) != 0 ||
        ts::get_mesh_boundaries(m.connect, m.neighbors, ET_TETRA4, m.skin) != 0 ||
        ts::get_ancestors(m.connect, m.ancestors) != 0) {
        std::fprintf(stderr, "could not prepare the mesh\n");
        std::abort();
    }
    return m;
}

void count(benchmark::State& state, std::size_t items)
{
    state.counters["elements"] = double(mesh(unsigned(state.range(0))).connect.cols());
    state.SetItemsProcessed(std::int64_t(state.iterations() * items));
}

void expect(int code)
{
    if (code == 0) return;
    std::fprintf(stderr, "failed with %d\n", code);
    std::abort();
}

void BM_get_neighbors(benchmark::State& state)
{
    prepared const& m = mesh(unsigned(state.range(0)));
    dense2D<unsigned> N;
    for (auto _ : state) expect(ts::get_neighbors(m.connect, ET_TETRA4, false, N));
    count(state, m.connect.cols());
}

void BM_get_subdomains(benchmark::State& state)
{
    prepared const& m = mesh(unsigned(state.range(0)));
    dense1D<unsigned, 8> indices, offsets;
    for (auto _ : state) expect(ts::get_subdomains(m.neighbors, indices, offsets));
    if (offsets.size() != 2) std::abort();
    count(state, m.connect.cols());
}

// The reordering form, on fresh copies made outside the timing.
void BM_get_subdomains_reorder(benchmark::State& state)
{
    prepared const& m = mesh(unsigned(state.range(0)));
    dense2D<unsigned> C, N;
    dense1D<unsigned, 8> offsets;
    for (auto _ : state) {
        state.PauseTiming();
        C.copy(m.connect);
        N.copy(m.neighbors);
        state.ResumeTiming();
        expect(ts::get_subdomains(C, N, offsets));
    }
    count(state, m.connect.cols());
}

void BM_get_elements_on_boundaries(benchmark::State& state)
{
    prepared const& m = mesh(unsigned(state.range(0)));
    dense1D<unsigned, 8> found;
    unsigned stride = 0;
    for (auto _ : state)
        expect(ts::get_elements_on_boundaries(m.skin, m.connect, m.neighbors, m.ancestors, ET_TETRA4, found, stride));
    state.counters["skin"] = double(m.skin.cols());
    count(state, m.skin.cols());
}

}  // namespace

BENCHMARK(BM_get_neighbors)->Arg(55)->Arg(87)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_get_subdomains)->Arg(55)->Arg(87)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_get_subdomains_reorder)->Arg(55)->Arg(87)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_get_elements_on_boundaries)->Arg(55)->Arg(87)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
