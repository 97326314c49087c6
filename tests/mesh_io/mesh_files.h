// A mesh holding one element of every type, each on nodes of its own placed on the reference
// shape, so that every element has a positive measure in the library's node order.
#pragma once

#include "tessarium/mesh.h"

#include <vector>

namespace mesh_io_test {

using namespace qv7;
using namespace qv7::tessarium;

// Corners and mid nodes of each type in the library's local order.
inline std::vector<std::vector<double>> reference_nodes(element_type type)
{
    using P = std::vector<std::vector<double>>;
    auto mid = [](std::vector<double> a, std::vector<double> const& b) {
        for (int i = 0; i < 3; ++i) a[i] = (a[i] + b[i]) / 2;
        return a;
    };
    auto with_mids = [&](P p, std::vector<std::pair<int, int>> const& edges) {
        P corners = p;
        for (auto e : edges) p.push_back(mid(corners[e.first], corners[e.second]));
        return p;
    };
    P tetra = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}};
    P pyramid = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}};
    // The normal of the first triangle points away from the second.
    P wedge = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, {0, 1, 1}, {1, 0, 1}};
    P hexa = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
    P quad = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    std::vector<std::pair<int, int>> hexa_edges = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                                   {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    std::vector<std::pair<int, int>> wedge_edges = {{0, 3}, {1, 4}, {2, 5}, {1, 2}, {2, 0},
                                                    {0, 1}, {4, 5}, {5, 3}, {3, 4}};
    std::vector<std::pair<int, int>> pyramid_edges = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 4}, {1, 4}, {2, 4}, {3, 4}};
    switch (type) {
    case ET_NODE:
        return {{0, 0, 0}};
    case ET_EDGE2:
        return {{0, 0, 0}, {1, 0, 0}};
    case ET_EDGE3:
        return {{0, 0, 0}, {1, 0, 0}, {0.5, 0, 0}};
    case ET_FACE_T3:
        return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    case ET_FACE_T6:
        return with_mids({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{1, 2}, {2, 0}, {0, 1}});
    case ET_FACE_Q4:
        return quad;
    case ET_FACE_Q8:
        return with_mids(quad, {{0, 1}, {1, 2}, {2, 3}, {3, 0}});
    case ET_FACE_Q9:
        return with_mids(with_mids(quad, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}), {{0, 2}});
    case ET_TETRA4:
        return tetra;
    case ET_TETRA10:
        return with_mids(tetra, {{1, 2}, {2, 0}, {0, 1}, {0, 3}, {1, 3}, {2, 3}});
    case ET_PYRAMID5:
        return pyramid;
    case ET_PYRAMID13:
        return with_mids(pyramid, pyramid_edges);
    case ET_PYRAMID14:
        return with_mids(with_mids(pyramid, pyramid_edges), {{0, 2}});
    case ET_WEDGE6:
        return wedge;
    case ET_WEDGE15:
        return with_mids(wedge, wedge_edges);
    case ET_WEDGE18:
        return with_mids(with_mids(wedge, wedge_edges), {{0, 4}, {1, 5}, {2, 3}});
    case ET_HEXA8:
        return hexa;
    case ET_HEXA20:
        return with_mids(hexa, hexa_edges);
    case ET_HEXA27: {
        P p = with_mids(hexa, hexa_edges);
        for (int f = 0; f < 7; ++f) p.push_back({0.5, 0.5, 0.5});
        return p;
    }
    default:
        return {};
    }
}

// One element of each pure type, each block's reference 10 + its place, with coordinates that
// no short decimal holds.
inline mesh every_type()
{
    mesh m;
    std::vector<double> xyz;
    for (int t = ET_NODE; t <= ET_HEXA27; ++t) {
        auto nodes = reference_nodes(static_cast<element_type>(t));
        if (nodes.empty()) continue;
        element_block b;
        b.type = static_cast<element_type>(t);
        b.connect.resize(nodes.size(), 1);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            b.connect(i, 0) = static_cast<unsigned>(xyz.size() / 3);
            for (int k = 0; k < 3; ++k) xyz.push_back(nodes[i][k] + (k == 0 ? 2.0 * t : 0.0) + 1.0 / 3.0);
        }
        b.references.push_back(10 + static_cast<unsigned>(m.blocks.size()));
        m.blocks.push_back(b);
    }
    m.pos.resize(3, xyz.size() / 3);
    std::copy(xyz.begin(), xyz.end(), m.pos.data());
    return m;
}

// The blocks of m whose type passes `keep`.
template <class Keep>
mesh only(mesh m, Keep keep)
{
    std::vector<element_block> kept;
    for (element_block const& b : m.blocks)
        if (keep(b.type)) kept.push_back(b);
    m.blocks = kept;
    return m;
}

}  // namespace mesh_io_test
