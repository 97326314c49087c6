#include "connectivity/copy_node_shell.h"
#include "connectivity/elfe_dispatch.h"
#include "connectivity/tagger_hash.h"
#include "connectivity/test_meshes.h"
#include "support/failing_alloc.h"
#include "tessarium/connectivity.h"

#include <gtest/gtest.h>

#include <iterator>
#include <set>

using namespace qv7;
using namespace qv7::tessarium;
using namespace test_meshes;

namespace {

struct kind {
    mesh m;
    element_type type;
    unsigned centre_shell;  // elements around the node (1, 1, 1) or (1, 1)
};

// Every kind on a 2 x 2 (x 2) grid; the solids also with padded rows, as mixed solids, the
// tetrahedra on a larger grid.
std::vector<kind> kinds()
{
    std::vector<kind> k = {{box(2, 2, 2, HEXA, 8), ET_HEXA8, 8},       {box(2, 2, 2, TETRAS, 4), ET_TETRA4, 24},
                           {box(2, 2, 2, WEDGES, 6), ET_WEDGE6, 12},   {box(2, 2, 2, PYRAMIDS, 5), ET_PYRAMID5, 24},
                           {box(4, 4, 4, TETRAS, 8), ET_SOLID_MIX, 24}, {box(2, 2, 2, WEDGES, 8), ET_SOLID_MIX, 12},
                           {grid(2, 2, 0, 4), ET_FACE_Q4, 4},           {grid(2, 2, 1, 3), ET_FACE_T3, 6},
                           {grid(2, 2, 2, 4), ET_FACE_MIX, 5}};
    k.push_back({mesh{{}, {{0, 1}, {1, 2}, {2, 3}}, 2}, ET_EDGE2, 2});
    return k;
}

dense2D<unsigned> neighbors_of(dense2D<unsigned> const& C, element_type type, bool non_manifold = false)
{
    dense2D<unsigned> N;
    EXPECT_EQ(get_neighbors(C, type, non_manifold, N), 0);
    return N;
}

struct shell_result {
    int code;
    std::vector<unsigned> elements;
    bool closed;
};
shell_result shell(unsigned node, unsigned seed, dense2D<unsigned> const& C, dense2D<unsigned> const& N,
                   element_type type)
{
    dense1D<unsigned, 8> out, stack;
    tagger_hash tagger;
    bool closed = false;
    int code = __with_elfe(__narrow(type, C.rows()), 1, [&](auto elfe) {
        return elfe_algo::copy_node_shell(node, seed, C, N, std::back_inserter(out), closed, stack, tagger, elfe);
    });
    return {code, std::vector<unsigned>(out.begin(), out.end()), closed};
}

dense1D<unsigned, 8> list(std::vector<unsigned> const& v)
{
    dense1D<unsigned, 8> d;
    for (unsigned x : v) d.push_back(x);
    return d;
}

}  // namespace

TEST(NodeShell, EveryNodeOfEveryKind)
{
    for (kind const& k : kinds()) {
        dense2D<unsigned> C = k.m.connect(), N = neighbors_of(C, k.type);
        unsigned nodes = k.m.pos.empty() ? 4 : unsigned(k.m.pos.size());
        for (unsigned node = 0; node < nodes; ++node) {
            std::set<unsigned> holding;  // on these manifold meshes the shell is every element at the node
            for (unsigned e = 0; e < C.cols(); ++e)
                if (std::count(C.col(e), C.col(e) + C.rows(), node)) holding.insert(e);
            shell_result s = shell(node, *holding.begin(), C, N, k.type);
            EXPECT_EQ(s.code, 0);
            EXPECT_EQ(std::set<unsigned>(s.elements.begin(), s.elements.end()), holding) << k.type << " " << node;
            EXPECT_EQ(s.elements.size(), holding.size());
            bool inside = k.m.pos.empty() ? node == 1 || node == 2 : true, centre = k.m.pos.empty() && node == 1;
            if (!k.m.pos.empty()) {
                point p = k.m.pos[node];
                unsigned dims = k.type <= ET_FACE_Q4 ? 2 : 3;
                for (unsigned d = 0; d < dims; ++d) inside = inside && p[d] > 0 && p[d] < k.m.pos[nodes - 1 - (k.type == ET_PYRAMID5 ? 8 : 0)][d];
                centre = p == point{1, 1, dims == 2 ? 0.0 : 1.0};
            }
            EXPECT_EQ(s.closed, inside) << k.type << " " << node;
            if (centre) {
                EXPECT_EQ(holding.size(), k.centre_shell) << k.type;
            }
        }
    }
}

TEST(NodeShell, DepthFirstThroughNeighboursOnly)
{
    // Four quadrangles around node 4: from the first, the neighbour across its first side comes next.
    mesh q = grid(2, 2, 0, 4);
    dense2D<unsigned> C = q.connect(), N = neighbors_of(C, ET_FACE_Q4);
    EXPECT_EQ(shell(4, 0, C, N, ET_FACE_Q4).elements, (std::vector<unsigned>{0, 1, 3, 2}));
    // Two fans meeting at node 0 alone: each walk stays in its fan.
    dense2D<unsigned> F = mesh{{}, {{0, 1, 2}, {0, 2, 3}, {0, 4, 5}, {0, 5, 6}}, 3}.connect();
    dense2D<unsigned> FN = neighbors_of(F, ET_FACE_T3, true);
    EXPECT_EQ(shell(0, 3, F, FN, ET_FACE_T3).elements, (std::vector<unsigned>{3, 2}));
    EXPECT_FALSE(shell(0, 3, F, FN, ET_FACE_T3).closed);
    shell_result none = shell(0, NONE, F, FN, ET_FACE_T3);
    EXPECT_TRUE(none.code == 0 && none.elements.empty() && !none.closed);
    // The skin side (0, 1) of the other fan is not found from a seed in this one.
    dense1D<unsigned, 8> ancestors = list({3, 0, 1, 1, 2, 3, 3}), found;
    unsigned stride = 0;
    EXPECT_EQ(get_elements_on_boundaries(mesh{{}, {{0, 1}, {0, 6}}, 2}.connect(), F, FN, ancestors, ET_FACE_T3, found,
                                         stride), 0);
    EXPECT_EQ(std::vector<unsigned>(found.begin(), found.end()), (std::vector<unsigned>{NONE, 3 * 3 + 1}));
    // A triangle that lacks the node fails the walk, at the seed or further on.
    EXPECT_EQ(shell(4, 0, F, FN, ET_FACE_T3).code, -1);
    dense2D<unsigned> wrong = FN;
    wrong(1, 0) = 2;  // across side (2, 0) of element 0 now stands element 2, which lacks node 2
    EXPECT_EQ(shell(2, 0, F, wrong, ET_FACE_T3).elements, (std::vector<unsigned>{0}));
    EXPECT_EQ(shell(2, 0, F, wrong, ET_FACE_T3).code, -1);
}

TEST(ElementsOnBoundaries, MapsBoundariesBackToTheirElements)
{
    for (kind const& k : kinds()) {
        dense2D<unsigned> C = k.m.connect(), N = neighbors_of(C, k.type), skin, all, reversed;
        dense1D<unsigned, 8> ancestors, ids, found;
        unsigned stride = 0, found_stride = 0;
        ASSERT_EQ(get_ancestors(C, ancestors), 0);
        ASSERT_EQ(get_mesh_boundaries(C, N, k.type, skin), 0);
        ASSERT_EQ(get_mesh_bounding_elements(C, N, k.type, ids, stride), 0);
        ASSERT_EQ(get_elements_on_boundaries(skin, C, N, ancestors, k.type, found, found_stride), 0);
        EXPECT_EQ(found_stride, stride);
        EXPECT_EQ(std::vector<unsigned>(found.begin(), found.end()), std::vector<unsigned>(ids.begin(), ids.end()));
        // Every boundary of every element, interior ones in both senses: each names its own element.
        ASSERT_EQ(get_element_boundaries(C, k.type, all), 0);
        ASSERT_EQ(get_elements_on_boundaries(all, C, N, ancestors, k.type, found, found_stride), 0);
        std::vector<unsigned> own;  // the ID of each column, as the element's kind has boundaries
        for (unsigned e = 0; e < C.cols(); ++e) {
            auto n = unsigned(C.rows() - std::count(C.col(e), C.col(e) + C.rows(), NONE));
            for (unsigned b = 0; b < (n <= 5 ? n : n == 6 ? 5 : 6); ++b) own.push_back(e * stride + b);
        }
        // Ends of edges have no sense: an inner end goes to the first element of the walk that has it.
        if (k.type != ET_EDGE2) {
            EXPECT_EQ(std::vector<unsigned>(found.begin(), found.end()), own) << k.type;
        }
        // The skin turned over is found from the other side: the same elements.
        ASSERT_TRUE(reversed.copy(skin));
        for (unsigned j = 0; j < skin.cols(); ++j)
            std::reverse(reversed.col(j), std::find(reversed.col(j), reversed.col(j) + skin.rows(), NONE));
        ASSERT_EQ(get_elements_on_boundaries(reversed, C, N, ancestors, k.type, found, found_stride), 0);
        EXPECT_EQ(std::vector<unsigned>(found.begin(), found.end()), std::vector<unsigned>(ids.begin(), ids.end()));
        column const& first = k.m.elements[0];
        if (k.type < ET_SOLID_MIX || first.size() - std::count(first.begin(), first.end(), NONE) != 4) continue;
        // A tetrahedron seed that lacks the node: the walk goes on through all its faces.
        std::fill(ancestors.begin(), ancestors.end(), 0u);
        ASSERT_EQ(get_elements_on_boundaries(skin, C, N, ancestors, k.type, found, found_stride), 0);
        EXPECT_EQ(std::vector<unsigned>(found.begin(), found.end()), std::vector<unsigned>(ids.begin(), ids.end()));
    }
}

TEST(ElementsOnBoundaries, CodesInStepOrderAndMemory)
{
    mesh m = box(1, 1, 1, TETRAS, 4);
    dense2D<unsigned> C = m.connect(), N = neighbors_of(C, ET_TETRA4), skin, C10, N3;
    dense1D<unsigned, 8> ancestors, found(3, 7u), bad = list({0, 9});
    ASSERT_EQ(get_ancestors(C, ancestors), 0);
    ASSERT_EQ(get_mesh_boundaries(C, N, ET_TETRA4, skin), 0);
    C10.resize(10, 2, 0u);
    N3.resize(3, C.cols(), NONE);
    unsigned stride = 9;
    EXPECT_EQ(get_elements_on_boundaries(dense2D<unsigned>(), C, N, ancestors, ET_TETRA4, found, stride), 0);
    EXPECT_TRUE(found.empty() && stride == 0);
    EXPECT_EQ(get_elements_on_boundaries(skin, C, N, ancestors, ET_HEXA8, found, stride), -1);
    EXPECT_EQ(get_elements_on_boundaries(skin, C, N, ancestors, ET_FACE_MIX, found, stride), -1);
    EXPECT_EQ(get_elements_on_boundaries(skin, C10, N, ancestors, ET_TETRA4, found, stride), -2);
    EXPECT_EQ(get_elements_on_boundaries(skin, C, N3, bad, ET_TETRA4, found, stride), -3);
    EXPECT_EQ(get_elements_on_boundaries(skin, C, N, bad, ET_TETRA4, found, stride), -4);
    dense2D<unsigned> skin6, N4;
    skin6.resize(6, 1, 0u);
    N4.resize(4, 2, NONE);
    dense1D<unsigned, 8> zeros(10, 0u);
    EXPECT_EQ(get_elements_on_boundaries(skin6, C10, N4, zeros, ET_TETRA10, found, stride), -5);
    EXPECT_EQ(stride, 4u);
    // Only the sizing of the result reports memory; the walk's work space fails silently.
    std::size_t failures = 0;
    for (std::size_t k = 0; k < 12; ++k) {
        dense1D<unsigned, 8> fresh;
        test_alloc::fail_at(k);
        int code = get_elements_on_boundaries(skin, C, N, ancestors, ET_TETRA4, fresh, stride);
        test_alloc::reset();
        EXPECT_TRUE(code == 0 || code == -199);
        failures += code == -199;
    }
    EXPECT_EQ(failures, 1u);
}
