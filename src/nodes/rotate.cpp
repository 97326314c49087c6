#include "nodes/node_moves.h"
#include "tessarium/finite_rotation.h"
#include "tessarium/transforms.h"

#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

using IDs = dense1D<unsigned, 8>;
using vec2 = vector_fixed<double, 2>;
using vec3 = vector_fixed<double, 3>;

// All nodes when list is null. The list forms grow pos before they look at the list.
template <unsigned D, class Move>
int __rotate(dense2D<double>& pos, bool no_turn, IDs const* list, Move&& move)
{
    if (pos.empty() || no_turn) return 0;
    if (!__grow_rows<D>(pos)) return -199;
    if (!list) return __move_all(pos, move);
    return list->empty() ? 0 : __move_listed(pos, *list, move);
}

int __rotate(dense2D<double>& pos, vec2 const& C, double angle, IDs const* list)
{
    double s = std::sin(angle), c = std::cos(angle);
    return __rotate<2>(pos, angle == 0.0, list, [&](double* p) {
        double dx = p[0] - C[0], dy = p[1] - C[1];
        p[0] = C[0] + dx * c - dy * s;
        p[1] = C[1] + dx * s + dy * c;
    });
}

int __rotate(dense2D<double>& pos, vec3 const& C, vec3 const& R, IDs const* list)
{
    finite_rotation turn(R);
    auto const& Q = turn.R;
    return __rotate<3>(pos, __is_zero(R), list, [&](double* p) {
        double d[3] = {p[0] - C[0], p[1] - C[1], p[2] - C[2]};
        for (unsigned i = 0; i < 3; ++i) p[i] = (Q(i, 0) * d[0] + Q(i, 1) * d[1] + Q(i, 2) * d[2]) + C[i];
    });
}

}  // namespace

int rotate(dense2D<double>& pos, vec2 const& C, double angle)
{
    return __rotate(pos, C, angle, nullptr);
}
int rotate(dense2D<double>& pos, vec2 const& C, double angle, IDs const& ids)
{
    return __rotate(pos, C, angle, &ids);
}
int rotate(dense2D<double>& pos, vec2 const& C, double angle, dense2D<unsigned> const& connect)
{
    return rotate(pos, C, angle, __nodes_of(connect));
}

int rotate(dense2D<double>& pos, vec3 const& C, vec3 const& R)
{
    return __rotate(pos, C, R, nullptr);
}
int rotate(dense2D<double>& pos, vec3 const& C, vec3 const& R, IDs const& ids)
{
    return __rotate(pos, C, R, &ids);
}
int rotate(dense2D<double>& pos, vec3 const& C, vec3 const& R, dense2D<unsigned> const& connect)
{
    return rotate(pos, C, R, __nodes_of(connect));
}

}  // namespace tessarium
}  // namespace qv7
