#include "search/cell_grid.h"
#include "search/point_tests.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

using qv7::dense1D;
using qv7::dense2D;

namespace {

double const inf = std::numeric_limits<double>::infinity();

dense2D<double> columns(std::vector<std::vector<double>> const& points)
{
    dense2D<double> pos;
    pos.resize(3, points.size());
    for (std::size_t j = 0; j < points.size(); ++j)
        for (unsigned k = 0; k < 3; ++k) pos(k, j) = points[j][k];
    return pos;
}

// Every node's box search through the grid: the number of candidates over all searches. With
// check_cover, fails unless each node of the box is a candidate.
std::size_t candidates_of_all_boxes(dense2D<double> const& pos, double h, bool check_cover = false)
{
    dense1D<unsigned, 8> list;
    for (unsigned j = 0; j < pos.cols(); ++j) list.push_back(j);
    qv7::__cell_grid<3> grid;
    EXPECT_TRUE(grid.build(pos, list, h));
    std::size_t total = 0;
    std::vector<char> seen(pos.cols());
    for (unsigned i = 0; i < pos.cols(); ++i) {
        double box[6];
        qv7::__box_around<3>(pos.col(i), h, box);
        std::fill(seen.begin(), seen.end(), 0);
        grid.for_each_candidate(box, box + 3, [&](unsigned c) { return ++total, seen[c] = 1; });
        for (unsigned c = 0; check_cover && c < pos.cols(); ++c)
            if (qv7::__in_box<3>(pos.col(c), box, box + 3) && !seen[c]) ADD_FAILURE() << i << " misses " << c;
    }
    return total;
}

}  // namespace

TEST(CellGrid, FarNodesLeaveTheOthersInSmallCells)
{
    // A 100 x 100 unit lattice searched at half-width 0.4 meets at most one lattice node per cell and
    // eight cells per box, with one node at the largest float or the largest double, or with a copy
    // of the lattice far away.
    std::vector<std::vector<double>> lattice;
    for (int x = 0; x < 100; ++x)
        for (int y = 0; y < 100; ++y) lattice.push_back({double(x), double(y), 0.0});
    for (double far : {double(FLT_MAX), DBL_MAX, 1e9}) {
        std::vector<std::vector<double>> points = lattice;
        if (far == 1e9)
            for (auto const& p : lattice) points.push_back({p[0] + far, p[1] - far, far});
        else
            points.push_back({far, far, far});
        EXPECT_LE(candidates_of_all_boxes(columns(points), 0.4), 8 * points.size()) << far;
    }
    // The same at a subnormal scale.
    for (auto& p : lattice) p = {p[0] * 1e-310, p[1] * 1e-310, 0.0};
    EXPECT_LE(candidates_of_all_boxes(columns(lattice), 0.4e-310), 8 * lattice.size());
    // Beyond 2^52 widths, consecutive doubles: each alone in its cell, and a box meets few cells.
    std::vector<std::vector<double>> sparse;
    for (double x = 1e300, k = 0; k < 2000; ++k, x = std::nextafter(x, inf)) sparse.push_back({x, 1e-3 * k, -x});
    EXPECT_LE(candidates_of_all_boxes(columns(sparse), 1e-3), 64 * sparse.size());
}

TEST(CellGrid, CandidatesCoverTheBoxAtAnyScale)
{
    // Coordinates and half-widths from the ends of the double range: every box hit is a candidate,
    // and a search ends even when the box reaches an infinity.
    double const pool[] = {0.0, -0.0, 4.9e-324, 1.0, -1.5, 4.5e15, 1e292, -1e300, DBL_MAX, -DBL_MAX, inf, -inf};
    std::mt19937 rng(7);
    for (double h : {1e-310, 1e-3, 1.0, 1e292, 1e300, DBL_MAX, inf}) {
        std::vector<std::vector<double>> points(300);
        for (auto& p : points) p = {pool[rng() % 12], pool[rng() % 12], pool[rng() % 12]};
        candidates_of_all_boxes(columns(points), h, true);
    }
}
