// Structured test meshes with coordinates. Elements are oriented from their coordinates alone,
// so that the tables under test are not used to build them.
#pragma once

#include "support/arrays.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <algorithm>
#include <array>
#include <vector>

namespace test_meshes {

using point = std::array<double, 3>;
using column = std::vector<unsigned>;
constexpr unsigned NONE = qv7::NONE_ID;

inline point sub(point a, point const& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline double dot(point const& a, point const& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline point cross(point const& a, point const& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline point mean(std::vector<point> const& p)
{
    point c{0, 0, 0};
    for (int k = 0; k < 3; ++k)
        for (auto const& q : p) c[k] += q[k] / p.size();
    return c;
}
// Right-hand normal of a triangle or quadrangle (cross product of the diagonals); the left normal
// of a side in the plane.
inline point boundary_normal(std::vector<point> const& p)
{
    if (p.size() == 2) return {p[0][1] - p[1][1], p[1][0] - p[0][0], 0.0};
    if (p.size() == 3) return cross(sub(p[1], p[0]), sub(p[2], p[0]));
    return cross(sub(p[2], p[0]), sub(p[3], p[1]));
}

struct mesh {
    std::vector<point> pos;
    std::vector<column> elements;
    unsigned rows;

    std::vector<point> points(column const& c) const
    {
        std::vector<point> p;
        for (unsigned v : c)
            if (v != NONE) p.push_back(pos[v]);
        return p;
    }
    qv7::dense2D<unsigned> connect() const
    {
        qv7::dense2D<unsigned> M;
        M.resize(rows, elements.size(), NONE);
        for (std::size_t e = 0; e < elements.size(); ++e) std::copy(elements[e].begin(), elements[e].end(), M.col(e));
        return M;
    }
    // Adds a solid, with two nodes of its base exchanged if it comes out negative: tetrahedra by
    // det(P0-P3, P1-P3, P2-P3), pyramids by the base turning counter-clockwise seen from the apex.
    void add(column c)
    {
        auto P = points(c);
        double sign = 1;
        if (P.size() == 4) sign = dot(sub(P[0], P[3]), cross(sub(P[1], P[3]), sub(P[2], P[3])));
        if (P.size() == 5) sign = dot(cross(sub(P[1], P[0]), sub(P[3], P[0])), sub(P[4], P[0]));
        if (sign < 0) std::swap(c[1], c[P.size() == 5 ? 3 : 2]);
        elements.push_back(c);
    }
};

enum split { HEXA, TETRAS, WEDGES, PYRAMIDS };

// Cube corners: bottom counter-clockwise seen from above, then the top above them.
inline void add_cube(mesh& m, std::array<unsigned, 8> const& c, split s)
{
    static unsigned const tets[6][4] = {{0, 1, 2, 6}, {0, 2, 3, 6}, {0, 3, 7, 6},
                                        {0, 7, 4, 6}, {0, 4, 5, 6}, {0, 5, 1, 6}};
    static unsigned const faces[6][4] = {{0, 1, 2, 3}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                         {3, 2, 6, 7}, {0, 3, 7, 4}, {1, 2, 6, 5}};
    if (s == HEXA) m.add(column(c.begin(), c.end()));
    if (s == WEDGES) {
        m.add({c[0], c[1], c[2], c[4], c[5], c[6]});
        m.add({c[0], c[2], c[3], c[4], c[6], c[7]});
    }
    if (s == TETRAS)
        for (auto const& t : tets) m.add({c[t[0]], c[t[1]], c[t[2]], c[t[3]]});
    if (s == PYRAMIDS) {
        m.pos.push_back(mean(m.points(column(c.begin(), c.end()))));
        for (auto const& f : faces) m.add({c[f[0]], c[f[1]], c[f[2]], c[f[3]], unsigned(m.pos.size() - 1)});
    }
}

inline mesh grid_nodes(unsigned nx, unsigned ny, unsigned nz, unsigned rows)
{
    mesh m{{}, {}, rows};
    for (unsigned k = 0; k <= nz; ++k)
        for (unsigned j = 0; j <= ny; ++j)
            for (unsigned i = 0; i <= nx; ++i) m.pos.push_back({double(i), double(j), double(k)});
    return m;
}

inline std::array<unsigned, 8> cube(unsigned nx, unsigned ny, unsigned i, unsigned j, unsigned k)
{
    auto id = [&](unsigned a, unsigned b, unsigned c) { return i + a + (nx + 1) * (j + b + (ny + 1) * (k + c)); };
    return {id(0, 0, 0), id(1, 0, 0), id(1, 1, 0), id(0, 1, 0), id(0, 0, 1), id(1, 0, 1), id(1, 1, 1), id(0, 1, 1)};
}

inline mesh box(unsigned nx, unsigned ny, unsigned nz, split s, unsigned rows)
{
    mesh m = grid_nodes(nx, ny, nz, rows);
    for (unsigned k = 0; k < nz; ++k)
        for (unsigned j = 0; j < ny; ++j)
            for (unsigned i = 0; i < nx; ++i) add_cube(m, cube(nx, ny, i, j, k), s);
    return m;
}

// Counter-clockwise quadrangles in the plane; with `cut` above 0, every quadrangle whose number
// is a multiple of `cut` becomes two triangles.
inline mesh grid(unsigned nx, unsigned ny, unsigned cut, unsigned rows)
{
    mesh m = grid_nodes(nx, ny, 0, rows);
    for (unsigned j = 0, n = 0; j < ny; ++j)
        for (unsigned i = 0; i < nx; ++i, ++n) {
            auto c = cube(nx, ny, i, j, 0);
            if (cut == 0 || n % cut) {
                m.elements.push_back({c[0], c[1], c[2], c[3]});
                continue;
            }
            m.elements.push_back({c[0], c[1], c[2]});
            m.elements.push_back({c[0], c[2], c[3]});
        }
    for (auto& e : m.elements) e.resize(rows, NONE);
    return m;
}

// ---- small meshes for the format writers ----

// One group per type, of one element whose nodes are its local rows (no element for ET_NONE):
// the written nodes show which local rows a writer takes.
struct typed_groups {
    std::vector<qv7::dense2D<unsigned>> groups;
    qv7::dense1D<int, 8> FEs;
    qv7::dense2D<unsigned> const* first() const { return groups.data(); }
    qv7::dense2D<unsigned> const* last() const { return groups.data() + groups.size(); }
};

inline typed_groups one_element_per_type(std::vector<qv7::element_type> const& types)
{
    typed_groups t;
    for (qv7::element_type type : types) {
        t.groups.push_back(type == qv7::ET_NONE ? qv7::dense2D<unsigned>()
                                                : test_arrays::counting(qv7::tessarium::nbr_nodes(type)));
        t.FEs.push_back(type);
    }
    return t;
}

// n nodes of 3 coordinates, all 0.5.
inline qv7::dense2D<double> points(std::size_t n)
{
    qv7::dense2D<double> pos;
    pos.resize(3, n, 0.5);
    return pos;
}

// n nodes on the x axis at x = 0, 1, ..., n - 1, with `rows` coordinates each.
inline qv7::dense2D<double> line_of_nodes(std::size_t rows, unsigned n)
{
    qv7::dense2D<double> pos;
    pos.resize(rows, n, 0.0);
    for (unsigned j = 0; j < n; ++j) pos(0, j) = j;
    return pos;
}

// The unit cube's corners (bottom face first) and an apex at (0.5, 0.5, 2).
inline qv7::dense2D<double> cube_and_apex()
{
    return test_arrays::coords(3,
                               {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 1, 1, 1, 0, 1, 1, 0.5, 0.5, 2});
}

// Over cube_and_apex: a tetrahedron, a hexahedron, a pyramid, a wedge and a tetrahedron.
inline qv7::dense2D<unsigned> mixed_solids()
{
    constexpr unsigned N = qv7::NONE_ID;
    return test_arrays::connect(8, {0, 1, 2, 4, N, N, N, N,  //
                                    0, 1, 2, 3, 4, 5, 6, 7,  //
                                    0, 1, 2, 3, 8, N, N, N,  //
                                    0, 1, 2, 4, 5, 6, N, N,  //
                                    1, 2, 3, 8, N, N, N, N});
}

// A triangle, a quadrangle and a triangle.
inline qv7::dense2D<unsigned> mixed_faces()
{
    constexpr unsigned N = qv7::NONE_ID;
    return test_arrays::connect(4, {0, 1, 2, N, 4, 5, 6, 7, 5, 6, 7, N});
}

}  // namespace test_meshes
