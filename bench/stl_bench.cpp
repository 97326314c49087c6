// STL_input on generated closed surfaces: a 1M-facet binary file and a 200k-facet text file, read
// and welded. Baselines in the same run: admesh's exact and nearby merge on the binary file, and
// a bare strtod pass over the numbers of the text file. `stl_bench --peak FILE` reads one file
// and prints the peak resident memory of that read; `--make DIR` and `--read FILE` serve
// bench/soup_compare.py.
#include "exchange/stl_soup.h"

#include <tessarium/tessarium.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

using namespace qv7;

namespace {

// A torus of n x m quadrilaterals, two triangles each: a closed surface of 2nm facets.
void torus(unsigned n, unsigned m, dense2D<double>& pos, dense2D<unsigned>& T3)
{
    pos.resize(3, std::size_t(n) * m);
    T3.resize(3, 2 * std::size_t(n) * m);
    double const pi = std::acos(-1.0);
    for (unsigned i = 0; i < n; ++i)
        for (unsigned j = 0; j < m; ++j) {
            double u = 2 * pi * i / n, v = 2 * pi * j / m;
            double* p = pos.col(std::size_t(i) * m + j);
            p[0] = (1 + 0.3 * std::cos(v)) * std::cos(u);
            p[1] = (1 + 0.3 * std::cos(v)) * std::sin(u);
            p[2] = 0.3 * std::sin(v);
            unsigned a = i * m + j, b = ((i + 1) % n) * m + j, c = ((i + 1) % n) * m + (j + 1) % m,
                     d = i * m + (j + 1) % m;
            unsigned* t = T3.col(2 * (std::size_t(i) * m + j));
            unsigned tris[6] = {a, b, c, a, c, d};
            std::memcpy(t, tris, sizeof tris);
        }
}

std::string make_file(char const* name, unsigned n, unsigned m, bool text)
{
    char const* tmp = std::getenv("TMPDIR");
    std::string path = std::string(tmp ? tmp : "/tmp") + "/tessarium_bench_" + std::to_string(getpid()) + name;
    dense2D<double> pos;
    dense2D<unsigned> T3;
    torus(n, m, pos, T3);
    if (tessarium::STL_output(path.c_str(), pos, T3, text) != 0) std::abort();
    return path;
}

std::string const& binary_1M()
{
    static std::string const path = make_file("_1M.stl", 1000, 500, false);
    return path;
}

std::string const& text_200k()
{
    static std::string const path = make_file("_200k.stl", 400, 250, true);
    return path;
}

void read_and_weld(benchmark::State& state, std::string const& path)
{
    std::size_t nodes = 0, triangles = 0;
    for (auto _ : state) {
        dense2D<double> pos;
        dense2D<unsigned> T3;
        if (tessarium::STL_input(path.c_str(), pos, T3) != 0) state.SkipWithError("STL_input failed");
        nodes = pos.cols();
        triangles = T3.cols();
    }
    state.counters["nodes"] = double(nodes);
    state.counters["triangles"] = double(triangles);
}

void BM_STL_input_binary_1M(benchmark::State& state)
{
    read_and_weld(state, binary_1M());
}
void BM_STL_input_text_200k(benchmark::State& state)
{
    read_and_weld(state, text_200k());
}

// The forms alone, to show what the welding costs.
void read_form(benchmark::State& state, std::string const& path, int (*form)(std::FILE*, tessarium::__STL_soup&))
{
    for (auto _ : state) {
        dense2D<double> pos;
        std::FILE* file = std::fopen(path.c_str(), "rb");
        tessarium::__STL_soup soup(pos);
        if (form(file, soup) != 0) state.SkipWithError("form failed");
        soup.close();
        std::fclose(file);
        benchmark::DoNotOptimize(pos.data());
    }
}

void BM_STL_binary_form_1M(benchmark::State& state)
{
    read_form(state, binary_1M(), tessarium::__STL_read_binary);
}
void BM_STL_text_form_200k(benchmark::State& state)
{
    read_form(state, text_200k(), tessarium::__STL_read_text);
}

// The welding alone, on a copy of the 1M-facet soup made outside the timing.
void BM_STL_weld_1M(benchmark::State& state)
{
    dense2D<double> soup;
    std::FILE* file = std::fopen(binary_1M().c_str(), "rb");
    tessarium::__STL_soup reader(soup);
    double min_sqr_height = tessarium::__STL_read_binary(file, reader) == 0 ? reader.close() : 0.0;
    std::fclose(file);
    for (auto _ : state) {
        state.PauseTiming();
        dense2D<double> pos;
        pos.copy(soup);
        dense2D<unsigned> T3;
        T3.resize(3, pos.cols() / 3);
        for (std::size_t k = 0; k < pos.cols(); ++k) T3.data()[k] = static_cast<unsigned>(k);
        state.ResumeTiming();
        if (tessarium::__STL_input_merge(0.05 * std::sqrt(min_sqr_height), pos, T3) != 0)
            state.SkipWithError("welding failed");
    }
}

// admesh, run as a program: its exact check, then its nearby check, on the same binary file.
void BM_admesh_exact_nearby_1M(benchmark::State& state)
{
    if (std::system("command -v admesh >/dev/null 2>&1") != 0) {
        state.SkipWithError("admesh is not installed");
        return;
    }
    std::string command = "admesh --exact --nearby " + binary_1M() + " >/dev/null 2>&1";
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        if (std::system(command.c_str()) != 0) state.SkipWithError("admesh failed");
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
}

// Reads the whole text file and converts every number in it with strtod.
void BM_strtod_pass_200k(benchmark::State& state)
{
    std::size_t numbers = 0;
    for (auto _ : state) {
        std::FILE* file = std::fopen(text_200k().c_str(), "rb");
        std::vector<char> text;
        char block[1 << 16];
        for (std::size_t got; (got = std::fread(block, 1, sizeof block, file)) > 0;)
            text.insert(text.end(), block, block + got);
        std::fclose(file);
        text.push_back('\0');
        double sum = 0;
        numbers = 0;
        for (char const* p = text.data(); *p;) {
            if ((*p >= '0' && *p <= '9') || *p == '-') {
                char* end;
                sum += std::strtod(p, &end);
                ++numbers;
                p = end;
            } else {
                ++p;
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.counters["numbers"] = double(numbers);
}

BENCHMARK(BM_STL_input_binary_1M)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_STL_binary_form_1M)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_STL_weld_1M)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_admesh_exact_nearby_1M)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(BM_STL_input_text_200k)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_STL_text_form_200k)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_strtod_pass_200k)->Unit(benchmark::kMillisecond)->UseRealTime();

long peak_kib()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// The files of bench/soup_compare.py: tori of 1M and 5M facets (binary), 1M facets (text), and a
// 1M-facet soup whose every vertex is moved by up to 1e-6 on each axis, so that no two copies of a
// node are equal and the weld has to find them all within its tolerance (about 1e-4 here).
int make_files(std::string const& dir)
{
    dense2D<double> pos;
    dense2D<unsigned> T3;
    torus(1000, 500, pos, T3);
    bool ok = tessarium::STL_output((dir + "/torus_1M.stl").c_str(), pos, T3, false) == 0 &&
              tessarium::STL_output((dir + "/torus_1M_text.stl").c_str(), pos, T3, true) == 0;
    dense2D<double> soup;
    dense2D<unsigned> own;
    soup.resize(3, 3 * T3.cols());
    own.resize(3, T3.cols());
    std::mt19937_64 rng(1);
    std::uniform_real_distribution<double> jitter(-1e-6, 1e-6);
    for (std::size_t k = 0; k < 3 * T3.cols(); ++k) {
        for (unsigned d = 0; d < 3; ++d) soup.col(k)[d] = pos.col(T3.data()[k])[d] + jitter(rng);
        own.data()[k] = static_cast<unsigned>(k);
    }
    ok = ok && tessarium::STL_output((dir + "/jitter_1M.stl").c_str(), soup, own, false) == 0;
    torus(2500, 1000, pos, T3);
    ok = ok && tessarium::STL_output((dir + "/torus_5M.stl").c_str(), pos, T3, false) == 0;
    return ok ? 0 : 1;
}

// One STL_input, its CPU time (user and system) in seconds on stdout.
int time_read(char const* path)
{
    std::clock_t start = std::clock();
    dense2D<double> pos;
    dense2D<unsigned> T3;
    int r = tessarium::STL_input(path, pos, T3);
    double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
    std::printf("%.4f %zu %zu\n", seconds, pos.cols(), T3.cols());
    return r == 0 ? 0 : 1;
}

// Peak resident memory of one STL_input, in a process that holds nothing else.
int report_peak(char const* path)
{
    long before = peak_kib();
    dense2D<double> pos;
    dense2D<unsigned> T3;
    int r = tessarium::STL_input(path, pos, T3);
    long after = peak_kib();
    std::printf("STL_input %s: result %d, %zu nodes, %zu triangles, peak %.1f MiB above the %.1f MiB at start\n", path,
                r, pos.cols(), T3.cols(), (after - before) / 1024.0, before / 1024.0);
    return r == 0 ? 0 : 1;
}

void cleanup()
{
    std::remove(binary_1M().c_str());
    std::remove(text_200k().c_str());
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--peak") == 0) return report_peak(argv[2]);
    if (argc == 3 && std::strcmp(argv[1], "--make") == 0) return make_files(argv[2]);
    if (argc == 3 && std::strcmp(argv[1], "--read") == 0) return time_read(argv[2]);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    // The soup's coordinates as doubles, against the peak of a reading process.
    for (std::string const* path : {&binary_1M(), &text_200k()}) {
        std::string command = "/proc/" + std::to_string(getpid()) + "/exe --peak " + *path;
        std::fflush(stdout);
        if (std::system(command.c_str()) != 0) std::printf("peak measurement failed\n");
    }
    std::printf("soup coordinates: 1M facets %.1f MiB, 200k facets %.1f MiB\n", 1e6 * 9 * 8 / 1048576.0,
                2e5 * 9 * 8 / 1048576.0);
    cleanup();
    return 0;
}
