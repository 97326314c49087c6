#include "tessarium/element_type.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

using namespace qv7;
using tessarium::check_IDs;

namespace {

dense2D<unsigned> columns(std::size_t rows, std::vector<std::vector<unsigned>> const& cols)
{
    dense2D<unsigned> m;
    m.resize(rows, cols.size());
    for (std::size_t j = 0; j < cols.size(); ++j)
        for (std::size_t i = 0; i < rows; ++i) m(i, j) = cols[j][i];
    return m;
}

constexpr unsigned X = NONE_ID;

}  // namespace

TEST(ElementTables, RowsAndNarrowing)
{
    EXPECT_STREQ(tessarium::version(), "4.8.0.0");
    EXPECT_EQ(tessarium::nbr_nodes(ET_HEXA27), 27u);
    EXPECT_EQ(tessarium::nbr_nodes(ET_PYRAMID14), 14u);
    EXPECT_EQ(tessarium::nbr_base_nodes(ET_WEDGE18), 6u);
    EXPECT_EQ(tessarium::nbr_boundaries(ET_WEDGE15), 5u);
    EXPECT_EQ(tessarium::element_dim(ET_EDGE3), 1u);
    EXPECT_EQ(tessarium::nbr_boundaries(ET_NODE), 0u);
    EXPECT_EQ(tessarium::nbr_nodes(ET_FACE_MIX), 4u);  // a mixed type takes its largest member's row
    EXPECT_EQ(tessarium::nbr_boundaries(ET_SOLID_MIX), 6u);

    EXPECT_EQ(__narrow(ET_FACE_MIX, 3), ET_FACE_T3);
    EXPECT_EQ(__narrow(ET_FACE_MIX, 4), ET_FACE_MIX);
    EXPECT_EQ(__narrow(ET_SOLID_MIX, 4), ET_TETRA4);
    EXPECT_EQ(__narrow(ET_SOLID_MIX, 5), ET_PYRAMID5);
    EXPECT_EQ(__narrow(ET_SOLID_MIX, 6), ET_WEDGE6);
    EXPECT_EQ(__narrow(ET_SOLID_MIX, 7), ET_SOLID_MIX);
    EXPECT_EQ(__narrow(ET_HEXA8, 4), ET_HEXA8);
}

TEST(CheckIDs, ListsAndUntypedMatricesAcceptNoneID)
{
    dense1D<unsigned, 8> ids(1, X);
    EXPECT_TRUE(check_IDs(ids, 0));
    ids.push_back(3);
    EXPECT_FALSE(check_IDs(ids, 3));
    EXPECT_TRUE(check_IDs(ids, 4));
    // Long runs go through the blocked scan: a bad entry deep inside one block is found.
    dense1D<unsigned, 8> many(1000, 2u);
    many[700] = 5;
    EXPECT_FALSE(check_IDs(many, 5));
    EXPECT_TRUE(check_IDs(many, 6));

    dense2D<unsigned> m = columns(3, {{0, 1, 2}, {X, 5, 0}});
    EXPECT_TRUE(check_IDs(m, 6));
    EXPECT_FALSE(check_IDs(m, 5));
    // A view that hides the bad row passes: only visible elements count.
    dense2D<unsigned> bad = columns(3, {{0, 1, 9}, {1, 2, 9}});
    EXPECT_TRUE(check_IDs(bad.submatrix(0, 2, 2), 3));
    EXPECT_FALSE(check_IDs(bad, 3));
}

TEST(CheckIDs, TypedShapeComesFirst)
{
    dense2D<unsigned> empty;
    EXPECT_TRUE(check_IDs(empty, ET_NONE, 0));
    EXPECT_TRUE(check_IDs(empty, ET_HEXA27, 0));

    dense2D<unsigned> garbage = columns(4, {{7, 8, 9, X}});
    EXPECT_FALSE(check_IDs(garbage, ET_NONE, X));
    EXPECT_TRUE(check_IDs(garbage, ET_TETRA4, X));  // shape alone
    EXPECT_FALSE(check_IDs(garbage, ET_HEXA8, X));
    EXPECT_TRUE(check_IDs(garbage, ET_SOLID_MIX, X));  // narrowed to tetrahedra
    EXPECT_FALSE(check_IDs(garbage, ET_TETRA4, 10));   // NONE_ID is no node here
    EXPECT_TRUE(check_IDs(garbage, 10));

    dense2D<unsigned> edges = columns(2, {{0, 1}});
    EXPECT_TRUE(check_IDs(edges, ET_EDGE_MIX, 2));
    EXPECT_FALSE(check_IDs(edges, ET_EDGE3, 2));
}

TEST(CheckIDs, MixedFaces)
{
    dense2D<unsigned> tri = columns(3, {{0, 1, 2}, {0, 2, X}});
    EXPECT_FALSE(check_IDs(tri, ET_FACE_MIX, 5));  // 3 rows: pure triangles, no NONE_ID
    dense2D<unsigned> mix = columns(4, {{0, 1, 2, X}, {0, 1, 2, 3}});
    EXPECT_TRUE(check_IDs(mix, ET_FACE_MIX, 4));
    EXPECT_FALSE(check_IDs(mix, ET_FACE_MIX, 3));
    dense2D<unsigned> early = columns(4, {{0, 1, X, 2}});
    EXPECT_FALSE(check_IDs(early, ET_FACE_MIX, 4));
    EXPECT_FALSE(check_IDs(mix, ET_FACE_Q4, 4));
}

TEST(CheckIDs, MixedSolids)
{
    unsigned const a = 0, b = 1, c = 2, d = 3, e = 4, f = 5, g = 6;
    EXPECT_FALSE(check_IDs(columns(5, {{a, b, c, d, X}}), ET_SOLID_MIX, 7));  // pure pyramids
    EXPECT_TRUE(check_IDs(columns(5, {{a, b, c, d, e}}), ET_SOLID_MIX, 7));
    EXPECT_FALSE(check_IDs(columns(7, {{a, b, c, d, e, f, g}}), ET_SOLID_MIX, 7));

    std::vector<std::vector<unsigned>> good = {
        {a, b, c, d, X, X, X, X},  // tetrahedron
        {a, b, c, d, e, X, X, X},  // pyramid
        {a, b, c, d, e, f, X, X},  // wedge
        {a, b, c, d, e, f, g, a},  // hexahedron
    };
    EXPECT_TRUE(check_IDs(columns(8, good), ET_SOLID_MIX, 7));
    EXPECT_FALSE(check_IDs(columns(8, good), ET_SOLID_MIX, 6));
    for (auto const& column : std::vector<std::vector<unsigned>>{
             {a, b, c, d, X, e, f, g},  // hole after the first NONE_ID
             {a, b, c, X, X, X, X, X},  // fewer than four nodes
             {a, b, c, d, e, f, g, X},  // seven nodes
         })
        EXPECT_FALSE(check_IDs(columns(8, {good[0], column}), ET_SOLID_MIX, 7));
}
