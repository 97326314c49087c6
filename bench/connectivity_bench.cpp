// Neighbours of about a million tetrahedra and a million hexahedra: the hash sieve of
// get_neighbors beside a face matching by sorting (sort each face's nodes, sort all faces, pair
// equal neighbours), on lexicographic and on random node numbers. The sieve's memory per
// boundary is reported as a counter, and the time of each part of the sieve by BM_sieve_parts.
#include "connectivity/boundary_finder.h"
#include "connectivity/process_boundaries.h"
#include "connectivity/elfes.h"
#include "box_mesh.h"
#include "tessarium/connectivity.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <numeric>
#include <random>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

using qv7::dense2D;
using qv7::NONE_ID;

constexpr unsigned tet_cubes = 55;    // 6 tetrahedra per cube: 998,250 elements
constexpr unsigned hexa_cubes = 100;  // 1,000,000 elements

dense2D<unsigned> const& mesh(bool tetrahedra, bool shuffled)
{
    static dense2D<unsigned> meshes[2][2];
    dense2D<unsigned>& m = meshes[tetrahedra][shuffled];
    if (m.empty()) m = make_box(tetrahedra ? tet_cubes : hexa_cubes, tetrahedra, shuffled);
    return m;
}

// The baseline: every face keyed by its sorted nodes, all faces sorted, equal runs of two paired.
template <class Elfe>
void sort_matching(dense2D<unsigned> const& C, dense2D<unsigned>& neighbors)
{
    constexpr unsigned W = Elfe::boundary_width, S = Elfe::stride;
    struct face {
        std::array<unsigned, W> key;
        unsigned long id;
        bool operator<(face const& o) const { return key < o.key; }
    };
    std::vector<face> faces(C.cols() * S);
    for (std::size_t e = 0; e < C.cols(); ++e)
        for (unsigned b = 0; b < S; ++b) {
            face& f = faces[e * S + b];
            Elfe::copy_boundary_nodes(b, C.col(e), f.key.data());
            std::sort(f.key.begin(), f.key.end());
            f.id = e * S + b;
        }
    std::sort(faces.begin(), faces.end());
    neighbors.resize(S, C.cols());
    std::fill(neighbors.col(0), neighbors.col(0) + S * C.cols(), NONE_ID);
    for (std::size_t i = 0; i < faces.size();) {
        std::size_t j = i + 1;
        while (j < faces.size() && faces[j].key == faces[i].key) ++j;
        if (j == i + 2) {
            unsigned long a = faces[i].id, b = faces[i + 1].id;
            neighbors(a % S, a / S) = unsigned(b / S);
            neighbors(b % S, b / S) = unsigned(a / S);
        }
        i = j;
    }
}

template <class Elfe>
void check_same(dense2D<unsigned> const& C, qv7::element_type type)
{
    dense2D<unsigned> a, b;
    qv7::tessarium::get_neighbors(C, type, false, a);
    sort_matching<Elfe>(C, b);
    if (!std::equal(a.col(0), a.col(0) + a.rows() * a.cols(), b.col(0))) {
        std::fprintf(stderr, "sieve and sort disagree\n");
        std::abort();
    }
}

template <class Elfe>
double sieve_bytes_per_boundary(dense2D<unsigned> const& C)
{
    qv7::boundary_finder<Elfe, dense2D<unsigned>> finder;
    finder.set_connectivity(&C);
    finder.resize(C.cols());
    for (std::size_t e = 0; e < C.cols(); ++e) finder.__bdry_insert_aux(e, 0);
    return double(finder.sieve().memory()) / (double(C.cols()) * Elfe::stride);
}

template <class Elfe>
void BM_sieve(benchmark::State& state)
{
    bool shuffled = state.range(0) != 0;
    bool tets = Elfe::stride == 4;
    qv7::element_type type = tets ? qv7::ET_TETRA4 : qv7::ET_HEXA8;
    dense2D<unsigned> const& C = mesh(tets, shuffled);
    check_same<Elfe>(C, type);
    dense2D<unsigned> N;
    for (auto _ : state) {
        qv7::tessarium::get_neighbors(C, type, false, N);
        benchmark::DoNotOptimize(N.col(0));
    }
    state.counters["elements"] = double(C.cols());
    state.counters["sieve_bytes_per_boundary"] = sieve_bytes_per_boundary<Elfe>(C);
}

double thread_cpu_ms()
{
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec * 1e-6;
}

// The first element whose insertion makes the table grow.
template <class Elfe>
std::size_t first_growth(dense2D<unsigned> const& C)
{
    qv7::boundary_finder<Elfe, dense2D<unsigned>> finder;
    finder.set_connectivity(&C);
    finder.resize(C.cols());
    std::size_t before = finder.sieve().memory(), e = 0;
    for (; e < C.cols() && finder.sieve().memory() == before; ++e) finder.__bdry_insert_aux(e, 0);
    return e;
}

// Where the time of get_neighbors goes, as CPU time of this thread per call: the neighbours array
// and the empty table (`setup`), the insertions up to the first overflow pair, which doubles the
// table (`growth`), the other insertions (`insert`), the pairing walk (`pairing`) and the release
// of the table (`release`).
template <class Elfe>
void BM_sieve_parts(benchmark::State& state)
{
    using finder_type = qv7::boundary_finder<Elfe, dense2D<unsigned>>;
    dense2D<unsigned> const& C = mesh(Elfe::stride == 4, state.range(0) != 0);
    std::size_t n = C.cols(), grown = first_growth<Elfe>(C);
    double parts[5] = {};
    for (auto _ : state) {
        double t[6];
        t[0] = thread_cpu_ms();
        {
            dense2D<unsigned> N;
            N.resize(Elfe::stride, n, NONE_ID);
            finder_type finder;
            finder.set_connectivity(&C);
            finder.resize(n);
            t[1] = thread_cpu_ms();
            finder.__bdry_insert_elements(0, grown);
            t[2] = thread_cpu_ms();
            finder.__bdry_insert_elements(grown, n);
            t[3] = thread_cpu_ms();
            qv7::elfe_algo::internal_neighbors_updater<finder_type, dense2D<unsigned>> updater(N);
            qv7::elfe_algo::null_neighbors_processor processor;
            qv7::elfe_algo::process_boundaries(finder, updater, processor, 1);
            benchmark::DoNotOptimize(N.col(0));
            t[4] = thread_cpu_ms();
        }
        t[5] = thread_cpu_ms();
        for (int k = 0; k < 5; ++k) parts[k] += t[k + 1] - t[k];
    }
    char const* names[5] = {"setup_ms", "growth_ms", "insert_ms", "pairing_ms", "release_ms"};
    for (int k = 0; k < 5; ++k) state.counters[names[k]] = parts[k] / double(state.iterations());
}

template <class Elfe>
void BM_sort(benchmark::State& state)
{
    bool shuffled = state.range(0) != 0;
    dense2D<unsigned> const& C = mesh(Elfe::stride == 4, shuffled);
    dense2D<unsigned> N;
    for (auto _ : state) {
        sort_matching<Elfe>(C, N);
        benchmark::DoNotOptimize(N.col(0));
    }
    state.counters["elements"] = double(C.cols());
}

using qv7::elfes::hexa8;
using qv7::elfes::tetra4;

// Argument: 0 lexicographic node numbers, 1 random ones.
BENCHMARK_TEMPLATE(BM_sieve, tetra4)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_sort, tetra4)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_sieve, hexa8)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_sort, hexa8)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_sieve_parts, tetra4)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_sieve_parts, hexa8)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// `connectivity_bench --scale N`: one get_neighbors on the tetrahedra of N^3 cubes in a fresh
// process; prints its CPU time and the process's peak resident memory (mesh included), which
// bench/neighbors_compare.py sets beside VTK's surface filter on the same mesh.
int scale(unsigned n)
{
    dense2D<unsigned> C = make_box(n, true, false);
    dense2D<unsigned> N;
    std::clock_t start = std::clock();
    int r = qv7::tessarium::get_neighbors(C, qv7::ET_TETRA4, false, N);
    double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    unsigned long sum = 0;  // tells runs of different builds apart
    for (std::size_t k = 0; k < N.rows() * N.cols(); ++k) sum = (sum ^ N.data()[k]) * 1099511628211ul;
    std::printf("%.4f %zu %.1f %016lx\n", seconds, C.cols(), usage.ru_maxrss / 1024.0, sum);
    return r == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string(argv[1]) == "--scale") return scale(unsigned(std::atoi(argv[2])));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
