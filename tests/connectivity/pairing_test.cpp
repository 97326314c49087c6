// The sieve and the pairing walk against the plainest version of themselves: a table whose every
// insertion walks its chain to the end, and a walk that reads the nodes of both boundaries from
// the connectivity on every comparison. Both must agree on the table, on every neighbour and on
// every code, on random meshes full of collisions, of boundaries shared three times and more and
// of degenerate elements, with chains short and long, and under failing allocations.
#include "connectivity/get_neighbors_matrix.h"
#include "connectivity/test_meshes.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <type_traits>
#include <vector>

using namespace qv7;

namespace {

constexpr unsigned long vacant = ~0ul;
constexpr std::size_t no_pair = ~std::size_t(0);

template <class Elfe>
struct plain_pairing {
    static constexpr unsigned S = Elfe::stride;
    using nodes_type = std::array<unsigned, Elfe::boundary_width>;

    explicit plain_pairing(dense2D<unsigned> const& connect) : C(connect) {}

    dense2D<unsigned> const& C;
    dense1D<unsigned long, 8> slots;
    unsigned long buckets = 0;

    // The same storage requests as the table: reserve, then one pair per bucket, all ones.
    bool reserve(unsigned long expected, unsigned long hint)
    {
        buckets = 0;
        slots.clear();
        unsigned long p = 1;
        while (p < hint) p *= 2;
        unsigned long want = 2 * std::max(p, expected);
        auto* block = slots.storage();
        if (block->capacity - slots.first() < want && !block->__grow(slots.first() + want, 0, 1)) return false;
        buckets = p;
        slots.resize(2 * p);
        std::fill(slots.begin(), slots.end(), vacant);
        return true;
    }
    std::size_t next(std::size_t pos) const { return slots[pos + 1] == vacant ? no_pair : pos + slots[pos + 1]; }
    void insert(unsigned long bucket, unsigned long id)
    {
        std::size_t pos = 2 * bucket;
        if (slots[pos] == vacant) {
            slots[pos] = id;
            return;
        }
        std::size_t added = slots.size();
        if (!slots.push_back_n(vacant, 2)) return;
        slots[added] = id;
        while (next(pos) != no_pair) pos = next(pos);
        slots[pos + 1] = added - pos;
    }
    nodes_type nodes(unsigned long id) const
    {
        nodes_type n;
        n.fill(NONE_ID);
        Elfe::copy_boundary_nodes(id % S, C.col(id / S), n.data());
        return n;
    }
    // Offset and prime of 32-bit FNV; the terms are summed so that the node order does not count.
    unsigned long bucket(nodes_type const& n) const
    {
        unsigned long sum = 0;
        for (unsigned v : n) sum += (unsigned long)v ^ 2166136261ul;
        return sum * 16777619ul & (buckets - 1);
    }
    void insert_all()
    {
        for (std::size_t e = 0; e < C.cols(); ++e)
            for (unsigned b = 0; b < Elfe::nbr_boundaries(C.col(e)); ++b) {
                nodes_type n;
                n.fill(NONE_ID);
                if (Elfe::copy_boundary_nodes(b, C.col(e), n.data()) != n.data()) insert(bucket(n), e * S + b);
            }
    }
    bool walk(dense2D<unsigned>& N, int mode)
    {
        auto put = [&](unsigned long id, unsigned long e) { N(id % S, id / S) = unsigned(e); };
        for (unsigned long h = 0; h < buckets; ++h)
            for (std::size_t at = 2 * h; at != no_pair; at = next(at)) {
                unsigned long cur = slots[at], last_id = cur;
                if (cur == vacant) continue;
                std::size_t last = at;
                unsigned matches = 0;
                for (std::size_t q = next(at); q != no_pair; q = next(q)) {
                    unsigned long oth = slots[q];
                    if (oth == vacant) continue;
                    int sense = Elfe::compare_boundaries(nodes(cur).data(), nodes(oth).data());
                    if (sense == 0) continue;
                    if (mode == 0) {
                        put(cur, oth / S);
                        put(oth, cur / S);
                        slots[q] = vacant;
                    } else if (mode == 1 && matches > 0) {
                        put(last_id, NONE_ID);
                        slots[last] = vacant;
                    } else if (mode == 2 && (sense != -1 || matches > 0)) {
                        return false;
                    }
                    last = q;
                    last_id = oth;
                    ++matches;
                }
                if (matches == 0) continue;
                if (mode > 0) {
                    put(cur, matches == 1 ? last_id / S : NONE_ID);
                    put(last_id, matches == 1 ? cur / S : NONE_ID);
                }
                slots[at] = slots[last] = vacant;
            }
        return true;
    }
};

// The neighbours with the storage requests of get_neighbors_matrix, in its order.
template <class Elfe>
int plain_neighbors(dense2D<unsigned> const& C, dense2D<unsigned>& N, int mode)
{
    plain_pairing<Elfe> plain{C};
    plain.reserve(16, 32);
    N.clear();
    if (!N.resize(Elfe::stride, C.cols(), NONE_ID)) return -199;
    if (!plain.reserve(Elfe::stride * C.cols(), 2ul * Elfe::stride * C.cols())) return -199;
    plain.insert_all();
    return plain.walk(N, mode) ? 0 : -1;
}

std::vector<unsigned> flat(dense2D<unsigned> const& M) { return {M.col(0), M.col(0) + M.rows() * M.cols()}; }

// Nodes drawn from a small range: many boundaries share a node sum, many are shared by three
// elements or more, many elements repeat a node. Mixed arrays mix their kinds, and one solid in
// eight gets a stray NONE_ID that leaves it of no valid kind.
template <class Elfe>
dense2D<unsigned> random_mesh(std::mt19937& rng, unsigned elements, unsigned nodes)
{
    dense2D<unsigned> C;
    C.resize(Elfe::nbr_rows, elements, NONE_ID);
    for (unsigned e = 0; e < elements; ++e) {
        unsigned used = Elfe::nbr_rows;
        if (std::is_same<Elfe, elfes::face_mix>::value) used = 3 + rng() % 2;
        if (std::is_same<Elfe, elfes::solid_mix>::value) used = std::array<unsigned, 4>{4, 5, 6, 8}[rng() % 4];
        for (unsigned r = 0; r < used; ++r) C(r, e) = rng() % nodes;
        if (std::is_same<Elfe, elfes::solid_mix>::value && rng() % 8 == 0) C(rng() % 8, e) = NONE_ID;
    }
    return C;
}

template <class Elfe>
void expect_same_neighbors(dense2D<unsigned> const& C)
{
    for (int mode : {0, 1, 2}) {
        dense2D<unsigned> got, want;
        int code = elfe_algo::get_neighbors_matrix(C, got, mode, Elfe{});
        ASSERT_EQ(code, plain_neighbors<Elfe>(C, want, mode)) << mode;
        ASSERT_EQ(got.rows(), want.rows());
        ASSERT_EQ(flat(got), flat(want)) << mode;
    }
}

// The table after filling (in two runs), once closed, holds the pairs and links of the plain one.
template <class Elfe>
void expect_same_table(dense2D<unsigned> const& C)
{
    boundary_finder<Elfe, dense2D<unsigned>> finder;
    finder.set_connectivity(&C);
    ASSERT_TRUE(finder.resize(C.cols()));
    finder.__bdry_insert_elements(0, C.cols() / 3);
    finder.__bdry_insert_elements(C.cols() / 3, C.cols());
    finder.sieve().close();
    plain_pairing<Elfe> plain{C};
    ASSERT_TRUE(plain.reserve(Elfe::stride * C.cols(), 2ul * Elfe::stride * C.cols()));
    plain.insert_all();
    unsigned long const* s = finder.sieve().slots();
    ASSERT_EQ(std::vector<unsigned long>(s, s + plain.slots.size()), std::vector<unsigned long>(plain.slots.begin(), plain.slots.end()));
}

// Allocation k fails, alone or with all later ones.
template <class Elfe>
void expect_same_with_failures(dense2D<unsigned> const& C, int mode, std::size_t k, bool alone)
{
    auto limit = [&] { alone ? test_alloc::fail_at(k) : test_alloc::fail_after(k); };
    dense2D<unsigned> got, want;
    limit();
    int code = elfe_algo::get_neighbors_matrix(C, got, mode, Elfe{});
    limit();
    int plain_code = plain_neighbors<Elfe>(C, want, mode);
    test_alloc::reset();
    EXPECT_EQ(code, plain_code) << k << (alone ? " alone" : " and later");
    EXPECT_EQ(flat(got), flat(want)) << k << (alone ? " alone" : " and later") << ", mode " << mode;
}

template <class Elfe>
void compare_on_random_meshes(unsigned seed)
{
    std::mt19937 rng(seed);
    for (unsigned trial = 0; trial < 40; ++trial) {
        unsigned elements = trial == 0 ? 0 : 1 + rng() % (trial % 4 == 0 ? 600 : 80);
        dense2D<unsigned> C = random_mesh<Elfe>(rng, elements, 1 + rng() % (trial % 3 == 0 ? 8 : 60));
        expect_same_neighbors<Elfe>(C);
        if (elements > 0) expect_same_table<Elfe>(C);
        if (::testing::Test::HasFatalFailure()) return;
    }
}

// One bucket for everything: chains of every length around the number of entries held at hand.
template <class Elfe>
void compare_in_one_bucket(unsigned elements, int mode)
{
    std::mt19937 rng(elements);
    dense2D<unsigned> C = random_mesh<Elfe>(rng, elements, 9), got, want;
    got.resize(Elfe::stride, elements, NONE_ID);
    want.resize(Elfe::stride, elements, NONE_ID);
    boundary_finder<Elfe, dense2D<unsigned>> finder;
    finder.set_connectivity(&C);
    finder.sieve().resize(1, 1);
    finder.__bdry_insert_elements(0, elements);
    elfe_algo::internal_neighbors_updater<decltype(finder), dense2D<unsigned>> updater(got);
    elfe_algo::null_neighbors_processor processor;
    bool done = elfe_algo::process_boundaries(finder, updater, processor, mode);
    plain_pairing<Elfe> plain{C};
    plain.reserve(1, 1);
    plain.insert_all();
    EXPECT_EQ(done, plain.walk(want, mode)) << elements;
    EXPECT_EQ(flat(got), flat(want)) << elements << " mode " << mode;
    EXPECT_FALSE(finder.sieve().is_open());
}

}  // namespace

// Every pair of boundaries of small node numbers, NONE_ID among them: whatever the comparison
// finds alike has the same nodes, so the same key, which lets the walk pass over different keys.
template <class Elfe>
void expect_alike_share_key()
{
    using finder_type = boundary_finder<Elfe, dense2D<unsigned>>;
    using boundary_type = typename finder_type::boundary_type;
    constexpr unsigned W = Elfe::boundary_width, values[4] = {0, 1, 2, NONE_ID};
    std::vector<boundary_type> all;
    for (unsigned code = 0; code < (1u << (2 * W)); ++code) {
        boundary_type b;
        for (unsigned k = 0; k < W; ++k) b[k] = values[code >> (2 * k) & 3];
        all.push_back(b);
    }
    unsigned alike = 0;
    for (auto const& a : all)
        for (auto const& b : all) {
            if (finder_type::compare(a, b) == 0) continue;
            ++alike;
            std::array<unsigned, W> sa, sb;
            std::copy(a.v, a.v + W, sa.begin());
            std::copy(b.v, b.v + W, sb.begin());
            std::sort(sa.begin(), sa.end());
            std::sort(sb.begin(), sb.end());
            ASSERT_EQ(sa, sb);
            ASSERT_EQ(finder_type::key(a), finder_type::key(b));
        }
    EXPECT_GE(alike, all.size());  // at least every boundary alike itself
}

TEST(Pairing, AlikeBoundariesShareTheirKey)
{
    expect_alike_share_key<elfes::edge2>();
    expect_alike_share_key<elfes::face_mix>();
    expect_alike_share_key<elfes::tetra4>();
    expect_alike_share_key<elfes::wedge6>();
    expect_alike_share_key<elfes::hexa8>();
    expect_alike_share_key<elfes::solid_mix>();
}

TEST(Pairing, SameAsPlainWalkOnRandomMeshes)
{
    compare_on_random_meshes<elfes::edge2>(1);
    compare_on_random_meshes<elfes::faceT3>(2);
    compare_on_random_meshes<elfes::faceQ4>(3);
    compare_on_random_meshes<elfes::face_mix>(4);
    compare_on_random_meshes<elfes::tetra4>(5);
    compare_on_random_meshes<elfes::pyramid5>(6);
    compare_on_random_meshes<elfes::wedge6>(7);
    compare_on_random_meshes<elfes::hexa8>(8);
    compare_on_random_meshes<elfes::solid_mix>(9);
}

TEST(Pairing, ChainsAroundTheHeldLength)
{
    for (unsigned elements = 6; elements <= 12; ++elements)
        for (int mode : {0, 1, 2}) {
            compare_in_one_bucket<elfes::tetra4>(elements, mode);
            compare_in_one_bucket<elfes::faceT3>(elements, mode);
            compare_in_one_bucket<elfes::solid_mix>(elements, mode);
        }
}

TEST(Pairing, OrientationCheckStopsWhereThePlainWalkStops)
{
    // A box of consistently oriented tetrahedra passes; a copy of one of its elements makes the
    // walk fail in the bucket of one of its faces, with the buckets before it written.
    dense2D<unsigned> C = test_meshes::box(6, 5, 4, test_meshes::TETRAS, 4).connect(), D;
    expect_same_neighbors<elfes::tetra4>(C);
    D.resize(4, C.cols() + 1);
    std::copy(C.col(0), C.col(0) + 4 * C.cols(), D.col(0));
    long most_written = 0;
    for (std::size_t copied = 0; copied < C.cols(); ++copied) {
        std::copy(C.col(copied), C.col(copied) + 4, D.col(C.cols()));
        dense2D<unsigned> got, want;
        ASSERT_EQ(elfe_algo::get_neighbors_matrix(D, got, 2, elfes::tetra4{}), -1);
        ASSERT_EQ(plain_neighbors<elfes::tetra4>(D, want, 2), -1);
        ASSERT_EQ(flat(got), flat(want)) << copied;
        long written = std::count_if(want.col(0), want.col(0) + 4 * D.cols(), [](unsigned n) { return n != NONE_ID; });
        most_written = std::max(most_written, written);
    }
    EXPECT_GT(most_written, 1500);  // some failures come after several runs of held writes
}

TEST(Pairing, SameDropsUnderFailingAllocations)
{
    // Storage requests in turn: the finder's first table, the neighbours, the table for the mesh,
    // then its growth, tried again at the next overflow entry when it failed.
    std::mt19937 rng(10);
    dense2D<unsigned> T = random_mesh<elfes::tetra4>(rng, 300, 30), H = random_mesh<elfes::hexa8>(rng, 200, 40);
    for (int mode : {0, 1})
        for (std::size_t k = 0; k < 7; ++k)
            for (bool alone : {false, true}) {
                expect_same_with_failures<elfes::tetra4>(T, mode, k, alone);
                expect_same_with_failures<elfes::hexa8>(H, mode, k, alone);
            }
}

TEST(Pairing, InsertionsAfterClosingWalkTheChain)
{
    // Buckets filled, closed, filled again: the later entries land behind the earlier ones.
    dense2D<unsigned> none;
    plain_pairing<elfes::edge2> plain{none};
    siever table;
    ASSERT_TRUE(table.resize(64, 4));
    ASSERT_TRUE(plain.reserve(64, 4));
    std::mt19937 rng(11);
    for (unsigned long v = 0; v < 60; ++v) {
        unsigned long h = rng() % 4;
        if (v == 30) {
            EXPECT_TRUE(table.is_open());
            table.close();
        }
        EXPECT_TRUE(table.insert(h, v));
        plain.insert(h, v);
    }
    EXPECT_FALSE(table.is_open());
    table.close();
    EXPECT_EQ(table.entry_count(), 60u);
    EXPECT_EQ(std::vector<unsigned long>(table.slots(), table.slots() + plain.slots.size()),
              std::vector<unsigned long>(plain.slots.begin(), plain.slots.end()));
}
