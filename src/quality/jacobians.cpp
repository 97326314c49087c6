// One Jacobian value per element at a fixed sample point: a norm for edges and faces, a signed
// determinant for solids.
#include "quality/jacobian_matrix.h"
#include "quality/per_element.h"
#include "tessarium/quality.h"

namespace qv7 {
namespace tessarium {
namespace {

using namespace elfes;
using elfe_algo::jacobian_matrix;

constexpr double THIRD = 0.3333333333333333;

template <class Face>
double face_jacobian(dense2D<double> const& coords, unsigned const* nodes, point2 const& point) noexcept
{
    matrix_fixed<double, 3, 2> J;
    jacobian_matrix<dense2D<double>, Face>(coords, nodes, point, J);
    return __norm(__cross({J(0, 0), J(1, 0), J(2, 0)}, {J(0, 1), J(1, 1), J(2, 1)}));
}

template <class Solid>
double solid_jacobian(dense2D<double> const& coords, unsigned const* nodes, point3 const& point) noexcept
{
    matrix_fixed<double, 3, 3> J;
    jacobian_matrix<dense2D<double>, Solid>(coords, nodes, point, J);
    return __det({J(0, 0), J(1, 0), J(2, 0)}, {J(0, 1), J(1, 1), J(2, 1)}, {J(0, 2), J(1, 2), J(2, 2)});
}

double jacobian(dense2D<double> const& coords, unsigned const* nodes, edge2) noexcept
{
    matrix_fixed<double, 3, 1> J;
    jacobian_matrix<dense2D<double>, edge2>(coords, nodes, 0.0, J);
    return __norm({J(0, 0), J(1, 0), J(2, 0)});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, faceT3) noexcept
{
    return face_jacobian<faceT3>(coords, nodes, {THIRD, THIRD});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, faceQ4) noexcept
{
    return face_jacobian<faceQ4>(coords, nodes, {0.0, 0.0});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, face_mix) noexcept
{
    return face_mix::is_quadrangle(nodes) ? jacobian(coords, nodes, faceQ4{}) : jacobian(coords, nodes, faceT3{});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, tetra4) noexcept
{
    return solid_jacobian<tetra4>(coords, nodes, {0.25, 0.25, 0.25});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, pyramid5) noexcept
{
    return solid_jacobian<pyramid5>(coords, nodes, {0.0, 0.0, 0.2});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, wedge6) noexcept
{
    return solid_jacobian<wedge6>(coords, nodes, {THIRD, THIRD, 0.0});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, hexa8) noexcept
{
    return solid_jacobian<hexa8>(coords, nodes, {0.0, 0.0, 0.0});
}
double jacobian(dense2D<double> const& coords, unsigned const* nodes, solid_mix) noexcept
{
    switch (solid_mix::kind(nodes)) {
    case solid_mix::TETRA:
        return jacobian(coords, nodes, tetra4{});
    case solid_mix::PYRAMID:
        return jacobian(coords, nodes, pyramid5{});
    case solid_mix::WEDGE:
        return jacobian(coords, nodes, wedge6{});
    default:
        return jacobian(coords, nodes, hexa8{});
    }
}

}  // namespace

int jacobians(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type,
              dense1D<double, 8>& jacs)
{
    return __per_element_values(coords, connectM, type, jacs,
                                [&](unsigned const* nodes, auto elfe) { return jacobian(coords, nodes, elfe); });
}

}  // namespace tessarium
}  // namespace qv7
