#include "connectivity/test_meshes.h"
#include "metrics/H_shock_minimiser.h"
#include "tessarium/graphs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

namespace {

using qv7::__shock_entry;
using qv7::dense1D;
using qv7::dense2D;

// The heap rules written plainly on one array: push sifts up past strictly smaller parents; pop
// moves the last entry to the root and sifts it down, the right child taken only when strictly
// greater than the left, stopping only when the moved entry is strictly greater than that child.
struct plain_heap {
    std::vector<__shock_entry> a;
    bool empty() const { return a.empty(); }
    bool push(double value, unsigned stamp, unsigned i, unsigned j)
    {
        __shock_entry e{qv7::__shock_queue::priority_of(value), {{stamp, i, j}}};
        std::size_t k = a.size();
        a.push_back(e);
        for (; k > 0 && a[(k - 1) / 2].priority < e.priority; k = (k - 1) / 2) a[k] = a[(k - 1) / 2];
        a[k] = e;
        return true;
    }
    __shock_entry pop()
    {
        __shock_entry top = a[0], moved = a.back();
        a.pop_back();
        std::size_t k = 0, n = a.size();
        if (n == 0) return top;
        for (std::size_t c = 1; c < n; c = 2 * k + 1) {
            if (c + 1 < n && a[c + 1].priority > a[c].priority) ++c;
            if (moved.priority > a[c].priority) break;
            a[k] = a[c];
            k = c;
        }
        a[k] = moved;
        return top;
    }
};

bool same(__shock_entry const& x, __shock_entry const& y)
{
    return x.priority == y.priority && x.words[0] == y.words[0] && x.words[1] == y.words[1] && x.words[2] == y.words[2];
}

TEST(ShockQueue, PopsEntryByEntryAsThePlainHeap)
{
    // Few distinct priorities, so that ties decide most pops; the last case grows past two pages.
    struct run {
        unsigned levels, steps, push_percent;
    };
    for (run r : {run{1, 2000, 60}, run{3, 20000, 55}, run{7, 20000, 70}, run{4, 700000, 75}}) {
        std::mt19937 rng(r.levels);
        qv7::__shock_queue q;
        plain_heap p;
        unsigned mismatches = 0, id = 0;
        for (unsigned s = 0; s < r.steps || !p.empty(); ++s) {
            if (s < r.steps && (p.empty() || rng() % 100 < r.push_percent)) {
                double v = double(rng() % r.levels) / 4;
                ASSERT_TRUE(q.push(v, id, id % 7, id / 7));
                p.push(v, id, id % 7, id / 7);
                ++id;
            } else {
                ASSERT_FALSE(q.empty());
                mismatches += !same(q.pop(), p.pop());
            }
        }
        EXPECT_TRUE(q.empty());
        EXPECT_EQ(mismatches, 0u) << r.levels;
        EXPECT_EQ(q.pushes(), id);
    }
}

// A tetrahedral box with sizes from a few values, so that many edges have equal measures, and
// some nodes frozen. The run on the plain heap and on the queue must agree bit for bit.
template <class L, class Metrics>
void expect_same_runs(Metrics const& start, test_meshes::mesh const& m, dense2D<double> const& pos, unsigned seed)
{
    using manager = typename L::manager_type;
    std::size_t N = m.pos.size();
    dense1D<unsigned, 8> offsets, targets, ids(N);
    std::iota(ids.begin(), ids.end(), 0u);
    ASSERT_GE(qv7::tessarium::get_node_graph(m.connect(), offsets, targets), 0);
    std::mt19937 rng(seed);
    dense1D<unsigned, 8> status(N, 0u);
    for (int pass = 0; pass < 2; ++pass) {
        if (pass == 1)
            for (unsigned& s : status) s = rng() % 8 == 0 ? qv7::NONE_ID : 0;
        for (int direction : {0, 1, -1}) {
            Metrics a, b;
            a.copy(start);
            b.copy(start);
            manager ma(a), mb(b);
            dense1D<unsigned, 8> sa, sb;
            sa.copy(status);
            sb.copy(status);
            qv7::H_shock_measure<L> shock;
            qv7::__shock_queue q;
            plain_heap p;
            int ra = qv7::H_shock_minimiser<qv7::H_shock_measure<L>, manager>(shock).__bound_metrics(
                pos, offsets, targets, ids, sa, direction, 0.3, ma, q);
            int rb = qv7::H_shock_minimiser<qv7::H_shock_measure<L>, manager>(shock).__bound_metrics(
                pos, offsets, targets, ids, sb, direction, 0.3, mb, p);
            EXPECT_GT(ra, 0);
            EXPECT_EQ(ra, rb) << pass << " " << direction;
            EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(double)), 0) << pass << " " << direction;
            EXPECT_EQ(std::memcmp(sa.data(), sb.data(), N * sizeof(unsigned)), 0) << pass << " " << direction;
        }
    }
}

TEST(ShockQueue, GradationRunsMatchThePlainHeapBitForBit)
{
    test_meshes::mesh m = test_meshes::box(9, 8, 7, test_meshes::TETRAS, 4);
    std::size_t N = m.pos.size();
    dense2D<double> pos;
    pos.resize(3, N);
    for (std::size_t v = 0; v < N; ++v)
        for (unsigned k = 0; k < 3; ++k) pos(k, v) = m.pos[v][k];
    for (unsigned seed : {1u, 2u}) {
        std::mt19937 rng(seed);
        double const values[] = {0.05, 0.2, 1, 4, 16};
        dense1D<double, 8> h(N);
        for (double& x : h) x = values[rng() % 5];
        dense2D<double> M;
        M.resize(6, N, 0.0);
        for (std::size_t v = 0; v < N; ++v)
            for (unsigned d : {0u, 2u, 5u}) M(d, v) = 1 / (values[rng() % 5] * values[rng() % 5]);
        expect_same_runs<qv7::length_measure_isotropic<3>>(h, m, pos, seed);
        if (seed == 1) expect_same_runs<qv7::length_measure_anisotropic<3>>(M, m, pos, seed);
    }
}

}  // namespace
