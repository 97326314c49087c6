// The meshes of the connectivity benchmarks.
#pragma once

#include "tessarium/dense2D.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

// A structured box of n^3 cubes, as hexahedra or cut into six tetrahedra around a diagonal.
inline qv7::dense2D<unsigned> make_box(unsigned n, bool tetrahedra, bool shuffled)
{
    unsigned const p = n + 1;
    std::vector<unsigned> number(std::size_t(p) * p * p);
    std::iota(number.begin(), number.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
    // Corners by bits x + 2y + 4z.
    static unsigned const hexa[1][8] = {{0, 1, 3, 2, 4, 5, 7, 6}};
    static unsigned const tets[6][4] = {{0, 1, 3, 7}, {0, 5, 1, 7}, {0, 3, 2, 7},
                                        {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 6, 4, 7}};
    unsigned rows = tetrahedra ? 4 : 8, per_cube = tetrahedra ? 6 : 1;
    qv7::dense2D<unsigned> connect;
    connect.resize(rows, std::size_t(n) * n * n * per_cube);
    std::size_t e = 0;
    for (unsigned k = 0; k < n; ++k)
        for (unsigned j = 0; j < n; ++j)
            for (unsigned i = 0; i < n; ++i)
                for (unsigned s = 0; s < per_cube; ++s, ++e)
                    for (unsigned r = 0; r < rows; ++r) {
                        unsigned c = tetrahedra ? tets[s][r] : hexa[0][r];
                        std::size_t node = (i + (c & 1)) + p * ((j + (c >> 1 & 1)) + std::size_t(p) * (k + (c >> 2)));
                        connect(r, e) = number[node];
                    }
    return connect;
}
