// The C++ side of bench/python_bench.py: neighbours and free faces of the same box of tetrahedra
// that the script builds with numpy, called directly.
#include "box_mesh.h"
#include "tessarium/connectivity.h"

#include <benchmark/benchmark.h>

using namespace qv7;

static void BM_neighbors_and_free_faces(benchmark::State& state)
{
    dense2D<unsigned> connect = make_box(unsigned(state.range(0)), true, false);
    for (auto _ : state) {
        dense2D<unsigned> nb, faces;
        if (tessarium::get_neighbors(connect, ET_TETRA4, false, nb) != 0 ||
            tessarium::get_mesh_boundaries(connect, nb, ET_TETRA4, faces) != 0)
            state.SkipWithError("failed");
        benchmark::DoNotOptimize(faces.data());
    }
}
BENCHMARK(BM_neighbors_and_free_faces)->Arg(55)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
