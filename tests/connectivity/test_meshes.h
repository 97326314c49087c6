// Structured test meshes with coordinates, and the vector geometry to judge boundaries with.
// Every element is built with positive orientation from its coordinates alone.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <utility>
#include <vector>

namespace test_meshes {

using point = std::array<double, 3>;
using column = std::vector<unsigned>;
constexpr unsigned NONE = qv7::NONE_ID;

inline point operator-(point a, point const& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline point operator+(point a, point const& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline point scaled(point a, double s) { return {a[0] * s, a[1] * s, a[2] * s}; }
inline double dot(point const& a, point const& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline point cross(point const& a, point const& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double det(point const& a, point const& b, point const& c) { return dot(a, cross(b, c)); }

struct mesh {
    std::vector<point> pos;
    std::vector<column> elements;  // NONE_ID padded to the row count of the array
    unsigned rows = 0;

    qv7::dense2D<unsigned> connect() const
    {
        qv7::dense2D<unsigned> M;
        M.resize(rows, elements.size(), NONE);
        for (std::size_t e = 0; e < elements.size(); ++e)
            for (std::size_t r = 0; r < elements[e].size(); ++r) M(r, e) = elements[e][r];
        return M;
    }
    point centroid(std::size_t e) const
    {
        point c{0, 0, 0};
        unsigned n = 0;
        for (unsigned v : elements[e])
            if (v != NONE) c = c + pos[v], ++n;
        return scaled(c, 1.0 / n);
    }
    void add(column c) { elements.push_back(std::move(c)); }
};

// Orientation of a solid by the sign convention of its kind, told by its count of real nodes.
inline double solid_sign(mesh const& m, column const& c)
{
    auto P = [&](unsigned k) { return m.pos[c.at(k)]; };
    switch (c.size() - std::count(c.begin(), c.end(), NONE)) {
    case 4: return det(P(0) - P(3), P(1) - P(3), P(2) - P(3));
    case 5: return dot(cross(P(1) - P(0), P(3) - P(0)), P(4) - P(0));
    case 6: return det(P(1) - P(0), P(2) - P(0), P(3) - P(0));
    default: return det(P(1) - P(0), P(3) - P(0), P(4) - P(0));
    }
}

// Adds a tetrahedron, swapping two nodes when it comes out negative.
inline void add_tetra(mesh& m, column c)
{
    if (solid_sign(m, c) < 0) std::swap(c[1], c[2]);
    m.add(std::move(c));
}

// A pyramid on a planar quadrangle base given in cyclic order; reversed when the apex lies below.
inline void add_pyramid(mesh& m, std::array<unsigned, 4> base, unsigned apex)
{
    column c{base[0], base[1], base[2], base[3], apex};
    if (solid_sign(m, c) < 0) std::swap(c[1], c[3]);
    m.add(std::move(c));
}

struct grid {
    unsigned nx, ny, nz;
    unsigned id(unsigned i, unsigned j, unsigned k = 0) const { return i + (nx + 1) * (j + (ny + 1) * k); }
};

inline std::vector<point> grid_points(grid const& g)
{
    std::vector<point> p;
    for (unsigned k = 0; k <= g.nz; ++k)
        for (unsigned j = 0; j <= g.ny; ++j)
            for (unsigned i = 0; i <= g.nx; ++i) p.push_back({double(i), double(j), double(k)});
    return p;
}

// nx by ny quadrangles in the plane z = 0, counter-clockwise.
inline mesh quad_grid(unsigned nx, unsigned ny)
{
    grid g{nx, ny, 0};
    mesh m{grid_points(g), {}, 4};
    for (unsigned j = 0; j < ny; ++j)
        for (unsigned i = 0; i < nx; ++i) m.add({g.id(i, j), g.id(i + 1, j), g.id(i + 1, j + 1), g.id(i, j + 1)});
    return m;
}

// The same grid with every quadrangle cut into two counter-clockwise triangles.
inline mesh triangle_grid(unsigned nx, unsigned ny)
{
    grid g{nx, ny, 0};
    mesh m{grid_points(g), {}, 3};
    for (unsigned j = 0; j < ny; ++j)
        for (unsigned i = 0; i < nx; ++i) {
            m.add({g.id(i, j), g.id(i + 1, j), g.id(i + 1, j + 1)});
            m.add({g.id(i, j), g.id(i + 1, j + 1), g.id(i, j + 1)});
        }
    return m;
}

inline std::array<unsigned, 8> cube_corners(grid const& g, unsigned i, unsigned j, unsigned k)
{
    return {g.id(i, j, k),         g.id(i + 1, j, k),         g.id(i + 1, j + 1, k),
            g.id(i, j + 1, k),     g.id(i, j, k + 1),         g.id(i + 1, j, k + 1),
            g.id(i + 1, j + 1, k + 1), g.id(i, j + 1, k + 1)};
}

template <class F>
void for_cubes(grid const& g, F f)
{
    for (unsigned k = 0; k < g.nz; ++k)
        for (unsigned j = 0; j < g.ny; ++j)
            for (unsigned i = 0; i < g.nx; ++i) f(cube_corners(g, i, j, k));
}

// Corners c[0..7]: bottom square counter-clockwise from above, then the top one above it.
inline void add_hexa(mesh& m, std::array<unsigned, 8> const& c) { m.add(column(c.begin(), c.end())); }

// Two wedges on the bottom triangles (0 1 2) and (0 2 3), extruded upwards.
inline void add_wedges(mesh& m, std::array<unsigned, 8> const& c)
{
    m.add({c[0], c[1], c[2], c[4], c[5], c[6]});
    m.add({c[0], c[2], c[3], c[4], c[6], c[7]});
}

// Six tetrahedra around the diagonal c[0] - c[6], one per order of the three axes.
inline void add_tetras(mesh& m, std::array<unsigned, 8> const& c)
{
    // Corner index = x + 2y + 4z in binary; cube_corners numbers them counter-clockwise.
    static const unsigned by_bits[8] = {0, 1, 3, 2, 4, 5, 7, 6};
    static const unsigned axes[6][3] = {{1, 2, 4}, {1, 4, 2}, {2, 1, 4}, {2, 4, 1}, {4, 1, 2}, {4, 2, 1}};
    for (auto const& a : axes) {
        unsigned b1 = a[0], b2 = a[0] | a[1];
        add_tetra(m, {c[by_bits[0]], c[by_bits[b1]], c[by_bits[b2]], c[by_bits[7]]});
    }
}

// Six pyramids with the six faces of the cube as bases and a new centre node as apex.
inline void add_pyramids(mesh& m, std::array<unsigned, 8> const& c)
{
    point centre{0, 0, 0};
    for (unsigned v : c) centre = centre + m.pos[v];
    m.pos.push_back(scaled(centre, 0.125));
    unsigned apex = static_cast<unsigned>(m.pos.size() - 1);
    static const unsigned faces[6][4] = {{0, 1, 2, 3}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                         {3, 2, 6, 7}, {0, 3, 7, 4}, {1, 2, 6, 5}};
    for (auto const& f : faces) add_pyramid(m, {c[f[0]], c[f[1]], c[f[2]], c[f[3]]}, apex);
}

template <class Split>
mesh box(unsigned nx, unsigned ny, unsigned nz, unsigned rows, Split split)
{
    grid g{nx, ny, nz};
    mesh m{grid_points(g), {}, rows};
    for_cubes(g, [&](std::array<unsigned, 8> const& c) { split(m, c); });
    return m;
}

// Boundary nodes of a column as points; the normal by the right-hand rule (for a quadrangle the
// cross product of its diagonals); for a side in the plane, its left normal.
inline point boundary_normal(std::vector<point> const& p)
{
    if (p.size() == 2) return {-(p[1][1] - p[0][1]), p[1][0] - p[0][0], 0.0};
    if (p.size() == 3) return cross(p[1] - p[0], p[2] - p[0]);
    return cross(p[2] - p[0], p[3] - p[1]);
}

inline point centroid(std::vector<point> const& p)
{
    point c{0, 0, 0};
    for (auto const& q : p) c = c + q;
    return scaled(c, 1.0 / p.size());
}

}  // namespace test_meshes
