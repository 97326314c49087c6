// Reading and writing NASTRAN decks of about a million tetrahedra, in free field (as the library
// writes them) and in small field, with meshio's reader and writer timed on the same decks where
// this machine has it.
#include "tessarium/tessarium.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <string>

using namespace qv7;

namespace {

std::atomic<long> heap_allocations{0};
// operator new is replaced below to count heap allocations. It takes its memory through this
// pointer, so that the compiler does not pair malloc with the standard operator delete (which
// frees with free).
void* (*volatile raw_allocate)(std::size_t) = std::malloc;

constexpr unsigned cubes_per_side = 55;  // 55^3 cubes of 6 tetrahedra: 998250 elements

struct tet_mesh {
    dense2D<double> pos;
    dense2D<unsigned> tets;
};

// A cube grid, each cube cut into six tetrahedra around its main diagonal.
tet_mesh const& mesh()
{
    static tet_mesh const m = [] {
        constexpr unsigned n = cubes_per_side, p = n + 1;
        static unsigned const cube[6][4] = {{0, 1, 3, 7}, {0, 1, 7, 5}, {0, 4, 5, 7},
                                            {0, 2, 7, 3}, {0, 2, 6, 7}, {0, 4, 7, 6}};
        tet_mesh made;
        made.pos.resize(3, p * p * p);
        for (unsigned c = 0; c < p * p * p; ++c) {
            made.pos(0, c) = 0.1 * (c % p);
            made.pos(1, c) = 0.1 * (c / p % p);
            made.pos(2, c) = -0.1 * (c / (p * p));
        }
        made.tets.resize(4, 6 * n * n * n);
        std::size_t e = 0;
        for (unsigned c = 0; c < n * n * n; ++c) {
            unsigned i = c % n, j = c / n % n, k = c / (n * n), corner[8];
            for (unsigned b = 0; b < 8; ++b) corner[b] = (i + (b & 1)) + p * ((j + (b >> 1 & 1)) + p * (k + (b >> 2)));
            for (auto const& t : cube) {
                for (unsigned q = 0; q < 4; ++q) made.tets(q, e) = corner[t[q]];
                ++e;
            }
        }
        return made;
    }();
    return m;
}

std::string bench_path(char const* name)
{
    return std::string("/tmp/tessarium_bench_") + name;
}

std::size_t file_size(std::string const& path)
{
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    return in ? static_cast<std::size_t>(in.tellg()) : 0;
}

std::string const& free_deck()
{
    static std::string const path = [] {
        std::string p = bench_path("free.bdf");
        tessarium::NASTRAN_output(p.c_str(), mesh().pos, mesh().tets, ET_TETRA4);
        return p;
    }();
    return path;
}

// Small field: 8-character fields, IDs right-justified, the tetrahedra in file order.
std::string const& small_deck()
{
    static std::string const path = [] {
        std::string p = bench_path("small.bdf");
        std::FILE* f = std::fopen(p.c_str(), "w");
        tet_mesh const& m = mesh();
        std::fputs("BEGIN BULK\n", f);
        for (std::size_t j = 0; j < m.pos.cols(); ++j)
            std::fprintf(f, "GRID    %8zu        %8.4f%8.4f%8.4f\n", j + 1, m.pos(0, j), m.pos(1, j), m.pos(2, j));
        for (std::size_t e = 0; e < m.tets.cols(); ++e)
            std::fprintf(f, "CTETRA  %8zu       1%8u%8u%8u%8u\n", e + 1, m.tets(0, e) + 1, m.tets(2, e) + 1,
                         m.tets(1, e) + 1, m.tets(3, e) + 1);
        std::fputs("ENDDATA\n", f);
        std::fclose(f);
        return p;
    }();
    return path;
}

void read_deck(benchmark::State& state, std::string const& path)
{
    std::size_t bytes = file_size(path);
    long allocations = 0;
    for (auto _ : state) {
        dense2D<double> pos;
        dense2D<unsigned> connectM;
        element_type FE = ET_NONE;
        long before = heap_allocations;
        int result = tessarium::NASTRAN_input(path.c_str(), pos, connectM, FE);
        allocations = heap_allocations - before;
        if (result != 0 || connectM.cols() != mesh().tets.cols()) state.SkipWithError("deck not read back");
        benchmark::DoNotOptimize(pos.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
    state.counters["MB/s"] = benchmark::Counter(double(bytes) * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["new_per_1k_cards"] = 1000.0 * double(allocations) / double(mesh().tets.cols());
}

void BM_NASTRAN_read_free(benchmark::State& state)
{
    read_deck(state, free_deck());
}
void BM_NASTRAN_read_small(benchmark::State& state)
{
    read_deck(state, small_deck());
}

void BM_NASTRAN_write_free(benchmark::State& state)
{
    std::string path = bench_path("written.bdf");
    mesh();
    for (auto _ : state) tessarium::NASTRAN_output(path.c_str(), mesh().pos, mesh().tets, ET_TETRA4);
    double bytes = double(file_size(path));
    state.SetBytesProcessed(static_cast<int64_t>(double(state.iterations()) * bytes));
    state.counters["MB/s"] = benchmark::Counter(bytes * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
}

// meshio, run by Debian's Python; the script prints the seconds of the timed step alone.
bool has_meshio()
{
    return std::system("/usr/bin/python3 -c 'import meshio' >/dev/null 2>&1") == 0;
}

double python_seconds(std::string const& script)
{
    std::string command = "/usr/bin/python3 -c \"" + script + "\" 2>/dev/null";
    double seconds = -1.0;
    if (std::FILE* pipe = popen(command.c_str(), "r")) {
        if (std::fscanf(pipe, "%lf", &seconds) != 1) seconds = -1.0;
        pclose(pipe);
    }
    return seconds;
}

void time_meshio(benchmark::State& state, std::string const& script, std::size_t bytes)
{
    if (!has_meshio()) {
        state.SkipWithError("meshio is not installed");
        return;
    }
    for (auto _ : state) {
        double seconds = python_seconds(script);
        if (seconds < 0) {
            state.SkipWithError("meshio failed");
            return;
        }
        state.SetIterationTime(seconds);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
    state.counters["MB/s"] = benchmark::Counter(double(bytes) * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
}

std::string meshio_read_script(std::string const& path)
{
    return "import meshio, time; t = time.perf_counter(); meshio.read('" + path +
           "', file_format='nastran'); print(time.perf_counter() - t)";
}

void BM_meshio_read_free(benchmark::State& state)
{
    time_meshio(state, meshio_read_script(free_deck()), file_size(free_deck()));
}
void BM_meshio_read_small(benchmark::State& state)
{
    time_meshio(state, meshio_read_script(small_deck()), file_size(small_deck()));
}

void BM_meshio_write(benchmark::State& state)
{
    std::string out = bench_path("meshio_written.bdf");
    std::string script = "import meshio, time; m = meshio.read('" + free_deck() +
                         "', file_format='nastran'); t = time.perf_counter(); meshio.write('" + out +
                         "', m, file_format='nastran'); print(time.perf_counter() - t)";
    time_meshio(state, script, file_size(free_deck()));
}

}  // namespace

void* operator new(std::size_t n)
{
    ++heap_allocations;
    if (void* p = raw_allocate(n ? n : 1)) return p;
    throw std::bad_alloc();
}

BENCHMARK(BM_NASTRAN_write_free)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)->UseRealTime();
BENCHMARK(BM_NASTRAN_read_free)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)->UseRealTime();
BENCHMARK(BM_NASTRAN_read_small)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)->UseRealTime();
BENCHMARK(BM_meshio_write)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)->UseManualTime();
BENCHMARK(BM_meshio_read_free)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)->UseManualTime();
BENCHMARK(BM_meshio_read_small)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)->UseManualTime();

BENCHMARK_MAIN();
