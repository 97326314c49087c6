// Single-metric operations per call, beside one plain 3 x 3 symmetric eigen-decomposition through
// LAPACK's dsyev; the parts of the 3D path; and the isotropic size map of about a million
// tetrahedra (55^3 cubes of six, 998,250 elements, 175,616 nodes).
#include "metrics/metric_anisotropic.h"
#include "tessarium/lapack.h"
#include "tessarium/metrics.h"
#include "tessarium/small_algebra.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

extern "C" void dsyev_(char const* jobz, char const* uplo, int const* n, double* a, int const* lda, double* w,
                       double* work, int const* lwork, int* info, std::size_t jobz_len, std::size_t uplo_len);

namespace {

using namespace qv7;

constexpr std::size_t pool = 1024;

// Random metrics with sizes between 0.1 and 10 in random directions.
template <unsigned D>
std::vector<metric_anisotropic<D>> random_metrics(unsigned seed)
{
    std::mt19937 gen(seed);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> exponent(-1, 1);
    std::vector<metric_anisotropic<D>> out(pool);
    for (auto& M : out) {
        double R[D][D];
        for (unsigned i = 0; i < D; ++i) {
            for (unsigned j = 0; j < D; ++j) R[i][j] = normal(gen);
            for (unsigned p = 0; p < i; ++p) {
                double d = 0;
                for (unsigned j = 0; j < D; ++j) d += R[i][j] * R[p][j];
                for (unsigned j = 0; j < D; ++j) R[i][j] -= d * R[p][j];
            }
            double n = 0;
            for (unsigned j = 0; j < D; ++j) n += R[i][j] * R[i][j];
            for (unsigned j = 0; j < D; ++j) R[i][j] /= std::sqrt(n);
        }
        M = {};
        for (unsigned k = 0; k < D; ++k) {
            double h = std::pow(10.0, exponent(gen)), l = 1 / (h * h);
            for (unsigned j = 0; j < D; ++j)
                for (unsigned i = 0; i <= j; ++i) M(i, j) += R[k][i] * l * R[k][j];
        }
    }
    return out;
}

template <unsigned D>
std::vector<metric_anisotropic<D>> const& first()
{
    static auto m = random_metrics<D>(1);
    return m;
}
template <unsigned D>
std::vector<metric_anisotropic<D>> const& second()
{
    static auto m = random_metrics<D>(2);
    return m;
}

// Runs op(M1, M2) over the pool of pairs; one call per iteration.
template <unsigned D, class Op>
void per_pair(benchmark::State& state, Op op)
{
    auto const& a = first<D>();
    auto const& b = second<D>();
    std::size_t k = 0;
    for (auto _ : state) {
        op(a[k], b[k]);
        k = (k + 1) % pool;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_dsyev_baseline(benchmark::State& state)
{
    per_pair<3>(state, [](metric_anisotropic<3> const& M, metric_anisotropic<3> const&) {
        double A[9] = {M[0], M[1], M[3], M[1], M[2], M[4], M[3], M[4], M[5]}, w[3], work[128];
        int n = 3, lwork = 128, info;
        dsyev_("V", "U", &n, A, &n, w, work, &lwork, &info, 1, 1);
        benchmark::DoNotOptimize(w);
        benchmark::DoNotOptimize(A);
    });
}
BENCHMARK(BM_dsyev_baseline);

template <unsigned D>
void BM_minimum_metric(benchmark::State& state)
{
    per_pair<D>(state, [](metric_anisotropic<D> const& a, metric_anisotropic<D> const& b) {
        metric_anisotropic<D> M;
        benchmark::DoNotOptimize(metric_anisotropic<D>::minimum_metric(a, b, M));
        benchmark::DoNotOptimize(M);
    });
}
BENCHMARK_TEMPLATE(BM_minimum_metric, 2);
BENCHMARK_TEMPLATE(BM_minimum_metric, 3);

template <unsigned D>
void BM_interpolation(benchmark::State& state)
{
    per_pair<D>(state, [](metric_anisotropic<D> const& a, metric_anisotropic<D> const& b) {
        metric_anisotropic<D> M;
        benchmark::DoNotOptimize(metric_anisotropic<D>::interpolation(0.37, a, b, M));
        benchmark::DoNotOptimize(M);
    });
}
BENCHMARK_TEMPLATE(BM_interpolation, 2);
BENCHMARK_TEMPLATE(BM_interpolation, 3);

// The parts of the 3D path: the generalised solver (Cholesky, adjugate, K B K^t, dspev with
// vectors, K^t Z), the inverse transpose of the basis, and the validity test (dspev, values only).
void BM_parts3_generalised(benchmark::State& state)
{
    per_pair<3>(state, [](metric_anisotropic<3> const& a, metric_anisotropic<3> const& b) {
        vector_fixed<double, 3> lambda;
        matrix_fixed<double, 3, 3> V;
        benchmark::DoNotOptimize(eigen_pairs(a, b, lambda, V, true));
        benchmark::DoNotOptimize(V);
    });
}
BENCHMARK(BM_parts3_generalised);

void BM_parts3_dspev_vectors(benchmark::State& state)
{
    per_pair<3>(state, [](metric_anisotropic<3> const& a, metric_anisotropic<3> const&) {
        symmetric_fixed<double, 3> C = a;
        double w[3], z[9], work[9] = {};
        long info;
        lapack::dspev('V', 'U', 3, C.v, w, z, 3, work, info);
        benchmark::DoNotOptimize(z);
    });
}
BENCHMARK(BM_parts3_dspev_vectors);

void BM_parts3_dspev_values(benchmark::State& state)
{
    per_pair<3>(state, [](metric_anisotropic<3> const& a, metric_anisotropic<3> const&) {
        benchmark::DoNotOptimize(__smallest_eigenvalue(a));
    });
}
BENCHMARK(BM_parts3_dspev_values);

void BM_parts3_Tinverse(benchmark::State& state)
{
    per_pair<3>(state, [](metric_anisotropic<3> const& a, metric_anisotropic<3> const& b) {
        matrix_fixed<double, 3, 3> B{a[0], a[1], a[2], a[3], a[4], a[5], b[0], b[1], b[2]}, T;
        double det;
        matmat::__Tinverse(B, T, det);
        benchmark::DoNotOptimize(T);
    });
}
BENCHMARK(BM_parts3_Tinverse);

// n^3 cubes of edge 1/n, each cut into six tetrahedra around its diagonal.
struct tet_mesh {
    static constexpr unsigned n = 55;
    dense2D<double> pos;
    dense2D<unsigned> tets;
    tet_mesh()
    {
        unsigned p = n + 1;
        pos.resize(3, std::size_t(p) * p * p);
        for (unsigned k = 0; k < p; ++k)
            for (unsigned j = 0; j < p; ++j)
                for (unsigned i = 0; i < p; ++i) {
                    double* x = pos.col(i + p * (j + std::size_t(p) * k));
                    x[0] = double(i) / n, x[1] = double(j) / n, x[2] = double(k) / n;
                }
        static unsigned const cut[6][4] = {{0, 1, 3, 7}, {0, 5, 1, 7}, {0, 3, 2, 7},
                                           {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 6, 4, 7}};
        tets.resize(4, 6ul * n * n * n);
        std::size_t e = 0;
        for (unsigned k = 0; k < n; ++k)
            for (unsigned j = 0; j < n; ++j)
                for (unsigned i = 0; i < n; ++i)
                    for (auto const& t : cut) {
                        for (unsigned r = 0; r < 4; ++r) {
                            unsigned c = t[r];
                            tets(r, e) = (i + (c & 1)) + p * ((j + (c >> 1 & 1)) + p * (k + (c >> 2)));
                        }
                        ++e;
                    }
    }
};

tet_mesh const& mesh()
{
    static tet_mesh m;
    return m;
}

void BM_metrics_gen_iso(benchmark::State& state)
{
    tet_mesh const& m = mesh();
    double power = state.range(0) == 1000 ? DBL_LIMIT : double(state.range(0));
    for (auto _ : state) {
        dense1D<double, 8> metrics;
        benchmark::DoNotOptimize(tessarium::metrics_gen_iso(m.pos, m.tets, ET_TETRA4, metrics, power));
    }
    state.counters["elements"] = double(m.tets.cols());
}
// power 0 (shortest), 1, 2, and 1000 standing for DBL_LIMIT (longest).
BENCHMARK(BM_metrics_gen_iso)->Arg(0)->Arg(1)->Arg(2)->Arg(1000)->Unit(benchmark::kMillisecond);

// Floor: the six edge lengths of every tetrahedron summed at their ends, without checks or pow.
void BM_edge_lengths_floor(benchmark::State& state)
{
    tet_mesh const& m = mesh();
    static unsigned const edges[6][2] = {{1, 2}, {2, 0}, {0, 1}, {3, 0}, {3, 1}, {3, 2}};
    for (auto _ : state) {
        std::vector<double> sum(m.pos.cols(), 0.0);
        for (std::size_t e = 0; e < m.tets.cols(); ++e) {
            unsigned const* t = m.tets.col(e);
            for (auto const& ed : edges) {
                double const* a = m.pos.col(t[ed[0]]);
                double const* b = m.pos.col(t[ed[1]]);
                double l = std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) +
                                     (a[2] - b[2]) * (a[2] - b[2]));
                sum[t[ed[0]]] += l;
                sum[t[ed[1]]] += l;
            }
        }
        benchmark::DoNotOptimize(sum.data());
    }
}
BENCHMARK(BM_edge_lengths_floor)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
