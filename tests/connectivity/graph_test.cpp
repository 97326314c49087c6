#include "connectivity/graph.h"
#include "connectivity/test_meshes.h"
#include "support/failing_alloc.h"
#include "tessarium/graphs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using qv7::dense1D;
using qv7::NONE_ID;
using list = std::vector<unsigned>;
using test_meshes::NONE;

dense1D<unsigned, 8> make(list const& v)
{
    dense1D<unsigned, 8> a(v.size());
    std::copy(v.begin(), v.end(), a.begin());
    return a;
}
list as_list(dense1D<unsigned, 8> const& a)
{
    return list(a.begin(), a.end());
}

// Groups of a compressed list as vectors.
std::vector<list> groups(dense1D<unsigned, 8> const& offsets, dense1D<unsigned, 8> const& indices)
{
    std::vector<list> g;
    for (std::size_t i = 0; i + 1 < offsets.size(); ++i) g.emplace_back(&indices[offsets[i]], &indices[offsets[i + 1]]);
    return g;
}

// Brute force from the element list: elements of each node, and other nodes met through them in order.
void reference(std::vector<list> const& elements, std::vector<list>& of_node, std::vector<list>& nbrs)
{
    unsigned n = 0;
    for (auto const& e : elements)
        for (unsigned v : e)
            if (v != NONE) n = std::max(n, v + 1);
    of_node.assign(n, {});
    nbrs.assign(n, {});
    for (unsigned e = 0; e < elements.size(); ++e)
        for (unsigned v : elements[e])
            if (v != NONE) of_node[v].push_back(e);
    for (unsigned v = 0; v < n; ++v)
        for (unsigned e : of_node[v])
            for (unsigned m : elements[e])
                if (m != NONE && m != v && std::find(nbrs[v].begin(), nbrs[v].end(), m) == nbrs[v].end())
                    nbrs[v].push_back(m);
}

TEST(NodeGraph, MatchesBruteForceOnMixedAndRandomConnectivities)
{
    std::mt19937 rng(7);
    std::vector<test_meshes::mesh> meshes = {test_meshes::box(2, 2, 1, test_meshes::HEXA, 8),
                                             test_meshes::box(2, 1, 2, test_meshes::PYRAMIDS, 5),
                                             test_meshes::grid(3, 2, 2, 4)};
    // A solid_mix column pair, with an unused node 9 and a node held twice.
    meshes.push_back({{}, {{0, 1, 2, 3, NONE, NONE, NONE, NONE}, {3, 2, 10, 10, 4, NONE, NONE, NONE}}, 8});
    test_meshes::mesh random{{}, {}, 4};
    for (int k = 0; k < 300; ++k) {
        list e(4);
        for (unsigned& v : e) v = unsigned(rng() % 90);
        random.elements.push_back(e);
    }
    meshes.push_back(random);

    for (auto const& m : meshes) {
        std::vector<list> of_node, nbrs;
        reference(m.elements, of_node, nbrs);
        auto connect = m.connect();
        dense1D<unsigned, 8> off, idx, goff, gtar;
        ASSERT_EQ(qv7::tessarium::get_connected_elements(connect, off, idx), 0);
        EXPECT_EQ(groups(off, idx), of_node);
        ASSERT_EQ(qv7::tessarium::get_node_graph(connect, goff, gtar), 0);
        EXPECT_EQ(groups(goff, gtar), nbrs);

        // A view with a leading dimension above its rows is packed first.
        qv7::dense2D<unsigned> wide;
        wide.resize(connect.rows() + 2, connect.cols(), 5u);
        for (std::size_t e = 0; e < connect.cols(); ++e)
            std::copy(connect.col(e), connect.col(e) + connect.rows(), wide.col(e));
        ASSERT_EQ(qv7::get_graph(wide.submatrix(0, wide.cols(), connect.rows()), goff, gtar), 0);
        EXPECT_EQ(groups(goff, gtar), nbrs);
    }
}

TEST(NodeGraph, HexahedronLinksEveryPairOfItsNodes)
{
    auto connect = test_meshes::box(1, 1, 1, test_meshes::HEXA, 8).connect();
    dense1D<unsigned, 8> goff, gtar;
    ASSERT_EQ(qv7::tessarium::get_node_graph(connect, goff, gtar), 0);
    for (unsigned v = 0; v < 8; ++v) EXPECT_EQ(goff[v + 1] - goff[v], 7u);
}

TEST(ConnectedCliques, EmptyOrAllNoneGiveTheSingleZero)
{
    dense1D<unsigned, 8> off, idx, goff, gtar;
    for (auto const& c : std::vector<std::pair<list, list>>{{{}, {}}, {{0}, {}}, {{0, 2}, {NONE, NONE}}}) {
        off = make({4, 4});
        ASSERT_EQ(qv7::get_connected_cliques(make(c.first), make(c.second), off, idx), 0);
        EXPECT_EQ(as_list(off), list{0});
        EXPECT_TRUE(idx.empty());
    }
    EXPECT_EQ(qv7::tessarium::get_node_graph(qv7::dense2D<unsigned>(), goff, gtar), 0);
    EXPECT_EQ(as_list(goff), list{0});
    // Cliques of different sizes, with an empty one.
    ASSERT_EQ(qv7::get_graph(make({0, 2, 2, 5}), make({4, 1, 1, 0, 4}), goff, gtar), 0);
    EXPECT_EQ(groups(goff, gtar), (std::vector<list>{{1, 4}, {4, 0}, {}, {}, {1, 0}}));
}

TEST(NodeGraph, MemoryFailuresReturn199)
{
    auto connect = test_meshes::box(2, 2, 2, test_meshes::TETRAS, 4).connect();
    int rc = -199;
    for (std::size_t k = 0; rc == -199 && k < 20; ++k) {
        dense1D<unsigned, 8> goff, gtar;
        test_alloc::fail_at(k);
        rc = qv7::tessarium::get_node_graph(connect, goff, gtar);
        test_alloc::reset();
        if (rc == -199) {
            EXPECT_TRUE(gtar.empty());
        }
    }
    EXPECT_EQ(rc, 0);
}

qv7::graph graph_of(std::vector<list> const& adj)
{
    qv7::graph g;
    list off{0}, tar;
    for (auto const& a : adj) {
        tar.insert(tar.end(), a.begin(), a.end());
        off.push_back(unsigned(tar.size()));
    }
    g.graph_offsets = make(off);
    g.graph_targets = make(tar);
    return g;
}

TEST(CompressGraph, CliqueBecomesOneGroupAndPathStaysApart)
{
    qv7::graph clique = graph_of({{1, 2, 3}, {0, 2, 3}, {0, 1, 3}, {0, 1, 2}});
    qv7::graph path = graph_of({{1}, {0, 2}, {1}});
    dense1D<unsigned, 8> coff, ctar, map, goff, gv;
    ASSERT_EQ(qv7::compress_graph(clique.graph_offsets, clique.graph_targets, coff, ctar, map, goff, gv), 0);
    EXPECT_EQ(as_list(map), (list{0, 0, 0, 0}));
    EXPECT_EQ(as_list(goff), (list{0, 4}));
    EXPECT_EQ(as_list(coff), (list{0, 0}));
    EXPECT_TRUE(ctar.empty());
    ASSERT_EQ(qv7::compress_graph(path.graph_offsets, path.graph_targets, coff, ctar, map, goff, gv), 0);
    // Keys: 0+1 = 1, 1+0+2 = 3, 2+1 = 3: vertex 0 first, then 1 and 2 by number.
    EXPECT_EQ(as_list(map), (list{0, 1, 2}));
    EXPECT_EQ(groups(coff, ctar), (std::vector<list>{{1}, {0, 2}, {1}}));
}

TEST(RCMK, ChainIsNumberedEndToEndAndIsolatedVerticesLast)
{
    // Chain 2-0-3-1 with vertex 4 isolated.
    qv7::graph g = graph_of({{2, 3}, {3}, {0}, {0, 1}, {}});
    dense1D<unsigned, 8> order, inverse;
    qv7::ordonator_RCMK::run(g, order, false);
    EXPECT_EQ(as_list(order), (list{2, 0, 3, 1}));
    qv7::ordonator_RCMK::run(g, order, inverse, true);
    EXPECT_EQ(as_list(order), (list{1, 3, 0, 2, 4}));
    EXPECT_EQ(as_list(inverse), (list{2, 0, 3, 1, 4}));
}

unsigned bandwidth(qv7::graph const& g, list const& number)
{
    unsigned b = 0;
    for (unsigned v = 0; v + 1 < g.graph_offsets.size(); ++v)
        for (unsigned p = g.graph_offsets[v]; p < g.graph_offsets[v + 1]; ++p) {
            unsigned a = number[v], c = number[g.graph_targets[p]];
            b = std::max(b, a > c ? a - c : c - a);
        }
    return b;
}

TEST(RCMK, ShuffledStructuredMeshGetsNoWiderBand)
{
    // Numbered along its long side, so the structured band is wide.
    auto m = test_meshes::box(30, 4, 3, test_meshes::TETRAS, 4);
    list perm(m.pos.size());
    std::iota(perm.begin(), perm.end(), 0u);
    std::shuffle(perm.begin(), perm.end(), std::mt19937(3));
    auto connect = m.connect();
    qv7::graph structured, shuffled;
    ASSERT_EQ(qv7::get_graph(connect, structured.graph_offsets, structured.graph_targets), 0);
    for (std::size_t e = 0; e < connect.cols(); ++e)
        for (std::size_t r = 0; r < 4; ++r) connect(r, e) = perm[connect(r, e)];
    ASSERT_EQ(qv7::get_graph(connect, shuffled.graph_offsets, shuffled.graph_targets), 0);

    dense1D<unsigned, 8> order, inverse;
    qv7::ordonator_RCMK::run(shuffled, order, inverse, true);
    list sorted = as_list(order);
    std::sort(sorted.begin(), sorted.end());
    list all(m.pos.size());
    std::iota(all.begin(), all.end(), 0u);
    ASSERT_EQ(sorted, all);
    list identity = all;
    EXPECT_LE(bandwidth(shuffled, as_list(inverse)), bandwidth(structured, identity));
    EXPECT_LT(bandwidth(shuffled, as_list(inverse)), bandwidth(shuffled, identity) / 4);
}

}  // namespace
