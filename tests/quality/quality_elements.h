// The ideal element of each kind, as coordinates and one connectivity column, for the quality tests.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <cmath>
#include <vector>

namespace quality_elements {

struct element {
    qv7::element_type type;
    std::vector<double> xyz;  // three coordinates per node, in local order
};

inline std::vector<element> ideal()
{
    double h = std::sqrt(3.0) / 2, apex = 1 / std::sqrt(2.0);
    return {
        {qv7::ET_FACE_T3, {0, 0, 0, 1, 0, 0, 0.5, h, 0}},
        {qv7::ET_FACE_Q4, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}},
        {qv7::ET_TETRA4, {1, 1, 1, 1, -1, -1, -1, 1, -1, -1, -1, 1}},
        {qv7::ET_PYRAMID5, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0.5, 0.5, apex}},
        {qv7::ET_WEDGE6, {0, 0, 0, 1, 0, 0, 0.5, h, 0, 0, 0, 1, 1, 0, 1, 0.5, h, 1}},
        {qv7::ET_HEXA8, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 1, 1, 1, 0, 1, 1}},
    };
}

// Coordinates with `rows` rows (2 drops z) and one element over all of them.
inline void arrays(element const& e, unsigned rows, qv7::dense2D<double>& pos, qv7::dense2D<unsigned>& connectM)
{
    unsigned n = static_cast<unsigned>(e.xyz.size() / 3);
    pos.resize(rows, n);
    connectM.resize(n, 1);
    for (unsigned j = 0; j < n; ++j) {
        for (unsigned i = 0; i < rows; ++i) pos(i, j) = e.xyz[3 * j + i];
        connectM(j, 0) = j;
    }
}

}  // namespace quality_elements
