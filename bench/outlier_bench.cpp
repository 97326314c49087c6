// Merge and STL weld on hostile spreads of the same data: one node far away (at the largest float
// or double) or the points in two clusters far apart, each beside the plain spread in the same run.
#include <tessarium/tessarium.h>

#include <benchmark/benchmark.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <unistd.h>

using namespace qv7;

namespace {

constexpr unsigned n_points = 1000000;
constexpr double tol = 1e-3;

// state.range(0): 0 plain, 1 one node at the largest float, 2 at the largest double, 3 half the
// points moved by 1e9 on every axis.
char const* const spreads[] = {"plain", "outlier FLT_MAX", "outlier DBL_MAX", "two clusters"};

// Uniform points in the unit cube, one in ten a copy of an earlier one moved by less than tol.
dense2D<double> cloud(int spread)
{
    dense2D<double> p;
    p.resize(3, n_points);
    std::mt19937_64 rng(42);
    std::uniform_real_distribution<double> u(0.0, 1.0), jitter(-tol / 3, tol / 3);
    for (unsigned j = 0; j < n_points; ++j) {
        unsigned from = j > 10 && rng() % 10 == 0 ? unsigned(rng() % j) : j;
        for (int k = 0; k < 3; ++k) p(k, j) = from == j ? u(rng) : p(k, from) + jitter(rng);
    }
    for (unsigned j = 0; spread == 3 && j < n_points; j += 2)
        for (int k = 0; k < 3; ++k) p(k, j) += 1e9;
    for (int k = 0; spread == 1 || spread == 2; ++k) {
        if (k == 3) break;
        p(k, n_points / 2) = spread == 1 ? FLT_MAX : DBL_MAX;
    }
    return p;
}

void BM_merge_spread(benchmark::State& state)
{
    dense2D<double> const source = cloud(int(state.range(0)));
    dense2D<double> pos;
    dense1D<unsigned, 8> merged;
    int count = 0;
    for (auto _ : state) {
        state.PauseTiming();
        pos.copy(source);
        state.ResumeTiming();
        count = tessarium::merge(pos, merged, tol);
    }
    state.counters["merged"] = count;
    state.SetLabel(spreads[state.range(0)]);
}

// A binary STL of a 1000 x 500 torus grid, two facets per quadrilateral, plus with state.range(0)
// = 1 one small facet at the largest float.
std::string torus_file(bool outlier)
{
    std::string path = "/tmp/tessarium_outlier_" + std::to_string(getpid()) + (outlier ? "_far.stl" : ".stl");
    unsigned const n = 1000, m = 500;
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) std::abort();
    char header[80] = {};
    std::uint32_t facets = 2 * n * m + outlier;
    std::fwrite(header, 1, 80, f);
    std::fwrite(&facets, 4, 1, f);
    auto facet = [f](float const* corners) {
        float record[12] = {};
        std::copy(corners, corners + 9, record + 3);
        std::uint16_t attribute = 0;
        std::fwrite(record, 4, 12, f);
        std::fwrite(&attribute, 2, 1, f);
    };
    double const pi = std::acos(-1.0);
    auto point = [&](unsigned i, unsigned j, float* out) {
        double u = 2 * pi * (i % n) / n, v = 2 * pi * (j % m) / m;
        out[0] = float((1 + 0.3 * std::cos(v)) * std::cos(u));
        out[1] = float((1 + 0.3 * std::cos(v)) * std::sin(u));
        out[2] = float(0.3 * std::sin(v));
    };
    for (unsigned i = 0; i < n; ++i)
        for (unsigned j = 0; j < m; ++j) {
            float a[3], b[3], c[3], d[3];
            point(i, j, a), point(i + 1, j, b), point(i + 1, j + 1, c), point(i, j + 1, d);
            float t1[9] = {a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]};
            float t2[9] = {a[0], a[1], a[2], c[0], c[1], c[2], d[0], d[1], d[2]};
            facet(t1), facet(t2);
        }
    if (outlier) {
        float const far = FLT_MAX, t[9] = {far, far, far, far / 2, far, far, far, far / 2, far};
        facet(t);
    }
    std::fclose(f);
    return path;
}

void BM_weld_spread(benchmark::State& state)
{
    std::string const path = torus_file(state.range(0) == 1);
    std::size_t nodes = 0;
    for (auto _ : state) {
        dense2D<double> pos;
        dense2D<unsigned> T3;
        if (tessarium::STL_input(path.c_str(), pos, T3) != 0) state.SkipWithError("STL_input failed");
        nodes = pos.cols();
    }
    std::remove(path.c_str());
    state.counters["nodes"] = double(nodes);
    state.SetLabel(state.range(0) ? "outlier FLT_MAX" : "plain");
}

}  // namespace

BENCHMARK(BM_merge_spread)->DenseRange(0, 3)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_weld_spread)->DenseRange(0, 1)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_MAIN();
