// Large rotations in three dimensions by a rotation vector, with their derivatives.
#pragma once

#include "export.h"
#include "fixed.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

// Built from a rotation vector theta (axis times angle phi in radians). R is the rotation matrix
// and T the tangent operator, so that dR = skew(T dtheta) R. Every scalar coefficient switches to
// its series at small phi, so all fields and derivatives stay exact through phi = 0.
// With S = skew(theta) (S v = theta x v) and D = (1 / phi) d/dphi, the coefficients are
// c0 = sin(phi)/phi, c1 = (1 - cos(phi))/phi^2, c2 = D c0, c3 = D c1, c4 = D D c1,
// c5 = (phi - sin(phi))/phi^3, c6 = D c5, c7 = D D c5.
class finite_rotation {
public:
    using vec3 = vector_fixed<double, 3>;
    using mat33 = matrix_fixed<double, 3, 3>;

    explicit finite_rotation(vec3 const& rotation_vector) { init(rotation_vector); }
    finite_rotation(finite_rotation const&) = default;
    finite_rotation& operator=(finite_rotation const&) = default;

    // Computes every field from theta; may be called again on the same object.
    void init(vec3 const& rotation_vector);

    // Directional derivatives with respect to theta; out is overwritten.
    void compute_DR(vec3 const& w, mat33& out) const;
    void compute_D2R(vec3 const& w1, vec3 const& w2, mat33& out) const;
    void compute_D3R(vec3 const& w1, vec3 const& w2, vec3 const& w3, mat33& out) const;
    void compute_DT(vec3 const& w, mat33& out) const;
    void compute_D2T(vec3 const& w1, vec3 const& w2, mat33& out) const;

    double coefs[8];
    vec3 theta;
    mat33 R_minus_I;  // c0 S + c1 S^2, the small part of R without cancellation
    mat33 R;          // I + c0 S + c1 S^2
    mat33 T;          // I + c1 S + c5 S^2
    mat33 U;          // c3 S + c6 S^2: the part of dT that varies with the coefficients
    mat33 V;          // c4 S + c7 S^2: the same for d2T
    mat33 S;          // skew(theta)
    mat33 S2;         // S S
};

}  // namespace qv7
TESSARIUM_EXPORT_END
