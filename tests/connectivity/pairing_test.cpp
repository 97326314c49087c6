// The sieve and the pairing walk against the plainest version of themselves: every insertion
// walks its chain to the end, every comparison reads both boundaries from the connectivity. Both
// must agree on the table, on every neighbour and on every code, on random meshes full of
// collisions, of boundaries shared three times and more and of degenerate elements, with chains
// short and long, and under failing allocations.
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

using ulong = unsigned long;
constexpr ulong vacant = ~0ul;
constexpr std::size_t no_pair = ~std::size_t(0);

template <class Elfe>
struct plain_pairing {
    static constexpr unsigned S = Elfe::stride;
    using nodes_type = std::array<unsigned, Elfe::boundary_width>;

    explicit plain_pairing(dense2D<unsigned> const& connect) : C(connect) {}
    dense2D<unsigned> const& C;
    dense1D<ulong, 8> slots;
    ulong buckets = 0;

    // The storage requests of the table: a reservation, then one pair per bucket, all ones.
    bool reserve(ulong expected, ulong hint)
    {
        slots.clear();
        for (buckets = 1; buckets < hint;) buckets *= 2;
        ulong want = 2 * std::max(buckets, expected);
        auto* block = slots.storage();
        if (block->capacity - slots.first() < want && !block->__grow(slots.first() + want, 0, 1)) return false;
        slots.resize(2 * buckets);
        std::fill(slots.begin(), slots.end(), vacant);
        return true;
    }
    std::size_t next(std::size_t pos) const { return slots[pos + 1] == vacant ? no_pair : pos + slots[pos + 1]; }
    void insert(ulong bucket, ulong id)
    {
        std::size_t pos = 2 * bucket, added = slots.size();
        if (slots[pos] == vacant) {
            slots[pos] = id;
        } else if (slots.push_back_n(vacant, 2)) {
            slots[added] = id;
            while (next(pos) != no_pair) pos = next(pos);
            slots[pos + 1] = added - pos;
        }
    }
    bool copy(ulong id, nodes_type& n) const
    {
        n.fill(NONE_ID);
        return Elfe::copy_boundary_nodes(id % S, C.col(id / S), n.data()) != n.data();
    }
    nodes_type nodes(ulong id) const
    {
        nodes_type n;
        copy(id, n);
        return n;
    }
    // Offset and prime of 32-bit FNV; the terms are summed, so the node order does not count.
    void insert_all()
    {
        nodes_type n;
        for (ulong id = 0; id < C.cols() * S; ++id) {
            if (id % S >= Elfe::nbr_boundaries(C.col(id / S)) || !copy(id, n)) continue;
            ulong sum = 0;
            for (unsigned v : n) sum += ulong(v) ^ 2166136261ul;
            insert(sum * 16777619ul & (buckets - 1), id);
        }
    }
    bool walk(dense2D<unsigned>& N, int mode)
    {
        auto put = [&](ulong id, ulong e) { N(id % S, id / S) = unsigned(e); };
        for (ulong h = 0; h < buckets; ++h)
            for (std::size_t at = 2 * h; at != no_pair; at = next(at)) {
                ulong cur = slots[at], last_id = cur;
                std::size_t last = at;
                unsigned matches = 0;
                for (std::size_t q = next(at); cur != vacant && q != no_pair; q = next(q)) {
                    ulong oth = slots[q];
                    int sense = oth == vacant ? 0 : Elfe::compare_boundaries(nodes(cur).data(), nodes(oth).data());
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
                if (matches > 0 && mode > 0) {
                    put(cur, matches == 1 ? last_id / S : NONE_ID);
                    put(last_id, matches == 1 ? cur / S : NONE_ID);
                }
                if (matches > 0) slots[at] = slots[last] = vacant;
            }
        return true;
    }
};

// The neighbours with the storage requests of get_neighbors_matrix, in its order.
template <class Elfe>
int plain_neighbors(dense2D<unsigned> const& C, dense2D<unsigned>& N, int mode)
{
    plain_pairing<Elfe> plain(C);
    plain.reserve(16, 32);
    N.clear();
    if (!N.resize(Elfe::stride, C.cols(), NONE_ID)) return -199;
    if (!plain.reserve(Elfe::stride * C.cols(), 2ul * Elfe::stride * C.cols())) return -199;
    plain.insert_all();
    return plain.walk(N, mode) ? 0 : -1;
}

std::vector<unsigned> flat(dense2D<unsigned> const& M) { return {M.col(0), M.col(0) + M.rows() * M.cols()}; }

// Both tables filled from C with `hint` buckets, the finder's in two runs of elements.
template <class Elfe>
struct both_tables {
    boundary_finder<Elfe, dense2D<unsigned>> finder;
    plain_pairing<Elfe> plain;

    both_tables(dense2D<unsigned> const& C, ulong hint) : plain(C)
    {
        finder.set_connectivity(&C);
        finder.sieve().resize(Elfe::stride * C.cols(), hint);
        finder.__bdry_insert_elements(0, C.cols() / 3);
        finder.__bdry_insert_elements(C.cols() / 3, C.cols());
        plain.reserve(Elfe::stride * C.cols(), hint);
        plain.insert_all();
    }
    std::vector<ulong> table() { return {finder.sieve().slots(), finder.sieve().slots() + plain.slots.size()}; }
};

// Nodes from a small range: many boundaries share a node sum, many are shared by three elements
// or more, many elements repeat a node. Mixed arrays mix their kinds; one solid in eight gets a
// stray NONE_ID that leaves it of no valid kind.
template <class Elfe>
dense2D<unsigned> random_mesh(std::mt19937& rng, unsigned elements, unsigned nodes)
{
    constexpr bool faces = std::is_same<Elfe, elfes::face_mix>::value, solids = std::is_same<Elfe, elfes::solid_mix>::value;
    dense2D<unsigned> C;
    C.resize(Elfe::nbr_rows, elements, NONE_ID);
    for (unsigned e = 0; e < elements; ++e) {
        unsigned used = faces ? 3 + rng() % 2 : solids ? std::array<unsigned, 4>{4, 5, 6, 8}[rng() % 4] : Elfe::nbr_rows;
        for (unsigned r = 0; r < used; ++r) C(r, e) = rng() % nodes;
        if (solids && rng() % 8 == 0) C(rng() % 8, e) = NONE_ID;
    }
    return C;
}

template <class Elfe>
void expect_same_neighbors(dense2D<unsigned> const& C)
{
    for (int mode : {0, 1, 2}) {
        dense2D<unsigned> got, want;
        ASSERT_EQ(elfe_algo::get_neighbors_matrix(C, got, mode, Elfe{}), plain_neighbors<Elfe>(C, want, mode));
        ASSERT_EQ(got.rows(), want.rows());
        ASSERT_EQ(flat(got), flat(want)) << mode;
    }
}

// Also the closed table, and on small meshes the walk of one bucket holding everything, so that
// chains run from one entry to far more than the walk holds at hand (32).
template <class Elfe>
void compare_on_random_meshes(unsigned seed)
{
    std::mt19937 rng(seed);
    for (unsigned trial = 0; trial < 40 && !::testing::Test::HasFatalFailure(); ++trial) {
        unsigned elements = trial == 0 ? 0 : trial <= 4 ? 32 / Elfe::stride - 1 + trial : 1 + rng() % (trial % 4 ? 80 : 600);
        dense2D<unsigned> C = random_mesh<Elfe>(rng, elements, 1 + rng() % (trial % 3 ? 60 : 8));
        expect_same_neighbors<Elfe>(C);
        both_tables<Elfe> spread(C, 2 * Elfe::stride * elements);
        spread.finder.sieve().close();
        EXPECT_EQ(spread.table(), std::vector<ulong>(spread.plain.slots.begin(), spread.plain.slots.end()));
        for (int mode = 0; mode < 3 && elements <= 80; ++mode) {
            both_tables<Elfe> one(C, 1);
            dense2D<unsigned> got, want;
            got.resize(Elfe::stride, elements, NONE_ID);
            want.resize(Elfe::stride, elements, NONE_ID);
            elfe_algo::internal_neighbors_updater<decltype(one.finder), dense2D<unsigned>> updater(got);
            elfe_algo::null_neighbors_processor processor;
            EXPECT_EQ(elfe_algo::process_boundaries(one.finder, updater, processor, mode), one.plain.walk(want, mode));
            EXPECT_EQ(flat(got), flat(want)) << elements << " in one bucket, mode " << mode;
            EXPECT_FALSE(one.finder.sieve().is_open());
        }
    }
}

// Every pair of boundaries of small node numbers, NONE_ID among them: what the comparison finds
// alike has the same nodes, so the same key, which lets the walk pass over different keys.
template <class Elfe>
void expect_alike_share_key()
{
    using finder_type = boundary_finder<Elfe, dense2D<unsigned>>;
    constexpr unsigned W = Elfe::boundary_width, values[4] = {0, 1, 2, NONE_ID};
    std::vector<typename finder_type::boundary_type> all(1u << 2 * W);
    for (unsigned code = 0; code < all.size(); ++code)
        for (unsigned k = 0; k < W; ++k) all[code][k] = values[code >> 2 * k & 3];
    for (auto const& a : all)
        for (auto const& b : all) {
            if (finder_type::compare(a, b) == 0) continue;
            std::array<unsigned, W> sa, sb;
            std::partial_sort_copy(a.v, a.v + W, sa.begin(), sa.end());
            std::partial_sort_copy(b.v, b.v + W, sb.begin(), sb.end());
            ASSERT_EQ(sa, sb);
            ASSERT_EQ(finder_type::key(a), finder_type::key(b));
        }
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

}  // namespace

TEST(Pairing, SameAsPlainWalk)
{
    expect_alike_share_key<elfes::edge2>();
    expect_alike_share_key<elfes::face_mix>();
    expect_alike_share_key<elfes::tetra4>();
    expect_alike_share_key<elfes::solid_mix>();
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
        most_written = std::max(most_written, long(std::count_if(want.col(0), want.col(0) + 4 * D.cols(),
                                                                 [](unsigned n) { return n != NONE_ID; })));
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
    dense2D<unsigned> none;
    plain_pairing<elfes::edge2> plain(none);
    siever table;
    ASSERT_TRUE(table.resize(64, 4) && plain.reserve(64, 4));
    std::mt19937 rng(11);
    for (ulong v = 0; v < 60; ++v) {
        if (v == 30) {
            EXPECT_TRUE(table.is_open());
            table.close();
        }
        ulong h = rng() % 4;
        EXPECT_TRUE(table.insert(h, v));
        plain.insert(h, v);
    }
    EXPECT_FALSE(table.is_open());
    EXPECT_EQ(table.entry_count(), 60u);
    EXPECT_EQ(std::vector<ulong>(table.slots(), table.slots() + plain.slots.size()),
              std::vector<ulong>(plain.slots.begin(), plain.slots.end()));
}
