// A box of n^3 unit cubes, six tetrahedra each around the diagonal from corner 0 to corner 7,
// with node v at (v % p, v / p % p, v / p^2), p = n + 1, unless the numbers are shuffled.
#pragma once

#include "tessarium/dense2D.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

inline qv7::dense2D<unsigned> tet_box(unsigned n, bool shuffled)
{
    unsigned const p = n + 1;
    std::vector<unsigned> number(std::size_t(p) * p * p);
    std::iota(number.begin(), number.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
    static unsigned const tets[6][4] = {{0, 1, 3, 7}, {0, 5, 1, 7}, {0, 3, 2, 7},
                                        {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 6, 4, 7}};
    qv7::dense2D<unsigned> connect;
    connect.resize(4, std::size_t(n) * n * n * 6);
    std::size_t e = 0;
    for (unsigned k = 0; k < n; ++k)
        for (unsigned j = 0; j < n; ++j)
            for (unsigned i = 0; i < n; ++i)
                for (unsigned s = 0; s < 6; ++s, ++e)
                    for (unsigned r = 0; r < 4; ++r) {
                        unsigned c = tets[s][r];
                        connect(r, e) =
                            number[(i + (c & 1)) + p * ((j + (c >> 1 & 1)) + std::size_t(p) * (k + (c >> 2)))];
                    }
    return connect;
}

inline qv7::dense2D<double> box_positions(unsigned n)
{
    unsigned const p = n + 1;
    qv7::dense2D<double> pos;
    pos.resize(3, std::size_t(p) * p * p);
    for (std::size_t v = 0; v < pos.cols(); ++v) {
        pos(0, v) = double(v % p);
        pos(1, v) = double(v / p % p);
        pos(2, v) = double(v / p / p);
    }
    return pos;
}
