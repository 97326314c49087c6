// read_mesh and write_mesh against the format functions they stand on, at about a million
// elements: read_mesh of a NASTRAN deck against NASTRAN_input, each portable writer against the
// faithful one of its format.
#include "tessarium/tessarium.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

using namespace qv7;
using namespace qv7::tessarium;

namespace {

// 55^3 cubes of six tetrahedra (998250), or 707^2 squares of two triangles (999698).
mesh const& grid(bool solid)
{
    static mesh meshes[2];
    mesh& m = meshes[solid];
    if (!m.empty()) return m;
    unsigned n = solid ? 55 : 707, p = n + 1, layers = solid ? p : 1;
    m.pos.resize(3, std::size_t(p) * p * layers);
    for (std::size_t c = 0; c < m.pos.cols(); ++c) {
        m.pos(0, c) = 0.1 * (c % p) + 1e-7;
        m.pos(1, c) = 0.1 * (c / p % p) / 3.0;
        m.pos(2, c) = -0.1 * (c / (std::size_t(p) * p));
    }
    static unsigned const tets[6][4] = {{0, 1, 3, 7}, {0, 1, 7, 5}, {0, 4, 5, 7},
                                        {0, 2, 7, 3}, {0, 2, 6, 7}, {0, 4, 7, 6}};
    static unsigned const tris[2][4] = {{0, 1, 3}, {0, 3, 2}};
    element_block b;
    b.type = solid ? ET_TETRA4 : ET_FACE_T3;
    unsigned cells = solid ? n * n * n : n * n, per = solid ? 6 : 2, rows = solid ? 4 : 3;
    b.connect.resize(rows, std::size_t(cells) * per);
    std::size_t e = 0;
    for (unsigned c = 0; c < cells; ++c) {
        unsigned i = c % n, j = c / n % n, k = solid ? c / (n * n) : 0, corner[8];
        for (unsigned q = 0; q < 8; ++q) corner[q] = (i + (q & 1)) + p * ((j + (q >> 1 & 1)) + p * (k + (q >> 2)));
        for (unsigned t = 0; t < per; ++t, ++e)
            for (unsigned q = 0; q < rows; ++q) b.connect(q, e) = corner[solid ? tets[t][q] : tris[t][q]];
    }
    m.blocks.push_back(b);
    return m;
}

std::string path(std::string const& name)
{
    return "/tmp/tessarium_bench_mesh_io" + name;
}

std::string const& deck()
{
    static std::string const file = [] {
        std::string f = path("_deck.bdf");
        write_mesh(f, grid(true));
        return f;
    }();
    return file;
}

void NASTRAN_input_deck(benchmark::State& state)
{
    for (auto _ : state) {
        dense2D<double> pos;
        dense2D<unsigned> connectM;
        dense1D<unsigned, 8> indices, PIDs;
        dense1D<int, 8> FEs;
        benchmark::DoNotOptimize(NASTRAN_input(deck().c_str(), pos, connectM, indices, FEs, PIDs));
    }
}
BENCHMARK(NASTRAN_input_deck)->Unit(benchmark::kMillisecond);

void read_mesh_deck(benchmark::State& state)
{
    for (auto _ : state) {
        mesh m;
        if (!read_mesh(deck(), m)) state.SkipWithError("read_mesh failed");
    }
}
BENCHMARK(read_mesh_deck)->Unit(benchmark::kMillisecond);

// Writes through write_mesh, portable or faithful.
void write(benchmark::State& state, char const* extension, bool solid, bool faithful)
{
    mesh const& m = grid(solid);
    io_options options;
    options.faithful = faithful;
    std::string file = path(std::string("_out") + extension);
    for (auto _ : state)
        if (!write_mesh(file, m, options)) state.SkipWithError("write_mesh failed");
    std::remove(file.c_str());
}

#define WRITER_PAIR(name, extension, solid)                                                           \
    BENCHMARK_CAPTURE(write, name##_faithful, extension, solid, true)->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(write, name##_portable, extension, solid, false)->Unit(benchmark::kMillisecond)

WRITER_PAIR(VTK, ".vtk", true);
WRITER_PAIR(Medit, ".mesh", true);
WRITER_PAIR(NASTRAN, ".bdf", true);
WRITER_PAIR(FEMAP, ".neu", true);
WRITER_PAIR(EnSight, ".case", true);
WRITER_PAIR(STL, ".stl", false);
WRITER_PAIR(OBJ, ".obj", false);

}  // namespace

BENCHMARK_MAIN();
