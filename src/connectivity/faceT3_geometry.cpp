// Heights and normals of a triangle, as the STL reader and writer need them.
#include "connectivity/elfes.h"

namespace qv7 {
namespace elfes {
namespace {

using point = vector_fixed<double, 3>;

point coordinates(dense2D<double> const& pos, unsigned node) noexcept
{
    double const* c = pos.col(node);
    if (pos.rows() >= 3) return {c[0], c[1], c[2]};
    return {c[0], pos.rows() == 2 ? c[1] : 0.0, 0.0};
}

point minus(point const& a, point const& b) noexcept
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double sqr_length(point const& a) noexcept
{
    return a[0] * a[0] + a[1] * a[1] + a[2] * a[2];
}

point cross(point const& a, point const& b) noexcept
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

}  // namespace

double faceT3::sqr_height(dense2D<double> const& pos, unsigned const* nodes, unsigned i) noexcept
{
    point P = coordinates(pos, nodes[i]);
    point A = coordinates(pos, nodes[CYCLIC[i]]);
    point B = coordinates(pos, nodes[CYCLIC[i + 1]]);
    bool A_nearer = sqr_length(minus(P, A)) <= sqr_length(minus(P, B));
    point const& O = A_nearer ? A : B;
    point e = minus(A_nearer ? B : A, O), w = minus(P, O);
    double area2 = sqr_length(cross(e, w));
    double base2 = sqr_length(e);
    return base2 > 0.0 ? area2 / base2 : area2;
}

void faceT3::copy_director(dense2D<double> const& pos, unsigned const* nodes,
                           vector_fixed<double, 3>& director) noexcept
{
    point P0 = coordinates(pos, nodes[0]), P1 = coordinates(pos, nodes[1]), P2 = coordinates(pos, nodes[2]);
    point a = minus(P0, P2);
    double d01 = sqr_length(minus(P1, P0)), d12 = sqr_length(minus(P1, P2)), d02 = sqr_length(a);
    bool longest_first = d01 > (d12 < d02 ? d12 : d02);
    director = cross(a, longest_first ? minus(P1, P2) : minus(P1, P0));
}

}  // namespace elfes
}  // namespace qv7
