#include "tessarium/node_detector.h"

#include "support/arrays.h"

#include <gtest/gtest.h>

using namespace test_arrays;
using qv7::dense2D;
using qv7::tessarium::node_detector;
using IDs = qv7::dense1D<unsigned, 8>;
using v2 = qv7::vector_fixed<double, 2>;
using v3 = qv7::vector_fixed<double, 3>;

TEST(NodeDetector, RefusalsLeaveItAsItWasButTheWholeMatrixFormClearsFirst)
{
    dense2D<double> pos3 = matrix<double>(3, {0, 0, 0, 1, 0, 0, 2, 0, 0}), pos1 = matrix<double>(1, {0, 1});
    dense2D<unsigned> bad = matrix<unsigned>(1, {3});
    node_detector nd(pos3, list({0u, 1u}));
    EXPECT_EQ(nd.reinit(pos1, list({0u})), -1);
    EXPECT_EQ(nd.reinit(pos3, list({0u, 3u})), -2);
    EXPECT_EQ(nd.reinit(pos3, bad), -2);
    EXPECT_EQ(nd.reinit(pos3, &bad + 1, &bad), -3);
    EXPECT_EQ(nd.size(), 2u);
    EXPECT_EQ(nd.find_closest(v3{2, 0, 0}), 1u);
    // NONE_ID passes the check and is refused by the tree; repeats are inserted and counted.
    EXPECT_EQ(nd.reinit(pos3, list({2u, NONE_ID})), 0);
    EXPECT_EQ(nd.insert(list({1u, 1u, 5u})), 2);
    EXPECT_EQ(nd.size(), 3u);

    EXPECT_EQ(nd.reinit(pos1), -1);
    EXPECT_EQ(nd.size(), 0u);
    EXPECT_EQ(nd.find_closest(v2{0, 0}) & nd.find_closest(v3{0, 0, 0}) & nd.find_closest(0u), NONE_ID);
    EXPECT_EQ(nd.insert(list({0u, 1u})), 0);
    IDs found = list({9u});
    nd.find_in_box(v3{-1, -1, -1}, v3{1, 1, 1}, found);
    EXPECT_EQ(values(found), V{9});
}

TEST(NodeDetector, QueriesOfEitherDimensionOnTreesOfEitherAndClosestOtherNodes)
{
    dense2D<double> pos2 = matrix<double>(2, {0, 0, 3, 0});
    node_detector flat(pos2);
    EXPECT_EQ(flat.find_closest(v3{2.9, 0, 5}), 1u);  // z is dropped
    IDs found;
    flat.find_in_box(v3{-1, -1, 7}, v3{4, 1, 8}, found);
    EXPECT_EQ(found.size(), 2u);

    dense2D<double> pos3 = matrix<double>(3, {0, 0, 10, 0, 0, -0.5, 5, 5, 0});
    node_detector solid(pos3);
    EXPECT_EQ(solid.find_closest(v2{0, 0}), 1u);  // measured against z = 0
    found.clear();
    solid.find_in_box(v2{-10, -10}, v2{10, 10}, found);  // only z exactly 0 matches
    solid.find_in_box(v2{-10, -10}, v2{10, 10}, found);
    EXPECT_EQ(values(found), (V{2, 2}));

    // The closest other node to a node of the matrix.
    dense2D<double> pos = matrix<double>(2, {0, 0, 0, 0, 1, 0, 5, 5});
    node_detector one(pos, list({3u}));
    EXPECT_EQ(one.find_closest(3u), NONE_ID);
    EXPECT_EQ(one.find_closest(2u), 3u);  // the node need not be held
    EXPECT_EQ(one.find_closest(4u), NONE_ID);
    node_detector all(pos);
    EXPECT_EQ(all.find_closest(0u), 1u);  // a copy at another column is another node
}

TEST(NodeDetector, CopiesAreDeepAndTheMatrixMayGrow)
{
    dense2D<double> pos = matrix<double>(2, {0, 0, 4.5, 0});
    node_detector a(pos);
    node_detector b(a);
    EXPECT_EQ(b.insert(list({2u})), 0);  // beyond the matrix
    pos.resize(2, 3, 0.0);
    pos(0, 2) = 2;
    EXPECT_EQ(b.insert(list({2u})), 1);
    EXPECT_EQ(a.find_closest(v2{2, 0}), 0u);
    EXPECT_EQ(b.find_closest(v2{2, 0}), 2u);
    a = b;
    b.clear();
    EXPECT_EQ(a.find_closest(v2{2, 0}), 2u);

    node_detector c(pos, matrix<unsigned>(3, {0, 1, 2, 2, 1, NONE_ID}));
    EXPECT_EQ(c.size(), 3u);
}
