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
using list = std::vector<unsigned>;

namespace {

struct kind {
    mesh m;
    element_type type;
    unsigned centre_shell;  // elements at the node (1, 1, 1), (1, 1, 0) or (1, 0, 0)
};

// Every kind on a 2 x 2 x 2 grid (tetrahedra as mixed solids on a larger one, beyond the tagger's
// first table), and a chain of edges.
std::vector<kind> kinds()
{
    return {{box(2, 2, 2, HEXA, 8), ET_HEXA8, 8},
            {box(2, 2, 2, TETRAS, 4), ET_TETRA4, 24},
            {box(2, 2, 2, WEDGES, 6), ET_WEDGE6, 12},
            {box(2, 2, 2, PYRAMIDS, 5), ET_PYRAMID5, 24},
            {box(4, 4, 4, TETRAS, 8), ET_SOLID_MIX, 24},
            {box(2, 2, 2, WEDGES, 8), ET_SOLID_MIX, 12},
            {grid(2, 2, 0, 4), ET_FACE_Q4, 4},
            {grid(2, 2, 1, 3), ET_FACE_T3, 6},
            {grid(2, 2, 2, 4), ET_FACE_MIX, 5},
            {mesh{{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}, {{0, 1}, {1, 2}, {2, 3}}, 2}, ET_EDGE2, 2}};
}

dense2D<unsigned> neighbors_of(dense2D<unsigned> const& C, element_type type, bool non_manifold = false)
{
    dense2D<unsigned> N;
    EXPECT_EQ(get_neighbors(C, type, non_manifold, N), 0);
    return N;
}

struct shell_result {
    int code;
    list elements;
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
    return {code, list(out.begin(), out.end()), closed};
}

list as_list(dense1D<unsigned, 8> const& v)
{
    return list(v.begin(), v.end());
}

}  // namespace

TEST(NodeShell, EveryNodeOfEveryKind)
{
    for (kind const& k : kinds()) {
        dense2D<unsigned> C = k.m.connect(), N = neighbors_of(C, k.type);
        unsigned dims = element_dim(k.type);
        point hi{0, 0, 0};
        for (point const& p : k.m.pos)
            for (unsigned d = 0; d < 3; ++d) hi[d] = std::max(hi[d], p[d]);
        for (unsigned node = 0; node < k.m.pos.size(); ++node) {
            std::set<unsigned> holding;  // on these manifold meshes the shell is every element at the node
            for (unsigned e = 0; e < C.cols(); ++e)
                if (std::count(C.col(e), C.col(e) + C.rows(), node)) holding.insert(e);
            shell_result s = shell(node, *holding.begin(), C, N, k.type);
            EXPECT_EQ(s.code, 0);
            EXPECT_EQ(s.elements.size(), holding.size());
            EXPECT_EQ(std::set<unsigned>(s.elements.begin(), s.elements.end()), holding) << k.type << " " << node;
            point p = k.m.pos[node];
            bool inside = true;
            for (unsigned d = 0; d < dims; ++d) inside = inside && p[d] > 0 && p[d] < hi[d];
            EXPECT_EQ(s.closed, inside) << k.type << " " << node;
            EXPECT_TRUE((p != point{1, double(dims > 1), double(dims > 2)}) || holding.size() == k.centre_shell);
        }
    }
}

TEST(NodeShell, DepthFirstThroughNeighboursOnly)
{
    // Four quadrangles around node 4: from the first, the neighbour across its first side comes next.
    dense2D<unsigned> Q = grid(2, 2, 0, 4).connect();
    EXPECT_EQ(shell(4, 0, Q, neighbors_of(Q, ET_FACE_Q4), ET_FACE_Q4).elements, (list{0, 1, 3, 2}));
    // Two fans meeting at node 0 alone: each walk stays in its fan.
    dense2D<unsigned> F = mesh{{}, {{0, 1, 2}, {0, 2, 3}, {0, 4, 5}, {0, 5, 6}}, 3}.connect();
    dense2D<unsigned> FN = neighbors_of(F, ET_FACE_T3, true), wrong = FN;
    shell_result fan = shell(0, 3, F, FN, ET_FACE_T3), none = shell(0, NONE, F, FN, ET_FACE_T3);
    EXPECT_TRUE(fan.code == 0 && fan.elements == (list{3, 2}) && !fan.closed);
    EXPECT_TRUE(none.code == 0 && none.elements.empty() && !none.closed);
    // Side (0, 1) of the other fan is not found from there; (0, 6) is, from the other side.
    dense1D<unsigned, 8> ancestors(7, 3u), found;
    unsigned stride = 0;
    EXPECT_EQ(get_elements_on_boundaries(mesh{{}, {{0, 1}, {0, 6}}, 2}.connect(), F, FN, ancestors, ET_FACE_T3, found,
                                         stride),
              0);
    EXPECT_EQ(as_list(found), (list{NONE, 3 * 3 + 1}));
    // A triangle that lacks the node ends the walk, at the seed or further on.
    EXPECT_EQ(shell(4, 0, F, FN, ET_FACE_T3).code, -1);
    wrong(1, 0) = 2;  // across side (2, 0) of element 0 now stands element 2, which lacks node 2
    shell_result cut = shell(2, 0, F, wrong, ET_FACE_T3);
    EXPECT_TRUE(cut.code == -1 && cut.elements == list{0});
}

TEST(ElementsOnBoundaries, MapsBoundariesBackToTheirElements)
{
    for (kind const& k : kinds()) {
        dense2D<unsigned> C = k.m.connect(), N = neighbors_of(C, k.type), skin, all, reversed;
        dense1D<unsigned, 8> ancestors, ids, found;
        unsigned stride = 0, found_stride = 0;
        ASSERT_EQ(get_ancestors(C, ancestors) | get_mesh_boundaries(C, N, k.type, skin) |
                      get_mesh_bounding_elements(C, N, k.type, ids, stride) | get_element_boundaries(C, k.type, all),
                  0);
        ASSERT_EQ(get_elements_on_boundaries(skin, C, N, ancestors, k.type, found, found_stride), 0);
        EXPECT_EQ(found_stride, stride);
        EXPECT_EQ(as_list(found), as_list(ids));
        // Every boundary of every element, inner ones in both senses, names its own element; ends
        // of edges have no sense, so an inner one goes to the first element of the walk.
        ASSERT_EQ(get_elements_on_boundaries(all, C, N, ancestors, k.type, found, found_stride), 0);
        list own;
        for (unsigned e = 0; e < C.cols(); ++e) {
            auto n = unsigned(C.rows() - std::count(C.col(e), C.col(e) + C.rows(), NONE));
            for (unsigned b = 0; b < (n <= 5 ? n : n == 6 ? 5 : 6); ++b) own.push_back(e * stride + b);
        }
        EXPECT_TRUE(k.type == ET_EDGE2 || as_list(found) == own) << k.type;
        // The skin turned over is found from the other side: the same elements.
        ASSERT_TRUE(reversed.copy(skin));
        for (unsigned j = 0; j < skin.cols(); ++j)
            std::reverse(reversed.col(j), std::find(reversed.col(j), reversed.col(j) + skin.rows(), NONE));
        ASSERT_EQ(get_elements_on_boundaries(reversed, C, N, ancestors, k.type, found, found_stride), 0);
        EXPECT_EQ(as_list(found), as_list(ids));
        // Tetrahedra: a seed that lacks the node lists all its faces, and the walk goes on.
        if (element_dim(k.type) < 3 ||
            k.m.elements[0].size() - std::count(k.m.elements[0].begin(), k.m.elements[0].end(), NONE) != 4)
            continue;
        std::fill(ancestors.begin(), ancestors.end(), 0u);
        ASSERT_EQ(get_elements_on_boundaries(skin, C, N, ancestors, k.type, found, found_stride), 0);
        EXPECT_EQ(as_list(found), as_list(ids));
    }
}

TEST(ElementsOnBoundaries, CodesInStepOrderAndMemory)
{
    dense2D<unsigned> C = box(1, 1, 1, TETRAS, 4).connect(), N = neighbors_of(C, ET_TETRA4), skin, C10, N3, N4, B6;
    dense1D<unsigned, 8> ancestors, found(3, 7u), bad(2, 9u), zeros(10, 0u);
    ASSERT_EQ(get_ancestors(C, ancestors) | get_mesh_boundaries(C, N, ET_TETRA4, skin), 0);
    C10.resize(10, 2, 0u);
    N3.resize(3, C.cols(), NONE);
    N4.resize(4, 2, NONE);
    B6.resize(6, 1, 0u);
    unsigned stride = 9;
    EXPECT_EQ(get_elements_on_boundaries(dense2D<unsigned>(), C, N, ancestors, ET_TETRA4, found, stride), 0);
    EXPECT_TRUE(found.empty() && stride == 0);
    EXPECT_EQ(get_elements_on_boundaries(skin, C, N, ancestors, ET_HEXA8, found, stride), -1);
    EXPECT_EQ(get_elements_on_boundaries(skin, C10, N, ancestors, ET_TETRA4, found, stride), -2);
    EXPECT_EQ(get_elements_on_boundaries(skin, C, N3, bad, ET_TETRA4, found, stride), -3);
    EXPECT_EQ(get_elements_on_boundaries(skin, C, N, bad, ET_TETRA4, found, stride), -4);
    EXPECT_EQ(get_elements_on_boundaries(B6, C10, N4, zeros, ET_TETRA10, found, stride), -5);
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
