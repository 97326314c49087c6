// The shape functions of the linear elements on their reference shapes, one object per local
// node. u, v, w are the parametric coordinates; derivatives come as (dN/du, dN/dv, dN/dw).
#pragma once

#include "quality/point3.h"

namespace qv7 {
namespace elfes {

using point2 = vector_fixed<double, 2>;

// The parameter runs over [-1, 1].
struct shape_edge2 {
    using point_type = double;
    static constexpr unsigned count = 2;
    unsigned id = 0;
    double d = 0.0;

    shape_edge2() = default;
    explicit shape_edge2(unsigned i) noexcept : id(i), d(i == 0 ? -0.5 : 0.5) {}
    double value_at(double u) const noexcept { return 0.5 + d * u; }
    vector_fixed<double, 1> derivatives_at(double) const noexcept { return {d}; }
};

// N0 = u, N1 = v, N2 = 1 - u - v.
struct shape_faceT3 {
    using point_type = point2;
    static constexpr unsigned count = 3;
    static constexpr double CAB[3][3] = {{0, 1, 0}, {0, 0, 1}, {1, -1, -1}};
    unsigned id = 0;
    double c = 0.0, a = 0.0, b = 0.0;

    shape_faceT3() = default;
    explicit shape_faceT3(unsigned i) noexcept : id(i), c(CAB[i][0]), a(CAB[i][1]), b(CAB[i][2]) {}
    double value_at(point2 const& p) const noexcept { return c + a * p[0] + b * p[1]; }
    point2 derivatives_at(point2 const&) const noexcept { return {a, b}; }
};

// Bilinear on [-1, 1]^2, nodes turning counter-clockwise from (-1, -1).
struct shape_faceQ4 {
    using point_type = point2;
    static constexpr unsigned count = 4;
    static constexpr double AB[4][2] = {{-0.5, -0.5}, {0.5, -0.5}, {0.5, 0.5}, {-0.5, 0.5}};
    unsigned id = 0;
    double a = 0.0, b = 0.0;

    shape_faceQ4() = default;
    explicit shape_faceQ4(unsigned i) noexcept : id(i), a(AB[i][0]), b(AB[i][1]) {}
    double value_at(point2 const& p) const noexcept { return (0.5 + a * p[0]) * (0.5 + b * p[1]); }
    point2 derivatives_at(point2 const& p) const noexcept { return {a * (0.5 + b * p[1]), (0.5 + a * p[0]) * b}; }
};

// N0 = u, N1 = v, N2 = w, N3 = 1 - u - v - w.
struct shape_tetra4 {
    using point_type = point3;
    static constexpr unsigned count = 4;
    static constexpr double CABD[4][4] = {{0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}, {1, -1, -1, -1}};
    unsigned id = 0;
    double c = 0.0, a = 0.0, b = 0.0, d = 0.0;

    shape_tetra4() = default;
    explicit shape_tetra4(unsigned i) noexcept : id(i), c(CABD[i][0]), a(CABD[i][1]), b(CABD[i][2]), d(CABD[i][3]) {}
    double value_at(point3 const& p) const noexcept { return c + a * p[0] + b * p[1] + d * p[2]; }
    point3 derivatives_at(point3 const&) const noexcept { return {a, b, d}; }
};

// Rational on the base nodes, with r = 1 / (1 - w) taken as 0 at the apex, where 1 - w is 0:
// the base functions vanish there instead of dividing by zero.
struct shape_pyramid5 {
    using point_type = point3;
    static constexpr unsigned count = 5;
    unsigned id = 0;

    shape_pyramid5() = default;
    explicit shape_pyramid5(unsigned i) noexcept : id(i) {}

    double value_at(point3 const& p) const noexcept
    {
        if (id > 3) return p[2];
        double t = 1.0 - p[2], r = t == 0.0 ? 0.0 : 1.0 / t;
        return t * A(p[0], r) * B(p[1], r);
    }
    point3 derivatives_at(point3 const& p) const noexcept
    {
        if (id > 3) return {0.0, 0.0, 1.0};
        double t = 1.0 - p[2], r = t == 0.0 ? 0.0 : 1.0 / t;
        double a = A(p[0], r), b = B(p[1], r);
        double du = su() * b, dv = sv() * a;
        return {du, dv, dv * (p[1] * r) + du * (p[0] * r) - a * b};
    }

private:
    double su() const noexcept { return id == 1 || id == 2 ? 0.5 : -0.5; }
    double sv() const noexcept { return id == 2 || id == 3 ? 0.5 : -0.5; }
    double A(double u, double r) const noexcept { return su() * u * r + 0.5; }
    double B(double v, double r) const noexcept { return sv() * v * r + 0.5; }
};

// A triangle in (u, v) times a linear function of w on [-1, 1]: bottom nodes 0 to 2, top 3 to 5.
struct shape_wedge6 {
    using point_type = point3;
    static constexpr unsigned count = 6;
    unsigned id = 0;
    double c = 0.0, a = 0.0, b = 0.0, d = 0.0;

    shape_wedge6() = default;
    explicit shape_wedge6(unsigned i) noexcept
        : id(i),
          c(shape_faceT3::CAB[i % 3][0]),
          a(shape_faceT3::CAB[i % 3][1]),
          b(shape_faceT3::CAB[i % 3][2]),
          d(i < 3 ? -0.5 : 0.5)
    {
    }
    double value_at(point3 const& p) const noexcept { return (c + a * p[0] + b * p[1]) * (0.5 + d * p[2]); }
    point3 derivatives_at(point3 const& p) const noexcept
    {
        double along = 0.5 + d * p[2];
        return {a * along, b * along, (c + a * p[0] + b * p[1]) * d};
    }
};

// Trilinear on [-1, 1]^3: the bottom face 0 to 3 counter-clockwise, the top face 4 to 7 above it.
struct shape_hexa8 {
    using point_type = point3;
    static constexpr unsigned count = 8;
    unsigned id = 0;
    double a = 0.0, b = 0.0, c = 0.0;

    shape_hexa8() = default;
    explicit shape_hexa8(unsigned i) noexcept
        : id(i),
          a(i == 1 || i == 2 || i == 5 || i == 6 ? 0.5 : -0.5),
          b(i == 2 || i == 3 || i == 6 || i == 7 ? 0.5 : -0.5),
          c(i >= 4 ? 0.5 : -0.5)
    {
    }
    double value_at(point3 const& p) const noexcept { return (0.5 + a * p[0]) * (0.5 + b * p[1]) * (0.5 + c * p[2]); }
    point3 derivatives_at(point3 const& p) const noexcept
    {
        double fu = 0.5 + a * p[0], fv = 0.5 + b * p[1], fw = 0.5 + c * p[2];
        return {a * fv * fw, fu * b * fw, fu * fv * c};
    }
};

// The shapes of one element, in ascending id.
template <class Shape>
struct shape_set {
    Shape shapes[Shape::count];
    shape_set() noexcept
    {
        for (unsigned i = 0; i < Shape::count; ++i) shapes[i] = Shape(i);
    }
    Shape const* begin() const noexcept { return shapes; }
    Shape const* end() const noexcept { return shapes + Shape::count; }
};

}  // namespace elfes
}  // namespace qv7
