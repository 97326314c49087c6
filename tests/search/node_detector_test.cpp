#include "tessarium/node_detector.h"

#include "tessarium/element_type.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using qv7::dense1D;
using qv7::dense2D;
using qv7::NONE_ID;
using qv7::tessarium::node_detector;
using v2 = qv7::vector_fixed<double, 2>;
using v3 = qv7::vector_fixed<double, 3>;

namespace {

dense2D<double> matrix(std::vector<std::vector<double>> const& columns)
{
    dense2D<double> pos;
    pos.resize(columns[0].size(), columns.size());
    for (std::size_t j = 0; j < columns.size(); ++j)
        for (std::size_t i = 0; i < columns[j].size(); ++i) pos(i, j) = columns[j][i];
    return pos;
}

dense1D<unsigned, 8> list(std::vector<unsigned> const& values)
{
    dense1D<unsigned, 8> IDs;
    for (unsigned v : values) IDs.push_back(v);
    return IDs;
}

std::vector<unsigned> values(dense1D<unsigned, 8> const& IDs) { return {IDs.begin(), IDs.end()}; }

dense2D<double> random_points(unsigned rows, unsigned n, unsigned seed)
{
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    dense2D<double> pos;
    pos.resize(rows, n);
    for (unsigned j = 0; j < n; ++j)
        for (unsigned i = 0; i < rows; ++i) pos(i, j) = u(rng);
    return pos;
}

double distance(dense2D<double> const& pos, unsigned node, double const* p, unsigned rows)
{
    double q = 0;
    for (unsigned k = 0; k < rows; ++k) q += (pos(k, node) - p[k]) * (pos(k, node) - p[k]);
    return std::sqrt(q);
}

}  // namespace

TEST(NodeDetector, DefaultIsEmptyAndInert)
{
    node_detector nd;
    EXPECT_EQ(nd.size(), 0u);
    EXPECT_EQ(nd.find_closest(v2{0, 0}), NONE_ID);
    EXPECT_EQ(nd.find_closest(v3{0, 0, 0}), NONE_ID);
    EXPECT_EQ(nd.find_closest(0u), NONE_ID);
    EXPECT_EQ(nd.insert(list({0, 1})), 0);
    dense1D<unsigned, 8> found = list({9});
    nd.find_in_box(v3{-1, -1, -1}, v3{1, 1, 1}, found);
    EXPECT_EQ(values(found), std::vector<unsigned>{9});
}

TEST(NodeDetector, ReinitRefusesBadShapesAndLists)
{
    dense2D<double> pos3 = matrix({{0, 0, 0}, {1, 0, 0}});
    dense2D<double> pos1 = matrix({{0}, {1}});
    node_detector nd(pos3);
    ASSERT_EQ(nd.size(), 2u);

    EXPECT_EQ(nd.reinit(pos1, list({0})), -1);
    EXPECT_EQ(nd.size(), 2u);  // left as it was
    EXPECT_EQ(nd.reinit(pos3, list({0, 2})), -2);
    EXPECT_EQ(nd.size(), 2u);
    EXPECT_EQ(nd.find_closest(v3{0.9, 0, 0}), 1u);

    EXPECT_EQ(nd.reinit(pos1), -1);  // the whole-matrix form clears first
    EXPECT_EQ(nd.size(), 0u);
    EXPECT_EQ(nd.find_closest(v3{0.9, 0, 0}), NONE_ID);
}

TEST(NodeDetector, NoneIdPassesTheCheckButIsNotInserted)
{
    dense2D<double> pos = matrix({{0, 0}, {1, 0}, {2, 0}});
    node_detector nd;
    EXPECT_EQ(nd.reinit(pos, list({2, NONE_ID, 0})), 0);
    EXPECT_EQ(nd.size(), 2u);
    EXPECT_EQ(nd.find_closest(v2{0.9, 0}), 0u);  // node 1 is not held
    EXPECT_EQ(nd.insert(list({1, 1, NONE_ID, 3})), 2);
    EXPECT_EQ(nd.size(), 4u);  // repeats count
    EXPECT_EQ(nd.find_closest(v2{0.9, 0}), 1u);
}

TEST(NodeDetector, QueriesOfTheOtherDimension)
{
    dense2D<double> pos2 = matrix({{0, 0}, {3, 0}});
    node_detector flat(pos2);
    EXPECT_EQ(flat.find_closest(v3{2.9, 0, 5}), 1u);  // z is dropped
    EXPECT_EQ(flat.find_closest(v3{0.1, 0, -100}), 0u);

    dense2D<double> pos3 = matrix({{0, 0, 10}, {0, 0, -0.5}, {5, 5, 0}});
    node_detector solid(pos3);
    EXPECT_EQ(solid.find_closest(v2{0, 0}), 1u);  // measured against z = 0
    EXPECT_EQ(solid.find_closest(v3{0, 0, 8}), 0u);

    dense1D<unsigned, 8> found;
    solid.find_in_box(v2{-10, -10}, v2{10, 10}, found);  // only z exactly 0 matches
    EXPECT_EQ(values(found), std::vector<unsigned>{2});
    found.clear();
    flat.find_in_box(v3{-1, -1, 7}, v3{4, 1, 8}, found);
    EXPECT_EQ(found.size(), 2u);
}

TEST(NodeDetector, ClosestOtherNode)
{
    dense2D<double> pos = matrix({{0, 0}, {0, 0}, {1, 0}, {5, 5}});
    node_detector one(pos, list({3}));
    EXPECT_EQ(one.find_closest(3u), NONE_ID);
    EXPECT_EQ(one.find_closest(2u), 3u);  // the node need not be held
    EXPECT_EQ(one.find_closest(4u), NONE_ID);
    EXPECT_EQ(one.find_closest(NONE_ID), NONE_ID);

    node_detector all(pos);
    EXPECT_EQ(all.find_closest(0u), 1u);  // a copy at another column is another node
    EXPECT_EQ(all.find_closest(1u), 0u);
    EXPECT_EQ(all.find_closest(2u) < 2u, true);
    EXPECT_EQ(all.find_closest(3u), 2u);
}

TEST(NodeDetector, BoxSearchAppendsInclusively)
{
    dense2D<double> pos = matrix({{0, 0, 0}, {1, 1, 1}, {1, 1, 1.0000001}, {-1, 0, 0}});
    node_detector nd(pos);
    dense1D<unsigned, 8> found;
    nd.find_in_box(v3{0, 0, 0}, v3{1, 1, 1}, found);
    nd.find_in_box(v3{0, 0, 0}, v3{1, 1, 1}, found);
    std::vector<unsigned> hits = values(found);
    ASSERT_EQ(hits.size(), 4u);
    EXPECT_EQ(std::count(hits.begin(), hits.end(), 0u), 2);
    EXPECT_EQ(std::count(hits.begin(), hits.end(), 1u), 2);
    EXPECT_EQ(std::vector<unsigned>(hits.begin(), hits.begin() + 2), std::vector<unsigned>(hits.begin() + 2, hits.end()));
}

TEST(NodeDetector, ClosestAndBoxAgreeWithBruteForce)
{
    for (unsigned rows : {2u, 3u}) {
        dense2D<double> pos = random_points(rows, 5000, rows);
        node_detector nd(pos);
        ASSERT_EQ(nd.size(), 5000u);
        std::mt19937 rng(17);
        std::uniform_real_distribution<double> u(-1.2, 1.2);
        for (int q = 0; q < 500; ++q) {
            double p[3] = {u(rng), u(rng), rows == 3 ? u(rng) : 0.0};
            unsigned got = rows == 3 ? nd.find_closest(v3{p[0], p[1], p[2]}) : nd.find_closest(v2{p[0], p[1]});
            double best = INFINITY;
            for (unsigned j = 0; j < 5000; ++j) best = std::min(best, distance(pos, j, p, rows));
            ASSERT_NE(got, NONE_ID);
            ASSERT_EQ(distance(pos, got, p, rows), best);

            double h = 0.1;
            dense1D<unsigned, 8> found;
            nd.find_in_box(v3{p[0] - h, p[1] - h, p[2] - h}, v3{p[0] + h, p[1] + h, p[2] + h}, found);
            std::vector<unsigned> hits = values(found), expected;
            std::sort(hits.begin(), hits.end());
            for (unsigned j = 0; j < 5000; ++j) {
                bool inside = true;
                for (unsigned k = 0; k < rows; ++k) inside = inside && std::abs(pos(k, j) - p[k]) <= h;
                if (inside) expected.push_back(j);
            }
            ASSERT_EQ(hits, expected);
        }
    }
}

TEST(NodeDetector, TiesResolveTheSameWayForTheSameInput)
{
    // Integer points: many nodes at equal distances from half-integer queries.
    std::mt19937 rng(3);
    std::uniform_int_distribution<int> pick(0, 4);
    dense2D<double> pos;
    pos.resize(3, 400);
    for (unsigned j = 0; j < 400; ++j)
        for (unsigned i = 0; i < 3; ++i) pos(i, j) = pick(rng);
    node_detector a(pos), b(pos);
    node_detector c;
    c = a;
    for (int q = 0; q < 200; ++q) {
        v3 p{pick(rng) + 0.5, pick(rng) + 0.0, pick(rng) + 0.5};
        ASSERT_EQ(a.find_closest(p), b.find_closest(p));
        ASSERT_EQ(a.find_closest(p), c.find_closest(p));
        ASSERT_EQ(a.find_closest(unsigned(q)), b.find_closest(unsigned(q)));
    }
}

TEST(NodeDetector, CopiesAreDeepAndGrowApart)
{
    dense2D<double> pos = matrix({{0, 0}, {4.5, 0}, {2, 0.1}});
    node_detector a(pos, list({0, 1}));
    node_detector b(a);
    EXPECT_EQ(b.size(), 2u);
    EXPECT_EQ(b.insert(list({2})), 1);
    EXPECT_EQ(a.size(), 2u);
    EXPECT_EQ(b.size(), 3u);
    EXPECT_EQ(a.find_closest(v2{2, 0}), 0u);
    EXPECT_EQ(b.find_closest(v2{2, 0}), 2u);

    a = a;
    EXPECT_EQ(a.size(), 2u);
    a = node_detector();
    EXPECT_EQ(a.size(), 0u);
    a = b;
    b.clear();
    EXPECT_EQ(a.size(), 3u);
    EXPECT_EQ(a.find_closest(v2{2, 0}), 2u);
}

TEST(NodeDetector, MatrixMayGrowAfterSetUp)
{
    dense2D<double> pos = matrix({{0, 0}, {1, 0}});
    node_detector nd(pos);
    EXPECT_EQ(nd.insert(list({2})), 0);  // beyond the matrix
    pos.resize(2, 3);
    pos(0, 2) = 10;
    pos(1, 2) = 10;
    EXPECT_EQ(nd.insert(list({2})), 1);
    EXPECT_EQ(nd.find_closest(v2{9, 9}), 2u);
}

TEST(NodeDetector, ConnectivityFormsHoldTheDistinctNodes)
{
    dense2D<double> pos = matrix({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}});
    dense2D<unsigned> tri;
    tri.resize(3, 2);
    unsigned const entries[6] = {0, 1, 2, 2, 1, NONE_ID};
    std::copy(entries, entries + 6, tri.col(0));

    node_detector one(pos, tri);
    EXPECT_EQ(one.size(), 3u);
    EXPECT_EQ(one.find_closest(v2{3.9, 0}), 2u);
    EXPECT_EQ(one.insert(tri), 3);
    EXPECT_EQ(one.size(), 6u);

    dense2D<unsigned> other;
    other.resize(1, 1, 4u);
    dense2D<unsigned> range[2] = {tri, other};
    node_detector both(pos, range, range + 2);
    EXPECT_EQ(both.size(), 4u);
    EXPECT_EQ(both.find_closest(v2{3.9, 0}), 4u);
    EXPECT_EQ(both.reinit(pos, range + 2, range), -3);
    EXPECT_EQ(both.size(), 4u);

    other(0, 0) = 5;
    EXPECT_EQ(both.reinit(pos, other), -2);
    EXPECT_EQ(both.size(), 4u);
}
