// Shape qualities of about a million tetrahedra and a million hexahedra on a box of cubes whose
// nodes are moved off the grid by a smooth closed-form jitter. bench/quality_vtk.py builds the same
// meshes and times VTK's vtkMeshQuality on them.
#include "tessarium/quality.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

using qv7::dense1D;
using qv7::dense2D;

constexpr unsigned tet_cubes = 55;    // 6 tetrahedra per cube: 998,250 elements
constexpr unsigned hexa_cubes = 100;  // 1,000,000 elements

// Node (i, j, k) of the grid moved by up to a tenth of a cube along each axis.
dense2D<double> make_nodes(unsigned n)
{
    static double const f[3][4] = {{1.3, 2.1, 0.7, 0.0}, {0.9, 1.7, 2.3, 1.0}, {2.2, 0.5, 1.9, 2.0}};
    unsigned const p = n + 1;
    dense2D<double> pos;
    pos.resize(3, std::size_t(p) * p * p);
    for (unsigned k = 0, node = 0; k < p; ++k)
        for (unsigned j = 0; j < p; ++j)
            for (unsigned i = 0; i < p; ++i, ++node) {
                double grid[3] = {double(i), double(j), double(k)};
                for (unsigned a = 0; a < 3; ++a)
                    pos(a, node) = grid[a] + 0.1 * std::sin(f[a][0] * i + f[a][1] * j + f[a][2] * k + f[a][3]);
            }
    return pos;
}

// The cubes as hexahedra or as six positive tetrahedra around the diagonal 0-7.
dense2D<unsigned> make_elements(unsigned n, bool tetrahedra)
{
    // Corners by bits x + 2y + 4z.
    static unsigned const hexa[1][8] = {{0, 1, 3, 2, 4, 5, 7, 6}};
    static unsigned const tets[6][4] = {{0, 3, 1, 7}, {0, 1, 5, 7}, {0, 2, 3, 7},
                                        {0, 6, 2, 7}, {0, 5, 4, 7}, {0, 4, 6, 7}};
    unsigned const p = n + 1, rows = tetrahedra ? 4 : 8, per_cube = tetrahedra ? 6 : 1;
    dense2D<unsigned> connect;
    connect.resize(rows, std::size_t(n) * n * n * per_cube);
    std::size_t e = 0;
    for (unsigned k = 0; k < n; ++k)
        for (unsigned j = 0; j < n; ++j)
            for (unsigned i = 0; i < n; ++i)
                for (unsigned s = 0; s < per_cube; ++s, ++e)
                    for (unsigned r = 0; r < rows; ++r) {
                        unsigned c = tetrahedra ? tets[s][r] : hexa[0][r];
                        connect(r, e) = (i + (c & 1)) + p * ((j + (c >> 1 & 1)) + p * (k + (c >> 2)));
                    }
    return connect;
}

void run(benchmark::State& state, unsigned n, qv7::element_type type)
{
    dense2D<double> pos = make_nodes(n);
    dense2D<unsigned> connect = make_elements(n, type == qv7::ET_TETRA4);
    dense1D<double, 8> q;
    for (auto _ : state) {
        if (qv7::tessarium::shape_qualities(pos, connect, type, q) != 0) state.SkipWithError("refused");
        benchmark::DoNotOptimize(q.data());
    }
    double inverted = 0, sum = 0;
    for (double v : q) inverted += v < 0, sum += v;
    state.counters["elements"] = double(connect.cols());
    state.counters["mean_quality"] = sum / connect.cols();
    state.counters["inverted"] = inverted;
}

void BM_shape_qualities_tetra(benchmark::State& state)
{
    run(state, tet_cubes, qv7::ET_TETRA4);
}
void BM_shape_qualities_hexa(benchmark::State& state)
{
    run(state, hexa_cubes, qv7::ET_HEXA8);
}

}  // namespace

BENCHMARK(BM_shape_qualities_tetra)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_shape_qualities_hexa)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
